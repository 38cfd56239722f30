#include "rtl/IniFiles.h"

#include "rtl/FloatText.h"
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
    return StrToIntDef(ReadString(section, key, ""), defaultValue);
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

namespace {

/// The value as `convert` reads it, `defaultValue` for what it refuses.
template <class Convert>
double ReadValue(const TCustomIniFile& ini, std::string_view section, std::string_view key,
                 double defaultValue, Convert convert) {
    try {
        return detail::NarrowFloat<double>(convert(ini.ReadString(section, key, "")));
    } catch (const EConvertError&) {
        return defaultValue;
    }
}

} // namespace

double TCustomIniFile::ReadFloat(std::string_view section, std::string_view key,
                                 double defaultValue) const {
    return ReadValue(*this, section, key, defaultValue, StrToFloat);
}

void TCustomIniFile::WriteFloat(std::string_view section, std::string_view key, double value) {
    WriteString(section, key, FloatToStr(value));
}

TDateTime TCustomIniFile::ReadDate(std::string_view section, std::string_view key,
                                   TDateTime defaultValue) const {
    return ReadValue(*this, section, key, defaultValue, StrToDate);
}

void TCustomIniFile::WriteDate(std::string_view section, std::string_view key, TDateTime value) {
    WriteString(section, key, DateToStr(value));
}

TDateTime TCustomIniFile::ReadTime(std::string_view section, std::string_view key,
                                   TDateTime defaultValue) const {
    return ReadValue(*this, section, key, defaultValue, StrToTime);
}

void TCustomIniFile::WriteTime(std::string_view section, std::string_view key, TDateTime value) {
    WriteString(section, key, TimeToStr(value));
}

TDateTime TCustomIniFile::ReadDateTime(std::string_view section, std::string_view key,
                                       TDateTime defaultValue) const {
    return ReadValue(*this, section, key, defaultValue, StrToDateTime);
}

void TCustomIniFile::WriteDateTime(std::string_view section, std::string_view key,
                                   TDateTime value) {
    WriteString(section, key, DateTimeToStr(value));
}

} // namespace tarn
