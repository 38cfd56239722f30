// What the panes of a CPU window give as text, and the window that shows it.

#include "ErrorOf.h"
#include "Package.h"
#include "TPackHarness.h"
#include "TStubCpuWindow.h"
#include "cpuview/TCPUForm.h"
#include "vcl/TLabel.h"

#include <limits>

namespace tarn {
namespace {

constexpr std::int32_t Code = 0x401000, Data = 0x402000, Top = 0x12FF7C;

/// A stopped program, and the pack beside it.
class TCpuCapture : public testing::Test {
protected:
    TCpuCapture() {
        TStubCpuWindow& window = *Window;
        window.Disassembly->Code = {
            {0, {1, "first", "", ""}},
            {0x401000, {1, "push ebp", "Sum", "Orchard.dpr.21: begin"}},
            {0x401001, {1, "nop", "", ""}},
            {0x401002, {1, "nop", "", ""}},
            {0x401003, {10, "ten bytes", "", "Orchard.dpr.22: end;"}},
            {0x40100D, {11, "eleven bytes", "", ""}},
            {0x401018, {1, "too far", "", ""}},
            {0xFFFFFFFF, {1, "last", "", ""}},
        };
        std::uint32_t at = Data;
        for (const char* byte : {"41", "0A", "1f", "20", "7E", "7F", "80", "FF", "??"})
            window.Dump->Cells[at++] = byte;
        window.Stack->Cells = {{Top, "00402000"}, {Top - 4, "4A756C79"}, {0, "????41??"}};
        window.Stack->Empty = "0000000A";
        window.Disassembly->Place = Code;
        window.Dump->Place = Data;
        window.Stack->Place = Top;
    }
    std::vector<TStubPane*> Panes() const {
        return {Window->Disassembly, Window->Dump, Window->Stack};
    }
    /// No pane is left as it should not be.
    void ExpectRestored(const std::vector<std::int32_t>& places) const {
        std::vector<std::int32_t> found;
        for (const TStubPane* pane : Panes()) {
            found.push_back(pane->Place);
            EXPECT_TRUE(pane->Painting) << pane->Name();
            EXPECT_FALSE(pane->SeenPainting) << pane->Name();
        }
        EXPECT_EQ(found, places);
    }
    static std::string Capture(TCPUViewType type, int count) {
        TStringList lines;
        GetViewText(lines, type, count);
        return lines.GetTextStr();
    }

    /// The message of a capture that fails as captures do.
    static std::string CaptureError(TStrings& lines, TCPUViewType type, int count) {
        const std::string error = ErrorOf([&] { GetViewText(lines, type, count); });
        constexpr std::string_view prefix = "EDataHandlingError: ";
        return error.starts_with(prefix) ? error.substr(prefix.size()) : "not so: " + error;
    }
    static std::string CaptureError(TCPUViewType type, int count) {
        TStringList lines;
        return CaptureError(lines, type, count);
    }

