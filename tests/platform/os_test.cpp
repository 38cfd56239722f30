#include "os/portable/TPortableOS.h"
#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <sstream>

namespace tarn {
namespace {

/// A window that writes down its messages and may do something in its procedure.
struct TWindow {
    TWindow(TPortableOS& os, std::string& log, char name)
        : Handle(os.AllocateHWnd(TWndMethod::Of<&TWindow::Procedure>(this))), Log(log), Name(name) {
    }
    void Procedure(TMessage& message) {
        Log += Name + std::to_string(message.Msg) + " ";
        message.Result = message.WParam - message.LParam;
        if (Then) Then();
    }
    HWND Handle;
    std::string& Log;
    char Name;
    std::function<void()> Then;
};

TEST(PortableOS, DeliversInPostingOrder) {
    TPortableOS os;
    std::string log;
    TWindow a(os, log, 'a'), b(os, log, 'b');
    EXPECT_NE(a.Handle, b.Handle);
    EXPECT_FALSE(os.DispatchMessage());
    a.Then = [&] {
        if (log == "b9 a1 ") os.PostMessage(b.Handle, 4, 0, 0); // behind those that wait
    };
    EXPECT_TRUE(os.PostMessage(a.Handle, 1, 0, 0));
    EXPECT_TRUE(os.PostMessage(b.Handle, 2, 0, 0));
    EXPECT_TRUE(os.PostMessage(a.Handle, 3, 0, 0));
    EXPECT_EQ(os.SendMessage(b.Handle, 9, 50, 8), 42); // at once
    EXPECT_EQ(os.PendingMessages(), 3u);
    while (os.DispatchMessage()) {
    }
    EXPECT_EQ(log, "b9 a1 b2 a3 b4 ");
}

TEST(PortableOS, DropsMessagesOfWindowsThatAreGone) {
    TPortableOS os;
    std::string log;
    TWindow a(os, log, 'a'), b(os, log, 'b');
    for (const HWND window : {a.Handle, b.Handle, a.Handle}) os.PostMessage(window, 1, 0, 0);
    os.DeallocateHWnd(a.Handle);
    os.DeallocateHWnd(a.Handle);
    EXPECT_EQ(os.PendingMessages(), 1u);
    EXPECT_EQ(os.WindowCount(), 1u);
    EXPECT_FALSE(os.PostMessage(a.Handle, 2, 0, 0));
    EXPECT_FALSE(os.PostMessage(0, 2, 0, 0));
    EXPECT_EQ(os.SendMessage(a.Handle, 2, 5, 0), 0);

    // A window may go while it handles a message, with messages of its own still waiting.
    b.Then = [&] { os.DeallocateHWnd(b.Handle); };
    os.PostMessage(b.Handle, 2, 0, 0);
    while (os.DispatchMessage()) {
    }
    EXPECT_EQ(log, "b1 ");
    EXPECT_EQ(os.WindowCount(), 0u);
    TWindow c(os, log, 'c');
    EXPECT_NE(c.Handle, b.Handle); // handles are not used again
}

TEST(PortableOS, AMessageThatFailsIsGone) {
    TPortableOS os;
    std::string log;
    TWindow a(os, log, 'a');
    a.Then = [] { throw EInvalidOperation("refused"); };
    os.PostMessage(a.Handle, 1, 0, 0);
    EXPECT_THROW(os.DispatchMessage(), EInvalidOperation);
    EXPECT_FALSE(os.DispatchMessage());
}

TEST(PortableOS, AnswersDialogsCautiously) {
    TPortableOS os;
    const struct {
        std::uint32_t Flags;
        std::optional<TDialogAnswer> Queued;
        TDialogAnswer Expected;
    } cases[] = {
        {MB_OK | MB_ICONERROR, {}, IDOK},
        {MB_YESNO | MB_ICONQUESTION, {}, IDNO},
        {MB_YESNOCANCEL | MB_ICONWARNING, {}, IDCANCEL},
        {MB_YESNOCANCEL, IDYES, IDYES},
        {MB_YESNO, IDYES, IDYES},
        {MB_YESNO, {}, IDNO},
    };
    for (const auto& c : cases) {
        if (c.Queued) os.QueueAnswer(*c.Queued);
        EXPECT_EQ(os.MessageBox(0, "text", "caption", c.Flags), c.Expected);
        const auto& shown = os.Dialogs().back();
        EXPECT_EQ(shown.Caption + "/" + shown.Text, "caption/text");
        EXPECT_EQ(shown.Flags, c.Flags);
        EXPECT_EQ(shown.Answer, c.Expected);
    }
    os.QueueAnswer(IDYES);
    os.QueueAnswer(IDNO);
    EXPECT_EQ(os.MessageBox(0, "", "", MB_YESNO), IDYES);
    EXPECT_EQ(os.MessageBox(0, "", "", MB_YESNO), IDNO);
    EXPECT_EQ(os.Dialogs().size(), std::size(cases) + 2);
}

/// A console that writes down what it shows.
struct TTestConsole {
    TTestConsole(const std::string& input, bool terminal) : In(input), Dialogs(In, Out, terminal) {
        OS.SetConsole(&Dialogs);
    }
    std::istringstream In;
    std::ostringstream Out;
    TConsoleDialogs Dialogs;
    TPortableOS OS;
};

TEST(PortableOS, AnswersDialogsOnTheConsole) {
    const std::string ask = "Cap: question: Text\n[y]es / [n]o / [c]ancel: ";
    const std::string again = "[y]es / [n]o / [c]ancel: ";
    const struct {
        std::uint32_t Flags;
        std::string Input;
        TDialogAnswer Answer;
        std::string Shown;
        std::string Caption = "Cap", Text = "Text";
        bool Terminal = true;
    } cases[] = {
        {MB_YESNOCANCEL | MB_ICONQUESTION, "y\n", IDYES, ask},
        {MB_YESNOCANCEL | MB_ICONQUESTION, " NO\r\ny\n", IDNO, ask},
        {MB_YESNOCANCEL | MB_ICONQUESTION, "Cancel", IDCANCEL, ask}, // no line end
        {MB_YESNOCANCEL | MB_ICONQUESTION, "  \ny\n", IDCANCEL, ask + "cancel\n"},
        {MB_YESNOCANCEL | MB_ICONQUESTION, "ye\nok\nN\n", IDNO, ask + again + again},
        {MB_YESNOCANCEL | MB_ICONQUESTION, "?\n", IDCANCEL, ask + again + "cancel\n"},
        {MB_YESNO | MB_ICONWARNING, "c\n", IDNO,
         "Cap: warning: Text\n[y]es / [n]o: [y]es / [n]o: no\n"},
        {MB_YESNO, "", IDNO, "Text\n[y]es / [n]o: no\n", ""},
        {MB_YESNOCANCEL | MB_ICONQUESTION, "y\n", IDCANCEL, ask + "cancel\n", "Cap", "Text", false},
        {MB_YESNO, "y\n", IDNO, "Cap: Text\n[y]es / [n]o: no\n", "Cap", "Text", false},
        {MB_OK | MB_ICONERROR, "y\n", IDOK, "Cap: error: Text\n", "Cap", "Text", false},
        {MB_OK | MB_ICONINFORMATION, "", IDOK, "a?b: information: 1\n\t2?[0m?2\xC3\x9C?\n", "a\ab",
         "1\r\n\t2\x1B[0m\xC2\x9B"
         "2\xC3\x9C\x7F"},
    };
    for (const auto& c : cases) {
        TTestConsole console(c.Input, c.Terminal);
        console.OS.QueueAnswer(IDOK); // a queued answer goes first, and shows nothing
        EXPECT_EQ(console.OS.MessageBox(0, "queued", "", c.Flags), IDOK);
        EXPECT_EQ(console.OS.MessageBox(0, c.Text, c.Caption, c.Flags), c.Answer) << c.Shown;
        EXPECT_EQ(console.Out.str(), c.Shown);
        ASSERT_EQ(console.OS.Dialogs().size(), 2u);
        EXPECT_FALSE(console.OS.Dialogs()[0].OnConsole);
        const auto& shown = console.OS.Dialogs()[1];
        EXPECT_EQ(shown.Caption + "/" + shown.Text, c.Caption + "/" + c.Text);
        EXPECT_EQ(shown.Answer, c.Answer);
        EXPECT_TRUE(shown.OnConsole);
    }
}

TEST(PortableOS, ChoosesFoldersOnTheConsole) {
    namespace fs = std::filesystem;
    const std::string here = fs::current_path().string();
    const std::string ask = "Title (an empty line cancels): ";
    const std::string askFrom = "Title, from /usr (an empty line cancels): ";
    const struct {
        std::string Input, Folder, Shown;
        std::optional<std::string> Chosen;
        bool Terminal = true;
    } cases[] = {
        {"/usr/../usr/bin\n", "", ask, "/usr/bin"},
        {" . \n", "", ask, here + "/"},
        {"bin\n", "/usr", askFrom, "/usr/bin"},
        {"/\n", "/usr", askFrom, "/"},
        {"/nowhere\n\n", "", ask + "/nowhere is no folder\n" + ask + "cancelled\n", {}},
        {"", "", ask + "cancelled\n", {}},
        {"/usr\n", "", ask + "cancelled\n", {}, false},
    };
    for (const auto& c : cases) {
        TTestConsole console(c.Input, c.Terminal);
        EXPECT_EQ(console.OS.SelectDirectory("Title", c.Folder), c.Chosen) << c.Input;
        EXPECT_EQ(console.Out.str(), c.Shown);
        const auto& shown = console.OS.Dialogs().back();
        EXPECT_EQ(shown.Caption + "/" + shown.Text, "Title/" + c.Chosen.value_or(""));
        EXPECT_EQ(shown.Answer, c.Chosen ? IDOK : IDCANCEL);
        console.OS.QueueFolder("queued");
        EXPECT_EQ(console.OS.SelectDirectory("Title", ""), "queued");
        EXPECT_EQ(console.Out.str(), c.Shown);
    }
    EXPECT_EQ(TPortableOS().SelectDirectory("Title", "/usr"), std::nullopt);
}

TEST(PortableOS, LayoutsBeepsAndModule) {
    TPortableOS os;
    EXPECT_EQ(os.GetKeyboardLayout(), LayoutUSEnglish);
    os.ActivateKeyboardLayout(0x04190419); // the language is in the low half
    EXPECT_EQ(os.GetKeyboardLayout(), 0x04190419u);
    EXPECT_EQ(os.KeyName(0xBC), "\u0411");
    os.ActivateKeyboardLayout(LayoutUSEnglish);
    EXPECT_EQ(os.KeyName(0xBC), ",");
    EXPECT_EQ(os.KeyName('A'), "");
    EXPECT_EQ(os.LayoutsActivated(), (std::vector<HKL>{0x04190419, LayoutUSEnglish}));
    os.MessageBeep();
    os.MessageBeep();
    EXPECT_EQ(os.Beeps(), 2);
    EXPECT_EQ(ExtractFileName(os.GetModuleFileName()).substr(0, 4), "test");
    os.SetModuleFileName("C:\\pack\\pack.dll");
    EXPECT_EQ(os.GetModuleFileName(), "C:\\pack\\pack.dll");
}

TEST(OperatingSystem, OneIsInstalled) {
    TOperatingSystem* const before = InstallOS(nullptr);
    EXPECT_FALSE(HasOS());
    EXPECT_THROW(OS(), EInvalidOperation);
    TPortableOS first, second;
    EXPECT_EQ(InstallOS(&first), nullptr);
    EXPECT_EQ(&OS(), &first);
    {
        std::string log;
        const TMessageWindow window({});
        EXPECT_EQ(first.WindowCount(), 1u);
        InstallOS(nullptr); // the window outlives its system
    }
    EXPECT_EQ(InstallOS(&first), nullptr);
    { const TMessageWindow window({}); }
    EXPECT_EQ(first.WindowCount(), 1u);
    EXPECT_EQ(InstallOS(&second), &first);
    InstallOS(before);
}

} // namespace
} // namespace tarn
