#include "TSpcImage.h"

namespace tarn {
namespace {

constexpr TPropInfo SpcImageProps[] = {
    Published<&TSpcImage::FrameColor, &TSpcImage::SetFrameColor>(
        "FrameColor", {.Default = clBlack, .Type = &ColorType}),
};

} // namespace

constinit const TClassRecord TSpcImage::ClassRecord{"TSpcImage", &TImage::ClassRecord,
                                                    CreateObject<TSpcImage>, SpcImageProps};

void TSpcImage::SetFrameColor(TColor value) {
    FFrameColor = value;
    StateChanged();
}

} // namespace tarn
