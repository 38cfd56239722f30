#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tarn {

/// An interface identifier, written in its registry form "{8-4-4-4-12}".
struct TGUID {
    std::uint32_t D1 = 0;
    std::uint16_t D2 = 0;
    std::uint16_t D3 = 0;
    std::array<std::uint8_t, 8> D4{};

    constexpr TGUID() = default;
    consteval TGUID(const char* text) { // NOLINT(google-explicit-constructor)
        const char* p = text + 1;
        D1 = static_cast<std::uint32_t>(Hex(p, 8));
        D2 = static_cast<std::uint16_t>(Hex(++p, 4));
        D3 = static_cast<std::uint16_t>(Hex(++p, 4));
        ++p;
        for (int i = 0; i < 8; ++i) {
            if (i == 2) ++p;
            D4[i] = static_cast<std::uint8_t>(Hex(p, 2));
        }
        if (text[0] != '{' || *p != '}') throw "a GUID is written {8-4-4-4-12}";
    }

    friend constexpr bool operator==(const TGUID&, const TGUID&) = default;

private:
    static consteval std::uint64_t Hex(const char*& p, int digits) {
        std::uint64_t value = 0;
        for (; digits > 0; --digits, ++p) {
            const char c = *p;
            if (c >= '0' && c <= '9')
                value = value * 16 + static_cast<std::uint64_t>(c - '0');
            else if (c >= 'A' && c <= 'F')
                value = value * 16 + static_cast<std::uint64_t>(c - 'A' + 10);
            else
                throw "a GUID has upper-case hexadecimal digits";
        }
        return value;
    }
};

using HResult = std::uint32_t;
inline constexpr HResult S_OK = 0;
inline constexpr HResult E_NOINTERFACE = 0x80004002;

/// The root of all interfaces. An interface class names its identifier as `IID` and the interface
/// that it extends as `Parent`.
class IInterface {
public:
    static constexpr TGUID IID{"{00000000-0000-0000-C000-000000000046}"};

    /// Puts the asked interface of the same object into `obj`, with a reference of its own, and
    /// returns S_OK; otherwise `obj` becomes null and the result is E_NOINTERFACE.
    virtual HResult QueryInterface(const TGUID& iid, void*& obj) = 0;
    virtual int _AddRef() = 0;
    virtual int _Release() = 0;

protected:
    IInterface() = default;
    IInterface(const IInterface&) = default;
    IInterface& operator=(const IInterface&) = default;
    ~IInterface() = default;
};

/// Whether `iid` names interface I or one that it extends.
template <class I> constexpr bool IsInterface(const TGUID& iid) {
    if (iid == I::IID) return true;
    if constexpr (requires { typename I::Parent; })
        return IsInterface<typename I::Parent>(iid);
    else
        return iid == IInterface::IID;
}

/// A counted reference to an interface; null when there is none.
template <class I> class TIntf {
public:
    constexpr TIntf() = default;
    constexpr TIntf(std::nullptr_t) {}
    TIntf(I* intf) : FIntf(intf) { // NOLINT(google-explicit-constructor)
        if (FIntf) FIntf->_AddRef();
    }
    TIntf(const TIntf& other) : TIntf(other.FIntf) {}
    TIntf(TIntf&& other) noexcept : FIntf(std::exchange(other.FIntf, nullptr)) {}
    template <class D>
    requires std::is_convertible_v<D*, I*> TIntf(const TIntf<D>& other)
        : TIntf(static_cast<I*>(other.Get())) {}
    ~TIntf() {
        if (FIntf) FIntf->_Release();
    }
    TIntf& operator=(TIntf other) noexcept {
        std::swap(FIntf, other.FIntf);
        return *this;
    }

    I* Get() const { return FIntf; }
    I* operator->() const { return FIntf; }
    I& operator*() const { return *FIntf; }
    explicit operator bool() const { return FIntf != nullptr; }
    friend bool operator==(const TIntf& a, const TIntf& b) { return a.FIntf == b.FIntf; }

    /// Takes over a reference that QueryInterface has counted already.
    static TIntf Adopt(I* intf) {
        TIntf result;
        result.FIntf = intf;
        return result;
    }

private:
    I* FIntf = nullptr;
};

/// The interface I of the object behind `intf`, or null when it does not have it.
template <class I, class From> TIntf<I> Supports(const TIntf<From>& intf) {
    void* found = nullptr;
    if (!intf || intf->QueryInterface(I::IID, found) != S_OK) return nullptr;
    return TIntf<I>::Adopt(static_cast<I*>(found));
}

} // namespace tarn
