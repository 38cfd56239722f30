#include "ErrorOf.h"
#include "rtl/TMemoryStream.h"
#include "rtl/UpdateOnce.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"
#include "vcl/Forms.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TEllipsisLabel.h"
#include "vcl/THeaderControl.h"
#include "vcl/TScrollBox.h"
#include "vcl/TSplitter.h"
#include "vcl/TTextMeasure.h"
#include "vcl/TTreeView.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace tarn {
namespace {

/// A form that is shown, on a screen; it counts what its controls tell a front end and writes down
/// their events.
class SettingsControls : public testing::Test, protected IControlPeer {
protected:
    SettingsControls() { Form->Show(); }

    template <class T> T& Add(TControl* parent = nullptr) {
        auto* const control = new T(Form.get());
        control->SetParent(parent ? parent : Form.get());
        return *control;
    }
    TNotifyEvent Logged() { return TNotifyEvent::Of<&SettingsControls::Event>(this); }
    void Event(TObject* sender) { Log += std::string(sender->ClassName()) + ";"; }

    void Invalidate(TControl&) override {}
    void Redraw(TControl&, std::uint32_t) override {}
    void StateChanged(TControl&) override { ++States; }
    void SetRedraw(TControl&, bool) override {}

    TScreen Scr;
    std::unique_ptr<TForm> Form = std::make_unique<TForm>();
    std::string Log;
    int States = 0;
};

std::string Text(const TRect& r) {
    return Format("%d,%d %dx%d", {r.Left, r.Top, r.Width, r.Height});
}

// --- Trees ------------------------------------------------------------------------------------

/// The nodes below in brackets, which are round while they are not seen; the selected one behind
/// ">".
std::string Shown(const TTreeView& tree, const TTreeNode* first) {
    std::string text;
    for (const TTreeNode* node = first; node; node = node->GetNextSibling()) {
        text += (node == tree.Selected() ? ">" : "") + node->Text();
        if (node->Count() == 0) continue;
        const std::string below = Shown(tree, node->GetFirstChild());
        text += node->Expanded() ? "[" + below + "]" : "(" + below + ")";
    }
    return text;
}

/// A tree that writes its events down: "NODE?" before and "NODE" after, "-" for no node. It is told
/// what to do as a list of "VERB NODE" with ", " between; "no" stands for what was not done.
class Trees : public SettingsControls {
protected:
    Trees() {
        Tree.OnChanging = Tree.OnEditing = TTreeAllowEvent::Of<&Trees::Ask>(this);
        Tree.OnChange = TTreeNodeEvent::Of<&Trees::Tell>(this);
        Tree.OnDblClick = Logged();
    }
    TTreeNode& Node(std::string_view text) {
        TTreeNode* node = Items.GetFirstNode();
        while (node->Text() != text) node = node->GetNext();
        return *node;
    }
    static std::string Name(const TTreeNode* node) { return node ? node->Text() : "-"; }
    void Ask(TObject* sender, TTreeNode* node, bool& allow) {
        EXPECT_TRUE(sender == &Tree && allow);
        Log += Name(node) + "? ";
        allow = Name(node) != Refused;
        if (Name(node) == Freed) Items.Delete(*node);
    }
    void Tell(TObject* sender, TTreeNode* node) {
        EXPECT_TRUE(sender == &Tree && node == Tree.Selected());
        Log += Name(node) + " ";
    }

    void Add(TTreeNode* parent, std::string_view names) {
        for (const char name : names) Items.AddChild(parent, std::string(1, name), &Tree);
    }
    bool Do(std::string_view verb, std::string_view what) {
        if (verb == "add") return Add(nullptr, what), true;
        if (verb == "refuse") return Refused = what, true;
        if (verb == "free") return Freed = what, true;
        if (verb == "step") return Tree.Step(StrToInt(what));
        if (verb == "clear") return Items.Clear(), true;
        if (what == "-") return Tree.SetSelected(nullptr);
        TTreeNode& node = Node(what);
        if (verb == "fill") return Add(&node, what == "b" ? "defg" : "hi"), true;
        if (verb == "select") return Tree.SetSelected(&node);
        if (verb == "click") return Tree.ClickNode(node);
        if (verb == "dblclick") return Tree.DblClickNode(node);
        if (verb == "edit") return Tree.EditCaption(node, AnsiUpperCase(what));
        if (verb == "delete") return Items.Delete(node), true;
        if (verb == "collapse") return node.SetExpanded(false), true;
        throw EConvertError(std::string(verb));
    }
    void Do(std::string_view commands) {
        while (!commands.empty()) {
            const std::string_view command = commands.substr(0, commands.find(", "));
            commands.remove_prefix(std::min(command.size() + 2, commands.size()));
            const std::size_t blank = command.find(' ');
            if (!Do(command.substr(0, blank), command.substr(blank + 1))) Log += "no ";
        }
    }

