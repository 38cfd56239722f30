#pragma once

#include "qsOTAUtils.h"
#include "units/UnitLines.h"
#include "units/qsUnitMng.h"
#include "vcl/TComboBox.h"
#include "vcl/TListBox.h"
#include "vcl/TPanel.h"
#include "vcl/TTabControl.h"
#include "vcl/TTimer.h"
#include "vcl/TToolBar.h"

#include <unordered_map>

namespace tarn {

/// The tabs of the IDE's edit window; null while there is no such window.
TTabControl* FindEditorTabControl();

/// The window that lists the open units, in the order of the editor's tabs. What is moved in the
/// list moves in the tabs. The list is filled when the window is opened, on request and after units
/// were closed; what others do to the tabs meanwhile is looked up before each command, and units
/// that are gone are dropped.
class TUnitForm : public TSharedForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    TUnitForm(TComponent* owner, TUnitManager* manager);

    void SetProperties() override;
    /// The keys that edit a text belong to the filter box while that has the focus; there, Enter
    /// applies the filter.
    bool IsShortCut(TShortCut shortCut) override;

    /// Fills the list from the tabs, in their order, and selects the current one.
    void PopulateUnitList();
    /// Shows the units only whose caption contains the text of the filter box; all for none.
    void FilterUnits();
    /// Puts a filter into the history, see SaveHistory of UnitLines.h.
    void SaveHistory(std::string_view text);
    /// Sorts the units, up and down in turns. A list that was filled anew begins upwards.
    void SortUnits();
    /// Gives the editor's tabs the order of the list, see OrderTabs. The current tab stays current.
    void AssignItems();
    /// Moves the selected units by one place, see MoveLines.
    void MoveItems(bool up);
    /// Closes the selected units, from the last to the first. Each asks about its changes. Units
    /// that are not known by their names alone, and projects, are closed one at a time by a timer,
    /// each being shown before. Nothing while that goes on.
    void CloseUnits();
    /// Makes the unit current in the editor; false when that did not happen.
    /// \param unit as it stands in the tabs now
    bool OpenSelectedUnit(const TUnitLine& unit);
    /// Asks the IDE to close the unit that it shows.
    void CloseOpenedUnit();

    bool Filtered() const { return FFiltered; }               ///< the list may not show all units
    bool SortedAscending() const { return FSortedAscending; } ///< by the last sorting
    bool Closing() const { return FCloseTimer->Enabled() || !FCloseQueue.empty(); }

    // Components of the form.
    TListBox& UnitList() { return *FUnitList; }
    TComboBox& FilterText() { return *FFilterText; }
    TAction& acShow() { return *FShow; }
    TAction& acClose() { return *FClose; }
    TAction& acMoveUp() { return *FMoveUp; }
    TAction& acMoveDown() { return *FMoveDown; }
    TAction& acSort() { return *FSort; }
    TAction& acFilter() { return *FFilter; } ///< shows the filter panel first when it is hidden
    TAction& acRefresh() { return *FRefresh; }
    TAction& acExit() { return *FExit; }

private:
    TAction* NewAction(std::string_view name, std::string_view caption, TNotifyEvent execute,
                       TNotifyEvent update = {});
    void MakeControls();
    void MakeToolBar();
    void MakeMenu();

    void ShowUnit(TObject*);
    void Close(TObject*) { CloseUnits(); }
    void MoveUp(TObject*) { MoveItems(true); }
    void MoveDown(TObject*) { MoveItems(false); }
    void Sort(TObject*) { SortUnits(); }
    void ApplyFilter(TObject*);
    void Refresh(TObject*) { PopulateUnitList(); }
    void Exit(TObject*);
    void NeedLine(TObject* action);
    void NeedSelection(TObject* action);
    void UnitsDblClick(TObject*) { FShow->Execute(); }
    void DragOver(TObject*, TObject* source, int, bool& accept) { accept = source == FUnitList; }
    void DragDrop(TObject*, TObject*, int index);
    void MenuPopup(TObject*);
    void ToggleSetting(TObject* item);

    void ApplySettings();
    /// Brings the lines up to date with the list box and the tabs.
    /// \return the tabs; null while there are none
    TTabControl* ReadLines();
    void ShowLines();
    void SelectLine(int index); ///< that one alone
    void SelectCurrentUnit();
    void FocusList();

    /// The places in the cache of the editors of each file name, in capitals.
    using TEditorPlaces = std::unordered_map<std::string, std::vector<std::size_t>>;
    TEditorPlaces EditorsByName() const;
    bool NeedsOneByOne(const TEditorPlaces& places) const;
    void CloseByName(const TEditorPlaces& places);
    void CloseNext(TObject*);
    void EndClosing();

    TUnitManager& FSettings;
    TUnitLines FLines;                         ///< those of the list box
    TInterfaceList<IOTASourceEditor> FEditors; ///< as of the last filling
    TUnitLines FCloseQueue;                    ///< in the order of their tabs
    bool FFiltered = false;
    bool FSortedAscending = false;
    bool FInTick = false; ///< of the timer

    // All are components of the form.
    TToolBar* FToolBar;
    TPanel* FFilterPanel;
    TComboBox* FFilterText;
    TListBox* FUnitList;
    TPopupMenu* FSettingsMenu;
    TTimer* FCloseTimer;
    TAction* FShow;
    TAction* FClose;
    TAction* FMoveUp;
    TAction* FMoveDown;
    TAction* FSort;
    TAction* FFilter;
    TAction* FRefresh;
    TAction* FExit;
};

} // namespace tarn
