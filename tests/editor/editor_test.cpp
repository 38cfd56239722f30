// The settings editor's life: its window, handlers that raise or interfere, objects that go.

#include "ErrorOf.h"
#include "TEditorHarness.h"
#include "TTestFolder.h"
#include "TestClasses.h"
#include "qsLocale.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TEdit.h"

#include <fstream>
#include <functional>
#include <sstream>

namespace tarn {
namespace {

class Editor : public TEditorTest<> {
protected:
    /// Whether nothing is left behind: no state, no hourglass, no control without a row.
    void ExpectClean() {
        EXPECT_EQ(Ed->State(), TSpcEdState());
        EXPECT_EQ(Scr.Cursor(), crDefault);
        if (!Ed->Form()) return;
        EXPECT_EQ(Ed->Form()->ControlArea().ControlCount(), Ed->Controls().Count());
        EXPECT_EQ(Ed->Form()->LabelArea().ControlCount(), Ed->Controls().Count());
    }
    /// Sends an error of the work to where the message loop does.
    template <class F> void AsUser(F&& work) {
        try {
            work();
        } catch (...) {
            App->HandleException(nullptr);
        }
        App->ProcessMessages();
    }
    /// Runs `use` while the window is a modal one.
    template <class F> void WhileModal(F&& use) {
        const std::function<void(TForm&)> run = [&](TForm& form) {
            App->ProcessMessages();
            use(form);
        };
        App->OnModal = TMethod<void(TForm&)>::Calling(run);
        AsUser([&] { Ed->ShowTree(); });
        App->OnModal = {};
    }

    std::unique_ptr<TDemo> Demo = std::make_unique<TDemo>();
};

TEST_F(Editor, NeedsSomethingToEdit) {
    EXPECT_EQ(ErrorOf([&] { Ed->ShowTree(); }),
              "ESpcEditorError: Necessary to initialize structure InitData.");
    Ed->Init({"", osfBin, nullptr});
    EXPECT_EQ(ErrorOf([&] { Ed->ShowTree(); }), "ESpcEditorError: Specification object not given.");
    Ed->Init({"demo.sbn", osfText, Demo.get()});
    Demo.reset();
    EXPECT_EQ(ErrorOf([&] { Ed->ShowTree(); }), "ESpcEditorError: Specification object not given.");
    EXPECT_EQ(Ed->Form(), nullptr);
}

TEST_F(Editor, SaysWhatItShows) {
    TComponent named;
    named.SetName("Unit1");
    Open(named);
    EXPECT_EQ(Ed->Form()->Caption(), "Component Unit1: TComponent");
    Open(*Demo); // in the window that is open already
    EXPECT_EQ(Ed->Form()->Caption(), "Object TDemo");
    EXPECT_EQ(TreeText(), "TDemo\n Part\n Pages\n Slots\n");
    EXPECT_EQ(Tree().Selected(), Node());
    Ed->SetSpcFileName("a/b.sbn");
    EXPECT_EQ(Ed->Form()->Caption(), "Specification a/b.sbn");
    Ed->SetFormCaption("Mine");
    EXPECT_EQ(Ed->Form()->Caption(), "Mine");
    TPart part;
    Open(part); // on a copy, of another class than the next one
    Ed->SetSpcRoot(Demo.get());
    EXPECT_EQ(TreeText(), "TDemo\n Part\n Pages\n Slots\n");
    EXPECT_NE(Node()->Data(), Demo.get());
    Ed->SetShowStatusBar(false);
    EXPECT_FALSE(Ed->Form()->StatusBar().Visible());
    const TFont& font = Ed->Form()->Tree().Font();
    EXPECT_EQ(Format("%s %d %d", {font.Name(), font.Size(), font.Color()}), "MS Sans Serif 9 0");
}

/// Everything that a handler may be called by: opens, goes to another node and back, changes,
/// saves, resizes, undoes and closes, whatever is raised on the way.
using TStep = std::function<void()>;
class EditorHandlers : public Editor {
protected:
    void Live() {
        TPage* const page = Demo->Pages()->Add("page");
        const auto select = [&](TTreeNode* node) {
            if (node) Tree().ClickNode(*node);
        };
        const auto first = [&] { return Tree().Items().GetFirstNode(); };
        const TStep steps[] = {
            [&] {
                Ed->FormOptions.Exclude(foModalShowing);
                Ed->ShowTree(*Demo);
            },
            [&] { select(first()); },
            [&] {
                for (int i = 0; i < Ed->Controls().Count(); ++i)
                    if (auto* const edit = ClassCast<TEdit>(Ed->Controls().Get(i).EControl))
                        if (edit->CanFocus()) edit->TypeText("1");
            },
            [&] { select(first() ? first()->GetFirstChild() : nullptr); },
            [&] { select(first()); },
            [&] { Ed->Form()->SetWidth(800); },
            [&] { Ed->DoSaveChanges(); },
            [&] {
                if (TTreeNode* const node = Ed->FindNode(Demo->Pages())) Ed->AddNode(*node);
            },
            [&] {
                if (TTreeNode* const node = Ed->FindNode(page)) Ed->DeleteNode(*node);
            },
            [&] { Ed->UndoChanges(); },
            [&] { Ed->Form()->Close(); },
        };
        for (const TStep& step : steps) {
            AsUser([&] {
                if (Ed->Form() || &step == steps) step();
            });
            EXPECT_EQ(Ed->State(), TSpcEdState());
            EXPECT_EQ(Scr.Cursor(), crDefault);
        }
    }
    /// Whether it all goes on as if nothing had been.
    void ExpectAsBefore() {
        TDemo demo;
        Ed->DoRelease();
        Ed->SetSpcFileName("");
        Ed->LabelAreaInfo()->SetDefAreaWidth(100);
        Open(demo);
        EXPECT_EQ(TreeText(), "TDemo\n Part\n Pages\n Slots\n");
        EXPECT_EQ(RowsText(), "Title : [3,4 42x13] TEdit [2,0 312x21]\n"
                              "Number : [3,25 48x13] TEdit [2,21 156x21]\n");
        ExpectClean();
        Ed->DoRelease();
    }
};

/// A handler of any event, which does its work at the n-th call: with the row, when it is told one.
struct THandler {
    std::function<void(TControlInfo*)> Work;
    int Countdown = 0;

