#include "TFitReader.h"

#include "SpcStrings.h"
#include "TFitWriter.h"
#include "TLoadJournal.h"
#include "TSequence.h"
#include "TSpcCollection.h"
#include "qsLocale.h"
#include "rtl/TMemoryStream.h"
#include "rtl/UpdateOnce.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace tarn {

template <class T> void TFitReader::Put(T& place, T value) {
    if (!FJournal) {
        place = std::move(value);
        return;
    }
    FJournal->Add(std::make_unique<TSwapChange>(
        [&place, value = std::move(value)]() mutable { std::swap(place, value); }));
}

// --- Properties -------------------------------------------------------------------------------

void TFitReader::StoreProp(TPersistent& instance, const TPropInfo& prop, const void* slot) {
    if (FJournal)
        FJournal->Add(std::make_unique<TPropChange>(instance, prop, slot));
    else
        TReader::StoreProp(instance, prop, slot);
}

void TFitReader::ReadProperty(TPersistent& instance) {
    FPropAt = Position();
    TReader::ReadProperty(instance);
}

bool TFitReader::PassOver(TPersistent&, std::string_view, TNoPlace reason) {
    const bool kept = reason != npReadOnly;
    if (kept && !FKeepsUnplaced) return false;
    const std::int64_t at = FPropAt;
    SkipValue();
    if (kept && FUnplaced) FUnplaced->append(BytesSince(at));
    return true;
}

void TFitReader::DefineProperty(std::string_view name, const TReaderProc& readData,
                                const TWriterProc& writeData, bool hasData) {
    if (!FJournal || FDefinesKeyed || !readData)
        return TReader::DefineProperty(name, readData, writeData, hasData);
    const auto defer = [&](TReader&) {
        const std::int64_t at = Position();
        SkipValue();
        FJournal->Add(std::make_unique<TBlockChange>(readData, writeData, BytesSince(at)));
    };
    TReader::DefineProperty(name, defer, writeData, hasData);
}

void TFitReader::DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                                      const TStreamProc& writeData, bool hasData) {
    if (!FJournal || !readData)
        return TReader::DefineBinaryProperty(name, readData, writeData, hasData);
    const auto read = [readData](TReader& reader) {
        reader.CheckValue(vaBinary);
        TBytesStream stream(reader.ReadBlock());
        readData(stream);
    };
    TWriterProc write;
    if (writeData) write = [writeData](TWriter& writer) { writer.WriteBinary(writeData); };
    DefineProperty(name, read, write, hasData);
}

void TFitReader::ReadCollection(TCollection& collection) {
    if (!FJournal) return TReader::ReadCollection(collection);
    const auto beside = std::make_shared<TCollection>(collection.ItemClass());
    {
        const TScopedValue direct(FJournal, nullptr);
        TReader::ReadCollection(*beside);
    }
    FJournal->Add(
        std::make_unique<TSwapChange>([&collection, beside] { collection.SwapItems(*beside); }));
}

void TFitReader::ReadItem(TCollection& collection) {
    // A plain item has nowhere to keep what has no place in it.
    const TScopedValue unplaced(FUnplaced, nullptr);
    TReader::ReadItem(collection);
}

void TFitReader::ReadAsComponent(TPersistent& object) {
    auto* const root = ClassCast<TCustomSpcObject>(&object);
    std::string unplaced;
    const TScopedValue owner(FUnplaced, root ? &unplaced : nullptr);
    TReader::ReadAsComponent(object);
    if (root) Put(root->UnplacedProps, std::move(unplaced));
}

// --- Keyed collections ------------------------------------------------------------------------

/// A keyed collection while stored items are merged into it.
class TFitReader::TKeyedLoad {
public:
    struct TKeyed : TSequenceNode {
        TSpcItem* Item = nullptr;
    };

    TKeyedLoad(TSpcCollection& collection, bool keepOrder)
        : FCollection(collection), FItems(static_cast<std::size_t>(collection.Count())) {
        const TPropInfo& prop = collection.UpdateProp();
        std::vector<TSequenceNode*> nodes;
        std::string ident;
        for (TKeyed& keyed : FItems) {
            keyed.Item = collection.Items(static_cast<int>(nodes.size()));
            nodes.push_back(&keyed);
            prop.Get(*keyed.Item, &ident);
            FByIdent.emplace(LowerCase(ident), &keyed); // of equal ones the first counts
        }
        if (keepOrder) FOrder.Build(nodes);
    }

    TKeyed* Find(std::string_view ident) {
        const std::string folded = LowerCase(ident);
        if (!FCollection.UnplacedItems.empty()) FStored.insert(folded);
        const auto found = FByIdent.find(folded);
        return found == FByIdent.end() ? nullptr : found->second;
    }
    /// Notes that an item stood at a position of the stream.
    void Place(TKeyed& keyed, int position) {
        if (FOrder.Count() == 0) return;
        const int place = std::min(position, FOrder.Count() - 1);
        if (FOrder.IndexOf(keyed) == place) return;
        FOrder.Remove(keyed);
        FOrder.Insert(place, keyed);
        FMoved = true;
    }
    void AddUnplaced(TUnplacedItem item) { FUnplaced.push_back(std::move(item)); }

