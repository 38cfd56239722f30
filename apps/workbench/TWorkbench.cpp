#include "TWorkbench.h"

#include "Cpu.h"
#include "Modules/FileNames.h"
#include "Source/TSourceBuffer.h"
#include "TEditorMirror.h"
#include "TFormMirror.h"
#include "TOpenProgress.h"
#include "UnitDialog.h"
#include "rtl/EAbort.h"
#include "rtl/ReadProgress.h"
#include "rtl/SysUtils.h"
#include "vcl/Dialogs.h"

#include <QApplication>
#include <QDateTime>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSessionManager>
#include <QSettings>
#include <QStatusBar>

#include <array>
#include <filesystem>
#include <fstream>

namespace tarn {
namespace fs = std::filesystem;

// --- Commands ---------------------------------------------------------------------------------

namespace {

constexpr TVirtualKey VK_F3 = 0x72, VK_F4 = 0x73, VK_F12 = 0x7B;

const char* const PlaceKey = "MainWindow"; ///< in the file that the place is kept in

} // namespace

/// A command of the desktop: an item of the IDE's menu that has none there, or one more behind an
/// item.
struct TWorkbench::TCommandRow {
    std::string_view Item;
    std::string_view Behind;  ///< the item before a new one; empty for one of the IDE's
    std::string_view Caption; ///< of a new one
    TShortCut ShortCut;
    TRun Run;
    TNeed Need;
};

constexpr TWorkbench::TCommandRow TWorkbench::CommandRows[] = {
    {"FileOpenItem", "", "", scCtrl | 'O', &TWorkbench::OpenFiles, neNothing},
    {"FileSaveAsItem", "FileSaveItem", "Save &As...", 0, &TWorkbench::SaveAs, neFile},
    {"FileExitItem", "", "", scAlt | VK_F4, &TWorkbench::Leave, neNothing},
    {"SearchFindItem", "", "", scCtrl | 'F', &TWorkbench::Find, neFile},
    {"SearchAgainItem", "", "", VK_F3, &TWorkbench::FindAgain, neFile},
    {"SearchBackItem", "SearchAgainItem", "Search Again &Backwards", scShift | VK_F3,
     &TWorkbench::FindBefore, neFile},
    {"SearchGoToItem", "", "", scCtrl | 'G', &TWorkbench::GoToLine, neFile},
    {"ViewNextFileItem", "ViewFormItem", "&Next File", scCtrl | VK_TAB, &TWorkbench::ShowNextFile,
     neFile},
    {"ViewFileBeforeItem", "ViewNextFileItem", "File &Before", scShift | scCtrl | VK_TAB,
     &TWorkbench::ShowFileBefore, neFile},
    {"ViewUnitItem", "", "", scCtrl | VK_F12, &TWorkbench::OpenUnits, neProject},
    {"ViewCpuWindowItem", "ViewToggleFormItem", "&CPU Window", scCtrl | scAlt | 'C',
     &TWorkbench::ShowCpu, neStop},
    {"HelpAboutItem", "", "", 0, &TWorkbench::ShowAbout, neNothing},
};

class TWorkbench::TCommand : public TAction {
public:
    TCommand(TWorkbench& workbench, const TCommandRow& row) : FWorkbench(workbench), FRow(row) {
        OnExecute = TNotifyEvent::Of<&TCommand::DoExecute>(this);
        OnUpdate = TNotifyEvent::Of<&TCommand::DoUpdate>(this);
        SetShortCut(row.ShortCut);
        SetEnabled(row.Need == neNothing);
    }

private:
    void DoExecute(TObject*) { (FWorkbench.*FRow.Run)(); }
    void DoUpdate(TObject*) { SetEnabled(FWorkbench.Has(FRow.Need)); }

