#pragma once

#include "TCustomExpert.h"
#include "TExpManagerSlots.h"
#include "TExpObjectList.h"
#include "TExpertEditor.h"
#include "TExpertRegistry.h"
#include "ota/ToolsAPI.h"
#include "qsKeyBind.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace tarn {

// The private messages of the manager's hidden window.
inline constexpr std::uint32_t CM_APPLYSETTINGS = 0xC001;
inline constexpr std::uint32_t CM_RESTORELAYOUT = 0xC002;
inline constexpr std::uint32_t CM_BUILDMENU = 0xC003;

/// An item of the pack's menu: told when the menu that it stands in is about to open.
class TExpMenuItem : public TMenuItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TMenuItem::TMenuItem;
    TNotifyEvent OnMenuOpen;
    std::string ItemID; ///< of the command's settings; empty for submenu items and separators
};

/// The heart of the pack: owns the experts, their settings, the settings editor and the menu, and
/// is the wizard that the IDE holds. It runs from Register until the IDE lets the wizard go:
///
///     made -> setting up <-> running -> down
///
/// Start-up and every re-creation set up the experts and their settings. Whoever is taken down
/// before that is done saves nothing: half the settings must not replace the stored ones.
class TExpManager : public TNotifierObject<IOTAWizard> {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TExpManager();
    /// Shuts down, unless Destroyed has done so.
    ~TExpManager() override;

    /// The whole start-up. An error of one of its steps passes on, with everything made so far in
    /// place; AbandonStart is to follow.
    void StartUp();
    /// To be called while an error of the start is being handled: hands it to the application's
    /// exception handler, then takes down what exists and saves nothing.
    void AbandonStart();
    /// The manager of the process, from the end of its start-up to its shut-down; null otherwise.
    static TExpManager* Instance();

    // IOTAWizard
    std::string GetIDString() override;
    std::string GetName() override;
    TWizardState GetState() override;
    void Execute() override {}
    /// The IDE lets the wizard go: shuts down. Errors go to the application, none gets out.
    void Destroyed() override;
    std::string GetMenuText() { return "Test ..."; } ///< used by no menu

    // The experts
    /// Lists the expert, which the manager then owns, unless it is listed already.
    void RegisterExpObject(TCustomExpert* expert, std::string_view name);
    void CreateExpObjects();
    void InitExperts();
    void LoadNotify(bool loaded);
    void MenuNotify(TMenuItem* menuItem, TExpMenuItemData* itemData);
    void DeleteExpObjects();
    void RecreateExperts();
    /// RecreateExperts, load, notify and rebuild the menu, under the hourglass.
    void DoRecreateExperts();

    // The manager's own part in the experts' protocol
    void Init(TGetItemData getItemData);
    void MenuNotification(TMenuItem* menuItem, TExpMenuItemData* itemData);

    // Settings
    void FillPresentList();
    /// Loads the settings file into the shared settings; false when it is missing, empty or cannot
    /// be read, and then every value is as before.
    bool LoadExpData();
    void SaveExpData();
    std::string GetLocalPropNames() const;
    void LocalizeEditor();
    void PrepareEditor();
    void SetEditorOptions();
    void ReCreateSpc(TObject* sender, TSpcObject& spc);
    void EditSettings2(TObject* sender);
    /// Asks, then forgets the settings file. Raises before anything has changed when the file
    /// cannot be deleted.
    void LoadDefaultSettings(TObject* sender);
    void ShowAbout(TObject* sender);
    /// Rebuilds the menu, handling posted messages before and after. Asked for during a rebuild,
    /// it is done after that one.
    void ApplySettings();
    void DoApplySettings(); ///< posts ApplySettings, for after the current command

    // The menu
    void CreateExpertMenu();
    void DeleteExpertMenu();
    void DeleteMenuItems();
    void AddTopMMenuItem();
    void AddMMenuItems();
    /// The actions of one menu. The menu owns them; one that the IDE frees leaves a null behind.
    using TActions = std::vector<TWeak<TAction>>;
    /// Makes one submenu item, with an action in both lists when it has a procedure.
    TExpMenuItem* CreateNewItem(std::string_view caption, TNotifyEvent proc, TMenuItem* parent,
                                TActionList* actionList, TActions& actions);
    void CreateSettingSubMenu(TMenuItem* item);
    /// Frees the item's children and the actions of the list.
    void ClearItems(TMenuItem* item, TActions& actions);
    void ExpMenuClick(TObject* sender);
    void CommonExpertExecProc(TObject* sender);
    TNotifyEvent FindExecProc(const TAction* action) const;
    void PrivateExpertExecProc(TObject* sender, TNotifyEvent proc);

