#pragma once

#include "TTestFolder.h"
#include "os/portable/TPortableOS.h"
#include "qsErrorLog.h"
#include "qsExpMng.h"
#include "vcl/Forms.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarn {

/// What happened, in order; the recording parts of the harness write into it.
inline std::vector<std::string> Events;
/// What to add to each event, when it is set.
inline std::function<std::string()> EventSuffix;

inline void Log(std::string event) {
    if (EventSuffix) event += EventSuffix();
    Events.push_back(std::move(event));
}

inline std::vector<std::string> TakeEvents() {
    return std::exchange(Events, {});
}

/// Records what goes through the operating system layer.
class TRecordingOS : public TPortableOS {
public:
    HWND AllocateHWnd(TWndMethod procedure) override {
        if (Recording) Log("AllocateHWnd");
        return TPortableOS::AllocateHWnd(procedure);
    }
    void DeallocateHWnd(HWND window) override {
        if (Recording) Log("DeallocateHWnd");
        TPortableOS::DeallocateHWnd(window);
    }
    bool PostMessage(HWND window, std::uint32_t msg, std::intptr_t w, std::intptr_t l) override {
        if (Recording) Log(Format("PostMessage %x", {msg}));
        return TPortableOS::PostMessage(window, msg, w, l);
    }
    void ActivateKeyboardLayout(HKL layout) override {
        if (Recording) Log(Format("layout %x", {layout}));
        TPortableOS::ActivateKeyboardLayout(layout);
    }
    std::intptr_t DefWindowProc(const TMessage& message) override {
        return static_cast<std::intptr_t>(message.Msg) + message.WParam;
    }
    bool Recording = false;
};

/// An expert whose life is recorded, and which fails where it is told to.
class TTestExpert : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TTestExpert(std::string name = "A") : FName(std::move(name)) {
        Log(FName + ".Create");
        if (FailIn == FName + ".Create") throw Exception("cannot create " + FName);
    }
    ~TTestExpert() override { Log(FName + ".Destroy"); }
    void BeforeDestruction() override { Fail("BeforeDestruction"); }
    void Init(TGetItemData getItemData) override {
        Log(FName + ".Init");
        Fail("Init");
        TExpMenuItemData* const data = getItemData("Item" + FName);
        data->Caption = "Command " + FName;
        data->ShortCutText = FName == "A" ? "Ctrl+;" : "Ctrl+.";
        data->OnExecute = TNotifyEvent::Of<&TTestExpert::Run>(this);
        data->OnUpdate = TNotifyEvent::Of<&TTestExpert::Update>(this);
        GetItemData = getItemData;
    }
    void Load(bool loaded) override {
        Log(FName + (loaded ? ".Load(true)" : ".Load(false)"));
        Fail("Load");
    }
    void MenuNotification(TMenuItem* item, TExpMenuItemData* data) override {
        Log(FName + ".MenuNotification " + data->ItemID + " " + item->Name());
        if (OnNotify) OnNotify();
        Fail("MenuNotification");
    }
    void Run(TObject* sender) {
        Log(FName + ".Run");
        Sender = sender;
        Fail("Run");
    }
    void Update(TObject*) {
        Log(FName + ".Update");
        Fail("Update");
    }

    static inline std::string FailIn;
    static inline const TObject* Sender = nullptr; ///< of the last Run
    static inline std::function<void()> OnNotify;  ///< called in every MenuNotification
    static inline TGetItemData GetItemData;        ///< as the last Init was given it

private:
    void Fail(std::string_view where) const {
        if (FailIn == FName + "." + std::string(where))
            throw Exception(std::string(where) + " failed in " + FName);
    }
    std::string FName;
};

class TOtherExpert : public TTestExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TOtherExpert() : TTestExpert("B") {}
};

inline constinit const TClassRecord TTestExpert::ClassRecord{
    "TTestExpert", &TCustomExpert::ClassRecord, CreateObject<TTestExpert>};
inline constinit const TClassRecord TOtherExpert::ClassRecord{
    "TOtherExpert", &TTestExpert::ClassRecord, CreateObject<TOtherExpert>};

