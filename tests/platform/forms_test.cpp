#include "os/portable/TPortableOS.h"
#include "rtl/SysUtils.h"
#include "vcl/Forms.h"
#include "vcl/TToolBar.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

/// An operating system with a screen and an application on it.
class Forms : public testing::Test {
protected:
    Forms() : FBefore(InstallOS(&OS)) {
        Scr = std::make_unique<TScreen>();
        App = std::make_unique<TApplication>();
        App->Title = "Title";
        Scr->OnActiveFormChange = TNotifyEvent::Of<&Forms::ActiveFormChange>(this);
    }
    ~Forms() override {
        App.reset();
        Scr.reset();
        InstallOS(FBefore);
    }

    void ActiveFormChange(TObject* sender) {
        EXPECT_EQ(sender, Scr.get());
        const TForm* const active = Scr->ActiveForm();
        Log += (active ? active->Caption() : "none") + " ";
    }

    std::string Order() const {
        std::string order;
        for (int i = 0; i < Scr->FormCount(); ++i) order += Scr->Forms(i)->Caption();
        return order;
    }

    /// What the message boxes said, and forgets what it has said already.
    std::string Shown() {
        std::string text;
        for (; FShown < OS.Dialogs().size(); ++FShown) {
            EXPECT_EQ(OS.Dialogs()[FShown].Flags, MB_OK | MB_ICONERROR);
            EXPECT_EQ(OS.Dialogs()[FShown].Caption, "Title");
            text += OS.Dialogs()[FShown].Text + ";";
        }
        return text;
    }

    TPortableOS OS;
    std::unique_ptr<TScreen> Scr;
    std::unique_ptr<TApplication> App;
    std::string Log;

private:
    TOperatingSystem* FBefore;
    std::size_t FShown = 0;
};

std::unique_ptr<TForm> NewForm(std::string_view caption) {
    auto form = std::make_unique<TForm>();
    form->SetCaption(caption);
    return form;
}

// --- Screen -----------------------------------------------------------------------------------

TEST_F(Forms, AreOrderedFrontToBack) {
    const auto a = NewForm("a"), b = NewForm("b");
    auto c = NewForm("c");
    EXPECT_EQ(Order(), "abc");
    EXPECT_FALSE(a->Visible());
    c->Show();
    b->Show();
    b->Show();
    EXPECT_EQ(Order(), "bca");
    EXPECT_EQ(Scr->ActiveForm(), b.get());
    Scr->SetActiveForm(nullptr);
    Scr->SetActiveForm(a.get());
    EXPECT_EQ(Order(), "abc");
    EXPECT_EQ(Log, "c b none a ");
    EXPECT_THROW(Scr->Forms(3), EListError);
    EXPECT_THROW(Scr->Forms(-1), EListError);
}

TEST_F(Forms, HiddenOrFreedFormIsNotActive) {
    auto a = NewForm("a"), b = NewForm("b");
    a->Show();
    b->Show();
    a->Hide(); // was not active
    EXPECT_EQ(Log, "a b ");
    b->Hide();
    EXPECT_FALSE(b->Visible());
    EXPECT_EQ(Scr->ActiveForm(), nullptr);
    a->Show();
    a.reset();
    EXPECT_EQ(Scr->ActiveForm(), nullptr);
    EXPECT_EQ(Order(), "b");
    EXPECT_EQ(Log, "a b none a none ");
}

TEST_F(Forms, OutliveTheScreen) {
    auto a = NewForm("a");
    a->Show();
    Scr.reset();
    EXPECT_EQ(Screen(), nullptr);
    a->Hide();
    a->Show();
    a.reset();
    Scr = std::make_unique<TScreen>();
    EXPECT_EQ(Scr->FormCount(), 0);
}

