#pragma once

#include "rtl/TObject.h"
#include "vcl/TAlignment.h"
#include "vcl/TFont.h"

namespace tarn {

/// How one of the two areas of the editor's rows is laid out, the labels or the controls. Widths
/// and margins are in pixels.
class TPaintAreaInfo : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TPaintAreaInfo();

    TAlignment Alignment() const { return FAlignment; }
    void SetAlignment(TAlignment value) { Change(FAlignment, value); }
    int DefAreaWidth() const { return FDefAreaWidth; }
    void SetDefAreaWidth(int value) { Change(FDefAreaWidth, value); }
    TFont* Font() const { return const_cast<TFont*>(&FFont); }
    void SetFont(TFont* value) { FFont.Assign(value); }
    int LeftMargin() const { return FLeftMargin; }
    void SetLeftMargin(int value) { Change(FLeftMargin, value); }
    int RightMargin() const { return FRightMargin; }
    void SetRightMargin(int value) { Change(FRightMargin, value); }

    void Assign(const TPersistent* source) override;

    TNotifyEvent OnChange; ///< the layout or the font is another one

protected:
    template <class V> void Change(V& field, V value) {
        if (field == value) return;
        field = value;
        Changed(this);
    }

private:
    void Changed(TObject*);

    TAlignment FAlignment = taLeftJustify;
    int FDefAreaWidth = 0;
    int FLeftMargin = 0;
    int FRightMargin = 0;
    TFont FFont;
};

class TLabelAreaInfo : public TPaintAreaInfo {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TLabelAreaInfo();

    /// Whether the label area grows to the widest label.
    bool AutoWidth() const { return FAutoWidth; }
    void SetAutoWidth(bool value) { Change(FAutoWidth, value); }

    void Assign(const TPersistent* source) override;

private:
    bool FAutoWidth = true;
};

class TControlAreaInfo : public TPaintAreaInfo {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TControlAreaInfo();
};

} // namespace tarn
