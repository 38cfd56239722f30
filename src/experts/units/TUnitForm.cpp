#include "units/TUnitForm.h"

#include "TFinally.h"
#include "qsLocale.h"
#include "rtl/SysUtils.h"
#include "rtl/UpdateOnce.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TUnitForm::ClassRecord{"TUnitForm", &TSharedForm::ClassRecord};

namespace {

constexpr std::uint32_t CloseInterval = 100; // milliseconds
constexpr TRect FirstPlace{200, 150, 480, 400};
constexpr int PanelHeight = 28;
constexpr std::string_view RefreshKey = "F5";

/// The items of the settings menu.
struct TToggle {
    std::string_view Name;
    int Caption; ///< a string id
    bool TUnitManager::*Setting;
};
constexpr TToggle Toggles[] = {
    {"miDragMode", 51239, &TUnitManager::DragModeAllowed},
    {"miCloseForm", 51240, &TUnitManager::CloseFormOnShowUnit},
    {"miFilterPanel", 51241, &TUnitManager::FilterPanelVisible},
    {"miJumpToUnits", 51242, &TUnitManager::JumpToUnitsOnApllyFilter},
};

/// Whether the key does something in a line of text: those with Ctrl and Alt are commands, and so
/// are Esc and the function keys.
bool EditsText(TShortCut key) {
    constexpr TVirtualKey firstFunctionKey = 0x70, lastFunctionKey = 0x87;
    const TVirtualKey plain = ShortCutKey(key);
    return (key & (scCtrl | scAlt)) == 0 && plain != VK_ESCAPE &&
           (plain < firstFunctionKey || plain > lastFunctionKey);
}

/// Whether the IDE waits for an answer about a file that it is closing.
bool ConfirmIsOpen() {
    const TForm* const active = Screen()->ActiveForm();
    return active && SameText(active->Name(), "Confirm");
}

void Follow(TUnitLines& lines, TTabControl* tabs) {
    tabs ? FollowTabs(lines, tabs->Tabs()) : lines.clear();
}

/// A unit as the editors go by: captions of tabs are names of files without their folders.
std::string EditorKey(std::string_view fileName) {
    return AnsiUpperCase(ExtractFileName(fileName));
}

bool IsProject(const TIntf<IOTAModule>& module) {
    return Supports<IOTAProject>(module) || Supports<IOTAProjectGroup>(module);
}

} // namespace

TTabControl* FindEditorTabControl() {
    TForm* const form = FindEditorForm();
    return form ? ClassCast<TTabControl>(form->FindComponent("TabControl")) : nullptr;
}

// --- The window -------------------------------------------------------------------------------

TUnitForm::TUnitForm(TComponent* owner, TUnitManager* manager)
    : TSharedForm(owner, manager), FSettings(*manager), FToolBar(new TToolBar(this)),
      FFilterPanel(new TPanel(this)), FFilterText(new TComboBox(this)),
      FUnitList(new TListBox(this)), FSettingsMenu(new TPopupMenu(this)),
      FCloseTimer(new TTimer(this)) {
    SetName("UnitForm");
    SetCaption(LocaleStr(51010));
    const auto needLine = TNotifyEvent::Of<&TUnitForm::NeedLine>(this);
    const auto needSelection = TNotifyEvent::Of<&TUnitForm::NeedSelection>(this);
    FShow = NewAction("acShow", LocaleStr(51086), TNotifyEvent::Of<&TUnitForm::ShowUnit>(this),
                      needLine);
    FClose = NewAction("acClose", LocaleStr(51087), TNotifyEvent::Of<&TUnitForm::Close>(this),
                       needSelection);
    FMoveUp = NewAction("acMoveUp", LocaleStr(51088), TNotifyEvent::Of<&TUnitForm::MoveUp>(this),
                        needSelection);
    FMoveDown = NewAction("acMoveDown", LocaleStr(51088),
                          TNotifyEvent::Of<&TUnitForm::MoveDown>(this), needSelection);
    FSort = NewAction("acSort", LocaleStr(51089), TNotifyEvent::Of<&TUnitForm::Sort>(this));
    FFilter =
        NewAction("acFilter", LocaleStr(51100), TNotifyEvent::Of<&TUnitForm::ApplyFilter>(this));
    // The string table has no text for this one: its key stands for it in all languages.
    FRefresh = NewAction("acRefresh", RefreshKey, TNotifyEvent::Of<&TUnitForm::Refresh>(this));
    FRefresh->SetShortCut(TextToShortCut(RefreshKey));
    FExit = NewAction("acExit", LocaleStr(51085), TNotifyEvent::Of<&TUnitForm::Exit>(this));
    FExit->SetShortCut(VK_ESCAPE);
    MakeToolBar();
    MakeControls();
    MakeMenu();
}

