#pragma once

#include "vcl/TEdit.h"

namespace tarn {

/// A whole number that can be typed and stepped up and down.
class TSpinEdit : public TEdit {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TSpinEdit(TComponent* owner = nullptr) : TEdit(owner) { SetValue(0); }

    /// The number of the text, brought between the limits; that of a text that is no number is the
    /// least one, or 0 without limits. The text stays as it was typed.
    int Value() const;
    void SetValue(int value);
    int MinValue() const { return FMinValue; }
    void SetMinValue(int value);
    int MaxValue() const { return FMaxValue; } ///< there are no limits when it equals MinValue
    void SetMaxValue(int value);
    int Increment = 1; ///< what a step adds

    /// Steps as a user does, down when `count` is below 0; the value stays between the limits.
    /// False, and nothing, while the control is read-only, disabled or hidden.
    bool Step(int count);

private:
    int Limited(std::int64_t value) const;

    int FMinValue = 0;
    int FMaxValue = 0;
};

} // namespace tarn
