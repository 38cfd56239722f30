#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A bar between the control that stands before it along the left side and the rest of the parent,
/// which a user drags to share out the width.
class TSplitter : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    static constexpr int DefaultWidth = 3, DefaultMinSize = 30;

    explicit TSplitter(TComponent* owner = nullptr);

    /// The least width in pixels, at least 1, that dragging leaves on either side.
    int MinSize() const { return FMinSize; }
    void SetMinSize(int value);

    /// The user drags the bar until its left edge stands at `x` of the parent, or as far as MinSize
    /// lets it; of a parent too narrow for both sides the left one gets MinSize. False, and
    /// nothing, when no visible control stands before it along the left side, or while it is
    /// disabled or hidden.
    bool DragTo(int x);
    TNotifyEvent OnMoved; ///< the user has dragged the bar

private:
    TControl* Resized() const;
    int FreeWidth() const;

    int FMinSize = DefaultMinSize;
};

} // namespace tarn
