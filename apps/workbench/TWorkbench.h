#pragma once

#include "TFinder.h"
#include "TFrontEnd.h"
#include "TRecovery.h"

#include <QMainWindow>
#include <QTimer>

#include <memory>
#include <string>
#include <vector>

namespace tarn {

class TEditorMirror;
class TProjectModule;

/// The IDE with a face: the windows of a session, and the commands that only a desktop has: open
/// files, search, leave.
class TWorkbench : public QObject {
public:
    explicit TWorkbench(TSession& session);
    /// What is not saved by then is kept in recovery files.
    ~TWorkbench() override;

    TFrontEnd& FrontEnd() { return FFrontEnd; }
    QMainWindow& Window();
    /// Loads the pack and shows the main window.
    void Start();
    /// Gives the main window the place that it had, and keeps it in that file at the end.
    void KeepPlace(const std::string& file);
    /// Opens a file, a project or a group, or a recording of a stopped program, as one command.
    /// What it raises is shown, a cancel of the user leaves everything as it was.
    void Open(const std::string& fileName);

    /// Keeps what is typed in recovery files from now on, and asks about those that a crash has
    /// left behind. Without a folder that can be written to, the status bar says so. \param root
    /// the folder of all programs' recovery files
    void KeepRecovery(const std::string& root);
    /// Writes the recovery files that are due; the timer does it once a second.
    void FollowRecovery(TRecovery::TTime now);
    /// The user's session ends.
    /// \param mayAsk whether there is time to ask about what is not saved
    /// \return false when the user wants to go on
    bool EndSession(bool mayAsk);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    using TRun = void (TWorkbench::*)();
    /// What a command cannot do without: nothing, an open file, a project, a stopped program.
    enum TNeed : std::uint8_t { neNothing, neFile, neProject, neStop };
    class TCommand;
    struct TCommandRow;
    static const TCommandRow CommandRows[];

    TEditorMirror& EditorMirror();
    void AddCommand(const TCommandRow& row);
    bool Has(TNeed need) const;
    void OpenFiles();
    void SaveAs();
    void ShowTab(int step);
    void ShowNextFile() { ShowTab(1); }
    void ShowFileBefore() { ShowTab(-1); }
    void Leave();
    void Find() { FFinder.Find(); }
    void FindAgain() { FFinder.FindAgain(false); }
    void FindBefore() { FFinder.FindAgain(true); }
    void GoToLine() { FFinder.GoToLine(); }
    void OpenUnits();
    void ShowCpu();
    void ShowAbout();

    std::vector<const TProjectModule*> Projects() const;
    void OpenWatched(const std::string& fileName);
    bool MayOverwrite(const TSourceBuffer& buffer);
    void OfferLeft(const std::vector<std::string>& files);
    void Restore(const std::vector<std::string>& files);
    void ShowRecoveryError(const std::string& error);

    TSession& FSession;
    TFrontEnd FFrontEnd;
    TFinder FFinder;
    std::vector<std::unique_ptr<TCommand>> FCommands;
    QString FPlaceFile; ///< empty: the place is not kept
    QTimer FIdle;
    QTimer FRecoveryTimer;
    std::unique_ptr<TRecovery> FRecovery; ///< null while nothing is kept
    std::string FShownError;              ///< of the recovery
};

} // namespace tarn
