#pragma once

#include "os/portable/TUserDialogs.h"

#include <iosfwd>
#include <span>

namespace tarn {

/// A button of a message box.
struct TDialogButton {
    TDialogAnswer Answer;
    std::string_view Name; ///< lower case; its first letter is that of no other button
};

inline constexpr TDialogButton DialogButtons[] = {
    {IDYES, "yes"}, {IDNO, "no"}, {IDCANCEL, "cancel"}, {IDOK, "ok"}};

/// The buttons of a message box with those flags, the cautious one last: Cancel where there is such
/// a button, else No, else OK.
std::span<const TDialogButton> ButtonsOf(std::uint32_t flags);

/// Shows dialogs as text. At a terminal a line is read as the answer; elsewhere, at the end of the
/// input and for an empty line the cautious answer is taken and printed. What is no answer is asked
/// for again.
class TConsoleDialogs : public TUserDialogs {
public:
    /// \param in, out must outlive the object
    /// \param terminal whether somebody sits at both of them
    TConsoleDialogs(std::istream& in, std::ostream& out, bool terminal)
        : FIn(in), FOut(out), FTerminal(terminal) {}
    TConsoleDialogs(const TConsoleDialogs&) = delete;
    TConsoleDialogs& operator=(const TConsoleDialogs&) = delete;

    /// Standard input and standard error.
    static TConsoleDialogs OfProcess();

    /// Shows "caption: icon: text" and takes one of the box's buttons by its name or its first
    /// letter, without regard to case. A box with a single button waits for nothing.
    TDialogAnswer MessageBox(std::string_view text, std::string_view caption,
                             std::uint32_t flags) override;
    /// Asks for an existing folder, whose full name is the result; none when that is cancelled. A
    /// relative name begins at `folder`, or at the current one when that is empty.
    std::optional<std::string> SelectDirectory(std::string_view title,
                                               std::string_view folder) override;
    /// Asks for a file, which exists unless it is to be saved, and whose full name is the result;
    /// none when that is cancelled. A relative name begins at the folder of the question's.
    std::vector<std::string> ChooseFiles(const TFileQuestion& question) override;
    /// Asks for a line of text; none when nobody is there. An empty line is the text that there is.
    std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                         std::string_view value) override;

private:
    /// A line of the user's without the blanks around it; none when there is nobody to ask.
    std::optional<std::string> Ask(std::string_view question);

    std::istream& FIn;
    std::ostream& FOut;
    bool FTerminal;
};

} // namespace tarn
