#include "cpuview/TCPUForm.h"

#include "qsLocale.h"
#include "vcl/TLabel.h"

namespace tarn {

constinit const TClassRecord TStrCountForm::ClassRecord{"TStrCountForm", &TForm::ClassRecord,
                                                        CreateObject<TStrCountForm>};
constinit const TClassRecord TCPUForm::ClassRecord{"TCPUForm", &TSharedForm::ClassRecord};

namespace {

constexpr int DefaultCount = 10;
constexpr int MenuCounts[] = {10, 20, 30, 40, 50};

TMenuItem* AddRadioItem(TPopupMenu& menu, std::string_view caption, int tag, TNotifyEvent click) {
    auto* const item = new TMenuItem;
    item->SetCaption(caption);
    item->SetRadioItem(true);
    item->Tag = tag;
    item->OnClick = click;
    menu.Items()->Add(item);
    return item;
}

void ClearMenu(TPopupMenu& menu) {
    while (menu.Items()->Count() > 0) delete menu.Items()->Items(menu.Items()->Count() - 1);
}

/// What the sender, an item of a menu, keeps.
int TagOf(TObject* sender) {
    const auto* const item = ClassCast<TMenuItem>(sender);
    if (!item) throw EInvalidOperation("an item of the menu must be the sender");
    return static_cast<int>(item->Tag);
}

} // namespace

// --- TStrCountForm ----------------------------------------------------------------------------

TStrCountForm::TStrCountForm(TComponent* owner) : TForm(owner), FCountEdit(new TSpinEdit(this)) {
    SetName("StrCountForm");
    SetCaption(LocaleStr(51071));
    SetFormStyle(fsStayOnTop); // as the window that asks
    SetBoundsRect({0, 0, 240, 100});
    auto* const label = new TLabel(this);
    label->SetName("CountLabel");
    label->SetCaption(LocaleStr(51072));
    label->SetParent(this);
    label->SetBoundsRect({8, 12, 130, 20});
    label->SetFocusControl(FCountEdit);
    FCountEdit->SetName("CountEdit");
    FCountEdit->SetParent(this);
    FCountEdit->SetBoundsRect({142, 8, 90, 24});
    TButton* const ok = NewButton("OkButton", "OK", mrOk);
    ok->SetBoundsRect({48, 60, 88, 28});
    ok->SetDefault(true);
    TButton* const cancel = NewButton("CancelButton", LocaleStr(50623), mrCancel);
    cancel->SetBoundsRect({144, 60, 88, 28});
    cancel->SetCancel(true);
    SetActiveControl(FCountEdit);
}

TButton* TStrCountForm::NewButton(std::string_view name, std::string_view caption,
                                  TModalResult result) {
    auto* const button = new TButton(this);
    button->SetName(name);
    button->SetCaption(caption);
    button->ModalResult = result;
    button->SetParent(this);
    return button;
}

// --- TCPUForm ---------------------------------------------------------------------------------

TCPUForm::TCPUForm(TComponent* owner, TCPUFormMng* manager)
    : TSharedForm(owner, manager), FToolBar(new TToolBar(this)), FMemo(new TMemo(this)),
      FObjectMenu(new TPopupMenu(this)), FStrCountMenu(new TPopupMenu(this)) {
    SetName("CPUForm");
    SetCaption(LocaleStr(51009));
    SetFormStyle(fsStayOnTop);
    SetMinSize(437, 175);
    SetBoundsRect({0, 0, 640, 360});

    FToolBar->SetName("ToolBar");
    FToolBar->SetParent(this);
    FToolBar->SetAlign(alTop);
    FToolBar->SetHeight(TToolBar::DefaultButtonHeight);
    FToolBar->SetShowCaptions(true);
    FToolBar->SetWrapable(true);
    FMemo->SetName("Memo");
    FMemo->SetParent(this);
    FMemo->SetAlign(alClient);
    FMemo->Font().SetPitch(fpFixed);
    FMemo->SetWordWrap(false);
    FMemo->SetScrollBars(ssVertical);
    SetActiveControl(FMemo);

    FObjectMenu->SetName("ObjectMenu");
    FObjectMenu->OnPopup = TNotifyEvent::Of<&TCPUForm::ObjectMenuPopup>(this);
    FStrCountMenu->SetName("StrCountMenu");
    FStrCountMenu->OnPopup = TNotifyEvent::Of<&TCPUForm::StrCountMenuPopup>(this);
    AddButton(
        "tbExit", LocaleStr(51085),
        NewAction("acExit", LocaleStr(51085), TNotifyEvent::Of<&TCPUForm::Exit>(this), VK_ESCAPE),
        nullptr);
    AddButton("tbGetData", LocaleStr(51069),
              NewAction("acGetData", LocaleStr(51069), TNotifyEvent::Of<&TCPUForm::GetData>(this)),
              FObjectMenu);
    AddButton("tbStrCount", LocaleStr(51070), nullptr, FStrCountMenu);
    WriteFormData();
}

TToolButton* TCPUForm::AddButton(std::string_view name, std::string_view hint, TAction* action,
                                 TPopupMenu* menu) {
    auto* const button = new TToolButton(this);
    button->SetName(name);
    button->SetCaption(hint);
    button->SetHint(hint);
    button->SetAction(action);
    if (menu) button->SetStyle(tbsDropDown);
    button->DropdownMenu = menu;
    button->SetParent(FToolBar);
    return button;
}

void TCPUForm::SetProperties() {
    TSharedForm::SetProperties();
    WriteFormData();
}

void TCPUForm::WriteFormData() {
    FillObjectMenu();
    FillStrCountMenu();
}

void TCPUForm::GetData(TObject* sender) {
    RunCommand(sender, TNotifyEvent::Of<&TCPUForm::acGetDataExecute>(this));
}

void TCPUForm::acGetDataExecute(TObject*) {
    // The memo takes the text as a whole: one that breaks off would pass for a capture. The panes
    // run the IDE's own code, which may end the pack and this window with it.
    const TWeak<TCPUForm> alive(this);
    TStringList lines;
    GetViewText(lines, Settings().ViewObject, Settings().ReadLineCount);
    if (alive) FMemo->Lines().Assign(&lines);
}

// --- The menu of the panes --------------------------------------------------------------------

void TCPUForm::FillObjectMenu() {
    ClearMenu(*FObjectMenu);
    for (const TCPUPane& pane : CPUPanes()) {
        if (pane.Type == qsAllViews) FObjectMenu->Items()->Add(NewLine());
        AddRadioItem(*FObjectMenu, LocaleStr(pane.CaptionId), pane.Type,
                     TNotifyEvent::Of<&TCPUForm::ObjMenuClick>(this));
    }
    ProcessObjects();
}

void TCPUForm::ObjMenuClick(TObject* sender) {
    Settings().ViewObject = static_cast<TCPUViewType>(TagOf(sender));
    ProcessObjects();
}

void TCPUForm::ProcessObjects() {
    TMenuItem& items = *FObjectMenu->Items();
    for (int i = 0; i < items.Count(); ++i)
        if (TMenuItem& item = *items.Items(i); !item.IsLine() && item.Tag == Settings().ViewObject)
            item.SetChecked(true);
}

// --- The menu of the counts -------------------------------------------------------------------

void TCPUForm::FillStrCountMenu() {
    ClearMenu(*FStrCountMenu);
    for (const int count : MenuCounts)
        AddRadioItem(*FStrCountMenu, Format(LocaleStr(51066), {count}), count,
                     TNotifyEvent::Of<&TCPUForm::StrCountClick>(this));
    FStrCountMenu->Items()->Add(NewLine());
    AddRadioItem(*FStrCountMenu, LocaleStr(51067), Settings().ReadLineCount,
                 TNotifyEvent::Of<&TCPUForm::CustomStrCountClick>(this));
    ProcessNewStrCount();
}

TMenuItem* TCPUForm::CustomItem() const {
    return FStrCountMenu->Items()->Items(FStrCountMenu->Items()->Count() - 1);
}

void TCPUForm::StrCountClick(TObject* sender) {
    Settings().ReadLineCount = TagOf(sender);
    ProcessNewStrCount();
}

void TCPUForm::CustomStrCountClick(TObject*) {
    // The pack may be unloaded while the dialog stands.
    const TWeak<TCPUForm> alive(this);
    TStrCountForm dialog;
    dialog.CountEdit().SetValue(Settings().ReadLineCount);
    dialog.CountEdit().SelectAll();
    if (dialog.ShowModal() != mrOk || !alive) return;
    const int count = dialog.CountEdit().Value();
    Settings().ReadLineCount = count >= 1 ? count : DefaultCount;
    CustomItem()->Tag = Settings().ReadLineCount;
    ProcessNewStrCount();
}

void TCPUForm::ProcessNewStrCount() {
    TMenuItem& items = *FStrCountMenu->Items();
    TMenuItem* wanted = CustomItem();
    for (int i = items.Count() - 1; i >= 0; --i)
        if (TMenuItem& item = *items.Items(i);
            !item.IsLine() && item.Tag == Settings().ReadLineCount)
            wanted = &item;
    wanted->SetChecked(true);
}

} // namespace tarn