TEST_F(Forms, OneScreenAndOneApplication) {
    EXPECT_THROW(TScreen(), EInvalidOperation);
    EXPECT_THROW(TApplication(), EInvalidOperation);
    EXPECT_EQ(Screen(), Scr.get()); // the refused ones left the first in place
    EXPECT_EQ(Application(), App.get());
    EXPECT_EQ(OS.WindowCount(), 1u);
    App.reset();
    EXPECT_EQ(Application(), nullptr);
    EXPECT_EQ(OS.WindowCount(), 0u);
}

TEST_F(Forms, ForgetWhatIsFreed) {
    auto main = NewForm("main");
    auto control = std::make_unique<TControl>();
    auto menu = std::make_unique<TMainMenu>();
    App->MainForm = main.get();
    main->SetActiveControl(control.get());
    main->Menu = menu.get();
    EXPECT_EQ(main->ActiveControl(), control.get());
    control.reset();
    menu.reset();
    EXPECT_EQ(main->ActiveControl(), nullptr);
    EXPECT_FALSE(main->IsShortCut('X'));
    App->Idle();
    main.reset();
    EXPECT_EQ(App->MainForm, nullptr);
    App->Idle();
}

TEST_F(Forms, ShortCutsGoToTheMenuBeforeTheActions) {
    TForm form;
    auto* const menu = new TMainMenu(&form);
    auto* const list = new TActionList(&form);
    auto* const item = new TMenuItem;
    auto* const action = new TAction(&form);
    menu->Items()->Add(item);
    action->SetActionList(list);
    auto onClick = [&](TObject*) { Log += "item "; };
    auto onExecute = [&](TObject*) { Log += "action "; };
    item->OnClick = TNotifyEvent::Calling(onClick);
    action->OnExecute = TNotifyEvent::Calling(onExecute);
    action->SetShortCut('X');
    EXPECT_TRUE(form.IsShortCut('X'));
    item->SetShortCut('X');
    EXPECT_TRUE(form.IsShortCut('X')); // the menu is not the form's yet
    form.Menu = menu;
    EXPECT_TRUE(form.IsShortCut('X'));
    EXPECT_FALSE(form.IsShortCut('Y'));
    action->SetShortCut(0);
    EXPECT_FALSE(form.IsShortCut(0));
    EXPECT_EQ(Log, "action action item ");
}

TEST_F(Forms, AreAskedBeforeTheyClose) {
    TForm form;
    bool allow = false;
    auto query = [&](TObject*, bool& canClose) {
        EXPECT_TRUE(std::exchange(canClose, allow));
        Log += "query" + std::to_string(form.ModalResult) + " ";
    };
    auto close = [&](TObject*) { Log += form.Visible() ? "close " : "late "; };
    auto show = [&](TObject*) { Log += "show "; };
    form.SetCaption("form");
    form.OnCloseQuery = TCloseQueryEvent::Calling(query);
    form.OnClose = TNotifyEvent::Calling(close);
    form.OnShow = TNotifyEvent::Calling(show);
    const auto log = [this] { return std::exchange(Log, {}); };
    form.Show();
    form.Show();
    EXPECT_FALSE(form.Close());
    EXPECT_TRUE(form.Visible());
    allow = true;
    EXPECT_TRUE(form.Close());
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(log(), "show form query0 query0 close none ");

    int turn = 0;
    auto modal = [&](TForm& shown) {
        EXPECT_TRUE(shown.Visible() && shown.ModalResult == mrNone);
        switch (turn++) {
        case 0: // refused by the query
            allow = false;
            shown.ModalResult = mrOk;
            break;
        case 1: // refused at once, then gives up
            EXPECT_FALSE(shown.Close());
            break;
        case 2:
            allow = true;
            shown.ModalResult = mrYes;
            break;
        case 3: // asked once
            EXPECT_TRUE(shown.Close() && shown.Visible());
            break;
        default:
            throw EInvalidOperation("modal");
        }
    };
    EXPECT_EQ(form.ShowModal(), mrCancel); // with nobody there
    EXPECT_EQ(log(), "show form query2 close none ");
    App->OnModal = TMethod<void(TForm&)>::Calling(modal);
    EXPECT_EQ(form.ShowModal(), mrCancel); // whatever the query says
    EXPECT_EQ(log(), "show form query1 query2 query2 close none ");
    EXPECT_EQ(form.ShowModal(), mrYes);
    EXPECT_EQ(form.ShowModal(), mrCancel);
    EXPECT_EQ(log(), "show form query6 close none show form query2 close none ");
    EXPECT_THROW(form.ShowModal(), EInvalidOperation);
    EXPECT_FALSE(form.Visible());
    EXPECT_TRUE(form.Close() && form.ModalResult == mrNone); // not modal any more
}

