#include "ide_fixture.h"

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

/// A key binding that writes its name down and answers as told.
class TTestBinding : public TInterfacedObject<IOTAKeyboardBinding> {
public:
    TTestBinding(std::string_view name, TShortCut key, TKeyBindingResult answer, TBindingType type,
                 Strings& trace)
        : FName(name), FKey(key), FAnswer(answer), FType(type), FTrace(trace) {}

    TBindingType GetBindingType() override { return FType; }
    std::string GetDisplayName() override { return FName; }
    std::string GetName() override { return FName; }
    void BindKeyboard(const TIntf<IOTAKeyBindingServices>& services) override {
        const TShortCut keys[] = {FKey};
        EXPECT_EQ(FKey != 0,
                  services->AddKeyBinding(keys, TKeyBindingProc::Of<&TTestBinding::KeyProc>(this),
                                          nullptr, kfImplicitShift, "keyboard", FName));
    }
    void KeyProc(IOTAKeyContext& context, TShortCut key, TKeyBindingResult& result) {
        EXPECT_EQ(key, FKey);
        EXPECT_EQ(context.GetEditBuffer(), IDEService<IOTAEditorServices>()->GetTopBuffer());
        FTrace.push_back(FName);
        if (OnKey) OnKey();
        result = FAnswer;
    }

    std::function<void()> OnKey;

private:
    std::string FName;
    TShortCut FKey;
    TKeyBindingResult FAnswer;
    TBindingType FType;
    Strings& FTrace;
};

/// A menu item that writes its name down when it is clicked.
class TTraceItem : public TMenuItem {
public:
    TTraceItem(TMenuItem* parent, std::string_view caption, TShortCut key, Strings& trace)
        : FTrace(trace) {
        SetCaption(caption);
        SetShortCut(key);
        OnClick = TNotifyEvent::Of<&TTraceItem::Clicked>(this);
        parent->Add(this);
    }
    std::function<void()> Then;

private:
    void Clicked(TObject*) {
        FTrace.push_back(Caption());
        if (Then) Then();
    }
    Strings& FTrace;
};

constexpr TShortCut TestKey = scCtrl | scAlt | 'K';

// --- The way of a key -------------------------------------------------------------------------

class KeyTest : public IdeTest {
protected:
    TTestBinding* Bind(std::string_view name, TKeyBindingResult answer, TShortCut key = TestKey,
                       TBindingType type = btPartial) {
        auto* const binding = new TTestBinding(name, key, answer, type, Trace);
        Numbers.push_back(IDEService<IOTAKeyboardServices>()->AddKeyboardBinding(
            TIntf<IOTAKeyboardBinding>(binding)));
        return binding;
    }
    Strings Trace;
    std::vector<int> Numbers;
};

TEST_F(KeyTest, BindingsBeforeActiveFormBeforeMainForm) {
    const struct {
        TKeyBindingResult First, Second;
        Strings Expected;
    } cases[] = {
        {krHandled, krHandled, {"first"}},
        {krNextProc, krHandled, {"first", "second"}},
        {krNextProc, krNextProc, {"first", "second", "window"}},
        {krNextProc, krUnhandled, {"first", "second", "window"}},
        {krUnhandled, krHandled, {"first", "window"}},
    };
    new TTraceItem(Ide->MainForm().MainMenu().Items(), "main", TestKey, Trace);
    TMainMenu windowMenu;
    Ide->EditWindow().Menu = &windowMenu;
    auto* const item = new TTraceItem(windowMenu.Items(), "window", TestKey, Trace);
    OpenText("abc");
    for (const auto& [first, second, expected] : cases) {
        Trace.clear();
        Bind("first", first);
        Bind("second", second);
        EXPECT_TRUE(Ide->PressKey(TestKey));
        EXPECT_EQ(Trace, expected);
        for (const int number : Numbers) Ide->Keyboard().Remove(number);
        Numbers.clear();
    }
    Trace.clear();
    delete item;
    EXPECT_TRUE(Ide->PressKey(TestKey));
    EXPECT_EQ(Trace, Strings{"main"});
    EXPECT_FALSE(Ide->PressKey(scAlt | 'Q')); // nobody's key
    Ide->EditWindow().Menu = nullptr;
}

TEST_F(KeyTest, BindingsNeedTheFocusOfTheEditor) {
    OpenText("abc");
    Bind("bound", krHandled);
    Ide->MainForm().Show();
    EXPECT_FALSE(Ide->PressKey(TestKey));
    EXPECT_FALSE(Ide->PressKey(VK_DELETE));
    EXPECT_FALSE(Ide->TypeText("x"));
    Ide->EditWindow().Show();
    Ide->EditWindow().SetActiveControl(&Ide->EditWindow().TabControl());
    EXPECT_FALSE(Ide->PressKey(TestKey));
    Ide->CurrentBuffer()->Show();
    EXPECT_TRUE(Ide->PressKey(TestKey));
    EXPECT_EQ(Trace, Strings{"bound"});
    EXPECT_EQ(Text(), "abc");
}

