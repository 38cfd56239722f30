#include "rtl/TCollection.h"

#include "rtl/SysUtils.h"

#include <algorithm>

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
    ChangeItems([this] {
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

void TCollection::Assign(const TPersistent* source) {
    const auto* collection = dynamic_cast<const TCollection*>(source);
    if (!collection) {
        TPersistent::Assign(source);
        return;
    }
    if (collection == this) return;
    ChangeItems([&] {
        Clear();
        for (int i = 0; i < collection->Count(); ++i) Add()->Assign(collection->Items(i));
    });
}

} // namespace tarn
