#include "TExpObjectList.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

int TExpObjectList::Add(TCustomExpert* expert, std::string_view name) {
    FItems.push_back({expert, std::string(name)});
    return Count() - 1;
}

const TExpObjectInfo& TExpObjectList::Get(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return FItems[static_cast<std::size_t>(index)];
}

void TExpObjectList::Delete(int index) {
    (void)Get(index);
    FItems.erase(FItems.begin() + index);
}

namespace {

template <class F> int IndexWhere(const std::vector<TExpObjectInfo>& items, F&& matches) {
    const auto found = std::find_if(items.begin(), items.end(), matches);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

} // namespace

int TExpObjectList::IndexOf(std::string_view name) const {
    return IndexWhere(FItems, [name](const TExpObjectInfo& info) { return info.Name == name; });
}

int TExpObjectList::IndexOf(const TCustomExpert* expert) const {
    return IndexWhere(FItems,
                      [expert](const TExpObjectInfo& info) { return info.Expert == expert; });
}

} // namespace tarn
