#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TSession;

// What a user does in the window of the settings editor, and sees of it. The window must be the
// active form. All raise EScriptError: that for wrong usage when there is no such node, row, item
// or action, naming those there are; that for refused when it cannot be used now.
//
// What the editor raises meanwhile is shown as the application shows it, and is no fault of these.

/// The nodes that are seen, the selected one with a *; a + behind one hides the nodes below it.
std::string SettingsTreeText();
/// Clicks the node with those captions from the top, with | between; that of the root may be left
/// out. The nodes above it are expanded.
void ClickSettingsNode(TSession& session, std::string_view path);

/// The rows, a line each: caption, class of the control, LEFT,TOP WIDTHxHEIGHT in pixels of its
/// area, whether it is disabled, and the value as the user sees it.
std::string SettingsRowsText();
/// Acts on the row of that caption or property name.
/// \param args the action, and its argument when it has one
void UseSettingsRow(TSession& session, std::string_view row, const std::vector<std::string>& args);

/// Closes the window, as its user does; false when another form is active.
bool CloseSettingsForm(TSession& session);

} // namespace tarn