/// A binding that asks for keys that it cannot have, and for one too late.
class TGreedyBinding : public TTestBinding {
public:
    using TTestBinding::TTestBinding;
    void BindKeyboard(const TIntf<IOTAKeyBindingServices>& services) override {
        const auto handler = TKeyBindingProc::Of<&TTestBinding::KeyProc>(this);
        EXPECT_FALSE(Ask(*services, 2, handler));
        EXPECT_FALSE(Ask(*services, 0, handler));
        EXPECT_FALSE(Ask(*services, 1, {}));
        EXPECT_TRUE(Ask(*services, 1, handler));
        Kept = services;
    }
    static bool Ask(IOTAKeyBindingServices& services, std::size_t keys, TKeyBindingProc handler) {
        constexpr TShortCut some[] = {TestKey, TestKey};
        return services.AddKeyBinding({some, keys}, handler, nullptr, 0, "keyboard", "item");
    }
    TIntf<IOTAKeyBindingServices> Kept;
};

TEST_F(KeyTest, RefusedBindings) {
    Bind("a", krHandled);
    Bind("b", krHandled, 0); // binds no key
    Bind("a", krHandled);    // name taken
    Bind("d", krHandled, TestKey, btComplete);
    Bind("c", krHandled);
    EXPECT_EQ(Numbers, (std::vector<int>{0, -1, -1, -1, 1}));
    EXPECT_EQ(Ide->Keyboard().Count(), 2);
    EXPECT_THROW(Ide->Keyboard().Remove(7), EListError);
    auto* const greedy = new TGreedyBinding("e", 0, krHandled, btPartial, Trace);
    Ide->Keyboard().Add(TIntf<IOTAKeyboardBinding>(greedy));
    EXPECT_FALSE(
        TGreedyBinding::Ask(*greedy->Kept, 1, TKeyBindingProc::Of<&TTestBinding::KeyProc>(greedy)));
}

TEST_F(KeyTest, ABindingMayRemoveOthersAndFail) {
    OpenText("abc");
    Bind("first", krNextProc)->OnKey = [&] {
        Ide->Keyboard().Remove(Numbers[1]);
        Ide->Keyboard().Remove(Numbers[0]);
    };
    Bind("second", krHandled);
    Bind("third", krHandled)->OnKey = [] { throw Exception("key failed"); };
    EXPECT_TRUE(Ide->PressKey(TestKey));
    EXPECT_EQ(Trace, (Strings{"first", "third"}));
    EXPECT_EQ(Boxes(), Strings{"key failed"});
}

// --- The menu ---------------------------------------------------------------------------------

TEST_F(IdeTest, MenuBar) {
    const TMenuItem& bar = *Ide->MainForm().MainMenu().Items();
    Strings captions;
    for (int i = 0; i < bar.Count(); ++i) {
        captions.push_back(bar.Items(i)->Caption());
        EXPECT_GT(bar.Items(i)->Count(), 0) << captions.back();
    }
    EXPECT_EQ(captions, (Strings{"&File", "&Edit", "&Search", "&View", "&Project", "&Run",
                                 "&Component", "&Database", "&Tools", "&Help"}));
    EXPECT_TRUE(bar.Find("tools")->Find("Environment Options..."));
    EXPECT_TRUE(Ide->MainForm().FindComponent("FileSaveItem"));
    EXPECT_EQ(Ide->MainForm().FindComponent("ActionList"), &Ide->MainForm().ActionList());
    EXPECT_EQ(Ide->MainForm().Images().Count, 60);
}

TEST_F(IdeTest, ClickOpensTheMenusAboveFirst) {
    Strings trace;
    auto* const top = new TTraceItem(Ide->MainForm().MainMenu().Items(), "top", 0, trace);
    auto* const sub = new TTraceItem(top, "sub", 0, trace);
    auto* const item = new TTraceItem(sub, "item", 0, trace);
    EXPECT_TRUE(Ide->ClickMenuItem(*item));
    EXPECT_EQ(trace, (Strings{"top", "sub", "item"}));

    trace.clear();
    top->Then = [&] { sub->SetVisible(false); };
    EXPECT_FALSE(Ide->ClickMenuItem(*item));
    EXPECT_EQ(trace, Strings{"top"});

    trace.clear();
    top->Then = [&] { sub->SetVisible(true); };
    item->SetEnabled(false);
    EXPECT_FALSE(Ide->ClickMenuItem(*item));
    item->SetEnabled(true);
    top->Then = [&] { delete sub; }; // a menu that is built anew when it opens
    EXPECT_FALSE(Ide->ClickMenuItem(*item));
    EXPECT_EQ(trace, (Strings{"top", "sub", "top"}));
    delete top;
}

