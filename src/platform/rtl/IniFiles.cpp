#include "rtl/IniFiles.h"

#include "rtl/SysUtils.h"

namespace tarn {

bool TCustomIniFile::SectionExists(std::string_view section) const {
    TStringList keys;
    ReadSection(section, keys);
    return !keys.IsEmpty();
}

bool TCustomIniFile::ValueExists(std::string_view section, std::string_view key) const {
    TStringList keys;
    ReadSection(section, keys);
    return keys.IndexOf(key) >= 0;
}

int TCustomIniFile::ReadInteger(std::string_view section, std::string_view key,
                                int defaultValue) const {
    try {
        return StrToInt(ReadString(section, key, ""));
    } catch (const EConvertError&) {
        return defaultValue;
    }
}

void TCustomIniFile::WriteInteger(std::string_view section, std::string_view key, int value) {
    WriteString(section, key, IntToStr(value));
}

bool TCustomIniFile::ReadBool(std::string_view section, std::string_view key,
                              bool defaultValue) const {
    return ReadInteger(section, key, defaultValue ? 1 : 0) != 0;
}

void TCustomIniFile::WriteBool(std::string_view section, std::string_view key, bool value) {
    WriteInteger(section, key, value ? 1 : 0);
}

} // namespace tarn
