#pragma once

#include "qsExpShrForm.h"
#include "vcl/TListBox.h"

namespace tarn {

/// A window with a list of what one can go to: Enter and a double click go to the line that is
/// selected, Esc closes the window.
class TChoiceForm : public TSharedForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    void OpenList(); ///< fills the list, selects its first line and shows the window

    TListBox& List() { return *FList; }

protected:
    TChoiceForm(TSharedManager* manager, std::string_view name, std::string_view caption);

    void Populate();
    /// Appends the lines; the list is empty and reports one change in all.
    virtual void FillList(TStrings& lines) = 0;
    /// Goes to what the line stands for, when that is still there; else fills the list anew.
    virtual void Choose(int index) = 0;

private:
    void Exit(TObject*) { Hide(); }
    void GoToSelected(TObject* sender);
    void UpdateShow(TObject*) { FShow->SetEnabled(FList->ItemIndex() >= 0); }
    void ChooseCurrent(TObject*);

    // Components of the form.
    TListBox* FList;
    TAction* FShow;
};

} // namespace tarn
