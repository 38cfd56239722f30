// The half of the writer that knows objects: properties, collections, components.
#include "streaming/TWriter.h"

#include "rtl/TCollection.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TVariant.h"
#include "rtl/Unicode.h"
#include "vcl/TComponent.h"

#include <unordered_set>
#include <utility>

namespace tarn {
namespace {

template <class T> T SlotOf(const TObject& instance, const TPropInfo& prop) {
    T slot{};
    prop.Get(instance, &slot);
    return slot;
}

template <class T> bool SameSlots(const TObject& a, const TObject& b, const TPropInfo& prop) {
    return SlotOf<T>(a, prop) == SlotOf<T>(b, prop);
}

/// Whether both objects, which have the property, have the same value of it.
bool SameValues(const TObject& a, const TObject& b, const TPropInfo& prop) {
    switch (prop.PropType->Kind) {
    case tkInteger:
    case tkChar:
    case tkWChar:
    case tkEnumeration:
    case tkSet:
        return SameSlots<std::int32_t>(a, b, prop);
    case tkInt64:
        return SameSlots<std::int64_t>(a, b, prop);
    case tkFloat:
        return SameSlots<long double>(a, b, prop);
    case tkString:
    case tkLString:
    case tkWString:
        return SameSlots<std::string>(a, b, prop);
    case tkVariant:
        return SameSlots<TVariant>(a, b, prop);
    case tkMethod:
        return SameSlots<TRawMethod>(a, b, prop);
    case tkClass:
    case tkUnknown:
        break;
    }
    return false;
}

bool IsOrdinal(TTypeKind kind) {
    return kind == tkInteger || kind == tkChar || kind == tkWChar || kind == tkEnumeration ||
           kind == tkSet;
}

} // namespace

/// One level of components, sub-objects and collections: an object that holds itself ends here.
class TWriter::TNesting {
public:
    explicit TNesting(TWriter& writer) : FWriter(writer) {
        if (writer.FDepth >= MaxFormDepth)
            throw EWriteError(Format("objects nested deeper than %d levels", {MaxFormDepth}));
        ++writer.FDepth;
    }
    TNesting(const TNesting&) = delete;
    TNesting& operator=(const TNesting&) = delete;
    ~TNesting() { --FWriter.FDepth; }

private:
    TWriter& FWriter;
};

// --- Properties -------------------------------------------------------------------------------

void TWriter::WritePropName(std::string_view name) {
    WriteStr(FPropPath.empty() ? name : FPropPath + std::string(name));
}

void TWriter::WriteProperties(TPersistent& instance) {
    const TClassRecord& record = instance.ClassType();
    ForEachProp(record, [&](const TPropInfo& prop) {
        // A name that a descendant declares again means the descendant's property.
        if (record.FindProp(prop.Name) == &prop) WriteProperty(instance, prop);
    });
    instance.DefineProperties(*this);
}

TPersistent* TWriter::AncestorWith(const TPropInfo& prop) const {
    return Ancestor() && Ancestor()->ClassType().FindProp(prop.Name) == &prop ? Ancestor()
                                                                              : nullptr;
}

bool TWriter::IsStoredProp(TPersistent& instance, const TPropInfo& prop) {
    if (!prop.Get || (prop.IsStored && !prop.IsStored(instance))) return false;
    if (prop.PropType->Kind == tkClass) return true; // its parts decide
    if (!prop.Set) return false;
    if (const TPersistent* const ancestor = AncestorWith(prop))
        return !SameValues(instance, *ancestor, prop);
    return !prop.HasDefault() || !IsOrdinal(prop.PropType->Kind) ||
           SlotOf<std::int32_t>(instance, prop) != static_cast<std::int32_t>(prop.Default);
}

void TWriter::WriteProperty(TPersistent& instance, const TPropInfo& prop) {
    if (!IsStoredProp(instance, prop)) return;
    if (prop.PropType->Kind == tkClass) return WriteObjectProp(instance, prop);
    if (prop.PropType->Kind == tkMethod) {
        const auto method = SlotOf<TRawMethod>(instance, prop);
        const std::string name =
            OnGetMethodName && method.Code ? OnGetMethodName(*this, instance, prop) : std::string();
        // Without an ancestor whose method it takes away, no method is nothing to store.
        if (name.empty() && (method.Code || !AncestorWith(prop))) return;
        WritePropName(prop.Name);
        return WriteIdent(name.empty() ? NameOfValue(vaNil) : std::string_view(name));
    }
    WritePropName(prop.Name);
    WritePropValue(instance, prop);
}

void TWriter::WritePropValue(TPersistent& instance, const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    switch (type.Kind) {
    case tkInteger:
    case tkChar:
    case tkWChar:
    case tkEnumeration:
        return WriteOrdinal(type, SlotOf<std::int32_t>(instance, prop));
    case tkSet:
        return WriteSet(type, static_cast<std::uint32_t>(SlotOf<std::int32_t>(instance, prop)));
    case tkInt64:
        return WriteInteger(SlotOf<std::int64_t>(instance, prop));
    case tkFloat:
        return WriteFloat(SlotOf<long double>(instance, prop));
    case tkString:
    case tkLString:
        return WriteString(SlotOf<std::string>(instance, prop));
    case tkWString:
        return WriteWideString(Utf8ToUtf16(SlotOf<std::string>(instance, prop)));
    case tkVariant:
        return WriteVariant(SlotOf<TVariant>(instance, prop));
    default:
        throw EWriteError(Format("property %s has no type that is streamed", {prop.Name}));
    }
}

void TWriter::WriteOrdinal(const TTypeInfo& type, std::int32_t value) {
    std::string ident;
    if (type.Kind == tkInteger)
        return IntegerToIdent(type, value, ident) ? WriteIdent(ident) : WriteInteger(value);
    if (type.Kind == tkChar) return WriteChar(static_cast<char>(value));
    if (type.Kind == tkWChar) {
        const auto unit = static_cast<char16_t>(value);
        return WriteWideString({&unit, 1});
    }
    const std::string_view name = NameOfOrdinal(type, value);
    if (name.empty()) throw EWriteError(Format("%s has no name for %d", {type.Name, value}));
    WriteIdent(name);
}

void TWriter::WriteVariant(const TVariant& value) {
    switch (value.Kind()) {
    case vkEmpty:
        return WriteValue(vaNil);
    case vkBoolean:
        return WriteBoolean(value.ToInteger() != 0);
    case vkInteger:
        return WriteInteger(value.ToInteger());
    case vkFloat:
        return WriteFloat(value.ToFloat());
    case vkString:
        return WriteString(value.ToString());
    case vkObject:
        throw EWriteError("a variant that holds an object cannot be streamed");
    }
}

void TWriter::WriteObjectProp(TPersistent& instance, const TPropInfo& prop) {
    auto* const value = ClassCast<TPersistent>(SlotOf<TObject*>(instance, prop));
    const TPersistent* const ancestor = AncestorWith(prop);
    TObject* const old = ancestor ? SlotOf<TObject*>(*ancestor, prop) : nullptr;
    if (auto* const collection = ClassCast<TCollection>(value)) {
        auto* const oldCollection = ClassCast<TCollection>(old);
        if (oldCollection && SameCollections(*collection, *oldCollection)) return;
        WritePropName(prop.Name);
        return WriteCollection(*collection);
    }
    if (const auto* const component = ClassCast<TComponent>(value)) {
        const std::string name = prop.Set ? ReferenceName(*component) : std::string();
        const auto* const oldComponent = ClassCast<TComponent>(old);
        // A reference to the component that stands for the ancestor's has not changed.
        if (name.empty() || (oldComponent && SameText(oldComponent->Name(), component->Name())))
            return;
        WritePropName(prop.Name);
        return WriteIdent(name);
    }
    if (value) return WriteSubObject(*value, old, prop.Name);
    if (!old || !prop.Set) return;
    WritePropName(prop.Name);
    WriteValue(vaNil);
}

void TWriter::WriteSubObject(TPersistent& object, TObject* ancestor, std::string_view name) {
    const TNesting nesting(*this);
    const TScopedValue path(FPropPath, FPropPath + std::string(name) + '.');
    TPersistent* const outer = Ancestor();
    SetAncestor(ClassCast<TPersistent>(ancestor));
    WriteProperties(object);
    SetAncestor(outer);
}

void TWriter::WriteCollection(TCollection& collection) {
    const TNesting nesting(*this);
    const TScopedValue path(FPropPath, std::string());
    TPersistent* const outer = Ancestor();
    SetAncestor(nullptr);
    WriteValue(vaCollection);
    WriteItems(collection);
    WriteListEnd();
    SetAncestor(outer);
}

void TWriter::WriteItems(TCollection& collection) {
    for (int i = 0; i < collection.Count(); ++i) WriteItem(*collection.Items(i));
}

void TWriter::WriteItem(TPersistent& item) {
    WriteListBegin();
    WriteProperties(item);
    WriteListEnd();
}

bool TWriter::SameCollections(TCollection& collection, TCollection& ancestor) {
    if (collection.Count() != ancestor.Count()) return false;
    // They are the same when a stream of them is.
    const auto bytesOf = [this](TCollection& each, TComponent* lookupRoot) {
        TMemoryStream stream;
        TWriter writer(stream);
        writer.SetRoot(Root());
        writer.SetLookupRoot(lookupRoot);
        writer.WriteCollection(each);
        writer.FlushBuffer();
        return std::string(stream.Text());
    };
    return bytesOf(collection, LookupRoot()) ==
           bytesOf(ancestor, FLookupAncestor ? FLookupAncestor : LookupRoot());
}

void TWriter::DefineProperty(std::string_view name, const TReaderProc&,
                             const TWriterProc& writeData, bool hasData) {
    if (!hasData || !writeData) return;
    WritePropName(name);
    const TScopedValue path(FPropPath, std::string());
    writeData(*this);
}

void TWriter::DefineBinaryProperty(std::string_view name, const TStreamProc&,
                                   const TStreamProc& writeData, bool hasData) {
    if (!hasData || !writeData) return;
    WritePropName(name);
    WriteBinary(writeData);
}

// --- Components -------------------------------------------------------------------------------

std::string TWriter::ReferenceName(const TComponent& component) const {
    if (&component == LookupRoot()) return "Owner";
    std::string path = component.Name();
    if (path.empty()) return path;
    const TComponent* each = component.Owner();
    for (; each && each != LookupRoot() && !each->Name().empty(); each = each->Owner()) {
        path.insert(0, each->Name() + '.');
        if (each == Root()) break;
    }
    return path;
}

void TWriter::WriteDescendent(TComponent& root, TComponent* ancestor) {
    SetRoot(&root);
    FLookupAncestor = ancestor;
    SetAncestor(ancestor);
    WriteSignature();
    FFlags = ancestor ? TFilerFlags{ffInherited} : TFilerFlags{};
    WriteComponent(root);
    SetAncestor(nullptr);
    FLookupAncestor = nullptr;
    SetRoot(nullptr);
    FlushBuffer();
}

void TWriter::WriteAsComponent(TPersistent& object, std::string_view name) {
    WriteSignature();
    WritePrefix({}, 0, object.ClassName());
    WriteStr(object.ClassName());
    WriteStr(name);
    WriteProperties(object);
    WriteListEnd();
    WriteListEnd();
    FlushBuffer();
}

void TWriter::WriteComponent(TComponent& component) {
    component.SetFlag(csWriting, true);
    try {
        component.WriteState(*this);
    } catch (...) {
        component.SetFlag(csWriting, false);
        throw;
    }
    component.SetFlag(csWriting, false);
}

void TWriter::WriteData(TComponent& instance) {
    const TNesting nesting(*this);
    WritePrefix(std::exchange(FFlags, {}), FChildPos, instance.ClassName());
    WriteStr(instance.ClassName());
    WriteStr(instance.Name());
    WriteProperties(instance);
    WriteListEnd();
    if (!IgnoreChildren) WriteChildren(instance);
    WriteListEnd();
}

void TWriter::WriteChildren(TComponent& instance) {
    auto* const ancestor = ClassCast<TComponent>(Ancestor());
    const bool frame = instance.ComponentState().Contains(csInline) && &instance != Root();
    TComponent* const outerRoot = LookupRoot();
    TComponent* const outerAncestor = FLookupAncestor;
    if (frame) {
        SetLookupRoot(&instance);
        FLookupAncestor = ancestor;
    }
    std::vector<const TComponent*> inherited;
    if (ancestor)
        ancestor->GetChildren([&](TComponent& child) { inherited.push_back(&child); },
                              FLookupAncestor ? FLookupAncestor : ancestor);
    const std::unordered_set<const TComponent*> known(inherited.begin(), inherited.end());
    std::size_t next = 0; // of the inherited ones, where reading will have come to
    std::int32_t position = 0;
    const auto write = [&](TComponent& child) {
        TComponent* const old =
            known.empty() ? nullptr : FLookupAncestor->FindComponent(child.Name());
        const bool changes = old && known.count(old) != 0;
        TComponent* model = changes ? old : nullptr;
        FFlags = {};
        if (changes || (frame && !ancestor))
            FFlags.Include(ffInherited);
        else if (child.ComponentState().Contains(csInline)) {
            FFlags.Include(ffInline);
            if (OnFindAncestor) model = OnFindAncestor(*this, child);
        }
        // Reading appends what is new and leaves what it inherits at its place.
        if (next < inherited.size() && inherited[next] != old) FFlags.Include(ffChildPos);
        if (changes) ++next;
        FChildPos = position++;
        SetAncestor(model);
        WriteComponent(child);
    };
    instance.GetChildren(write, LookupRoot());
    SetAncestor(ancestor);
    SetLookupRoot(outerRoot);
    FLookupAncestor = outerAncestor;
}

} // namespace tarn
