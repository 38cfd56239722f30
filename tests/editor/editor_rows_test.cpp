// The settings editor's rows: where they stand, what they look like, what a user can type.

#include "ErrorOf.h"
#include "TEditorHarness.h"
#include "TestClasses.h"
#include "rtl/FormatSettings.h"
#include "vcl/Clipbrd.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TComboBox.h"
#include "vcl/TEdit.h"
#include "vcl/TEllipsisLabel.h"

#include <functional>

namespace tarn {
namespace {

class EditorRows : public TEditorTest<> {
protected:
    /// Leaves three rows: a field, one of a fixed width, and a list whose label stands at its top.
    void ShowThree() {
        Ed->InvisibleProps()->SetTextStr(
            "TPlain.Float\r\ntplain.text\r\nTPlain.Day\r\nTPlain.Flag");
    }
    std::string Section(std::string_view text) { return Format("[IntegerControl]\r\n%s", {text}); }

    TPlain Plain;
};

TEST_F(EditorRows, StandWhereTheTableSays) {
    Open(Plain);
    EXPECT_EQ(RowsText(), "Number : [3,4 48x13] TEdit [2,0 156x21]\n"
                          "Char : [3,25 36x13] TEdit [2,21 20x21]\n"
                          "Float : [3,46 42x13] TEdit [2,42 156x21]\n"
                          "Text : [3,67 36x13] TEdit [2,63 312x21]\n"
                          "Day : [3,88 30x13] TComboBox [2,84 249x21]\n"
                          "Flag : [3,107 36x13] TCheckBox [2,105 13x17]\n"
                          "Days : [3,123 36x13] TCheckListBox [2,122 312x90]\n");
    EXPECT_EQ(Ed->Form()->StatusBar().SimpleText(), "Properties: 7");
    EXPECT_EQ(Ed->Form()->Header().SectionText(0) + Ed->Form()->Header().SectionText(1),
              "ParameterValue");
    const auto& days = Control<TCheckListBox>("Days");
    EXPECT_EQ(days.Style(), lbOwnerDrawFixed);
    EXPECT_TRUE(days.IntegralHeight());
    EXPECT_EQ(Control<TComboBox>("Day").Style(), csDropDownList);
    EXPECT_EQ(Control<TEdit>("Char").MaxLength(), 1);
    // A click on a label gives the focus to its control; the font is the area's.
    EXPECT_TRUE(Row("Text").Label->Click());
    EXPECT_EQ(Ed->Form()->ActiveControl(), Row("Text").EControl);
    EXPECT_EQ(Row("Text").Label->Font().Color(), clNavy);
    // An open list keeps the keys that would close the window.
    Row("Day").EControl->SetFocus();
    Control<TComboBox>("Day").DropDown();
    EXPECT_FALSE(Ed->Form()->IsShortCut(VK_ESCAPE));
    EXPECT_EQ(Row("Day").GetETag(), ekEnum);
    EXPECT_TRUE(Row("Day").IsNativeControl(0));
}

// Three rows of the same node under other settings, made before the window opens or while it is
// open: the rows are the same.
TEST_F(EditorRows, FollowTheSettings) {
    struct TCase {
        std::function<void(TSpcEditor&)> Set;
        std::string Rows;
    };
    const auto area = [](TSpcEditor& editor, TAlignment alignment) {
        editor.ControlAreaInfo()->SetAlignment(alignment);
        editor.LabelAreaInfo()->SetAlignment(alignment);
    };
    const std::string number = "Number : [3,4 48x13] TEdit [2,0 156x21]\n";
    const std::string others = "Char : [3,25 36x13] TEdit [2,21 20x21]\n"
                               "Days : [3,43 36x13] TCheckListBox [2,42 312x90]\n";
    const TCase cases[] = {
        {[](TSpcEditor&) {}, number + others},
        // The margins are taken off the area before a control is aligned in the rest.
        {[&](TSpcEditor& e) { area(e, taRightJustify); },
         "Number : [50,4 48x13] TEdit [153,0 156x21]\nChar : [62,25 36x13] TEdit [289,21 20x21]\n"
         "Days : [62,43 36x13] TCheckListBox [-3,42 312x90]\n"},
        {[&](TSpcEditor& e) { area(e, taCenter); },
         "Number : [26,4 48x13] TEdit [78,0 156x21]\nChar : [32,25 36x13] TEdit [146,21 20x21]\n"
         "Days : [32,43 36x13] TCheckListBox [0,42 312x90]\n"},
        {[&](TSpcEditor& e) { e.RedefiedParams()->SetTextStr(Section("Width = 30%")); },
         "Number : [3,4 48x13] TEdit [2,0 93x21]\n" + others},
        {[&](TSpcEditor& e) { e.RedefiedParams()->SetTextStr(Section("WIDTH=0%")); },
         "Number : [3,4 48x13] TEdit [2,0 0x21]\n" + others},
        {[&](TSpcEditor& e) { e.RedefiedParams()->SetTextStr(Section("Width=400")); },
         "Number : [3,4 48x13] TEdit [2,0 400x21]\n" + others},
        {[&](TSpcEditor& e) {
             e.RedefiedParams()->SetTextStr(Section("CentredLabel=no\r\nEnabled=False"));
         },
         "Number : [3,1 48x13] TEdit [2,0 156x21] disabled\n" + others},
        {[&](TSpcEditor& e) { e.RedefiedParams()->SetTextStr(Section("Height=5")); },
         "Number : [3,0 48x13] TEdit [2,4 156x5]\nChar : [3,17 36x13] TEdit [2,13 20x21]\n"
         "Days : [3,35 36x13] TCheckListBox [2,34 312x90]\n"},
        {[](TSpcEditor& e) { e.DisabledProps()->Add("tplain.NUMBER"); },
         "Number : [3,4 48x13] TEdit [2,0 156x21] disabled\n" + others},
        {[](TSpcEditor& e) {
             e.TranslatingTable()->SetTextStr("[TPlain]\r\nNumber=A##longer one");
         },
         "A\r\nlonger one : [3,0 72x26] TEdit [2,2 156x21]\n"
         "Char : [3,30 36x13] TEdit [2,26 20x21]\n"
         "Days : [3,48 36x13] TCheckListBox [2,47 312x90]\n"},
        // 126 pixels: the label area grows to that.
        {[](TSpcEditor& e) {
             e.TranslatingTable()->SetTextStr("[TPlain]\r\nNumber=Nineteen characters");
         },
         "Nineteen characters : [3,4 126x13] TEdit [2,0 140x21]\n"
         "Char : [3,25 36x13] TEdit [2,21 20x21]\n"
         "Days : [3,43 36x13] TCheckListBox [2,42 281x90]\n"},
        {[](TSpcEditor& e) {
             e.TranslatingTable()->SetTextStr("[TPlain]\r\nNumber=Nineteen characters");
             e.LabelAreaInfo()->SetAutoWidth(false);
         },
         "Nineteen characters : [3,4 126x13] TEdit [2,0 156x21]\n" + others},
        {[](TSpcEditor& e) {
             e.TranslatingTable()->SetTextStr("[TPlain]\r\nNumber=A##b");
             e.SetSimpleMode(true);
         },
         number + others},
        {[](TSpcEditor& e) { e.LabelAreaInfo()->Font()->SetSize(18); },
         "Number : [3,0 104x28] TEdit [2,3 151x21]\nChar : [3,28 78x28] TEdit [2,31 20x21]\n"
         "Days : [3,57 78x28] TCheckListBox [2,56 303x90]\n"},
        {[](TSpcEditor& e) { e.LabelAreaInfo()->SetDefAreaWidth(200); },
         "Number : [3,4 48x13] TEdit [2,0 106x21]\nChar : [3,25 36x13] TEdit [2,21 20x21]\n"
         "Days : [3,43 36x13] TCheckListBox [2,42 212x90]\n"},
    };
    for (const TCase& c : cases)
        for (const bool whileOpen : {false, true}) {
            SCOPED_TRACE(Format("%d %d", {static_cast<int>(&c - cases), whileOpen}));
            Ed = std::make_unique<TSpcEditor>();
            ShowThree();
            if (!whileOpen) c.Set(*Ed);
            Open(Plain);
            if (whileOpen) c.Set(*Ed);
            EXPECT_EQ(RowsText(), c.Rows);
            EXPECT_EQ(Row("Number").Label->Alignment(), Ed->LabelAreaInfo()->Alignment());
            EXPECT_FALSE(Ed->Modified());
        }
}

TEST_F(EditorRows, FollowTheOptionsOfTheWindow) {
    ShowThree();
    Ed->Options.Include(eoSortProps);
    Ed->FormOptions.Include(foEllipsisLabels);
    Ed->FormOptions.Exclude(foAreasDynamicResize);
    Ed->FormOptions.Exclude(foMultiLineCaptions);
    Ed->TopInc = 10;
    Ed->SetColCount(2);
    Ed->TranslatingTable()->SetTextStr("[TPlain]\r\nNumber=##");
    Open(Plain);
    EXPECT_EQ(RowsText(), "Char : [3,14 95x13] TEdit [2,10 20x21]\n"
                          "Days : [3,32 95x13] TCheckListBox [2,31 145x90]\n"
                          "## : [3,125 95x13] TEdit [2,121 72x21]\n");
    EXPECT_TRUE(ClassCast<TEllipsisLabel>(Row("Char").Label));
    EXPECT_EQ(Ed->Form()->Header().SectionCount(), 4);
    EXPECT_EQ(ErrorOf([&] { Ed->SetColCount(0); }),
              "ESpcEditorError: Section number must be more 0.");
    EXPECT_EQ(Ed->ColCount(), 2);
}

TEST_F(EditorRows, FollowTheWindow) {
    Open(Plain);
    TSpcForm& form = *Ed->Form();
    const auto widths = [&] {
        return Format("%d %d %d", {form.LabelArea().Width(), form.ControlArea().Width(),
                                   Control<TEdit>("Number").Width()});
    };
    EXPECT_EQ(widths(), "100 317 156");
    form.SetWidth(720);
    EXPECT_EQ(widths(), "100 417 206");
    form.Header().DragSection(0, 60);
    EXPECT_EQ(widths(), "60 457 226");
    form.Header().DragSection(1, 10); // what is left is the control area's
    EXPECT_EQ(widths(), "60 457 226");
    auto* const splitter = ClassCast<TSplitter>(form.FindComponent("Splitter"));
    splitter->DragTo(300);
    EXPECT_EQ(widths(), "60 357 176");
    form.SetHeight(210); // the rows need a scroll bar
    EXPECT_EQ(widths(), "60 341 168");
    // Dragged narrower than a label: so it stays until the rows are made anew.
    form.Header().DragSection(0, 20);
    EXPECT_EQ(widths(), "20 381 188");
    Ed->RebuildControls();
    EXPECT_EQ(widths(), "53 348 171");
}

// Wrong parameters raise their own error. No half of the rows stays; all come once it is mended.
TEST_F(EditorRows, WrongParametersRaise) {
    ShowThree();
    struct TCase {
        std::string Params, Error;
        bool RowsGo = true; ///< else it is found before
    };
    const TCase cases[] = {
        {Section("Width=101%"), "ESpcEditorError: Percent value should be in the range of 0-100%."},
        {Section("Width=-1%"), "ESpcEditorError: Percent value should be in the range of 0-100%."},
        {Section("Width=x%"), "EConvertError: 'x' is not a valid integer value"},
        {Section("Width=%"), "EConvertError: '' is not a valid integer value"},
        {Section("Colour=1"), "EDataHandlingError: Property by name ''Colour'' does not exist."},
        {Section("MaxLength=x"), "EConvertError: 'x' is not a valid integer value"},
        {"Width=1",
         "ESpcEditorError: Error of the section parameters transformation.\r\n[] Width=1", false},
        {Section("no value"),
         "ESpcEditorError: Error of the section parameters transformation.\r\n"
         "[IntegerControl] no value",
         false},
    };
    Open(Plain);
    const std::string rows = RowsText();
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Params);
        EXPECT_EQ(ErrorOf([&] { Ed->RedefiedParams()->SetTextStr(c.Params); }), c.Error);
        EXPECT_EQ(Ed->Controls().Count(), c.RowsGo ? 0 : 3);
        EXPECT_EQ(Ed->Form()->StatusBar().SimpleText(),
                  c.RowsGo ? "Properties: 0" : "Properties: 3");
        EXPECT_EQ(Ed->Form()->ControlArea().ControlCount(), Ed->Controls().Count());
        EXPECT_EQ(Ed->State(), TSpcEdState());
        Ed->RedefiedParams()->SetTextStr("; nothing\r\n\r\n[StringControl]\r\nWidth=100%");
        EXPECT_EQ(RowsText(), rows);
    }
    // The window does not open with them.
    Ed->DoRelease();
    Ed->RedefiedParams()->SetTextStr(Section("Width=101%"));
    Open(Plain);
    EXPECT_EQ(OS.Dialogs().back().Text, "Percent value should be in the range of 0-100%.");
    EXPECT_EQ(RowsText(), "");
    Ed->RedefiedParams()->Clear();
    EXPECT_EQ(RowsText(), rows);
}