    TSmallIDE Ide;
    std::unique_ptr<TStubCpuWindow> Window = std::make_unique<TStubCpuWindow>();
};

TEST_F(TCpuCapture, EachPane) {
    const struct {
        TCPUViewType Type;
        std::int32_t Place;
        int Count;
        std::string Expected;
    } cases[] = {
        // One line of the disassembly has all that stands at its address; equal neighbours are one;
        // a text is found at the tenth step and not at the eleventh.
        {qsDisasmView, Code, 1, "Sum\r\nOrchard.dpr.21: begin\r\npush ebp\r\n"},
        {qsDisasmView, Code, 9,
         "Sum\r\nOrchard.dpr.21: begin\r\npush ebp\r\nnop\r\nOrchard.dpr.22: end;\r\nten bytes\r\n"
         "eleven bytes\r\n"},
        {qsDisasmView, Code + 3, 1, "Orchard.dpr.22: end;\r\nten bytes\r\n"},
        // The first line is looked for like any other when nothing stands there.
        {qsDisasmView, Code - 10, 2, "Sum\r\nOrchard.dpr.21: begin\r\npush ebp\r\nnop\r\n"},
        {qsDisasmView, Code - 11, 2, ""},
        {qsDisasmView, -1, 2, "last\r\nfirst\r\n"},
        {qsDisasmView, -1, 3, "last\r\nfirst\r\n\r\n"}, // the empty text differs as well
        {qsDumpView, Data, 2,
         "00402000  41 0A 1f 20 7E 7F 80 FF  A.. ~\x7F\xC2\x80\xC3\xBF\r\n"
         "00402008  ?? 00 00 00 00 00 00 00  ........\r\n"},
        {qsDumpView, -4, 2,
         "FFFFFFFC  00 00 00 00 00 00 00 00  ........\r\n"
         "00000004  00 00 00 00 00 00 00 00  ........\r\n"},
        {qsStackView, Top, 3,
         "0012FF7C  00402000  .@ .\r\n"
         "0012FF78  4A756C79  July\r\n"
         "0012FF74  0000000A  ....\r\n"},
        {qsStackView, 0, 2, "00000000  ????41??  ..A.\r\nFFFFFFFC  0000000A  ....\r\n"},
        {qsDisasmView, Code, 0, ""},
        {qsDumpView, Data, -1, ""},
        {qsStackView, Top, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(Format("pane %d at %x, %d", {int{c.Type}, c.Place, c.Count}));
        TStubPane& pane =
            *static_cast<TStubPane*>(Window->FindComponent(CPUPanes()[c.Type].ComponentName));
        const std::int32_t before = std::exchange(pane.Place, c.Place);
        pane.Suspended = 0;
        EXPECT_EQ(Capture(c.Type, c.Count), c.Expected);
        EXPECT_EQ(pane.Place, c.Place);
        EXPECT_EQ(pane.Suspended, 1);
        pane.Place = before;
    }
    ExpectRestored({Code, Data, Top});

    TStringList lines; // a count with which the memory would be full before the pane is read
    GetViewText(lines, qsStackView, std::numeric_limits<int>::max());
    EXPECT_EQ(lines.Count(), MostPaneLines);
}

TEST_F(TCpuCapture, AllPanesKeepTheHeadingsOfThoseThatAreMissing) {
    Window->SetName("disassemblyVIEW"); // names of components have no case
    EXPECT_EQ(Capture(qsAllViews, 1),
              "[Assembler code]\r\nSum\r\nOrchard.dpr.21: begin\r\npush ebp\r\n\r\n"
              "[Processor’s registers]\r\n\r\n"
              "[Processor’s flags]\r\n\r\n"
              "[Memory dump]\r\n00402000  41 0A 1f 20 7E 7F 80 FF  A.. ~\x7F\xC2\x80\xC3\xBF\r\n"
              "\r\n"
              "[Program stack]\r\n0012FF7C  00402000  .@ .\r\n\r\n");
    EXPECT_EQ(Capture(qsFlagsView, 1), "");
    Window->Hide();
    EXPECT_EQ(Capture(qsAllViews, 1), "");
}

/// A pane whose properties have the right names and wrong kinds.
class TWrongPane : public TStubPane {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    using TStubPane::TStubPane;
    std::string Words() const { return "words"; }
};
constexpr TPropInfo WrongProps[] = {Published<&TWrongPane::Words>("SelectedOffset")};
constinit const TClassRecord TWrongPane::ClassRecord{"TWrongPane", &TControl::ClassRecord, nullptr,
                                                     WrongProps};

TEST_F(TCpuCapture, FailuresNameThePaneAndLeaveItAsItWas) {
    TStubCpuWindow& window = *Window;
    const struct {
        TCPUViewType Type;
        std::function<void()> Arrange;
        std::string_view Error;
        int LinesKept;
    } cases[] = {
        {qsDumpView, [&] { window.Dump->Cells[Data + 9] = "4"; },
         "DumpView.SelectedData: '4' is not 2 hexadecimal digits", 1},
        {qsDumpView, [&] { window.Dump->Cells[Data + 9] = "+4"; },
         "DumpView.SelectedData: '+4' is not 2 hexadecimal digits", 1},
        {qsStackView, [&] { window.Stack->Cells[Top - 4] = "00402000 "; },
         "StackView.SelectedData: '00402000 ' is not 8 hexadecimal digits", 1},
        {qsStackView, [&] { window.Stack->Cells[Top] = "004G2000"; },
         "StackView.SelectedData: '004G2000' is not 8 hexadecimal digits", 0},
        // The pane refuses a place; it takes the one that it had.
        {qsDisasmView,
         [&] {
             window.Disassembly->OnMove = [&] {
                 if (window.Disassembly->Place > Code + 2) throw Exception("the memory ends");
             };
         },
         "DisassemblerView1.SelectedAddress: the memory ends", 4},
        // Of all panes, those before the one that fails are there.
        {qsAllViews, [&] { window.Dump->Cells[Data + 8] = "words"; },
         "DumpView.SelectedData: 'words' is not 2 hexadecimal digits", 15},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Error);
        const auto dump = window.Dump->Cells;
        const auto stack = window.Stack->Cells;
        c.Arrange();
        TStringList lines;
        EXPECT_EQ(CaptureError(lines, c.Type, 9), c.Error);
        EXPECT_EQ(lines.Count(), c.LinesKept);
        ExpectRestored({Code, Data, Top});
        window.Dump->Cells = dump;
        window.Stack->Cells = stack;
        window.Disassembly->OnMove = nullptr;
    }
    delete window.Dump;
    TWrongPane wrong(window, "DumpView");
    EXPECT_EQ(CaptureError(qsDumpView, 1),
              "DumpView.SelectedOffset: 'words' is not a valid integer value");
    delete window.Stack;
    TStubPane bare(window, "StackView");
    EXPECT_EQ(CaptureError(qsStackView, 1),
              "StackView.SelectedOffset: Property by name ''SelectedOffset'' does not exist.");
    EXPECT_TRUE(wrong.Painting && bare.Painting);
}

TEST_F(TCpuCapture, WindowClosedMeanwhile) {
    for (const TCPUViewType type : {qsDisasmView, qsDumpView, qsStackView, qsAllViews}) {
        Window = std::make_unique<TStubCpuWindow>();
        for (TStubPane* pane : Panes()) pane->OnMove = [&] { Window.reset(); };
        Window->Disassembly->Code = {{0, {1, "one", "", ""}}, {1, {1, "two", "", ""}}};
        Window->Stack->Empty = "00000000";
        EXPECT_EQ(CaptureError(type, 2),
                  type == qsStackView  ? "StackView.SelectedData: the window is closed"
                  : type == qsDumpView ? "DumpView.SelectedData: the window is closed"
                                       : "DisassemblerView1.SelectedLabel: the window is closed");
    }
    // By a pane that is put back: the others are as good as missing.
    Window = std::make_unique<TStubCpuWindow>();
    Window->Disassembly->OnMove = [&] {
        if (Window->Disassembly->Place == 0) Window.reset();
    };
    EXPECT_EQ(Capture(qsAllViews, 1),
              "[Assembler code]\r\n\r\n[Processor’s registers]\r\n\r\n[Processor’s flags]\r\n\r\n"
              "[Memory dump]\r\n\r\n[Program stack]\r\n\r\n");
}

// --- The window -------------------------------------------------------------------------------

class TCpuForm : public TCpuCapture {
protected:
    TCpuForm() {
        InitializePackage();
        Register();
        Ide.App->ProcessMessages();
        for (int i = 0; i < ExpData().CustomData.Count(); ++i)
            if (auto* const found =
                    ClassCast<TCPUFormMng>(ExpData().CustomData.Get(i)->NestedObject()))
                Manager = found;
        Manager->ShowCPU(nullptr);
        Form = Manager->Form();
    }
    ~TCpuForm() override {
        Ide.Stop();
        FinalizePackage();
    }
    /// The items of a menu with their marks, as it is shown.
    static std::string MenuText(TPopupMenu& menu) {
        menu.Popup(nullptr);
        std::string text;
        for (int i = 0; i < menu.Items()->Count(); ++i) {
            const TMenuItem& item = *menu.Items()->Items(i);
            text += (item.Checked() ? "*" : "") + item.Caption() + (item.RadioItem() ? ";" : "|");
        }
        return text;
    }
    static void Choose(TPopupMenu& menu, std::string_view caption) {
        menu.Items()->Find(caption)->Click();
    }
    std::string MemoText() const { return Form->Memo().Text(); }

