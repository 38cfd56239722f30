#pragma once

#include "ObjectStorageFormat.h"
#include "rtl/SysUtils.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct TSpcMngErrorTag {
    static constexpr std::string_view Name = "ESpcMngError";
};
/// A settings object or file that cannot be worked with.
using ESpcMngError = TNamedException<TSpcMngErrorTag>;

/// A version: a decimal number in ten-thousandths.
using TVersion = std::int64_t;
inline constexpr TVersion cEditorVersion = 10100; ///< 1.01, of the settings files
inline constexpr TVersion cDelphiVersion = 50000; ///< 5.00, of the platform

/// The version record of a settings file: "1.01 5.00" for osfBin, "e_ver: 1.01 d_ver: 5.00" for
/// osfText, empty for other formats. The point is the decimal separator whatever the settings say.
std::string MakeVerInfo(TObjectStorageFormat format);

/// What the check of a version record goes by.
struct TCheckVerData {
    std::string FileName; ///< for the questions
    bool Check = true;    ///< whether later versions are asked about
};

/// Checks a version record before anything is loaded. A later version of the editor is asked about;
/// one of the platform only when it is exactly 99.99, a kept quirk. `cancel` is whether the user
/// does not want to go on. Raises ESpcMngError 51504 for what is no version record.
/// \param text the record is that of osfText; otherwise that of osfBin
void CheckVer(std::string_view description, bool text, bool& cancel, const TCheckVerData& data);

} // namespace tarn
