#include "TExpManager.h"

#include "TFinally.h"
#include "qsDialogs.h"
#include "qsErrorLog.h"
#include "qsExpMng.h"
#include "vcl/Forms.h"

namespace tarn {

constinit const TClassRecord TExpMenuItem::ClassRecord{"TExpMenuItem", &TMenuItem::ClassRecord,
                                                       CreateObject<TExpMenuItem>};
constinit const TClassRecord TExpManager::ClassRecord{"TExpManager", &TObject::ClassRecord};

TPrivateExecProc pPrivateExecProc;

namespace {

TExpManager* TheManager = nullptr;
/// What AppErrorLogData is passing on; the manager may go while the error is shown.
const std::exception* PassingOn = nullptr;

} // namespace

TExpManagerSlots& ExpManagerSlots() {
    static TExpManagerSlots slots;
    return slots;
}

TExpManager* TExpManager::Instance() {
    return TheManager;
}

// --- IOTAWizard -------------------------------------------------------------------------------

std::string TExpManager::GetIDString() {
    return "Tarn&QS.ServiceDelphiWizards";
}
std::string TExpManager::GetName() {
    return "Quellmark Wizard Pack";
}
TWizardState TExpManager::GetState() {
    return {wsEnabled};
}

// --- Start-up ---------------------------------------------------------------------------------

struct TExpManager::TStartUpStep {
    void (TExpManager::*Run)();
    std::string_view Marks; ///< appended to the trace once the step is done
};

std::span<const TExpManager::TStartUpStep> TExpManager::StartUpSteps() {
    static constexpr TStartUpStep steps[] = {
        {&TExpManager::StartLocalization, " 1"},
        {&TExpManager::CreateData, " 3"},
        {&TExpManager::OpenMessageWindow, " 4"},
        {&TExpManager::CreateExpObjectList, " 5"},
        {&TExpManager::CreateEditor, " 6"},
        {&TExpManager::FillPresentList, " 7"},
        {&TExpManager::StoreOwnData, " 8"},
        {&TExpManager::LoadSettings, " 9"},
        {&TExpManager::CreateExpObjects, " 10 11"},
        {&TExpManager::InitExperts, " 12"},
        {&TExpManager::LocalizeEditor, " 13"},
        {&TExpManager::PrepareEditor, " 14"},
        {&TExpManager::LoadAndNotify, ""},
        {&TExpManager::SetExpertVersion, " 15"},
        {&TExpManager::PostBuildMenu, ""},
        {&TExpManager::HookActiveFormChange, " 16 17"},
        {&TExpManager::Publish, " 18"},
    };
    return steps;
}

TExpManager::TExpManager() = default;

void TExpManager::StartUp() {
    ErrorLog().ClearTraces();
    ErrorLog().ConstructorTrace = "0";
    FState = msSettingUp;
    // What a former start left behind would come back as commands without an expert.
    if (HasExpData()) RecreateExpData();
    for (const TStartUpStep& step : StartUpSteps()) {
        (this->*step.Run)();
        ErrorLog().ConstructorTrace += step.Marks;
    }
    FState = msRunning;
}

void TExpManager::AbandonStart() {
    // The log's handler is still in place and the trace tells how far it got.
    Application()->HandleException(this);
    ShutDown(false);
}

void TExpManager::StartLocalization() {
    if (ExpManagerSlots().ProcessLocalization) ExpManagerSlots().ProcessLocalization(*this);
}

void TExpManager::EndLocalization() {
    if (ExpManagerSlots().SaveLocalization) ExpManagerSlots().SaveLocalization(*this);
}

void TExpManager::CreateData() {
    FData = std::make_unique<TExpManagerData>(this);
}

void TExpManager::OpenMessageWindow() {
    FMessageWindow = std::make_unique<TMessageWindow>(TWndMethod::Of<&TExpManager::WndProc>(this));
}

void TExpManager::CreateExpObjectList() {
    FExpObjects = std::make_unique<TExpObjectList>();
}

void TExpManager::CreateEditor() {
    FEditor = std::make_unique<TExpertEditor>();
}

void TExpManager::LoadAndNotify() {
    LoadNotify(LoadExpData());
}

void TExpManager::SetExpertVersion() {
    FData->ExpertVersion = "1.0";
}

void TExpManager::PostBuildMenu() {
    Post(CM_BUILDMENU);
}

void TExpManager::Publish() {
    SetDialogCaption(Application()->Title);
    TheManager = this;
    pPrivateExecProc = TPrivateExecProc::Of<&TExpManager::PrivateExpertExecProc>(this);
}

// --- Shut-down --------------------------------------------------------------------------------

struct TExpManager::TShutDownStep {
    void (TExpManager::*Run)();
    std::string_view Marks;
    bool Saves = false; ///< left out when nothing may be saved
};

std::span<const TExpManager::TShutDownStep> TExpManager::ShutDownSteps() {
    static constexpr TShutDownStep steps[] = {
        {&TExpManager::CloseMessageWindow, " 3"},
        {&TExpManager::SaveOnExit, " 4", true},
        {&TExpManager::DeleteExpertMenu, " 5"},
        {&TExpManager::DeleteExpObjects, " 6"},
        {&TExpManager::UnHookActiveFormChange, " 7"},
        {&TExpManager::FreeExpObjectList, " 8"},
        {&TExpManager::FreeData, " 9"},
        {&TExpManager::FreeEditor, " 10"},
        {&TExpManager::EndLocalization, " 11", true},
    };
    return steps;
}

void TExpManager::Destroyed() {
    if (FState == msSettingUp || FState == msRunning) ShutDown(FState == msRunning);
}

TExpManager::~TExpManager() {
    TExpManager::Destroyed();
}

void TExpManager::ShutDown(bool save) noexcept {
    FState = msDown;
    ErrorLog().DestructorTrace = "0 1";
    bool failed = false;
    for (const TShutDownStep& step : ShutDownSteps()) {
        if (step.Saves && !save) continue;
        try {
            (this->*step.Run)();
            ErrorLog().DestructorTrace += step.Marks;
        } catch (...) {
            // The first error is handed on at once, while the trace still ends where it happened;
            // later ones are its consequences.
            if (!std::exchange(failed, true)) Application()->HandleException(this);
        }
    }
}

void TExpManager::CloseMessageWindow() {
    if (TheManager == this) {
        TheManager = nullptr;
        pPrivateExecProc = {};
    }
    FMessageWindow.reset();
    // A restore that was still posted is gone with the window.
    RestoreLayout();
}

void TExpManager::SaveOnExit() {
    if (FData && FData->AutoSaveSettings) SaveExpData();
}

void TExpManager::FreeExpObjectList() {
    FExpObjects.reset();
}

void TExpManager::FreeData() {
    FData.reset();
}

void TExpManager::FreeEditor() {
    FEditor.reset();
}

// --- Messages, keyboard layout, active form ---------------------------------------------------

void TExpManager::Post(std::uint32_t message) {
    if (FMessageWindow) OS().PostMessage(FMessageWindow->Handle(), message, 0, 0);
}

void TExpManager::WndProc(TMessage& message) {
    // The IDE may let the wizard go while a rebuild handles messages.
    const TIntf<IOTAWizard> alive(this);
    switch (message.Msg) {
    case CM_APPLYSETTINGS:
        ApplySettings();
        break;
    case CM_RESTORELAYOUT:
        RestoreLayout();
        break;
    case CM_BUILDMENU:
        BuildMenu();
        break;
    default:
        message.Result = OS().DefWindowProc(message);
    }
}

void TExpManager::SetEngLayout() {
    // While a layout is owed to the user, the active one is ours and must not replace it.
    if (!FLayoutOwed) FSavedKeyboardLayout = OS().GetKeyboardLayout();
    FLayoutOwed = true;
    OS().ActivateKeyboardLayout(LayoutUSEnglish);
}

void TExpManager::SetActiveLayout() {
    Post(CM_RESTORELAYOUT);
}

void TExpManager::RestoreLayout() {
    if (std::exchange(FLayoutOwed, false)) OS().ActivateKeyboardLayout(FSavedKeyboardLayout);
}

void TExpManager::HookActiveFormChange() {
    FPrevOnActiveFormChange = Screen()->OnActiveFormChange;
    Screen()->OnActiveFormChange = TNotifyEvent::Of<&TExpManager::FormChange>(this);
    FFormChangeHooked = true;
}

void TExpManager::UnHookActiveFormChange() {
    if (!std::exchange(FFormChangeHooked, false)) return;
    Screen()->OnActiveFormChange = std::exchange(FPrevOnActiveFormChange, {});
}

void TExpManager::FormChange(TObject* sender) {
    if (FPrevOnActiveFormChange) FPrevOnActiveFormChange(sender);
    if (std::exchange(FLayoutPending, false)) SetActiveLayout();
}

// --- The error log's handler ------------------------------------------------------------------

void TExpManager::HookException() {
    const auto own = TExceptionEvent::Of<&TExpManager::AppErrorLogData>(this);
    if (Application()->OnException == own) return;
    FPrevOnException = std::exchange(Application()->OnException, own);
}

void TExpManager::UnHookException() {
    Application()->OnException = std::exchange(FPrevOnException, {});
}

void TExpManager::AppErrorLogData(TObject* sender, const std::exception& error) {
    // A handler that was put in front of this one, and is behind it since the log was switched off
    // and on, hands the error back: it has been logged, and only showing it is left.
    if (PassingOn == &error) return Application()->ShowException(error);
    const std::exception* const outer = std::exchange(PassingOn, &error);
    const TFinally passedOn([outer] { PassingOn = outer; });
    // An error while writing must not hide the one that is to be shown.
    std::exception_ptr writing;
    try {
        WriteLogEntry(sender, error);
    } catch (...) {
        writing = std::current_exception();
    }
    if (FPrevOnException)
        FPrevOnException(sender, error);
    else
        Application()->ShowException(error);
    if (writing) std::rethrow_exception(writing);
}

} // namespace tarn