    // The language
    /// Reads the language settings, writes those that are missing, and loads the chosen module; one
    /// that is gone is forgotten.
    void ProcessLocalization();
    void SaveLocalization();
    void CreateLangSubMenu(TMenuItem* item);
    void SelectLanguage(TObject* sender);        ///< a menu item or action called as the language
    void SelectDefaultLanguage(TObject* sender); ///< back to the built-in language
    void SetActiveLanguageItem(TMenuItem* item); ///< checks the entry of the current language
    /// The name of a language in the current language, or the name itself.
    std::string TranslateLangName(std::string_view name) const;
    /// The internal name of a language from its name in the current one, or that name itself.
    std::string RetranslateLangName(std::string_view displayName) const;
    void EditLangModules(TObject* sender);
    /// A module's file in the directory of the modules.
    std::string LocaleFile(std::string_view module) const;

    // Keyboard layout and active form
    void SetEngLayout();
    void SetActiveLayout();
    void HookActiveFormChange();
    void UnHookActiveFormChange();
    void FormChange(TObject* sender);

    void WndProc(TMessage& message);

    // The error log's place before the application's exception handler. The settings' switch takes
    // and leaves it by turns.
    void HookException();
    void UnHookException();
    void AppErrorLogData(TObject* sender, const std::exception& error);

    TExpManagerData* Data() const { return FData.get(); }
    TExpertEditor* Editor() const { return FEditor.get(); }
    const TExpObjectList* ExpObjects() const { return FExpObjects.get(); }
    HWND MessageWindow() const { return FMessageWindow ? FMessageWindow->Handle() : 0; }
    bool LayoutPending() const { return FLayoutPending; }
    TMenuItem* TopItem() const { return FTopItem.Get(); }
    TMenuItem* LanguageItem() const { return FLanguageItem.Get(); }
    TActions& LanguageActions() { return *FLanguageActions; }

    std::string LocaleDir; ///< of the language modules; empty is the package's
    std::string LocaleModules = "Russian=texp_rus.dll,English=texp_eng.dll,German=texp_ger.dll";
    std::string CurrentLocale; ///< the module in use; empty for the built-in language

private:
    struct TStartUpStep;
    struct TShutDownStep;
    struct TExecProc {
        TWeak<TAction> Action;
        TNotifyEvent Proc;
    };
    class TRebuildGuard;

    // Steps of start-up and shut-down that are no operations of their own
    static std::span<const TStartUpStep> StartUpSteps();
    static std::span<const TShutDownStep> ShutDownSteps();
    void StartLocalization();
    void EndLocalization();
    void CreateData();
    void OpenMessageWindow();
    void CloseMessageWindow();
    void CreateExpObjectList();
    void CreateEditor();
    void StoreOwnData();
    void LoadSettings();
    void LoadAndNotify();
    void SetExpertVersion();
    void PostBuildMenu();
    void Publish();
    void SaveOnExit();
    void FreeExpObjectList();
    void FreeData();
    void FreeEditor();
    void ShutDown(bool save) noexcept;

    TExpMenuItemData* GetItemData(std::string_view itemID);
    void ForEachExpert(const std::function<void(ICustomExpert&)>& visit);
    void Post(std::uint32_t message);
    void BuildMenu();
    void RestoreLayout();
    void DisconnectExperts();
    void ChangeLanguage(const std::string& file);
    /// The IDE's action list; null when the IDE does not offer one.
    static TActionList* IDEActionList();
    void NameItem(TMenuItem& item);
    void ReportDisputedKey(const TExpMenuItemData& data, TShortCut key);
    TAction* NewAction(std::string_view caption, TActionList* actionList, TActions& actions);
    static void FreeActions(TActions& actions);

    enum TState : std::uint8_t { msMade, msSettingUp, msRunning, msDown };
    TState FState = msMade;
    HKL FSavedKeyboardLayout = 0;
    bool FLayoutOwed = false; ///< SavedKeyboardLayout holds a layout that must be given back
    std::unique_ptr<TMessageWindow> FMessageWindow;
    TExceptionEvent FPrevOnException;
    bool FLayoutPending = false;
    TNotifyEvent FPrevOnActiveFormChange;
    bool FFormChangeHooked = false;
    std::unique_ptr<TExpObjectList> FExpObjects;
    std::unique_ptr<TExpManagerData> FData;
    std::unique_ptr<TExpertEditor> FEditor;

    // The three lists exist while the menu does.
    std::optional<TActions> FActions;
    std::optional<TActions> FSettingActions;
    std::optional<TActions> FLanguageActions;
    TWeak<TMenuItem> FTopItem;
    TWeak<TMenuItem> FLineBeforeItem;
    TWeak<TMenuItem> FLineAfterItem;
    TWeak<TMenuItem> FLanguageItem;
    std::vector<TExecProc> FExecProcs;
    TKeyBind FKeyBind;               ///< the hot keys of the menu in the source editor
    std::set<std::string> FDisputes; ///< commands with one key, as the log has named them
    int FItemCounter = 0;
    bool FRebuilding = false;
    bool FRebuildAgain = false; ///< asked for during a rebuild
};

/// Runs a procedure of an expert through the manager, for an expert's own windows and key handlers;
/// empty while there is no manager.
using TPrivateExecProc = TMethod<void(TObject* sender, TNotifyEvent proc)>;
extern TPrivateExecProc pPrivateExecProc;

} // namespace tarn
