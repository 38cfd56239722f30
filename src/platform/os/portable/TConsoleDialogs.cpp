#include "os/portable/TConsoleDialogs.h"

#include "rtl/SysUtils.h"

#include <filesystem>
#include <iostream>
#include <unistd.h>

namespace tarn {
namespace {

struct TIconName {
    std::uint32_t Icon;
    std::string_view Name;
};
constexpr TIconName IconNames[] = {{MB_ICONERROR, "error"},
                                   {MB_ICONQUESTION, "question"},
                                   {MB_ICONWARNING, "warning"},
                                   {MB_ICONINFORMATION, "information"}};

std::string_view IconName(std::uint32_t flags) {
    constexpr std::uint32_t iconMask = 0xF0;
    for (const TIconName& named : IconNames)
        if (named.Icon == (flags & iconMask)) return named.Name;
    return {};
}

/// The text with LF for its line ends and "?" for control characters: it may hold the name of a
/// file, which is not to steer the terminal.
std::string Plain(std::string_view text) {
    std::string plain;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        const bool control = (code < ' ' && c != '\n' && c != '\t') || code == 0x7F;
        if (code >= 0x80 && code < 0xA0 && plain.ends_with('\xC2'))
            plain.back() = '?'; // the controls above ASCII take two bytes
        else if (c != '\r')
            plain += control ? '?' : c;
    }
    return plain;
}

/// "[y]es / [n]o"
std::string Choices(std::span<const TDialogButton> buttons) {
    std::string text;
    for (const TDialogButton& button : buttons)
        text.append(text.empty() ? "[" : " / [")
            .append(button.Name.substr(0, 1))
            .append("]")
            .append(button.Name.substr(1));
    return text;
}

} // namespace

std::span<const TDialogButton> ButtonsOf(std::uint32_t flags) {
    constexpr std::uint32_t buttonMask = 15;
    constexpr std::span buttons(DialogButtons);
    switch (flags & buttonMask) {
    case MB_YESNO:
        return buttons.first(2);
    case MB_YESNOCANCEL:
        return buttons.first(3);
    default:
        return buttons.last(1);
    }
}

TConsoleDialogs TConsoleDialogs::OfProcess() {
    return {std::cin, std::cerr, isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0};
}

TDialogAnswer TConsoleDialogs::MessageBox(std::string_view text, std::string_view caption,
                                          std::uint32_t flags) {
    for (const std::string_view part : {caption, IconName(flags)})
        if (!part.empty()) FOut << Plain(part) << ": ";
    FOut << Plain(text) << '\n';
    const auto buttons = ButtonsOf(flags);
    if (buttons.size() > 1) {
        const std::string choices = Choices(buttons);
        while (const auto line = Ask(choices)) {
            if (line->empty()) break;
            for (const TDialogButton& button : buttons)
                if (SameText(*line, button.Name) || SameText(*line, button.Name.substr(0, 1)))
                    return button.Answer;
        }
        FOut << buttons.back().Name << '\n';
    }
    return buttons.back().Answer;
}

std::optional<std::string> TConsoleDialogs::SelectDirectory(std::string_view title,
                                                            std::string_view folder) {
    namespace fs = std::filesystem;
    std::string question = Plain(title);
    if (!folder.empty()) question += ", from " + Plain(folder);
    question += " (an empty line cancels)";
    while (const auto line = Ask(question)) {
        if (line->empty()) break;
        std::error_code error;
        const fs::path chosen = fs::absolute(fs::path(folder) / *line, error);
        if (!error && fs::is_directory(chosen, error)) return chosen.lexically_normal().string();
        FOut << Plain(*line) << " is no folder\n";
    }
    FOut << "cancelled\n";
    return std::nullopt;
}

/// One file, also where several may be chosen.
std::vector<std::string> TConsoleDialogs::ChooseFiles(const TFileQuestion& question) {
    namespace fs = std::filesystem;
    const fs::path folder = question.FileName.empty() ? fs::path(question.InitialDir)
                                                      : fs::path(question.FileName).parent_path();
    std::string text = Plain(question.Title.empty() ? "File" : question.Title);
    if (!question.FileName.empty()) text += ", from " + Plain(question.FileName);
    text += " (an empty line cancels)";
    while (const auto line = Ask(text)) {
        if (line->empty()) break;
        std::error_code error;
        const fs::path chosen = fs::absolute(folder / *line, error);
        if (!error &&
            (question.Save ? !fs::is_directory(chosen, error) : fs::is_regular_file(chosen, error)))
            return {chosen.lexically_normal().string()};
        FOut << Plain(*line) << " is no file\n";
    }
    FOut << "cancelled\n";
    return {};
}

std::optional<std::string> TConsoleDialogs::InputText(std::string_view caption,
                                                      std::string_view prompt,
                                                      std::string_view value) {
    std::string question = Plain(caption) + ": " + Plain(prompt);
    if (!value.empty()) question += " [" + Plain(value) + "]";
    const auto line = Ask(question);
    if (!line) FOut << "cancelled\n";
    return line && line->empty() ? std::string(value) : line;
}

std::optional<std::string> TConsoleDialogs::Ask(std::string_view question) {
    FOut << question << ": " << std::flush;
    std::string line;
    if (!FTerminal || !std::getline(FIn, line)) return std::nullopt;
    return std::string(Trim(line));
}

} // namespace tarn
