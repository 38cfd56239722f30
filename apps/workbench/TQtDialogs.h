#pragma once

#include "os/portable/TUserDialogs.h"

#include <QString>

class QDialog;
class QWidget;

namespace tarn {

/// Dialogs as windows of the desktop.
class TQtDialogs final : public TUserDialogs {
public:
    TDialogAnswer MessageBox(std::string_view text, std::string_view caption,
                             std::uint32_t flags) override;
    std::optional<std::string> SelectDirectory(std::string_view title,
                                               std::string_view folder) override;
    std::vector<std::string> ChooseFiles(const TFileQuestion& question) override;
    std::optional<std::string> InputText(std::string_view caption, std::string_view prompt,
                                         std::string_view value) override;
};

/// Gives a dialog a title, and at least the width that shows it whole.
void SetTitle(QDialog& dialog, const QString& title);

/// Has a modal window stand in front of those that stay in front of all others. To be called before
/// it is shown.
void ComeInFront(QWidget& window);

/// Shows a dialog until it is closed; the window that was active is the active one again then.
bool Execute(QDialog& dialog);

/// A filter "Texts (*.txt)|*.txt|All|*.*" as Qt has it.
QString FilterOf(std::string_view filter);

} // namespace tarn
