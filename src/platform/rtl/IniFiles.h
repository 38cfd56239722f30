#pragma once

#include "rtl/DateUtils.h"
#include "rtl/TStrings.h"

namespace tarn {

/// The base of all INI documents: values by section and key, read and written as text. The typed
/// readers and writers stand on ReadString and WriteString.
class TCustomIniFile : public TObject {
public:
    explicit TCustomIniFile(std::string_view fileName) : FFileName(fileName) {}

    const std::string& FileName() const { return FFileName; }

    bool SectionExists(std::string_view section) const;
    virtual bool ValueExists(std::string_view section, std::string_view key) const;

    /// The value, or `defaultValue` when the section or the key is missing.
    virtual std::string ReadString(std::string_view section, std::string_view key,
                                   std::string_view defaultValue) const = 0;
    virtual void WriteString(std::string_view section, std::string_view key,
                             std::string_view value) = 0;
    /// The number, decimal or hexadecimal after "$" or "0x"; `defaultValue` for what is none.
    int ReadInteger(std::string_view section, std::string_view key, int defaultValue) const;
    void WriteInteger(std::string_view section, std::string_view key, int value);
    /// A Boolean is a number: 0 is false, any other is true. It is written as "0" or "1".
    bool ReadBool(std::string_view section, std::string_view key, bool defaultValue) const;
    void WriteBool(std::string_view section, std::string_view key, bool value);
    // Numbers with a fraction, and days as dates, times or both, in the present format settings;
    // `defaultValue` for what is none.
    double ReadFloat(std::string_view section, std::string_view key, double defaultValue) const;
    void WriteFloat(std::string_view section, std::string_view key, double value);
    TDateTime ReadDate(std::string_view section, std::string_view key,
                       TDateTime defaultValue) const;
    void WriteDate(std::string_view section, std::string_view key, TDateTime value);
    TDateTime ReadTime(std::string_view section, std::string_view key,
                       TDateTime defaultValue) const;
    void WriteTime(std::string_view section, std::string_view key, TDateTime value);
    TDateTime ReadDateTime(std::string_view section, std::string_view key,
                           TDateTime defaultValue) const;
    void WriteDateTime(std::string_view section, std::string_view key, TDateTime value);

    virtual void ReadSections(TStrings& sections) const = 0;
    /// The names of the section's keys.
    virtual void ReadSection(std::string_view section, TStrings& keys) const = 0;
    /// The section's keys as lines "KEY=VALUE".
    virtual void ReadSectionValues(std::string_view section, TStrings& lines) const = 0;
    virtual void EraseSection(std::string_view section) = 0;
    virtual void DeleteKey(std::string_view section, std::string_view key) = 0;
    /// Writes the document to its file.
    virtual void UpdateFile() = 0;

private:
    std::string FFileName;
};

} // namespace tarn
