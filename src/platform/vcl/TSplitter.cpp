#include "vcl/TSplitter.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo SplitterProps[] = {
    Published<&TSplitter::MinSize, &TSplitter::SetMinSize>("MinSize",
                                                           {.Default = TSplitter::DefaultMinSize}),
    Published<&TSplitter::OnMoved>("OnMoved"),
};

} // namespace

constinit const TClassRecord TSplitter::ClassRecord{"TSplitter", &TControl::ClassRecord,
                                                    CreateObject<TSplitter>, SplitterProps};

TSplitter::TSplitter(TComponent* owner) : TControl(owner) {
    SetWidth(DefaultWidth);
    SetAlign(alLeft);
}

void TSplitter::SetMinSize(int value) {
    FMinSize = std::max(value, 1);
}

/// The nearest control before the bar along the left side.
TControl* TSplitter::Resized() const {
    TControl* nearest = nullptr;
    for (int i = 0; Parent() && Parent()->Controls(i) != this; ++i)
        if (TControl* const each = Parent()->Controls(i);
            each->Visible() && each->Align() == alLeft)
            nearest = each;
    return nearest;
}

/// The width that the controls along both sides leave in the parent; below 0 when they need more.
int TSplitter::FreeWidth() const {
    int width = Parent()->Width();
    for (int i = 0; i < Parent()->ControlCount(); ++i)
        if (const TControl& each = *Parent()->Controls(i); each.Visible())
            width -= each.Align() == alLeft || each.Align() == alRight ? each.Width() : 0;
    return width;
}

bool TSplitter::DragTo(int x) {
    TControl* const resized = CanFocus() && Align() == alLeft ? Resized() : nullptr;
    if (!resized) return false;
    const int most = resized->Width() + FreeWidth() - FMinSize;
    const int width = resized->Width() + x - Left();
    resized->SetWidth(std::max(std::min(width, most), FMinSize));
    if (const TNotifyEvent handler = OnMoved) handler(this);
    return true;
}

} // namespace tarn
