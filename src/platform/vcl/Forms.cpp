#include "vcl/Forms.h"

#include "rtl/EAbort.h"
#include "rtl/SysUtils.h"
#include "streaming/TFiler.h"
#include "vcl/TButton.h"

#include <algorithm>

namespace tarn {
namespace {

TApplication* TheApplication = nullptr;
TScreen* TheScreen = nullptr;

template <class T> void Install(T*& place, T* object) {
    if (place) throw EInvalidOperation(Format("there is a %s already", {object->ClassName()}));
    place = object;
}

constexpr TPropInfo FormProps[] = {
    Published<&TForm::ActiveControl, &TForm::SetActiveControl>("ActiveControl"),
    Published<&TForm::Caption, &TForm::SetCaption>("Caption"),
    Published<&TForm::FormStyle, &TForm::SetFormStyle>("FormStyle", {.Default = fsNormal}),
    Published<&TForm::MainMenu, &TForm::SetMainMenu>("Menu"),
    // Unlike other controls, a form begins hidden.
    Published<&TControl::Visible, &TControl::SetVisible>("Visible", {.Default = false}),
    Published<&TForm::WindowState, &TForm::SetWindowState>("WindowState", {.Default = wsNormal}),
    Published<&TForm::OnClose>("OnClose"),
    Published<&TForm::OnCloseQuery>("OnCloseQuery"),
    Published<&TForm::OnShow>("OnShow"),
};

} // namespace

constinit const TClassRecord TForm::ClassRecord{"TForm", &TControl::ClassRecord,
                                                CreateObject<TForm>, FormProps};
constinit const TClassRecord TScreen::ClassRecord{"TScreen", &TComponent::ClassRecord};
constinit const TClassRecord TApplication::ClassRecord{"TApplication", &TComponent::ClassRecord};

TApplication* Application() {
    return TheApplication;
}
TScreen* Screen() {
    return TheScreen;
}

// --- TForm ------------------------------------------------------------------------------------

TForm::TForm(TComponent* owner) : TControl(owner) {
    TControl::SetVisible(false);
    if (!TheScreen) return;
    TheScreen->AddForm(this);
    Peer = TheScreen->Peer;
}

TForm::~TForm() {
    if (TheApplication && TheApplication->MainForm == this) TheApplication->MainForm = nullptr;
    if (TheScreen) TheScreen->RemoveForm(this);
}

void TForm::Show() {
    const TWeak<TForm> alive(this);
    SetVisible(true);
    if (alive && TheScreen) TheScreen->SetActiveForm(this);
}

void TForm::Hide() {
    SetVisible(false);
}

void TForm::SetVisible(bool value) {
    const bool appears = value && !Visible();
    TControl::SetVisible(value);
    if (!value && TheScreen && TheScreen->ActiveForm() == this) TheScreen->SetActiveForm(nullptr);
    if (const TNotifyEvent handler = appears ? OnShow : TNotifyEvent()) handler(this);
}

void TForm::SetWindowState(TWindowState value) {
    FWindowState = value;
    StateChanged();
}

void TForm::SetFormStyle(TFormStyle value) {
    FFormStyle = value;
    StateChanged();
}

TModalResult TForm::ShowModal() {
    const TWeak<TForm> alive(this);
    const TWeak<TForm> before = TheScreen ? TheScreen->ActiveForm() : nullptr;
    const auto leave = [&] {
        if (alive) {
            FModal = false;
            Hide();
        }
        if (before && TheScreen) TheScreen->SetActiveForm(before.Get());
    };
    FModal = true;
    ModalResult = mrNone;
    FMayClose = false;
    try {
        Show();
        RunModal(alive);
        if (const TNotifyEvent handler = alive ? OnClose : TNotifyEvent()) handler(this);
    } catch (...) {
        leave();
        throw;
    }
    const TModalResult result = alive ? ModalResult : mrCancel;
    leave();
    return result;
}

/// Until the form may be closed, or nobody is there to close it, or somebody has freed it.
void TForm::RunModal(const TWeak<TForm>& alive) {
    while (alive) {
        if (TheApplication && TheApplication->OnModal) TheApplication->OnModal(*this);
        if (!alive) return;
        const bool cancelled = ModalResult == mrNone;
        if (cancelled) ModalResult = mrCancel;
        const bool allowed = FMayClose || AllowsClosing();
        if (!alive || allowed || cancelled) return;
        ModalResult = mrNone;
    }
}

/// The query of a modal form: an error of its handler is shown, and the form stays.
bool TForm::AllowsClosing() {
    try {
        return CloseQuery();
    } catch (...) {
        if (!TheApplication) throw;
        TheApplication->HandleException(this);
        return false;
    }
}

bool TForm::CloseQuery() {
    bool canClose = true;
    if (const TCloseQueryEvent handler = OnCloseQuery) handler(this, canClose);
    return canClose;
}

bool TForm::Close() {
    const TWeak<TForm> alive(this);
    if (FModal && ModalResult == mrNone) ModalResult = mrCancel;
    bool allowed = false;
    try {
        allowed = CloseQuery();
    } catch (...) {
        if (alive) ModalResult = mrNone;
        throw;
    }
    if (!alive) return allowed;
    FMayClose = allowed;
    if (FModal) {
        if (!allowed) ModalResult = mrNone;
        return allowed;
    }
    if (const TNotifyEvent handler = allowed ? OnClose : TNotifyEvent()) handler(this);
    if (alive && allowed) Hide();
    return allowed;
}

bool TForm::IsShortCut(TShortCut shortCut) {
    if (shortCut == 0) return false;
    if (Menu && Menu->IsShortCut(shortCut)) return true;
    for (int i = 0; i < ComponentCount(); ++i)
        if (auto* const list = ClassCast<TActionList>(Components(i));
            list && list->IsShortCut(shortCut))
            return true;
    return !(FActiveControl && FActiveControl->WantsKey(shortCut)) && ClickButton(shortCut);
}

namespace {

/// The first button below the control that can be clicked and that the property marks.
TButton* FindButton(TControl& control, bool (TButton::*mark)() const) {
    auto* const button = ClassCast<TButton>(&control);
    if (button && (button->*mark)() && button->CanFocus()) return button;
    for (int i = 0; i < control.ControlCount(); ++i)
        if (TButton* const below = FindButton(*control.Controls(i), mark)) return below;
    return nullptr;
}

} // namespace

bool TForm::ClickButton(TShortCut key) {
    if (key != VK_RETURN && key != VK_ESCAPE) return false;
    TButton* button = key == VK_RETURN ? ClassCast<TButton>(ActiveControl()) : nullptr;
    if (!button || !button->CanFocus())
        button = FindButton(*this, key == VK_RETURN ? &TButton::Default : &TButton::Cancel);
    return button && button->Click();
}

void TForm::SetActiveControl(TControl* control) {
    TControl* const before = FActiveControl.Get();
    if (control == before) return;
    FActiveControl = control;
    if (before) before->StateChanged();
    if (control) control->StateChanged();
    StateChanged();
}

void TForm::UpdateActions() {
    if (Menu) Menu->InitiateActions();
    const auto update = [](auto& self, TControl& control) -> void {
        control.InitiateAction();
        for (int i = 0; i < control.ControlCount(); ++i) self(self, *control.Controls(i));
    };
    update(update, *this);
}

// --- TScreen ----------------------------------------------------------------------------------

TScreen::TScreen() {
    Install(TheScreen, this);
}

TScreen::~TScreen() {
    TheScreen = nullptr;
}

TForm* TScreen::Forms(int index) const {
    if (index < 0 || index >= FormCount()) throw EListError(Format(SListIndexError, {index}));
    return FForms[static_cast<std::size_t>(index)];
}

void TScreen::SetActiveForm(TForm* form) {
    if (FActiveForm == form) return;
    if (const auto place = std::find(FForms.begin(), FForms.end(), form); place != FForms.end())
        std::rotate(FForms.begin(), place, place + 1);
    FActiveForm = form;
    if (OnActiveFormChange) OnActiveFormChange(this);
}

void TScreen::RemoveForm(TForm* form) {
    std::erase(FForms, form);
    if (FActiveForm == form) SetActiveForm(nullptr);
}

// --- TApplication -----------------------------------------------------------------------------

TApplication::TApplication() : FWindow(TWndMethod::Of<&TApplication::WndProc>(this)) {
    Install(TheApplication, this);
}

TApplication::~TApplication() {
    TheApplication = nullptr;
}

namespace {

/// Calls `take(const std::exception&)` with the exception that is being handled, unless a command
/// was given up.
template <class F> void TakeException(F&& take) {
    try {
        throw;
    } catch (const EAbort&) { // NOLINT(bugprone-empty-catch): who gave up knows it
    } catch (const std::exception& error) {
        take(error);
    } catch (...) {
        take(Exception("unknown error"));
    }
}

} // namespace

void TApplication::HandleException(TObject* sender) {
    const auto show = [this](const std::exception& error) { ShowException(error); };
    const auto handle = [&](const std::exception& error) {
        OnException ? OnException(sender, error) : show(error);
    };
    try {
        TakeException(handle);
    } catch (...) {
        try {
            TakeException(show);
        } catch (...) { // NOLINT(bugprone-empty-catch): not even a message box can be shown
        }
    }
}

void TApplication::ShowException(const std::exception& error) {
    OS().MessageBox(Handle(), error.what(), Title, MB_OK | MB_ICONERROR);
}

void TApplication::ProcessMessages() {
    TOperatingSystem& os = OS();
    for (bool more = true; more;) {
        try {
            more = os.DispatchMessage();
        } catch (...) {
            HandleException(this);
        }
    }
}

void TApplication::Idle() {
    const auto update = [this](TForm& form) {
        try {
            form.UpdateActions();
        } catch (...) {
            HandleException(this);
        }
    };
    if (MainForm) update(*MainForm);
    for (int i = 0; TheScreen && i < TheScreen->FormCount(); ++i)
        if (TForm& form = *TheScreen->Forms(i); form.Visible() && &form != MainForm) update(form);
}

void TApplication::WndProc(TMessage& message) {
    message.Result = OS().DefWindowProc(message);
}

} // namespace tarn
