#include "os/portable/TPortableOS.h"
#include "rtl/SysUtils.h"
#include "vcl/Clipbrd.h"
#include "vcl/Forms.h"
#include "vcl/TColorEdit.h"
#include "vcl/TDateTimePicker.h"
#include "vcl/TFontEdit.h"
#include "vcl/THotKeyEx.h"
#include "vcl/TMemo.h"

#include <gtest/gtest.h>

#include <bit>
#include <functional>

namespace tarn {
namespace {

/// A form that is shown, on a screen; it counts the changes that its controls report.
class EditMessages : public testing::Test {
protected:
    EditMessages() : FBefore(InstallOS(&OS)) { Form.Show(); }
    ~EditMessages() override { InstallOS(FBefore); }

    template <class T> T& Add() {
        auto* const control = new T(&Form);
        control->SetParent(&Form);
        control->OnChange = TNotifyEvent::Of<&EditMessages::Count>(this);
        return *control;
    }
    int TakeChanges() { return std::exchange(Changes, 0); }

    TPortableOS OS;

private:
    void Count(TObject*) { ++Changes; }

    TOperatingSystem* FBefore;

protected:
    TScreen Scr;
    TForm Form;
    int Changes = 0;
};

/// The text with "|" at both ends of the selection, or one at the caret; breaks as "/", bytes above
/// ASCII as they are.
std::string ShownText(const TCustomEdit& edit) {
    std::string text = edit.Text();
    const auto start = static_cast<std::size_t>(edit.SelStart());
    if (edit.SelLength() > 0) text.insert(start + edit.SelText().size(), "|");
    text.insert(start, "|");
    for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;) text.replace(at, 2, "/");
    return text;
}

// --- Keys -------------------------------------------------------------------------------------

TEST_F(EditMessages, KeysEditAndUndo) {
    TMemo& memo = Add<TMemo>();
    TEdit& edit = Add<TEdit>();
    const struct {
        std::string_view What;
        TCustomEdit& Edit;
        std::function<bool()> Do;
        std::string_view Shown;
        int Changes;
    } steps[] = {
        {"typed", memo, [&] { return memo.TypeText("aä€😀"); }, "aä€😀|", 4},
        {"one step back", memo, [&] { return memo.Undo(); }, "|", 1},
        {"and forth", memo, [&] { return memo.KeyPress(26); }, "aä€😀|", 1},
        {"whole sequences", memo, [&] { return memo.KeyPress(8) && memo.KeyPress(8); }, "aä|", 2},
        {"deleted as one step", memo, [&] { return memo.Undo(); }, "aä€|😀|", 1},
        {"breaks of all kinds", memo, [&] { return memo.TypeText("b\r\nc\nd\r\re"); },
         "aä€b/c/d//e|", 8},
        {"typed over", memo, [&] { return memo.Undo() && memo.CanUndo(); }, "aä€|😀|", 1},
        {"a break is one", memo,
         [&] { return memo.TypeText("\n") && memo.KeyPress(8) && memo.KeyPress(8); }, "aä|", 3},
        {"selection", memo, [&] { return memo.Select(0, 1), memo.KeyPress(8); }, "|ä", 1},
        {"nothing before", memo, [&] { return memo.KeyPress(8); }, "|ä", 0},
        {"another caret, another step", memo,
         [&] { return memo.TypeText("x"), memo.SetSelStart(3), memo.TypeText("y") && memo.Undo(); },
         "xä|", 3},
        {"keys without a meaning", memo,
         [&] { return memo.TypeText("\x01\x02\t\x0B\x1B\x1F\x7F") && memo.KeyPress(0xD800); },
         "xä|", 0},
        {"no characters", memo, [&] { return memo.KeyPress(0x110000) && memo.KeyPress(0xDC7F); },
         "xä|", 0},
        {"cut and pasted", memo,
         [&] {
             memo.SelectAll();
             return memo.KeyPress(24) && memo.KeyPress(22) && memo.PasteFromClipboard();
         },
         "xäxä|", 3},
        {"a paste back", memo, [&] { return memo.Undo(); }, "xä|", 1},
        {"the program ends undo", memo, [&] { return memo.Lines().Add("z"), !memo.Undo(); },
         "|xä/z/", 1},
        {"nothing typed", memo, [&] { return memo.SelectAll(), memo.TypeText(""); }, "|", 1},
        {"bytes that are no text", edit,
         [&] { return edit.TypeText("\xFF\xE2\x82z\xED\xA0\x80\xC3"); },
         "\xFF\xE2\x82z\xED\xA0\x80\xC3|", 8},
        {"one by one", edit, [&] { return edit.KeyPress(8) && edit.KeyPress(0xDCE4); },
         "\xFF\xE2\x82z\xED\xA0\x80\xE4|", 2},
        {"no breaks", edit, [&] { return edit.SetText("q"), edit.KeyPress(13); }, "|q", 1},
        {"its own text", edit, [&] { return edit.TypeText(edit.Text()); }, "q|q", 1},
        {"by the window", edit,
         [&] { return OS.PostMessage(edit.Handle(), WM_CHAR, 'w', 0) && OS.DispatchMessage(); },
         "qw|q", 1},
        {"read-only", edit,
         [&] {
             edit.SetReadOnly(true), edit.Select(0, 2);
             for (const int msg : {WM_CUT, WM_PASTE, WM_CLEAR, WM_UNDO})
                 edit.Perform(static_cast<std::uint32_t>(msg));
             edit.Perform(WM_CHAR, 8), edit.Perform(WM_CHAR, 'x');
             return edit.KeyPress(3) && Clipboard().AsText() == "qw" && !edit.KeyPress('x') &&
                    !edit.Undo();
         },
         "|qw|q", 0},
        {"hidden", edit,
         [&] { return edit.SetReadOnly(false), edit.SetVisible(false), !edit.KeyPress('x'); },
         "|qw|q", 0},
    };
    for (const auto& step : steps) {
        EXPECT_TRUE(step.Do()) << step.What;
        EXPECT_EQ(ShownText(step.Edit), step.Shown) << step.What;
        EXPECT_EQ(TakeChanges(), step.Changes) << step.What;
    }
}

TEST_F(EditMessages, MaxLength) {
    const struct {
        int MaxLength;
        std::string_view Text, Pasted, Shown;
        int Beeps;
    } cases[] = {
        {0, "abc", "def", "abcdef|", 0},
        {5, "abc", "de", "abcde|", 0},
        {5, "äöü", "€😀x", "äöü€😀|", 1},
        {3, "abcd", "e", "abcd|", 1},
        {5, "abc", "\r\nx", "abc/|", 1},
        {4, "abc", "\nx", "abc|", 1},
        {5, "\xFF\xC3", "\xE2\x82\xAC\xFF", "\xFF\xC3\xE2\x82\xAC\xFF|", 0},
    };
    for (const auto& c : cases) {
        TMemo& memo = Add<TMemo>();
        memo.SetMaxLength(c.MaxLength);
        memo.SetText(c.Text);
        memo.SetSelStart(99);
        Clipboard().SetAsText(c.Pasted);
        const int beeps = OS.Beeps();
        EXPECT_TRUE(memo.PasteFromClipboard());
        EXPECT_EQ(ShownText(memo), c.Shown);
        EXPECT_EQ(OS.Beeps() - beeps, c.Beeps);
    }
    TEdit& edit = Add<TEdit>(); // what is selected makes room
    edit.SetMaxLength(1);
    EXPECT_TRUE(edit.TypeText("ab") && (edit.SelectAll(), edit.KeyPress('c')));
    EXPECT_EQ(edit.Text(), "c");
}

TEST_F(EditMessages, WindowProcFilters) {
    auto edit = std::make_unique<TEdit>();
    edit->SetParent(&Form);
    std::string log;
    const TWndMethod own = edit->WindowProc();
    auto digits = [&](TMessage& message) {
        log += message.Msg == WM_CHAR ? 'c' : message.Msg == WM_PASTE ? 'p' : 'x';
        const bool digit = message.WParam >= '0' && message.WParam <= '9';
        if (message.Msg != WM_CHAR || message.WParam < 32 || digit) own(message);
    };
    edit->SetWindowProc(TWndMethod::Calling(digits));
    EXPECT_TRUE(edit->TypeText("1a2") && edit->KeyPress(8) && edit->KeyPress('b'));
    edit->SelectAll();
    EXPECT_TRUE(edit->CutToClipboard() && edit->PasteFromClipboard() && edit->KeyPress(22));
    OS.SendMessage(edit->Handle(), WM_CHAR, 'c', 0);
    EXPECT_EQ(edit->Text(), "11");
    EXPECT_EQ(log, "cccccxpcpc");
    edit->SetWindowProc({});
    EXPECT_TRUE(edit->TypeText("a"));
    EXPECT_EQ(edit->Text(), "11a");
    // One that frees the control ends the typing.
    auto ends = [&](TMessage&) { edit.reset(); };
    edit->SetWindowProc(TWndMethod::Calling(ends));
    EXPECT_TRUE(edit->TypeText("abc"));
    EXPECT_EQ(edit, nullptr);
}

// --- Hot keys, moments, colours, fonts --------------------------------------------------------

TEST_F(EditMessages, HotKeys) {
    const struct {
        TShortCut Key;
        bool Taken;
        TShortCut HotKey;
    } cases[] = {
        {scCtrl | 'A', true, scCtrl | 'A'},
        {'A', true, scCtrl | scAlt | 'A'},
        {scShift | 'A', true, scShift | scCtrl | scAlt | 'A'},
        {scShift | scAlt | 'A', true, scShift | scAlt | 'A'},
        {scShift | scCtrl | scAlt | 'A', true, scShift | scCtrl | scAlt | 'A'},
        {scCtrl, false, 'X'},
        {VK_DELETE, true, 0},
        {VK_BACK, true, 0},
        {scCtrl | VK_DELETE, true, scCtrl | VK_DELETE},
        {'X', true, scCtrl | scAlt | 'X'},
    };
    for (const auto& c : cases) {
        THotKeyEx& field = Add<THotKeyEx>();
        field.Modifiers = {hkCtrl, hkAlt, hkExt};
        field.SetHotKey('X');
        EXPECT_EQ(field.PressKey(c.Key), c.Taken);
        EXPECT_EQ(field.HotKey(), c.HotKey) << c.Key;
        EXPECT_EQ(TakeChanges(), c.Taken);
        field.InvalidKeys = {};
        EXPECT_TRUE(field.PressKey('A') && field.PressKey('A'));
        EXPECT_EQ(field.ShownText(), "A");
        EXPECT_EQ(TakeChanges(), 1);
        field.SetEnabled(false);
        EXPECT_FALSE(field.PressKey('B'));
    }
}

TEST_F(EditMessages, MomentsKeepTheOtherPart) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double Moment;
        std::string_view Date, Time; ///< as shown
        double DateChosen, TimeChosen;
    } cases[] = {
        {36526.25, "1/1/2000", "6:00:00 AM", 1.25, 36526.5},
        {36526 + 1 / 3e6, "1/1/2000", "12:00:00 AM", 1 + (36526 + 1 / 3e6 - 36526), 36526.5},
        {0, "12/30/1899", "12:00:00 AM", 1, 0.5},
        {-1.25, "12/29/1899", "6:00:00 AM", 1.25, -1.5},
        {-0.25, "12/30/1899", "6:00:00 AM", 1.25, 0.5},
        {nan, "", "", 1, 0.5},
        {-infinity, "", "", 1, 0.5},
        {1e300, "", "", 1, 0.5},
        {2958465.5, "12/31/9999", "12:00:00 PM", 1.5, 2958465.5},
    };
    for (const auto& c : cases) {
        TDateTimePicker& picker = Add<TDateTimePicker>();
        for (const TDateTimeKind kind : {dtkDate, dtkTime}) {
            const bool isDate = kind == dtkDate;
            picker.SetKind(kind);
            picker.SetDateTime(c.Moment);
            EXPECT_EQ(std::bit_cast<std::uint64_t>(picker.DateTime()),
                      std::bit_cast<std::uint64_t>(c.Moment));
            EXPECT_EQ(picker.ShownText(), isDate ? c.Date : c.Time);
            EXPECT_FALSE(picker.TypeText("x") || picker.TypeText("") ||
                         picker.ChooseDate(1900, 2, 30) || picker.ChooseTime(24, 0, 0));
            EXPECT_EQ(TakeChanges(), 0);
            EXPECT_EQ(picker.ChooseDate(1899, 12, 31), isDate);
            EXPECT_EQ(picker.ChooseTime(12, 0, 0), !isDate);
            const double chosen = isDate ? c.DateChosen : c.TimeChosen;
            EXPECT_EQ(picker.DateTime(), chosen) << c.Moment;
            EXPECT_TRUE(picker.TypeText(isDate ? "12/31/1899" : "12:00"));
            EXPECT_EQ(picker.DateTime(), chosen);
            EXPECT_EQ(TakeChanges(), chosen != c.Moment);
        }
        picker.SetEnabled(false);
        EXPECT_FALSE(picker.TypeText("1:00"));
    }
}

