#pragma once

#include "rtl/SysUtils.h"

#include <string>
#include <string_view>

namespace tarn {

/// A refusal of the operating system: "cannot WHAT: reason".
class EOSError : public Exception {
public:
    /// \param errorCode the system's number of the reason, 0 when it is none of the system's own
    EOSError(std::string_view message, int errorCode) : Exception(message), FErrorCode(errorCode) {}
    std::string_view ClassName() const override { return "EOSError"; }
    int ErrorCode() const { return FErrorCode; }

private:
    int FErrorCode;
};

/// A block of memory that the system or a heap cannot give.
class EOutOfMemory : public EOSError {
public:
    /// \param size what was asked for, bytes
    explicit EOutOfMemory(std::uint64_t size);
    std::string_view ClassName() const override { return "EOutOfMemory"; }
};

/// The system's text for one of its error numbers, beginning with a small letter.
std::string SysErrorMessage(int errorCode);

/// Raises EOSError "cannot WHAT: reason" for the number, or for that of the last system call.
[[noreturn]] void RaiseOSError(std::string_view what, int errorCode);
[[noreturn]] void RaiseLastOSError(std::string_view what);

} // namespace tarn
