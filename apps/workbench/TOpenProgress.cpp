#include "TOpenProgress.h"

#include "TQtDialogs.h"

#include <QApplication>
#include <QFileInfo>

namespace tarn {
namespace {

constexpr std::uint64_t BigFile = 8 << 20; // bytes; less is open before a dialog is seen
constexpr int PartSteps = 100;

} // namespace

TOpenProgress::TOpenProgress(QWidget* window, QString fileName)
    : FWindow(window), FFileName(std::move(fileName)) {}

bool TOpenProgress::Step(TPart part, std::uint64_t done, std::uint64_t size) {
    if (size < BigFile) return true;
    if (!FDialog) {
        const QString text = "Opening " + QFileInfo(FFileName).fileName();
        FDialog = std::make_unique<QProgressDialog>(text, "Cancel", 0, 2 * PartSteps, FWindow);
        SetTitle(*FDialog, QApplication::applicationDisplayName());
        FDialog->setWindowModality(Qt::ApplicationModal);
        FDialog->setAutoReset(false);
        FDialog->setMinimumDuration(0);
    }
    const auto steps = static_cast<int>(done * PartSteps / size);
    // Paints what has to be painted and takes the click on the button.
    FDialog->setValue(part * PartSteps + steps);
    return !FDialog->wasCanceled();
}

} // namespace tarn
