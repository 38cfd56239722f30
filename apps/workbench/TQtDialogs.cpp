#include "TQtDialogs.h"

#include "TMirror.h"

#include <QtWidgets>

namespace tarn {
namespace {

QMessageBox::Icon IconOf(std::uint32_t flags) {
    switch (flags & 0xF0) {
    case MB_ICONERROR:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONWARNING:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

/// The window that a dialog belongs to, which is the active one again when that is closed.
class TDialogOwner {
public:
    TDialogOwner() : FWindow(QApplication::activeWindow()) {}
    TDialogOwner(const TDialogOwner&) = delete;
    TDialogOwner& operator=(const TDialogOwner&) = delete;
    ~TDialogOwner() {
        if (FWindow && FWindow->isVisible() && !QApplication::activeWindow())
            FWindow->activateWindow();
    }
    QWidget* Window() const { return FWindow; }

private:
    QPointer<QWidget> FWindow;
};

} // namespace

void SetTitle(QDialog& dialog, const QString& title) {
    constexpr int frame = 200; // pixels of a title bar that its buttons take
    dialog.setWindowTitle(title);
    dialog.setMinimumWidth(QFontMetrics(QApplication::font()).horizontalAdvance(title) + frame);
}

void ComeInFront(QWidget& window) {
    for (const QWidget* const other : QApplication::topLevelWidgets())
        if (other->isVisible() && other->windowFlags().testFlag(Qt::WindowStaysOnTopHint))
            window.setWindowFlag(Qt::WindowStaysOnTopHint);
}

bool Execute(QDialog& dialog) {
    const TDialogOwner owner;
    ComeInFront(dialog);
    return dialog.exec() == QDialog::Accepted;
}

TDialogAnswer TQtDialogs::MessageBox(std::string_view text, std::string_view caption,
                                     std::uint32_t flags) {
    const TDialogOwner owner;
    QMessageBox box(IconOf(flags), FromText(caption), FromText(text), QMessageBox::NoButton,
                    owner.Window());
    box.setTextFormat(Qt::PlainText);
    const std::uint32_t buttons = flags & 0xF;
    if (buttons == MB_OK) {
        box.setStandardButtons(QMessageBox::Ok);
        ComeInFront(box);
        box.exec();
        return IDOK;
    }
    const bool cancels = buttons == MB_YESNOCANCEL;
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No |
                           (cancels ? QMessageBox::Cancel : QMessageBox::NoButton));
    box.setEscapeButton(cancels ? QMessageBox::Cancel : QMessageBox::No);
    if ((flags & MB_DEFBUTTON2) != 0) box.setDefaultButton(QMessageBox::No);
    ComeInFront(box);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return IDYES;
    case QMessageBox::Cancel:
        return IDCANCEL;
    default:
        return IDNO;
    }
}

std::optional<std::string> TQtDialogs::SelectDirectory(std::string_view title,
                                                       std::string_view folder) {
    const TDialogOwner owner;
    QFileDialog dialog(owner.Window(), FromText(title), FromText(folder));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (!Execute(dialog)) return std::nullopt;
    return ToText(dialog.selectedFiles().front());
}

QString FilterOf(std::string_view filter) {
    const QStringList parts = FromText(filter).split('|');
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString name = parts[i].section('(', 0, 0).trimmed();
        QString patterns = parts[i + 1];
        result << name + " (" + patterns.replace(';', ' ').replace("*.*", "*") + ")";
    }
    return result.join(";;");
}

std::vector<std::string> TQtDialogs::ChooseFiles(const TFileQuestion& question) {
    const TDialogOwner owner;
    QFileDialog dialog(owner.Window(), FromText(question.Title));
    dialog.setNameFilters(FilterOf(question.Filter).split(";;"));
    dialog.setAcceptMode(question.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(question.Save      ? QFileDialog::AnyFile
                       : question.Several ? QFileDialog::ExistingFiles
                                          : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // whoever asks for the file does that
    dialog.setDefaultSuffix(FromText(question.DefaultExt));
    if (!question.FileName.empty())
        dialog.selectFile(FromText(question.FileName));
    else if (!question.InitialDir.empty())
        dialog.setDirectory(FromText(question.InitialDir));
    if (!Execute(dialog)) return {};
    std::vector<std::string> files;
    for (const QString& file : dialog.selectedFiles()) files.push_back(ToText(file));
    return files;
}

std::optional<std::string> TQtDialogs::InputText(std::string_view caption, std::string_view prompt,
                                                 std::string_view value) {
    const TDialogOwner owner;
    QDialog dialog(owner.Window());
    SetTitle(dialog, FromText(caption));
    auto* const column = new QVBoxLayout(&dialog);
    auto* const label = new QLabel(FromText(prompt));
    auto* const line = new QLineEdit(FromText(value));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(line);
    line->selectAll();
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    column->addWidget(label);
    column->addWidget(line);
    column->addWidget(buttons);
    if (!Execute(dialog)) return std::nullopt;
    return ToText(line->text());
}

} // namespace tarn