    TCPUFormMng* Manager = nullptr;
    TCPUForm* Form = nullptr;
};

TEST_F(TCpuForm, IsAsItShouldBe) {
    EXPECT_EQ(Form->Caption(), "View CPU");
    EXPECT_TRUE(ExpData().LocalNames.find(
                    "[TCPUFormMng]\r\nReadLineCount=Lines count##grabbed from CPU debug window\r\n"
                    "ViewObject=Last selected##data type\r\n[TCPUViewType]\r\n"
                    "qsDisasmView=Assembler code\r\nqsRegView=Processor registry\r\n"
                    "qsFlagsView=Processor flags\r\nqsDumpView=Memory dump\r\n"
                    "qsStackView=Program stack\r\nqsAllViews=All types\r\n") != std::string::npos);
    EXPECT_EQ(Form->FormStyle(), fsStayOnTop);
    TMemo& memo = Form->Memo();
    EXPECT_EQ(memo.Font().Pitch(), fpFixed);
    EXPECT_FALSE(memo.WordWrap());
    EXPECT_EQ(memo.ScrollBars(), ssVertical);
    std::string hints;
    for (const std::string_view button : {"tbExit", "tbGetData", "tbStrCount"})
        hints += ClassCast<TToolButton>(Form->FindComponent(button))->Hint() + ";";
    EXPECT_EQ(hints, "Exit;Get data from CPU window;Lines to read;");
    Form->SetBoundsRect({5, 6, 0, -1});
    EXPECT_EQ(Form->BoundsRect(), (TRect{5, 6, 437, 175}));
    EXPECT_EQ(memo.BoundsRect(), (TRect{0, 22, 437, 153}));
    // Shown again, it stays where the user has put it, but for the icons.
    Manager->FormSetting()->FormPlacement = "0,1,-1,-1,-1,-1,10,20,910,420";
    Form->SetWindowState(wsMinimized);
    Manager->ShowCPU(nullptr);
    EXPECT_EQ(Form->WindowState(), wsNormal);
    EXPECT_EQ(Form->Left(), 5);
    EXPECT_TRUE(Form->IsShortCut(VK_ESCAPE));
    EXPECT_FALSE(Form->Visible());
    Manager->ShowCPU(nullptr);
    EXPECT_EQ(Form->BoundsRect(), (TRect{10, 20, 900, 400}));
}

TEST_F(TCpuForm, MenusHoldTheSettings) {
    EXPECT_EQ(MenuText(Form->ObjectMenu()),
              "*Assembler code;Processor’s registers;Processor’s flags;Memory dump;Program stack;-|"
              "All types;");
    Choose(Form->ObjectMenu(), "All types");
    EXPECT_EQ(Manager->ViewObject, qsAllViews);
    Manager->ViewObject = qsDumpView; // by the settings editor
    EXPECT_EQ(MenuText(Form->ObjectMenu()),
              "Assembler code;Processor’s registers;Processor’s flags;*Memory dump;Program stack;-|"
              "All types;");
    const std::string_view counts[] = {"10", "20", "30", "40", "50"};
    const auto countMenu = [&](std::string_view marked) {
        std::string text;
        for (const std::string_view count : counts)
            text.append(count == marked ? "*" : "").append(count).append(" strings;");
        return text + "-|" + (marked == "custom" ? "*" : "") + "Custom...;";
    };
    EXPECT_EQ(MenuText(Form->StrCountMenu()), countMenu("10"));
    Choose(Form->StrCountMenu(), "30 strings");
    EXPECT_EQ(Manager->ReadLineCount, 30);
    EXPECT_EQ(MenuText(Form->StrCountMenu()), countMenu("30"));
    const struct {
        int Stored;
        std::string_view Marked;
    } cases[] = {{50, "50"}, {0, "custom"}, {-10, "custom"}, {11, "custom"}};
    for (const auto& c : cases) {
        Manager->ReadLineCount = c.Stored;
        EXPECT_EQ(MenuText(Form->StrCountMenu()), countMenu(c.Marked)) << c.Stored;
    }
}

TEST_F(TCpuForm, CustomCounts) {
    const struct {
        std::string_view Typed;
        TShortCut Key;
        int Expected;
        std::string_view Marked;
    } cases[] = {
        {"35", VK_RETURN, 35, "Custom..."},
        {"7", VK_ESCAPE, 35, "Custom..."},
        {"1", VK_RETURN, 1, "Custom..."},
        {"0", VK_RETURN, 10, "10 strings"},
        {"12", VK_RETURN, 12, "Custom..."},
        {"-4", VK_RETURN, 10, "10 strings"},
        {"20", VK_RETURN, 20, "20 strings"},
        {"words", VK_RETURN, 10, "10 strings"},
        {"99999999999", VK_RETURN, 10, "10 strings"},
    };
    std::string preset;
    std::size_t row = 0;
    const auto answer = [&](TForm& dialog) {
        auto& edit = static_cast<TStrCountForm&>(dialog).CountEdit();
        const auto* const label = ClassCast<TLabel>(dialog.FindComponent("CountLabel"));
        preset = dialog.Caption() + ", " + label->Caption() + IntToStr(edit.Value());
        edit.TypeText(cases[row].Typed); // over what is selected
        EXPECT_TRUE(dialog.IsShortCut(cases[row].Key));
    };
    Ide.App->OnModal = TMethod<void(TForm&)>::Calling(answer);
    for (; row < std::size(cases); ++row) {
        SCOPED_TRACE(cases[row].Typed);
        const int before = Manager->ReadLineCount;
        Choose(Form->StrCountMenu(), "Custom...");
        EXPECT_EQ(preset, "Parameters, String count:" + IntToStr(before));
        EXPECT_EQ(Manager->ReadLineCount, cases[row].Expected);
        EXPECT_EQ(Form->StrCountMenu().Items()->Items(6)->Tag, row == 1 ? 35 : cases[row].Expected);
        EXPECT_TRUE(Form->StrCountMenu().Items()->Find(cases[row].Marked)->Checked());
        EXPECT_EQ(Ide.Scr->ActiveForm(), Form);
    }
    // The pack is unloaded while the dialog stands.
    const auto unload = [&](TForm& dialog) {
        Ide.Stop();
        dialog.ModalResult = mrOk;
    };
    Ide.App->OnModal = TMethod<void(TForm&)>::Calling(unload);
    Choose(Form->StrCountMenu(), "Custom...");
}

TEST_F(TCpuForm, CaptureReplacesTheText) {
    TAction& getData = *ClassCast<TAction>(Form->FindComponent("acGetData"));
    Manager->ReadLineCount = 1;
    EXPECT_TRUE(getData.Execute());
    EXPECT_EQ(MemoText(), "Sum\r\nOrchard.dpr.21: begin\r\npush ebp\r\n");
    Choose(Form->ObjectMenu(), "Program stack");
    getData.Execute();
    EXPECT_EQ(MemoText(), "0012FF7C  00402000  .@ .\r\n");
    // One that fails leaves it.
    Manager->ReadLineCount = 3;
    Window->Stack->Cells[Top - 4] = "?";
    EXPECT_EQ(ErrorOf([&] { getData.Execute(); }),
              "EDataHandlingError: StackView.SelectedData: '?' is not 8 hexadecimal digits");
    EXPECT_EQ(MemoText(), "0012FF7C  00402000  .@ .\r\n");
    Window->Hide();
    getData.Execute();
    EXPECT_EQ(MemoText(), "");
    TMenuItem item;
    Manager->UpdateMenuState(&item);
    EXPECT_FALSE(item.Enabled());
    Window->Show();
    Manager->UpdateMenuState(&item);
    EXPECT_TRUE(item.Enabled());
    // The pack is unloaded by a pane.
    Window->Stack->Cells.clear();
    Window->Stack->OnMove = [&] { Ide.Stop(); };
    getData.Execute();
    EXPECT_EQ(TExpManager::Instance(), nullptr);
}

} // namespace
} // namespace tarn