TAction* TUnitForm::NewAction(std::string_view name, std::string_view caption, TNotifyEvent execute,
                              TNotifyEvent update) {
    auto* const action = new TAction(this);
    action->SetName(name);
    action->SetCaption(caption);
    action->SetHint(caption);
    action->OnExecute = execute;
    action->OnUpdate = update;
    action->SetActionList(&ActionList());
    return action;
}

void TUnitForm::MakeToolBar() {
    FToolBar->SetName("ToolBar");
    FToolBar->SetShowCaptions(true);
    FToolBar->SetWrapable(true);
    FToolBar->SetHeight(TToolBar::DefaultButtonHeight);
    FToolBar->SetAlign(alTop);
    FToolBar->SetParent(this);
    TAction* const separator = nullptr;
    for (TAction* action : {FShow, FClose, separator, FMoveUp, FMoveDown, FSort, separator, FFilter,
                            FRefresh, separator, FExit}) {
        auto* const button = new TToolButton(this);
        if (!action)
            button->SetStyle(tbsSeparator);
        else
            button->SetName("tb" + action->Name().substr(2)); // tbShow of acShow
        button->SetAction(action);
        button->SetParent(FToolBar);
    }
}

void TUnitForm::MakeControls() {
    SetBoundsRect(FirstPlace);
    FFilterPanel->SetName("FilterPanel");
    FFilterPanel->SetHeight(PanelHeight);
    FFilterPanel->SetAlign(alTop);
    FFilterPanel->SetParent(this);
    FFilterText->SetName("FilterText");
    FFilterText->SetAlign(alClient);
    FFilterText->SetParent(FFilterPanel);
    FUnitList->SetName("UnitList");
    FUnitList->SetMultiSelect(true);
    FUnitList->OnDblClick = TNotifyEvent::Of<&TUnitForm::UnitsDblClick>(this);
    FUnitList->OnDragOver = TDragOverEvent::Of<&TUnitForm::DragOver>(this);
    FUnitList->OnDragDrop = TDragDropEvent::Of<&TUnitForm::DragDrop>(this);
    FUnitList->SetPopupMenu(FSettingsMenu);
    FUnitList->SetAlign(alClient);
    FUnitList->SetParent(this);
    SetActiveControl(FUnitList);
    FCloseTimer->SetName("CloseTimer");
    FCloseTimer->SetEnabled(false);
    FCloseTimer->SetInterval(CloseInterval);
    FCloseTimer->SetOnTimer(TNotifyEvent::Of<&TUnitForm::CloseNext>(this));
}

void TUnitForm::MakeMenu() {
    FSettingsMenu->SetName("SettingsMenu");
    FSettingsMenu->OnPopup = TNotifyEvent::Of<&TUnitForm::MenuPopup>(this);
    for (const TToggle& toggle : Toggles) {
        auto* const item = new TMenuItem(this);
        item->SetName(toggle.Name);
        item->SetCaption(LocaleStr(toggle.Caption));
        item->OnClick = TNotifyEvent::Of<&TUnitForm::ToggleSetting>(this);
        FSettingsMenu->Items()->Add(item);
    }
}

