// The half of the reader that knows objects: properties, collections, components.
#include "streaming/TReader.h"

#include "rtl/TCollection.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TVariant.h"
#include "rtl/Unicode.h"
#include "rtl/UpdateOnce.h"
#include "streaming/FormValues.h"
#include "vcl/TComponent.h"

#include <limits>

namespace tarn {
namespace {

/// Cuts the text at its first point and returns the front; the rest may be empty.
std::string_view TakeSegment(std::string_view& path) {
    const std::size_t point = path.find('.');
    const std::string_view first = path.substr(0, point);
    path.remove_prefix(point == std::string_view::npos ? path.size() : point + 1);
    return first;
}

/// The component of a dotted name; a root goes by its own name and as "Owner", too.
TComponent* FindNested(TComponent& root, std::string_view path) {
    const std::string_view first = TakeSegment(path);
    TComponent* component = root.FindComponent(first);
    if (!component && (SameText(first, root.Name()) || SameText(first, "Owner"))) component = &root;
    while (component && !path.empty()) component = component->FindComponent(TakeSegment(path));
    return component;
}

} // namespace

/// The roots and the owner of a block's components.
class TReader::TRoots {
public:
    TRoots(TReader& reader, TComponent* root, TComponent* lookupRoot)
        : FReader(reader), FRoot(reader.Root()), FLookupRoot(reader.LookupRoot()) {
        Set(root, lookupRoot);
    }
    TRoots(const TRoots&) = delete;
    TRoots& operator=(const TRoots&) = delete;
    ~TRoots() { Set(FRoot, FLookupRoot); }

private:
    void Set(TComponent* root, TComponent* lookupRoot) {
        FReader.SetRoot(root);
        FReader.SetLookupRoot(lookupRoot);
    }

    TReader& FReader;
    TComponent* FRoot;
    TComponent* FLookupRoot;
};

/// What stands before an object's properties.
struct TReader::THead {
    std::int64_t At = 0; ///< its offset
    TFilerFlags Flags;
    std::int32_t ChildPos = 0;
    std::string ClassName;
    std::string ObjectName;

    std::string_view PathName() const { return ObjectName.empty() ? ClassName : ObjectName; }
};

// --- Errors -----------------------------------------------------------------------------------

bool TReader::Error(std::string_view message) {
    bool handled = false;
    if (OnError) OnError(*this, message, handled);
    return handled;
}

/// Raises the error unless it can be passed over and is.
void TReader::Offer(EReaderError error) {
    if (error.CanContinue() && Error(error.Message())) return;
    // Whoever is further out must not ask again.
    error.SetCanContinue(false);
    throw error;
}

/// The same for an error that knew nothing of the place.
void TReader::Offer(std::int64_t offset, const std::string& path, std::string_view what) {
    Offer(EReaderError(offset, PlaceOf(offset), path, what, true));
}

// --- Properties -------------------------------------------------------------------------------

void TReader::ReadProperties(TPersistent& instance) {
    while (!EndOfList()) ReadProperty(instance);
}

void TReader::ReadProperty(TPersistent& instance) {
    const std::string name = ReadStr();
    ReadNamedProperty(instance, name);
}

void TReader::ReadNamedProperty(TPersistent& instance, std::string_view name) {
    const TPlace place(*this, name);
    const std::int64_t valueAt = Position();
    try {
        ReadNamedProp(instance, name);
        return;
    } catch (const EReaderError& error) {
        Offer(error);
    } catch (const Exception& error) {
        // What a setter raises knows nothing of the place.
        Offer(valueAt, FPath, error.Message());
    }
    SetPosition(valueAt);
    SkipValue();
}

void TReader::ReadNamedProp(TPersistent& instance, std::string_view name) {
    TPersistent* object = &instance;
    for (std::string_view rest = name;;) {
        const std::string_view whole = rest;
        const std::string_view segment = TakeSegment(rest);
        const TPropInfo* const prop = object->ClassType().FindProp(segment);
        if (!prop) {
            if (ReadDefinedProp(*object, whole) || PassOver(instance, name, npUnknown)) return;
            Fail(Format("property %s does not exist", {whole}), true);
        }
        if (rest.empty()) return ReadPropValue(*object, *prop);
        TObject* value = nullptr;
        if (prop->PropType->Kind == tkClass) prop->Get(*object, &value);
        object = ClassCast<TPersistent>(value);
        if (!object) {
            if (PassOver(instance, name, npNoObject)) return;
            Fail(Format("property %s holds no object", {segment}), true);
        }
    }
}

bool TReader::ReadDefinedProp(TPersistent& instance, std::string_view name) {
    const TScopedValue asked(FPropName, name);
    instance.DefineProperties(*this);
    return FPropName.empty();
}

void TReader::DefineProperty(std::string_view name, const TReaderProc& readData, const TWriterProc&,
                             bool) {
    if (FPropName.empty() || !readData || !SameText(name, FPropName)) return;
    readData(*this);
    FPropName = {};
}

void TReader::DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                                   const TStreamProc&, bool) {
    if (!readData) return;
    const auto readBlock = [&readData](TReader& reader) {
        reader.CheckValue(vaBinary);
        TBytesStream stream(reader.ReadBlock());
        readData(stream);
    };
    DefineProperty(name, readBlock, nullptr, false);
}

