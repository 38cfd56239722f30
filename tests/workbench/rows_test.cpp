// The settings editor by keys and clicks: its tree, each kind of row, what becomes of changes.

#include "Settings.h"
#include "TWorkbenchHarness.h"
#include "editor/TestClasses.h"
#include "qsPropTypes.h"
#include "qsSpcEdPro.h"
#include "rtl/DateUtils.h"
#include "rtl/FloatText.h"
#include "vcl/TMemo.h"
#include "vcl/TStatusBar.h"

namespace tarn {
namespace {

/// The settings editor in front.
class WorkbenchRows : public TWorkbenchTest {
protected:
    TSpcForm& Window() { return dynamic_cast<TSpcForm&>(Form()); }
    /// Opens the settings editor of the pack, where `use` is what the user does.
    void Edit(const std::function<void()>& use) {
        Then([use](QWidget&) { use(); });
        ClickMenu({"TarnExperts", "Settings", "Edit..."});
        Wait([&] { return !QApplication::activeModalWidget(); });
        Settle();
    }

    // --- The tree -------------------------------------------------------------------------

    QTreeWidget& Tree() { return static_cast<QTreeWidget&>(WidgetOf(Window().Tree())); }
    QTreeWidgetItem* Below(QTreeWidgetItem* item, const QString& caption) {
        for (int i = 0; i < item->childCount(); ++i)
            if (item->child(i)->text(0) == caption) return item->child(i);
        throw Exception("no node " + ToText(caption));
    }
    /// Clicks a node; what is above it is expanded by the arrow key.
    void ClickNode(const QString& path) {
        QTreeWidget& tree = Tree();
        QTreeWidgetItem* item = tree.topLevelItem(0);
        for (const QString& caption : path.split('|')) {
            item = Below(item, caption);
            Click(*tree.viewport(), tree.visualItemRect(item).center());
            if (item->childCount() > 0 && !item->isExpanded()) Press("Right");
        }
    }
    std::string Selected() {
        Settle();
        TTreeNode* const node = Window().Tree().Selected();
        EXPECT_TRUE(Tree().currentItem());
        EXPECT_EQ(ToText(Tree().currentItem()->text(0)), node->Text());
        return node->Text();
    }

    // --- Rows -----------------------------------------------------------------------------

