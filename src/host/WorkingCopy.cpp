#include "WorkingCopy.h"

#include "qsExpShrData.h"
#include "rtl/SysUtils.h"
#include "rtl/TVariant.h"

#include <array>
#include <map>
#include <utility>
#include <variant>
#include <vector>

namespace tarn {
namespace {

constexpr std::size_t MaxProps = 64;

/// What a property's value is kept in, by the slot of its kind.
using TValue = std::variant<std::int32_t, std::int64_t, long double, std::string, TVariant,
                            TRawMethod, std::unique_ptr<TPersistent>>;

/// The class record of a stand-in, and the properties of the class that it stands in for, in the
/// same order. They are made once for each class and kept.
struct TCopyClass {
    std::vector<const TPropInfo*> Originals;
    std::vector<TPropInfo> Props;
    TClassRecord Record;
};

class TSettingsCopy final : public TPersistent {
public:
    explicit TSettingsCopy(const TPersistent& original);
    const TClassRecord& ClassType() const override { return FClass.Record; }

    TValue& Value(std::size_t index) const { return FValues[index]; }

private:
    const TCopyClass& FClass;
    mutable std::vector<TValue> FValues; ///< an object that is held can be changed
};

// --- The properties of the stand-in: one pair of accessors for each place ----------------------

template <class Slot> void GetSlot(const TValue& value, void* slot) {
    *static_cast<Slot*>(slot) = std::get<Slot>(value);
}

template <std::size_t Index> void GetValue(const TObject& instance, void* slot) {
    const TValue& value = static_cast<const TSettingsCopy&>(instance).Value(Index);
    if (const auto* const held = std::get_if<std::unique_ptr<TPersistent>>(&value)) {
        *static_cast<TObject**>(slot) = held->get();
        return;
    }
    static constexpr void (*get[])(const TValue&, void*) = {
        GetSlot<std::int32_t>, GetSlot<std::int64_t>, GetSlot<long double>,
        GetSlot<std::string>,  GetSlot<TVariant>,     GetSlot<TRawMethod>};
    get[value.index()](value, slot);
}

template <class Slot> void SetSlot(TValue& value, const void* slot) {
    std::get<Slot>(value) = *static_cast<const Slot*>(slot);
}

template <std::size_t Index> void SetValue(TObject& instance, const void* slot) {
    TValue& value = static_cast<TSettingsCopy&>(instance).Value(Index);
    if (const auto* const held = std::get_if<std::unique_ptr<TPersistent>>(&value)) {
        const auto* const source =
            dynamic_cast<const TPersistent*>(*static_cast<TObject* const*>(slot));
        if (*held && source && source != held->get()) (*held)->Assign(source);
        return;
    }
    static constexpr void (*set[])(TValue&, const void*) = {
        SetSlot<std::int32_t>, SetSlot<std::int64_t>, SetSlot<long double>,
        SetSlot<std::string>,  SetSlot<TVariant>,     SetSlot<TRawMethod>};
    set[value.index()](value, slot);
}

struct TAccessors {
    void (*Get)(const TObject&, void*);
    void (*Set)(TObject&, const void*);
};

template <std::size_t... Index>
constexpr std::array<TAccessors, sizeof...(Index)> MakeAccessors(std::index_sequence<Index...>) {
    return {{{GetValue<Index>, SetValue<Index>}...}};
}
constexpr auto Accessors = MakeAccessors(std::make_index_sequence<MaxProps>());

const TCopyClass& CopyClassOf(const TClassRecord& record) {
    static std::map<const TClassRecord*, TCopyClass> classes;
    const auto [at, isNew] = classes.try_emplace(&record);
    TCopyClass& copy = at->second;
    if (!isNew) return copy;
    ForEachProp(record, [&](const TPropInfo& prop) {
        if (record.FindProp(prop.Name) == &prop) copy.Originals.push_back(&prop);
    });
    if (copy.Originals.size() > MaxProps) {
        classes.erase(at);
        throw EInvalidOperation(
            Format("%s has more than %d published properties", {record.Name, int{MaxProps}}));
    }
    for (std::size_t i = 0; i < copy.Originals.size(); ++i) {
        TPropInfo prop = *copy.Originals[i];
        prop.Get = Accessors[i].Get;
        if (prop.Set) prop.Set = Accessors[i].Set;
        prop.IsStored = nullptr; // it asks an object of the class
        copy.Props.push_back(prop);
    }
    copy.Record = {record.Name, &TPersistent::ClassRecord, nullptr, copy.Props};
    return copy;
}

// --- Values -----------------------------------------------------------------------------------

template <class Slot> TValue ReadSlot(const TPersistent& instance, const TPropInfo& prop) {
    Slot slot{};
    prop.Get(instance, &slot);
    return TValue(std::in_place_type<Slot>, std::move(slot));
}

std::unique_ptr<TPersistent> CopyOfObject(const TPersistent& instance, const TPropInfo& prop) {
    TObject* value = nullptr;
    prop.Get(instance, &value);
    const auto* const original = dynamic_cast<const TPersistent*>(value);
    if (!original) return nullptr;
    const TClassRecord& record = original->ClassType();
    if (!record.Create) return NewSettingsCopy(*original);
    std::unique_ptr<TPersistent> copy(static_cast<TPersistent*>(record.Create().release()));
    copy->Assign(original);
    return copy;
}

TValue ReadValue(const TPersistent& instance, const TPropInfo& prop) {
    switch (prop.PropType->Kind) {
    case tkInteger:
    case tkChar:
    case tkEnumeration:
    case tkSet:
    case tkWChar:
        return ReadSlot<std::int32_t>(instance, prop);
    case tkInt64:
        return ReadSlot<std::int64_t>(instance, prop);
    case tkFloat:
        return ReadSlot<long double>(instance, prop);
    case tkString:
    case tkLString:
    case tkWString:
        return ReadSlot<std::string>(instance, prop);
    case tkVariant:
        return ReadSlot<TVariant>(instance, prop);
    case tkMethod:
        return ReadSlot<TRawMethod>(instance, prop);
    case tkClass:
        return CopyOfObject(instance, prop);
    case tkUnknown:
        break;
    }
    throw EInvalidOperation(Format("%s.%s holds no setting", {instance.ClassName(), prop.Name}));
}

TSettingsCopy::TSettingsCopy(const TPersistent& original)
    : FClass(CopyClassOf(original.ClassType())) {
    for (const TPropInfo* const prop : FClass.Originals)
        FValues.push_back(ReadValue(original, *prop));
}

/// The simple published properties of one object to another one of its class.
void CopySimpleProps(TPersistent& dest, const TPersistent& source) {
    ForEachProp(source.ClassType(), [&](const TPropInfo& prop) {
        if (!prop.Set || prop.PropType->Kind == tkClass) return;
        const TValue value = ReadValue(source, prop);
        std::visit([&](const auto& slot) { prop.Set(dest, &slot); }, value);
    });
}

} // namespace

std::unique_ptr<TPersistent> NewSettingsCopy(const TPersistent& original) {
    return std::make_unique<TSettingsCopy>(original);
}

void CompleteWorkingCopy(TExpData& copy, const TExpData& settings) {
    // The copies of before: Assign has put others in their place.
    copy.OwnObjects.clear();
    for (int i = 0; i < settings.MenuData.Count(); ++i)
        CopySimpleProps(*copy.MenuData.Get(i), *settings.MenuData.Get(i));
    for (int i = 0; i < copy.CustomData.Count(); ++i) {
        TCustomDataItem& item = *copy.CustomData.Get(i);
        if (!item.NestedObject()) continue;
        copy.OwnObjects.push_back(NewSettingsCopy(*item.NestedObject()));
        item.SetNestedObject(copy.OwnObjects.back().get());
    }
}

} // namespace tarn
