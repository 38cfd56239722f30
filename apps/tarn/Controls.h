#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

class TControl;
class TSession;

/// Does something that a user does. What it raises the application shows, as for any other command
/// of the user's; but EScriptError passes on.
/// \param action false when it could not be done, which is the result
bool DoAsUser(TSession& session, const std::function<bool()>& action);

// What a user does to the controls of the active form, and sees of them, by their component names.
// All raise EScriptError: that for wrong usage when the form has no such control, line or item,
// that for refused when it cannot be used now.
//
// A line of a list is its number from 1 or, with or without case, its text.

/// Clicks the first line, and the others with Ctrl held down.
void ClickLines(std::string_view list, std::span<const std::string> lines);
void DoubleClickLine(std::string_view list, std::string_view line);
/// Drags a line, with all that are selected when it is, in front of another one; the number behind
/// the last line stands for the end.
void DragLine(std::string_view list, std::string_view from, std::string_view to);
/// Each line, the selected ones with a *.
std::string ListText(std::string_view list);

/// Puts the focus into a field and types the text in place of what it holds.
void FillField(std::string_view field, std::string_view text);
/// The text of a field; of a combo box, the lines that it offers below.
std::string FieldText(std::string_view field);

/// Opens the pop-up menu of that name, or of the control of that name, and clicks an item of it: by
/// its component name or its caption, with | between those of a menu and its item.
void ClickPopup(std::string_view menu, std::string_view item);
/// The same for the pop-up menu of a control.
void ClickPopup(TControl& control, std::string_view item);
/// Its items as they are when it is opened: caption, (component name), state.
std::string PopupText(std::string_view menu);

/// Lets time go by, and the timers do what they do meanwhile.
void Wait(TSession& session, std::uint64_t milliseconds);

} // namespace tarn
