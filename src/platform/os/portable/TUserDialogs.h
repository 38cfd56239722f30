#pragma once

#include "os/OS.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// What shows dialogs to a user and takes the answers: a console, or a front end with windows.
class TUserDialogs {
public:
    virtual ~TUserDialogs() = default;

    /// A message box; the answer is that of one of its buttons.
    virtual TDialogAnswer MessageBox(std::string_view text, std::string_view caption,
                                     std::uint32_t flags) = 0;
    /// An existing folder by its full name; none when that is cancelled.
    virtual std::optional<std::string> SelectDirectory(std::string_view title,
                                                       std::string_view folder) = 0;
    /// Files by their full names, which exist unless they are to be saved; none when that is
    /// cancelled.
    virtual std::vector<std::string> ChooseFiles(const TFileQuestion& question) = 0;
    /// A line of text; none when that is cancelled.
    virtual std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                                 std::string_view value) = 0;
};

} // namespace tarn
