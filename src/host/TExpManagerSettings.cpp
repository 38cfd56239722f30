// The manager's settings: loading, saving and the editor that shows them.

#include "TExpManager.h"
#include "TFinally.h"
#include "WorkingCopy.h"
#include "qsDialogs.h"
#include "qsExpMng.h"
#include "qsLocale.h"

#include <filesystem>

namespace tarn {

constinit const TClassRecord TExpertEditor::ClassRecord{
    "TExpertEditor", &TSpcEditorPro::ClassRecord, CreateObject<TExpertEditor>};

/// Where the window stands as long as no place is stored. The longest label of all languages leaves
/// room for the values.
constexpr TRect EditorPlace = {0, 0, 800, 500}; // pixels

void TExpertEditor::MakeForm() {
    const bool isNew = !Form();
    TSpcEditorPro::MakeForm();
    if (isNew) Form()->SetBoundsRect(EditorPlace);
    Form()->SavePlacementAction().SetShortCut(
        TextToShortCut(Manager->Data()->EditorFormData()->SaveSettingShortCut));
}

void TExpertEditor::FillClone(TPersistent& clone) {
    TSpcEditorPro::FillClone(clone);
    if (auto* const copy = ClassCast<TExpData>(&clone)) CompleteWorkingCopy(*copy, ExpData());
}

void TExpertEditor::ReadFormSetting(std::string_view, std::string_view, TStrings& data) {
    data.Assign(Manager->Data()->EditorFormData()->Setting());
}

void TExpertEditor::WriteFormSetting(std::string_view, std::string_view, const TStrings& data) {
    Manager->Data()->EditorFormData()->Setting()->Assign(&data);
}

void TExpManager::FillPresentList() {
    TActiveExperts& list = ExpData().ActiveExperts;
    list.Clear();
    for (int i = 1; i <= ExpertSlotCount; ++i) {
        const TExpertSlot* const slot = ExpertSlot(i);
        if (!slot) continue;
        auto* const info = static_cast<TExpertInfo*>(list.Add(slot->Name));
        info->Active = true;
        info->ExpertNodeName = slot->Caption();
    }
}

void TExpManager::StoreOwnData() {
    AddStoredData(FData.get(), "ExpManagerData", LocaleStr(51126), GetLocalPropNames());
}

bool TExpManager::LoadExpData() {
    const std::string file = SettingsFile();
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    const bool loaded = !error && size != 0 && ExpManagerSlots().LoadExpData &&
                        ExpManagerSlots().LoadExpData(ExpData(), file);
    // Whatever an older file says, this is the version that runs.
    SetExpertVersion();
    return loaded;
}

void TExpManager::LoadSettings() {
    LoadExpData();
}

void TExpManager::SaveExpData() {
    if (ExpManagerSlots().SaveExpData) ExpManagerSlots().SaveExpData(ExpData(), SettingsFile());
}

// --- Captions ---------------------------------------------------------------------------------

namespace {

/// A property and the string id of its caption.
struct TPropCaption {
    std::string_view Prop;
    int CaptionId;
};

/// A section of the translating table: the class's name, then a caption for each property.
std::string CaptionSection(std::string_view className, std::initializer_list<TPropCaption> props) {
    std::string text = Format("[%s]", {className});
    for (const TPropCaption& prop : props)
        text.append(LineBreak).append(prop.Prop).append("=").append(LocaleStr(prop.CaptionId));
    return text;
}

} // namespace

std::string TExpManager::GetLocalPropNames() const {
    return CaptionSection("TExpManagerData", {{"ExpertVersion", 51163},
                                              {"AutoSaveSettings", 51164},
                                              {"MainMenuSearchItem", 51165},
                                              {"InsertMenuBeforeItem", 51166},
                                              {"MenuHaveLineBefore", 51167},
                                              {"MenuHaveLineAfter", 51168},
                                              {"ErrorLogAllowed", 51169},
                                              {"MaxLogSize", 51180}});
}

void TExpManager::LocalizeEditor() {
    std::string table = ExpData().LocalNames;
    for (const std::string& section : {
             CaptionSection("TExpertInfo", {{"Active", 51142}}),
             CaptionSection("TExpMenuItemData", {{"Caption", 51143},
                                                 {"ImageIndex", 51144},
                                                 {"HaveLineBefore", 51145},
                                                 {"ShortCutText", 51146}}),
             CaptionSection("TFormSetting", {{"AutoSavePlacement", 51147},
                                             {"FormPlacement", 51148},
                                             {"SavePlacementShortCut", 51149}}),
             CaptionSection(
                 "TEditorFormData",
                 {{"AutoSaveSetting", 51160}, {"SaveSettingShortCut", 51161}, {"Setting", 51162}}),
         })
        table.append(LineBreak).append(section);
    FEditor->TranslatingTable()->SetTextStr(table);
}

// --- The editor -------------------------------------------------------------------------------

void TExpManager::PrepareEditor() {
    FEditor->Manager = this;
    FEditor->SetColCount(1);
    FEditor->OnCreateSpc = TCreateSpc::Of<&TExpManager::ReCreateSpc>(this);
    FEditor->SetSpcFileName(SettingsFile());
    SetEditorOptions();
    FEditor->LabelAreaInfo()->SetDefAreaWidth(100);
    FEditor->ControlAreaInfo()->SetDefAreaWidth(200);
    FEditor->InvisibleProps()->SetTextStr("TExpertInfo.ExpertName\r\n"
                                          "TExpertInfo.ExpertNodeName\r\n"
                                          "TCustomDataItem.AObjectID\r\n"
                                          "TExpMenuItemData.ItemID\r\n"
                                          "TFormSetting.FormPlacement\r\n"
                                          "TEditorFormData.Setting\r\n"
                                          "TViewFormMng.DisplayUnitScrollbars\r\n"
                                          "TExpManagerData.ID");
    FEditor->DisabledProps()->SetTextStr("TExpManagerData.ExpertVersion");
}

/// What of the editor's options is the user's: looked at each time the editor opens.
void TExpManager::SetEditorOptions() {
    FEditor->FormOptions = TSpcEditor::BaseFormOptions;
    if (FData->EditorFormData()->AutoSaveSetting) FEditor->FormOptions.Include(foAutoSaveParams);
}

void TExpManager::ReCreateSpc(TObject*, TSpcObject& spc) {
    spc.Assign(&ExpData());
}

namespace {

/// Shows the editor, whose window owns the message boxes until it is closed.
bool ShowEditor(TExpertEditor& editor) {
    const TFinally resetOwner([] { SetOwnerWnd(0); });
    return editor.ShowTree(ExpData());
}

} // namespace

void TExpManager::EditSettings2(TObject*) {
    // The IDE may let the wizard go while the window stands.
    const TIntf<IOTAWizard> alive(this);
    SetEditorOptions();
    if (!ShowEditor(*FEditor) || FState == msDown) return;
    // What the window has stored about itself is not in the file that is loaded now.
    const std::string window = FData->EditorFormData()->Setting()->GetTextStr();
    DoRecreateExperts();
    FData->EditorFormData()->Setting()->SetTextStr(window);
}

} // namespace tarn