// What a parameter section does to a control is no change of the user's, and stays.
TEST_F(EditorRows, ParametersSetProperties) {
    Ed->RedefiedParams()->SetTextStr("[CharControl]\r\nText=q\r\nMaxLength=3\r\nFont.Name=Arial");
    Open(Plain);
    EXPECT_EQ(Control<TEdit>("Char").Text(), "x"); // filled afterwards
    EXPECT_EQ(Control<TEdit>("Char").MaxLength(), 3);
    EXPECT_EQ(Control<TEdit>("Char").Font().Name(), "Arial");
    EXPECT_FALSE(Ed->Modified());
}

TEST_F(EditorRows, EnabledBothWays) {
    const auto disabled = [&] {
        std::string text;
        for (int i = 0; i < Ed->Controls().Count(); ++i)
            if (const TControlInfo& info = Ed->Controls().Get(i); !info.EControl->Enabled())
                text += std::string(info.EPropInfo->Name) + " ";
        return text;
    };
    // A handler may disable a control on its own account.
    const auto after = [](TObject*, TControlInfo& info) {
        if (info.EPropInfo->Name == "Single") info.EControl->SetEnabled(false);
    };
    Ed->AfterCreateControl = TControlNotifyEvent::Calling(after);
    TEdges edges;
    Open(edges);
    EXPECT_EQ(disabled(), "Single Fixed ");
    Ed->DisabledProps()->SetTextStr("TEdges.Byte\r\nTEdges.Single\r\nTEdges.Fixed\r\nByte");
    EXPECT_EQ(disabled(), "Byte Single Fixed ");
    Ed->DisabledProps()->Clear();
    EXPECT_EQ(disabled(), "Single Fixed ");
    EXPECT_EQ(Ed->Form()->StatusBar().SimpleText(), "Properties: 11"); // no unit, no event
}