    TControl& Row(std::string_view prop) {
        const TControlList& rows = Window().Editor().Controls();
        for (int i = 0; i < rows.Count(); ++i)
            if (rows.Get(i).EPropInfo->Name == prop) return *rows.Get(i).EControl;
        throw Exception("no row " + std::string(prop));
    }
    QWidget& RowWidget(std::string_view prop) { return WidgetOf(Row(prop)); }
    /// The row's widget, scrolled to.
    QWidget& Shown(std::string_view prop) {
        QWidget& widget = RowWidget(prop);
        static_cast<QScrollArea&>(WidgetOf(Window().Rows())).ensureWidgetVisible(&widget);
        Settle();
        return widget;
    }
    /// Gives a row the focus by a click; a list that drops down, which would open, and the parts of
    /// a moment, of which the first is then selected, as Tab does.
    QWidget& Enter(std::string_view prop) {
        QWidget& widget = Shown(prop);
        QWidget& field = widget.focusProxy() ? *widget.focusProxy() : widget;
        const auto* const box = qobject_cast<QComboBox*>(&field);
        if ((box && !box->isEditable()) || qobject_cast<QDateTimeEdit*>(&field))
            field.setFocus(Qt::TabFocusReason);
        else
            Click(field, {5, field.height() / 2});
        EXPECT_TRUE(field.hasFocus()) << prop;
        EXPECT_EQ(Window().ActiveControl(), &Row(prop)) << prop;
        return field;
    }
    void Fill(std::string_view prop, const QString& text) {
        Enter(prop);
        Press({"Home", "Shift+End"});
        Type(text);
    }
    /// Beeps since the last time.
    int Beeps() {
        const int before = std::exchange(FBeeps, Session.OS().Beeps());
        return FBeeps - before;
    }

private:
    int FBeeps = 0;
};

// --- The pack's settings ------------------------------------------------------------------------

TEST_F(WorkbenchRows, EachRowOfThePackIsSaved) {
    const auto fill = [this](std::string_view prop, const char* text) {
        return [this, prop, text] { Fill(prop, text); };
    };
    const auto click = [this](std::string_view prop) { return [this, prop] { Enter(prop); }; };
    const auto key = [this](std::string_view prop, const char* pressed) {
        return [this, prop, pressed] {
            Enter(prop);
            Press(pressed);
        };
    };
    const struct {
        const char* Node;
        std::function<void()> Change;
        const char* Path;
        const char* Value;
    } rows[] = {
        {"Experts menu|Sorting", fill("Caption", "Order &lines"), "MenuData.SortLinesItem.Caption",
         "Order &lines"},
        {"Experts menu|Sorting", fill("ImageIndex", "7z"), "MenuData.SortLinesItem.ImageIndex",
         "7"},
        {"Experts menu|Sorting", click("HaveLineBefore"), "MenuData.SortLinesItem.HaveLineBefore",
         "True"},
        {"Installed experts|CPU window data scan", click("Active"), "ActiveExperts.CPUView.Active",
         "False"},
        {"Special settings|Experts manager", fill("MaxLogSize", "64"), "ExpManagerData.MaxLogSize",
         "64"},
        {"Special settings|Manager of the open units", fill("HistoryList", "*.pas\n"),
         "UnitManagerData.HistoryList", "*.pas\n"},
        {"Special settings|Manager of the open units", key("SortUnitsShortCut", "Ctrl+F5"),
         "UnitManagerData.SortUnitsShortCut", "Ctrl+F5"},
        {"Special settings|Manager of the open units", key("CloseUnitShortCut", "Ctrl+Shift+S"),
         "UnitManagerData.CloseUnitShortCut", "Shift+Ctrl+S"},
        {"Special settings|Manager of the open units", key("ShowUnitShortCut", "Backspace"),
         "UnitManagerData.ShowUnitShortCut", ""},
    };
    Edit([&] {
        for (const auto& row : rows) {
            ClickNode(row.Node);
            row.Change();
        }
        EXPECT_EQ(Beeps(), 1);                                    // the letter in the number
        EXPECT_EQ(GetSetting("ExpManagerData.MaxLogSize"), "50"); // it is a copy
        ThenAnswer("Yes");
        ClickNode("Experts menu");
        Press("Esc");
    });
    Session.StopPack();
    ASSERT_TRUE(Session.StartPack()); // from the file
    Settle();
    for (const auto& row : rows) EXPECT_EQ(GetSetting(row.Path), row.Value) << row.Path;
}

// --- What becomes of changes --------------------------------------------------------------------

TEST_F(WorkbenchRows, EachAnswerToTheQuestionAboutChanges) {
    const struct {
        const char* Answer;
        bool Closes;
        const char* Value;
    } rows[] = {
        {"Cancel", false, "50"}, {"Esc", false, "50"}, {"x", false, "50"},
        {"No", true, "50"},      {"Yes", true, "51"},  {"Alt+N", true, "51"},
    };
    int value = 50;
    for (const auto& row : rows) {
        bool closed = true;
        QTimer later; // when the window has gone on without the key that asked
        later.setSingleShot(true);
        later.callOnTimeout([&] {
            closed = false;
            EXPECT_TRUE(Window().Editor().Modified()) << row.Answer;
            Press("Ctrl+U");
            Press("Esc"); // with no question
        });
        Edit([&] {
            ClickNode("Special settings|Experts manager");
            Fill("MaxLogSize", QString::number(++value == 55 ? 51 : value));
            ThenAnswer(row.Answer);
            Press("Esc");
            EXPECT_EQ(Window().ModalResult != mrNone, row.Closes) << row.Answer;
            later.start(20);
        });
        later.stop();
        EXPECT_EQ(closed, row.Closes) << row.Answer;
        EXPECT_EQ(GetSetting("ExpManagerData.MaxLogSize"), row.Value) << row.Answer;
    }
    EXPECT_EQ(std::count(Asked.begin(), Asked.end(), '\n'), 6); // one for each
}

TEST_F(WorkbenchRows, WhatIsNoValueKeepsTheNode) {
    Edit([&] {
        ClickNode("Special settings|Experts manager");
        Fill("MaxLogSize", "1-2");
        ThenAnswer("OK");
        QTreeWidgetItem* const other = Below(Tree().topLevelItem(0), "Installed experts");
        Click(*Tree().viewport(), Tree().visualItemRect(other).center());
        EXPECT_EQ(Selected(), "Experts manager");
        Fill("MaxLogSize", "12");
        Press("Shift+Ctrl+S"); // while the field has the focus
        EXPECT_EQ(Selected(), "Experts manager");
        Press("Esc");
    });
    EXPECT_EQ(GetSetting("ExpManagerData.MaxLogSize"), "12");
    EXPECT_EQ(Asked,
              "Maximal size of the logfile, kilobytes: '1-2' is not a valid integer value\n");
}

TEST_F(WorkbenchRows, TheFilterOfNumbers) {
    Edit([&] {
        ClickNode("Special settings|Experts manager");
        auto& field = static_cast<QLineEdit&>(Enter("MaxLogSize"));
        const auto paste = [&](const char* text) {
            Press({"Home", "Shift+End", "Del"});
            QApplication::clipboard()->setText(text);
        };
        const auto shown = [&] {
            EXPECT_EQ(ToText(field.text()), Row("MaxLogSize").Text());
            return Row("MaxLogSize").Text() + " " + std::to_string(Beeps());
        };
        Beeps();
        const struct {
            const char* Clipboard;
            std::function<void()> Do;
            const char* Shown;
        } rows[] = {
            {"", [&] { Type("1a-2 3"); }, "1-23 2"},
            {"12", [&] { Press("Ctrl+V"); }, "12 0"},
            {"12a", [&] { Press("Ctrl+V"); }, " 1"},
            {"-7", [&] { Press("Shift+Ins"); }, "-7 0"},
            {"7 ", [&] { Press("Shift+Ins"); }, " 1"},
            {"8", [&] { ThenPopup({"Paste"}), AskForMenu(field); }, "8 0"},
            {"x", [&] { ThenPopup({"Paste"}), AskForMenu(field); }, " 1"},
            {"",
             [&] {
                 Type("12"), Press({"Home", "Ctrl+Del"}), Type("3");
             },
             "3 0"},
            {"", [&] { Type("45"), Press("Ctrl+Backspace"), Type("6"); }, "6 0"},
            {"", [&] { Type("789"), Press("Ctrl+Z"); }, " 0"}, // as one step
            {"",
             [&] {
                 Type("12"), Press({"Left", "Backspace"}), Type("3");
             },
             "32 0"},
        };
        for (const auto& row : rows) {
            paste(row.Clipboard);
            row.Do();
            EXPECT_EQ(shown(), row.Shown) << &row - rows;
        }
        // A key is down before the one in front of it is up.
        Press({"Home", "Shift+End"});
        Type("12");
        QTest::keyPress(&field, Qt::Key_Left);
        QTest::keyPress(&field, Qt::Key_3, {});
        QTest::keyRelease(&field, Qt::Key_Left);
        Settle();
        EXPECT_EQ(shown(), "132 0");
        // A drop comes by no way at all.
        QMimeData data;
        data.setText("x");
        QDropEvent drop({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&field, &drop);
        EXPECT_EQ(shown(), "132 0");
        Press("Ctrl+U");
        Press("Esc");
    });
}

// --- The window ---------------------------------------------------------------------------------

TEST_F(WorkbenchRows, TheTreeByKeys) {
    Edit([&] {
        const struct {
            const char* Key;
            const char* Node;
        } rows[] = {
            {"Home", "Experts settings"},
            {"Down", "Installed experts"},
            {"Right", "Installed experts"}, // expands
            {"Right", "Project forms/units preview"},
            {"Left", "Installed experts"},
            {"Left", "Installed experts"}, // collapses
            {"Down", "Experts menu"},
            {"Return", "Experts menu"}, // expands
            {"Down", "Project forms/units preview"},
            {"Up", "Experts menu"},
            {"Return", "Experts menu"},
            {"Down", "Special settings"},
            {"Alt+Right", "Special settings"}, // with all below
            {"Down", "Experts manager"},
            {"Down", "Editor form settings"},
            {"End", "Expert form settings"},
        };
        Tree().setFocus();
        for (const auto& row : rows) {
            Press(row.Key);
            EXPECT_EQ(Selected(), row.Node) << &row - rows;
        }
        DoubleClick(*Tree().viewport(), Tree().visualItemRect(Tree().topLevelItem(0)).center());
        EXPECT_FALSE(Tree().topLevelItem(0)->isExpanded());
        EXPECT_FALSE(Window().Tree().Items().GetFirstNode()->Expanded());
        Press("Esc");
    });
}

TEST_F(WorkbenchRows, TabLeadsFromFieldToField) {
    Edit([&] {
        ClickNode("Special settings|Experts manager");
        std::string visited;
        Enter("MainMenuSearchItem");
        for (const char* const key : {"Tab", "Tab", "Tab", "Tab", "Tab", "Shift+Tab"}) {
            Press(key);
            const TControlList& rows = Window().Editor().Controls();
            for (int i = 0; i < rows.Count(); ++i)
                if (rows.Get(i).EControl == Window().ActiveControl())
                    visited += std::string(rows.Get(i).EPropInfo->Name) + "\n";
        }
        EXPECT_EQ(visited, "InsertMenuBeforeItem\nMenuHaveLineBefore\nMenuHaveLineAfter\n"
                           "ErrorLogAllowed\nMaxLogSize\nErrorLogAllowed\n");
        Press("Space");
        EXPECT_TRUE(Window().Editor().Modified());
        Press("Space");
        Press("Ctrl+U");
        Press("Esc");
    });
}

TEST_F(WorkbenchRows, WidthsAreDragged) {
    Edit([&] {
        ClickNode("Special settings|Experts manager");
        TSpcForm& form = Window();
        const int tree = form.Tree().Width(), labels = form.Header().SectionWidth(0);
        QWidget& splitter = WidgetOf(*ClassCast<TControl>(form.FindComponent("Splitter")));
        Drag(splitter, {1, 50}, {41, 50});
        EXPECT_NEAR(form.Tree().Width(), tree + 40, 1);
        EXPECT_EQ(Tree().width(), form.Tree().Width());
        QWidget& header = WidgetOf(form.Header());
        Drag(header, {labels, 5}, {labels + 30, 5});
        EXPECT_EQ(form.Header().SectionWidth(0), labels + 30);
        EXPECT_EQ(WidgetOf(form.ControlArea()).x(), labels + 30);
        Drag(header, {labels / 2, 5}, {labels, 5}); // no edge
        EXPECT_EQ(form.Header().SectionWidth(0), labels + 30);
        Press("Esc");
    });
}

TEST_F(WorkbenchRows, LinesInTheirOwnWindow) {
    Edit([&] {
        ClickNode("Special settings|Manager of the open units");
        QWidget& memo = Enter("HistoryList");
        Then([this](QWidget&) {
            EXPECT_EQ(ActiveName(), "LineEditor");
            Type("a");
            Press("Return");
            Type("b");
            EXPECT_EQ(Component<TStatusBar>("StatusBar").SimpleText(), "Lines count: 2");
            Press("Ctrl+Return");
        });
        DoubleClick(*static_cast<QPlainTextEdit&>(memo).viewport(), {9, 9});
        Wait([&] { return ActiveName() == "TSpcForm"; });
        EXPECT_EQ(Row("HistoryList").Text(), "a\r\nb\r\n");
        Then([this](QWidget&) {
            Type("lost");
            Click("Cancel");
        });
        DoubleClick(*static_cast<QPlainTextEdit&>(memo).viewport(), {9, 9});
        Wait([&] { return ActiveName() == "TSpcForm"; });
        EXPECT_EQ(Row("HistoryList").Text(), "a\r\nb\r\n");
        Press("Ctrl+U");
        Press("Esc");
    });
}

// --- Kinds that the pack has no setting of
// --------------------------------------------------------

class TKinds : public TPlain {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    TKinds() {
        for (TStrings* const lines :
             {static_cast<TStrings*>(&Checked), static_cast<TStrings*>(&Chosen)})
            lines->SetTextStr("a\nb\nc");
        Chosen.SelectedIndex = 1;
    }

    TSpinInt Spin = 5;
    TColor Color = clBlack;
    long double Birthday = 36526;
    double Clock = 0.5;
    TShortCut Key = 0;
    TCheckStrings Checked;
    TSelectStrings Chosen;
    TMemoStrings Memo;
    TFont FontData;
    TPictureEx PictureData;
    TCheckStrings* Checks() const { return const_cast<TCheckStrings*>(&Checked); }
    TSelectStrings* Selection() const { return const_cast<TSelectStrings*>(&Chosen); }
    TMemoStrings* Lines() const { return const_cast<TMemoStrings*>(&Memo); }
    TFont* Font() const { return const_cast<TFont*>(&FontData); }
    TPictureEx* Picture() const { return const_cast<TPictureEx*>(&PictureData); }
};
constexpr TPropInfo KindProps[] = {
    Published<&TKinds::Spin>("Spin", {.Type = &SpinIntType}),
    Published<&TKinds::Color>("Color", {.Type = &ColorType}),
    Published<&TKinds::Birthday>("Date", {.Type = &DateType}),
    Published<&TKinds::Clock>("Time", {.Type = &TimeType}),
    Published<&TKinds::Key>("Key", {.Type = &ShortCutType}),
    Published<&TKinds::Checks>("Checks"),
    Published<&TKinds::Selection>("Selection"),
    Published<&TKinds::Lines>("Lines"),
    Published<&TKinds::Font>("Font"),
    Published<&TKinds::Picture>("Picture"),
};
constinit const TClassRecord TKinds::ClassRecord{"TKinds", &TPlain::ClassRecord,
                                                 CreateObject<TKinds>, KindProps};

std::string CheckText(const TCheckStrings& lines) {
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) text += (lines.Checked(i) ? "+" : "-") + lines[i];
    return text;
}

class WorkbenchKinds : public WorkbenchRows {
protected:
    void SetUp() override {
        Editor.FormOptions.Exclude(foModalShowing);
        Editor.FormOptions.Exclude(foAutoSaveParams);
        Session.Ide().RunCommand([&] { Editor.ShowTree(Kinds); });
        Settle();
        WidgetOf(*Editor.Form()).resize(700, 800);
        Settle();
    }
    void TearDown() override { Editor.DoRelease(); }
    /// Clicks the box of a line.
    void ClickBox(std::string_view prop, int line) {
        auto& list = static_cast<QListWidget&>(Shown(prop));
        Click(*list.viewport(), {6, list.visualItemRect(list.item(line)).center().y()});
    }
    /// Chooses in the menu of a row.
    void ChooseIn(std::string_view prop, const QString& item) {
        ThenPopup({item});
        QWidget& widget = Shown(prop);
        auto* const area = qobject_cast<QAbstractScrollArea*>(&widget);
        AskForMenu(area ? *area->viewport() : widget);
    }

