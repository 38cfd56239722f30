// The settings editor's tree: its nodes and their names, and collections that change.

#include "ErrorOf.h"
#include "TEditorHarness.h"
#include "TestClasses.h"
#include "vcl/TEdit.h"

#include <functional>

namespace tarn {
namespace {

/// An object that wraps nothing, and one that has a node of that name.
class THolder : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TPart* Nested() const { return FPart.get(); }
    TNotifyEvent OnEvent;

private:
    std::unique_ptr<TPart> FPart = std::make_unique<TPart>();
};
constexpr TPropInfo HolderProps[] = {
    Published<&THolder::Nested>("NestedObject"),
    Published<&THolder::OnEvent>("OnEvent"),
};
constinit const TClassRecord THolder::ClassRecord{"THolder", &TPersistent::ClassRecord,
                                                  CreateObject<THolder>, HolderProps};

/// A collection whose items are fixed.
class TFixedPages : public TFixedCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TFixedPages() : TFixedCollection(TClassRef<TCollectionItem>::Of<TPage>()) {}
    std::string GetUpdateName() const override { return "Name"; }
};
constinit const TClassRecord TFixedPages::ClassRecord{"TFixedPages", &TFixedCollection::ClassRecord,
                                                      CreateObject<TFixedPages>};

class EditorTree : public TEditorTest<> {
protected:
    /// Keeps each change of a collection as "+", "-" and "0", in brackets while it is asked about.
    void Log() {
        Ed->OnCollectionChanging = TCollectionChangingEvent::Calling(FChanging);
        Ed->OnCollectionChange = TCollectionChangeEvent::Calling(FChange);
    }
    static std::string Sign(TCollectionItem* item, TCollNotification action) {
        constexpr std::string_view signs = "+-0";
        return std::string(1, signs[action]) + (item ? "i" : "");
    }
    void AddPages(std::initializer_list<std::string_view> names) {
        for (const std::string_view name : names) Demo.Pages()->Add(name);
    }

    TDemo Demo;
    std::string Changes;
    bool Allow = true;

private:
    std::function<void(TObject*, TCollection&, TCollectionItem*, TCollNotification, bool&)>
        FChanging = [this](TObject*, TCollection&, TCollectionItem* item, TCollNotification action,
                           bool& allow) {
            Changes += "(" + Sign(item, action) + ")";
            allow = Allow;
        };
    std::function<void(TObject*, TCollection&, TCollectionItem*, TCollNotification)> FChange =
        [this](TObject*, TCollection&, TCollectionItem* item, TCollNotification action) {
            Changes += Sign(item, action) + " ";
        };
};

TEST_F(EditorTree, ShowsObjectsAndItems) {
    AddPages({"one", "", "two", "three"});
    Demo.Pages()->Page(2)->Numbered = true;
    Demo.Pages()->Page(3)->NodeName = "called";
    Demo.Part()->SetLink(&Demo); // which would have no end
    TPart wrapped;
    static_cast<TSlot*>(Demo.Slots()->Add())->SetNestedObject(&wrapped);
    auto* const slot = static_cast<TSlot*>(Demo.Slots()->Add());
    slot->SetNestedObject(slot); // nor would this
    Ed->TranslatingTable()->SetTextStr("[TPage]\r\none=Eins\r\ncalled=no");
    Open(Demo);
    EXPECT_EQ(TreeText(), "TDemo\n"
                          " Part\n"
                          " Pages\n"
                          "  Eins\n"
                          "  Pages[1]\n"
                          "  two[2]\n"
                          "  called\n"
                          " Slots\n"
                          "  Slots[0]\n"
                          "  Slots[1]\n");
    EXPECT_TRUE(Node()->Expanded() && !Node({"Pages"})->Expanded());
    // An item shows its own rows and then those of what it wraps.
    Ed->InvisibleProps()->Add("TPart.Ratio");
    Tree().SetSelected(Node({"Slots", "Slots[0]"}));
    EXPECT_EQ(RowsText(), "AObjectID : [3,4 66x13] TEdit [2,0 312x21]\n"
                          "Level : [3,25 42x13] TEdit [2,21 156x21]\n");
    EXPECT_EQ(Row("Level").EInstance.Get(), &wrapped);
    Tree().SetSelected(Node({"Slots", "Slots[1]"}));
    EXPECT_EQ(RowsText(), "AObjectID : [3,4 66x13] TEdit [2,0 312x21]\n");
    Tree().SetSelected(Node({"Pages", "called"}));
    EXPECT_EQ(RowsText(), "Name : [3,4 36x13] TEdit [2,0 312x21]\n"
                          "Numbered : [3,23 60x13] TCheckBox [2,21 13x17]\n");
    Ed->Options.Include(eoSortProps);
    Ed->SetSimpleMode(true);
    Ed->BuildTree();
    EXPECT_EQ(TreeText(), "TDemo\n"
                          " Pages\n"
                          "  one\n"
                          "  Pages[1]\n"
                          "  two[2]\n"
                          "  called\n"
                          " Part\n"
                          " Slots\n"
                          "  Slots[0]\n"
                          "  Slots[1]\n");
    // Only an item shares its node.
    THolder holder;
    Open(holder);
    EXPECT_EQ(TreeText(), "THolder\n NestedObject\n");
    EXPECT_EQ(RowsText(), "");
    EXPECT_EQ(Ed->Form()->StatusBar().SimpleText(), "Properties: 0");
}

