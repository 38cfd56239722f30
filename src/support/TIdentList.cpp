#include "TIdentList.h"

#include "AsciiText.h"
#include "qsLocale.h"

#include <algorithm>
#include <utility>

namespace tarn {
namespace {

enum TIdentText : int { itNoIdentIntf = 50564, itNotUnique = 50565, itUnacceptable = 50566 };

/// Null for an object without it. A class that lists the interface in its table is derived from it.
IIdentIntf* IdentIntf(TObject* object) {
    return dynamic_cast<IIdentIntf*>(object);
}

IIdentIntf* IdentIntf(const TIntf<IIdentIntf>& intf) {
    return intf.Get();
}

template <class TItem> std::string IdentOf(const TItem& item) {
    IIdentIntf* const intf = IdentIntf(item);
    if (!intf) throw EIdentListError(LocaleStr(itNoIdentIntf));
    return intf->GetIdent();
}

} // namespace

template <class TItem> int TIdentListOf<TItem>::Add(const TItem& item) {
    const std::string ident = IdentOf(item);
    if (!IsValidIdent(ident)) throw EIdentListError(Format(LocaleStr(itUnacceptable), {ident}));
    int index = 0;
    if (Find(ident, index)) throw EIdentListError(Format(LocaleStr(itNotUnique), {ident}));
    FItems.insert(FItems.begin() + index, item);
    return index;
}

template <class TItem> bool TIdentListOf<TItem>::Find(std::string_view ident, int& index) const {
    const auto place = std::lower_bound(FItems.begin(), FItems.end(), ident,
                                        [](const TItem& item, std::string_view wanted) {
                                            return AsciiCompareText(IdentOf(item), wanted) < 0;
                                        });
    index = static_cast<int>(place - FItems.begin());
    return place != FItems.end() && AsciiCompareText(IdentOf(*place), ident) == 0;
}

template <class TItem> int TIdentListOf<TItem>::IndexOf(const TItem& item) const {
    int index = 0;
    return Find(IdentOf(item), index) ? index : -1;
}

template <class TItem> int TIdentListOf<TItem>::Remove(const TItem& item) {
    const int index = IndexOf(item);
    if (index >= 0) Delete(index);
    return index;
}

template <class TItem> void TIdentListOf<TItem>::Delete(int index) {
    // The item goes when the list is in order again: its end may look at the list.
    [[maybe_unused]] const TItem last = Items(index);
    FItems.erase(FItems.begin() + index);
}

template <class TItem> void TIdentListOf<TItem>::Clear() {
    [[maybe_unused]] const std::vector<TItem> last = std::exchange(FItems, {});
}

template <class TItem> const TItem& TIdentListOf<TItem>::Items(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return FItems[static_cast<std::size_t>(index)];
}

template class TIdentListOf<TObject*>;
template class TIdentListOf<TIntf<IIdentIntf>>;

} // namespace tarn
