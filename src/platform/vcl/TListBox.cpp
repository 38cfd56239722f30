#include "vcl/TListBox.h"

namespace tarn {
namespace {

constexpr TPropInfo ListBoxProps[] = {
    Published<&TListBox::Columns, &TListBox::SetColumns>("Columns", {.Default = 0}),
    Published<&TListBox::DragMode>("DragMode", {.Default = dmManual}),
    Published<&TListBox::IntegralHeight, &TListBox::SetIntegralHeight>("IntegralHeight",
                                                                       {.Default = false}),
    Published<&TListBox::ItemsObject>("Items"),
    Published<&TListBox::MultiSelect, &TListBox::SetMultiSelect>("MultiSelect", {.Default = false}),
    Published<&TListBox::Style, &TListBox::SetStyle>("Style", {.Default = lbStandard}),
    Published<&TListBox::TopIndex, &TListBox::SetTopIndex>("TopIndex", {.Default = 0}),
    Published<&TListBox::OnClick>("OnClick"),
    Published<&TListBox::OnDblClick>("OnDblClick"),
};

} // namespace

constinit const TClassRecord TListBox::ClassRecord{"TListBox", &TControl::ClassRecord,
                                                   CreateObject<TListBox>, ListBoxProps};

TListBox::TListBox(TComponent* owner) : TControl(owner) {
    FItems.OnChange = TNotifyEvent::Of<&TListBox::ItemsChanged>(this);
}

TStrings* TListBox::ItemsObject() const {
    return &const_cast<TListBox*>(this)->FItems;
}

void TListBox::SetStyle(TListBoxStyle value) {
    FStyle = value;
    StateChanged();
}

void TListBox::SetColumns(int value) {
    FColumns = std::max(value, 0);
    StateChanged();
}

void TListBox::SetIntegralHeight(bool value) {
    FIntegralHeight = value;
    StateChanged();
}

void TListBox::SetTopIndex(int value) {
    FTopIndex = std::clamp(value, 0, std::max(Count() - 1, 0));
    StateChanged();
}

// --- Selection --------------------------------------------------------------------------------

void TListBox::SetItemIndex(int value) {
    FItems.SetCurrent(value);
    FItems.SetAnchor(value);
    FItems.Changed();
}

void TListBox::SetMultiSelect(bool value) {
    if (value == FMultiSelect) return;
    const bool selected = ItemIndex() >= 0 && Selected(ItemIndex());
    FMultiSelect = value;
    FItems.SelectAll(false);
    if (!selected)
        FItems.SetCurrent(-1);
    else if (value)
        FItems.Select(ItemIndex(), true);
    FItems.Changed();
}

bool TListBox::Selected(int index) const {
    const bool selected = FItems.Selected(index);
    return FMultiSelect ? selected : index == ItemIndex();
}

void TListBox::SetSelected(int index, bool value) {
    if (Selected(index) == value) return;
    if (!FMultiSelect) return SetItemIndex(value ? index : -1);
    FItems.Select(index, value);
    FItems.Changed();
}

int TListBox::SelCount() const {
    return FMultiSelect ? FItems.SelCount() : static_cast<int>(ItemIndex() >= 0);
}

void TListBox::ClearSelection() {
    if (!FMultiSelect) return SetItemIndex(-1);
    FItems.SelectAll(false);
    FItems.Changed();
}

void TListBox::SelectAll() {
    if (!FMultiSelect) return;
    FItems.SelectAll(true);
    FItems.Changed();
}

// --- The mouse --------------------------------------------------------------------------------

bool TListBox::ClickItem(int index, TShiftState shift) {
    if (!CanClick(index)) return false;
    const TWeak<TListBox> alive(this);
    if (ParentForm()) SetFocus();
    if (!alive || !FItems.Has(index)) return false; // gone as another form became active
    if (FMultiSelect)
        ClickMany(index, shift);
    else
        FItems.SetCurrent(index);
    FItems.Changed();
    if (const TNotifyEvent handler = OnClick) handler(this);
    return true;
}

void TListBox::ClickMany(int index, TShiftState shift) {
    const bool turn = shift.Contains(ssCtrl);
    const bool range = shift.Contains(ssShift);
    const bool selected = FItems.Selected(index);
    if (!turn) FItems.SelectAll(false);
    FItems.SetCurrent(index);
    if (!range || FItems.Anchor() < 0) FItems.SetAnchor(index);
    if (turn && !range) return FItems.Select(index, !selected);
    const int last = std::max(index, FItems.Anchor());
    for (int i = std::min(index, FItems.Anchor()); i <= last; ++i) FItems.Select(i, true);
}

bool TListBox::DblClickItem(int index) {
    const TWeak<TListBox> alive(this);
    if (!ClickItem(index)) return false;
    if (!alive) return true;
    if (const TNotifyEvent handler = OnDblClick) handler(this);
    return true;
}

bool TListBox::DragItems(int from, int to) {
    if (DragMode != dmAutomatic || !CanClick(from) || to < 0 || to > Count()) return false;
    const TWeak<TListBox> alive(this);
    if (!Selected(from)) ClickItem(from);
    bool accept = false;
    if (const TDragOverEvent handler = alive ? OnDragOver : TDragOverEvent())
        handler(this, this, to, accept);
    if (!accept || !alive || to > Count()) return false;
    if (const TDragDropEvent handler = OnDragDrop) handler(this, this, to);
    return true;
}

} // namespace tarn
