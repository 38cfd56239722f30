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

/// The end pieces of a name, which overlap in a name of less than 16 bytes and are all of it then.
struct TNameEnds {
    explicit TNameEnds(std::string_view name) {
        const std::size_t size = name.size();
        if (size >= 8) {
            Front = Load<std::uint64_t>(name, 0);
            Back = Load<std::uint64_t>(name, size - 8);
        } else if (size >= 4) {
            Front = Load<std::uint32_t>(name, 0);
            Back = Load<std::uint32_t>(name, size - 4);
        } else if (size > 0) {
            Front = Load<std::uint8_t>(name, 0);
            Back = Load<std::uint8_t>(name, size / 2) << 8 | Load<std::uint8_t>(name, size - 1);
        }
    }

    /// A number that is the same for names that differ in case.
    std::uint64_t Bits() const {
        constexpr std::uint64_t noCase = 0x2020202020202020; // the bit that tells small letters
        return (Front | noCase) ^ std::rotl(Back | noCase, 29);
    }

    friend bool operator==(const TNameEnds&, const TNameEnds&) = default;

    std::uint64_t Front = 0, Back = 0;

private:
    template <class Bits> static std::uint64_t Load(std::string_view name, std::size_t at) {
        Bits bits = 0;
        std::memcpy(&bits, name.data() + at, sizeof bits);
        return bits;
    }
};

/// Whether the names are the same without case; `ends` are those of `name`.
bool SameName(std::string_view declared, std::string_view name, const TNameEnds& ends) {
    if (declared.size() != name.size()) return false;
    // Names mostly come in the letters of their declaration, and most are no longer than their
    // ends.
    const bool same =
        TNameEnds(declared) == ends &&
        (name.size() <= 16 || std::memcmp(declared.data(), name.data(), name.size()) == 0);
    return same || SameText(declared, name);
}

/// What a look-up found, kept where the record and the name lead. A class has some dozens of
/// properties, a loop over objects asks for those of few classes.
struct TFoundProp {
    const TClassRecord* Record;
    const TPropInfo* Prop;
};
constexpr int FoundBits = 10;
constinit thread_local std::array<TFoundProp, std::size_t{1} << FoundBits> FoundProps{};

TFoundProp& FoundPlace(const TClassRecord* record, std::size_t size, const TNameEnds& ends) {
    const auto bits = (ends.Bits() + size) ^ reinterpret_cast<std::uintptr_t>(record);
    return FoundProps[(bits * 0x9E3779B97F4A7C15u) >> (64 - FoundBits)];
}

const TPropInfo* SearchProp(const TClassRecord* record, std::string_view name,
                            const TNameEnds& ends) {
    for (; record; record = record->Parent)
        for (const TPropInfo& prop : record->Published)
            if (SameName(prop.Name, name, ends)) return &prop;
    return nullptr;
}

} // namespace

const TPropInfo* TClassRecord::FindProp(std::string_view name) const {
    const TNameEnds ends(name);
    TFoundProp& found = FoundPlace(this, name.size(), ends);
    if (found.Record == this && SameName(found.Prop->Name, name, ends)) return found.Prop;
    const TPropInfo* const prop = SearchProp(this, name, ends);
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
