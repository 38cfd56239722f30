#include "TLineEditor.h"

#include "qsLocale.h"
#include "rtl/SysUtils.h"
#include "vcl/Dialogs.h"

namespace tarn {

constinit const TClassRecord TLineEditor::ClassRecord{"TLineEditor", &TForm::ClassRecord,
                                                      CreateObject<TLineEditor>};

namespace {

enum TLineEditorStr : int {
    strLineEditor = 50620,
    strLinesCount = 50621,
    strSave = 50622,
    strCancel = 50623,
    strSaveTo = 50624,
    strLoadFrom = 50625,
    strTextFiles = 51531
};

constexpr TRect FirstPlace{200, 150, 520, 360};
constexpr int ButtonWidth = 110, ButtonHeight = 25, ButtonMargin = 8; // pixels
constexpr int StatusBarHeight = 19;                                   // pixels
constexpr std::string_view TextExt = ".txt";

} // namespace

TLineEditor::TLineEditor(TComponent* owner)
    : TForm(owner), FStatusBar(new TStatusBar(this)), FButtons(new TPanel(this)),
      FMemo(new TMemo(this)), FSave(NewButton("Save", strSave)),
      FCancel(NewButton("Cancel", strCancel)), FSaveTo(NewButton("SaveTo", strSaveTo)),
      FLoadFrom(NewButton("LoadFrom", strLoadFrom)) {
    SetName("LineEditor");
    SetCaption(LocaleStr(strLineEditor));
    SetBoundsRect(FirstPlace);
    FStatusBar->SetName("StatusBar");
    FStatusBar->SetHeight(StatusBarHeight);
    FStatusBar->SetAlign(alBottom);
    FStatusBar->SetParent(this);
    FButtons->SetName("Buttons");
    FButtons->SetHeight(ButtonHeight + 2 * ButtonMargin);
    FButtons->SetAlign(alBottom);
    FButtons->SetParent(this);
    FMemo->SetName("Memo");
    FMemo->SetWordWrap(false);
    FMemo->SetScrollBars(ssBoth);
    FMemo->SetAlign(alClient);
    FMemo->SetParent(this);
    FMemo->OnChange = TNotifyEvent::Of<&TLineEditor::MemoChange>(this);
    FSave->ModalResult = mrOk;
    FCancel->ModalResult = mrCancel;
    FCancel->SetCancel(true);
    FSaveTo->OnClick = TNotifyEvent::Of<&TLineEditor::SaveTo>(this);
    FLoadFrom->OnClick = TNotifyEvent::Of<&TLineEditor::LoadFrom>(this);
    SetActiveControl(FMemo);
    MemoChange(FMemo);
}

/// The buttons stand in the order in which they are made.
TButton* TLineEditor::NewButton(std::string_view name, int caption) {
    auto* const button = new TButton(this);
    button->SetName(name);
    button->SetCaption(LocaleStr(caption));
    const int left = ButtonMargin + FButtons->ControlCount() * (ButtonWidth + ButtonMargin);
    button->SetBoundsRect({left, ButtonMargin, ButtonWidth, ButtonHeight});
    button->SetParent(FButtons);
    return button;
}

bool TLineEditor::Execute(const TStrings& lines, bool readOnly) {
    FMemo->Lines().Assign(&lines);
    FMemo->SetReadOnly(readOnly);
    FSave->SetEnabled(!readOnly);
    FLoadFrom->SetEnabled(!readOnly);
    return ShowModal() == mrOk;
}

bool TLineEditor::IsShortCut(TShortCut shortCut) {
    if (shortCut == (scCtrl | VK_RETURN)) return FSave->Click();
    return TForm::IsShortCut(shortCut);
}

void TLineEditor::MemoChange(TObject*) {
    FStatusBar->SetSimpleText(Format(LocaleStr(strLinesCount), {FMemo->Lines().Count()}));
}

void TLineEditor::SaveTo(TObject*) {
    if (const auto fileName = AskForTextFile(true)) FMemo->Lines().SaveToFile(*fileName);
}

void TLineEditor::LoadFrom(TObject*) {
    if (const auto fileName = AskForTextFile(false)) FMemo->Lines().LoadFromFile(*fileName);
}

std::optional<std::string> AskForTextFile(bool save) {
    TOpenDialog toLoad;
    TSaveDialog toSave;
    toSave.DefaultExt = TextExt;
    TOpenDialog& dialog = save ? toSave : toLoad;
    dialog.Filter = LocaleStr(strTextFiles);
    if (!dialog.Execute()) return std::nullopt;
    return dialog.FileName;
}

} // namespace tarn
