#include "ErrorOf.h"
#include "SettingsFiles.h"
#include "TEditorHarness.h"
#include "TLineEditor.h"
#include "TSpcImage.h"
#include "TTestFolder.h"
#include "os/portable/TConsoleDialogs.h"
#include "qsDataHndl2.h"
#include "qsPropTypes.h"
#include "qsSpcEdPro.h"
#include "rtl/DateUtils.h"
#include "rtl/FloatText.h"
#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"
#include "streaming/FormConvert.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"
#include "vcl/Clipbrd.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TColorEdit.h"
#include "vcl/TComboBox.h"
#include "vcl/TDateTimePicker.h"
#include "vcl/TFontEdit.h"
#include "vcl/THotKeyEx.h"
#include "vcl/TSpinEdit.h"

#include <functional>
#include <limits>
#include <sstream>

namespace tarn {
namespace {

// --- A class with all kinds -------------------------------------------------------------------

/// A picture of a class that is no format.
class TSketch : public TBitmap {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
};
constinit const TClassRecord TSketch::ClassRecord{"TSketch", &TBitmap::ClassRecord,
                                                  CreateObject<TSketch>};

constexpr TTypeInfo SmallSpinType = IntegerType<std::uint8_t>("tspinint");

class TAll : public TPersistent {
    std::vector<std::unique_ptr<TObject>> FOwned;
    template <class T> T* New() {
        auto* const object = new T;
        FOwned.emplace_back(object);
        return object;
    }

public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TSpinInt Spin = 0;
    std::uint8_t Small = 0;
    int Plain = 0;
    TColor Color = 0;
    TDateTime Moment = 0;
    long double Day = 0;
    float Clock = 0;
    TShortCut Key = 0;
    std::string KeyText;
    TCheckStrings* Checks = New<TCheckStrings>();
    TSelectStrings* Selection = New<TSelectStrings>();
    TStrings* Lines = New<TMemoStrings>();
    TStrings* PlainChecks = New<TCheckStrings>(); // declared as lines without checks
    TFont* Font = New<TFontEx>();
    TPictureEx* Picture = New<TPictureEx>();
    TGraphic* Graphic = New<TBitmap>();
    TGraphic* Sketch = New<TSketch>();
    TPicture* NoPicture = nullptr;

