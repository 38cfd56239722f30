#pragma once

#include <span>
#include <string>
#include <vector>

class QWidget;

namespace tarn {

class TProjectModule;

/// Asks which units of the projects are to be opened; their full file names, none when that is
/// cancelled. \param window the one that the dialog stands in front of
std::vector<std::string> AskForUnits(QWidget& window,
                                     std::span<const TProjectModule* const> projects);

} // namespace tarn