TEST_F(Forms, ModalFormsOutliveAFailingQueryAndMayBeFreed) {
    auto form = std::make_unique<TForm>();
    bool fails = true;
    auto query = [&](TObject*, bool&) {
        if (std::exchange(fails, false)) throw EConvertError("no number");
    };
    form->OnCloseQuery = TCloseQueryEvent::Calling(query);
    int turn = 0;
    auto modal = [&](TForm& shown) {
        switch (turn++) {
        case 0:
            shown.ModalResult = mrOk;
            break; // the query fails, and the form stays
        case 1:
            EXPECT_EQ(OS.Dialogs().back().Text, "no number");
            fails = true;
            EXPECT_THROW(shown.Close(), EConvertError);
            EXPECT_TRUE(shown.Visible() && shown.ModalResult == mrNone);
            shown.ModalResult = mrYes;
            break;
        default:
            form.reset();
        }
    };
    App->OnModal = TMethod<void(TForm&)>::Calling(modal);
    EXPECT_EQ(form->ShowModal(), mrYes);
    EXPECT_EQ(form->ShowModal(), mrCancel); // freed meanwhile
    EXPECT_EQ(turn, 3);
}

// --- Application ------------------------------------------------------------------------------

template <class E> void HandleThrown(TApplication& app, const E& error, TObject* sender = nullptr) {
    try {
        throw error;
    } catch (...) {
        app.HandleException(sender);
    }
}

TEST_F(Forms, UncaughtErrorsAreShown) {
    HandleThrown(*App, EListError("list"));
    HandleThrown(*App, std::runtime_error("standard"));
    HandleThrown(*App, 42);
    EXPECT_EQ(Shown(), "list;standard;unknown error;");
}

TEST_F(Forms, UncaughtErrorsGoToTheHandler) {
    TObject* from = nullptr;
    auto handle = [&](TObject* sender, const std::exception& error) {
        from = sender;
        Log += std::string(ExceptionClassName(error)) + ":" + error.what() + ";";
    };
    App->OnException = TExceptionEvent::Calling(handle);
    TObject sender;
    HandleThrown(*App, EListError("list"), &sender);
    EXPECT_EQ(from, &sender);
    HandleThrown(*App, std::runtime_error("standard"));
    HandleThrown(*App, 42);
    EXPECT_EQ(Log, "EListError:list;External exception:standard;Exception:unknown error;");
    EXPECT_EQ(Shown(), "");
}

TEST_F(Forms, AFailingHandlerIsShown) {
    auto fail = [](TObject*, const std::exception&) { throw EMenuError("handler"); };
    auto failOddly = [](TObject*, const std::exception&) { throw "odd"; };
    App->OnException = TExceptionEvent::Calling(fail);
    HandleThrown(*App, EListError("list"));
    HandleThrown(*App, 42);
    App->OnException = TExceptionEvent::Calling(failOddly);
    HandleThrown(*App, EListError("list"));
    EXPECT_EQ(Shown(), "handler;handler;unknown error;");
    InstallOS(nullptr); // not even a box can be shown: nothing is thrown all the same
    App->OnException = {};
    HandleThrown(*App, EListError("list"));
    EXPECT_THROW(App->ProcessMessages(), EInvalidOperation);
    InstallOS(&OS);
}

