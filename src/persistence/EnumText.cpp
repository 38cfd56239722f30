// Enumerations and sets as texts.

#include "DataHandlingErrors.h"

#include <algorithm>
#include <optional>

namespace tarn {
namespace {

constexpr int SetBits = 32;

std::string_view NameOf(const TTypeInfo& type, std::int64_t ordinal) {
    const std::int64_t index = ordinal - type.MinValue;
    const bool named = index >= 0 && index < static_cast<std::int64_t>(type.Names.size());
    return named ? type.Names[static_cast<std::size_t>(index)] : std::string_view();
}

std::optional<std::int32_t> OrdinalOf(const TTypeInfo& type, std::string_view name) {
    for (std::size_t i = 0; i < type.Names.size(); ++i)
        if (SameText(type.Names[i], name))
            return static_cast<std::int32_t>(type.MinValue + static_cast<std::int64_t>(i));
    return std::nullopt;
}

} // namespace

std::string EnumToStr(const TTypeInfo& type, std::int64_t ordinal) {
    return std::string(NameOf(type, ordinal));
}

std::int32_t StrToEnum(const TTypeInfo& type, std::string_view text) {
    const auto ordinal = OrdinalOf(type, text);
    if (!ordinal) RaiseDataError(strNoEnumValue, text);
    return *ordinal;
}

bool ContainsIn(const TTypeInfo& type, std::string_view text) {
    return OrdinalOf(type, text).has_value();
}

void FillEnumNames(const TTypeInfo& type, TStrings& list) {
    list.Clear();
    for (const std::string_view name : type.Names) list.Add(name);
}

std::string SetToStr(const TTypeInfo& setType, std::uint32_t mask) {
    std::string text;
    for (int bit = 0; bit < SetBits; ++bit) {
        if ((mask >> bit & 1) == 0) continue;
        const std::string_view name = NameOf(*setType.CompType, bit);
        if (name.empty()) continue;
        text += text.empty() ? '[' : ',';
        text += name;
    }
    return text.empty() ? "[]" : text + "]";
}

std::uint32_t StrToSet(const TTypeInfo& setType, std::string_view text) {
    std::size_t at = text.find('[');
    if (at == std::string_view::npos) RaiseDataError(strNoSetValue, text);
    std::uint32_t mask = 0;
    for (;;) {
        const std::size_t end = text.find_first_of(",]", ++at);
        if (end == std::string_view::npos) break;
        const std::string_view name = Trim(text.substr(at, end - at));
        if (!name.empty()) {
            const std::int32_t ordinal = StrToEnum(*setType.CompType, name);
            if (ordinal >= 0 && ordinal < SetBits) mask |= std::uint32_t{1} << ordinal;
        }
        at = end;
    }
    if (mask == 0 && text.back() != ']') RaiseDataError(strNoSetValue, text);
    return mask;
}

} // namespace tarn