// What a user types or pastes; the table of rows says which characters pass.
TEST_F(EditorRows, NumericFieldsFilterKeys) {
    struct TCase {
        std::string Prop, Text;
        bool Paste;
        std::string Result;
        int Beeps;
    };
    const TCase cases[] = {
        {"Number", "1a2-,.e", false, "12-", 4},
        {"Number", "12a", true, "", 1},
        {"Number", "12-", true, "12-", 0},
        {"Number", "12\r\n", true, "", 1},
        {"Number", "", true, "", 0},
        {"Float", "-1.5Ee,x", false, "-1.5Ee,", 1},
        {"Float", "1,5", true, "1,5", 0},
        {"Float", "\xC2\xA0", true, "", 1},
        {"Text", "1a \xC3\xBC", false, "1a \xC3\xBC", 0},
        {"Char", "ab", false, "a", 1}, // too long: the control's own beep
    };
    Open(Plain);
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Prop + " " + c.Text);
        auto& edit = Control<TEdit>(c.Prop);
        edit.SetText("");
        const int before = OS.Beeps();
        if (c.Paste) {
            Clipboard().SetAsText(c.Text);
            edit.Perform(WM_PASTE);
        } else {
            edit.TypeText(c.Text);
        }
        EXPECT_EQ(edit.Text(), c.Result);
        EXPECT_EQ(OS.Beeps() - before, c.Beeps);
    }
    // The keys that pass: copy, Backspace, paste, undo, Escape. A cut is not among them.
    auto& number = Control<TEdit>("Number");
    std::string passed;
    for (char32_t key = 1; key < 32; ++key) {
        const int before = OS.Beeps();
        number.SetText("12");
        number.SelectAll();
        number.KeyPress(key);
        if (OS.Beeps() == before)
            passed += IntToStr(static_cast<int>(key)) + ":" + number.Text() + " ";
    }
    EXPECT_EQ(passed, "3:12 8: 22:12 26:12 27:12 ");
}