void TReader::ReadPropValue(TPersistent& instance, const TPropInfo& prop) {
    const TTypeInfo& type = *prop.PropType;
    if (type.Kind == tkClass) return ReadObjectProp(instance, prop);
    if (!prop.Set) {
        if (PassOver(instance, prop.Name, npReadOnly)) return;
        Fail(Format("property %s is read-only", {prop.Name}), true);
    }
    switch (type.Kind) {
    case tkInteger:
    case tkChar:
    case tkWChar:
    case tkEnumeration:
        return Store(instance, prop, ReadOrdinal(type));
    case tkSet:
        return Store(instance, prop, static_cast<std::int32_t>(ReadSet(type)));
    case tkInt64:
        return Store(instance, prop, ReadInt64());
    case tkFloat:
        return Store(instance, prop, ReadFloat());
    case tkString:
    case tkLString:
        return Store(instance, prop, ReadString());
    case tkWString:
        return Store(instance, prop, Utf16ToUtf8(ReadWideString()));
    case tkMethod:
        return Store(instance, prop, ReadMethod(instance, prop));
    case tkVariant:
        return Store(instance, prop, ReadVariant());
    case tkClass:
    case tkUnknown:
        break;
    }
    Fail(Format("property %s has no type that is streamed", {prop.Name}), true);
}

void TReader::StoreProp(TPersistent& instance, const TPropInfo& prop, const void* slot) {
    prop.Set(instance, slot);
}

bool TReader::PassOver(TPersistent&, std::string_view, TNoPlace) {
    return false;
}

std::int32_t TReader::ReadOrdinal(const TTypeInfo& type) {
    if (type.Kind == tkInteger) return ReadIntegerProp(type);
    if (type.Kind == tkChar) return static_cast<unsigned char>(ReadChar());
    const std::int64_t at = Position();
    if (type.Kind == tkWChar) {
        const std::u16string text = ReadWideString();
        if (text.size() != 1) FailAt(at, "one character expected", true);
        return text.front();
    }
    const std::string ident = ReadIdent();
    std::int64_t ordinal = 0;
    if (!FindOrdinal(type, ident, ordinal))
        FailAt(at, Format("'%s' is no value of %s", {ident, type.Name}), true);
    return static_cast<std::int32_t>(ordinal);
}

std::int32_t TReader::ReadIntegerProp(const TTypeInfo& type) {
    const std::int64_t at = Position();
    if (NextValue() == vaIdent) {
        const std::string ident = ReadIdent();
        std::int32_t value = 0;
        if (!IdentToInteger(type, ident, value))
            FailAt(at, Format("'%s' is no value of %s", {ident, type.Name}), true);
        return value;
    }
    const std::int64_t value = ReadInt64();
    // A type of 32 bits takes their number with or without a sign: an unsigned one is stored as the
    // signed one of the same bits, and in a text hexadecimal digits have no sign.
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    const bool isWhole = type.MaxValue - type.MinValue == most;
    if (value < (isWhole ? least : type.MinValue) || value > (isWhole ? most : type.MaxValue))
        FailAt(at, Format("%d is out of the range of %s", {value, type.Name}), true);
    return static_cast<std::int32_t>(value);
}

TRawMethod TReader::ReadMethod(TPersistent& instance, const TPropInfo& prop) {
    const std::int64_t at = Position();
    if (NextValue() == vaNil) {
        ReadValue();
        return {};
    }
    const std::string name = ReadIdent();
    const TRawMethod method = FindMethod(instance, prop, name);
    if (!method.Code) FailAt(at, Format("no method named %s", {name}), true);
    return method;
}

TRawMethod TReader::FindMethod(TPersistent& instance, const TPropInfo& prop,
                               std::string_view name) {
    TRawMethod method;
    if (OnFindMethod) OnFindMethod(*this, instance, prop, name, method);
    return method;
}

