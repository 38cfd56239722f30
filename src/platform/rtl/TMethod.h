#pragma once

#include <type_traits>
#include <utility>

namespace tarn {

template <class Signature> class TMethod;

/// A method pointer without its signature: what a published event travels in. Only the TMethod of
/// the signature that it came from may be made of it again.
struct TRawMethod {
    void* Data = nullptr;
    void (*Code)() = nullptr; ///< null: no method
    friend bool operator==(const TRawMethod&, const TRawMethod&) = default;
};

/// A method pointer: a procedure bound to its object, two words, copied and compared by value. The
/// object is not owned; who installs a method takes it out before the object goes.
template <class R, class... A> class TMethod<R(A...)> {
public:
    constexpr TMethod() = default;

    /// The member function of the given object.
    template <auto Member, class T> static TMethod Of(T* object) {
        static_assert(std::is_invocable_r_v<R, decltype(Member), T*, A...>);
        return TMethod(object, [](void* data, A... args) -> R {
            return (static_cast<T*>(data)->*Member)(std::forward<A>(args)...);
        });
    }

    /// A function that belongs to no object.
    template <auto Function> static TMethod Of() {
        return TMethod(nullptr,
                       [](void*, A... args) -> R { return Function(std::forward<A>(args)...); });
    }

    /// Anything callable that outlives the method pointer.
    template <class F> static TMethod Calling(F& callable) {
        // The lambda restores the type, and with it the constness.
        void* const object = const_cast<std::remove_const_t<F>*>(&callable);
        return TMethod(object, [](void* data, A... args) -> R {
            return (*static_cast<F*>(data))(std::forward<A>(args)...);
        });
    }

    static TMethod FromRaw(const TRawMethod& raw) {
        return TMethod(raw.Data, reinterpret_cast<TCode>(raw.Code));
    }
    TRawMethod Raw() const { return {FData, reinterpret_cast<void (*)()>(FCode)}; }

    explicit operator bool() const { return FCode != nullptr; }
    R operator()(A... args) const { return FCode(FData, std::forward<A>(args)...); }

    /// The object that the procedure is bound to; null for a plain function.
    void* Data() const { return FData; }

    friend bool operator==(const TMethod&, const TMethod&) = default;

private:
    using TCode = R (*)(void*, A...);
    TMethod(void* data, TCode code) : FData(data), FCode(code) {}

    void* FData = nullptr;
    TCode FCode = nullptr;
};

class TObject;

/// The handler of most events: one argument, the object that the event comes from.
using TNotifyEvent = TMethod<void(TObject*)>;

} // namespace tarn
