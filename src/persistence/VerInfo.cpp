#include "VerInfo.h"

#include "SpcStrings.h"
#include "TObjectStorage.h"
#include "qsLocale.h"
#include "rtl/FloatText.h"
#include "rtl/FormatSettings.h"
#include "streaming/TFiler.h"

#include <algorithm>
#include <cmath>

namespace tarn {
namespace {

constexpr int VersionUnit = 10000;
constexpr TVersion AskedPlatformVersion = 999900; // 99.99
constexpr std::string_view EditorLabel = "e_ver:";
constexpr std::string_view PlatformLabel = "d_ver:";
constexpr std::size_t LabelWidth = 7; ///< with the blank, or whatever stands there

double NumberOf(TVersion version) {
    return static_cast<double>(version) / VersionUnit;
}

/// Puts the point in the place of the decimal separator, for the length of a block.
class TPointSeparator : TScopedValue<std::string> {
public:
    TPointSeparator() : TScopedValue(FormatSettings().DecimalSeparator, ".") {}
};

[[noreturn]] void RefuseRecord(std::string_view record) {
    throw ESpcMngError(Format(LocaleStr(strBadVersion), {record}));
}

/// With the point, as it is written here, or with the user's separator.
long double NumberIn(std::string_view text) {
    if (text.find('.') == std::string_view::npos) return StrToFloat(text);
    const TPointSeparator point;
    return StrToFloat(text);
}

TVersion VersionOf(std::string_view text, std::string_view record) {
    long double number = 0;
    try {
        number = NumberIn(Trim(text));
    } catch (const EConvertError&) {
        RefuseRecord(record);
    }
    constexpr long double most = 1'000'000'000; // far beyond any version, and no overflow below
    if (!(number >= 0 && number < most)) RefuseRecord(record);
    return std::llround(number * VersionUnit);
}

struct TVersions {
    TVersion Editor;
    TVersion Platform;
};

TVersions ParseBinary(std::string_view record) {
    const std::string_view text = Trim(record);
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos) RefuseRecord(record);
    return {VersionOf(text.substr(0, blank), record), VersionOf(text.substr(blank), record)};
}

TVersions ParseText(std::string_view record) {
    const std::size_t editor = record.find(EditorLabel);
    const std::size_t platform = record.find(PlatformLabel);
    if (editor == std::string_view::npos || platform == std::string_view::npos)
        RefuseRecord(record);
    const auto from = [record](std::size_t label, std::size_t end) {
        const std::size_t start = std::min(label + LabelWidth, end);
        return record.substr(start, end - start);
    };
    return {VersionOf(from(editor, platform), record),
            VersionOf(from(platform, record.size()), record)};
}

bool GoesOn(TSpcStr question, const TCheckVerData& data, TVersion own, TVersion stored) {
    return TObjectStorage::AskUser &&
           TObjectStorage::AskUser(
               Format(LocaleStr(question), {data.FileName, NumberOf(own), NumberOf(stored)}));
}

} // namespace

std::string MakeVerInfo(TObjectStorageFormat format) {
    const TPointSeparator point;
    const double editor = NumberOf(cEditorVersion);
    const double platform = NumberOf(cDelphiVersion);
    if (format == osfBin) return Format("%f %f", {editor, platform});
    if (format == osfText)
        return Format("%s %f %s %f", {EditorLabel, editor, PlatformLabel, platform});
    return {};
}

void CheckVer(std::string_view description, bool text, bool& cancel, const TCheckVerData& data) {
    cancel = false;
    const TVersions stored = text ? ParseText(description) : ParseBinary(description);
    if (!data.Check) return;
    if (stored.Editor > cEditorVersion)
        cancel = !GoesOn(strLaterEditor, data, cEditorVersion, stored.Editor);
    if (!cancel && stored.Platform == AskedPlatformVersion)
        cancel = !GoesOn(strLaterPlatform, data, cDelphiVersion, stored.Platform);
}

} // namespace tarn
