#pragma once

#include "rtl/TStrings.h"
#include "vcl/Graphics.h"
#include "vcl/TControl.h"

namespace tarn {

/// A colour, chosen from a list of those that have a name, from a dialog of all, or typed. What the
/// program changes does not fire OnChange.
class TColorEdit : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TColorEdit(TComponent* owner = nullptr) : TControl(owner) {}

    TColor SelectedColor() const { return FSelectedColor; }
    void SetSelectedColor(TColor value);
    /// The lines of the list: what ColorNames has.
    static const TStrings& Items();
    /// The colour as ColorToString writes it.
    std::string ShownText() const { return ColorToString(FSelectedColor); }

    // What the user does. False, and nothing, while the control is disabled or hidden.
    bool ChooseColor(TColor color);
    bool TypeText(std::string_view text); ///< false also for what StringToColor does not read

    TNotifyEvent OnChange; ///< the user has chosen another colour

private:
    TColor FSelectedColor = clBlack;
};

} // namespace tarn
