#include "os/OS.h"

#include "rtl/SysUtils.h"

#include <utility>

namespace tarn {
namespace {

TOperatingSystem* Installed = nullptr;

} // namespace

TOperatingSystem* InstallOS(TOperatingSystem* os) {
    return std::exchange(Installed, os);
}

TOperatingSystem& OS() {
    if (!Installed) throw EInvalidOperation("no operating system layer is installed");
    return *Installed;
}

bool HasOS() {
    return Installed != nullptr;
}

} // namespace tarn
