#include "rtl/TCollection.h"

#include "rtl/SysUtils.h"
#include "rtl/UpdateOnce.h"

#include <algorithm>
#include <unordered_map>

namespace tarn {

constinit const TClassRecord TCollectionItem::ClassRecord{"TCollectionItem",
                                                          &TPersistent::ClassRecord};
constinit const TClassRecord TCollection::ClassRecord{"TCollection", &TPersistent::ClassRecord};

int TCollectionItem::Index() const {
    return FCollection ? FCollection->IndexOf(this) : -1;
}

void TCollectionItem::SetIndex(int value) {
    if (FCollection) FCollection->Move(Index(), std::min(value, FCollection->Count() - 1));
}

void TCollectionItem::Changed(bool allItems) {
    if (FCollection && FCollection->FUpdateCount == 0)
        FCollection->Update(allItems ? nullptr : this);
}

void TCollection::EndUpdate() {
    if (--FUpdateCount == 0) Update(nullptr);
}

void TCollection::Update(TCollectionItem*) {}

void TCollection::Changed() {
    if (FUpdateCount == 0) Update(nullptr);
}

TCollectionItem* TCollection::Items(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return FItems[static_cast<std::size_t>(index)].get();
}

int TCollection::IndexOf(const TCollectionItem* item) const {
    const auto found = std::find_if(FItems.begin(), FItems.end(),
                                    [item](const auto& owned) { return owned.get() == item; });
    return found == FItems.end() ? -1 : static_cast<int>(found - FItems.begin());
}

TCollectionItem* TCollection::Insert(int index) {
    if (index < 0 || index > Count()) throw EListError(Format(SListIndexError, {index}));
    auto item = FItemClass.Create();
    item->FCollection = this;
    TCollectionItem* const added = FItems.insert(FItems.begin() + index, std::move(item))->get();
    Changed();
    return added;
}

void TCollection::Delete(int index) {
    (void)Items(index);
    // The item leaves the list first, so that its destructor sees a list without it.
    const auto place = FItems.begin() + index;
    std::unique_ptr<TCollectionItem> item = std::move(*place);
    FItems.erase(place);
    item.reset();
    Changed();
}

void TCollection::Clear() {
    if (FItems.empty()) return;
    UpdateOnce(*this, [this] {
        while (!FItems.empty()) Delete(Count() - 1);
    });
}

void TCollection::Move(int curIndex, int newIndex) {
    (void)Items(curIndex);
    (void)Items(newIndex);
    const auto from = FItems.begin() + curIndex;
    const auto to = FItems.begin() + newIndex;
    if (from < to)
        std::rotate(from, from + 1, to + 1);
    else
        std::rotate(to, from, from + 1);
    Changed();
}

void TCollection::Reorder(std::span<TCollectionItem* const> order) {
    std::unordered_map<const TCollectionItem*, std::size_t> places;
    for (std::size_t i = 0; i < FItems.size(); ++i) places.emplace(FItems[i].get(), i);
    std::vector<std::size_t> from;
    for (const TCollectionItem* const item : order) {
        const auto place = places.find(item);
        if (place == places.end()) throw EListError("no item of the list, or named twice");
        from.push_back(place->second);
        places.erase(place);
    }
    if (!places.empty()) throw EListError("an order that leaves out an item");
    std::vector<std::unique_ptr<TCollectionItem>> items;
    items.reserve(from.size());
    for (const std::size_t place : from) items.push_back(std::move(FItems[place]));
    FItems = std::move(items);
    Changed();
}

void TCollection::SwapItems(TCollection& other) {
    if (FItemClass != other.FItemClass) throw EListError("items of another class");
    FItems.swap(other.FItems);
    for (TCollection* const each : {this, &other})
        for (const auto& item : each->FItems) item->FCollection = each;
    Changed();
    other.Changed();
}

void TCollection::Assign(const TPersistent* source) {
    const auto* collection = dynamic_cast<const TCollection*>(source);
    if (!collection) {
        TPersistent::Assign(source);
        return;
    }
    if (collection == this) return;
    UpdateOnce(*this, [&] {
        Clear();
        for (int i = 0; i < collection->Count(); ++i) Add()->Assign(collection->Items(i));
    });
}

} // namespace tarn
