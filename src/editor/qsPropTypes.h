#pragma once

#include "rtl/TStrings.h"
#include "vcl/TFont.h"
#include "vcl/TItemStrings.h"
#include "vcl/TPicture.h"

#include <cstdint>

namespace tarn {

// Types by which a settings class asks for a control of its own; see also ColorType, ShortCutType,
// ShortCutStringType and the types of moments.

/// A whole number in a field with arrows: `Published<&T::Count>("Count", {.Type = &SpinIntType})`.
using TSpinInt = std::int32_t;
inline constexpr TTypeInfo SpinIntType = IntegerType<TSpinInt>("TSpinInt");

/// Lines each of which is checked or not. The check goes with its line. Streams have the checks as
/// "Checked", the numbers of the checked lines from 0.
class TCheckStrings : public TItemStrings {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Raises EStringListError outside the lines.
    void SetChecked(int index, bool value);
    /// Lines and checks of another list; from a list without checks no line is checked.
    void Assign(const TPersistent* source) override;

protected:
    void DefineProperties(TFiler& filer) override;

private:
    bool HasChecks() const;
    bool SameChecks(const TItemStrings& other) const;
    void ReadChecks(TReader& reader);
    void WriteChecks(TWriter& writer) const;
};

/// Lines one of which is selected.
class TSelectStrings : public TStringList {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// The selected line; -1, or what is outside the lines, is none. Changes of the lines leave it.
    int SelectedIndex = -1;

    /// Lines and index of another list; from one without an index the lines alone.
    void Assign(const TPersistent* source) override;
};

/// Lines in a memo.
class TMemoStrings : public TStringList {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};

/// A picture.
class TPictureEx : public TPicture {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};

/// A font.
class TFontEx : public TFont {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};

} // namespace tarn
