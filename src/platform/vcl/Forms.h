#pragma once

#include "rtl/TStrings.h"
#include "vcl/StandardIdents.h"
#include "vcl/TControl.h"
#include "vcl/TMenuItem.h"

#include <exception>
#include <functional>

namespace tarn {

enum TWindowState : std::uint8_t { wsNormal, wsMinimized, wsMaximized };
inline constexpr std::string_view WindowStateNames[] = {"wsNormal", "wsMinimized", "wsMaximized"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TWindowState> = EnumType("TWindowState", WindowStateNames);

enum TFormStyle : std::uint8_t {
    fsNormal,
    fsMDIChild,
    fsMDIForm,
    fsStayOnTop ///< a front end keeps the form before the others, active or not
};
inline constexpr std::string_view FormStyleNames[] = {"fsNormal", "fsMDIChild", "fsMDIForm",
                                                      "fsStayOnTop"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TFormStyle> = EnumType("TFormStyle", FormStyleNames);

/// How a modal form was closed; mrNone while it is open. Form files have the number.
enum TModalResult : std::uint8_t {
    mrNone,
    mrOk,
    mrCancel,
    mrAbort,
    mrRetry,
    mrIgnore,
    mrYes,
    mrNo
};
inline constexpr TTypeInfo ModalResultType = IntegerType<std::uint8_t>("TModalResult");

/// Whether the sender, a form, may be closed; `canClose` is true before.
using TCloseQueryEvent = TMethod<void(TObject* sender, bool& canClose)>;
inline constexpr std::string_view CloseQueryEventParams[] = {"Sender", "CanClose"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TCloseQueryEvent> =
    MethodType("TCloseQueryEvent", MethodSignatureOf<TCloseQueryEvent>, CloseQueryEventParams);

/// A top-level window. Every form is on the list of the screen while it lives.
class TForm : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TForm(TComponent* owner = nullptr);
    ~TForm() override;

    const std::string& Caption() const { return Text(); }
    void SetCaption(std::string_view value) { SetText(value); }

    void Show(); ///< makes the form visible and active
    void Hide();
    /// Closes the form as its user does: asks CloseQuery, then hides it; false when that is
    /// refused. A modal form gets the result mrCancel, unless it has one, and is hidden by
    /// ShowModal.
    bool Close();
    void SetVisible(bool value) override;
    TWindowState WindowState() const { return FWindowState; }
    void SetWindowState(TWindowState value);
    TFormStyle FormStyle() const { return FFormStyle; }
    void SetFormStyle(TFormStyle value);

    /// Shows the form until its ModalResult is set, through the application's OnModal. Then
    /// CloseQuery is asked; when that is refused, the result is mrNone again and the form stays
    /// open. With nobody there to close it, which is when OnModal leaves the result at mrNone, it
    /// is cancelled even if CloseQuery refuses. The form that was active before is active again.
    TModalResult ShowModal();
    TModalResult ModalResult = mrNone;
    bool Modal() const { return FModal; } ///< whether ShowModal has it open

    TNotifyEvent OnShow; ///< the form becomes visible
    TCloseQueryEvent OnCloseQuery;
    TNotifyEvent OnClose; ///< the form is closed: the query has allowed it, and it is hidden next

    TControl* ActiveControl() const { return FActiveControl.Get(); }
    void SetActiveControl(TControl* control);

    TWeak<TMainMenu> Menu;
    TMainMenu* MainMenu() const { return Menu.Get(); } ///< published as "Menu"
    void SetMainMenu(TMainMenu* value) { Menu = value; }

    /// Runs the item of the form's menu, or the action of one of its action lists, that has the
    /// shortcut; true when there is one. Without one, unless the active control wants the key,
    /// Enter clicks the active control when that is a button, else the default button, and Esc the
    /// cancel button; false when there is none that can be clicked.
    virtual bool IsShortCut(TShortCut shortCut);
    /// Brings the actions of the menu and of the controls up to date, as the application does when
    /// it is idle.
    void UpdateActions();

protected:
    /// Whether the form may be closed, by OnCloseQuery.
    virtual bool CloseQuery();

private:
    bool ClickButton(TShortCut key);
    void RunModal(const TWeak<TForm>& alive);
    bool AllowsClosing();

    TWindowState FWindowState = wsNormal;
    TFormStyle FFormStyle = fsNormal;
    bool FModal = false;
    bool FMayClose = false; ///< the query has allowed to close the modal form
    TWeak<TControl> FActiveControl;
};

/// The forms of the process and which of them is active. There is one at a time, see Screen().
class TScreen : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TScreen();
    ~TScreen() override;

    int FormCount() const { return static_cast<int>(FForms.size()); }
    TForm* Forms(int index) const; ///< front to back; raises EListError outside the list

    /// The form that has the focus; null when none of the process has.
    TForm* ActiveForm() const { return FActiveForm.Get(); }
    /// Brings the form to the front and tells OnActiveFormChange when another was active.
    void SetActiveForm(TForm* form);

    /// The names of the installed fonts; a front end fills in those of the system.
    TStrings& Fonts() { return FFonts; }

    /// What new forms are shown by, and menus that have no peer of their own; null for nothing.
    IControlPeer* Peer = nullptr;
    IMenuPeer* MenuPeer = nullptr;

    int Cursor() const { return FCursor; }
    void SetCursor(int value) { FCursor = value; }

    TNotifyEvent OnActiveFormChange;

private:
    friend class TForm;
    void AddForm(TForm* form) { FForms.push_back(form); }
    void RemoveForm(TForm* form);

    std::vector<TForm*> FForms;
    TWeak<TForm> FActiveForm;
    TStringList FFonts{"Arial", "Courier New", "MS Sans Serif"};
    int FCursor = crDefault;
};

using TExceptionEvent = TMethod<void(TObject* sender, const std::exception& error)>;

/// The process: its title, its main form, its message loop and what becomes of an error that
/// nobody caught. There is one at a time, see Application().
class TApplication : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TApplication();
    ~TApplication() override;

    std::string Title;
    std::string ExeName;
    TForm* MainForm = nullptr; ///< null again once the form is freed

    /// The window that owns the process's message boxes.
    HWND Handle() const { return FWindow.Handle(); }

    /// Runs a modal form until its ModalResult is set; a front end fills it.
    TMethod<void(TForm& form)> OnModal;

    /// Takes over the display of errors that nobody caught.
    TExceptionEvent OnException;
    /// To be called while an exception is being handled: hands it to OnException, or shows it. What
    /// is no std::exception is handed on as an Exception "unknown error". An error of the handler
    /// itself is shown; nothing is thrown.
    void HandleException(TObject* sender);
    /// Shows the error's message in a box.
    void ShowException(const std::exception& error);

    /// Handles the posted messages until none is left. What a message's handler raises goes to
    /// HandleException, and the next message is handled.
    void ProcessMessages();
    /// The message queue is empty: the actions of the main form and of all forms that are shown are
    /// brought up to date. What an update raises goes to HandleException.
    void Idle();

private:
    void WndProc(TMessage& message);
    TMessageWindow FWindow;
};

/// The application and screen objects of the process, null while there is none. Who makes a
/// TApplication or TScreen installs it; a second one raises EInvalidOperation.
TApplication* Application();
TScreen* Screen();

} // namespace tarn