    TWorkbench& FWorkbench;
    const TCommandRow& FRow;
};

bool TWorkbench::Has(TNeed need) const {
    TIde& ide = FSession.Ide();
    switch (need) {
    case neFile:
        return ide.CurrentBuffer() != nullptr;
    case neProject:
        return std::any_of(ide.Modules().begin(), ide.Modules().end(), [](const auto& module) {
            return ClassCast<TProjectModule>(module.get()) != nullptr;
        });
    case neStop:
        return ide.StoppedProgram() != nullptr;
    default:
        return true;
    }
}

void TWorkbench::AddCommand(const TCommandRow& row) {
    TIdeMainForm& form = FSession.Ide().MainForm();
    const auto find = [&](std::string_view name) {
        return dynamic_cast<TMenuItem*>(form.FindComponent(name));
    };
    TMenuItem* item = find(row.Item);
    if (!item) {
        TMenuItem* const behind = find(row.Behind);
        TMenuItem* const menu = behind ? behind->Parent() : nullptr;
        if (!menu) return;
        item = new TMenuItem(&form);
        item->SetName(row.Item);
        item->SetCaption(row.Caption);
        menu->Insert(behind->MenuIndex() + 1, item);
    }
    TCommand& command = *FCommands.emplace_back(std::make_unique<TCommand>(*this, row));
    command.SetCaption(item->Caption());
    command.SetActionList(&form.ActionList());
    item->SetAction(&command);
}

TWorkbench::TWorkbench(TSession& session)
    : FSession(session), FFrontEnd(session), FFinder(session.Ide(), Window()) {
    Application()->OnModal = TMethod<void(TForm&)>::Of<&TFrontEnd::RunModal>(&FFrontEnd);
    for (const TCommandRow& row : CommandRows) AddCommand(row);
    FSession.Ide().Modules().OnOverwrite = [this](const TSourceBuffer& buffer) {
        return MayOverwrite(buffer);
    };
    // The pack's posted messages, and the state of its commands.
    connect(&FIdle, &QTimer::timeout, this, [this] { FFrontEnd.Pump(); });
    FIdle.start(50);
    connect(&FRecoveryTimer, &QTimer::timeout, this,
            [this] { FollowRecovery(TRecovery::TTime::clock::now()); });
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
        const bool mayAsk = manager.allowsInteraction();
        if (!EndSession(mayAsk)) manager.cancel();
        if (mayAsk) manager.release();
    });
}

TWorkbench::~TWorkbench() {
    if (!FPlaceFile.isEmpty())
        QSettings(FPlaceFile, QSettings::IniFormat).setValue(PlaceKey, Window().saveGeometry());
    FSession.Ide().Modules().OnOverwrite = nullptr;
    if (FRecovery) FRecovery->WriteNow(FSession.Ide().EditWindow().LoadedBuffers());
}

QMainWindow& TWorkbench::Window() {
    FFrontEnd.Flush();
    return static_cast<QMainWindow&>(*FFrontEnd.WidgetOf(FSession.Ide().MainForm()));
}

TEditorMirror& TWorkbench::EditorMirror() {
    FFrontEnd.Flush();
    return static_cast<TEditorMirror&>(*FFrontEnd.MirrorOf(FSession.Ide().EditWindow().Editor()));
}

void TWorkbench::Start() {
    FSession.StartPack();
    FFrontEnd.Pump();
    QMainWindow& window = Window();
    window.setAcceptDrops(true);
    window.installEventFilter(this);
    EditorMirror().View().viewport()->installEventFilter(this);
    window.show();
}

void TWorkbench::KeepPlace(const std::string& file) {
    FPlaceFile = FromText(file);
    const QSettings settings(FPlaceFile, QSettings::IniFormat);
    Window().restoreGeometry(settings.value(PlaceKey).toByteArray());
}

void TWorkbench::Leave() {
    Window().close();
}

void TWorkbench::ShowCpu() {
    FSession.Ide().ShowCpuWindow();
}

void TWorkbench::ShowAbout() {
    FSession.OS().MessageBox(0, "TarnExperts in an embedded IDE, version " TARN_VERSION,
                             Application()->Title, MB_OK | MB_ICONINFORMATION);
}

// --- Files ------------------------------------------------------------------------------------

namespace {

/// Refuses a file that is no text: bytes of a program or a picture are nothing to edit.
void RequireText(const std::string& fileName) {
    std::error_code error;
    if (!fs::is_regular_file(fileName, error)) return; // opening it says what is wrong
    std::array<char, 8000> start{};
    std::ifstream stream(fileName, std::ios::binary);
    stream.read(start.data(), start.size());
    const std::string_view bytes(start.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.find('\0') != bytes.npos)
        throw Exception(Format("cannot open %s: a binary file, not a text", {fileName}));
}

} // namespace

void TWorkbench::Open(const std::string& fileName) {
    if (!FIdle.isActive()) return; // dropped while another one is being opened
    FIdle.stop();
    FFrontEnd.AsUser([&] { OpenWatched(fileName); });
    FIdle.start();
}