TEST_F(Forms, MessagesGoOnAfterAnError) {
    auto procedure = [&](TMessage& message) {
        Log += std::to_string(message.Msg);
        if (message.Msg == 1) OS.PostMessage(App->Handle(), 4, 0, 0);
        if (message.Msg == 2) throw EInvalidOperation("two");
        if (message.Msg == 3) throw 3;
    };
    const TMessageWindow window(TWndMethod::Calling(procedure));
    for (const std::uint32_t msg : {1, 2, 3, 5}) OS.PostMessage(window.Handle(), msg, 0, 0);
    App->ProcessMessages();
    EXPECT_EQ(Log, "1235");
    EXPECT_EQ(Shown(), "two;unknown error;");
    EXPECT_EQ(OS.PendingMessages(), 0u);
}

TEST_F(Forms, IdleUpdatesTheActionsOfTheMenu) {
    TForm form;
    TMainMenu menu(&form);
    TAction above, below;
    auto* const item = new TMenuItem;
    menu.Items()->Add(item);
    item->SetAction(&above);
    item->Add(new TMenuItem);
    item->Items(0)->SetAction(&below);
    bool fails = false;
    auto update = [&](TObject* sender) {
        Log += sender == &above ? "above " : "below ";
        if (fails) throw EInvalidOperation("update");
    };
    above.OnUpdate = below.OnUpdate = TNotifyEvent::Calling(update);
    App->Idle();
    App->MainForm = &form;
    App->Idle();
    EXPECT_EQ(Log, "");
    form.Menu = &menu;
    App->Idle();
    EXPECT_EQ(Log, "above below ");
    // A form that is shown has its turn as well, with its controls, whatever fails before it.
    TForm dialog;
    TToolBar bar;
    TToolButton button;
    bar.SetParent(&dialog);
    button.SetParent(&bar);
    button.SetAction(&below);
    for (const bool shown : {false, true}) {
        dialog.SetVisible(shown);
        Log.clear();
        App->Idle();
        EXPECT_EQ(Log, shown ? "above below below " : "above below ");
    }
    fails = true;
    App->Idle();
    EXPECT_EQ(Shown(), "update;update;");
}

/// Writes down what a front end is told.
struct TPeer : IControlPeer {
    void Invalidate(TControl&) override { Log += "invalidate "; }
    void Redraw(TControl&, std::uint32_t flags) override {
        Log += "redraw" + std::to_string(flags) + " ";
    }
    void StateChanged(TControl&) override { Log += "state "; }
    void SetRedraw(TControl&, bool on) override { Log += on ? "on " : "off "; }
    std::string Log;
};

TEST_F(Forms, ControlsTellTheirPeer) {
    TPeer peer;
    {
        TForm form;
        TControl control;
        control.Invalidate(); // nobody to tell
        control.RedrawWindow(RDW_INVALIDATE);
        control.Peer = &peer;
        control.SetText("x");
        control.SetVisible(false);
        control.SetEnabled(false);
        control.SetBoundsRect({1, 2, 3, 4});
        control.SetParent(&form);
        EXPECT_EQ(peer.Log, "state state state state state ");
        peer.Log.clear();
        control.Invalidate();
        control.RedrawWindow(RDW_INVALIDATE | RDW_UPDATENOW);
        EXPECT_FALSE(control.HandleAllocated());
        OS.SendMessage(control.Handle(), WM_SETREDRAW, 0, 0);
        OS.SendMessage(control.Handle(), WM_SETREDRAW, 1, 0);
        OS.SendMessage(control.Handle(), 99, 1, 0);
        EXPECT_EQ(peer.Log, "invalidate redraw257 off on ");
        EXPECT_EQ(OS.WindowCount(), 2u);
        OS.PostMessage(control.Handle(), WM_SETREDRAW, 0, 0);
    }
    EXPECT_EQ(OS.WindowCount(), 1u); // the window goes with the control, and its messages
    EXPECT_EQ(OS.PendingMessages(), 0u);
}

} // namespace
} // namespace tarn
