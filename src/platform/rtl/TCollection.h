#pragma once

#include "rtl/TObject.h"

#include <span>
#include <vector>

namespace tarn {

class TCollection;

/// An item of a collection. The collection owns it.
class TCollectionItem : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TCollection* Collection() const { return FCollection; }
    /// The item's place, -1 outside a collection.
    int Index() const;
    /// Moves the item; a place behind the end is the end.
    void SetIndex(int value);

protected:
    /// Tells the collection that this item has another state, or all may have.
    void Changed(bool allItems);

private:
    friend class TCollection;
    TCollection* FCollection = nullptr;
};

/// An ordered list of items of one class, which it creates and owns.
class TCollection : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCollection(TClassRef<TCollectionItem> itemClass) : FItemClass(itemClass) {}
    ~TCollection() override { Clear(); }

    TClassRef<TCollectionItem> ItemClass() const { return FItemClass; }
    int Count() const { return static_cast<int>(FItems.size()); }
    TCollectionItem* Items(int index) const; ///< raises EListError outside the list
    int IndexOf(const TCollectionItem* item) const;

    TCollectionItem* Add() { return Insert(Count()); }
    TCollectionItem* Insert(int index);
    void Delete(int index);
    void Clear(); ///< frees the items from the last to the first
    void Move(int curIndex, int newIndex);
    /// Puts all items into another order, which names each of them once. Raises EListError when it
    /// does not; the items stay then.
    void Reorder(std::span<TCollectionItem* const> order);
    /// Exchanges the items with those of a collection of the same item class.
    void SwapItems(TCollection& other);

    /// Between the two no change is reported; the pairs nest, and the last EndUpdate reports one.
    /// See UpdateOnce.
    void BeginUpdate() { ++FUpdateCount; }
    void EndUpdate();

    /// Makes this collection's items copies of the other's, one for one.
    void Assign(const TPersistent* source) override;

protected:
    /// Something has changed: the item, or with null the list or any of its items.
    virtual void Update(TCollectionItem* item);
    void Changed();

private:
    friend class TCollectionItem;
    int FUpdateCount = 0;
    TClassRef<TCollectionItem> FItemClass;
    std::vector<std::unique_ptr<TCollectionItem>> FItems;
};

} // namespace tarn