    bool IsMoved() const { return FMoved; }
    std::vector<TCollectionItem*> Order() const {
        std::vector<TCollectionItem*> order;
        order.reserve(FItems.size());
        for (const TKeyed* keyed = FOrder.First(); keyed; keyed = FOrder.Next(*keyed))
            order.push_back(keyed->Item);
        return order;
    }
    /// The items without a partner, together with those from former loads that the stream does not
    /// mention.
    std::vector<TUnplacedItem> Unplaced() {
        for (const TUnplacedItem& item : FCollection.UnplacedItems)
            if (FStored.count(LowerCase(item.Ident)) == 0) FUnplaced.push_back(item);
        std::stable_sort(FUnplaced.begin(), FUnplaced.end(),
                         [](const auto& a, const auto& b) { return a.Position < b.Position; });
        return std::move(FUnplaced);
    }

private:
    TSpcCollection& FCollection;
    std::vector<TKeyed> FItems;
    std::unordered_map<std::string, TKeyed*> FByIdent;
    TSequence<TKeyed> FOrder; ///< empty when the order is not kept
    bool FMoved = false;
    std::unordered_set<std::string> FStored; ///< the identifiers in the stream
    std::vector<TUnplacedItem> FUnplaced;
};

void TFitReader::ReadFreeCollection(TSpcCollection& collection, bool keepOrder) {
    ReadKeyed(collection, "AObjectID", true, keepOrder);
}

void TFitReader::ReadFixedCollection(TSpcCollection& collection, bool keepOrder) {
    ReadKeyed(collection, collection.GetUpdateName(), false, keepOrder);
}

void TFitReader::ReadKeyed(TSpcCollection& collection, std::string_view key, bool keyFirst,
                           bool keepOrder) {
    const TNesting nesting(*this);
    TKeyedLoad load(collection, keepOrder);
    const auto reorder = [&] {
        if (!load.IsMoved()) return;
        if (!FJournal) return collection.Reorder(load.Order());
        FJournal->Add(std::make_unique<TSwapChange>([&collection, order = load.Order()]() mutable {
            std::vector<TCollectionItem*> old;
            for (int i = 0; i < collection.Count(); ++i) old.push_back(collection.Items(i));
            collection.Reorder(order);
            order = std::move(old);
        }));
    };
    UpdateOnce(collection, [&] {
        CheckValue(vaCollection);
        try {
            for (int position = 0; !EndOfList(); ++position) {
                const TPlace place(*this, position);
                if (IsInteger(NextValue())) ReadInt64();
                ReadListBegin();
                const std::int64_t at = Position();
                std::string ident = ReadIdent(key, keyFirst);
                if (TKeyedLoad::TKeyed* const found = load.Find(ident)) {
                    ReadKeyedItem(*found->Item, key);
                    load.Place(*found, position);
                } else {
                    while (!EndOfList()) SkipProperty();
                    load.AddUnplaced({std::move(ident), position, std::string(BytesSince(at))});
                }
                ReadListEnd();
            }
        } catch (...) {
            // What was read before an error stays, in a load that keeps it, and so does its order.
            if (!FJournal) reorder();
            throw;
        }
        ReadListEnd();
        reorder();
    });
    Put(collection.UnplacedItems, load.Unplaced());
}

/// The identifier of the stored item that begins here; the reader stays where it is.
std::string TFitReader::ReadIdent(std::string_view key, bool keyFirst) {
    const std::int64_t at = Position();
    while (!EndOfList()) {
        if (SameText(ReadStr(), key)) {
            std::string ident = ReadString();
            SetPosition(at);
            return ident;
        }
        if (keyFirst) break;
        SkipValue();
    }
    throw EFitReaderError(at, PlaceOf(at), Path(), Format(LocaleStr(strPropertyNotFound), {key}),
                          false);
}

std::string TFitReader::PeekName() {
    const std::int64_t at = Position();
    std::string name = ReadStr();
    SetPosition(at);
    return name;
}

void TFitReader::ReadKeyedItem(TSpcItem& item, std::string_view key) {
    std::string unplaced;
    const TScopedValue owner(FUnplaced, &unplaced);
    item.PutAbsent([&](std::string_view name, std::string_view text) {
        const std::string value(text);
        StoreProp(item, *item.ClassType().FindProp(name), &value);
    });
    while (!EndOfList()) {
        // The program's spelling of an identifier counts.
        if (SameText(PeekName(), key))
            SkipProperty();
        else
            ReadProperty(item);
    }
    Put(item.UnplacedProps, std::move(unplaced));
}

void DefineKeyedCollection(TFiler& filer, std::string_view name, TSpcCollection& collection,
                           bool byObjectID) {
    const auto read = [&](TReader& reader) {
        auto* const fit = dynamic_cast<TFitReader*>(&reader);
        if (!fit) throw EFilerError(Format("%s is read by a TFitReader only", {name}));
        if (byObjectID)
            fit->ReadFreeCollection(collection, true);
        else
            fit->ReadFixedCollection(collection, true);
    };
    const auto write = [&](TWriter& writer) {
        auto* const fit = dynamic_cast<TFitWriter*>(&writer);
        if (fit && !byObjectID)
            fit->WriteCollectionEx(collection);
        else
            writer.WriteCollection(collection);
    };
    auto* const fit = dynamic_cast<TFitReader*>(&filer);
    if (!fit) return filer.DefineProperty(name, read, write, true);
    const TScopedValue keyed(fit->FDefinesKeyed, true);
    filer.DefineProperty(name, read, write, true);
}

} // namespace tarn
