#include "TProgress.h"
#include "TTerminal.h"

#include <cstdio>

namespace tarn {
namespace {

/// What standard error, a terminal meanwhile, gets to show.
template <class F> std::string ShownAtTerminal(F&& work) {
    TTerminal terminal;
    if (!terminal.IsOpen()) return "no terminal";
    std::fflush(stderr);
    const int former = dup(STDERR_FILENO);
    dup2(terminal.Descriptor(), STDERR_FILENO);
    work();
    std::fflush(stderr);
    dup2(former, STDERR_FILENO);
    close(former);
    return terminal.Shown();
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
