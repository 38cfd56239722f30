#pragma once

#include "rtl/TStrings.h"
#include "vcl/TEdit.h"

namespace tarn {

enum TScrollStyle : std::uint8_t { ssNone, ssHorizontal, ssVertical, ssBoth };
inline constexpr std::string_view ScrollStyleNames[] = {"ssNone", "ssHorizontal", "ssVertical",
                                                        "ssBoth"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TScrollStyle> = EnumType("TScrollStyle", ScrollStyleNames);

/// A text of several lines. Text has the lines with CR LF between them, and behind the last one
/// when the text that was set had a break there or the lines were changed as lines; so Text and
/// Lines never disagree, and a text comes back as it was but for the kind of its breaks.
class TMemo : public TCustomEdit {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TMemo(TComponent* owner = nullptr);

    const std::string& Text() const override;
    /// The lines; to change them puts the caret before the text. An update of many lines tells
    /// OnChange and the front end once.
    TStrings& Lines() { return FLines; }
    TStrings* LinesObject() const; ///< published as "Lines"

    bool WordWrap() const { return FWordWrap; }
    void SetWordWrap(bool value);
    TScrollStyle ScrollBars() const { return FScrollBars; }
    void SetScrollBars(TScrollStyle value);

    /// Enter breaks the line, unless the text is read-only.
    bool WantsKey(TShortCut key) const override { return key == VK_RETURN && !ReadOnly(); }

protected:
    std::string Kept(std::string_view text) const override;
    void Store(const std::string& text) override;
    std::string_view EnterText() const override;

private:
    void LinesChanged(TObject*);

    TStringList FLines;
    bool FStoring = false; ///< the lines follow the text
    mutable bool FTextKnown = true;
    mutable std::string FText; ///< of the lines, when it is known
    bool FWordWrap = true;
    TScrollStyle FScrollBars = ssNone;
};

} // namespace tarn
