#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// A setting of the pack by its path: the stored name of a settings object and a property, for
/// example "EditorManagerData.SafeStringMoving", or one of the lists, an identifier and a property,
/// for example "MenuData.SortLinesItem.Caption" or "ActiveExperts.UnitManager.Active". Names are
/// found without case. Raises EScriptError naming what would have been right.
std::string GetSetting(std::string_view path);
/// Sets it from its text: True or False, a whole number, or the text itself.
void SetSetting(std::string_view path, std::string_view value);

} // namespace tarn
