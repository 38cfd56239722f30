// The menu of the rows with lists of lines, and the dialog of those with a memo.

#include "RowMenu.h"
#include "TLineEditor.h"
#include "qsSpcEdPro.h"
#include "vcl/Dialogs.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TComboBox.h"

#include <algorithm>

namespace tarn {
namespace {

enum TStringsCommand : int {
    smLine = 0,
    smAdd = 51518,
    smInsert = 51519,
    smDelete = 51520,
    smClear = 51521,
    smEdit = 51522,
    smLoad = 51523,
    smSave = 51524
};
constexpr int StringsCommands[] = {smAdd,  smInsert, smDelete, smClear, smLine,
                                   smEdit, smLine,   smLoad,   smSave};

enum TStringsMenuStr : int {
    strAddLine = 51525,
    strEnterLine = 51526,
    strInsertLine = 51527,
    strDeleteAll = 51528,
    strEdit = 51529,
    strTextForEditing = 51530
};

bool NeedsLine(int command) {
    return command == smInsert || command == smDelete || command == smEdit;
}

bool AskForFile(bool save, std::string& fileName) {
    const auto chosen = AskForTextFile(save);
    if (chosen) fileName = *chosen;
    return chosen.has_value();
}

} // namespace

/// The lines of a row, in a list box or a combo box.
class TSpcEditorPro::TLineList {
public:
    explicit TLineList(TComponent* control)
        : FList(ClassCast<TCheckListBox>(control)), FBox(ClassCast<TComboBox>(control)) {}

    /// Whether the command can be run: a disabled control is not to be changed.
    bool Allows(int command) const {
        TControl* const control = Control();
        if (!control || (command != smSave && !control->Enabled())) return false;
        return !NeedsLine(command) || Index() >= 0;
    }
    TControl* Control() const { return FList ? static_cast<TControl*>(FList) : FBox; }
    TStrings& Items() const { return FList ? FList->Items() : FBox->Items(); }
    int Index() const { return FList ? FList->ItemIndex() : FBox->ItemIndex(); }

    /// Runs the command with what the user has said to it; false when it has changed nothing.
    bool Run(int command, const std::string& text) const {
        const int index = Index();
        switch (static_cast<TStringsCommand>(command)) {
        case smAdd:
            Items().Add(text);
            return true;
        case smInsert:
            Items().Insert(index, text);
            return true;
        case smDelete:
            Items().Delete(index);
            break;
        case smClear:
            Items().Clear();
            return true;
        case smEdit:
            Items().Put(index, text);
            return true;
        case smLoad:
            Items().LoadFromFile(text);
            break;
        case smSave:
            Items().SaveToFile(text);
            return false;
        case smLine:
            return false;
        }
        // The line at the place of the one that went is selected then, or the last one.
        Select(std::min(index, Items().Count() - 1));
        return true;
    }

private:
    void Select(int index) const { FList ? FList->SetItemIndex(index) : FBox->SetItemIndex(index); }

    TCheckListBox* FList;
    TComboBox* FBox;
};

TPopupMenu& TSpcEditorPro::CreateStringsEditorMenu() {
    if (!FStringsMenu) {
        FStringsMenu = new TPopupMenu(this);
        FStringsMenu->OnPopup = TNotifyEvent::Of<&TSpcEditorPro::StringsMenuPopup>(this);
        AddRowMenuItems(*FStringsMenu, StringsCommands,
                        TNotifyEvent::Of<&TSpcEditorPro::StringsMenuItemClick>(this));
    }
    return *FStringsMenu;
}

void TSpcEditorPro::StringsMenuPopup(TObject*) {
    const TLineList list(FStringsMenu->PopupComponent.Get());
    UpdateRowMenuItems(*FStringsMenu, [&list](int command) { return list.Allows(command); });
}

void TSpcEditorPro::StringsMenuItemClick(TObject* sender) {
    const auto command = static_cast<int>(static_cast<TMenuItem*>(sender)->Tag);
    const TLineList list(FStringsMenu->PopupComponent.Get());
    if (!list.Allows(command)) return;
    const TWeak<TControl> alive(list.Control());
    std::string text;
    if (!AskForText(command, list, text) || !alive || !list.Allows(command)) return;
    if (list.Run(command, text)) ControlChange(alive.Get());
}

/// What the user says to a command: a line, or the name of a file. False when he cancels it.
bool TSpcEditorPro::AskForText(int command, const TLineList& list, std::string& text) const {
    const auto query = [&text](int caption, int prompt) {
        return InputQuery(LocaleStr(caption), LocaleStr(prompt), text);
    };
    switch (static_cast<TStringsCommand>(command)) {
    case smAdd:
        return query(strAddLine, strEnterLine);
    case smInsert:
        return query(strInsertLine, strEnterLine);
    case smEdit:
        text = list.Items()[list.Index()];
        return query(strEdit, strTextForEditing);
    case smClear:
        return Ask(LocaleStr(strDeleteAll), MB_YESNO) == IDYES;
    case smLoad:
        return AskForFile(false, text);
    case smSave:
        return AskForFile(true, text);
    case smDelete:
    case smLine:
        break;
    }
    return true;
}

void TSpcEditorPro::MemoDblClick(TObject* sender) {
    auto& memo = *static_cast<TMemo*>(sender);
    const TWeak<TMemo> alive(&memo);
    TLineEditor dialog;
    if (dialog.Execute(memo.Lines(), memo.ReadOnly()) && alive)
        memo.Lines().Assign(&dialog.Lines()); // counts as a change by the memo's own event
}

} // namespace tarn