    TTreeView& Tree = SettingsControls::Add<TTreeView>();
    TTreeNodes& Items = Tree.Items();
    std::string Refused, Freed;
};

TEST_F(Trees, SelectionFollowsWhatIsDone) {
    const struct {
        std::string_view Commands, Shown, Log;
    } steps[] = {
        {"step 1, add abc, fill b, fill e", "ab(de(hi)fg)c", "no "},
        {"step 5", ">ab(de(hi)fg)c", "a? a "},
        {"step 1", "a>b(de(hi)fg)c", "b? b "},
        {"step 1", "ab(de(hi)fg)>c", "c? c "}, // past what is not seen
        {"step 3, click d", "ab(de(hi)fg)>c", "no no "},
        {"select h, select h", "ab[de[>hi]fg]c", "h? h "},
        {"click f, step -1", "ab[de[h>i]fg]c", "f? f i? i "}, // into the last
        {"step -4", "a>b[de[hi]fg]c", "b? b "},
        {"refuse i, select i, click i", "a>b[de[hi]fg]c", "i? no i? no "},
        {"refuse, free i, select i", "a>b[de[h]fg]c", "i? no "},
        {"select h, collapse b", "a>b(de[h]fg)c", "h? h b? b "},
        {"refuse b, select h, collapse b", "ab(de[>h]fg)c", "h? h b? "},
        {"step -1", ">ab(de[h]fg)c", "a? a "}, // from where it would be seen
        {"select d, delete d", "ab[>e[h]fg]c", "d? d e "},
        {"select h, delete e", "ab[>fg]c", "h? h f "},
        {"select g, delete g", "ab[>f]c", "g? g f "},
        {"delete f", "a>bc", "b "},
        {"delete a", ">bc", ""},
        {"delete c, delete b", "", "- "},
        {"add xyz, select y, clear", "", "y? y "},
        {"add e, select e, select -", "e", "e? e -? - "},
        {"fill e, dblclick e", ">e[hi]", "e? e TTreeView;"},
        {"edit h, free, refuse i, edit i", ">e[Hi]", "h? i? no "},
    };
    for (const auto& step : steps) {
        Do(step.Commands);
        EXPECT_EQ(Shown(Tree, Items.GetFirstNode()), step.Shown) << step.Commands;
        EXPECT_EQ(std::exchange(Log, {}), step.Log) << step.Commands;
    }
    EXPECT_TRUE(Tree.Focused()); // by the clicks
    EXPECT_EQ(Node("i").Data(), &Tree);
    Refused.clear();
    Tree.SetReadOnly(true);
    Do("edit i");
    Tree.SetReadOnly(false);
    Form->SetEnabled(false);
    Do("edit i, click i, dblclick e, step 1");
    EXPECT_EQ(Log, "no no no no no ");

    TTreeView other;
    TTreeNode& stranger = *other.Items().AddChild(nullptr, "s");
    const auto refused = "EInvalidOperation: s is a node of another tree";
    EXPECT_EQ(ErrorOf([&] { Tree.SetSelected(&stranger); }), refused);
    EXPECT_EQ(ErrorOf([&] { Items.AddChild(&stranger, "t"), Items.Delete(stranger); }), refused);
    EXPECT_EQ(ErrorOf([&] { stranger.MoveBefore(Node("e")); }),
              "EInvalidOperation: e is no sibling of s");
}

TEST_F(Trees, NodesHavePlaces) {
    Tree.Peer = this;
    // Many siblings below one node, each with one below itself.
    TTreeNode& top = *Items.AddChild(nullptr, "top");
    UpdateOnce(Items, [&] {
        for (int i = 0; i < 10000; ++i) Items.AddChild(Items.AddChild(&top, IntToStr(i)), "below");
        UpdateOnce(Items, [&] { top.Expand(true); });
    });
    EXPECT_EQ(States, 2);
    EXPECT_EQ(Items.Count(), 20001);
    int place = 0;
    for (TTreeNode* node = Items.GetFirstNode(); node; node = node->GetNext(), ++place) {
        const bool isBelow = place > 0 && place % 2 == 0;
        ASSERT_EQ(node->Level(), place == 0 ? 0 : isBelow ? 2 : 1);
        if (isBelow || place == 0) continue;
        ASSERT_EQ(node->Index(), place / 2);
        ASSERT_EQ(node, top.Item(place / 2));
        ASSERT_EQ(node->GetPrevSibling(), place == 1 ? nullptr : top.Item(place / 2 - 1));
        ASSERT_TRUE(node->Expanded() && node->GetFirstChild()->HasAsParent(top));
    }
    EXPECT_EQ(place, 20001);
    EXPECT_EQ(Items.Item(20000)->Parent(), top.GetLastChild());
    EXPECT_THROW(Items.Item(20001), EListError);
    EXPECT_THROW(top.Item(-1), EListError);
    Tree.SetSelected(top.Item(7)->GetFirstChild());
    top.Collapse(true);
    EXPECT_TRUE(Tree.Selected() == &top && !top.Expanded() && !top.Item(9999)->Expanded());

    Items.Clear();
    Do("add abcd");
    Items.AddChild(&Node("b"), "x");
    const struct {
        std::string_view Moved, To;
        bool Behind;
        std::string_view Shown;
    } moves[] = {
        {"b", "a", false, "b(x)acd"}, {"b", "d", true, "acdb(x)"},  {"c", "a", true, "acdb(x)"},
        {"d", "c", false, "adcb(x)"}, {"a", "b", false, "dcab(x)"}, {"b", "b", true, "dcab(x)"},
    };
    for (const auto& move : moves) {
        TTreeNode &node = Node(move.Moved), &to = Node(move.To);
        move.Behind ? node.MoveBehind(to) : node.MoveBefore(to);
        EXPECT_EQ(Shown(Tree, Items.GetFirstNode()), move.Shown);
        for (TTreeNode* each = Items.GetFirstNode(); each; each = each->GetNextSibling())
            EXPECT_EQ(each->GetNextSibling() ? each->GetNextSibling()->Index() : 4,
                      each->Index() + 1);
    }
}

// --- Labels -----------------------------------------------------------------------------------

TEST_F(SettingsControls, TextsAreMeasured) {
    const struct {
        int Height;
        std::string_view Text;
        TExtent Extent;
    } texts[] = {
        {0, "", {0, 13}},
        {0, "Width :", {42, 13}},
        {0, "a\r\nlong\rb\n\nc\n", {24, 65}},
        {0, "\xD0\x96\xCC\x81\xE6\xBC\xA2\xF0\xA0\x80\x80", {30, 13}}, // letter, mark, two wide
        {0, "\xE6\xBC", {12, 13}},                                     // no UTF-8
        {-11, "ab", {12, 13}},
        {-12, "ab", {14, 14}},
        {26, "ab", {24, 26}},
        {1, "ab", {2, 1}},
        {std::numeric_limits<int>::min(), "ab\n", {2147483647, 2147483647}},
    };
    TFont font;
    for (const auto& row : texts) {
        font.SetHeight(row.Height);
        font.SetStyle({fsBold});
        EXPECT_EQ(MeasureText(font, row.Text), row.Extent) << row.Text;
    }
    const struct {
        int Size, Height;
    } sizes[] = {
        {0, 0}, {8, -11}, {9, -12}, {10, -13}, {1, -1}, {-9, 12}, {1500000000, -2000000000}};
    for (const auto& row : sizes) {
        font.SetSize(row.Size);
        EXPECT_EQ(font.Height(), row.Height);
        EXPECT_EQ(font.Size(), row.Size);
    }
    font.SetSize(std::numeric_limits<int>::min());
    EXPECT_EQ(font.Height(), std::numeric_limits<int>::max());
}

TEST_F(SettingsControls, LabelsFollowTheirText) {
    auto& label = Add<TEllipsisLabel>();
    label.SetBoundsRect({5, 7, 40, 9});
    label.OnClick = Logged();
    const struct {
        std::string_view What;
        std::function<void()> Do;
        std::string_view Bounds, Shown;
    } steps[] = {
        {"caption", [&] { label.SetCaption("Caption :"); }, "5,7 54x13", "Caption :"},
        {"narrower", [&] { label.SetWidth(53); }, "5,7 53x13", "Capti..."},
        {"no room", [&] { label.SetWidth(17); }, "5,7 17x13", "..."},
        {"font", [&] { label.Font().SetSize(9); }, "5,7 63x14", "Caption :"},
        {"right edge", [&] { label.SetAlignment(taRightJustify), label.SetText("ab"); },
         "54,7 14x14", "ab"},
        {"none", [&] { label.SetAlignment(taLeftJustify), label.SetCaption(""); }, "54,7 0x14", ""},
        {"own size", [&] { label.SetAutoSize(false), label.SetCaption("abc\nabcdefgh\n"); },
         "54,7 0x14", "...\r\n..."},
        {"one line alone", [&] { label.SetWidth(49); }, "54,7 49x14", "abc\r\nabcd..."},
        {"whole characters", [&] { label.SetCaption("\xD0\x96\xE6\xBC\xA2\xE6\xBC\xA2ghijk"); },
         "54,7 49x14", "\xD0\x96\xE6\xBC\xA2..."},
        {"with their marks", [&] { label.SetCaption("abcde\xCC\x81ghijk"), label.SetWidth(56); },
         "54,7 56x14", "abcde\xCC\x81..."},
        {"all of it", [&] { label.SetCaption("a\nb\n"); }, "54,7 56x14", "a\nb\n"},
        {"its size again", [&] { label.SetAutoSize(true); }, "54,7 7x28", "a\nb\n"},
    };
    for (const auto& step : steps) {
        step.Do();
        EXPECT_EQ(Text(label.BoundsRect()), step.Bounds) << step.What;
        EXPECT_EQ(label.ShownText(), step.Shown) << step.What;
    }
    EXPECT_TRUE(label.Click() && !label.Focused());
    label.SetVisible(false);
    EXPECT_FALSE(label.Click());
    EXPECT_EQ(Log, "TEllipsisLabel;");

    // A measure of a front end's own.
    struct TWideMeasure : ITextMeasure {
        TExtent TextExtent(const TFont&, std::string_view line) override {
            return {100 * static_cast<int>(line.size()), 50};
        }
    } wide;
    EXPECT_EQ(InstallTextMeasure(&wide), nullptr);
    label.SetCaption("abc");
    EXPECT_EQ(InstallTextMeasure(nullptr), &wide);
    EXPECT_EQ(Text(label.BoundsRect()), "54,7 300x50");
}

/// What is read before AutoSize leaves the bounds alone.
TEST_F(SettingsControls, LabelsKeepTheirBoundsInStreams) {
    for (const bool autoSize : {false, true}) {
        TLabel label;
        label.SetCaption("abc");
        label.Font().SetSize(18);
        label.SetAutoSize(autoSize);
        label.SetBoundsRect({1, 2, 77, 5});
        TMemoryStream stream;
        TWriter(stream).WriteRootComponent(label);
        TLabel copy;
        TReader(stream.Text()).ReadRootComponent(&copy);
        EXPECT_EQ(Text(copy.BoundsRect()), autoSize ? "1,2 39x28" : "1,2 77x5");
    }
}

// --- Lists and the rest -----------------------------------------------------------------------

TEST_F(SettingsControls, ChecksGoWithTheirLines) {
    auto& list = Add<TCheckListBox>();
    TStrings& items = list.Items();
    list.OnClick = list.OnClickCheck = Logged();
    const struct {
        std::string_view What;
        std::function<bool()> Do;
        std::string_view Shown;
    } steps[] = {
        {"filled", [&] { return items.SetCommaText("a,b,c"), true; }, "abc"},
        {"by the program", [&] { return list.SetChecked(1, true), Log.empty(); }, "a[b]c"},
        {"inserted", [&] { return items.Insert(1, "x"), true; }, "ax[b]c"},
        {"moved", [&] { return items.Move(2, 0), true; }, "[b]axc"},
        {"exchanged", [&] { return items.Exchange(0, 3), true; }, "cax[b]"},
        {"by a click", [&] { return list.ClickCheck(0) && list.ItemIndex() == 0; }, "[c]ax[b]"},
        {"off again", [&] { return list.ClickCheck(3); }, "[c]axb"},
        {"renamed, no line", [&] { return items.Put(0, "C"), !list.ClickCheck(4); }, "[C]axb"},
        {"disabled", [&] { return list.SetEnabled(false), !list.ClickCheck(0); }, "[C]axb"},
        {"deleted", [&] { return items.Delete(0), true; }, "axb"},
        {"cleared", [&] { return list.SetChecked(0, true), items.SetCommaText("a"), true; }, "a"},
    };
    for (const auto& step : steps) {
        EXPECT_TRUE(step.Do()) << step.What;
        std::string shown;
        for (int i = 0; i < list.Count(); ++i)
            shown += list.Checked(i) ? "[" + items[i] + "]" : items[i];
        EXPECT_EQ(shown, step.Shown) << step.What;
    }
    EXPECT_EQ(Log, "TCheckListBox;TCheckListBox;TCheckListBox;TCheckListBox;");
    EXPECT_THROW(list.SetChecked(1, true), EStringListError);
    list.SetTopIndex(5);
    EXPECT_EQ(list.TopIndex(), 0);
}

TEST_F(SettingsControls, SectionsAreDragged) {
    auto& header = Add<THeaderControl>();
    auto resized = [&](TObject*, int index) { Log += Format("%d;", {index}); };
    header.OnSectionResize = TSectionEvent::Calling(resized);
    header.SetSectionCount(2);
    header.SetSectionText(1, "Value");
    header.SetSectionWidth(0, -1);
    header.SetSectionMinWidth(1, 60);
    const auto shown = [&] {
        std::string text;
        for (int i = 0; i < header.SectionCount(); ++i)
            text += Format("%s %d;", {header.SectionText(i), header.SectionWidth(i)});
        return text;
    };
    EXPECT_EQ(shown(), " 0;Value 60;");
    EXPECT_TRUE(header.DragSection(0, 20) && header.DragSection(1, 30));
    EXPECT_FALSE(header.DragSection(2, 20) || header.DragSection(-1, 20));
    Form->SetEnabled(false);
    EXPECT_FALSE(header.DragSection(0, 90));
    header.SetSectionCount(3);
    EXPECT_EQ(shown(), " 20;Value 60; 50;");
    EXPECT_EQ(Log, "0;1;");
    EXPECT_THROW(header.SetSectionText(3, ""), EListError);
}

TEST_F(SettingsControls, ScrollBoxesStayInTheirContent) {
    auto& box = Add<TScrollBox>();
    box.SetHeight(100);
    EXPECT_EQ(box.ContentHeight(), 0);
    auto& first = Add<TControl>(&box);
    auto& panel = Add<TControl>(&box);
    auto& inner = Add<TControl>(&panel);
    first.SetBoundsRect({0, 0, 10, 30});
    panel.SetBoundsRect({0, 150, 10, 250});
    inner.SetBoundsRect({0, 20, 10, 40});
    const struct {
        std::string_view What;
        std::function<void()> Do;
        int Top;
    } steps[] = {
        {"too far", [&] { box.SetScrollTop(999); }, 300},
        {"up to it", [&] { box.ScrollInView(inner); }, 170},
        {"seen already", [&] { box.SetScrollTop(150), box.ScrollInView(inner); }, 150},
        {"back", [&] { box.ScrollInView(first); }, 0},
        {"down to it", [&] { box.ScrollInView(inner); }, 110},
        {"higher than the box", [&] { box.ScrollInView(panel); }, 150},
        {"not in the box", [&] { box.ScrollInView(*Form), box.ScrollInView(box); }, 150},
        {"less content", [&] { panel.SetHeight(50); }, 100},
        {"hidden", [&] { panel.SetVisible(false); }, 0},
        {"too far up", [&] { panel.SetVisible(true), box.SetScrollTop(-5); }, 0},
    };
    for (const auto& step : steps) {
        step.Do();
        EXPECT_EQ(box.ScrollTop(), step.Top) << step.What;
    }
}

TEST_F(SettingsControls, SplittersShareTheWidth) {
    Form->SetBoundsRect({0, 0, 300, 50});
    auto& left = Add<TControl>();
    left.SetWidth(100);
    left.SetAlign(alLeft);
    auto& bar = Add<TSplitter>();
    left.SetVisible(false);
    EXPECT_FALSE(bar.DragTo(50)); // nothing is before it
    left.SetVisible(true);
    auto& right = Add<TControl>();
    right.SetWidth(40);
    right.SetAlign(alRight);
    auto& rest = Add<TControl>();
    rest.SetAlign(alClient);
    bar.OnMoved = Logged();
    const struct {
        int X;
        std::string_view Left, Rest;
    } steps[] = {
        {120, "0,0 120x50", "123,0 137x50"},
        {-9, "0,0 30x50", "33,0 227x50"},
        {999, "0,0 227x50", "230,0 30x50"},
    };
    for (const auto& step : steps) {
        EXPECT_TRUE(bar.DragTo(step.X));
        EXPECT_EQ(Text(left.BoundsRect()), step.Left);
        EXPECT_EQ(Text(rest.BoundsRect()), step.Rest);
    }
    bar.SetEnabled(false);
    EXPECT_FALSE(bar.DragTo(50));
    EXPECT_EQ(Log, "TSplitter;TSplitter;TSplitter;");
}

} // namespace
} // namespace tarn