void TWorkbench::OpenWatched(const std::string& fileName) {
    TIde& ide = FSession.Ide();
    TModuleList& modules = ide.Modules();
    if (HasExtension(fileName, ProjectExtensions) || HasExtension(fileName, GroupExtensions)) {
        const int before = modules.Count();
        const TIdeModule& opened = modules.OpenProject(fileName);
        if (modules.Count() == before) return;
        Window().statusBar()->showMessage(FromText(Format(
            "%s is open; View | Units opens its units", {ExtractFileName(opened.FileName())})));
        return;
    }
    static constexpr std::string_view recordings[] = {".cpu"};
    if (HasExtension(fileName, recordings)) {
        ide.StopAt(LoadStoppedProgram({.File = fileName}));
        return;
    }
    RequireText(fileName);
    TEditorMirror& editor = EditorMirror();
    TOpenProgress progress(&Window(), FromText(fileName));
    const TWeak<TSourceBuffer> before(ide.CurrentBuffer());
    const bool wasOpen = modules.Find(fileName) != nullptr;
    const auto step = [&](TOpenProgress::TPart part) {
        return [&progress, part](std::uint64_t done, std::uint64_t size) {
            return progress.Step(part, done, size);
        };
    };
    TIdeModule* opened = nullptr;
    {
        const TScopedReadProgress reading(step(TOpenProgress::opRead));
        opened = &modules.OpenFile(fileName);
    }
    const TScopedValue<TEditorMirror::TFillStep> showing(editor.OnFill,
                                                         step(TOpenProgress::opShow));
    FFrontEnd.Flush();
    if (!progress.IsGivenUp() || wasOpen) return;
    modules.Close(*opened, true);
    if (before) before->Show();
    throw EAbort("opening " + fileName + " was given up");
}

void TWorkbench::OpenFiles() {
    TOpenDialog dialog;
    dialog.Title = "Open";
    dialog.AllowMultiSelect = true;
    if (const TSourceBuffer* const buffer = FSession.Ide().CurrentBuffer())
        dialog.InitialDir = ExtractFilePath(buffer->FileName());
    dialog.Filter = "Sources (*.pas;*.cpp;*.h;*.dpr;*.dpk;*.bpr;*.bpk;*.bpg)|"
                    "*.pas;*.cpp;*.h;*.dpr;*.dpk;*.bpr;*.bpk;*.bpg|"
                    "Recordings of stopped programs (*.cpu)|*.cpu|All files (*.*)|*.*";
    if (!dialog.Execute()) return;
    for (const std::string& file : dialog.Files) Open(file);
}

std::vector<const TProjectModule*> TWorkbench::Projects() const {
    std::vector<const TProjectModule*> projects;
    for (const auto& module : FSession.Ide().Modules())
        if (const auto* const project = ClassCast<TProjectModule>(module.get()))
            projects.push_back(project);
    return projects;
}

void TWorkbench::OpenUnits() {
    for (const std::string& file : AskForUnits(Window(), Projects())) Open(file);
}

/// Goes round along the tabs.
void TWorkbench::ShowTab(int step) {
    const std::vector<TSourceBuffer*> tabs = FSession.Ide().EditWindow().Tabs();
    const auto current = std::find(tabs.begin(), tabs.end(), FSession.Ide().CurrentBuffer());
    const int count = static_cast<int>(tabs.size());
    const int index = static_cast<int>(current - tabs.begin());
    if (current != tabs.end()) tabs[(index + count + step) % count]->Show();
}

void TWorkbench::SaveAs() {
    TIdeModule& module = FSession.Ide().CurrentBuffer()->Module();
    TSaveDialog dialog;
    dialog.Title = "Save As";
    dialog.FileName = module.FileName();
    dialog.DefaultExt = ExtractFileExt(module.FileName());
    dialog.Filter = "Sources (*.pas;*.cpp;*.h)|*.pas;*.cpp;*.h|All files (*.*)|*.*";
    if (dialog.Execute()) module.SaveAs(dialog.FileName);
}

bool TWorkbench::MayOverwrite(const TSourceBuffer& buffer) {
    return FSession.OS().MessageBox(
               Application()->Handle(),
               Format("%s was changed or deleted by another program since it was read.\n\n"
                      "Write over that?",
                      {buffer.FileName()}),
               Application()->Title, MB_YESNO | MB_ICONWARNING | MB_DEFBUTTON2) == IDYES;
}