TEST_F(EditorTree, NamesOfItems) {
    struct TCase {
        std::string Name;
        bool Numbered;
        std::string Expected;
    };
    for (const TCase& c :
         {TCase{"", false, "C[3]"}, TCase{"", true, "C[3]"}, TCase{"a", false, "Ah"},
          TCase{"a", true, "Ah[3]"}, TCase{"C[3]", true, "C[3]"}, TCase{"b", false, "b"}}) {
        TPage page;
        page.Name = c.Name;
        page.Numbered = c.Numbered;
        Ed->TranslatingTable()->SetTextStr("[S]\r\na=Ah");
        EXPECT_EQ(Ed->FindItemNodeName(page, "S", "C", 3), c.Expected);
    }
    TPlain plain;
    EXPECT_EQ(Ed->FindNodeNameEx(plain, "S", "a"), "a"); // it asks for nothing
    Open(Demo);
    EXPECT_EQ(ErrorOf([&] { Tree().EditCaption(*Node(), "x"); }),
              "Exception: Operation not supported");
    EXPECT_EQ(Node()->Text(), "TDemo");
}

TEST_F(EditorTree, CollectionsChange) {
    AddPages({"", ""});
    Demo.Pages()->Page(1)->NodeName = "b";
    Log();
    Open(Demo);
    const auto pages = [&] { return Node({"Pages"}); };
    const auto page = [&](int index) { return pages()->Item(index); };
    const auto names = [&] {
        std::string text;
        for (int i = 0; i < pages()->Count(); ++i) {
            EXPECT_EQ(page(i)->Data(), Demo.Pages()->Items(i));
            text += page(i)->Text() + " ";
        }
        return text + (Tree().Selected() ? "> " + Tree().Selected()->Text() : "");
    };
    EXPECT_FALSE(Ed->Modified());
    const TTreeNode* added = Ed->AddNode(*pages());
    EXPECT_EQ(added, page(2));
    EXPECT_EQ(names(), "Pages[0] b Pages[2] > Pages[2]");
    EXPECT_TRUE(Ed->Modified());
    added = Ed->AddNode(*page(0));
    EXPECT_EQ(added, page(1));
    EXPECT_EQ(names(), "Pages[0] Pages[1] b Pages[3] > Pages[1]");
    EXPECT_TRUE(Ed->MoveNode(*page(2), nmUp));
    EXPECT_EQ(names(), "Pages[0] b Pages[2] Pages[3] > Pages[2]");
    EXPECT_TRUE(Ed->MoveNode(*page(0), nmDown));
    EXPECT_EQ(names(), "b Pages[1] Pages[2] Pages[3] > Pages[2]");
    EXPECT_FALSE(Ed->MoveNode(*page(0), nmUp) || Ed->MoveNode(*page(3), nmDown));
    EXPECT_TRUE(Ed->DeleteNode(*page(1)));
    EXPECT_EQ(names(), "b Pages[1] Pages[2] > Pages[1]");
    EXPECT_TRUE(Ed->DeleteNode(*page(1))); // the selected one: its neighbour's rows are shown
    EXPECT_EQ(names(), "b Pages[1] > Pages[1]");
    EXPECT_EQ(Row("Name").EInstance.Get(), Demo.Pages()->Items(1));
    Allow = false;
    EXPECT_FALSE(Ed->AddNode(*pages()) || Ed->DeleteNode(*page(0)) || Ed->DeleteNode(*pages()));
    Allow = true;
    EXPECT_TRUE(Ed->DeleteNode(*pages()));
    EXPECT_EQ(names(), "> Pages");
    EXPECT_EQ(Demo.Pages()->Count(), 0);
    EXPECT_EQ(Changes, "(+)+i (+)+i (-i)- (-i)- (+)(-i)(0)(0)0 ");
    EXPECT_FALSE(Ed->DeleteNode(*pages()) || Ed->DeleteNode(*Node()) || Ed->AddNode(*Node()));
}

