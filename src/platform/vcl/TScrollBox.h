#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A window on controls that may need more height than it has. The controls keep their places in
/// the content, whose part from ScrollTop on a front end shows.
class TScrollBox : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TScrollBox(TComponent* owner = nullptr) : TControl(owner) {}

    /// The first line of the content that is seen, in pixels: never so far down that less than the
    /// box is filled by content that could fill it, whatever becomes of the controls.
    int ScrollTop() const;
    void SetScrollTop(int value);
    /// The bottom of the lowest visible control, in pixels; 0 without one.
    int ContentHeight() const;
    /// Scrolls no farther than it takes to see the control, which stands in the box at any depth;
    /// of one that is higher than the box the top is seen. Nothing for a control that is elsewhere.
    void ScrollInView(const TControl& control);

private:
    int Clamped(int top) const;

    int FScrollTop = 0;
};

} // namespace tarn
