#pragma once

#include "rtl/TCollection.h"

#include <string>
#include <string_view>

namespace tarn {

/// What the settings editor asks an object about its node.
class INodeInfo : public IInterface {
public:
    static constexpr TGUID IID{"{4C1B7E0A-5A0F-4D0B-9E59-6C2D8F31A7B4}"};
    /// The text of the node; empty when the property's own name is to be shown.
    virtual std::string GetNodeName() = 0;
    /// Whether that text is looked up in the translating table.
    virtual bool NeedsTranslate() = 0;

protected:
    ~INodeInfo() = default;
};

/// What the settings editor asks a collection item about its node.
class INodeOfItemInfo : public INodeInfo {
public:
    using Parent = INodeInfo;
    static constexpr TGUID IID{"{B03C9C52-7E5B-4E5E-8D0C-14B9A2C6F7D1}"};
    /// Whether the item's index is appended to the node's text.
    virtual bool NeedsIterate() = 0;

protected:
    ~INodeOfItemInfo() = default;
};

/// The interface operations of an object whose owner alone frees it: nothing is counted, and the
/// interfaces come from the class's tables.
template <class Base, class Intf> class TUncounted : public Base, public Intf {
public:
    using Base::Base;
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        return this->GetInterface(iid, obj) ? S_OK : E_NOINTERFACE;
    }
    int _AddRef() override { return -1; }
    int _Release() override { return -1; }
};

/// The base of settings objects: a node of the settings tree.
class TSpcObject : public TUncounted<TPersistent, INodeInfo> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return {}; }
    bool NeedsTranslate() override { return false; }
};

/// An item of a settings collection: a node of its own.
class TSpcItem : public TUncounted<TCollectionItem, INodeOfItemInfo> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return {}; }
    bool NeedsTranslate() override { return false; }
    bool NeedsIterate() override { return false; }
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
    /// The first item whose identifier is `id`, without case; null when there is none.
    TSpcItem* FindItemID(std::string_view id) const;

protected:
    /// Appends an item under an identifier.
    TSpcItem* AddItemID(std::string_view id);
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
};

} // namespace tarn
