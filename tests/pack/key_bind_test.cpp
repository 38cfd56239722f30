// The hot keys of menu items in the source editor.

#include "TPackHarness.h"
#include "qsKeyBind.h"

namespace tarn {
namespace {

/// Keyboard services that write down what they are asked for. Numbers are given in turn from 10;
/// the binding of a name in `Refused` gets -1.
class TKeyServices : public TInterfacedObject<IOTAKeyboardServices, IOTAKeyBindingServices> {
public:
    int AddKeyboardBinding(const TIntf<IOTAKeyboardBinding>& binding) override {
        binding->BindKeyboard(TIntf<IOTAKeyBindingServices>(this));
        if (binding->GetName() == Refused) return -1;
        Held.push_back(binding);
        Log(Format("add %s '%s'", {binding->GetName(), binding->GetDisplayName()}));
        EXPECT_EQ(binding->GetBindingType(), btPartial);
        return 9 + static_cast<int>(Held.size());
    }
    void RemoveKeyboardBinding(int index) override {
        auto& binding = Held[static_cast<std::size_t>(index - 10)];
        Log(Format("remove %d '%s'", {index, binding->GetDisplayName()}));
        if (index == BadIndex) throw EListError("no such binding");
        binding = {};
    }
    bool AddKeyBinding(std::span<const TShortCut> keys, TKeyBindingProc handler, void* context,
                       int flags, std::string_view keyboard, std::string_view item) override {
        EXPECT_EQ(keys.size(), 1u);
        EXPECT_EQ(context, nullptr);
        Log(Format("bind %s %d %s %s", {ShortCutToText(keys[0]), flags, keyboard, item}));
        Handlers.push_back(handler);
        return true;
    }

    std::vector<TIntf<IOTAKeyboardBinding>> Held;
    std::vector<TKeyBindingProc> Handlers;
    std::string Refused;
    int BadIndex = -1;
};

class TNoContext : public TInterfacedObject<IOTAKeyContext> {
public:
    TIntf<IOTAEditBuffer> GetEditBuffer() override { return {}; }
};

struct TRecorder : TPersistent {
    void Click(TObject*) { Log("click"); }
    void Update(TObject* sender) {
        Log("update");
        static_cast<TAction*>(sender)->SetEnabled(Enabled);
    }
    bool Enabled = true;
};

class TKeyBindTest : public testing::Test {
protected:
    TKeyBindTest() : Services(new TKeyServices) {
        Held = TIntf<IOTAKeyboardServices>(Services);
        SetIDEServices(Held);
        Action.OnExecute = TNotifyEvent::Of<&TRecorder::Click>(&Recorder);
        Action.OnUpdate = TNotifyEvent::Of<&TRecorder::Update>(&Recorder);
        Action.SetCaption("First");
        Item->SetName("Item1");
        Item->SetAction(&Action);
    }
    ~TKeyBindTest() override { SetIDEServices(nullptr); }

    TKeyBindingResult Press(std::size_t handler) {
        const TIntf<TNoContext> context(new TNoContext);
        TKeyBindingResult result = krUnhandled;
        Services->Handlers[handler](*context, scCtrl | 'K', result);
        return result;
    }

