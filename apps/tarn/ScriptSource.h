#pragma once

#include "rtl/SysUtils.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A fault of a script or of a command line, with the place it came from: 1 refused or not as
/// expected, 2 wrong usage, 3 input or output.
class EScriptError : public Exception {
public:
    EScriptError(int exitCode, std::string_view message)
        : Exception(message), FExitCode(exitCode) {}
    int ExitCode() const { return FExitCode; }

private:
    int FExitCode;
};

inline constexpr int ExitDone = 0, ExitRefused = 1, ExitUsage = 2, ExitIO = 3;

/// One statement of a script: a verb, its arguments, and the lines of the block below it, which
/// stand behind a "|" each.
struct TStatement {
    int Line = 0; ///< 1-based
    std::string Verb;
    std::vector<std::string> Args;
    std::vector<std::string> Block;
    bool HasBlock = false;
};

/// Splits a line into words at blanks. A word in double quotes may hold blanks and the escapes \n,
/// \r, \t, \\, \", \xHH, and ends before a blank. A "#" at the start of a word begins a comment.
/// Raises EScriptError.
std::vector<std::string> SplitWords(std::string_view line);

/// A text with its unprintable bytes as escapes, so that it fits one line: the inverse of a quoted
/// word without the quotes. Bytes from 128 on stay when they are UTF-8.
std::string Escaped(std::string_view text);

/// The statements of a script. Raises EScriptError naming the line: "LINE: text".
std::vector<TStatement> ParseScript(std::string_view text);

} // namespace tarn