    template <class... A> void operator()(A&&... args) {
        TControlInfo* info = nullptr;
        const auto take = [&](auto& arg) {
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(arg)>, TControlInfo>)
                info = &arg;
        };
        (take(args), ...);
        if (Countdown-- == 0) Work(info);
    }
};

template <auto Event> void Install(TSpcEditor& editor, THandler& handler) {
    editor.*Event = std::remove_reference_t<decltype(editor.*Event)>::Calling(handler);
}
template <auto Event> void Remove(TSpcEditor& editor) {
    editor.*Event = {};
}

struct TEventRow {
    std::string_view Name;
    void (*Install)(TSpcEditor& editor, THandler& handler);
    void (*Remove)(TSpcEditor& editor);
};
template <auto Event> constexpr TEventRow EventRow(std::string_view name) {
    return {name, Install<Event>, Remove<Event>};
}
using E = TSpcEditor;
constexpr TEventRow Events[] = {
    EventRow<&E::AfterCreateControl>("AfterCreateControl"),
    EventRow<&E::AfterGetControlData>("AfterGetControlData"),
    EventRow<&E::AfterSaveSpc>("AfterSaveSpc"),
    EventRow<&E::AfterSetControlData>("AfterSetControlData"),
    EventRow<&E::BeforeCreateControl>("BeforeCreateControl"),
    EventRow<&E::BeforeGetControlData>("BeforeGetControlData"),
    EventRow<&E::BeforeSaveSpc>("BeforeSaveSpc"),
    EventRow<&E::BeforeSetControlData>("BeforeSetControlData"),
    EventRow<&E::OnCollectionChange>("OnCollectionChange"),
    EventRow<&E::OnCollectionChanging>("OnCollectionChanging"),
    EventRow<&E::OnControlChange>("OnControlChange"),
    EventRow<&E::OnCreateLabel>("OnCreateLabel"),
    EventRow<&E::OnCreateSpc>("OnCreateSpc"),
    EventRow<&E::OnDropControl>("OnDropControl"),
    EventRow<&E::OnPlaceNodeImage>("OnPlaceNodeImage"),
    EventRow<&E::OnReadFormSetting>("OnReadFormSetting"),
    EventRow<&E::OnResizeControl>("OnResizeControl"),
    EventRow<&E::OnSelectStartNode>("OnSelectStartNode"),
    EventRow<&E::OnWriteFormSetting>("OnWriteFormSetting"),
};

// Each handler raises, or interferes, at its first calls and at later ones, on live objects and on
// a copy. Nothing stays behind, nothing goes twice, and the editor goes on.
TEST_F(EditorHandlers, MayDoAnything) {
    const auto toNode = [&](TObject* object) {
        if (TTreeNode* const node = Ed->FindNode(object)) Tree().SetSelected(node);
    };
    const struct {
        std::string_view Name;
        std::function<void(TControlInfo*)> Work;
    } deeds[] = {
        {"raise", [](TControlInfo*) { throw Exception("handler"); }},
        {"drop",
         [&](TControlInfo* info) {
             if (info) Ed->DropControl(*info);
         }},
        {"drop all",
         [&](TControlInfo*) {
             while (Ed->Controls().Count() > 0) Ed->DropControl(Ed->Controls().Get(0));
         }},
        {"rebuild", [&](TControlInfo*) { Ed->RebuildControls(); }},
        {"tree", [&](TControlInfo*) { Ed->BuildTree(); }},
        {"select", [&](TControlInfo*) { toNode(Demo->Part()); }},
        {"undo", [&](TControlInfo*) { Ed->UndoChanges(); }},
        {"resize",
         [&](TControlInfo*) {
             if (Ed->Form()) Ed->Form()->SetWidth(900);
         }},
        {"areas", [&](TControlInfo*) { Ed->LabelAreaInfo()->SetDefAreaWidth(50); }},
        {"release", [&](TControlInfo*) { Ed->Release(); }},
        {"close at once", [&](TControlInfo*) { Ed->DoRelease(); }},
        {"root", [&](TControlInfo*) { Demo = std::make_unique<TDemo>(); }},
    };
    TTestFolder folder;
    for (const TEventRow& event : Events)
        for (const auto& deed : deeds)
            for (const int call : {0, 2})
                for (const bool onFile : {false, true}) {
                    if (deed.Name == "root" && event.Name == "OnCollectionChanging") continue;
                    SCOPED_TRACE(Format("%s %s %d %d", {event.Name, deed.Name, call, onFile}));
                    Ed = std::make_unique<TSpcEditor>();
                    Demo = std::make_unique<TDemo>();
                    Ed->SetSpcFileName(onFile ? folder.File("demo.sbn") : "");
                    Ed->FormOptions.Include(foAutoSaveParams);
                    THandler handler{deed.Work, call};
                    event.Install(*Ed, handler);
                    Live();
                    event.Remove(*Ed);
                    ExpectAsBefore();
                    if (HasFailure()) return;
                }
    Ed.reset();
    EXPECT_EQ(OS.WindowCount(), 1U); // the application's
}

// --- What goes while the window stands ----------------------------------------------------------

TEST_F(Editor, MayGoWhileModal) {
    Ed->SetSpcRoot(Demo.get());
    const std::function<void(TForm&)> deeds[] = {
        [](TForm& form) { delete &form; },
        [&](TForm&) { Ed->DoRelease(); },
        [&](TForm&) {
            Ed->Release();
            App->ProcessMessages();
        },
        [&](TForm& form) {
            dynamic_cast<TEdit&>(*Row("Title").EControl).TypeText("x");
            delete &form;
        },
        [&](TForm&) { Ed.reset(); },
    };
    for (const auto& deed : deeds) {
        WhileModal(deed);
        EXPECT_TRUE(OS.Dialogs().empty());
        EXPECT_EQ(Ed ? Ed->Form() : nullptr, nullptr);
    }
    EXPECT_EQ(Scr.FormCount(), 0);
}

TEST_F(Editor, OutlivesItsObjects) {
    Open(*Demo);
    Tree().SetSelected(Node({"Part"}));
    Control<TEdit>("Level").TypeText("1");
    Demo.reset();
    EXPECT_TRUE(Ed->GetControlsDataEx());
    Ed->DisabledProps()->Add("TPart.Level");
    App->Idle();
    Tree().ClickNode(*Node());
    EXPECT_EQ(Ed->Controls().Count(), 0);
    EXPECT_FALSE(Ed->DeleteNode(*Node({"Pages"})) || Ed->MoveNode(*Node({"Part"}), nmUp));
    Ed->UndoChanges();
    App->ProcessMessages();
    EXPECT_EQ(TreeText(), "");
    EXPECT_TRUE(Ed->Form()->Close());
    App->ProcessMessages();
    EXPECT_EQ(Ed->Form(), nullptr);
}

// The message that frees a closed window comes when another one stands already.
TEST_F(Editor, LateMessages) {
    Open(*Demo);
    Ed->Form()->Close();
    EXPECT_NE(Ed->Form(), nullptr);
    Ed->ShowTree();
    App->ProcessMessages();
    ASSERT_NE(Ed->Form(), nullptr);
    EXPECT_TRUE(Ed->Form()->Visible());
    EXPECT_EQ(Ed->Controls().Count(), 2);
    // A node that was chosen before the tree has settled stays chosen.
    Ed->BuildTree();
    Tree().SetSelected(Node({"Part"}));
    App->ProcessMessages();
    EXPECT_EQ(Tree().Selected(), Node({"Part"}));
    Ed->Release();
    EXPECT_NE(Ed->Form(), nullptr);
    App->ProcessMessages();
    EXPECT_EQ(Ed->Form(), nullptr);
}

TEST_F(Editor, LeavesNothingBehind) {
    const std::size_t before = OS.WindowCount();
    Ed->SetSpcRoot(Demo.get());
    for (int i = 0; i < 1000; ++i) {
        Ed->SetOnFile(i % 2 == 1);
        WhileModal([&](TForm& form) {
            Control<TEdit>("Title").TypeText("x");
            OS.QueueAnswer(IDNO);
            form.Close();
        });
    }
    EXPECT_EQ(OS.WindowCount(), before);
    EXPECT_EQ(OS.PendingMessages(), 0U);
    EXPECT_EQ(Demo->Title, "title");
}

// --- The window ---------------------------------------------------------------------------------

// The state goes to the events and to the INI file, and comes back from there.
TEST_F(Editor, KeepsItsPlace) {
    TTestFolder folder;
    Ed->IniFileName = folder.File("editor.ini");
    Ed->IniSection = "Editor";
    Ed->FormOptions.Include(foAutoSaveParams);
    const auto place = [&] {
        const TSpcForm& form = *Ed->Form();
        return Format("%d,%d %dx%d %d %d %d", {form.Left(), form.Top(), form.Width(), form.Height(),
                                               static_cast<int>(form.WindowState()), Tree().Width(),
                                               Ed->Form()->LabelArea().Width()});
    };
    std::ofstream(folder.File("editor.ini")) << "[Editor]\nOld=1\n";
    Open(*Demo);
    Ed->Form()->SetBoundsRect({10, 20, 500, 300});
    Ed->Form()->SetWindowState(wsMaximized);
    Tree().SetWidth(150);
    Ed->Form()->Header().DragSection(0, 70);
    Ed->Form()->Close();
    const auto reopened = [&] {
        Ed = [&, name = Ed->IniFileName] {
            auto editor = std::make_unique<TSpcEditor>();
            editor->IniFileName = name;
            editor->IniSection = "Editor";
            return editor;
        }();
        Open(*Demo);
        return place();
    };
    EXPECT_EQ(reopened(), "10,20 500x300 2 150 70");
    std::ifstream stream(folder.File("editor.ini"));
    std::stringstream text;
    text << stream.rdbuf();
    EXPECT_EQ(text.str(), "[Editor]\r\nLeft=10\r\nTop=20\r\nWidth=500\r\nHeight=300\r\nState=2\r\n"
                          "TreeWidth=150\r\nLabelAreaWidth=70\r\n\r\n");
    std::ofstream(folder.File("editor.ini"))
        << "[Editor]\nLeft=x\nTop=1e1\nWidth=1\nHeight=99999999999\nState=1\nTreeWidth=-5\n"
           "LabelAreaWidth=-1\n";
    EXPECT_EQ(reopened(), "0,0 300x420 0 0 53");
    // The events come first, and may keep the file out of it.
    std::string log;
    const auto read = [&](TObject*, std::string_view, std::string_view section, TStrings& data,
                          bool& allow) {
        log += std::string(section) + ";";
        data.Add("Left=77");
        allow = false;
    };
    const auto write = [&](TObject*, std::string_view, std::string_view, TStrings& data,
                           bool& allow) {
        log += data[0] + ";";
        allow = false;
    };
    Ed->DoRelease();
    std::filesystem::remove(folder.File("editor.ini"));
    Ed->OnReadFormSetting = TReadFormSettingEvent::Calling(read);
    Ed->OnWriteFormSetting = TWriteFormSettingEvent::Calling(write);
    Open(*Demo);
    EXPECT_EQ(Ed->Form()->Left(), 77);
    Ed->Form()->SavePlacementAction().Execute();
    Ed->Form()->Close();
    EXPECT_EQ(log, "Editor;Left=77;"); // nothing by itself without the option
    EXPECT_FALSE(std::filesystem::exists(folder.File("editor.ini")));
}

/// Notes what a front end is told.
class TPeer final : public IControlPeer {
public:
    void Invalidate(TControl&) override { Told += "i"; }
    void Redraw(TControl&, std::uint32_t) override { Told += "r"; }
    void StateChanged(TControl&) override { Told += "s"; }
    void SetRedraw(TControl&, bool on) override { Told += on ? "+" : "-"; }
    std::string Told;
};

// Painting is held back once, also after a window went in the midst of that.
TEST_F(EditorHandlers, PaintsOnce) {
    THandler handler{[&](TControlInfo*) { Ed->DoRelease(); }};
    Install<&E::AfterCreateControl>(*Ed, handler);
    Open(*Demo);
    EXPECT_EQ(Ed->Form(), nullptr);
    Open(*Demo);
    TPeer area, number;
    Ed->Form()->ControlArea().Peer = &area;
    Row("Number").EControl->Peer = &number;
    Ed->UpdateControlArea();
    EXPECT_EQ(number.Told, ""); // it stands there already
    Row("Number").EControl->Peer = nullptr;
    Ed->BeginUpdate(akControl);
    Ed->RebuildControls();
    EXPECT_EQ(area.Told.find_first_of("+r"), std::string::npos);
    Ed->EndUpdate(akControl);
    std::erase(area.Told, 's');
    EXPECT_EQ(area.Told, "-+r");
    TPanel& panel = Ed->Form()->ControlArea();
    panel.Peer = nullptr;
    for (int i = 0; i < panel.ControlCount(); ++i) panel.Controls(i)->Peer = nullptr;
    ExpectClean();
}

TEST_F(Editor, CommandsFollowTheNode) {
    Ed->VisibleButtons = {vbAddNode, vbExitEditor};
    Ed->FormOptions.Include(foStayOnTop);
    Demo->Pages()->Add("a");
    Demo->Pages()->Add("b");
    const auto enabled = [&] {
        App->Idle();
        std::string text;
        const TToolBar& bar = Ed->Form()->ToolBar();
        for (int i = 0; i < bar.ButtonCount(); ++i)
            if (TToolButton& button = *bar.Buttons(i); !button.Name().empty() && button.Enabled())
                text += button.Name().substr(2) + (button.Visible() ? " " : "- ");
        return text;
    };
    Open(*Demo);
    EXPECT_EQ(Ed->Form()->FormStyle(), fsStayOnTop);
    EXPECT_EQ(enabled(), "Exit CollapseNode- ");
    Tree().SetSelected(Node({"Pages", "a"}));
    EXPECT_EQ(enabled(), "Exit AddNode DeleteNode- MoveNodeDown- ");
    TSpcForm& form = *Ed->Form();
    EXPECT_TRUE(form.IsShortCut(scAlt | VK_DOWN));
    EXPECT_EQ(enabled(), "Exit Save- Undo- AddNode DeleteNode- MoveNodeUp- ");
    // Enter in the tree expands a node, or collapses it; elsewhere and without the option not.
    Tree().SetSelected(Node({"Pages"}));
    form.SetActiveControl(&form.Header());
    EXPECT_FALSE(form.IsShortCut(VK_RETURN));
    form.SetActiveControl(&Tree());
    EXPECT_TRUE(form.IsShortCut(VK_RETURN));
    EXPECT_FALSE(Node({"Pages"})->Expanded());
    Ed->FormOptions.Exclude(foTreeExpandOnEnter);
    EXPECT_FALSE(form.IsShortCut(VK_RETURN));
    OS.QueueAnswer(IDNO);
    EXPECT_TRUE(form.IsShortCut(VK_ESCAPE));
    EXPECT_FALSE(form.Visible());
}

} // namespace
} // namespace tarn