// Items that stand for things of the program, and those that are not shown in their collection.
TEST_F(EditorTree, SomeCollectionsStay) {
    TFixedPages fixed;
    fixed.Add("a");
    fixed.Add("b");
    Open(fixed);
    EXPECT_FALSE(Ed->CanAddNode(*Node()) || Ed->CanAddNode(*Node({"a"})) ||
                 Ed->CanDeleteNode(*Node({"a"})) || Ed->CanDeleteNode(*Node()));
    EXPECT_EQ(Ed->Form()->Caption(), "Collection TFixedPages");
    Open(*fixed.Items(1));
    EXPECT_EQ(Ed->Form()->Caption(), "Object b: TPage");
    EXPECT_FALSE(Ed->CanAddNode(*Node()) || Ed->CanDeleteNode(*Node()) ||
                 Ed->CanMoveNode(*Node(), nmUp));
}

// A handler's error leaves tree and collection the same.
TEST_F(EditorTree, ErrorsLeaveNoHalfChange) {
    AddPages({"a", "b", "c"});
    Open(Demo);
    Tree().SetSelected(Node({"Pages", "b"}));
    const auto raise = [](auto&&...) { throw Exception("handler"); };
    Ed->OnDropControl = TControlNotifyEvent::Calling(raise);
    EXPECT_EQ(ErrorOf([&] { Ed->DeleteNode(*Node({"Pages", "b"})); }), "Exception: handler");
    EXPECT_EQ(TreeText(), "TDemo\n Part\n Pages\n  a\n  c\n Slots\n");
    EXPECT_EQ(Demo.Pages()->Count(), 2);
    Ed->OnDropControl = {};
    Ed->AfterCreateControl = TControlNotifyEvent::Calling(raise); // for the rows of its neighbour
    EXPECT_EQ(ErrorOf([&] { Ed->DeleteNode(*Node({"Pages", "c"})); }), "Exception: handler");
    EXPECT_EQ(ErrorOf([&] { Ed->AddNode(*Node({"Pages"})); }), "Exception: handler");
    EXPECT_EQ(TreeText(), "TDemo\n Part\n Pages\n  a\n  Pages[1]\n Slots\n");
    EXPECT_EQ(Demo.Pages()->Count(), 2);
    EXPECT_TRUE(Ed->Modified());
    EXPECT_EQ(Ed->State(), TSpcEdState());
    EXPECT_EQ(Ed->Form()->ControlArea().ControlCount(), 0);
    Ed->AfterCreateControl = {};
    Ed->RebuildControls();
    EXPECT_EQ(Ed->Controls().Count(), 2);
}

