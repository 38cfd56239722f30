#pragma once

#include "os/portable/TUserDialogs.h"

#include <QString>

namespace tarn {

/// Dialogs as windows of the desktop.
class TQtDialogs final : public TUserDialogs {
public:
    TDialogAnswer MessageBox(std::string_view text, std::string_view caption,
                             std::uint32_t flags) override;
    std::optional<std::string> SelectDirectory(std::string_view title,
                                               std::string_view folder) override;
    std::optional<std::string> ChooseFile(const TFileQuestion& question) override;
    std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                         std::string_view value) override;
};

/// A filter "Texts (*.txt)|*.txt|All|*.*" as Qt has it.
QString FilterOf(std::string_view filter);

} // namespace tarn
