#include "TFitWriter.h"

#include "TSpcCollection.h"
#include "rtl/SysUtils.h"

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
    // What belongs to a sub-object was kept with the item or the root that it stands in.
    if (!PropPath().empty()) return;
    if (const std::string* const unplaced = UnplacedPropsOf(instance)) WriteRaw(*unplaced);
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
            WriteRaw(kept->Props);
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

bool TFilteringWriter::Passes(std::string_view name) const {
    return !OnFilter || !FInstance || OnFilter(*FInstance, PropPath() + std::string(name));
}

void TFilteringWriter::WriteProperties(TPersistent& instance) {
    const TScopedValue object(FInstance, &instance);
    TFitWriter::WriteProperties(instance);
}

void TFilteringWriter::WriteProperty(TPersistent& instance, const TPropInfo& prop) {
    if (Passes(prop.Name)) TFitWriter::WriteProperty(instance, prop);
}

void TFilteringWriter::DefineProperty(std::string_view name, const TReaderProc& readData,
                                      const TWriterProc& writeData, bool hasData) {
    if (Passes(name)) TFitWriter::DefineProperty(name, readData, writeData, hasData);
}

void TFilteringWriter::DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                                            const TStreamProc& writeData, bool hasData) {
    if (Passes(name)) TFitWriter::DefineBinaryProperty(name, readData, writeData, hasData);
}

} // namespace tarn
