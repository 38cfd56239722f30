#include "vcl/TScrollBox.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TScrollBox::ClassRecord{"TScrollBox", &TControl::ClassRecord,
                                                     CreateObject<TScrollBox>};

int TScrollBox::ContentHeight() const {
    int height = 0;
    for (int i = 0; i < ControlCount(); ++i)
        if (const TControl& control = *Controls(i); control.Visible())
            height = std::max(height, control.Top() + control.Height());
    return height;
}

int TScrollBox::Clamped(int top) const {
    return std::clamp(top, 0, std::max(ContentHeight() - Height(), 0));
}

/// Looked at anew each time: nobody tells of a control inside that moves.
int TScrollBox::ScrollTop() const {
    return Clamped(FScrollTop);
}

void TScrollBox::SetScrollTop(int value) {
    FScrollTop = Clamped(value);
    StateChanged();
}

void TScrollBox::ScrollInView(const TControl& control) {
    int top = 0;
    const TControl* each = &control;
    for (; each && each != this; each = each->Parent()) top += each->Top();
    if (!each || each == &control) return;
    const int least = top + control.Height() - Height();
    SetScrollTop(std::min(std::max(ScrollTop(), least), top));
}

} // namespace tarn