TEST_F(IdeTest, MenuCommandsFollowTheState) {
    TMenuItem* const save = ClassCast<TMenuItem>(Ide->MainForm().FindComponent("FileSaveItem"));
    TMenuItem* const find = ClassCast<TMenuItem>(Ide->MainForm().FindComponent("SearchFindItem"));
    EXPECT_FALSE(Ide->ClickMenuItem(*save));
    OpenText("abc");
    EXPECT_FALSE(Ide->ClickMenuItem(*save));
    Ide->TypeText("x");
    EXPECT_TRUE(Ide->ClickMenuItem(*save));
    EXPECT_EQ(Read("Unit1.pas"), "xabc");
    EXPECT_FALSE(Ide->ClickMenuItem(*find));
    EXPECT_TRUE(Ide->PressKey(scCtrl | 0x73)); // Ctrl+F4
    EXPECT_EQ(Ide->Modules().Count(), 0);
}

// --- Packages ---------------------------------------------------------------------------------

class TTestWizard : public TNotifierObject<IOTAWizard> {
public:
    TTestWizard(std::string_view name, Strings& trace) : FName(name), FTrace(trace) {}
    ~TTestWizard() override { FTrace.push_back("free " + FName); }
    void Destroyed() override {
        FTrace.push_back("destroyed " + FName);
        if (FName == "bad") throw Exception("bad end");
    }
    std::string GetIDString() override { return "Test." + FName; }
    std::string GetName() override { return FName; }
    TWizardState GetState() override { return {wsEnabled}; }
    void Execute() override {}

private:
    std::string FName;
    Strings& FTrace;
};

class PackageTest : public IdeTest {
protected:
    /// A package of these wizards; a failing step raises after it has done its work.
    TIdePackage Package(const Strings& wizards, std::string_view failing = "") {
        const auto step = [this, failing = std::string(failing)](const std::string& name) {
            return [this, failing, name] {
                Trace.push_back(name);
                if (name == failing) throw Exception(name + " failed");
            };
        };
        return {step("initialize"),
                [this, wizards, last = step("register")] {
                    for (const std::string& wizard : wizards)
                        RegisterPackageWizard(new TTestWizard(wizard, Trace));
                    last();
                },
                step("finalize")};
    }
    Strings Trace;
};

TEST_F(PackageTest, WizardsEndInReverseOrder) {
    EXPECT_TRUE(Ide->Packages().Load(Package({"a", "bad", "c"})));
    EXPECT_EQ(Ide->Packages().WizardCount(), 3);
    IDEService<IOTAWizardServices>()->RemoveWizard(0);
    EXPECT_EQ(Ide->Packages().Wizard(0), nullptr);
    Ide->Packages().Unload();
    EXPECT_EQ(Trace, (Strings{"initialize", "register", "destroyed a", "free a", "destroyed c",
                              "free c", "destroyed bad", "free bad", "finalize"}));
    EXPECT_EQ(Boxes(), Strings{"bad end"});
    EXPECT_EQ(Ide->Packages().WizardCount(), 0);
}

TEST_F(PackageTest, FailedLoads) {
    EXPECT_FALSE(Ide->Packages().Load(Package({"a"}, "initialize")));
    EXPECT_EQ(Trace, Strings{"initialize"});
    Trace.clear();
    EXPECT_FALSE(Ide->Packages().Load(Package({"a"}, "register")));
    EXPECT_EQ(Trace, (Strings{"initialize", "register", "destroyed a", "free a", "finalize"}));
    EXPECT_EQ(Boxes(), (Strings{"initialize failed", "register failed"}));
    EXPECT_EQ(Ide->Packages().Count(), 0);
}

TEST_F(PackageTest, TheIdeUnloadsWhatIsLeft) {
    Ide->Packages().Load(Package({"a"}));
    Ide->Packages().Load(Package({"b"}, "finalize"));
    Ide.reset();
    EXPECT_EQ(Trace, (Strings{"initialize", "register", "initialize", "register", "destroyed b",
                              "free b", "finalize", "destroyed a", "free a", "finalize"}));
    EXPECT_THROW(RegisterPackageWizard(new TTestWizard("c", Trace)), EInvalidOperation);
}

// --- Services ---------------------------------------------------------------------------------

TEST_F(IdeTest, OneIdeAtATime) {
    EXPECT_THROW(TIde(), EInvalidOperation);
    EXPECT_EQ(Application()->Title, "Embedded IDE");
    EXPECT_EQ(Application()->MainForm, &Ide->MainForm());
}

template <class I> void ExpectWithheld(TIde& ide) {
    EXPECT_TRUE(IDEService<I>());
    ide.Withhold(I::IID);
    EXPECT_FALSE(IDEService<I>());
}

