#pragma once

#include "rtl/MethodInfo.h"
#include "rtl/TMethod.h"
#include "rtl/TypInfo.h"

namespace tarn {

/// The root of all classes with a class record. A derived class declares
///     static const TClassRecord ClassRecord;
///     const TClassRecord& ClassType() const override { return ClassRecord; }
/// and defines the record beside its tables.
class TObject {
public:
    static const TClassRecord ClassRecord;

    TObject() = default;
    TObject(const TObject&) = delete;
    TObject& operator=(const TObject&) = delete;
    virtual ~TObject() = default;

    virtual const TClassRecord& ClassType() const { return ClassRecord; }
    std::string_view ClassName() const { return ClassType().Name; }
    bool InheritsFrom(const TClassRecord& ancestor) const {
        return ClassType().InheritsFrom(ancestor);
    }

    /// Work that belongs to an object's end and that may fail: called before the destructor by
    /// whoever frees the object through FreeObject; what it raises passes on after the object is
    /// freed.
    virtual void BeforeDestruction() {}

    /// Puts the interface of that identifier into `obj`, from the interface tables of the class and
    /// its ancestors; false, and null, when the class does not implement it. Nothing is counted.
    bool GetInterface(const TGUID& iid, void*& obj);
};

inline constexpr std::string_view NotifyEventParams[] = {"Sender"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TNotifyEvent> = MethodType("TNotifyEvent",
                                                                 MethodSignatureOf<TNotifyEvent>,
                                                                 NotifyEventParams);

/// Frees an object: BeforeDestruction, then the destructor, which runs in any case.
void FreeObject(TObject* object);

/// The end of an object whose last reference went: the destructor alone, which raises nothing.
void DeleteObject(TObject* object) noexcept;

/// The class's object behind `object`, or null when it is of another class.
template <class T> T* ClassCast(TObject* object) {
    return dynamic_cast<T*>(object);
}

/// The interface I from an object's interface tables, not counted; null when it has none.
template <class I> I* ObjectInterface(TObject& object) {
    void* found = nullptr;
    return object.GetInterface(I::IID, found) ? static_cast<I*>(found) : nullptr;
}

class TFiler;
class TReader;
class TWeakLink;
class TWriter;

/// The base of objects with published properties, which can be assigned to each other. An object
/// knows the weak references to it and clears them when it goes.
class TPersistent : public TObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    ~TPersistent() override;

    /// Copies the other object's state into this one. What a class cannot copy itself is offered to
    /// the source's AssignTo; when neither knows how, EConvertError names both classes.
    virtual void Assign(const TPersistent* source);

protected:
    virtual void AssignTo(TPersistent& dest) const;

    /// Declares what the object stores beside its published properties. An override calls its
    /// ancestor's first.
    virtual void DefineProperties(TFiler& filer);

private:
    friend class TReader;
    friend class TWriter;
    friend class TWeakLink;
    TWeakLink* FLinks = nullptr;
};

/// The untyped part of a weak reference: one link in its object's list.
class TWeakLink {
protected:
    TWeakLink() = default;
    explicit TWeakLink(TPersistent* object) { Attach(object); }
    TWeakLink(const TWeakLink& other) { Attach(other.FObject); }
    TWeakLink& operator=(const TWeakLink& other);
    ~TWeakLink() { Detach(); }

    void Attach(TPersistent* object);
    void Detach();

    TPersistent* FObject = nullptr;

private:
    friend class TPersistent;
    TWeakLink* FPrev = nullptr;
    TWeakLink* FNext = nullptr;
};

/// A reference to an object that somebody else owns; it becomes null when the object is freed.
template <class T> class TWeak : private TWeakLink {
public:
    TWeak() = default;
    TWeak(T* object) : TWeakLink(object) {} // NOLINT(google-explicit-constructor)

    T* Get() const { return static_cast<T*>(FObject); }
    T* operator->() const { return Get(); }
    T& operator*() const { return *Get(); }
    explicit operator bool() const { return FObject != nullptr; }
    friend bool operator==(const TWeak& a, const TWeak& b) { return a.FObject == b.FObject; }
    friend bool operator==(const TWeak& a, const T* b) { return a.FObject == b; }
};

/// An object that lives as long as interface references to it are held.
/// \tparam I the interfaces that it implements; those that they extend are answered too
template <class... I> class TInterfacedObject : public TObject, public I... {
public:
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        obj = nullptr;
        (void)((IsInterface<I>(iid) && (obj = static_cast<I*>(this), true)) || ...);
        if (obj == nullptr) return E_NOINTERFACE;
        _AddRef();
        return S_OK;
    }
    int _AddRef() override { return ++FRefCount; }
    int _Release() override {
        const int left = --FRefCount;
        if (left == 0) DeleteObject(this);
        return left;
    }

private:
    int FRefCount = 0;
};

} // namespace tarn