/// An IDE of a main menu, an action list and a place for wizards.
class TSmallIDE {
public:
    TSmallIDE() {
        InstallOS(&OS);
        OS.SetModuleFileName((Dir / "pack.module").string());
        App = std::make_unique<TApplication>();
        App->Title = "Small IDE";
        Scr = std::make_unique<TScreen>();
        Main = std::make_unique<TForm>();
        App->MainForm = Main.get();
        Menu = new TMainMenu(Main.get());
        Main->Menu = Menu;
        Actions = new TActionList(Main.get());
        for (std::string_view caption : {"&File", "&Edit", "&Tools", "&Help"}) {
            auto* const item = new TMenuItem;
            item->SetCaption(caption);
            Menu->Items()->Add(item);
        }
        auto* const option = new TMenuItem;
        option->SetCaption("&Options...");
        Menu->Items()->Find("Tools")->Add(option);
        SetIDEServices(TIntf<IInterface>(static_cast<INTAServices*>(new TServices(*this))));
        ExpManagerSlots() = {};
        TTestExpert::FailIn.clear();
        TTestExpert::OnNotify = nullptr;
        Events.clear();
        EventSuffix = nullptr;
    }
    ~TSmallIDE() {
        Unload();
        SetIDEServices(nullptr);
        Main.reset();
        Scr.reset();
        App.reset();
        InstallOS(nullptr);
        ExpManagerSlots() = {};
    }

    /// Initializes the package with experts A (slot 1) and B (slot 7, captioned by a string).
    void Initialize() {
        InitializeExpMng();
        Initialized = true;
        RegisterExpClass(TExpertClass::Of<TTestExpert>(), 1, "ExpertA", -1);
        RegisterExpClass(TExpertClass::Of<TOtherExpert>(), 7, "ExpertB", 51140);
    }
    /// Initializes and registers; the menu is not built yet.
    TExpManager* Start() {
        Initialize();
        Register();
        return TExpManager::Instance();
    }
    /// The IDE lets the wizards go.
    void Stop() {
        for (const TIntf<IOTAWizard>& wizard : std::exchange(Wizards, {})) wizard->Destroyed();
    }
    void Unload() {
        Stop();
        if (std::exchange(Initialized, false)) FinalizeExpMng();
    }

    void WriteSettings(std::string_view text) {
        std::ofstream(Dir / "ExpData.spc", std::ios::binary) << text;
    }

    /// The main menu as text: two blanks a level, "Caption (Name)".
    std::string MenuText() const {
        std::string text;
        const auto print = [&](auto& self, TMenuItem& parent, int level) -> void {
            for (int i = 0; i < parent.Count(); ++i) {
                TMenuItem& item = *parent.Items(i);
                text.append(2 * static_cast<std::size_t>(level), ' ').append(item.Caption());
                if (!item.Name().empty()) text.append(" (" + item.Name() + ")");
                text += "\n";
                self(self, item, level + 1);
            }
        };
        print(print, *Menu->Items(), 0);
        return text;
    }

    std::string LastDialog() const { return OS.Dialogs().empty() ? "" : OS.Dialogs().back().Text; }

    TTestFolder Folder;
    std::filesystem::path Dir = Folder.Path();
    TRecordingOS OS;
    std::unique_ptr<TApplication> App;
    std::unique_ptr<TScreen> Scr;
    std::unique_ptr<TForm> Main;
    TMainMenu* Menu = nullptr;
    TActionList* Actions = nullptr;
    std::vector<TIntf<IOTAWizard>> Wizards;
    bool HasMainMenu = true;
    bool HasActionList = true;
    bool Initialized = false;

private:
    class TServices : public TInterfacedObject<INTAServices, IOTAWizardServices> {
    public:
        explicit TServices(TSmallIDE& ide) : FIde(ide) {}
        TMainMenu* GetMainMenu() override { return FIde.HasMainMenu ? FIde.Menu : nullptr; }
        TActionList* GetActionList() override {
            return FIde.HasActionList ? FIde.Actions : nullptr;
        }
        TImageList* GetImageList() override { return nullptr; }
        int AddWizard(const TIntf<IOTAWizard>& wizard) override {
            FIde.Wizards.push_back(wizard);
            return static_cast<int>(FIde.Wizards.size()) - 1;
        }
        void RemoveWizard(int) override { FIde.Wizards.clear(); }

    private:
        TSmallIDE& FIde;
    };
};

} // namespace tarn
