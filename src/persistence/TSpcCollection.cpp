#include "TSpcCollection.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

constexpr TInterfaceEntry CollectionInterfaces[] = {Implements<TSpcCollection, INodeInfo>()};
constexpr TPropInfo WrapperProps[] = {
    Published<&TWrapperItem::AObjectID>("AObjectID"),
    // Without a setter, so that no stream can take the object away.
    Published<&TWrapperItem::NestedObject>("NestedObject"),
};

} // namespace

constinit const TClassRecord TSpcCollection::ClassRecord{
    "TSpcCollection", &TCollection::ClassRecord, nullptr, {}, CollectionInterfaces};
constinit const TClassRecord TFixedCollection::ClassRecord{"TFixedCollection",
                                                           &TSpcCollection::ClassRecord};
constinit const TClassRecord TWrapperItem::ClassRecord{"TWrapperItem", &TSpcItem::ClassRecord,
                                                       CreateObject<TWrapperItem>, WrapperProps};
constinit const TClassRecord TFreeCollection::ClassRecord{"TFreeCollection",
                                                          &TSpcCollection::ClassRecord};

// --- Any collection ---------------------------------------------------------------------------

const TPropInfo& TSpcCollection::UpdateProp() const {
    const std::string name = GetUpdateName();
    const TClassRecord& record = ItemClass().Record();
    const TPropInfo* const prop = record.FindProp(name);
    if (!prop || prop->PropType->Kind != tkLString || !prop->Set)
        throw EInvalidOperation(
            Format("%s has no writable string property %s", {record.Name, name}));
    return *prop;
}

TSpcItem* TSpcCollection::FindItemID(std::string_view id) const {
    const TPropInfo& prop = UpdateProp();
    std::string ident;
    for (int i = 0; i < Count(); ++i) {
        prop.Get(*Items(i), &ident);
        if (SameText(ident, id)) return Items(i);
    }
    return nullptr;
}

TSpcItem* TSpcCollection::AddItemID(std::string_view id) {
    const TPropInfo& prop = UpdateProp();
    TSpcItem* const item = Add();
    const std::string ident(id);
    prop.Set(*item, &ident);
    return item;
}

void TSpcCollection::AssignUnplaced(const TSpcCollection& source) {
    UnplacedItems = source.UnplacedItems;
    for (int i = 0; i < Count(); ++i) Items(i)->UnplacedProps = source.Items(i)->UnplacedProps;
}

void TSpcCollection::Assign(const TPersistent* source) {
    TUncounted::Assign(source);
    const auto* const other = dynamic_cast<const TSpcCollection*>(source);
    if (other && other != this) AssignUnplaced(*other);
}

// --- A free collection ------------------------------------------------------------------------

TWrapperItem* TFreeCollection::Add(TPersistent* object, std::string_view objectID) {
    TSpcItem* item = FindItemID(objectID);
    if (!item) item = AddItemID(objectID);
    auto* const wrapper = static_cast<TWrapperItem*>(item);
    wrapper->SetNestedObject(object);
    return wrapper;
}

void TFreeCollection::SetItem(int index, const TWrapperItem& item) {
    TWrapperItem& own = *GetItem(index);
    own.AObjectID = item.AObjectID;
    own.SetNestedObject(item.NestedObject());
}

void TFreeCollection::Assign(const TPersistent* source) {
    const auto* const other = dynamic_cast<const TFreeCollection*>(source);
    if (!other) {
        TSpcCollection::Assign(source);
        return;
    }
    if (other == this) return;
    Clear();
    for (int i = 0; i < other->Count(); ++i) {
        TSpcCollection::Add();
        SetItem(i, *other->GetItem(i));
    }
    AssignUnplaced(*other);
}

} // namespace tarn