// --- Settings ---------------------------------------------------------------------------------

void TUnitForm::SetProperties() {
    TSharedForm::SetProperties();
    FShow->SetShortCut(TextToShortCut(FSettings.ShowUnitShortCut));
    FClose->SetShortCut(TextToShortCut(FSettings.CloseUnitShortCut));
    FMoveUp->SetShortCut(TextToShortCut(FSettings.MoveUpUnitShortCut));
    FMoveDown->SetShortCut(TextToShortCut(FSettings.MoveDownUnitShortCut));
    FSort->SetShortCut(TextToShortCut(FSettings.SortUnitsShortCut));
    FFilter->SetShortCut(TextToShortCut(FSettings.FilterUnitsShortCut));
    FFilterText->Items().Assign(FSettings.HistoryList());
    ApplySettings();
}

void TUnitForm::ApplySettings() {
    FUnitList->DragMode = FSettings.DragModeAllowed ? dmAutomatic : dmManual;
    FFilterPanel->SetVisible(FSettings.FilterPanelVisible);
    if (!FSettings.FilterPanelVisible && ActiveControl() == FFilterText)
        SetActiveControl(FUnitList);
}

void TUnitForm::MenuPopup(TObject*) {
    for (int i = 0; i < FSettingsMenu->Items()->Count(); ++i)
        FSettingsMenu->Items()->Items(i)->SetChecked(FSettings.*Toggles[i].Setting);
}

void TUnitForm::ToggleSetting(TObject* item) {
    bool& setting = FSettings.*Toggles[static_cast<TMenuItem*>(item)->MenuIndex()].Setting;
    setting = !setting;
    ApplySettings();
}

// --- Keys and actions -------------------------------------------------------------------------

bool TUnitForm::IsShortCut(TShortCut shortCut) {
    if (ActiveControl() == FFilterText) {
        if (FFilterText->WantsKey(shortCut)) return false;
        if (shortCut == VK_RETURN) return FFilter->Execute();
        if (EditsText(shortCut)) return false;
    }
    return TSharedForm::IsShortCut(shortCut);
}

void TUnitForm::NeedLine(TObject* action) {
    EnableCommand(action, FUnitList->ItemIndex() >= 0);
}

void TUnitForm::NeedSelection(TObject* action) {
    EnableCommand(action, FUnitList->SelCount() > 0 && !(action == FClose && Closing()));
}

void TUnitForm::Exit(TObject*) {
    Hide();
    // The editor is what the user comes from; without files there is the main window.
    TForm* const next = FindEditorForm() ? FindEditorForm() : Application()->MainForm;
    if (next && !Screen()->ActiveForm()) next->Show();
}

void TUnitForm::FocusList() {
    if (FUnitList->CanFocus()) FUnitList->SetFocus();
}

// --- The list ---------------------------------------------------------------------------------

void TUnitForm::PopulateUnitList() {
    TTabControl* const tabs = FindEditorTabControl();
    FLines = tabs ? LinesOfTabs(tabs->Tabs()) : TUnitLines();
    GetOpenedSourceEditors(FEditors);
    FSortedAscending = FFiltered = false;
    ShowLines();
    SelectCurrentUnit();
}

TTabControl* TUnitForm::ReadLines() {
    for (std::size_t i = 0; i < FLines.size(); ++i)
        FLines[i].Selected = FUnitList->Selected(static_cast<int>(i));
    TTabControl* const tabs = FindEditorTabControl();
    const std::size_t before = FLines.size();
    Follow(FLines, tabs);
    if (FLines.size() != before) ShowLines();
    return tabs;
}

