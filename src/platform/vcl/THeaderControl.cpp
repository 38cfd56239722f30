#include "vcl/THeaderControl.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo HeaderProps[] = {
    Published<&THeaderControl::OnSectionResize>("OnSectionResize"),
};

} // namespace

constinit const TClassRecord THeaderControl::ClassRecord{"THeaderControl", &TControl::ClassRecord,
                                                         CreateObject<THeaderControl>, HeaderProps};

const THeaderControl::TSection& THeaderControl::At(int index) const {
    if (index < 0 || index >= SectionCount()) throw EListError(Format(SListIndexError, {index}));
    return FSections[static_cast<std::size_t>(index)];
}

void THeaderControl::SetSectionCount(int value) {
    FSections.resize(static_cast<std::size_t>(std::max(value, 0)));
    StateChanged();
}

void THeaderControl::SetSectionText(int index, std::string_view value) {
    At(index).Text = value;
    StateChanged();
}

void THeaderControl::SetSectionWidth(int index, int value) {
    TSection& section = At(index);
    section.Width = std::max(value, section.MinWidth);
    StateChanged();
}

void THeaderControl::SetSectionMinWidth(int index, int value) {
    At(index).MinWidth = std::max(value, 0);
    SetSectionWidth(index, SectionWidth(index));
}

bool THeaderControl::DragSection(int index, int width) {
    if (!CanFocus() || index < 0 || index >= SectionCount()) return false;
    SetSectionWidth(index, width);
    if (const TSectionEvent handler = OnSectionResize) handler(this, index);
    return true;
}

} // namespace tarn
