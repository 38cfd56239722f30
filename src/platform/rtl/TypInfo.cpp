#include "rtl/TypInfo.h"

#include "rtl/SysUtils.h"
#include "rtl/TObject.h"

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

const TPropInfo* TClassRecord::FindProp(std::string_view name) const {
    for (const TClassRecord* record = this; record; record = record->Parent)
        for (const TPropInfo& prop : record->Published)
            if (SameText(prop.Name, name)) return &prop;
    return nullptr;
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
