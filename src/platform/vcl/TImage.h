#pragma once

#include "vcl/TControl.h"
#include "vcl/TPicture.h"

namespace tarn {

/// Shows a picture.
class TImage : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TImage(TComponent* owner = nullptr);

    TPicture& Picture() { return FPicture; }
    TPicture* PictureObject() const; ///< published as "Picture"
    void SetPicture(const TPicture& value) { FPicture.Assign(&value); }
    bool Stretch() const { return FStretch; } ///< the picture takes the size of the control
    void SetStretch(bool value);

    bool DblClick(); ///< by the user; false while the control is disabled or hidden
    TNotifyEvent OnDblClick;
    TNotifyEvent OnChange; ///< the picture is another one, by whomever

private:
    void PictureChanged(TObject*);

    TPicture FPicture;
    bool FStretch = false;
};

} // namespace tarn
