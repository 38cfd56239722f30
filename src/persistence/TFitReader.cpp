#include "TFitReader.h"

#include "PropRecords.h"
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
        FJournal->AddProp(instance, prop, slot);
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
        FJournal->Add(std::make_unique<TBlockChange>(readData, writeData, BytesSince(at),
                                                     PlaceOf(at), Path()));
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
    // Their items stand for things of the program, and are stored as blocks.
    if (collection.InheritsFrom(TFixedCollection::ClassRecord) ||
        collection.InheritsFrom(TFreeCollection::ClassRecord))
        Fail(Format("a %s is no plain collection", {collection.ClassName()}), true);
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
    if (root) Put(root->UnplacedProps, MergedPropRecords(root->UnplacedProps, unplaced));
}

// --- Keyed collections ------------------------------------------------------------------------

/// A keyed collection while stored items are merged into it. Most files have the items in the order
/// in which they stand: what finds and moves others is made for the first one that does not.
class TFitReader::TKeyedLoad {
public:
    TKeyedLoad(TSpcCollection& collection, bool keepOrder)
        : FCollection(collection), FUpdateProp(collection.UpdateProp()), FKeepOrder(keepOrder) {}

    /// The index of the item of that identifier; -1 when there is none.
    int Find(const std::string& ident) {
        if (!FCollection.UnplacedItems.empty()) FStored.insert(LowerCase(ident));
        int index = FLast + 1;
        if (index >= FCollection.Count() || !SameText(IdentOf(index), ident) || !FIndexed.empty())
            index = FindIndexed(LowerCase(ident));
        if (index >= 0) FLast = index;
        return index;
    }
    /// Notes that an item stood at a position of the stream.
    void Place(int index, int position) {
        const int place = std::min(position, FCollection.Count() - 1);
        if (!FKeepOrder || (FPlaces.empty() && index == place)) return;
        if (FPlaces.empty()) BuildOrder();
        TPlaced& placed = FPlaces[static_cast<std::size_t>(index)];
        if (FOrder.IndexOf(placed) == place) return;
        FOrder.Remove(placed);
        FOrder.Insert(place, placed);
    }
    void AddUnplaced(TUnplacedItem item) { FUnplaced.push_back(std::move(item)); }

    bool IsMoved() const { return !FPlaces.empty(); }
    std::vector<TCollectionItem*> Order() const {
        std::vector<TCollectionItem*> order;
        order.reserve(FPlaces.size());
        for (const TPlaced* placed = FOrder.First(); placed; placed = FOrder.Next(*placed))
            order.push_back(placed->Item);
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
    struct TPlaced : TSequenceNode {
        TSpcItem* Item = nullptr;
    };

    const std::string& IdentOf(int index) {
        FUpdateProp.Get(*FCollection.Items(index), &FIdent);
        return FIdent;
    }
    int FindIndexed(const std::string& folded) {
        // Of equal identifiers the first counts.
        if (FIndexed.empty())
            for (int i = 0; i < FCollection.Count(); ++i)
                FIndexed.emplace(LowerCase(IdentOf(i)), i);
        const auto found = FIndexed.find(folded);
        return found == FIndexed.end() ? -1 : found->second;
    }
    void BuildOrder() {
        FPlaces = std::vector<TPlaced>(static_cast<std::size_t>(FCollection.Count()));
        std::vector<TSequenceNode*> nodes;
        nodes.reserve(FPlaces.size());
        for (TPlaced& placed : FPlaces) {
            placed.Item = FCollection.Items(static_cast<int>(nodes.size()));
            nodes.push_back(&placed);
        }
        FOrder.Build(nodes);
    }

    TSpcCollection& FCollection;
    const TPropInfo& FUpdateProp;
    bool FKeepOrder;
    int FLast = -1;     ///< the index of the item found last
    std::string FIdent; ///< of the item looked at last
    std::unordered_map<std::string, int> FIndexed;
    std::vector<TPlaced> FPlaces; ///< by index; empty while no item has moved
    TSequence<TPlaced> FOrder;
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
            old.reserve(order.size());
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
                if (const int found = load.Find(ident); found >= 0) {
                    ReadKeyedItem(*collection.Items(found), key);
                    load.Place(found, position);
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
        if (SameText(ReadShortText(), key)) {
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

bool TFitReader::NextPropIs(std::string_view name) {
    const std::int64_t at = Position();
    const bool same = SameText(ReadShortText(), name);
    SetPosition(at);
    return same;
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
        if (NextPropIs(key))
            SkipProperty();
        else
            ReadProperty(item);
    }
    if (!unplaced.empty() || !item.UnplacedProps.empty())
        Put(item.UnplacedProps, MergedPropRecords(item.UnplacedProps, unplaced));
}

void DefineKeyedCollection(TFiler& filer, std::string_view name, TSpcCollection& collection,
                           bool byObjectID) {
    const auto read = [&](TReader& reader) {
        auto* const fit = dynamic_cast<TFitReader*>(&reader);
        if (!fit) throw EFilerError(Format("%s is read by a TFitReader only", {name}));
        const TScopedValue inside(fit->FDefinesKeyed, false);
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