TEST_F(IdeTest, EachServiceCanBeWithheld) {
    ExpectWithheld<IOTAWizardServices>(*Ide);
    ExpectWithheld<INTAServices>(*Ide);
    ExpectWithheld<IOTAEditorServices>(*Ide);
    ExpectWithheld<IOTAModuleServices>(*Ide);
    ExpectWithheld<IOTAActionServices>(*Ide);
    ExpectWithheld<IOTAKeyboardServices>(*Ide);
}

TEST_F(IdeTest, TheEmptyIdeHasNothingInFront) {
    EXPECT_FALSE(IDEService<IOTAEditorServices>()->GetTopBuffer());
    EXPECT_FALSE(IDEService<IOTAEditorServices>()->GetTopView());
    EXPECT_FALSE(IDEService<IOTAModuleServices>()->CurrentModule());
    EXPECT_FALSE(Ide->EditWindow().Visible());
    EXPECT_FALSE(Ide->Undo());
    EXPECT_FALSE(Ide->TypeText("x"));
    EXPECT_FALSE(Ide->ActivateTab(0));
}

TEST_F(IdeTest, InterfacesOfClosedFilesAnswerEmpty) {
    OpenText("  abc");
    const auto buffer = IDEService<IOTAEditorServices>()->GetTopBuffer();
    const auto view = buffer->GetTopView();
    const auto block = view->GetBlock();
    const auto position = view->GetPosition();
    const auto window = view->GetEditWindow();
    const auto options = buffer->GetBufferOptions();
    const auto module = buffer->GetModule();
    block->Extend(1, 3);
    EXPECT_EQ(view, buffer->GetEditView(0));
    EXPECT_FALSE(buffer->GetEditView(1));
    EXPECT_EQ(window->GetForm(), &Ide->EditWindow());
    EXPECT_EQ(Supports<IOTASourceEditor>(module->GetModuleFileEditor(0)),
              TIntf<IOTASourceEditor>(buffer));
    EXPECT_FALSE(Supports<IOTAFormEditor>(buffer));

    Ide->Modules().CloseAll(true);
    EXPECT_FALSE(buffer->GetTopView());
    EXPECT_EQ(buffer->GetEditViewCount(), 0);
    EXPECT_EQ(buffer->GetFileName(), "");
    EXPECT_FALSE(buffer->GetModule());
    EXPECT_FALSE(view->GetBuffer());
    EXPECT_EQ(view->GetTopRow(), 0);
    EXPECT_FALSE(block->GetIsValid());
    EXPECT_FALSE(block->Extend(1, 1));
    EXPECT_EQ(position->GetRow(), 0);
    position->InsertText("x");
    options->SetAutoIndent(true);
    EXPECT_FALSE(options->GetAutoIndent());
    EXPECT_EQ(module->GetModuleFileCount(), 0);
    EXPECT_FALSE(module->GetModuleFileEditor(0));

    const auto services = IDEService<IOTAModuleServices>();
    Ide.reset();
    EXPECT_EQ(window->GetForm(), nullptr);
    EXPECT_EQ(services->GetModuleCount(), 0);
    EXPECT_FALSE(Supports<IOTAEditorServices>(services));
}

TEST_F(IdeTest, PaintInvalidatesTheEditor) {
    struct TPeer : IControlPeer {
        void Invalidate(TControl&) override { ++Count; }
        void Redraw(TControl&, std::uint32_t) override {}
        void StateChanged(TControl&) override {}
        void SetRedraw(TControl&, bool) override {}
        int Count = 0;
    } peer;
    OpenText("");
    Ide->EditWindow().Editor().Peer = &peer;
    IDEService<IOTAEditorServices>()->GetTopView()->Paint();
    EXPECT_EQ(peer.Count, 1);
    EXPECT_EQ(Ide->CurrentView()->PaintCount(), 1);
    Ide->EditWindow().Editor().Peer = nullptr;
}

TEST_F(IdeTest, PostedMessagesWaitForThePump) {
    OpenText("abc");
    Strings trace;
    const auto handler = [&](TMessage&) {
        trace.push_back("message");
        Ide->CurrentView()->InsertText("1");
        Ide->CurrentView()->InsertText("2");
        throw Exception("message failed");
    };
    const TMessageWindow window(TWndMethod::Calling(handler));
    OS().PostMessage(window.Handle(), 1, 0, 0);
    Ide->PressKey(VK_RIGHT);
    EXPECT_EQ(trace, Strings{});
    Ide->PumpMessages();
    EXPECT_EQ(trace, Strings{"message"});
    EXPECT_EQ(Boxes(), Strings{"message failed"});
    EXPECT_EQ(Text(), "a12bc");
    EXPECT_TRUE(Ide->Undo());
    EXPECT_EQ(Text(), "abc");
}

} // namespace
} // namespace tarn
