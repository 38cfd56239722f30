#pragma once

#include <gtest/gtest.h>

#include <pty.h>
#include <string>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace tarn {

/// A pseudo terminal between a test, who is the user, and a program.
class TTerminal {
public:
    TTerminal() {
        termios settings{};
        if (openpty(&FUser, &FProgram, nullptr, nullptr, nullptr) != 0 ||
            tcgetattr(FProgram, &settings) != 0)
            return;
        settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        settings.c_oflag &= ~static_cast<tcflag_t>(OPOST); // line ends stay as they are
        FIsOpen = tcsetattr(FProgram, TCSANOW, &settings) == 0;
    }
    TTerminal(const TTerminal&) = delete;
    TTerminal& operator=(const TTerminal&) = delete;
    ~TTerminal() {
        close(FProgram);
        close(FUser);
    }

    /// False where the system gives no pseudo terminals.
    bool IsOpen() const { return FIsOpen; }
    /// The program's end, and its name.
    int Descriptor() const { return FProgram; }
    std::string Name() const { return ttyname(FProgram); }

    void Type(std::string_view text) {
        EXPECT_EQ(write(FUser, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// What was shown since the start, once the program has gone.
    std::string Shown() {
        close(FProgram); // nobody has it open any more: what is shown comes to an end
        FProgram = -1;
        std::string shown;
        char bytes[512];
        for (ssize_t size; (size = read(FUser, bytes, sizeof bytes)) > 0;)
            shown.append(bytes, static_cast<std::size_t>(size));
        return shown;
    }

private:
    int FUser = -1, FProgram = -1;
    bool FIsOpen = false;
};

} // namespace tarn
