#include "vcl/TCheckListBox.h"

namespace tarn {
namespace {

constexpr TPropInfo CheckListBoxProps[] = {
    Published<&TCheckListBox::OnClickCheck>("OnClickCheck"),
};

} // namespace

constinit const TClassRecord TCheckListBox::ClassRecord{
    "TCheckListBox", &TListBox::ClassRecord, CreateObject<TCheckListBox>, CheckListBoxProps};

void TCheckListBox::SetChecked(int index, bool value) {
    Lines().Check(index, value);
    Lines().Changed();
}

bool TCheckListBox::ClickCheck(int index) {
    const TWeak<TCheckListBox> alive(this);
    if (!ClickItem(index)) return false;
    if (!alive || !Lines().Has(index)) return true; // gone in the click's own events
    SetChecked(index, !Checked(index));
    if (const TNotifyEvent handler = OnClickCheck) handler(this);
    return true;
}

} // namespace tarn
