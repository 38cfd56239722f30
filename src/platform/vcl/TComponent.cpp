#include "vcl/TComponent.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo ComponentProps[] = {
    Published<&TComponent::Name, &TComponent::SetName>("Name"),
};

} // namespace

constinit const TClassRecord TComponent::ClassRecord{"TComponent", &TPersistent::ClassRecord,
                                                     nullptr, ComponentProps};

TComponent::TComponent(TComponent* owner) {
    if (owner) owner->InsertComponent(this);
}

TComponent::~TComponent() {
    while (!FComponents.empty()) {
        TComponent* const last = FComponents.back();
        RemoveComponent(last);
        delete last;
    }
    if (FOwner) FOwner->RemoveComponent(this);
}

void TComponent::SetName(std::string_view name) {
    if (name == FName) return;
    if (!name.empty() && !IsValidIdent(name))
        throw EComponentError(Format("'%s' is not a valid component name", {name}));
    if (FOwner) FOwner->ValidateRename(this, name);
    FName = name;
}

TComponent* TComponent::Components(int index) const {
    if (index < 0 || index >= ComponentCount()) throw EListError(Format(SListIndexError, {index}));
    return FComponents[static_cast<std::size_t>(index)];
}

TComponent* TComponent::FindComponent(std::string_view name) const {
    if (name.empty()) return nullptr;
    for (TComponent* component : FComponents)
        if (SameText(component->FName, name)) return component;
    return nullptr;
}

void TComponent::InsertComponent(TComponent* component) {
    ValidateRename(component, component->FName);
    if (component->FOwner) component->FOwner->RemoveComponent(component);
    FComponents.push_back(component);
    component->FOwner = this;
}

void TComponent::RemoveComponent(TComponent* component) {
    // The newest goes first most of the time.
    const auto found = std::find(FComponents.rbegin(), FComponents.rend(), component);
    if (found == FComponents.rend()) return;
    FComponents.erase(std::next(found).base());
    component->FOwner = nullptr;
}

void TComponent::ValidateRename(const TComponent* component, std::string_view name) const {
    const TComponent* const same = FindComponent(name);
    if (same && same != component)
        throw EComponentError(Format("a component named %s already exists", {name}));
}

} // namespace tarn
