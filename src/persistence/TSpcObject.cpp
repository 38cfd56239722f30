#include "TSpcObject.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

constexpr TInterfaceEntry ObjectInterfaces[] = {Implements<TSpcObject, INodeInfo>()};
constexpr TInterfaceEntry CollectionInterfaces[] = {Implements<TSpcCollection, INodeInfo>()};
constexpr TInterfaceEntry ItemInterfaces[] = {
    Implements<TSpcItem, INodeInfo>(),
    Implements<TSpcItem, INodeOfItemInfo>(),
};
constexpr TPropInfo WrapperProps[] = {
    Published<&TWrapperItem::AObjectID>("AObjectID"),
    Published<&TWrapperItem::NestedObject, &TWrapperItem::SetNestedObject>("NestedObject"),
};

} // namespace

constinit const TClassRecord TSpcObject::ClassRecord{
    "TSpcObject", &TPersistent::ClassRecord, CreateObject<TSpcObject>, {}, ObjectInterfaces};
constinit const TClassRecord TSpcItem::ClassRecord{
    "TSpcItem", &TCollectionItem::ClassRecord, CreateObject<TSpcItem>, {}, ItemInterfaces};
constinit const TClassRecord TSpcCollection::ClassRecord{
    "TSpcCollection", &TCollection::ClassRecord, nullptr, {}, CollectionInterfaces};
constinit const TClassRecord TFixedCollection::ClassRecord{"TFixedCollection",
                                                           &TSpcCollection::ClassRecord};
constinit const TClassRecord TWrapperItem::ClassRecord{"TWrapperItem", &TSpcItem::ClassRecord,
                                                       CreateObject<TWrapperItem>, WrapperProps};
constinit const TClassRecord TFreeCollection::ClassRecord{"TFreeCollection",
                                                          &TSpcCollection::ClassRecord};

namespace {

/// The property that holds the identifiers of a collection's items.
const TPropInfo& IdentProp(const TSpcCollection& collection) {
    const std::string name = collection.GetUpdateName();
    const TClassRecord& record = collection.ItemClass().Record();
    const TPropInfo* const prop = record.FindProp(name);
    if (!prop || prop->PropType->Kind != tkLString || !prop->Set)
        throw EInvalidOperation(
            Format("%s has no writable string property %s", {record.Name, name}));
    return *prop;
}

} // namespace

TSpcItem* TSpcCollection::FindItemID(std::string_view id) const {
    const TPropInfo& prop = IdentProp(*this);
    std::string ident;
    for (int i = 0; i < Count(); ++i) {
        prop.Get(*Items(i), &ident);
        if (SameText(ident, id)) return static_cast<TSpcItem*>(Items(i));
    }
    return nullptr;
}

TSpcItem* TSpcCollection::AddItemID(std::string_view id) {
    const TPropInfo& prop = IdentProp(*this);
    auto* const item = static_cast<TSpcItem*>(TCollection::Add());
    const std::string ident(id);
    prop.Set(*item, &ident);
    return item;
}

TWrapperItem* TFreeCollection::Add(TPersistent* object, std::string_view objectID) {
    TSpcItem* item = FindItemID(objectID);
    if (!item) item = AddItemID(objectID);
    auto* const wrapper = static_cast<TWrapperItem*>(item);
    wrapper->SetNestedObject(object);
    return wrapper;
}

} // namespace tarn