    void SetLines() {
        Lines->SetTextStr("a\nb\nc");
        Checks->Assign(Lines);
        Checks->SetChecked(0, true);
        Checks->SetChecked(2, true);
        PlainChecks->Assign(Checks);
        Selection->Assign(Lines);
        Selection->SelectedIndex = 1;
    }
};
constexpr TPropInfo AllProps[] = {
    Published<&TAll::Spin>("Spin", {.Type = &SpinIntType}),
    Published<&TAll::Small>("Small", {.Type = &SmallSpinType}),
    Published<&TAll::Plain>("Plain"),
    Published<&TAll::Checks>("Checks"),
    Published<&TAll::Selection>("Selection"),
    Published<&TAll::Color>("Color", {.Type = &ColorType}),
    Published<&TAll::Moment>("Moment", {.Type = &DateTimeType}),
    Published<&TAll::Day>("Day", {.Type = &DateType}),
    Published<&TAll::Clock>("Clock", {.Type = &TimeType}),
    Published<&TAll::Font>("Font"),
    Published<&TAll::Picture>("Picture"),
    Published<&TAll::Graphic>("Graphic"),
    Published<&TAll::Sketch>("Sketch"),
    Published<&TAll::NoPicture>("NoPicture"),
    Published<&TAll::Lines>("Lines"),
    Published<&TAll::PlainChecks>("PlainChecks"),
    Published<&TAll::Key>("Key", {.Type = &ShortCutType}),
    Published<&TAll::KeyText>("KeyText", {.Type = &ShortCutStringType}),
};
constinit const TClassRecord TAll::ClassRecord{"TAll", &TPersistent::ClassRecord,
                                               CreateObject<TAll>, AllProps};

const std::string PngFile =
    std::string("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\x07\0\0\x01\x02\x08\2\0\0\0", 29) + "crc.";
/// Of 1 x 1 pixel.
const std::string BitmapFile =
    std::string("BM\0\0\0\0\0\0\0\0\x1A\0\0\0\x0C\0\0\0\1\0\1\0\1\0\x18\0", 26) + "RGB.";

/// A row's value: "+checked|-not|" for lines with checks, "1:a|b|" for those with an index.
std::string Text(TObject* object) {
    if (auto* const f = ClassCast<TFont>(object))
        return Format("%s,%d,%d,%d,%d,%d",
                      {f->Name(), f->Height(), f->Color(), static_cast<int>(f->Style().Mask()),
                       int{f->Charset()}, int{f->Pitch()}});
    if (auto* const picture = ClassCast<TPicture>(object)) return Text(picture->Graphic());
    if (auto* const g = ClassCast<TGraphic>(object)) return g->Bytes();
    auto* const lines = ClassCast<TStrings>(object);
    if (!lines) return "none";
    auto* const checks = ClassCast<TItemStrings>(object);
    auto* const selection = ClassCast<TSelectStrings>(object);
    std::string text = selection ? Format("%d:", {selection->SelectedIndex}) : "";
    for (int i = 0; i < lines->Count(); ++i)
        text += (!checks ? "" : checks->Checked(i) ? "+" : "-") + (*lines)[i] + "|";
    return text;
}

std::string Text(TAll& all, std::string_view name) {
    const TPropInfo& prop = *TAll::ClassRecord.FindProp(name);
    if (prop.PropType == &ColorType) return ColorToString(all.Color);
    long double number = 0;
    if (prop.PropType->Kind == tkFloat) return prop.Get(all, &number), FloatToStr(number);
    if (prop.PropType->Kind != tkClass) return GetPropAsText(all, prop);
    TObject* object = nullptr;
    prop.Get(all, &object);
    return Text(object);
}

std::string Text(TAll& all) {
    std::string text;
    for (const TPropInfo& prop : AllProps) text += Text(all, prop.Name) + "\n";
    return text;
}

// --- The editor -------------------------------------------------------------------------------

class ExtKinds : public TEditorTest<TSpcEditorPro> {
protected:
    ExtKinds() {
        Ed->FormOptions = {};
        Ed->ControlAreaInfo()->SetDefAreaWidth(205); // 200 without the margins
    }

