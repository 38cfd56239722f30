#pragma once

#include "rtl/TObject.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TComponent;
class TReader;
class TWriter;

/// What is being done with a component.
enum TComponentFlag : std::uint8_t {
    csLoading,    ///< it comes from a stream, and references may not be set yet
    csReading,    ///< its properties are being read
    csWriting,    ///< its properties are being written
    csDestroying, ///< it is being freed
    csDesigning,  ///< it stands in a form designer
    csInline      ///< it is a frame inside another component
};
using TComponentState = TSet<TComponentFlag>;

using TGetChildProc = std::function<void(TComponent& child)>;

/// A named object that owns other components. The owner frees what it owns, newest first; a
/// component without an owner is freed by whoever made it.
class TComponent : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TComponent(TComponent* owner = nullptr);
    ~TComponent() override;

    const std::string& Name() const { return FName; }
    /// Raises EComponentError when the name is no identifier, or when the owner has a component of
    /// that name already; the empty name is always allowed.
    void SetName(std::string_view name);

    TComponent* Owner() const { return FOwner; }
    int ComponentCount() const { return static_cast<int>(FComponents.size()); }
    TComponent* Components(int index) const; ///< raises EListError outside the list
    /// The owned component of that name, without case; null when none.
    TComponent* FindComponent(std::string_view name) const;

    /// Takes the component over from the owner that it has.
    void InsertComponent(TComponent* component);
    void RemoveComponent(TComponent* component);

    TComponentState ComponentState() const { return FComponentState; }

    /// The component in whose list of children a stream has this one; null for one that stands
    /// in its owner's. A class with parents overrides both.
    virtual TComponent* GetParentComponent() const { return nullptr; }
    virtual void SetParentComponent(TComponent*) {}

    std::intptr_t Tag = 0; ///< free for the user of the component

protected:
    /// Calls `proc` for the children that are streamed inside this component, in their order: when
    /// it is `root`, its components without a parent. A class with children of other kinds adds
    /// those of them that `root` owns.
    virtual void GetChildren(const TGetChildProc& proc, const TComponent* root) const;
    /// Moves a child to that place, from 0, among the children.
    virtual void SetChildOrder(TComponent& child, int order);
    /// Who owns the children that are read inside this component; null for the root.
    virtual TComponent* GetChildOwner() { return nullptr; }
    /// The parent of the children that are read inside this component.
    virtual TComponent* GetChildParent() { return this; }

    /// Read and write properties and children.
    virtual void ReadState(TReader& reader);
    virtual void WriteState(TWriter& writer);
    /// The whole root that this component belongs to has been read, and references are set.
    virtual void Loaded() {}

    void SetInline(bool value);    ///< marks a frame inside another component
    void SetDesigning(bool value); ///< of this component alone

private:
    friend class TReader;
    friend class TWriter;
    class TNameIndex;

    void ValidateRename(const TComponent* component, std::string_view name) const;
    void SetFlag(TComponentFlag flag, bool on);

    std::string FName;
    TComponent* FOwner = nullptr;
    std::vector<TComponent*> FComponents;
    std::unique_ptr<TNameIndex> FNameIndex; ///< of the components' names, when there are many
    TComponentState FComponentState;
};

} // namespace tarn
