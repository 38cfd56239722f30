#pragma once

#include "qsExpShrForm.h"
#include "rtl/TStrings.h"

namespace tarn {

class TUnitForm;

/// The manager of the units that are open in the editor.
class TUnitManager : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TUnitManager();
    ~TUnitManager() override;

    bool DragModeAllowed = false;
    bool CloseFormOnShowUnit = false;
    bool FilterPanelVisible = false;
    bool JumpToUnitsOnApllyFilter = false; ///< the name as settings files have it
    int HistoryStoredCount = 10;           ///< of filters
    std::string CloseUnitShortCut = "Del";
    std::string FilterUnitsShortCut = "Alt+F";
    std::string MoveDownUnitShortCut = "Alt+Right";
    std::string MoveUpUnitShortCut = "Alt+Left";
    std::string ShowUnitShortCut = "Alt+S";
    std::string SortUnitsShortCut = "Alt+R";

    /// The filters that were entered, newest first.
    TStrings* HistoryList() const { return FHistoryList.get(); }
    void SetHistoryList(TStrings* value) { FHistoryList->Assign(value); }

    void Init(TGetItemData getItemData) override;

    /// Shows the window, which is made at the first time, with the units that are open now.
    void ShowUnits(TObject* sender);
    /// Enables a menu item or an action while the editor has tabs.
    void CheckShownState(TObject* sender);
    TUnitForm* Form() const; ///< null until it is shown

private:
    std::unique_ptr<TStringList> FHistoryList = std::make_unique<TStringList>();
    TWeak<TUnitForm> FForm; ///< owned
};

// Initialization and finalization of the unit, counted.
void InitializeUnitMng();
void FinalizeUnitMng();

} // namespace tarn
