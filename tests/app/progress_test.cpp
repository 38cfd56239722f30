#include "TProgress.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <pty.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace tarn {
namespace {

/// What standard error, a terminal meanwhile, gets to show.
template <class F> std::string ShownAtTerminal(F&& work) {
    int master = -1;
    int slave = -1;
    termios settings{};
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0 ||
        tcgetattr(slave, &settings) != 0)
        return "no terminal";
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    EXPECT_EQ(tcsetattr(slave, TCSANOW, &settings), 0);
    std::fflush(stderr);
    const int former = dup(STDERR_FILENO);
    dup2(slave, STDERR_FILENO);
    work();
    std::fflush(stderr);
    dup2(former, STDERR_FILENO);
    close(former);
    close(slave); // nobody has it open any more: what is shown comes to an end
    std::string shown;
    char bytes[512];
    for (ssize_t size; (size = read(master, bytes, sizeof bytes)) > 0;)
        shown.append(bytes, static_cast<std::size_t>(size));
    close(master);
    return shown;
}

TEST(Progress, IsOneLineThatGoes) {
    using std::chrono::hours;
    const std::string longName(100, 'n');
    EXPECT_EQ(ShownAtTerminal([&] {
                  TProgress progress{hours(0)};
                  EXPECT_TRUE(progress.IsVisible());
                  progress.Show(0.425, longName);
              }),
              "\r\033[K 42 % " + longName.substr(0, 60) + "\r\033[K");
    EXPECT_EQ(ShownAtTerminal([] {
                  TProgress progress{hours(0)};
                  progress.Clear(); // there is nothing yet
                  progress.Show(1, "a.dfm");
                  progress.Clear();
                  progress.Clear();
                  std::fputs("output", stderr);
              }),
              "\r\033[K100 % a.dfm\r\033[Koutput");
    EXPECT_EQ(ShownAtTerminal([] {
                  TProgress progress{hours(1)};
                  progress.Show(0.5, "too early");
              }),
              "");
}

} // namespace
} // namespace tarn
