#include "qsLocaleSet.h"

#include "qsDialogs.h"
#include "qsLocale.h"
#include "rtl/TStrings.h"

namespace tarn {

constinit const TClassRecord TLocaleForm::ClassRecord{"TLocaleForm", &TForm::ClassRecord,
                                                      CreateObject<TLocaleForm>};

namespace {

constexpr int LanguageCol = 0, LibraryCol = 1;

constexpr TRect FirstPlace = {0, 0, 520, 240}; // pixels

/// An action of the form, in its list.
TAction* NewAction(TActionList* list, std::string_view name, std::string_view caption,
                   std::string_view shortCut, TNotifyEvent execute) {
    auto* const action = new TAction(list->Owner());
    action->SetName(name);
    action->SetCaption(caption);
    action->SetHint(caption);
    action->SetShortCut(TextToShortCut(shortCut));
    action->OnExecute = execute;
    action->SetActionList(list);
    return action;
}

} // namespace

TLocaleForm::TLocaleForm(TComponent* owner)
    : TForm(owner), FToolBar(new TToolBar(this)), FLocaleGrid(new TStringGrid(this)),
      FActions(new TActionList(this)) {
    SetName("LocaleForm");
    SetCaption(LocaleStr(50513));
    SetBoundsRect(FirstPlace);
    FToolBar->SetName("ToolBar");
    FToolBar->SetParent(this);
    FToolBar->SetAlign(alTop);
    FToolBar->SetShowCaptions(true);
    FToolBar->SetWrapable(true);
    FLocaleGrid->SetName("LocaleGrid");
    FLocaleGrid->SetParent(this);
    FLocaleGrid->SetAlign(alClient);
    FLocaleGrid->SetCell(LanguageCol, 0, LocaleStr(50506));
    FLocaleGrid->SetCell(LibraryCol, 0, LocaleStr(50507));
    SetActiveControl(FLocaleGrid);
    FActions->SetName("ActionList");
    FExit = NewAction(FActions, "acExit", "", "Esc", TNotifyEvent::Of<&TLocaleForm::Exit>(this));
    FOk = NewAction(FActions, "acOk", "OK", "", TNotifyEvent::Of<&TLocaleForm::Ok>(this));
    FAdd = NewAction(FActions, "acAdd", LocaleStr(50508), "Ctrl+A",
                     TNotifyEvent::Of<&TLocaleForm::AddRow>(this));
    FDelete = NewAction(FActions, "acDelete", LocaleStr(50509), "Ctrl+D",
                        TNotifyEvent::Of<&TLocaleForm::DeleteRow>(this));
    FDelete->OnUpdate = TNotifyEvent::Of<&TLocaleForm::UpdateDelete>(this);
    FSetDir = NewAction(FActions, "acSetDir", LocaleStr(50511), "Ctrl+S",
                        TNotifyEvent::Of<&TLocaleForm::SetDir>(this));
    AddButton(FOk);
    AddButton(FExit)->SetCaption(LocaleStr(50623)); // the action itself has no text
    AddSeparator();
    AddButton(FAdd);
    AddButton(FDelete);
    AddSeparator();
    AddButton(FSetDir);
}

TToolButton* TLocaleForm::AddButton(TAction* action) {
    auto* const button = new TToolButton(this);
    if (action) button->SetName("tb" + action->Name().substr(2)); // tbAdd of acAdd
    button->SetAction(action);
    button->SetParent(FToolBar);
    return button;
}

void TLocaleForm::AddSeparator() {
    AddButton(nullptr)->SetStyle(tbsSeparator);
}

void TLocaleForm::SetModules(std::string_view commaText) {
    TStringList pairs;
    pairs.SetCommaText(commaText);
    FLocaleGrid->SetRowCount(1 + pairs.Count());
    for (int i = 0; i < pairs.Count(); ++i) {
        const std::string& pair = pairs[i];
        const std::size_t mark = pair.find('=');
        const bool isPair = mark != std::string::npos;
        FLocaleGrid->SetCell(LanguageCol, i + 1, isPair ? pair.substr(0, mark) : "");
        FLocaleGrid->SetCell(LibraryCol, i + 1, isPair ? pair.substr(mark + 1) : pair);
    }
    FLocaleGrid->SetRow(1);
}

std::string TLocaleForm::Modules() const {
    TStringList pairs;
    for (int row = 1; row < FLocaleGrid->RowCount(); ++row) {
        const std::string_view language = Trim(FLocaleGrid->Cell(LanguageCol, row));
        const std::string_view library = Trim(FLocaleGrid->Cell(LibraryCol, row));
        if (language.empty() || library.empty()) continue;
        pairs.Add(std::string(language).append("=").append(library));
    }
    return pairs.GetCommaText();
}

void TLocaleForm::AddRow(TObject*) {
    FLocaleGrid->SetRowCount(FLocaleGrid->RowCount() + 1);
    FLocaleGrid->SetRow(FLocaleGrid->RowCount() - 1);
}

void TLocaleForm::DeleteRow(TObject*) {
    const int row = FLocaleGrid->Row();
    if (row == 0) return;
    if (QueryDialog(LocaleStr(50510), {FLocaleGrid->Cell(LanguageCol, row)}))
        FLocaleGrid->DeleteRow(row);
}

void TLocaleForm::UpdateDelete(TObject*) {
    FDelete->SetEnabled(FLocaleGrid->Row() > 0);
}

void TLocaleForm::SetDir(TObject*) {
    if (const auto folder = OS().SelectDirectory(LocaleStr(50512), LocaleDir)) LocaleDir = *folder;
}

} // namespace tarn
