#pragma once

#include "rtl/TStrings.h"
#include "vcl/TControl.h"

namespace tarn {

/// A font, of which the name and the size are chosen or typed, and the rest in a dialog. What the
/// program changes does not fire OnChange.
class TFontEdit : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TFontEdit(TComponent* owner = nullptr);

    const TFont& SelectedFont() const { return FSelectedFont; }
    void SetSelectedFont(const TFont& value); ///< a copy is kept
    TFont* SelectedFontObject() const;        ///< published as "SelectedFont"

    /// Whether the list offers the fonts of the screen.
    bool ListInstalledFonts() const { return FListInstalledFonts; }
    void SetListInstalledFonts(bool value);
    /// The names that the list offers, those of the screen or none.
    const TStrings& Items() const;

    /// The name and the size in points, for example "Arial, 9"; "9" for the system's font, which
    /// has no name, and no size where the system's is taken.
    std::string ShownText() const;

    // What the user does. False, and nothing, while the control is disabled or hidden.
    bool ChooseFont(const TFont& font);
    bool ChooseName(std::string_view name); ///< any name: a font that is missing may come later
    bool ChooseSize(int size);              ///< in points, false also below 1

    TNotifyEvent OnChange; ///< the user has chosen another font

private:
    void SelectedFontChanged(TObject*) { StateChanged(); }

    TFont FSelectedFont;
    bool FListInstalledFonts = true;
};

} // namespace tarn
