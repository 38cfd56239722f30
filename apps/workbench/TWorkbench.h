#pragma once

#include "TFrontEnd.h"

#include <QMainWindow>
#include <QTimer>

namespace tarn {

/// The IDE with a face: the windows of a session, and the commands that only a desktop has: open
/// files, search, leave.
class TWorkbench : public QObject {
public:
    explicit TWorkbench(TSession& session);

    TFrontEnd& FrontEnd() { return FFrontEnd; }
    QMainWindow& Window();
    /// Loads the pack and shows the main window.
    void Start();
    /// Opens a file, a project or a group. What it raises is shown.
    void Open(const QString& fileName);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void AddCommand(std::string_view item, TShortCut shortCut, TNotifyEvent execute);
    void OpenFiles(TObject*);
    void Leave(TObject*);
    void Find(TObject*);
    void FindAgain(TObject*);
    void GoToLine(TObject*);
    void ShowAbout(TObject*);
    bool FindFrom(TTextPos from);

    TSession& FSession;
    TFrontEnd FFrontEnd;
    QTimer FIdle;
    std::string FSought;
};

} // namespace tarn
