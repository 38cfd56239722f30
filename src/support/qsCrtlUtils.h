#pragma once

/// The screen: which form is active, forms by their class, and the painting of a control.

#include "vcl/Forms.h"

#include <cstdint>
#include <string_view>

namespace tarn {

/// How far a repaint goes: to the controls inside, and at once instead of with the next messages.
enum TRepaintFlag : std::uint8_t { rfAllChildren, rfUpdateNow };
using TRepaintFlags = TSet<TRepaintFlag>;
inline constexpr std::string_view RepaintFlagNames[] = {"rfAllChildren", "rfUpdateNow"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TRepaintFlag> = EnumType("TRepaintFlag", RepaintFlagNames);

// --- Forms: null when there is no such form, or no screen

/// The form that has the focus.
TForm* GetActiveForm();
/// The form that has the focus, when this is its caption, without case.
TForm* GetActiveForm(std::string_view caption);
/// The frontmost form of exactly that class; a derived class does not count.
TForm* FindFormByClass(const TClassRecord& formClass);
/// Finds the form, shows it and restores it if it is minimised.
TForm* ShowFormByClass(const TClassRecord& formClass);

// --- Painting. The first two send a message to the control's window and need an operating system

void BeginUpdateControl(TControl& control); ///< holds the painting of the control back
void EndUpdateControl(TControl& control);   ///< lets it go on
/// Invalidates and redraws the control.
void RepaintControl(TControl& control, TRepaintFlags flags = {});

} // namespace tarn
