#include "TPaintAreaInfo.h"

namespace tarn {
namespace {

constexpr TPropInfo PaintAreaInfoProps[] = {
    Published<&TPaintAreaInfo::Alignment, &TPaintAreaInfo::SetAlignment>(
        "Alignment", {.Default = taLeftJustify}),
    Published<&TPaintAreaInfo::DefAreaWidth, &TPaintAreaInfo::SetDefAreaWidth>("DefAreaWidth"),
    Published<&TPaintAreaInfo::Font, &TPaintAreaInfo::SetFont>("Font"),
    Published<&TPaintAreaInfo::LeftMargin, &TPaintAreaInfo::SetLeftMargin>("LeftMargin"),
    Published<&TPaintAreaInfo::RightMargin, &TPaintAreaInfo::SetRightMargin>("RightMargin"),
};
constexpr TPropInfo LabelAreaInfoProps[] = {
    Published<&TLabelAreaInfo::AutoWidth, &TLabelAreaInfo::SetAutoWidth>("AutoWidth",
                                                                         {.Default = true}),
};

} // namespace

constinit const TClassRecord TPaintAreaInfo::ClassRecord{
    "TPaintAreaInfo", &TPersistent::ClassRecord, CreateObject<TPaintAreaInfo>, PaintAreaInfoProps};
constinit const TClassRecord TLabelAreaInfo::ClassRecord{
    "TLabelAreaInfo", &TPaintAreaInfo::ClassRecord, CreateObject<TLabelAreaInfo>,
    LabelAreaInfoProps};
constinit const TClassRecord TControlAreaInfo::ClassRecord{
    "TControlAreaInfo", &TPaintAreaInfo::ClassRecord, CreateObject<TControlAreaInfo>};

TPaintAreaInfo::TPaintAreaInfo() {
    FFont.OnChange = TNotifyEvent::Of<&TPaintAreaInfo::Changed>(this);
}

void TPaintAreaInfo::Changed(TObject*) {
    if (OnChange) OnChange(this);
}

void TPaintAreaInfo::Assign(const TPersistent* source) {
    const auto* const info = dynamic_cast<const TPaintAreaInfo*>(source);
    if (!info) {
        TPersistent::Assign(source);
        return;
    }
    FAlignment = info->FAlignment;
    FDefAreaWidth = info->FDefAreaWidth;
    FLeftMargin = info->FLeftMargin;
    FRightMargin = info->FRightMargin;
    FFont.Assign(&info->FFont);
    Changed(this);
}

TLabelAreaInfo::TLabelAreaInfo() {
    SetDefAreaWidth(100);
    SetLeftMargin(3);
    SetRightMargin(2);
    Font()->SetColor(clNavy);
}

void TLabelAreaInfo::Assign(const TPersistent* source) {
    if (const auto* const info = dynamic_cast<const TLabelAreaInfo*>(source))
        FAutoWidth = info->FAutoWidth;
    TPaintAreaInfo::Assign(source);
}

TControlAreaInfo::TControlAreaInfo() {
    SetDefAreaWidth(150);
    SetLeftMargin(2);
    SetRightMargin(3);
}

} // namespace tarn