TVariant TReader::ReadVariant() {
    const TValueType type = NextValue();
    if (type == vaTrue || type == vaFalse) return ReadBoolean();
    if (type == vaNull || type == vaNil) {
        ReadValue();
        return {};
    }
    if (IsText(type)) return ReadString();
    if (IsInteger(type)) return ReadInt64();
    return ReadFloat();
}

void TReader::ReadObjectProp(TPersistent& instance, const TPropInfo& prop) {
    const std::int64_t at = Position();
    const TValueType type = NextValue();
    if (type == vaCollection) {
        TObject* value = nullptr;
        prop.Get(instance, &value);
        auto* const collection = ClassCast<TCollection>(value);
        if (!collection) Fail(Format("property %s holds no collection", {prop.Name}), true);
        ReadValue();
        return ReadCollection(*collection);
    }
    if (!prop.Set) Fail(Format("property %s is read-only", {prop.Name}), true);
    if (type == vaNil) {
        ReadValue();
        return Store<TObject*>(instance, prop, nullptr);
    }
    std::string name = ReadIdent();
    FFixups.push_back({&instance, &prop, Root(), LookupRoot(), std::move(name), FPath, at});
}

void TReader::ReadCollection(TCollection& collection) {
    const TNesting nesting(*this);
    UpdateOnce(collection, [&] {
        collection.Clear();
        for (int index = 0; !EndOfList(); ++index) {
            const TPlace place(*this, index);
            if (IsInteger(NextValue())) ReadInt64();
            ReadListBegin();
            ReadItem(collection);
            ReadListEnd();
        }
        ReadListEnd();
    });
}

void TReader::ReadItem(TCollection& collection) {
    ReadProperties(*collection.Add());
}

// --- References -------------------------------------------------------------------------------

void TReader::TReferences::Close() {
    if (FReader.FReferenceBrackets > 1) return;
    FReader.SetReferences();
    FReader.FinishLoading();
}

TReader::TReferences::~TReferences() {
    if (--FReader.FReferenceBrackets == 0) FReader.Forget();
}

void TReader::SetReferences() {
    for (const TFixup& fixup : FFixups) SetReference(fixup);
    FFixups.clear();
}

void TReader::SetReference(const TFixup& fixup) {
    TPersistent* const instance = fixup.Instance.Get();
    if (!instance) return;
    const TRoots roots(*this, fixup.Root.Get(), fixup.LookupRoot.Get());
    TComponent* const component = FindReference(fixup.Name);
    const TClassRecord* const wanted = fixup.Prop->PropType->Class;
    std::string what;
    if (!component)
        what = Format("no component named %s", {fixup.Name});
    else if (wanted && !component->InheritsFrom(*wanted))
        what = Format("%s is a %s, not a %s", {fixup.Name, component->ClassName(), wanted->Name});
    try {
        if (what.empty()) return Store<TObject*>(*instance, *fixup.Prop, component);
    } catch (const Exception& error) {
        what = error.Message();
    }
    Offer(fixup.Offset, fixup.Path, what);
}

TComponent* TReader::FindReference(std::string_view name) {
    std::string path(name);
    if (OnReferenceName) OnReferenceName(*this, path);
    for (TComponent* root : {LookupRoot(), Root()})
        if (TComponent* const found = root ? FindNested(*root, path) : nullptr) return found;
    TComponent* component = nullptr;
    if (OnFindComponent) OnFindComponent(*this, path, component);
    return component;
}

void TReader::FinishLoading() {
    // What Loaded does may read more.
    for (std::size_t i = 0; i < FLoaded.size(); ++i)
        if (TComponent* const component = FLoaded[i].Get()) {
            component->SetFlag(csLoading, false);
            component->Loaded();
        }
    FLoaded.clear();
}

void TReader::Forget() {
    for (const TWeak<TComponent>& component : FLoaded)
        if (component) component->SetFlag(csLoading, false);
    FLoaded.clear();
    FFixups.clear();
}

// --- Components -------------------------------------------------------------------------------

TReader::THead TReader::ReadHead() {
    THead head;
    head.At = Position();
    ReadPrefix(head.Flags, head.ChildPos);
    head.ClassName = ReadStr();
    if (head.ClassName.empty()) FailAt(head.At, "an object without a class");
    head.ObjectName = ReadStr();
    return head;
}

TComponent* TReader::ReadRootComponent(TComponent* root) {
    ReadSignature();
    const THead head = ReadHead();
    const TPlace place(*this, head.PathName());
    std::unique_ptr<TComponent> made;
    if (!root) {
        made = CreateNew(head);
        root = made.get();
    }
    TReferences references(*this);
    const TRoots roots(*this, root, root);
    ReadInto(*root, head);
    references.Close();
    (void)made.release();
    return root;
}