    void Show(TAll& all) {
        Ed->DoRelease();
        Open(all);
    }
    /// The menu of a row as its user sees it, what is disabled in brackets.
    std::string MenuOf(std::string_view prop) {
        TPopupMenu& menu = *Row(prop).EControl->PopupMenu();
        menu.Popup(Row(prop).EControl);
        std::string text;
        for (int i = 0; i < menu.Items()->Count(); ++i) {
            const TMenuItem& item = *menu.Items()->Items(i);
            text += item.Enabled() ? item.Caption() + "; " : "(" + item.Caption() + "); ";
        }
        return text;
    }
    void Pick(std::string_view prop, std::string_view caption) {
        (void)MenuOf(prop);
        Row(prop).EControl->PopupMenu()->Items()->Find(caption)->Click();
    }
};

TEST_F(ExtKinds, EachPropertyHasItsControlInItsPlace) {
    TAll all;
    int menus = 0; // that are there when the host is told of a row
    auto made = [&](TObject*, TControlInfo& row) { menus += row.EControl->PopupMenu() ? 1 : 0; };
    Ed->AfterCreateControl = TControlNotifyEvent::Calling(made);
    Show(all);
    EXPECT_EQ(menus, 4);
    std::string rows;
    for (int i = 0; i < Ed->Controls().Count(); ++i) {
        const TControlInfo& row = Ed->Controls().Get(i);
        rows += Format("%d/%d ", {row.NativeMarker, row.GetETag()});
    }
    EXPECT_EQ(rows, "1/1 1/1 0/1 1/2 1/3 1/4 1/5 1/5 1/6 1/7 1/8 1/9 1/10 1/10 1/11 1/12 ");
    EXPECT_EQ(RowsText(), "Spin : [3,4 36x13] TSpinEdit [2,0 130x22]\n"
                          "Small : [3,26 42x13] TSpinEdit [2,22 130x22]\n"
                          "Plain : [3,48 42x13] TEdit [2,44 100x21]\n"
                          "Checks : [3,66 48x13] TCheckListBox [2,65 200x100]\n"
                          "Selection : [3,169 66x13] TComboBox [2,165 200x21]\n"
                          "Color : [3,190 42x13] TColorEdit [2,186 200x21]\n"
                          "Moment : [3,211 48x13] TDateTimePicker [2,207 160x21]\n"
                          "Day : [3,232 30x13] TDateTimePicker [2,228 160x21]\n"
                          "Clock : [3,253 42x13] TDateTimePicker [2,249 160x21]\n"
                          "Font : [3,274 36x13] TFontEdit [2,270 200x21]\n"
                          "Picture : [3,292 54x13] TSpcImage [2,291 32x32]\n"
                          "Graphic : [3,324 54x13] TSpcImage [2,323 32x32]\n"
                          "Lines : [3,356 42x13] TMemo [2,355 200x90]\n"
                          "PlainChecks : [3,446 78x13] TMemo [2,445 200x90]\n"
                          "Key : [3,539 30x13] THotKeyEx [2,535 100x21]\n"
                          "KeyText : [3,560 54x13] THotKeyEx [2,556 100x21]\n");
    EXPECT_EQ(TreeText(), "TAll\n"); // rows only, no nodes
    EXPECT_TRUE(Control<TSpcImage>("Picture").Stretch());
    EXPECT_EQ(Control<TMemo>("Lines").WordWrap(), false);
    EXPECT_EQ(Control<TMemo>("Lines").ScrollBars(), ssVertical);

    Ed->RedefiedParams()->SetTextStr("[SpinIntControl]\nWidth=30\nMinValue=2\nMaxValue=9\n");
    Control<TSpinEdit>("Spin").SetText("10");
    Control<TSpinEdit>("Small").SetText("1");
    EXPECT_TRUE(Ed->GetControlsData());
    EXPECT_EQ(Format("%d %d %d", {Control<TSpinEdit>("Spin").Width(), all.Spin, int{all.Small}}),
              "30 9 2");
}

TEST_F(ExtKinds, ValuesComeBackAsTheyWere) {
    const auto comesBack = [this](TAll& all) {
        const std::string before = Text(all);
        const long double day = all.Day;
        Show(all);
        EXPECT_TRUE(Ed->GetControlsData());
        EXPECT_EQ(Text(all), before);
        EXPECT_EQ(all.Day, day); // to the last bit
        EXPECT_FALSE(Ed->Modified());
    };
    TAll all;
    comesBack(all);
    all.SetLines();
    all.Spin = std::numeric_limits<int>::min(), all.Small = 255, all.Color = 0x123456;
    all.Moment = 1e300, all.Day = 36526.1L, all.Key = 0xFFFF, all.KeyText = "Shift+Ctrl+Del";
    all.Graphic->SetBytes(BitmapFile);
    all.Picture->Assign(all.Graphic);
    all.Font->SetName("Ärial"), all.Font->SetHeight(-7), all.Font->SetStyle({fsBold});
    comesBack(all);
    all.Lines->SetCommaText("\"two\r\nin one\",,");
    all.Selection->SelectedIndex = 7; // none of the lines
    all.Moment = std::numeric_limits<double>::quiet_NaN();
    all.Clock = std::numeric_limits<float>::infinity();
    comesBack(all);
    all.KeyText = "no shortcut";
    Show(all);
    EXPECT_EQ(Control<THotKeyEx>("KeyText").HotKey(), 0);
    EXPECT_TRUE(Ed->GetControlsData());
    EXPECT_EQ(all.KeyText, "");
}

/// What a user does to a control; a number for what is clicked.
void UseControl(TControl& control, std::string_view input) {
    if (auto* const list = ClassCast<TCheckListBox>(&control)) list->ClickCheck(StrToInt(input));
    if (auto* const box = ClassCast<TComboBox>(&control)) box->Choose(StrToInt(input));
    if (auto* const edit = ClassCast<TColorEdit>(&control)) edit->TypeText(input);
    if (auto* const picker = ClassCast<TDateTimePicker>(&control)) picker->TypeText(input);
    if (auto* const edit = ClassCast<TFontEdit>(&control)) edit->ChooseName(input);
    if (auto* const key = ClassCast<THotKeyEx>(&control)) key->PressKey(TextToShortCut(input));
    if (auto* const edit = ClassCast<TCustomEdit>(&control))
        edit->SelectAll(), edit->TypeText(input);
}

TEST_F(ExtKinds, TheUserChangesValues) {
    const struct {
        std::string_view Prop;
        std::string Input, Value; ///< or the error
    } cases[] = {
        {"Spin", "-39", "-39"},
        {"Spin", "", "0"},
        {"Spin", "1-2", "EConvertError: Spin: '1-2' is not a valid integer value"},
        {"Small", "256", "EConvertError: Small: 256 is outside 0 to 255"},
        {"Checks", "1", "+a|+b|+c|"},
        {"Selection", "2", "2:a|b|c|"},
        {"Color", "clRed", "clRed"},
        {"Moment", DateToStr(36526), "36526.25"},
        {"Clock", TimeToStr(0.5), "0.5"},
        {"Font", "Arial", "Arial,0,-2147483640,0,1,0"},
        {"Lines", "x\r\ny", "x|y|"},
        {"Key", "A", "65"},
        {"KeyText", "Ctrl+A", "Ctrl+A"},
    };
    for (const auto& c : cases) {
        TAll all;
        all.SetLines();
        all.Spin = 1, all.Moment = 0.25;
        Show(all);
        const std::string before = Text(all);
        UseControl(*Row(c.Prop).EControl, c.Input);
        EXPECT_TRUE(Row(c.Prop).Modified) << c.Prop;
        EXPECT_EQ(Text(all), before) << c.Prop; // until it is written
        const std::string error = ErrorOf([&] { Ed->GetControlsData(); });
        EXPECT_EQ(error.empty() ? Text(all, c.Prop) : error, c.Value);
        EXPECT_EQ(error.empty(), Text(all) != before) << c.Prop;
    }
}

// --- The menus --------------------------------------------------------------------------------

TEST_F(ExtKinds, TheMenuOfLines) {
    const TTestFolder folder;
    const std::string file = folder.File("lines.txt");
    SaveFileText(file, "x\ny\n");
    const struct {
        int Line;                                ///< that is selected
        std::string_view Command, Answer, Asked; ///< what the user reads, and cancels
        std::string Checks, Selection;           ///< behind a ";" the line that is selected then
    } cases[] = {
        {1, "Add line", "d", "Add line: Enter new line:", "+a|-b|+c|-d|;1", "1:a|b|c|d|;1"},
        {1, "Insert line", "d", "Insert line: Enter new line:", "+a|-d|-b|+c|;2", "2:a|d|b|c|;2"},
        {0, "Delete line", "", "", "-b|+c|;0", "0:b|c|;0"},
        {2, "Delete line", "", "", "+a|-b|;1", "1:a|b|;1"},
        {1, "Clear", "", "question: Delete all lines?", ";-1", "-1:;-1"},
        {2, "Edit text", "C", "Edit: Text for editing: [c]", "+a|-b|+C|;2", "2:a|b|C|;2"},
        {2, "Load from file", file, "File", "-x|-y|;1", "1:x|y|;1"},
    };
    for (const auto& c : cases)
        for (const std::string_view prop : {"Checks", "Selection"}) {
            TAll all;
            all.SetLines();
            all.Selection->SelectedIndex = c.Line;
            Show(all);
            auto& list = Control<TCheckListBox>("Checks");
            list.SetItemIndex(c.Line);
            list.SetTopIndex(1);
            if (c.Command != "Delete line") {
                std::istringstream in;
                std::ostringstream out;
                TConsoleDialogs console(in, out, false);
                OS.SetConsole(&console);
                Pick(prop, c.Command); // and cancel
                OS.SetConsole(nullptr);
                EXPECT_TRUE(out.str().starts_with(c.Asked)) << out.str();
                EXPECT_FALSE(Ed->Modified()) << c.Command;
                if (c.Command == "Clear")
                    OS.QueueAnswer(IDYES);
                else
                    c.Answer == file ? OS.QueueFile(c.Answer) : OS.QueueInput(c.Answer);
            }
            Pick(prop, c.Command);
            EXPECT_TRUE(Row(prop).Modified) << c.Command;
            EXPECT_TRUE(Ed->GetControlsData());
            const bool isList = prop == "Checks";
            const int index =
                isList ? list.ItemIndex() : Control<TComboBox>("Selection").ItemIndex();
            EXPECT_EQ(Format("%s;%d", {Text(all, prop), index}), isList ? c.Checks : c.Selection)
                << c.Command;
            EXPECT_EQ(list.TopIndex(), list.Count() > 0 ? 1 : 0);
        }
    TAll all;
    all.SetLines();
    Show(all);
    const std::string allowed = "Add line; Insert line; Delete line; Clear; -; Edit text; -; "
                                "Load from file; Save to file; ";
    EXPECT_EQ(MenuOf("Selection"), allowed);
    EXPECT_EQ(MenuOf("Checks"), "Add line; (Insert line); (Delete line); Clear; -; (Edit text); -; "
                                "Load from file; Save to file; ");
    OS.QueueFile(folder.File("none"));
    EXPECT_NE(ErrorOf([&] { Pick("Checks", "Load from file"); }), "");
    OS.QueueFile(folder.File("saved")); // gets the extension
    Pick("Checks", "Save to file");
    EXPECT_EQ(LoadFileText(folder.File("saved.txt")), "a\r\nb\r\nc\r\n");
    EXPECT_FALSE(Ed->Modified());
    Row("Selection").EControl->SetEnabled(false);
    Row("Selection").EControl->PopupMenu()->Items()->Items(0)->SetCaption("of another language");
    EXPECT_EQ(MenuOf("Selection"), "(Add line); (Insert line); (Delete line); (Clear); -; "
                                   "(Edit text); -; (Load from file); Save to file; ");
}

TEST_F(ExtKinds, TheMenuOfPictures) {
    const TTestFolder folder;
    const std::string png = folder.File("a.png"), broken = folder.File("b.png"),
                      saved = folder.File("c");
    SaveFileText(png, PngFile);
    SaveFileText(broken, "no picture");
    TAll all;
    all.Graphic->SetBytes(BitmapFile);
    Show(all);
    Clipboard().SetAsText("text");
    EXPECT_EQ(MenuOf("Picture"), "Load from file; (Load form clipboard); -; (Save into file); "
                                 "(Save into clipboard); -; Clear; Clear clipboard; ");
    const auto written = [&](std::string_view name) {
        EXPECT_TRUE(std::exchange(Row(name).Modified, false));
        const std::string error = ErrorOf([&] { Ed->GetControlsData(); });
        return error + Text(all, name);
    };
    auto& image = Control<TSpcImage>("Picture");
    OS.QueueFile(broken);
    EXPECT_NE(ErrorOf([&] { Pick("Picture", "Load from file"); }), "");
    image.DblClick(); // and cancel
    EXPECT_FALSE(Ed->Modified());
    OS.QueueFile(png);
    image.DblClick();
    EXPECT_EQ(written("Picture"), PngFile);
    OS.QueueFile(saved);
    Pick("Picture", "Save into file");
    EXPECT_EQ(LoadFileText(saved + ".png"), PngFile);
    Pick("Picture", "Save into clipboard");
    EXPECT_FALSE(Row("Picture").Modified);
    Pick("Picture", "Clear");
    EXPECT_EQ(written("Picture"), "none");
    Pick("Picture", "Load form clipboard");
    EXPECT_EQ(written("Picture"), PngFile);
    Pick("Graphic", "Load form clipboard"); // into a bitmap
    EXPECT_EQ(written("Graphic"),
              "EConvertError: Graphic: cannot assign a TPngGraphic to a TBitmap" + BitmapFile);
    Pick("Graphic", "Clear");
    EXPECT_EQ(written("Graphic"), "");
    image.SetEnabled(false);
    EXPECT_EQ(MenuOf("Picture"), "(Load from file); (Load form clipboard); -; Save into file; "
                                 "Save into clipboard; -; (Clear); Clear clipboard; ");
    Pick("Picture", "Clear clipboard");
    EXPECT_FALSE(Clipboard().HasPicture());
}

/// Takes down what is asked for, and cancels it.
class TFileQuestionsOS : public TPortableOS {
public:
    std::string Filters;
    std::vector<std::string> ChooseFiles(const TFileQuestion& question) override {
        Filters += question.Filter + "\n";
        return {};
    }
};

TEST_F(ExtKinds, FilesAreAskedForByWhatTheyHold) {
    TAll all;
    Show(all);
    TFileQuestionsOS os;
    TOperatingSystem* const before = InstallOS(&os);
    EXPECT_FALSE(AskForTextFile(false));
    EXPECT_TRUE(Control<TSpcImage>("Picture").DblClick());
    InstallOS(before);
    EXPECT_EQ(os.Filters, "Text files (*.txt)|*.txt|All files(*.*)|*.*\n"
                          "All (*.bmp;*.png)|*.bmp;*.png|Bitmaps (*.bmp)|*.bmp|"
                          "Portable Network Graphics (*.png)|*.png\n");
}

TEST_F(ExtKinds, TheLineEditor) {
    const TTestFolder folder;
    const auto throughAFile = [&](TLineEditor& form) {
        OS.QueueFile(folder.File("none"));
        EXPECT_NE(ErrorOf([&] { form.LoadFromButton().Click(); }), "");
        OS.QueueFile(folder.File("lines.txt"));
        form.SaveToButton().Click();
        form.Lines().Clear();
        OS.QueueFile(folder.File("lines.txt"));
        form.LoadFromButton().Click();
        form.SaveButton().Click();
    };
    const struct {
        std::function<void(TLineEditor&)> Act;
        TModalResult Result;
    } cases[] = {
        {[](TLineEditor& form) { form.SaveButton().Click(); }, mrOk},
        {[](TLineEditor& form) { form.IsShortCut(scCtrl | VK_RETURN); }, mrOk},
        {throughAFile, mrOk},
        {[](TLineEditor& form) { form.IsShortCut(VK_ESCAPE); }, mrCancel},
        {[](TLineEditor& form) { form.CancelButton().Click(); }, mrCancel},
        {[](TLineEditor& form) { form.IsShortCut(VK_RETURN); }, mrNone}, // the memo's
    };
    for (const auto& c : cases) {
        TAll all;
        all.SetLines();
        Show(all);
        std::string shown;
        auto modal = [&](TForm& each) {
            auto& form = dynamic_cast<TLineEditor&>(each);
            form.Memo().TypeText("x\r\n");
            shown = form.Caption() + ", " + form.StatusBar().SimpleText();
            c.Act(form);
            EXPECT_EQ(form.ModalResult, c.Result);
        };
        App->OnModal = TMethod<void(TForm&)>::Calling(modal);
        Control<TMemo>("Lines").DblClick();
        App->OnModal = {};
        EXPECT_EQ(shown, "Line editor, Lines count: 4");
        EXPECT_EQ(Row("Lines").Modified, c.Result == mrOk);
        EXPECT_TRUE(Ed->GetControlsData());
        EXPECT_EQ(Text(all.Lines), c.Result == mrOk ? "x|a|b|c|" : "a|b|c|");
    }
    // Lines that are only to be looked at.
    TAll all;
    all.SetLines();
    Ed->RedefiedParams()->SetTextStr("[StringsControl]\nReadOnly=True\n");
    Show(all);
    auto modal = [](TForm& each) {
        auto& form = dynamic_cast<TLineEditor&>(each);
        EXPECT_FALSE(form.Memo().TypeText("x") || form.SaveButton().Click());
        EXPECT_EQ(form.StatusBar().SimpleText(), "Lines count: 3");
    };
    App->OnModal = TMethod<void(TForm&)>::Calling(modal);
    Control<TMemo>("Lines").DblClick();
    App->OnModal = {};
    EXPECT_FALSE(Row("Lines").Modified);
}

// --- The types themselves ---------------------------------------------------------------------

TEST(PropTypes, LinesAreStreamedWithWhatBelongsToThem) {
    const auto stored = [](TPersistent& object) {
        TStringStream stream;
        TWriter(stream).WriteAsComponent(object, "");
        return stream.DataString();
    };
    TFormLayout layout{.LineBreak = "\n"};
    TAll all;
    all.SetLines();
    EXPECT_EQ(ConvertForm(stored(*all.Checks), fkText, layout),
              "object TCheckStrings\n  Strings = (\n    'a'\n    'b'\n    'c')\n"
              "  Checked = (\n    0\n    2)\nend\n");
    TCheckStrings checks;
    TSelectStrings selection;
    TReader(stored(*all.Checks)).ReadAsComponent(checks);
    TReader(stored(*all.Selection)).ReadAsComponent(selection);
    EXPECT_EQ(Text(&checks) + Text(&selection), "+a|-b|+c|1:a|b|c|");
    const std::string edited = ConvertForm("object T Checked = (1 7 -1) end", fkBinary, layout);
    TReader(edited).ReadAsComponent(checks); // numbers that no line has are passed over
    EXPECT_EQ(Text(&checks), "-a|+b|-c|");
    checks.Assign(all.Lines);
    EXPECT_EQ(Text(&checks), "-a|-b|-c|");
    TSelectStrings copy;
    copy.Assign(&selection);
    copy.Assign(all.Lines); // has no index
    EXPECT_EQ(Text(&copy), "1:a|b|c|");

    // What differs from an ancestor, be it that nothing is checked.
    TCheckStrings none;
    none.Assign(all.Lines);
    TStringStream stream;
    TWriter writer(stream);
    writer.SetAncestor(all.Checks);
    writer.WriteAsComponent(none, "");
    EXPECT_EQ(ConvertForm(stream.DataString(), fkText, layout),
              "object TCheckStrings\n  Checked = ()\nend");
}

TEST(PropTypes, WhoIsToldOfAChangeSeesAllOfIt) {
    TAll all;
    all.SetLines();
    std::string seen;
    auto told = [&seen](TObject* sender) { seen += Text(sender) + " "; };
    TCheckStrings checks;
    checks.OnChange = TNotifyEvent::Calling(told);
    checks.Assign(all.Checks);
    checks.SetChecked(1, true);
    checks.SetChecked(1, true); // it is already
    TFormLayout layout;
    const std::string edited = ConvertForm("object T Checked = (1) end", fkBinary, layout);
    TReader(edited).ReadAsComponent(checks);
    TSelectStrings selection;
    selection.OnChange = TNotifyEvent::Calling(told);
    selection.Assign(all.Selection);
    EXPECT_EQ(seen, "+a|-b|+c| +a|+b|+c| -a|+b|-c| 1:a|b|c| ");
}

TEST_F(ExtKinds, TheEditorIsKnownByItsData) {
    TSpcObject tree;
    Ed->Init({"", osfBin, &tree});
    EXPECT_EQ(static_cast<TSpcEditorProData*>(GetUserData(*Ed))->Ident, "_@SpcEditorPro");
    int own = 0;
    AddUserData(*Ed, &own); // the host's goes before
    Ed->Init({"", osfBin, &tree});
    EXPECT_EQ(GetUserData(*Ed), &own);
}

} // namespace
} // namespace tarn
