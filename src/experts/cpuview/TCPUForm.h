#pragma once

#include "cpuview/qsCPUView.h"
#include "vcl/TButton.h"
#include "vcl/TMemo.h"
#include "vcl/TSpinEdit.h"
#include "vcl/TToolBar.h"

namespace tarn {

/// The dialog for a count of lines that is not on the menu.
class TStrCountForm : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TStrCountForm(TComponent* owner = nullptr);

    TSpinEdit& CountEdit() { return *FCountEdit; }

private:
    TButton* NewButton(std::string_view name, std::string_view caption, TModalResult result);

    TSpinEdit* FCountEdit; // a component of the form
};

/// The window into which the panes of the CPU window are captured: a text to copy from, a button
/// that captures, with a menu of the panes, and a button with a menu of the counts of lines. What
/// is chosen in the menus is the manager's settings.
class TCPUForm : public TSharedForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param manager outlives the form
    TCPUForm(TComponent* owner, TCPUFormMng* manager);

    void SetProperties() override;
    void WriteFormData(); ///< brings the settings into the menus

    /// Replaces the text by what is captured now, by nothing while there is no CPU window. A
    /// capture that fails leaves the text as it is; see GetViewText for the error.
    void acGetDataExecute(TObject* sender);

    // The menu of the panes: a radio item each, which keeps its TCPUViewType as the Tag.
    void FillObjectMenu();
    void ObjMenuClick(TObject* sender); ///< an item of the menu
    void ProcessObjects();              ///< checks the item of the pane that is captured

    // The menu of the counts: radio items, which keep their count as the Tag.
    void FillStrCountMenu();
    void StrCountClick(TObject* sender);       ///< an item of the menu
    void CustomStrCountClick(TObject* sender); ///< asks for the count; one below 1 becomes 10
    void ProcessNewStrCount(); ///< checks the item of the count, or the one that asks

    TMemo& Memo() { return *FMemo; }
    TPopupMenu& ObjectMenu() { return *FObjectMenu; }
    TPopupMenu& StrCountMenu() { return *FStrCountMenu; }

private:
    TCPUFormMng& Settings() const { return static_cast<TCPUFormMng&>(*Manager()); }
    TMenuItem* CustomItem() const;
    TToolButton* AddButton(std::string_view name, std::string_view hint, TAction* action,
                           TPopupMenu* menu);
    void Exit(TObject*) { Hide(); }
    void GetData(TObject* sender);
    void ObjectMenuPopup(TObject*) { ProcessObjects(); }
    void StrCountMenuPopup(TObject*) { ProcessNewStrCount(); }

    // All are components of the form.
    TToolBar* FToolBar;
    TMemo* FMemo;
    TPopupMenu* FObjectMenu;
    TPopupMenu* FStrCountMenu;
};

} // namespace tarn
