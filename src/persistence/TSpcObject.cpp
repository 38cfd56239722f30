#include "TSpcObject.h"

#include "TSpcCollection.h"
#include "vcl/TComponent.h"

namespace tarn {
namespace {

constexpr TInterfaceEntry ObjectInterfaces[] = {Implements<TSpcObject, INodeInfo>()};
constexpr TInterfaceEntry ItemInterfaces[] = {
    Implements<TSpcItem, INodeInfo>(),
    Implements<TSpcItem, INodeOfItemInfo>(),
};

} // namespace

constinit const TClassRecord TSpcObject::ClassRecord{
    "TSpcObject", &TCustomSpcObject::ClassRecord, CreateObject<TSpcObject>, {}, ObjectInterfaces};
constinit const TClassRecord TSpcItem::ClassRecord{
    "TSpcItem", &TCollectionItem::ClassRecord, CreateObject<TSpcItem>, {}, ItemInterfaces};

std::string TSpcItem::GetNodePropName() const {
    std::string ident;
    if (const auto* const collection = dynamic_cast<const TSpcCollection*>(Collection()))
        collection->UpdateProp().Get(*this, &ident);
    return ident;
}

TBaseClassIdent BaseClassIdent(const TObject* object) {
    struct TRow {
        const TClassRecord& Class;
        TBaseClassIdent Ident;
    };
    static const TRow rows[] = {
        {TSpcObject::ClassRecord, ciSpcObject}, {TSpcItem::ClassRecord, ciSpcItem},
        {TCollectionItem::ClassRecord, ciItem}, {TCollection::ClassRecord, ciCollection},
        {TComponent::ClassRecord, ciComponent}, {TPersistent::ClassRecord, ciObject},
    };
    for (const TRow& row : rows)
        if (object && object->InheritsFrom(row.Class)) return row.Ident;
    return ciUnknown;
}

} // namespace tarn
