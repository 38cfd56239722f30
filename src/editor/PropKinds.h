#pragma once

#include "TControlInfo.h"

#include <span>
#include <string>

namespace tarn {

class TSpcEditor;

/// One kind of rows: which properties it takes, the control that edits them, and how a value moves
/// between the two. An editor's kinds stand in a table; the first that recognises a property takes
/// it.
struct TPropKind {
    std::int32_t Tag;      ///< the row's ETag
    std::string_view Name; ///< of its parameter section, "Control" behind it
    bool (*Recognises)(const TPropInfo& prop);
    /// Makes the control, whose owner becomes the row, and wires its change event to `change`. Null
    /// for a kind without rows.
    /// \param info has the instance and the property
    TControl* (*Create)(TSpcEditor& editor, TControlInfo& info, TNotifyEvent change);
    /// Fills the control from the property.
    void (*Fill)(TSpcEditor& editor, TControlInfo& info);
    /// Writes the control's content into the property; what is no value raises EConvertError.
    void (*Read)(TSpcEditor& editor, TControlInfo& info);
};

/// The first kind that takes the property; null when none does.
const TPropKind* FindKind(std::span<const TPropKind> kinds, const TPropInfo& prop);
/// The kind of that tag; null when there is none.
const TPropKind* KindOfTag(std::span<const TPropKind> kinds, std::int32_t tag);

// The editor kinds; 0 is none.
enum TEditorKind : std::int32_t {
    ekNone,
    ekInteger,
    ekChar,
    ekFloat,
    ekString,
    ekEnum,
    ekBoolean,
    ekSet,
    ekComponent
};
/// The built-in kinds.
std::span<const TPropKind> BuiltInKinds();
/// The default text of the editor's parameter sections.
std::string BuiltInParams();

// The extended kinds.
enum TExtendedKind : std::int32_t {
    xkNone,
    xkSpinInt,
    xkCheckStrings,
    xkSelectStrings,
    xkColor,
    xkDate,
    xkTime,
    xkFont,
    xkPicture,
    xkGraphic,
    xkStrings,
    xkShortCut,
    xkShortCutString
};
/// The extended kinds, whose controls find their menus and dialogs in a TSpcEditorPro.
std::span<const TPropKind> ExtendedKinds();
/// What they add to the parameter sections.
std::string ExtendedParams();

// --- For the tables ----------------------------------------------------------------------------

template <class T> T& ControlOf(const TControlInfo& info) {
    return static_cast<T&>(*info.EControl);
}

/// The value of a property in the slot of its kind.
template <class Slot> Slot PropValue(const TControlInfo& info) {
    Slot slot{};
    info.EPropInfo->Get(*info.EInstance, &slot);
    return slot;
}
template <class Slot> void SetPropValue(const TControlInfo& info, const Slot& slot) {
    info.EPropInfo->Set(*info.EInstance, &slot);
}

/// The height of a control of one line in the font, with so many pixels of frame.
int LineHeight(const TControl& control, int frame);

} // namespace tarn