    TSmallIDE Ide;
    TKeyServices* Services;
    TIntf<IOTAKeyboardServices> Held;
    TRecorder Recorder;
    TAction Action;
    std::unique_ptr<TMenuItem> Item = std::make_unique<TMenuItem>();
    TKeyBind Keys;
};

TEST_F(TKeyBindTest, ItemsAreBoundAndTakenBackNewestFirst) {
    TMenuItem second, third;
    second.SetName("Item2");
    third.SetName("Item3");
    Services->Refused = "Tarn&QS.ServiceDelphiWizards.Item2";
    Keys.AddKey(Item.get(), scCtrl | 'K');
    Keys.AddKey(&second, scCtrl | 'L');
    Keys.AddKey(&third, 0); // no shortcut
    Keys.AddKey(&third, scAlt | 'M');
    const auto bind = [](const char* key, const char* item) {
        return Format("bind %s 1 Tarn&QS.ServiceDelphiWizards %s", {key, item});
    };
    EXPECT_EQ(TakeEvents(),
              (std::vector<std::string>{bind("Ctrl+K", "Item1"),
                                        "add Tarn&QS.ServiceDelphiWizards.Item1 'First'",
                                        bind("Ctrl+L", "Item2"), bind("Alt+M", "Item3"),
                                        "add Tarn&QS.ServiceDelphiWizards.Item3 ''"}));
    EXPECT_EQ(Keys.Count(), 2);

    Services->BadIndex = 11; // the IDE has dropped it already: the others go, the error is told
    EXPECT_THROW(Keys.Clear(), EListError);
    EXPECT_EQ(TakeEvents(), (std::vector<std::string>{"remove 11 ''", "remove 10 'First'"}));
    EXPECT_EQ(Keys.Count(), 0);
    Keys.Clear();
    EXPECT_EQ(TakeEvents(), std::vector<std::string>{});
    Keys.AddKey(Item.get(), scCtrl | 'K');
    SetIDEServices(nullptr);
    Keys.AddKey(Item.get(), scCtrl | 'L');
    EXPECT_EQ(Keys.Count(), 1);
    Keys.Clear();
    EXPECT_EQ(Keys.Count(), 0);
}

TEST_F(TKeyBindTest, TheKeyClicksTheItemAndGoesNoFurther) {
    Keys.AddKey(Item.get(), scCtrl | 'K');
    TakeEvents();
    EXPECT_EQ(Press(0), krHandled);
    EXPECT_EQ(TakeEvents().back(), "click");
    Recorder.Enabled = false; // found out by the update, before the item is looked at
    EXPECT_EQ(Press(0), krHandled);
    EXPECT_EQ(TakeEvents(), std::vector<std::string>{"update"});
    Recorder.Enabled = true;
    Press(0);
    EXPECT_EQ(TakeEvents().back(), "click");
    Item.reset();
    EXPECT_EQ(Press(0), krHandled);
    EXPECT_EQ(TakeEvents(), std::vector<std::string>{});
    EXPECT_EQ(Services->Held[0]->GetDisplayName(), "");
    Keys.Clear();
}

TEST(KeyBindings, FollowTheMenuAndNameDisputedKeysOnce) {
    TSmallIDE ide;
    std::vector<std::string> logged;
    ExpManagerSlots().WriteLogEntry = [&](TObject*, const std::exception& error) {
        logged.emplace_back(error.what());
    };
    TExpManager* const manager = ide.Start();
    auto* const services = new TKeyServices;
    const TIntf<IOTAKeyboardServices> held(services);
    ExpManagerSlots().SaveExpData = {};
    manager->CreateExpertMenu(); // no keyboard services: the menu stands without them
    manager->DeleteExpertMenu();
    const std::string menu = ide.MenuText();
    const TIntf<IInterface>& former = IDEServices();
    class TBoth : public TInterfacedObject<IInterface> {
    public:
        TBoth(TIntf<IInterface> a, TIntf<IInterface> b) : FA(std::move(a)), FB(std::move(b)) {}
        HResult QueryInterface(const TGUID& iid, void*& obj) override {
            return FA->QueryInterface(iid, obj) == S_OK ? S_OK : FB->QueryInterface(iid, obj);
        }

    private:
        TIntf<IInterface> FA, FB;
    };
    SetIDEServices(TIntf<IInterface>(new TBoth(former, held))); // which keeps the former
    TakeEvents();
    for (const int same : {1, 2}) ExpData().MenuData.Get(same)->ShortCutText = "Ctrl+;";
    manager->CreateExpertMenu();
    manager->CreateExpertMenu(); // takes the first one's keys back
    std::string keys;
    for (const std::string& event : TakeEvents())
        if (event.starts_with("add") || event.starts_with("remove")) keys += event + "\n";
    std::string added;
    for (const char* item : {"1 'Command A'", "2 'Command B'", "3 'Settings'"})
        added += Format("add Tarn&QS.ServiceDelphiWizards.qsTarnExpMenuItem%s\n", {item});
    EXPECT_EQ(keys, added + "remove 12 'Settings'\nremove 11 'Command B'\nremove 10 'Command A'\n" +
                        added);
    EXPECT_EQ(logged, (std::vector<std::string>{
                          "the commands ItemA and ItemB have one key, Ctrl+;",
                          "the commands ItemA and SettingItem have one key, Ctrl+;"}));
    services->BadIndex = 15; // what the IDE refuses leaves no item of the pack behind
    ide.Unload();
    EXPECT_EQ(ide.MenuText(), menu);
    SetIDEServices(nullptr);
}

} // namespace
} // namespace tarn