// Changes that wait go with what their node shows, also with what an item wraps; those of the
// collection itself stay.
TEST_F(EditorTree, DeletedChangesAreForgotten) {
    TPart wrapped;
    static_cast<TSlot*>(Demo.Slots()->Add())->SetNestedObject(&wrapped);
    Open(Demo);
    Tree().SetSelected(Node({"Slots", "Slots[0]"}));
    Control<TEdit>("Level").SetText("5");
    Tree().SetSelected(Node({"Slots"}));
    Control<TEdit>("Limit").SetText("4");
    Tree().SetSelected(Node());
    std::string dropped;
    const auto drop = [&](TObject*, TControlInfo& info) {
        dropped += std::string(info.EPropInfo->Name) + " ";
    };
    Ed->OnDropControl = TControlNotifyEvent::Calling(drop);
    EXPECT_TRUE(Ed->DeleteNode(*Node({"Slots"})));
    EXPECT_EQ(dropped, "Level ");
    Ed->OnDropControl = {};
    EXPECT_TRUE(Ed->DoSaveChanges());
    EXPECT_EQ(wrapped.Level * 10 + Demo.Slots()->Limit, 14);
}

TEST_F(EditorTree, FindsNodesByKind) {
    AddPages({"a", "b"});
    Open(Demo);
    EXPECT_EQ(TSpcEditor::FindInstanceID(Node(), ciSpcItem), Node({"Pages", "a"}));
    EXPECT_EQ(TSpcEditor::NextDescendantID(*Node({"Pages"}), Node({"Pages", "a"}), ciSpcItem),
              Node({"Pages", "b"}));
    EXPECT_EQ(TSpcEditor::NextDescendantID(*Node({"Part"}), nullptr, ciSpcItem), nullptr);
    EXPECT_EQ(Ed->FindNode(Demo.Pages()), Node({"Pages"}));
    EXPECT_EQ(Ed->FindNode(nullptr), nullptr);
}

// The editor opens with the node of an object, also where it shows the copy of it.
TEST_F(EditorTree, OpensAtAnObject) {
    AddPages({"a", "b"});
    Demo.Part()->SetLink(&Demo);
    Ed->FormOptions.Exclude(foModalShowing);
    TPlain strange;
    for (const bool onFile : {false, true}) {
        SCOPED_TRACE(onFile);
        Ed->DoRelease();
        Ed->SetSpcRoot(&Demo);
        Ed->SetOnFile(onFile);
        Ed->ShowTreeEx(Demo.Pages()->Items(1));
        App->ProcessMessages();
        EXPECT_EQ(Tree().Selected(), Node({"Pages", "b"}));
        EXPECT_EQ(Tree().Selected()->Data() == Demo.Pages()->Items(1), !onFile);
        EXPECT_FALSE(Ed->ShowTreeEx(Demo.Part())); // it is open already
        EXPECT_EQ(Tree().Selected(), Node({"Part"}));
        EXPECT_FALSE(Ed->ShowTreeEx(&strange));
        EXPECT_EQ(Tree().Selected(), Node({"Part"}));
    }
    // A handler may choose the start node, or none.
    for (const bool choose : {true, false}) {
        const auto start = [&](TObject*, TTreeView& tree, bool& byDefault) {
            byDefault = false;
            if (choose) tree.SetSelected(Node({"Slots"}));
        };
        Ed->DoRelease();
        Ed->OnSelectStartNode = TSelectStartNodeEvent::Calling(start);
        Open(Demo);
        EXPECT_EQ(Tree().Selected(), choose ? Node({"Slots"}) : nullptr);
    }
}

TEST_F(EditorTree, PlacesImages) {
    std::string asked;
    const auto place = [&](TObject*, TTreeNode& node, TBaseClassIdent ident, TObject*,
                           TPlaceImage& images) {
        asked += node.Text() + " ";
        images = {{ident, 1, 2, 3}};
    };
    Ed->OnPlaceNodeImage = TPlaceNodeImageEvent::Calling(place);
    EXPECT_EQ(Ed->AddNewImage(), 0);
    EXPECT_EQ(Ed->AddNewImage(), 1);
    Open(*Demo.Pages());
    EXPECT_EQ(Ed->Form()->Images().Count, 2); // of the same window
    Ed->AddNode(*Node());
    EXPECT_EQ(asked, "TPages TPages[0] ");
    const TTreeNode& node = *Node({"TPages[0]"});
    EXPECT_EQ(node.ImageIndex(), ciSpcItem);
    EXPECT_EQ(node.SelectedIndex() * 100 + node.StateIndex() * 10 + node.OverlayIndex(), 123);
}

} // namespace
} // namespace tarn