/// Files that are dropped on the window, or on the editor, which would take them for a text.
bool TWorkbench::eventFilter(QObject* object, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return QObject::eventFilter(object, event);
    auto* const drop = static_cast<QDropEvent*>(event);
    if (!drop->mimeData()->hasUrls()) return false;
    drop->acceptProposedAction();
    if (type != QEvent::Drop) return true;
    // The program that they come from waits for the end of the event, not for message boxes.
    QMetaObject::invokeMethod(
        this,
        [this, urls = drop->mimeData()->urls()] {
            for (const QUrl& url : urls)
                Open(ToText(url.isLocalFile() ? url.toLocalFile() : url.toDisplayString()));
        },
        Qt::QueuedConnection);
    return true;
}

// --- Recovery ---------------------------------------------------------------------------------

void TWorkbench::KeepRecovery(const std::string& root) {
    try {
        FRecovery = std::make_unique<TRecovery>(root);
    } catch (const EInOutError& error) {
        ShowRecoveryError(error.what());
        return;
    }
    const std::vector<std::string> left = FRecovery->TakeLeft();
    if (!left.empty()) OfferLeft(left);
    FRecoveryTimer.start(1000);
}

void TWorkbench::FollowRecovery(TRecovery::TTime now) {
    if (!FRecovery) return;
    FRecovery->Follow(FSession.Ide().EditWindow().LoadedBuffers(), now);
    ShowRecoveryError(FRecovery->Error());
}

/// Shows an error once: a box each time would keep the user from saving.
void TWorkbench::ShowRecoveryError(const std::string& error) {
    if (error == FShownError) return;
    FShownError = error;
    if (error.empty())
        Window().statusBar()->clearMessage();
    else
        Window().statusBar()->showMessage(
            FromText("What is typed is not safe from a crash: " + error));
}

namespace {

/// A recovery file in a line: its source, and when it was written.
QString LineOf(const std::string& file) {
    const QString time =
        QLocale().toString(QFileInfo(FromText(file)).lastModified(), QLocale::ShortFormat);
    try {
        const TRecoveryCopy copy = ReadRecovery(file, false);
        const auto now = IdentityOf(copy.FileName);
        const char* const state = !now                   ? " (the file is gone)"
                                  : now != copy.Identity ? " (the file has changed since)"
                                                         : "";
        return FromText(copy.FileName) + ", " + time + state;
    } catch (const std::exception& error) {
        return FromText(error.what());
    }
}

} // namespace

void TWorkbench::OfferLeft(const std::vector<std::string>& files) {
    QStringList lines;
    for (const std::string& file : files) lines << LineOf(file);
    QMessageBox box(QMessageBox::Warning, FromText(Application()->Title),
                    "The program has ended before changes of these files were saved:\n\n" +
                        lines.join('\n'),
                    QMessageBox::NoButton, &Window());
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText("Restored changes are not saved yet, and can be undone.");
    QPushButton* const restore = box.addButton("&Restore", QMessageBox::AcceptRole);
    QPushButton* const later = box.addButton("Ask &Later", QMessageBox::RejectRole);
    QPushButton* const discard = box.addButton("&Discard", QMessageBox::DestructiveRole);
    box.setDefaultButton(restore);
    box.setEscapeButton(later);
    box.exec();
    if (box.clickedButton() == restore) Restore(files);
    if (box.clickedButton() == discard)
        for (const std::string& file : files) TRecovery::Discard(file);
}

/// Each file is a command of its own: what cannot be restored keeps nothing else from it.
void TWorkbench::Restore(const std::vector<std::string>& files) {
    for (const std::string& file : files)
        FFrontEnd.AsUser([&] { FRecovery->Restore(FSession.Ide().Modules(), file); });
}

bool TWorkbench::EndSession(bool mayAsk) {
    bool ends = !mayAsk; // and so when saving fails
    if (mayAsk) FFrontEnd.AsUser([&] { ends = FSession.Ide().Modules().MayCloseAll(); });
    if (!FRecovery || !ends) return ends;
    const std::vector<TSourceBuffer*> buffers = FSession.Ide().EditWindow().LoadedBuffers();
    if (mayAsk)
        FRecovery->Forget(buffers);
    else
        FRecovery->WriteNow(buffers);
    return true;
}

} // namespace tarn
