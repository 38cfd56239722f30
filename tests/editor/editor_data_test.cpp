// The settings editor's data: values between properties and controls, changes, saving and undoing.

#include "ErrorOf.h"
#include "SettingsFiles.h"
#include "TEditorHarness.h"
#include "TTestFolder.h"
#include "TestClasses.h"
#include "qsDataHndl2.h"
#include "vcl/TCheckBox.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TComboBox.h"
#include "vcl/TEdit.h"

#include <fstream>
#include <functional>
#include <sstream>

namespace tarn {
namespace {

/// What a control shows: its text, the chosen line's number, or the numbers of the checked lines.
std::string Content(TControl& control) {
    if (auto* const box = ClassCast<TComboBox>(&control)) return IntToStr(box->ItemIndex());
    if (auto* const box = ClassCast<TCheckBox>(&control)) return box->Checked() ? "x" : "-";
    auto* const list = ClassCast<TCheckListBox>(&control);
    if (!list) return control.Text();
    std::string text;
    for (int i = 0; i < list->Count(); ++i)
        if (list->Checked(i)) text += IntToStr(i) + " ";
    return text + "of " + IntToStr(list->Count());
}

/// The value of a property as it is held, a set as its mask.
std::string Held(const TPersistent& object, std::string_view name) {
    const TPropInfo& prop = *object.ClassType().FindProp(name);
    if (prop.PropType->Kind != tkInt64) return GetPropAsVariant(object, prop).ToString();
    std::int64_t value = 0;
    prop.Get(object, &value);
    return IntToStr(value);
}

/// Does what a user does: types a text, clicks a box, chooses a line or turns over a line's check.
void Use(TControl& control, const std::string& input) {
    if (auto* const edit = ClassCast<TEdit>(&control)) {
        edit->SelectAll();
        edit->TypeText(input);
    } else if (auto* const box = ClassCast<TCheckBox>(&control)) {
        box->Click();
    } else if (auto* const combo = ClassCast<TComboBox>(&control)) {
        combo->Choose(StrToInt(input));
    } else {
        ClassCast<TCheckListBox>(&control)->ClickCheck(StrToInt(input));
    }
}

class EditorData : public TEditorTest<> {
protected:
    /// Opens the window on a copy of the demo, which has a page, bound to a file of that name.
    void OpenOnFile(std::string_view name) {
        Demo.Pages()->Add("one");
        Ed->SetSpcFileName(Folder.File(name));
        Open(Demo);
    }
    /// Runs `work` as what a user does, and gives what is shown to him of an error.
    std::string ErrorShown(const std::function<void()>& work) {
        const std::size_t before = OS.Dialogs().size();
        try {
            work();
        } catch (...) {
            App->HandleException(nullptr);
        }
        return OS.Dialogs().size() == before ? "" : OS.Dialogs().back().Text;
    }
    static std::string Name(const std::string& file) { return std::string(ExtractFileName(file)); }
    void Type(std::string_view prop, const std::string& text) { Use(*Row(prop).EControl, text); }
    std::string Shown(std::string_view prop) { return Content(*Row(prop).EControl); }

