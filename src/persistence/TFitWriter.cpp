#include "TFitWriter.h"

#include "PropRecords.h"
#include "TSpcCollection.h"
#include "rtl/SysUtils.h"
#include "rtl/TStrings.h"

#include <unordered_set>

namespace tarn {
namespace {

/// What an object keeps that has no place in it; null when it can keep nothing.
const std::string* UnplacedPropsOf(TPersistent& object) {
    if (const auto* const item = dynamic_cast<const TSpcItem*>(&object))
        return &item->UnplacedProps;
    if (const auto* const spc = dynamic_cast<const TCustomSpcObject*>(&object))
        return &spc->UnplacedProps;
    return nullptr;
}

} // namespace

bool TFitWriter::IsStoredProp(TPersistent& instance, const TPropInfo& prop) {
    if (!prop.Get || (prop.IsStored && !prop.IsStored(instance))) return false;
    return prop.Set || prop.PropType->Kind == tkClass;
}

void TFitWriter::WriteProperties(TPersistent& instance) {
    TWriter::WriteProperties(instance);
    // An empty list leaves itself out, but it is to replace one that is not empty.
    if (const auto* const strings = dynamic_cast<const TStrings*>(&instance);
        strings && strings->IsEmpty()) {
        const auto writeNone = [](TWriter& writer) {
            writer.WriteListBegin();
            writer.WriteListEnd();
        };
        DefineProperty("Strings", nullptr, writeNone, true);
    }
    // What belongs to a sub-object was kept with the item or the root that it stands in.
    if (!PropPath().empty()) return;
    if (const std::string* const unplaced = UnplacedPropsOf(instance)) WriteKept(*unplaced, {});
}

void TFitWriter::WriteKept(std::string_view records, std::string_view) {
    WriteRaw(records);
}

void TFitWriter::WriteCollection(TCollection& collection) {
    TWriter::WriteCollection(collection);
}

void TFitWriter::WriteCollectionEx(TCollection& collection) {
    WriteCollection(collection);
}

void TFitWriter::WriteItems(TCollection& collection) {
    const auto* const keyed = dynamic_cast<const TSpcCollection*>(&collection);
    if (!keyed || keyed->UnplacedItems.empty()) return TWriter::WriteItems(collection);

    // An item that has come since stands for the one that was kept.
    std::unordered_set<std::string> present;
    const TPropInfo& prop = keyed->UpdateProp();
    std::string ident;
    for (int i = 0; i < keyed->Count(); ++i) {
        prop.Get(*keyed->Items(i), &ident);
        present.insert(LowerCase(ident));
    }
    auto kept = keyed->UnplacedItems.begin();
    int position = 0;
    const auto writeKept = [&](bool all) {
        for (; kept != keyed->UnplacedItems.end() && (all || kept->Position <= position); ++kept) {
            if (present.count(LowerCase(kept->Ident)) != 0) continue;
            WriteListBegin();
            WriteKept(kept->Props, prop.Name);
            WriteListEnd();
            ++position;
        }
    };
    for (int i = 0; i < keyed->Count(); ++i) {
        writeKept(false);
        WriteItem(*keyed->Items(i));
        ++position;
    }
    writeKept(true);
}

// --- Some of the properties -------------------------------------------------------------------

namespace {

/// Whether a property tells the item from the others of its collection.
bool IsKey(const TPersistent& instance, std::string_view prop) {
    const auto* const item = dynamic_cast<const TSpcItem*>(&instance);
    const auto* const keyed =
        item ? dynamic_cast<const TSpcCollection*>(item->Collection()) : nullptr;
    return keyed && SameText(prop, keyed->GetUpdateName());
}

} // namespace

void TFilteringWriter::Filter(const TPersistent& instance, std::string_view path,
                              const std::function<void()>& write) {
    if (!OnFilter || OnFilter(instance, path)) write();
}

void TFilteringWriter::Offer(std::string_view name, const std::function<void()>& write) {
    const std::string path = PropPath() + std::string(name);
    const TScopedValue place(FPlace, FCollectionPath + path);
    Filter(*FInstance, path, write);
}

void TFilteringWriter::WriteProperties(TPersistent& instance) {
    const TScopedValue object(FInstance, &instance);
    TFitWriter::WriteProperties(instance);
}

void TFilteringWriter::WriteProperty(TPersistent& instance, const TPropInfo& prop) {
    const auto write = [&] { TFitWriter::WriteProperty(instance, prop); };
    if (IsKey(instance, prop.Name))
        write();
    else
        Offer(prop.Name, write);
}

void TFilteringWriter::DefineProperty(std::string_view name, const TReaderProc& readData,
                                      const TWriterProc& writeData, bool hasData) {
    Offer(name, [&] { TFitWriter::DefineProperty(name, readData, writeData, hasData); });
}

void TFilteringWriter::DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                                            const TStreamProc& writeData, bool hasData) {
    Offer(name, [&] { TFitWriter::DefineBinaryProperty(name, readData, writeData, hasData); });
}

void TFilteringWriter::WriteCollection(TCollection& collection) {
    const TScopedValue object(FInstance, &collection);
    const TScopedValue path(FCollectionPath, FPlace + '.');
    TFitWriter::WriteCollection(collection);
}

void TFilteringWriter::WriteKept(std::string_view records, std::string_view key) {
    ForEachPropRecord(records, [&](std::string_view name, std::string_view record) {
        const auto write = [&] { WriteRaw(record); };
        if (SameText(name, key))
            write();
        else
            Offer(name, write);
    });
}

} // namespace tarn
