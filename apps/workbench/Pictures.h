#pragma once

#include <filesystem>
#include <string>

namespace tarn {

class TFrontEnd;
class TMenuItem;

/// Saves the windows that are open as one picture, back to front, each with its title above it, as
/// NAME.png in a folder; with the menu that holds `item` open, unless that is null. Raises
/// EFileError when it cannot be written.
void SavePicture(TFrontEnd& frontEnd, const std::filesystem::path& folder, const std::string& name,
                 TMenuItem* item);

} // namespace tarn
