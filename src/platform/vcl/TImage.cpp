#include "vcl/TImage.h"

namespace tarn {
namespace {

constexpr TPropInfo ImageProps[] = {
    Published<&TImage::PictureObject>("Picture"),
    Published<&TImage::Stretch, &TImage::SetStretch>("Stretch", {.Default = false}),
    Published<&TImage::OnChange>("OnChange"),
    Published<&TImage::OnDblClick>("OnDblClick"),
};

} // namespace

constinit const TClassRecord TImage::ClassRecord{"TImage", &TControl::ClassRecord,
                                                 CreateObject<TImage>, ImageProps};

TImage::TImage(TComponent* owner) : TControl(owner) {
    FPicture.OnChange = TNotifyEvent::Of<&TImage::PictureChanged>(this);
}

TPicture* TImage::PictureObject() const {
    return &const_cast<TImage*>(this)->FPicture;
}

void TImage::PictureChanged(TObject*) {
    StateChanged();
    if (const TNotifyEvent handler = OnChange) handler(this);
}

void TImage::SetStretch(bool value) {
    FStretch = value;
    StateChanged();
}

bool TImage::DblClick() {
    if (!CanFocus()) return false;
    if (const TNotifyEvent handler = OnDblClick) handler(this);
    return true;
}

} // namespace tarn
