#include "vcl/TItemStrings.h"

#include "rtl/SysUtils.h"

namespace tarn {

const TItemStrings::TItem& TItemStrings::At(int index) const {
    if (!Has(index)) throw EStringListError(Format(SListIndexError, {index}));
    return FItems.At(index);
}

template <class F> void TItemStrings::Renumber(F&& newIndex) {
    for (int* const mark : {&FCurrent, &FAnchor})
        if (*mark >= 0) *mark = newIndex(*mark);
}

void TItemStrings::Put(int index, std::string_view s) {
    At(index).Text = s;
    Changed();
}

void TItemStrings::PutObject(int index, TObject* object) {
    At(index).Object = object;
    Changed();
}

void TItemStrings::InsertObject(int index, std::string_view s, TObject* object) {
    if (index != Count()) (void)At(index);
    FItems.Insert(index, {std::string(s), object});
    Renumber([index](int i) { return i < index ? i : i + 1; });
    Changed();
}

void TItemStrings::Delete(int index) {
    Select(index, false);
    FItems.Take(index);
    Renumber([index](int i) { return i == index ? -1 : i - (i > index ? 1 : 0); });
    Changed();
}

void TItemStrings::Clear() {
    if (IsEmpty()) return;
    FItems = {};
    FCurrent = FAnchor = -1;
    FSelCount = 0;
    Changed();
}

void TItemStrings::Exchange(int index1, int index2) {
    std::swap(At(index1), At(index2));
    Renumber([=](int i) { return i == index1 ? index2 : i == index2 ? index1 : i; });
    Changed();
}

void TItemStrings::Move(int curIndex, int newIndex) {
    (void)At(curIndex);
    (void)At(newIndex);
    FItems.Insert(newIndex, FItems.Take(curIndex));
    Renumber([=](int i) {
        if (i == curIndex) return newIndex;
        if (i > curIndex && i <= newIndex) return i - 1;
        return i < curIndex && i >= newIndex ? i + 1 : i;
    });
    Changed();
}

void TItemStrings::Select(int index, bool value) {
    bool& selected = At(index).Selected;
    if (selected != value) FSelCount += value ? 1 : -1;
    selected = value;
}

void TItemStrings::SelectAll(bool value) {
    for (int i = 0; i < Count(); ++i) FItems.At(i).Selected = value;
    FSelCount = value ? Count() : 0;
}

void TItemStrings::SetUpdateState(bool updating) {
    if (!updating && OnChange) OnChange(this);
}

void TItemStrings::Changed() {
    if (!Updating() && OnChange) OnChange(this);
}

} // namespace tarn
