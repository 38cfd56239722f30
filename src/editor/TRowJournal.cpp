#include "TRowJournal.h"

#include "rtl/TVariant.h"

namespace tarn {
namespace {

template <class Slot>
std::unique_ptr<TPropChange> KeptValue(TPersistent& instance, const TPropInfo& prop) {
    Slot slot{};
    prop.Get(instance, &slot);
    return std::make_unique<TPropChange>(instance, prop, &slot);
}

std::unique_ptr<TPropChange> Kept(TPersistent& instance, const TPropInfo& prop) {
    switch (prop.PropType->Kind) {
    case tkFloat:
        return KeptValue<long double>(instance, prop);
    case tkString:
    case tkLString:
    case tkWString:
        return KeptValue<std::string>(instance, prop);
    case tkVariant:
        return KeptValue<TVariant>(instance, prop);
    case tkInt64:
        return KeptValue<std::int64_t>(instance, prop);
    case tkMethod:
        return KeptValue<TRawMethod>(instance, prop);
    default:
        return KeptValue<std::int32_t>(instance, prop);
    }
}

} // namespace

void TRowJournal::Keep(const TControlInfo& info) {
    if (!info.EInstance) return;
    if (info.EPropInfo->PropType->Kind != tkClass) {
        if (info.EPropInfo->Set) FProps.push_back(Kept(*info.EInstance, *info.EPropInfo));
        return;
    }
    TObject* value = nullptr;
    info.EPropInfo->Get(*info.EInstance, &value);
    auto* const object = ClassCast<TPersistent>(value);
    if (!object || !object->ClassType().Create) return;
    std::unique_ptr<TPersistent> copy(
        static_cast<TPersistent*>(object->ClassType().Create().release()));
    copy->Assign(object);
    FObjects.push_back({object, std::move(copy)});
}

void TRowJournal::Restore() noexcept {
    for (; !FProps.empty(); FProps.pop_back()) {
        try {
            FProps.back()->Swap();
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }
    for (; !FObjects.empty(); FObjects.pop_back()) {
        try {
            FObjects.back().Object->Assign(FObjects.back().Copy.get());
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }
}

} // namespace tarn
