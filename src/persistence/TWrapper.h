#pragma once

#include "vcl/TComponent.h"

namespace tarn {

/// Stands at the root of a component stream for an object that is no component. The object is its
/// one published property, "Instance": a stream has that object's properties under names like
/// "Instance.Size", and reading changes the object in place. Since it stands there already when it
/// is read, the class needs no place in the class registry.
class TWrapper : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// The object stays the caller's.
    explicit TWrapper(TPersistent& instance) : FInstance(instance) {}

    TPersistent* Instance() const { return &FInstance; }

private:
    TPersistent& FInstance;
};

/// Calls `use` with the component that stands for an object at the root of a component stream: the
/// object itself, or a wrapper for as long as the call lasts.
template <class F> auto WithRootOf(TPersistent& object, F&& use) {
    if (auto* const component = ClassCast<TComponent>(&object)) return use(*component);
    TWrapper wrapper(object);
    return use(static_cast<TComponent&>(wrapper));
}

} // namespace tarn
