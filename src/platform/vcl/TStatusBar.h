#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A line at the bottom of a form that says how things are.
class TStatusBar : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TStatusBar(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& SimpleText() const { return Text(); }
    void SetSimpleText(std::string_view value) { SetText(value); }
};

} // namespace tarn
