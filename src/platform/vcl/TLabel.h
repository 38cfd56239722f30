#pragma once

#include "vcl/TAlignment.h"
#include "vcl/TControl.h"

namespace tarn {

/// A text that stands beside another control, of one line or several.
class TLabel : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TLabel(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }
    void SetText(std::string_view value) override;

    TAlignment Alignment() const { return FAlignment; }
    void SetAlignment(TAlignment value);
    /// Whether a change of the caption or the font makes the label as large as its text; the left
    /// edge stays, or with taRightJustify the right one. The label of an empty caption has no
    /// width. Bounds that are set afterwards hold until the next such change.
    bool AutoSize() const { return FAutoSize; }
    void SetAutoSize(bool value);

    /// The control that the hotkey of the caption gives the focus to.
    TControl* FocusControl() const { return FFocusControl.Get(); }
    void SetFocusControl(TControl* value) { FFocusControl = value; }

    /// Clicks the label as a user does, which leaves the focus where it is; false while the label
    /// is disabled or hidden.
    bool Click();
    TNotifyEvent OnClick;

protected:
    void FontChanged() override;
    void Loaded() override;

private:
    void AdjustBounds();

    TWeak<TControl> FFocusControl;
    TAlignment FAlignment = taLeftJustify;
    bool FAutoSize = true;
};

} // namespace tarn
