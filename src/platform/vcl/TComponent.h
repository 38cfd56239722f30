#pragma once

#include "rtl/TObject.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

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

    std::intptr_t Tag = 0; ///< free for the user of the component

private:
    void ValidateRename(const TComponent* component, std::string_view name) const;

    std::string FName;
    TComponent* FOwner = nullptr;
    std::vector<TComponent*> FComponents;
};

} // namespace tarn
