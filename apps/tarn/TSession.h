#pragma once

#include "TIde.h"
#include "os/portable/TPortableOS.h"
#include "qsErrorLog.h"
#include "qsExpMng.h"
#include "streaming/TFiler.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// An embedded IDE of its own with the pack in it: what the commands of the program and a script
/// drive.
///
/// A session reads the settings of the user's pack, but leaves them as they are unless it is told
/// otherwise.
class TSession {
public:
    /// \param console shows the dialogs for which no answer is queued, and outlives the session;
    /// null shows them nowhere
    explicit TSession(TUserDialogs* console = nullptr);
    TSession(const TSession&) = delete;
    TSession& operator=(const TSession&) = delete;
    ~TSession();

    TPortableOS& OS() { return FOS; }
    TIde& Ide() { return *FIde; }

    /// Loads the pack into the IDE; false when it failed, which the IDE has shown then.
    bool StartPack();
    /// Unloads the pack. Its traces are kept, see Traces.
    void StopPack();
    /// Has the pack save its settings when it is unloaded, as it does in the IDE.
    void LetPackSave() { FNoSaving.reset(); }
    /// Gives the pack one more expert from its next start on, see TTrialExpert.
    void AddTrialExpert() { FTrialExpert = true; }
    bool PackRuns() const { return TExpManager::Instance() != nullptr; }
    /// The message with ": " and the text of the dialog shown last; without them when there was
    /// none or the user has seen it on the console.
    std::string WithLastDialog(std::string message) const;
    /// The life-cycle traces: of the pack that runs, or as they were when it was unloaded.
    TErrorLogState Traces() const { return FTraces ? *FTraces : ErrorLog(); }

    /// The key of a text such as "Ctrl+.", named as on a US keyboard whatever layout is active; 0
    /// when it is none.
    TShortCut KeyOf(std::string_view text) const;

    /// A menu item by the identifier of a command of the pack, by its component name, or by its
    /// captions from the top with "|" between them; null when there is none.
    TMenuItem* FindMenuItem(std::string_view name);
    /// The identifiers of the commands in the pack's menu, in its order.
    std::vector<std::string> CommandIDs();
    /// The main menu, one line an item; the pack's menu with all its items, the others with theirs
    /// when `all` is set.
    std::string MenuText(bool all);

private:
    TPortableOS FOS;
    TOperatingSystem* FFormerOS;
    std::optional<TScopedValue<decltype(TExpManagerSlots::SaveExpData)>> FNoSaving;
    std::optional<TIde> FIde;
    std::map<std::string, TVirtualKey, std::less<>> FKeys;
    std::optional<TErrorLogState> FTraces;
    bool FTrialExpert = false;
};

/// A session in which the pack runs and its menu stands.
class TRunningPack : public TSession {
public:
    /// \param packageDir of the pack, see PackageFolder
    /// \param registry the file with the pack's registry; the pack has none without it
    /// Raises EScriptError with what the IDE has shown when the pack does not start.
    TRunningPack(TUserDialogs* console, const std::string& packageDir,
                 const std::string& registry = {});

    TExpManager& Manager() { return *TExpManager::Instance(); }
};

/// The directory of the pack, which holds its settings, its error log and its language libraries:
/// the program's own when `name` is empty. Raises EScriptError when there is no such folder.
std::filesystem::path PackageFolder(const std::string& name);

/// The source view in front. Raises EScriptError when no file is open.
TSourceView& CurrentView(TSession& session);

} // namespace tarn