TEST_F(EditMessages, ColorsAndFonts) {
    TColorEdit& color = Add<TColorEdit>();
    EXPECT_EQ(color.Items().Count(), static_cast<int>(ColorNames().size()));
    const struct {
        std::string_view Text;
        bool Taken;
        std::string_view Shown;
    } colors[] = {
        {"clred", true, "clRed"},
        {" $FF ", true, "clRed"},
        {"clNone", true, "clNone"},
        {"red", false, "clNone"},
        {"", false, "clNone"},
        {"$80000007", true, "clMenuText"},
        {"$123456789", false, "clMenuText"},
        {"1193046", true, "$00123456"},
    };
    for (const auto& c : colors) {
        EXPECT_EQ(color.TypeText(c.Text), c.Taken) << c.Text;
        EXPECT_EQ(color.ShownText(), c.Shown);
    }
    EXPECT_EQ(TakeChanges(), 4);
    color.SetEnabled(false);
    EXPECT_FALSE(color.ChooseColor(clRed) || color.TypeText("clRed"));

    TFontEdit& edit = Add<TFontEdit>();
    TFont font;
    font.SetStyle({fsBold});
    font.SetHeight(-12);
    font.SetName("Arial");
    EXPECT_EQ(edit.ShownText(), "");
    edit.SetSelectedFont(font);
    EXPECT_TRUE(edit.ChooseFont(font) && edit.ChooseSize(9) && edit.ChooseName("Arial"));
    EXPECT_EQ(TakeChanges(), 0);
    EXPECT_TRUE(edit.ChooseName("Mono") && edit.ChooseSize(12) && !edit.ChooseSize(0));
    EXPECT_EQ(edit.ShownText(), "Mono, 12");
    EXPECT_EQ(edit.SelectedFont().Style(), TFontStyles{fsBold});
    EXPECT_TRUE(edit.ChooseName(""));
    EXPECT_EQ(edit.ShownText(), "12");
    EXPECT_EQ(TakeChanges(), 3);
    Scr.Fonts().Add("Mono");
    EXPECT_EQ(edit.Items().IndexOf("Mono"), Scr.Fonts().Count() - 1);
    edit.SetListInstalledFonts(false);
    EXPECT_EQ(edit.Items().Count(), 0);
    edit.SetVisible(false);
    EXPECT_FALSE(edit.ChooseFont(font) || edit.ChooseName("x") || edit.ChooseSize(1));
}

} // namespace
} // namespace tarn