void TUnitForm::ShowLines() {
    TStrings& items = FUnitList->Items();
    // The current line stays with its unit.
    const int current = FUnitList->ItemIndex();
    const TObject* const unit = current < 0 ? nullptr : items.GetObject(current);
    UpdateOnce(items, [&] {
        items.Clear();
        for (const TUnitLine& line : FLines) {
            const int index = items.AddObject(line.Caption, line.Companion);
            FUnitList->SetSelected(index, line.Selected);
            if (unit && line.Companion == unit) FUnitList->SetItemIndex(index);
        }
    });
}

void TUnitForm::SelectLine(int index) {
    UpdateOnce(FUnitList->Items(), [&] {
        FUnitList->ClearSelection();
        FUnitList->SetItemIndex(index);
        if (index >= 0) FUnitList->SetSelected(index, true);
    });
}

void TUnitForm::SelectCurrentUnit() {
    const TTabControl* const tabs = FindEditorTabControl();
    if (!tabs) return;
    const auto line = std::find_if(FLines.begin(), FLines.end(), [&](const TUnitLine& each) {
        return each.Tab == tabs->TabIndex();
    });
    if (line != FLines.end()) SelectLine(static_cast<int>(line - FLines.begin()));
}

// --- The filter -------------------------------------------------------------------------------

void TUnitForm::ApplyFilter(TObject*) {
    if (FSettings.FilterPanelVisible) return FilterUnits();
    FSettings.FilterPanelVisible = true;
    ApplySettings();
    if (FFilterText->CanFocus()) FFilterText->SetFocus();
}

void TUnitForm::FilterUnits() {
    if (FFiltered && FindEditorTabControl()) PopulateUnitList();
    ReadLines();
    const std::string text(Trim(FFilterText->Text()));
    if (text.empty()) {
        PopulateUnitList();
    } else {
        SaveHistory(text);
        FilterLines(FLines, text);
        FFiltered = true;
        ShowLines();
    }
    if (FLines.empty()) return;
    SelectLine(0);
    if (FSettings.JumpToUnitsOnApllyFilter) FocusList();
}

void TUnitForm::SaveHistory(std::string_view text) {
    tarn::SaveHistory(*FSettings.HistoryList(), text, FSettings.HistoryStoredCount);
    FFilterText->Items().Assign(FSettings.HistoryList());
}

// --- The order --------------------------------------------------------------------------------

void TUnitForm::SortUnits() {
    ReadLines();
    SortLines(FLines, FSortedAscending);
    FSortedAscending = !FSortedAscending;
    AssignItems();
    SelectCurrentUnit();
}

void TUnitForm::MoveItems(bool up) {
    ReadLines();
    if (MoveLines(FLines, up)) AssignItems();
}

void TUnitForm::DragDrop(TObject*, TObject*, int index) {
    // Lines that are gone in front of the place do not count.
    TUnitLines ahead(FLines.begin(), FLines.begin() + index);
    Follow(ahead, FindEditorTabControl());
    ReadLines();
    DropLines(FLines, static_cast<int>(ahead.size()));
    AssignItems();
}

void TUnitForm::AssignItems() {
    if (TTabControl* const control = FindEditorTabControl()) {
        TStrings& tabs = control->Tabs();
        const std::vector<int> order = OrderTabs(FLines, tabs.Count());
        const auto current = std::find(order.begin(), order.end(), control->TabIndex());
        TStringList ordered;
        for (const int tab : order) ordered.AddObject(tabs[tab], tabs.GetObject(tab));
        tabs.Assign(&ordered);
        control->SetTabIndex(current == order.end() ? -1
                                                    : static_cast<int>(current - order.begin()));
    }
    ShowLines();
}

// --- Showing and closing ----------------------------------------------------------------------

void TUnitForm::ShowUnit(TObject*) {
    ReadLines();
    const int index = FUnitList->ItemIndex();
    if (index < 0) return;
    const TUnitLine unit = FLines[static_cast<std::size_t>(index)];
    if (OpenSelectedUnit(unit) && FSettings.CloseFormOnShowUnit) Hide();
}

