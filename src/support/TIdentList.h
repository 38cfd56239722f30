#pragma once

#include "rtl/SysUtils.h"
#include "rtl/TObject.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// An object that is known by an identifier.
class IIdentIntf : public IInterface {
public:
    static constexpr TGUID IID{"{5D0B7C3A-91E4-4F62-8C17-2E6A40D9B3F1}"};
    using Parent = IInterface;

    virtual std::string GetIdent() = 0;

protected:
    ~IIdentIntf() = default;
};

struct TIdentListErrorTag {
    static constexpr std::string_view Name = "EIdentListError";
};
/// An item without identifier, or with one that is invalid or taken.
using EIdentListError = TNamedException<TIdentListErrorTag>;

/// A list of items in ascending order of their identifiers, which are ASCII identifiers, unique
/// without case, compared with small letters folded to capitals. An item without IIdentIntf raises
/// EIdentListError wherever its identifier is needed; an index outside the 0-based list raises
/// EListError.
/// \tparam TItem a pointer or a counted reference to the objects of the list
template <class TItem> class TIdentListOf : public TObject {
public:
    /// Puts the item in its place, whose index is the result. Raises EIdentListError, and leaves
    /// the list as it is, when its identifier is not valid or stands in the list.
    int Add(const TItem& item);
    /// The index of the item with that identifier, or else of the place where it would stand.
    bool Find(std::string_view ident, int& index) const;
    /// The index of the item that has the same identifier as this one; -1 when there is none.
    int IndexOf(const TItem& item) const;
    /// Deletes the item that has the same identifier as this one; the index that it had, or -1.
    int Remove(const TItem& item);
    void Delete(int index);
    void Clear();

    int Count() const { return static_cast<int>(FItems.size()); }
    const TItem& Items(int index) const;
    const TItem& operator[](int index) const { return Items(index); }

private:
    std::vector<TItem> FItems;
};

/// Objects that somebody else owns, which implement IIdentIntf.
using TIdentList = TIdentListOf<TObject*>;
/// Counted references, which are released when they leave the list.
using TIdentIntfList = TIdentListOf<TIntf<IIdentIntf>>;

extern template class TIdentListOf<TObject*>;
extern template class TIdentListOf<TIntf<IIdentIntf>>;

} // namespace tarn
