#include "rtl/TypInfo.h"

#include "rtl/FloatText.h"
#include "rtl/SysUtils.h"
#include "rtl/TObject.h"

#include <array>
#include <bit>
#include <cstring>
#include <map>

namespace tarn {

std::string_view TTypeInfo::TypeName() const {
    return Class && Name.empty() ? Class->Name : Name;
}

bool TClassRecord::InheritsFrom(const TClassRecord& ancestor) const {
    for (const TClassRecord* record = this; record; record = record->Parent)
        if (record == &ancestor) return true;
    return false;
}

namespace {

bool SameName(std::string_view a, std::string_view b) {
    // Names mostly come in the letters of their declaration.
    return a.size() == b.size() &&
           (std::memcmp(a.data(), b.data(), a.size()) == 0 || SameText(a, b));
}

/// The end pieces of a name as one number, the same for names that differ in case.
std::uint64_t NameBits(std::string_view name) {
    const auto load = [&]<class Bits>(Bits, std::size_t at) {
        Bits bits = 0;
        std::memcpy(&bits, name.data() + at, sizeof bits);
        return static_cast<std::uint64_t>(bits);
    };
    constexpr std::uint64_t noCase = 0x2020202020202020; // the bit that tells small letters
    const std::size_t size = name.size();
    if (size >= 8)
        return (load(std::uint64_t{}, 0) | noCase) ^
               std::rotl(load(std::uint64_t{}, size - 8) | noCase, 29);
    if (size >= 4)
        return (load(std::uint32_t{}, 0) << 32 | load(std::uint32_t{}, size - 4)) | noCase;
    if (size == 0) return 0;
    return (load(std::uint8_t{}, 0) << 16 | load(std::uint8_t{}, size / 2) << 8 |
            load(std::uint8_t{}, size - 1)) |
           noCase;
}

/// What a look-up found, kept where the record and the name lead. A class has some dozens of
/// properties, a loop over objects asks for those of few classes.
struct TFoundProp {
    const TClassRecord* Record;
    const TPropInfo* Prop;
};
constexpr int FoundBits = 10;
constinit thread_local std::array<TFoundProp, std::size_t{1} << FoundBits> FoundProps{};

TFoundProp& FoundPlace(const TClassRecord* record, std::string_view name) {
    const auto bits = (NameBits(name) + name.size()) ^ reinterpret_cast<std::uintptr_t>(record);
    return FoundProps[(bits * 0x9E3779B97F4A7C15u) >> (64 - FoundBits)];
}

const TPropInfo* SearchProp(const TClassRecord* record, std::string_view name) {
    for (; record; record = record->Parent)
        for (const TPropInfo& prop : record->Published)
            if (SameName(prop.Name, name)) return &prop;
    return nullptr;
}

} // namespace

const TPropInfo* TClassRecord::FindProp(std::string_view name) const {
    TFoundProp& found = FoundPlace(this, name);
    if (found.Record == this && SameName(found.Prop->Name, name)) return found.Prop;
    const TPropInfo* const prop = SearchProp(this, name);
    if (prop) found = {this, prop};
    return prop;
}

void detail::RefuseFloat(long double value, const TTypeInfo& type) {
    throw EConvertError(Format("%s is too great for a %s", {FloatToStr(value), type.Name}));
}

namespace {

struct TLessText {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return CompareText(a, b) < 0; }
};

std::map<std::string_view, const TClassRecord*, TLessText>& Registry() {
    static std::map<std::string_view, const TClassRecord*, TLessText> registry;
    return registry;
}

} // namespace

void RegisterClass(const TClassRecord& record) {
    const auto [known, added] = Registry().emplace(record.Name, &record);
    if (!added && known->second != &record)
        throw EFilerError(Format("a class named %s already exists", {record.Name}));
}

const TClassRecord* GetClass(std::string_view name) {
    const auto found = Registry().find(name);
    return found == Registry().end() ? nullptr : found->second;
}

void UnRegisterClass(const TClassRecord& record) {
    const auto found = Registry().find(record.Name);
    if (found != Registry().end() && found->second == &record) Registry().erase(found);
}

void UnRegisterClasses(std::span<const TClassRecord* const> records) {
    for (const TClassRecord* record : records) UnRegisterClass(*record);
}

} // namespace tarn
