#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A text that stands beside another control.
class TLabel : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TLabel(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }
    /// The control that the hotkey of the caption gives the focus to.
    TControl* FocusControl() const { return FFocusControl.Get(); }
    void SetFocusControl(TControl* value) { FFocusControl = value; }

private:
    TWeak<TControl> FFocusControl;
};

} // namespace tarn
