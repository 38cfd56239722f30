#include "rtl/OSError.h"

#include <cerrno>
#include <system_error>

namespace tarn {

EOutOfMemory::EOutOfMemory(std::uint64_t size)
    : EOSError("out of memory: " + std::to_string(size) + " bytes wanted", ENOMEM) {}

std::string SysErrorMessage(int errorCode) {
    std::string reason = std::generic_category().message(errorCode);
    reason.replace(0, 1, LowerCase(reason.substr(0, 1)));
    return reason;
}

void RaiseOSError(std::string_view what, int errorCode) {
    throw EOSError(Format("cannot %s: %s", {what, SysErrorMessage(errorCode)}), errorCode);
}

void RaiseLastOSError(std::string_view what) {
    RaiseOSError(what, errno);
}

} // namespace tarn
