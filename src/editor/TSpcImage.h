#pragma once

#include "vcl/TImage.h"

namespace tarn {

/// A picture in a frame: over the picture a front end paints a line around the client area.
class TSpcImage : public TImage {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TSpcImage(TComponent* owner = nullptr) : TImage(owner) {}

    TColor FrameColor() const { return FFrameColor; } ///< clNone: no line
    void SetFrameColor(TColor value);

private:
    TColor FFrameColor = clBlack;
};

} // namespace tarn