bool TUnitForm::OpenSelectedUnit(const TUnitLine& unit) {
    TTabControl* tabs = FindEditorTabControl();
    if (!tabs) return false;
    tabs->SetTabIndex(unit.Tab);
    if (const TNotifyEvent chosen = tabs->OnChange) chosen(tabs);
    // The IDE may have refused, or looked for another one.
    tabs = FindEditorTabControl();
    return tabs && tabs->TabIndex() >= 0 &&
           tabs->Tabs().GetObject(tabs->TabIndex()) == unit.Companion;
}

void TUnitForm::CloseOpenedUnit() {
    if (const auto module = GetActiveModule()) module->Close();
}

void TUnitForm::CloseUnits() {
    if (Closing()) return;
    ReadLines();
    std::copy_if(FLines.begin(), FLines.end(), std::back_inserter(FCloseQueue),
                 [](const TUnitLine& line) { return line.Selected; });
    std::sort(FCloseQueue.begin(), FCloseQueue.end(),
              [](const TUnitLine& a, const TUnitLine& b) { return a.Tab < b.Tab; });
    if (FCloseQueue.empty()) return;
    const TEditorPlaces places = EditorsByName();
    if (NeedsOneByOne(places))
        FCloseTimer->SetEnabled(true);
    else
        CloseByName(places);
}

TUnitForm::TEditorPlaces TUnitForm::EditorsByName() const {
    TEditorPlaces places;
    for (std::size_t i = 0; i < FEditors.size(); ++i)
        places[EditorKey(FEditors[i]->GetFileName())].push_back(i);
    return places;
}

/// A name that another open unit has, selected or not, would not tell which one to close; a project
/// takes others with it.
bool TUnitForm::NeedsOneByOne(const TEditorPlaces& places) const {
    return std::any_of(FCloseQueue.begin(), FCloseQueue.end(), [&](const TUnitLine& unit) {
        const auto found = places.find(EditorKey(unit.Caption));
        return found == places.end() || found->second.size() != 1 ||
               IsProject(FEditors[found->second.front()]->GetModule());
    });
}

void TUnitForm::CloseByName(const TEditorPlaces& places) {
    // The messages that are handled between may fill the cache anew, or be about the form's end.
    const TWeak<TUnitForm> alive(this);
    TInterfaceList<IOTASourceEditor> editors;
    for (const TUnitLine& unit : FCloseQueue)
        editors.push_back(
            std::exchange(FEditors[places.at(EditorKey(unit.Caption)).front()], nullptr));
    try {
        for (; alive && !editors.empty(); editors.pop_back()) {
            // A unit may be gone with another, as a header with its source.
            if (const auto module = editors.back()->GetModule()) module->Close();
            Application()->ProcessMessages();
        }
    } catch (...) {
        if (alive) EndClosing();
        throw;
    }
    if (alive) EndClosing();
}

void TUnitForm::CloseNext(TObject*) {
    // The messages that are handled between may bring the next tick.
    if (FInTick || ConfirmIsOpen()) return;
    Follow(FCloseQueue, FindEditorTabControl());
    if (FCloseQueue.empty()) return EndClosing();
    const auto last =
        std::max_element(FCloseQueue.begin(), FCloseQueue.end(),
                         [](const TUnitLine& a, const TUnitLine& b) { return a.Tab < b.Tab; });
    const TUnitLine unit = *last;
    FCloseQueue.erase(last);
    const TWeak<TUnitForm> alive(this);
    FInTick = true;
    const TFinally done([&alive] {
        if (alive) alive->FInTick = false;
    });
    if (!OpenSelectedUnit(unit)) return;
    CloseOpenedUnit();
    Application()->ProcessMessages();
}

void TUnitForm::EndClosing() {
    FCloseTimer->SetEnabled(false);
    FCloseQueue.clear();
    PopulateUnitList();
    FocusList();
}

} // namespace tarn
