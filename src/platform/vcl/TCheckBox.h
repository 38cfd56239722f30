#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A box that is checked or not, with a caption.
class TCheckBox : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCheckBox(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }
    bool Checked() const { return FChecked; }
    void SetChecked(bool value); ///< the program's own change does not fire OnClick

    /// Turns the check over as a user's click does; false while the box is disabled or hidden.
    bool Click();
    TNotifyEvent OnClick;

private:
    bool FChecked = false;
};

} // namespace tarn