    TKinds Kinds;
    TSpcEditorPro Editor;
};

TEST_F(WorkbenchKinds, EachKindOfRow) {
    const auto color = [this] { return ColorToString(Kinds.Color); };
    const auto checks = [this] { return CheckText(Kinds.Checked); };
    const auto font = [this] {
        return Format("%s %d", {Kinds.FontData.Name(), Kinds.FontData.Size()});
    };
    const auto picture = [this] {
        const TGraphic* const graphic = Kinds.PictureData.Graphic();
        return !graphic || Kinds.PictureData.Empty()
                   ? "-"
                   : Format("%dx%d", {graphic->Width(), graphic->Height()});
    };
    QImage(1, 1, QImage::Format_RGB32).save(FromText(Folder.File("one.bmp")));
    const QString bitmap = FromText(Folder.File("one.bmp"));
    const struct {
        std::string_view Name;
        std::function<void()> Change;
        std::function<std::string()> Value;
        std::string_view Expected;
    } rows[] = {
        {"number", [&] { Fill("Number", "-12"); }, [&] { return IntToStr(Kinds.Number); }, "-12"},
        {"no number", [&] { Fill("Number", ""), Press("Del"); },
         [&] { return IntToStr(Kinds.Number); }, "0"},
        {"float", [&] { Fill("Float", "1.5E2x"); }, [&] { return FloatToStr(Kinds.Float); }, "150"},
        {"character", [&] { Fill("Char", "yz"); }, [&] { return std::string(1, Kinds.Char); }, "y"},
        {"text", [&] { Fill("Text", "new"); }, [&] { return Kinds.Text; }, "new"},
        {"enumeration", [&] { Enter("Day"), Press("End"); }, [&] { return IntToStr(Kinds.Day); },
         "2"},
        {"flag", [&] { Enter("Flag"); }, [&] { return std::string(Kinds.Flag ? "yes" : "no"); },
         "no"},
        {"flag by key", [&] { Press("Space"); },
         [&] { return std::string(Kinds.Flag ? "yes" : "no"); }, "yes"},
        {"set", [&] { ClickBox("Days", 1), ClickBox("Days", 0); },
         [&] { return IntToStr(static_cast<int>(Kinds.Days.Mask())); }, "6"},
        {"set by key",
         [&] {
             Press({"End", "Space"});
         },
         [&] { return IntToStr(static_cast<int>(Kinds.Days.Mask())); }, "2"},
        {"spin",
         [&] {
             Fill("Spin", "7"), Press({"Up", "Up", "Down"});
         },
         [&] { return IntToStr(Kinds.Spin); }, "8"},
        {"spin by mouse", [&] { Click(*RowWidget("Spin").findChildren<QToolButton*>()[0]); },
         [&] { return IntToStr(Kinds.Spin); }, "7"},
        {"colour", [&] { Fill("Color", "clRed"); }, color, "clRed"},
        {"colour in digits", [&] { Fill("Color", "$00FF00"), Press("Return"); }, color, "clLime"},
        {"no colour", [&] { Fill("Color", "nothing"), Press("Tab"); }, color, "clLime"},
        {"colour of the list", [&] { Enter("Color"), Press("Down"); }, color, "clYellow"},
        {"date",
         [&] {
             Enter("Date"), Press({"End", "Up"});
         },
         [&] { return FloatToStr(Kinds.Birthday); }, "36892"}, // a year later
        {"time", [&] { Enter("Time"), Type("15"); }, [&] { return FloatToStr(Kinds.Clock * 24); },
         "15"},
        {"hot key", [&] { Enter("Key"), Press("Ctrl+Alt+K"); },
         [&] { return ShortCutToText(Kinds.Key); }, "Ctrl+Alt+K"},
        {"modifiers alone", [&] { Enter("Key"), QTest::keyClick(&KeyTarget(), Qt::Key_Control); },
         [&] { return ShortCutToText(Kinds.Key); }, "Ctrl+Alt+K"},
        {"checks", [&] { ClickBox("Checks", 2), ClickBox("Checks", 0), Press("Space"); }, checks,
         "-a-b+c"},
        {"a line more", [&] { ThenType("d", "Return"), ChooseIn("Checks", "Add line"); }, checks,
         "-a-b+c-d"},
        {"a line less", [&] { ClickBox("Checks", 1), ChooseIn("Checks", "Delete line"); }, checks,
         "-a+c-d"},
        {"choice", [&] { Enter("Selection"), Press("Down"); },
         [&] { return IntToStr(Kinds.Chosen.SelectedIndex); }, "2"},
        {"lines", [&] { Fill("Lines", "x"), Press("Return"), Type("y"); },
         [&] { return Kinds.Memo.GetCommaText(); }, "x,y"},
        {"font", [&] { Fill("Font", "Any"); }, font, "Any 0"},
        {"size of a font",
         [&] {
             Click(*RowWidget("Font").findChild<QSpinBox*>(), {4, 4});
             Press("Ctrl+A");
             Type("12");
         },
         font, "Any 12"},
        {"picture", [&] { ThenType(bitmap, "Return"), ChooseIn("Picture", "Load from file"); },
         picture, "1x1"},
        {"no picture",
         [&] {
             ThenType(bitmap, "Esc"), DoubleClick(Shown("Picture"), {9, 9});
         },
         picture, "1x1"},
        {"empty", [&] { ChooseIn("Picture", "Clear"); }, picture, "-"},
    };
    for (const auto& row : rows) {
        row.Change();
        EXPECT_TRUE(Editor.GetControlsData());
        EXPECT_EQ(row.Value(), row.Expected) << row.Name;
    }
}

} // namespace
} // namespace tarn
