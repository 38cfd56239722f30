#pragma once

#include "vcl/TControl.h"

namespace tarn {

/// A surface that holds other controls, with a caption of its own.
class TPanel : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TPanel(TComponent* owner = nullptr) : TControl(owner) {}

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }
};

} // namespace tarn