    TTestFolder Folder;
    TDemo Demo;
};

// Each value is shown; leaving it alone changes nothing, and what the user does gives the other.
TEST_F(EditorData, ValuesGoBothWays) {
    TPlain plain;
    TEdges edges;
    struct TCase {
        TPersistent& Object;
        std::string Prop;
        std::function<void()> Set;
        std::string Shown, Input, After; ///< After: what is shown of the new value
        std::string Error = {};
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    std::string raw(1, '\0');
    const TCase cases[] = {
        {plain, "Number", [&] { plain.Number = std::numeric_limits<int>::min(); }, "-2147483648",
         "2147483647", "2147483647"},
        {plain, "Number", [&] { plain.Number = 5; }, "5", "", "0"},
        {plain, "Number", [&] { plain.Number = 5; }, "5", "2147483648", "5",
         "2147483648 is outside -2147483648 to 2147483647"},
        {plain, "Number", [&] { plain.Number = 5; }, "5", "1-2", "5",
         "'1-2' is not a valid integer value"},
        {edges, "Byte", [&] { edges.Byte = 255; }, "255", "256", "255", "256 is outside 0 to 255"},
        {edges, "Byte", [&] { edges.Byte = 255; }, "255", "-1", "255", "-1 is outside 0 to 255"},
        {edges, "Cardinal", [&] { edges.Cardinal = 4294967295; }, "4294967295", "2147483648",
         "2147483648"},
        {edges, "Int64", [&] { edges.Int64 = std::numeric_limits<std::int64_t>::min(); },
         "-9223372036854775808", "9223372036854775807", "9223372036854775807"},
        {plain, "Char", [&] { plain.Char = 'x'; }, "x", "y", "y"},
        {plain, "Char", [&] { plain.Char = 'x'; }, "x", "", raw},
        {plain, "Char", [&] { plain.Char = '\0'; }, raw, "z", "z"},
        {edges, "Char", [&] { edges.Char = '\xFF'; }, "\xC3\xBF", "\xC2\x80", "\xC2\x80"},
        {edges, "Char", [&] { edges.Char = 'a'; }, "a", "\xC4\x80", "a",
         "'\xC4\x80' is not a single-byte character"},
        {plain, "Float", [&] { plain.Float = 1e300; }, "1E300", "", "0"},
        {plain, "Float", [&] { plain.Float = infinite; }, "INF", "-1e-3", "-0.001"},
        {plain, "Float", [&] { plain.Float = 0.5; }, "0.5", "1,000", "0.5",
         "'1,000' is not a valid floating point value"},
        {edges, "Single", [&] { edges.Single = 0.5F; }, "0.5", "1e39", "0.5",
         "1E39 is too great for a Single"},
        {plain, "Text", [&] { plain.Text = "a\r\n\xE2\x82\xAC"; }, "a\r\n\xE2\x82\xAC",
         "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
        {edges, "Short", [&] { edges.Short = TShortString<4>("abcd"); }, "abcd", "12345", "1234"},
        {edges, "Wide", [&] { edges.Wide = u"\u20AC"; }, "\xE2\x82\xAC", "", ""},
        {plain, "Day", [&] { plain.Day = dyWednesday; }, "2", "0", "0"},
        {plain, "Day", [&] { plain.Day = TDay(9); }, "-1", "1", "1"}, // a value without a name
        {edges, "Late", [&] { edges.Late = laFourth; }, "1", "0", "0"},
        {plain, "Flag", [&] { plain.Flag = true; }, "x", "", "-"},
        {plain, "Flag", [&] { plain.Flag = false; }, "-", "", "x"},
        {plain, "Days",
         [&] {
             plain.Days = {dyMonday, dyWednesday};
         },
         "0 2 of 3", "1", "0 1 2 of 3"},
        {edges, "Lates", [&] { edges.Lates = {laFourth}; }, "1 of 2", "0", "0 1 of 2"},
        {edges, "Many", [&] { edges.Many = TSet<TMany>::FromMask(0x80000001); }, "0 31 of 33", "31",
         "0 of 33"},
        {edges, "Many", [&] { edges.Many = {}; }, "of 33", "32", "of 33"},
        {edges, "Fixed", [] {}, "fixed", "other", "fixed"},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Prop + " " + c.Shown);
        c.Set();
        const std::string before = Held(c.Object, c.Prop);
        Open(c.Object);
        EXPECT_EQ(Shown(c.Prop), c.Shown);
        EXPECT_FALSE(Ed->Modified());
        EXPECT_TRUE(Ed->GetControlsData());
        EXPECT_EQ(Held(c.Object, c.Prop), before);
        Type(c.Prop, c.Input);
        const std::string error = ErrorShown([&] { Ed->GetControlsData(); });
        EXPECT_EQ(error, c.Error.empty() ? "" : c.Prop + ": " + c.Error);
        Ed->UndoChanges();
        App->ProcessMessages();
        EXPECT_EQ(Shown(c.Prop), c.After);
        Ed->DoRelease();
    }
    plain.Float = nan;
    Open(plain);
    EXPECT_EQ(Shown("Float"), "NAN");
    EXPECT_TRUE(Ed->GetControlsData() && std::isnan(plain.Float));
    // A text has fewer digits than its value.
    plain.Float = 0.1 + 0.2;
    Ed->SetControlsData();
    EXPECT_EQ(Shown("Float"), "0.3");
    EXPECT_TRUE(Ed->GetControlsData() && plain.Float == 0.1 + 0.2);
    // Bits without a name have no line, and stay.
    plain.Days = TSet<TDay>::FromMask(0xF0);
    Ed->SetControlsData();
    Type("Days", "0");
    Ed->GetControlsData();
    EXPECT_EQ(plain.Days.Mask(), 0xF1U);
}

// The third of five rows cannot be written: nothing is, the node stays, the row is named and has
// the focus; once it is mended all goes on.
TEST_F(EditorData, NothingIsHalfWritten) {
    for (const bool onFile : {true, false}) {
        SCOPED_TRACE(onFile);
        Ed = std::make_unique<TSpcEditor>();
        if (onFile) Ed->SetSpcFileName(Folder.File("demo.stx"));
        if (!onFile) Ed->Options.Include(eoSaveSpcOnChange);
        Ed->TranslatingTable()->SetTextStr("[TPart]\r\nRatio=The##ratio");
        TDemo demo;
        Open(demo);
        Tree().SetSelected(Node({"Part"}));
        auto& part = dynamic_cast<TPart&>(*Node({"Part"})->Data());
        EXPECT_EQ(&part == demo.Part(), !onFile);
        Type("Level", "5");
        Type("Ratio", "1-");
        EXPECT_EQ(part.Level, onFile ? 1 : 5);
        EXPECT_EQ(ErrorShown([&] { Tree().ClickNode(*Node({"Pages"})); }),
                  "The ratio: '1-' is not a valid floating point value");
        EXPECT_EQ(part.Level, onFile ? 1 : 5);
        EXPECT_EQ(part.Ratio, onFile ? 1.5 : 1); // "1" was a number
        EXPECT_EQ(Tree().Selected(), Node({"Part"}));
        EXPECT_EQ(Shown("Ratio"), "1-");
        EXPECT_EQ(Ed->Form()->ActiveControl(), Row("Ratio").EControl);
        // Nor does the window close.
        OS.QueueAnswer(IDYES);
        EXPECT_FALSE(Ed->Form()->Close());
        EXPECT_EQ(OS.Dialogs().back().Text, "The ratio: '1-' is not a valid floating point value");
        EXPECT_TRUE(Ed->Form()->Visible() && Ed->Modified());
        EXPECT_FALSE(std::filesystem::exists(Folder.File("demo.stx")));
        Type("Ratio", "2");
        EXPECT_TRUE(Tree().ClickNode(*Node({"Pages"})));
        EXPECT_EQ(part.Level, 5);
        EXPECT_EQ(part.Ratio, 2);
        EXPECT_EQ(Ed->State(), TSpcEdState());
    }
}

// On live objects, changes of several nodes wait in their controls.
TEST_F(EditorData, ChangesOfSeveralNodesWait) {
    Demo.Pages()->Add("one");
    const auto change = [&] {
        Open(Demo);
        Type("Number", "8");
        Tree().SetSelected(Node({"Part"}));
        Type("Level", "5");
        Tree().SetSelected(Node({"Pages", "one"}));
        Type("Name", "two");
        Tree().SetSelected(Node());
        EXPECT_EQ(Shown("Number"), "8");
        EXPECT_EQ(RowsText(), "Title : [3,4 42x13] TEdit [2,0 312x21]\n"
                              "Number : [3,25 48x13] TEdit [2,21 156x21]\n");
        EXPECT_EQ(Demo.Number, 7);
    };
    change();
    // Made anew, a row that waits keeps what is in it, and stands where it is told to.
    Ed->RedefiedParams()->SetTextStr("[IntegerControl]\r\nWidth=10\r\nCentredLabel=no");
    EXPECT_EQ(RowsText(), "Title : [3,4 42x13] TEdit [2,0 312x21]\n"
                          "Number : [3,22 48x13] TEdit [2,21 10x21]\n");
    Ed->RedefiedParams()->Clear();
    EXPECT_EQ(Row("Number").Label->Top(), 25);
    const TPanel& area = Ed->Form()->ControlArea();
    int visible = 0; // those that wait are out of sight
    for (int i = 0; i < area.ControlCount(); ++i) visible += area.Controls(i)->Visible();
    EXPECT_EQ(Format("%d of %d", {visible, area.ControlCount()}), "2 of 4");
    EXPECT_EQ(Shown("Number"), "8");
    Ed->UndoChanges();
    App->ProcessMessages();
    EXPECT_EQ(Shown("Number"), "7");
    EXPECT_TRUE(Ed->GetControlsDataEx());
    EXPECT_EQ(Demo.Number + Demo.Part()->Level, 8);
    EXPECT_EQ(Demo.Pages()->Page(0)->Name, "one");
    change();
    // An item takes its own changes with it.
    EXPECT_TRUE(Ed->DeleteNode(*Node({"Pages", "one"})));
    // What cannot be written of another node is shown.
    Tree().SetSelected(Node({"Part"}));
    Type("Level", "-");
    Tree().SetSelected(Node());
    EXPECT_EQ(ErrorOf([&] { Ed->DoSaveChanges(); }),
              "EConvertError: Level: '-' is not a valid integer value");
    EXPECT_EQ(Demo.Number, 7);
    EXPECT_EQ(Tree().Selected(), Node({"Part"}));
    EXPECT_EQ(Ed->Form()->ActiveControl(), Row("Level").EControl);
    Type("Level", "6");
    EXPECT_TRUE(Ed->DoSaveChanges());
    EXPECT_EQ(Demo.Number, 8);
    EXPECT_EQ(Demo.Part()->Level, 6);
    EXPECT_FALSE(Ed->Modified());
    EXPECT_TRUE(Ed->ChangedSinceShown());
    EXPECT_FALSE(Row("Level").Modified);
}

TEST_F(EditorData, ChangesAreWrittenAtOnce) {
    Ed->Options.Include(eoSaveSpcOnChange);
    Open(Demo);
    std::string written;
    const auto change = [&](TObject*, TControlInfo&) { written += IntToStr(Demo.Number) + " "; };
    Ed->OnControlChange = TControlNotifyEvent::Calling(change);
    Type("Number", "-12");
    // The handler runs before each; "-" is no number, and the field keeps it.
    EXPECT_EQ(written, "7 7 -1 ");
    EXPECT_EQ(Demo.Number, -12);
    EXPECT_TRUE(Row("Number").Modified && !Row("Title").Modified && Ed->Modified());
}

// Rows of a copy that are made anew have what is in the copy: it is written there before, or stays
// in rows that cannot be written.
TEST_F(EditorData, RowsOfACopyAreMadeAnew) {
    OpenOnFile("demo.stx");
    Type("Number", "8");
    Ed->SetSimpleMode(true);
    EXPECT_EQ(Shown("Number"), "8");
    EXPECT_FALSE(Row("Number").Modified);
    Type("Number", "-");
    Ed->SetSimpleMode(false);
    EXPECT_EQ(Shown("Number"), "-");
    EXPECT_TRUE(Row("Number").Modified);
}

// A change that comes from nowhere in the list marks the editor all the same.
TEST_F(EditorData, StrangeChangesCount) {
    Open(Demo);
    Ed->ControlChange(&Demo);
    EXPECT_TRUE(Ed->Modified());
    EXPECT_FALSE(Row("Number").Modified || Row("Title").Modified);
    OS.QueueAnswer(IDNO);
    EXPECT_TRUE(Ed->SaveChanges());
    EXPECT_FALSE(Ed->Modified());
}

// Each answer to the question of a window that closes.
TEST_F(EditorData, ClosingAsks) {
    struct TCase {
        bool OnFile, OnExit;
        TDialogAnswer Answer;
        bool Closes, Saves;
    };
    const TCase cases[] = {
        {true, false, IDYES, true, true},       {true, false, IDNO, true, false},
        {true, false, IDCANCEL, false, false},  {true, true, IDNO, true, true},
        {false, false, IDYES, true, true},      {false, false, IDNO, true, false},
        {false, false, IDCANCEL, false, false}, {false, true, IDNO, true, true},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(&c - cases);
        Ed = std::make_unique<TSpcEditor>();
        Ed->SetSpcFileName(c.OnFile ? Folder.File("closing.stx") : "");
        std::filesystem::remove(Folder.File("closing.stx"));
        if (c.OnExit) Ed->Options.Include(eoSaveSpcOnExit);
        TDemo demo;
        const std::size_t asked = OS.Dialogs().size();
        const auto use = [&](TForm& form) {
            App->ProcessMessages();
            Type("Number", "8");
            if (!c.OnExit) OS.QueueAnswer(c.Answer);
            EXPECT_EQ(form.Close(), c.Closes);
            if (c.Closes) return;
            EXPECT_TRUE(form.Visible() && Ed->Modified());
            EXPECT_EQ(Shown("Number"), "8");
            Ed->UndoChanges();
            form.Close();
        };
        App->OnModal = TMethod<void(TForm&)>::Calling(use);
        EXPECT_EQ(Ed->ShowTree(demo), c.Saves);
        App->OnModal = {};
        EXPECT_EQ(OS.Dialogs().size() - asked, c.OnExit ? 0U : 1U);
        const std::string question = c.OnExit ? "" : OS.Dialogs().back().Text;
        EXPECT_EQ(question, c.OnExit ? "" : "Save changes in specification?");
        EXPECT_EQ(Ed->Form(), nullptr);
        EXPECT_EQ(demo.Number, c.Saves && !c.OnFile ? 8 : 7);
        EXPECT_EQ(std::filesystem::exists(Folder.File("closing.stx")), c.Saves && c.OnFile);
        if (c.OnFile && c.Saves) {
            TDemo loaded;
            EXPECT_TRUE(LoadSpc(&loaded, Folder.File("closing.stx"), true, {}));
            EXPECT_EQ(loaded.Number, 8);
        }
    }
}

// A save that is refused, cancelled or fails leaves all as it is.
TEST_F(EditorData, SavesThatDoNotHappen) {
    OpenOnFile("demo.stx");
    Type("Number", "8");
    std::string log;
    const auto refuse = [&](TObject*, TSpcObject& spc, const std::string& file, bool& allow) {
        log += IntToStr(dynamic_cast<TDemo&>(spc).Number) + " " + Name(file) + ";";
        allow = false;
    };
    const auto after = [&](TObject*, TSpcObject&, const std::string& file) {
        log += "saved " + Name(file) + ";";
        EXPECT_EQ(Ed->Modified(), Name(file) == "other.sbn");
        throw Exception("after");
    };
    Ed->BeforeSaveSpc = TBeforeSaveSpcEvent::Calling(refuse);
    EXPECT_FALSE(Ed->DoSaveChanges());
    EXPECT_FALSE(Ed->SaveAs()); // no file is chosen
    OS.QueueFile(Folder.File("other.sbn"));
    EXPECT_FALSE(Ed->SaveAs());
    EXPECT_EQ(log, "8 demo.stx;8 other.sbn;");
    Ed->BeforeSaveSpc = {};
    const auto abort = [](TObject*, TControlInfo& info, bool&, bool& aborted) {
        aborted = info.EPropInfo->Name == "Number";
    };
    Ed->BeforeGetControlData = TBeforeGetControlDataEvent::Calling(abort);
    Type("Number", "9");
    EXPECT_FALSE(Ed->Save());
    EXPECT_EQ(dynamic_cast<TDemo&>(*Ed->GetUpdatingSpc()).Number, 8);
    EXPECT_FALSE(Tree().ClickNode(*Node({"Part"})));
    Ed->BeforeGetControlData = {};
    EXPECT_TRUE(Ed->Modified() && !Ed->ChangedSinceShown());
    EXPECT_EQ(Shown("Number"), "9");
    EXPECT_TRUE(std::filesystem::is_empty(Folder.Path()));
    // Under another name it is a copy. A handler's error afterwards changes nothing about a save.
    Ed->AfterSaveSpc = TAfterSaveSpcEvent::Calling(after);
    OS.QueueFile(Folder.File("other.sbn"));
    EXPECT_EQ(ErrorOf([&] { Ed->SaveAs(); }), "Exception: after");
    EXPECT_TRUE(Ed->Modified());
    EXPECT_EQ(ErrorOf([&] { Ed->Save(); }), "Exception: after");
    EXPECT_FALSE(Ed->Modified());
    EXPECT_TRUE(Ed->ChangedSinceShown());
    Ed->AfterSaveSpc = {};
    OS.QueueFile(Folder.File("other.sbn"));
    OS.QueueAnswer(IDNO);
    EXPECT_FALSE(Ed->SaveAs());
    EXPECT_EQ(OS.Dialogs().back().Text,
              "File with name " + Folder.File("other.sbn") + " already exists. Replace?");
    // The formats are those of the names, but a file that is there keeps its own.
    const auto start = [&](std::string_view name) {
        std::ifstream stream(Folder.File(name), std::ios::binary);
        std::stringstream bytes;
        bytes << stream.rdbuf();
        return bytes.str().find("TPF0") == std::string::npos ? "text" : "binary";
    };
    EXPECT_STREQ(start("demo.stx"), "text");
    EXPECT_STREQ(start("other.sbn"), "binary");
    std::filesystem::copy(Folder.File("demo.stx"), Folder.File("text.sbn"));
    OS.QueueFile(Folder.File("text.sbn"));
    OS.QueueAnswer(IDYES);
    EXPECT_TRUE(Ed->SaveAs());
    EXPECT_STREQ(start("text.sbn"), "text");
    EXPECT_EQ(Ed->SpcFileName(), Folder.File("demo.stx"));
    // The folder goes: an error, and the changes still wait.
    std::filesystem::remove_all(Folder.Path());
    Type("Number", "10");
    OS.QueueAnswer(IDYES);
    EXPECT_FALSE(Ed->Form()->Close());
    EXPECT_TRUE(Ed->Modified() && Ed->Form()->Visible());
}

TEST_F(EditorData, LoadsAllOrNothing) {
    TDemo stored;
    stored.Number = 42;
    stored.Part()->Level = 9;
    SaveSpc(&stored, Folder.File("stored.sbn"), osfBin);
    std::ofstream(Folder.File("wrong.sbn")) << "no settings";
    OpenOnFile("demo.stx");
    Type("Title", "typed");
    struct TCase {
        std::string File;
        bool Loads, Raises;
    };
    for (const TCase& c : {TCase{"", false, false}, TCase{"missing.sbn", false, false},
                           TCase{"wrong.sbn", false, true}}) {
        SCOPED_TRACE(c.File);
        if (!c.File.empty()) OS.QueueFile(Folder.File(c.File));
        bool loaded = true;
        EXPECT_EQ(!ErrorOf([&] { loaded = Ed->Load(); }).empty(), c.Raises);
        EXPECT_EQ(loaded, c.Raises);
        EXPECT_EQ(Shown("Title"), "typed");
    }
    Ed->UndoChanges();
    App->ProcessMessages();
    std::string log;
    const auto load = [&](TObject*, TSpcObject& spc) {
        log += IntToStr(dynamic_cast<TDemo&>(spc).Number);
        throw Exception("load");
    };
    Ed->OnLoadSpc = TCreateSpc::Calling(load);
    OS.QueueFile(Folder.File("stored.sbn"));
    EXPECT_EQ(ErrorOf([&] { Ed->Load(); }), "Exception: load");
    App->ProcessMessages();
    EXPECT_EQ(log, "42");
    EXPECT_EQ(Shown("Number") + Shown("Title"), "42title");
    EXPECT_EQ(Demo.Number, 7);
    EXPECT_TRUE(Ed->Modified());
    Ed->UndoChanges();
    App->ProcessMessages();
    EXPECT_EQ(Shown("Number"), "7");
    EXPECT_FALSE(Ed->Modified());
    Ed->SetSpcFileName("");
    EXPECT_EQ(ErrorOf([&] { Ed->LoadFromFile("x"); }),
              "ESpcEditorError: live objects are not loaded from a file");
}

} // namespace
} // namespace tarn
