#pragma once

#include "Cpu/TMachineState.h"

#include <memory>

namespace tarn {

/// The machine state of a recording, see docs/cpu-recording.md.
/// \param fileName for errors, which are of class ECpuError: "FILE:LINE: reason"
std::shared_ptr<const TMachineState> ReadRecording(std::string_view text,
                                                   std::string_view fileName);

/// The same from a file of at most 4 MB. Raises EFileError as well.
std::shared_ptr<const TMachineState> LoadRecording(std::string_view fileName);

} // namespace tarn
