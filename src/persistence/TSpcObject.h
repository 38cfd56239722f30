#pragma once

#include "TCustomSpcObject.h"
#include "rtl/TCollection.h"

#include <functional>
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
class TSpcObject : public TUncounted<TCustomSpcObject, INodeInfo> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return {}; }
    bool NeedsTranslate() override { return false; }
    /// The name under which the object stands in its parent; empty when the parent's property says
    /// it.
    virtual std::string GetNodePropName() const { return {}; }
};

/// An item of a settings collection: a node of its own.
class TSpcItem : public TUncounted<TCollectionItem, INodeOfItemInfo> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return {}; }
    bool NeedsTranslate() override { return false; }
    bool NeedsIterate() override { return false; }
    /// The name under which the item stands in its collection: its identifier.
    virtual std::string GetNodePropName() const;

    /// Gives a property of this item a value, from a text.
    using TPutText = std::function<void(std::string_view prop, std::string_view text)>;
    /// Told before stored properties are read into the item: puts what the absence of a property
    /// from a file means, where that is not to leave it as it is.
    virtual void PutAbsent(const TPutText&) {}

    /// What was stored for this item and has no place in it, as it was read; saved again behind
    /// everything else. See TFitReader.
    std::string UnplacedProps;
};

/// The kinds of nodes of a settings tree.
enum TBaseClassIdent : std::uint8_t {
    ciUnknown,
    ciSpcObject,
    ciObject,
    ciSpcItem,
    ciItem,
    ciCollection,
    ciComponent
};
/// The kind of an object's node: settings classes by themselves, else the platform's class that it
/// descends from; ciUnknown for null and for what has no published properties at all.
TBaseClassIdent BaseClassIdent(const TObject* object);

} // namespace tarn
