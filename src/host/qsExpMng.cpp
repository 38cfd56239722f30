#include "qsExpMng.h"

#include "TObjectStorage.h"
#include "qsDialogs.h"
#include "qsErrorLog.h"
#include "qsLocale.h"
#include "vcl/Forms.h"

namespace tarn {
namespace {

struct TPackageState {
    TUnitCounter Counter;
    std::string Dir;
    std::string SettingsName;
};

TPackageState& Package() {
    static TPackageState state;
    return state;
}

} // namespace

const std::string& PackageDir() {
    return Package().Dir;
}

const std::string& SettingsFileName() {
    return Package().SettingsName;
}

std::string SettingsFile() {
    return PackageDir() + SettingsFileName();
}

void InitializeExpMng() {
    if (!Package().Counter.Enter()) return;
    RecreateExpData();
    Package().Dir = ExtractFilePath(OS().GetModuleFileName());
    Package().SettingsName = "ExpData.spc";
    // Stays filled: what a front end has put there is not replaced by a later start.
    if (!TObjectStorage::AskUser)
        TObjectStorage::AskUser = [](std::string_view question) { return WarningDialog(question); };
    if (ExpManagerSlots().InstallSaveRoutine) ExpManagerSlots().InstallSaveRoutine();
}

void FinalizeExpMng() {
    if (!Package().Counter.Leave()) return;
    FreeExpertRegistry();
    FreeExpData();
    ForgetExpDataFiles();
    FreeLocale();
    Package().Dir.clear();
    Package().SettingsName.clear();
    ErrorLog().ClearTraces();
}

void Register() {
    if (TExpManager::Instance()) return;
    const TIntf<TExpManager> manager(new TExpManager);
    try {
        manager->StartUp();
        RegisterPackageWizard(manager);
    } catch (...) {
        manager->AbandonStart();
    }
}

void CheckAddErrorLog(TObject* sender) {
    const auto write = [sender](const std::exception& error) {
        if (const HWND window = OS().GetCapture()) OS().SendMessage(window, WM_CANCELMODE, 0, 0);
        WriteLogEntry(sender, error);
    };
    if (!std::current_exception()) return;
    try {
        throw;
    } catch (const Exception&) {
        return;
    } catch (const std::exception& error) {
        write(error);
    } catch (...) {
        write(Exception("unknown error"));
    }
}

} // namespace tarn
