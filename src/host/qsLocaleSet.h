#pragma once

#include "vcl/Forms.h"
#include "vcl/TStringGrid.h"
#include "vcl/TToolBar.h"

#include <string>
#include <string_view>

namespace tarn {

/// The dialog of the language modules: a grid of languages and their libraries, edited in place,
/// and a tool bar with a button for each action.
class TLocaleForm : public TForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TLocaleForm(TComponent* owner = nullptr);

    /// The rows as comma text of "Language=Library" pairs; what is no pair is shown as a library.
    /// Reading leaves out the rows in which one of the two cells, trimmed, is empty.
    void SetModules(std::string_view commaText);
    std::string Modules() const;

    /// The directory of the modules; empty is the package's.
    std::string LocaleDir;

    TToolBar& ToolBar() { return *FToolBar; }
    TStringGrid& LocaleGrid() { return *FLocaleGrid; }
    TAction& acExit() { return *FExit; }     ///< Esc; closes without taking the changes
    TAction& acOk() { return *FOk; }         ///< closes and takes them
    TAction& acAdd() { return *FAdd; }       ///< appends an empty row and selects it
    TAction& acDelete() { return *FDelete; } ///< asks, then removes the selected row
    TAction& acSetDir() { return *FSetDir; } ///< lets the user choose the directory

private:
    void Exit(TObject*) { ModalResult = mrCancel; }
    void Ok(TObject*) { ModalResult = mrOk; }
    void AddRow(TObject*);
    void DeleteRow(TObject*);
    void SetDir(TObject*);
    void UpdateDelete(TObject*);

    TToolButton* AddButton(TAction* action);
    void AddSeparator();

    // All are components of the form.
    TToolBar* FToolBar;
    TStringGrid* FLocaleGrid;
    TActionList* FActions;
    TAction* FExit;
    TAction* FOk;
    TAction* FAdd;
    TAction* FDelete;
    TAction* FSetDir;
};

} // namespace tarn
