#include "TWorkbench.h"

#include "Source/TSourceBuffer.h"
#include "TFormMirror.h"
#include "vcl/Dialogs.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

namespace tarn {
namespace {

constexpr TVirtualKey VK_F3 = 0x72, VK_F4 = 0x73;

} // namespace

TWorkbench::TWorkbench(TSession& session) : FSession(session), FFrontEnd(session) {
    Application()->OnModal = TMethod<void(TForm&)>::Of<&TFrontEnd::RunModal>(&FFrontEnd);
    AddCommand("FileOpenItem", scCtrl | 'O', TNotifyEvent::Of<&TWorkbench::OpenFiles>(this));
    AddCommand("FileExitItem", scAlt | VK_F4, TNotifyEvent::Of<&TWorkbench::Leave>(this));
    AddCommand("SearchFindItem", scCtrl | 'F', TNotifyEvent::Of<&TWorkbench::Find>(this));
    AddCommand("SearchAgainItem", VK_F3, TNotifyEvent::Of<&TWorkbench::FindAgain>(this));
    AddCommand("SearchGoToItem", scCtrl | 'G', TNotifyEvent::Of<&TWorkbench::GoToLine>(this));
    AddCommand("HelpAboutItem", 0, TNotifyEvent::Of<&TWorkbench::ShowAbout>(this));
    // The pack's posted messages, and the state of its commands.
    connect(&FIdle, &QTimer::timeout, this, [this] { FFrontEnd.Pump(); });
    FIdle.start(50);
}

QMainWindow& TWorkbench::Window() {
    FFrontEnd.Flush();
    return static_cast<QMainWindow&>(*FFrontEnd.WidgetOf(FSession.Ide().MainForm()));
}

void TWorkbench::Start() {
    FSession.StartPack();
    FFrontEnd.Pump();
    QMainWindow& window = Window();
    window.setAcceptDrops(true);
    window.installEventFilter(this);
    window.show();
}

/// Gives an item of the IDE's menu, which has no command there, one of the desktop's.
void TWorkbench::AddCommand(std::string_view name, TShortCut shortCut, TNotifyEvent execute) {
    TIdeMainForm& form = FSession.Ide().MainForm();
    auto* const item = dynamic_cast<TMenuItem*>(form.FindComponent(name));
    if (!item) return;
    item->OnClick = execute;
    item->SetEnabled(true);
    item->SetShortCut(shortCut);
}

// --- Files ------------------------------------------------------------------------------------

void TWorkbench::Open(const QString& fileName) {
    FFrontEnd.AsUser([&] {
        const QString extension = QFileInfo(fileName).suffix().toLower();
        static const QStringList projects = {"dpr", "dpk", "bpr", "bpk", "bpg"};
        TModuleList& modules = FSession.Ide().Modules();
        if (projects.contains(extension))
            modules.OpenProject(ToText(fileName));
        else
            modules.OpenFile(ToText(fileName));
    });
}

void TWorkbench::OpenFiles(TObject*) {
    TOpenDialog dialog;
    dialog.Filter = "Sources (*.pas;*.cpp;*.h;*.dpr;*.dpk;*.bpr;*.bpg)|"
                    "*.pas;*.cpp;*.h;*.dpr;*.dpk;*.bpr;*.bpk;*.bpg|All files (*.*)|*.*";
    if (dialog.Execute()) Open(FromText(dialog.FileName));
}

void TWorkbench::Leave(TObject*) {
    Window().close();
}

bool TWorkbench::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::DragEnter) {
        auto* const drag = static_cast<QDragEnterEvent*>(event);
        if (!drag->mimeData()->hasUrls()) return false;
        drag->acceptProposedAction();
        return true;
    }
    if (event->type() != QEvent::Drop) return QObject::eventFilter(object, event);
    for (const QUrl& url : static_cast<QDropEvent*>(event)->mimeData()->urls())
        if (url.isLocalFile()) Open(url.toLocalFile());
    return true;
}

// --- Search -----------------------------------------------------------------------------------

bool TWorkbench::FindFrom(TTextPos from) {
    TSourceBuffer* const buffer = FSession.Ide().CurrentBuffer();
    if (!buffer || FSought.empty()) return false;
    const std::string text = buffer->Text().Text();
    std::size_t at = text.find(FSought, buffer->Text().OffsetAt(from));
    if (at == std::string::npos) at = text.find(FSought); // from the top
    if (at == std::string::npos) return false;
    buffer->View()->Select(buffer->Text().PosAt(at), buffer->Text().PosAt(at + FSought.size()));
    return true;
}

void TWorkbench::Find(TObject*) {
    TSourceView* const view = FSession.Ide().CurrentView();
    if (!view) return;
    if (view->HasBlock() && view->BlockStart().Row == view->BlockEnd().Row)
        FSought = view->BlockText();
    if (InputQuery("Find", "Text to find:", FSought) && !FindFrom(view->Cursor()))
        FSession.OS().MessageBox(0, "\"" + FSought + "\" was not found", Application()->Title,
                                 MB_OK | MB_ICONINFORMATION);
}

void TWorkbench::FindAgain(TObject* sender) {
    TSourceView* const view = FSession.Ide().CurrentView();
    if (!view) return;
    if (FSought.empty()) return Find(sender);
    FindFrom(view->BlockEnd());
}

void TWorkbench::GoToLine(TObject*) {
    TSourceView* const view = FSession.Ide().CurrentView();
    std::string text;
    if (!view || !InputQuery("Go to Line Number", "Line:", text)) return;
    view->GoTo({StrToInt(text), 1});
}

void TWorkbench::ShowAbout(TObject*) {
    FSession.OS().MessageBox(0, "TarnExperts in an embedded IDE, version " TARN_VERSION,
                             Application()->Title, MB_OK | MB_ICONINFORMATION);
}

} // namespace tarn