// The separators are those at the time when the window is made.
TEST_F(EditorRows, NumericFieldsKnowTheLocale) {
    const TFormatSettings before = FormatSettings();
    FormatSettings().DecimalSeparator = ",";
    FormatSettings().ThousandSeparator = "\xE2\x80\xAF";
    Open(Plain);
    auto& edit = Control<TEdit>("Float");
    EXPECT_EQ(edit.Text(), "0,5");
    edit.SetText("");
    edit.TypeText("1.\xE2\x80\xAF"
                  "0,5");
    EXPECT_EQ(edit.Text(), "1\xE2\x80\xAF"
                           "0,5");
    EXPECT_EQ(OS.Beeps(), 1);
    FormatSettings() = before;
}

TEST(TControlList, FindsByHalving) {
    TControlList list;
    std::vector<std::unique_ptr<TControl>> controls;
    TObject shared;
    for (int i = 0; i < 50; ++i) {
        TControlInfo& info = list.Add(std::make_unique<TControlInfo>());
        info.EControl = controls.emplace_back(std::make_unique<TControl>()).get();
        info.EModifyObject = i % 10 == 7 ? &shared : info.EControl;
    }
    list.Sort();
    (void)list.Take(3);
    for (int i = 0; i < 50; ++i) {
        int byControl = -1, byObject = -1;
        const TControl* const control = controls[static_cast<std::size_t>(i)].get();
        EXPECT_EQ(list.FindByControl(control, byControl), i != 3);
        EXPECT_EQ(list.FindByModifyObject(control, byObject), i != 3 && i % 10 != 7);
        EXPECT_EQ(byControl, i < 3 ? i : i == 3 ? -1 : i - 1);
    }
    int first = -1;
    EXPECT_TRUE(list.FindByModifyObject(&shared, first));
    EXPECT_EQ(first, 6);
    EXPECT_EQ(ErrorOf([&] { (void)list.Get(49); }), "EListError: List index out of bounds (49)");
}

// A set's translated names: those of its own section, or else of its elements' type.
TEST_F(EditorRows, NamesOfValues) {
    Open(Plain);
    const auto days = [&] {
        return std::string(Control<TCheckListBox>("Days").Items()[0]) + " " +
               Control<TComboBox>("Day").Items()[0];
    };
    EXPECT_EQ(days(), "dyMonday dyMonday");
    Ed->TranslatingTable()->SetTextStr("[tday]\r\nDYMONDAY=Mo");
    EXPECT_EQ(days(), "Mo Mo");
    EXPECT_EQ(Control<TComboBox>("Day").ItemIndex(), 1);
    Ed->TranslatingTable()->Add("[TDays]");
    EXPECT_EQ(days(), "dyMonday Mo");
    Ed->SetSimpleMode(true);
    EXPECT_EQ(days(), "dyMonday dyMonday");
}

} // namespace
} // namespace tarn
