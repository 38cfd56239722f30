#pragma once

#include "TSpcObject.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A stored item that has no partner among the items of its collection, as it was read.
struct TUnplacedItem {
    std::string Ident;
    int Position = 0;  ///< its 0-based place among the stored items
    std::string Props; ///< property records
};

/// A collection of settings items: a node with a node for each item below it.
class TSpcCollection : public TUncounted<TCollection, INodeInfo> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TUncounted::TUncounted;

    std::string GetNodeName() override { return {}; }
    bool NeedsTranslate() override { return false; }

    /// The string property that tells an item of this collection from the others.
    virtual std::string GetUpdateName() const = 0;
    /// That property. Raises EInvalidOperation when the items have no writable string property of
    /// the name.
    const TPropInfo& UpdateProp() const;

    TSpcItem* Add() { return static_cast<TSpcItem*>(TCollection::Add()); }
    TSpcItem* Insert(int index) { return static_cast<TSpcItem*>(TCollection::Insert(index)); }
    TSpcItem* Items(int index) const { return static_cast<TSpcItem*>(TCollection::Items(index)); }
    /// The first item whose identifier is `id`, without case; null when there is none.
    TSpcItem* FindItemID(std::string_view id) const;

    /// Copies the items, one for one, and what was stored for them and for others.
    void Assign(const TPersistent* source) override;

    /// Stored items that the program does not know now, for example those of an expert that is
    /// switched off: saved again at their places. In the order of their positions.
    std::vector<TUnplacedItem> UnplacedItems;

protected:
    /// Appends an item under an identifier.
    TSpcItem* AddItemID(std::string_view id);
    void AssignUnplaced(const TSpcCollection& source);
};

/// A settings collection whose items stand in the program: stored items are merged into those that
/// exist.
class TFixedCollection : public TSpcCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TSpcCollection::TSpcCollection;

    TSpcItem* Add(std::string_view objectID) { return AddItemID(objectID); }
};

/// An item that stands for an object of somebody else under an identifier.
class TWrapperItem : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string AObjectID;
    /// The object, owned by whoever made it; null once it is freed.
    TPersistent* NestedObject() const { return FObject.Get(); }
    void SetNestedObject(TPersistent* object) { FObject = object; }

private:
    TWeak<TPersistent> FObject;
};

/// A settings collection that refers to objects of any class by identifiers.
class TFreeCollection : public TSpcCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TSpcCollection::TSpcCollection;

    std::string GetUpdateName() const override { return "AObjectID"; }
    /// Appends an item that refers to the object. An identifier that is there already keeps its
    /// item and gets the new object.
    TWrapperItem* Add(TPersistent* object, std::string_view objectID);
    TWrapperItem* GetItem(int index) const { return static_cast<TWrapperItem*>(Items(index)); }
    /// Makes an item refer to the object of another one, under that one's identifier.
    void SetItem(int index, const TWrapperItem& item);
    /// Copies identifiers and references: the objects stay one.
    void Assign(const TPersistent* source) override;
};

} // namespace tarn
