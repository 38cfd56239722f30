#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tarn {

class TPersistent;

// The settings of the pack that runs, by paths. A path leads through the settings tree as the
// settings editor shows it, its names without case and with points between:
//
//   MenuData.SortLinesItem.Caption               a list, an identifier in it, a property
//   CustomData.EditorManagerData.SafeStringMoving  an expert's own setting
//   EditorManagerData.SafeStringMoving           the same; "CustomData" may be left out
//   ExpManagerData.EditorFormData.AutoSaveSetting  through an object in a property
//
// Identifiers may have points in them. All raise EScriptError naming what would have been right: 1
// while the pack is not started, 2 for a path that leads nowhere and for a value that is none.

/// The text of a setting: of a colour its name or "$00BBGGRR", of a list of strings its lines, each
/// with LF behind it, else as GetPropAsText has it.
std::string GetSetting(std::string_view path);
/// Sets it from such a text; what is refused leaves it as it was. What tells an item from others,
/// and what the program alone decides, cannot be changed.
void SetSetting(std::string_view path, std::string_view text);

/// "PATH=VALUE" for each setting below a path, which may be a setting itself, in the order of the
/// tree; of all for the empty path. Values are shown, see ShownSetting.
std::string ListSettings(std::string_view path);

/// A text on one line: as it is where it can be seen, else in double quotes with the escapes of
/// scripts.
std::string ShownSetting(std::string_view text);
/// The text that is shown so. Raises EScriptError for a text in quotes that is not well formed.
std::string SettingOfShown(std::string_view shown);

/// Whether a TFilteringWriter keeps a property when the settings are written without what a path
/// leads to: a setting, a node with all below it, an item but for its identifier.
using TSettingFilter = std::function<bool(const TPersistent& instance, std::string_view path)>;
TSettingFilter SettingsWithout(std::string_view path);

} // namespace tarn