void TReader::ReadAsComponent(TPersistent& object) {
    ReadSignature();
    const THead head = ReadHead();
    const TPlace place(*this, head.PathName());
    const TNesting nesting(*this);
    TReferences references(*this);
    auto* const root = ClassCast<TComponent>(&object);
    const TRoots roots(*this, root, root);
    ReadProperties(object);
    ReadListEnd();
    while (!EndOfList()) SkipComponent(true);
    ReadListEnd();
    references.Close();
}

TComponent* TReader::ReadComponent() {
    const THead head = ReadHead();
    const TPlace place(*this, head.PathName());
    TComponent* component = nullptr;
    try {
        component = &ChildOf(head);
    } catch (const EReaderError& error) {
        Offer(error);
        SkipComponent(false);
        return nullptr;
    }
    ReadInto(*component, head);
    if (head.Flags.Contains(ffChildPos) && Parent) Parent->SetChildOrder(*component, head.ChildPos);
    return component;
}

TComponent& TReader::ChildOf(const THead& head) {
    if (head.Flags.Contains(ffInherited)) return FindInherited(head);
    std::unique_ptr<TComponent> component = CreateNew(head);
    if (head.Flags.Contains(ffInline)) component->SetInline(true);
    if (Owner) Owner->InsertComponent(component.get());
    TComponent& child = *component.release();
    child.SetParentComponent(Parent);
    return child;
}

TComponent& TReader::FindInherited(const THead& head) {
    for (TComponent* owner : {LookupRoot(), Owner})
        if (TComponent* const found = owner ? owner->FindComponent(head.ObjectName) : nullptr)
            return *found;
    FailAt(head.At, Format("no component named %s to inherit", {head.ObjectName}), true);
}

std::unique_ptr<TComponent> TReader::CreateNew(const THead& head) {
    const TClassRecord* const record = FindComponentClass(head.ClassName);
    if (!record || !record->InheritsFrom(TComponent::ClassRecord))
        FailAt(head.At, Format("no component class named %s", {head.ClassName}), true);
    TComponent* made = nullptr;
    if (OnCreateComponent) OnCreateComponent(*this, *record, made);
    if (!made && !record->Create) FailAt(head.At, Format("%s is abstract", {head.ClassName}), true);
    if (!made) made = static_cast<TComponent*>(record->Create().release());
    return std::unique_ptr<TComponent>(made);
}

const TClassRecord* TReader::FindComponentClass(std::string_view className) {
    const TClassRecord* found = nullptr;
    if (OnFindComponentClass) OnFindComponentClass(*this, className, found);
    if (found) return found;
    for (const TClassRecord* record = Root() ? &Root()->ClassType() : nullptr; record;
         record = record->Parent)
        for (const TClassRecord* each : record->FieldClasses)
            if (SameText(each->Name, className)) return each;
    return GetClass(className);
}

void TReader::SetName(TComponent& component, std::string& name) {
    if (OnSetName) OnSetName(*this, component, name);
    component.SetName(name);
}

void TReader::GiveName(TComponent& component, const THead& head) {
    if (head.ObjectName.empty() || head.Flags.Contains(ffInherited)) return;
    std::string name = head.ObjectName;
    try {
        SetName(component, name);
    } catch (const EComponentError& error) {
        Offer(head.At, FPath, error.Message());
    }
}

void TReader::ReadInto(TComponent& component, const THead& head) {
    const TNesting nesting(*this);
    FLoaded.emplace_back(&component);
    component.SetFlag(csLoading, true);
    component.SetFlag(csReading, true);
    const TWeak<TComponent> weak(&component);
    const auto finish = [](const TWeak<TComponent>* read) {
        if (*read) (*read)->SetFlag(csReading, false);
    };
    const std::unique_ptr<const TWeak<TComponent>, decltype(finish)> reading(&weak, finish);
    GiveName(component, head);
    component.ReadState(*this);
}

void TReader::ReadData(TComponent& instance) {
    ReadProperties(instance);
    ReadListEnd();
    // Inside a frame, names are those of the frame.
    const bool frame = instance.ComponentState().Contains(csInline) && &instance != Root();
    const TRoots roots(*this, Root(), frame ? &instance : LookupRoot());
    TComponent* const owner = instance.GetChildOwner();
    const TScopedValue childOwner(Owner, owner ? owner : LookupRoot());
    const TScopedValue childParent(Parent, instance.GetChildParent());
    while (!EndOfList()) {
        if (IgnoreChildren)
            SkipComponent(true);
        else
            ReadComponent();
    }
    ReadListEnd();
}

} // namespace tarn
