#include "TScript.h"

#include "Controls.h"
#include "Cpu.h"
#include "Diff.h"
#include "Places.h"
#include "Settings.h"
#include "SettingsForm.h"
#include "TTrialExpert.h"
#include "qsAppUtils.h"
#include "vcl/Clipbrd.h"
#include "vcl/TButton.h"
#include "vcl/TMemo.h"
#include "vcl/TStringGrid.h"
#include "vcl/TToolBar.h"

#include <algorithm>
#include <fstream>
#include <initializer_list>
#include <iterator>

namespace tarn {
namespace fs = std::filesystem;

namespace {

using TArgs = std::vector<std::string>;

[[noreturn]] void Refuse(const std::string& text) {
    throw EScriptError(ExitRefused, text);
}
[[noreturn]] void Misuse(const std::string& text) {
    throw EScriptError(ExitUsage, text);
}

/// The menu item of that name, see TSession::FindMenuItem.
TMenuItem& ItemOf(TSession& session, const std::string& name) {
    TMenuItem* const item = session.FindMenuItem(name);
    if (!item) Misuse("there is no menu item '" + name + "'");
    return *item;
}

/// Raises when one of the words behind the first `from` is none of those known.
void CheckWords(const TArgs& args, std::size_t from,
                std::initializer_list<std::string_view> known) {
    for (std::size_t i = from; i < args.size(); ++i) {
        const auto same = [&](std::string_view word) { return SameText(args[i], word); };
        if (std::any_of(known.begin(), known.end(), same)) continue;
        std::string names;
        for (const std::string_view word : known)
            names.append(names.empty() ? "" : ", ").append(word);
        Misuse("unknown word '" + args[i] + "'; there are " + names);
    }
}

bool HasWord(const TArgs& args, std::size_t from, std::string_view word) {
    for (std::size_t i = from; i < args.size(); ++i)
        if (SameText(args[i], word)) return true;
    return false;
}

/// A line as it is, with control characters but the tab as \xHH.
std::string Shown(std::string_view line) {
    std::string text;
    for (const char c : line) {
        if (static_cast<unsigned char>(c) < 32 && c != '\t')
            text += Escaped({&c, 1});
        else
            text += c;
    }
    return text;
}

std::string ReadAll(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw EScriptError(ExitIO, "cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string PlaceText(TTextPos place) {
    return Format("%d:%d", {place.Row, place.Col});
}

std::string Lines(std::string_view text) {
    return std::string(text) + "\n";
}

std::string OrNone(std::string text) {
    // Names are joined by CR LF; shown on one line.
    for (std::size_t at; (at = text.find("\r\n")) != std::string::npos;) text.replace(at, 2, ", ");
    return text.empty() ? "-" : text;
}

/// An error log with LF for its line ends and without the times, which differ from run to run: each
/// entry begins with an empty line and "[ time ]".
std::string WithoutTimes(std::string_view log) {
    TStringList lines;
    lines.SetTextStr(log);
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) {
        const std::string& line = lines[i];
        const bool isTime =
            i > 0 && lines[i - 1].empty() && line.starts_with("[ ") && line.ends_with(" ]");
        text += isTime ? "[ time ]\n" : Lines(line);
    }
    return text;
}

constexpr std::string_view RegistryKey = "\\Software\\TarnExperts";

/// The first component of that class in the active form.
/// \param what what it is called when there is none
template <class T> T& ActiveComponent(std::string_view what) {
    if (const TForm* const form = Screen()->ActiveForm())
        for (int i = 0; i < form->ComponentCount(); ++i)
            if (auto* const component = ClassCast<T>(form->Components(i))) return *component;
    Refuse(Format("the active form has no %s", {what}));
}

TStringGrid& ActiveGrid() {
    return ActiveComponent<TStringGrid>("grid");
}

/// The tool bar of the active form, its buttons brought up to date as while the IDE is idle.
TToolBar& ActiveToolBar() {
    auto& bar = ActiveComponent<TToolBar>("tool bar");
    Screen()->ActiveForm()->UpdateActions();
    return bar;
}

TToolButton& ButtonOf(const TToolBar& bar, std::string_view name) {
    for (int i = 0; i < bar.ButtonCount(); ++i) {
        TToolButton& button = *bar.Buttons(i);
        if (SameText(button.Name(), name) || AnsiSameText(StripHotkey(button.Caption()), name))
            return button;
    }
    Misuse("the tool bar has no button '" + std::string(name) + "'");
}

/// Clicks a push button of the active form, or one of its tool bar; false when it is disabled.
bool ClickButton(std::string_view name) {
    const TForm* const form = Screen()->ActiveForm();
    for (int i = 0; form && i < form->ComponentCount(); ++i) {
        auto* const push = ClassCast<TButton>(form->Components(i));
        if (push &&
            (SameText(push->Name(), name) || AnsiSameText(StripHotkey(push->Caption()), name)))
            return push->Click();
    }
    TToolButton& button = ButtonOf(ActiveToolBar(), name);
    if (button.IsSeparator() || !button.Enabled() || !button.Visible()) return false;
    button.Click();
    return true;
}

std::string ButtonText(const TToolButton& button) {
    if (button.IsSeparator()) return "-";
    std::string text = button.Caption() + " (" + button.Name() + ")";
    const TAction* const action = button.Action();
    if (action && action->ShortCut() != 0) text += " [" + ShortCutToText(action->ShortCut()) + "]";
    if (button.Style() == tbsDropDown) text += " menu";
    if (button.Down()) text += " down";
    if (!button.Enabled()) text += " disabled";
    if (!button.Visible()) text += " hidden";
    return text;
}

TCpuWindow& OpenCpuWindow(TSession& session) {
    TCpuWindow* const window = session.Ide().CpuWindow();
    if (!window) Refuse("the CPU window is not open");
    return *window;
}

/// The program of `cpu program FILE [WORD VALUE]...`.
TCpuSource CpuProgram(const TArgs& args, std::string file) {
    TCpuSource source{.File = std::move(file), .IsProgram = true};
    if (args.size() % 2 != 0) Misuse("a word of cpu program has no value");
    for (std::size_t i = 2; i < args.size(); i += 2) {
        CheckWords({args[i]}, 0, {"base", "entry", "until", "steps"});
        if (SameText(args[i], "base")) source.Base = args[i + 1];
        if (SameText(args[i], "entry")) source.Entry = args[i + 1];
        if (SameText(args[i], "until")) source.Until = args[i + 1];
        if (SameText(args[i], "steps")) source.Steps = StrToInt(args[i + 1]);
    }
    return source;
}

struct TLayoutName {
    std::string_view Name;
    HKL Layout;
};
constexpr TLayoutName LayoutNames[] = {
    {"english", LayoutUSEnglish}, {"german", 0x407}, {"russian", 0x419}};

} // namespace

// --- The tables -------------------------------------------------------------------------------

struct TScript::TVerb {
    std::string_view Name;
    std::string_view Args;
    std::string_view Help;
    std::size_t Least, Most; ///< number of arguments
    void (*Run)(TScript& script, const TStatement& statement);
};

struct TScript::TTopic {
    std::string_view Name;
    std::string_view Args;
    std::string_view Help;
    std::size_t Most; ///< number of arguments behind the topic
    std::string (*Print)(TScript& script, const TArgs& args);
};

struct TScript::TTables {
    static constexpr std::size_t Any = 1000;
    static const TVerb Verbs[];
    static const TTopic Topics[];
    static const TVerb& FindVerb(std::string_view name);
    static const TTopic& FindTopic(std::string_view name);
};

const TScript::TVerb TScript::TTables::Verbs[] = {
    {"start", "", "load the pack into the IDE; its menu is built at the next pump", 0, 0,
     [](TScript& s, const TStatement&) {
         if (s.FSession.PackRuns()) Refuse("the pack is started already");
         if (!s.FSession.StartPack())
             Refuse(s.FSession.WithLastDialog("the pack does not start"));
     }},
    {"stop", "", "unload the pack", 0, 0,
     [](TScript& s, const TStatement&) {
         if (!s.FSession.PackRuns()) Refuse("the pack is not started");
         s.FSession.StopPack();
     }},
    {"picture", "NAME [ITEM]",
     "save a picture of the windows, where there are any; with the menu of the item open", 1, 2,
     [](TScript& s, const TStatement& statement) {
         TMenuItem* item = nullptr;
         if (statement.Args.size() > 1) item = &ItemOf(s.FSession, statement.Args[1]);
         if (s.OnPicture) s.OnPicture(statement.Args[0], item);
     }},
    {"pump", "", "handle the posted messages, as the IDE does when it is idle", 0, 0,
     [](TScript& s, const TStatement&) { s.FSession.Ide().PumpMessages(); }},
    {"file", "NAME [crlf|lf|cr] [open-end]",
     "make a file in the scratch folder from the block below; CR LF ends its lines unless told; "
     "with open-end the last line has none",
     1, 3,
     [](TScript& s, const TStatement& st) {
         CheckWords(st.Args, 1, {"crlf", "lf", "cr", "open-end"});
         const std::string_view end = HasWord(st.Args, 1, "lf")   ? "\n"
                                      : HasWord(st.Args, 1, "cr") ? "\r"
                                                                  : "\r\n";
         std::string text;
         for (const std::string& line : st.Block) text.append(line).append(end);
         if (HasWord(st.Args, 1, "open-end") && !text.empty()) text.resize(text.size() - end.size());
         std::ofstream stream(s.ScratchFile(st.Args[0]), std::ios::binary);
         if (!(stream << text)) throw EScriptError(ExitIO, "cannot write " + st.Args[0]);
     }},
    {"bytes", "NAME TEXT...", "make a file in the scratch folder from the quoted texts", 2, Any,
     [](TScript& s, const TStatement& st) {
         std::ofstream stream(s.ScratchFile(st.Args[0]), std::ios::binary);
         for (std::size_t i = 1; i < st.Args.size(); ++i) stream << st.Args[i];
         if (!stream) throw EScriptError(ExitIO, "cannot write " + st.Args[0]);
     }},
    {"open", "FILE", "open a file, or make it current", 1, 1,
     [](TScript& s, const TStatement& st) {
         s.FSession.Ide().Modules().OpenFile(s.FileOf(st.Args[0]).string());
         s.NoteOriginal();
     }},
    {"project", "FILE", "open a project or a project group", 1, 1,
     [](TScript& s, const TStatement& st) {
         s.FSession.Ide().Modules().OpenProject(s.FileOf(st.Args[0]).string());
         s.NoteOriginal();
     }},
    {"tab", "NAME|NUMBER", "make another tab current", 1, 1,
     [](TScript& s, const TStatement& st) {
         const std::string& name = st.Args[0];
         const bool number = name.find_first_not_of("0123456789") == std::string::npos;
         const bool found = number ? s.FSession.Ide().ActivateTab(StrToInt(name) - 1)
                                   : s.FSession.Ide().ActivateTab(name);
         if (!found) Refuse("there is no tab '" + name + "'");
     }},
    {"activate", "FORM", "make the form of that component name active; - for no form", 1, 1,
     [](TScript& s, const TStatement& st) {
         (void)s;
         TForm* form = nullptr;
         for (int i = 0; i < Screen()->FormCount() && !form; ++i)
             if (SameText(Screen()->Forms(i)->Name(), st.Args[0])) form = Screen()->Forms(i);
         if (!form && st.Args[0] != "-") Refuse("there is no form '" + st.Args[0] + "'");
         Screen()->SetActiveForm(form);
     }},
    {"cursor", "R:C", "put the cursor, also behind the end of a line", 1, 1,
     [](TScript& s, const TStatement& st) {
         const TTextPos place = ParsePlace(st.Args[0]);
         CheckPlace(CurrentView(s.FSession).Buffer().Text(), {place.Row, 1});
         CurrentView(s.FSession).GoTo(place);
     }},
    {"select", "R:C-R:C [start] [column]",
     "select a block; the cursor stands at its end, or at its start; a stream block unless told", 1,
     3,
     [](TScript& s, const TStatement& st) {
         CheckWords(st.Args, 1, {"start", "column"});
         const auto [from, to] = ParseRange(st.Args[0]);
         TSourceView& view = CurrentView(s.FSession);
         const bool column = HasWord(st.Args, 1, "column");
         if (!column) {
             CheckPlace(view.Buffer().Text(), from);
             CheckPlace(view.Buffer().Text(), to);
         }
         view.Select(from, to, column ? btColumn : btNonInclusive, HasWord(st.Args, 1, "start"));
     }},
    {"lines", "A-B [start]", "select whole lines", 1, 2,
     [](TScript& s, const TStatement& st) {
         CheckWords(st.Args, 1, {"start"});
         TSourceView& view = CurrentView(s.FSession);
         const auto [first, last] = ParseRows(st.Args[0]);
         const auto [from, to] = WholeRows(view.Buffer().Text(), first, last);
         view.Select(from, to, btNonInclusive, HasWord(st.Args, 1, "start"));
     }},
    {"type", "TEXT", "type a text into the editor", 1, 1,
     [](TScript& s, const TStatement& st) {
         if (!s.FSession.Ide().TypeText(st.Args[0])) Refuse("the editor does not have the focus");
     }},
    {"press", "KEY...", "press keys such as Ctrl+. or Shift+Down; named as on a US keyboard", 1, Any,
     [](TScript& s, const TStatement& st) {
         for (const std::string& name : st.Args) {
             const TShortCut key = s.FSession.KeyOf(name);
             if (key == 0) Misuse("'" + name + "' is no key");
             if (!s.FSession.Ide().PressKey(key)) Refuse("nothing takes the key " + name);
         }
     }},
    {"click", "ITEM",
     "click a menu item: the identifier of a command, a component name, or captions with | between",
     1, 1,
     [](TScript& s, const TStatement& st) {
         TMenuItem& item = ItemOf(s.FSession, st.Args[0]);
         if (!s.FSession.Ide().ClickMenuItem(item)) Refuse("'" + st.Args[0] + "' is disabled");
     }},
    {"undo", "", "take the last step back", 0, 0,
     [](TScript& s, const TStatement&) {
         if (!s.FSession.Ide().Undo()) Refuse("there is nothing to undo");
     }},
    {"redo", "", "do the step again that was taken back", 0, 0,
     [](TScript& s, const TStatement&) {
         if (!s.FSession.Ide().Redo()) Refuse("there is nothing to redo");
     }},
    {"save", "[FILE]", "save the current file, in the scratch folder when a name is given", 0, 1,
     [](TScript& s, const TStatement& st) {
         TSourceBuffer& buffer = CurrentView(s.FSession).Buffer();
         if (st.Args.empty()) return buffer.Save();
         const std::string original = s.FOriginals[buffer.FileName()];
         buffer.SaveAs(s.ScratchFile(st.Args[0]).string());
         s.FOriginals[buffer.FileName()] = original;
     }},
    {"close", "[force]",
     "close the current file, with force without asking; or the settings editor, when it is in front",
     0, 1,
     [](TScript& s, const TStatement& st) {
         CheckWords(st.Args, 0, {"force"});
         if (st.Args.empty() && CloseSettingsForm(s.FSession)) return;
         TIdeModule* const module = s.FSession.Ide().CurrentModule();
         if (!module) Refuse("no file is open");
         const std::string file = module->FileName();
         if (!s.FSession.Ide().Modules().Close(*module, HasWord(st.Args, 0, "force")))
             Refuse("the file stays open");
         s.FOriginals.erase(file);
     }},
    {"answer", "yes|no|cancel|ok", "queue the answer of the next dialog", 1, 1,
     [](TScript& s, const TStatement& st) {
         for (const TDialogButton& named : DialogButtons)
             if (SameText(named.Name, st.Args[0])) {
                 s.FSession.OS().QueueAnswer(named.Answer);
                 return;
             }
         Misuse("'" + st.Args[0] + "' is no answer; there are yes, no, cancel and ok");
     }},
    {"folder", "DIR", "queue the folder that the user chooses next", 1, 1,
     [](TScript& s, const TStatement& st) {
         s.FSession.OS().QueueFolder(s.FileOf(st.Args[0]).string());
     }},
    {"choose", "FILE",
     "queue the file that the user chooses next; one that does not exist is in the scratch folder", 1,
     1,
     [](TScript& s, const TStatement& st) {
         const fs::path file = s.FileOf(st.Args[0]);
         const bool exists = fs::exists(file);
         s.FSession.OS().QueueFile((exists ? file : s.ScratchFile(st.Args[0])).string());
     }},
    {"input", "TEXT", "queue the text that the user enters next", 1, 1,
     [](TScript& s, const TStatement& st) { s.FSession.OS().QueueInput(st.Args[0]); }},
    {"node", "CAPTIONS",
     "click a node of the settings editor by its captions with | between, or #N for the Nth of its "
     "level; that of the root may be left out",
     1, 1, [](TScript& s, const TStatement& st) { ClickSettingsNode(s.FSession, st.Args[0]); }},
    {"row", "N | NAME ACTION [ARG]",
     "select a row of the grid in the active form; or do something to the row of that caption or "
     "property name in the settings editor: type TEXT, paste TEXT, click, label, check ITEM, choose "
     "ITEM, size N, key KEY, date Y-M-D, time H:M:S, step N, menu CAPTION, dblclick",
     1, 3,
     [](TScript& s, const TStatement& st) {
         if (st.Args.size() > 1)
             return UseSettingsRow(s.FSession, st.Args[0], {st.Args.begin() + 1, st.Args.end()});
         TStringGrid& grid = ActiveGrid();
         const int row = StrToInt(st.Args[0]);
         if (row < 1 || row >= grid.RowCount())
             Refuse(Format("the grid has %d rows", {grid.RowCount() - 1}));
         grid.SetRow(row);
     }},
    {"cell", "N TEXT", "set the cell of column N in the selected row of the grid", 2, 2,
     [](TScript&, const TStatement& st) {
         TStringGrid& grid = ActiveGrid();
         const int col = StrToInt(st.Args[0]);
         if (grid.Row() == 0) Refuse("no row is selected");
         if (col < 1 || col > grid.ColCount())
             Refuse(Format("the grid has %d columns", {grid.ColCount()}));
         grid.SetCell(col - 1, grid.Row(), st.Args[1]);
     }},
    {"do", "ACTION", "run an action of the active form by its component name", 1, 1,
     [](TScript& s, const TStatement& st) {
         const TForm* const form = Screen()->ActiveForm();
         auto* const action = form ? ClassCast<TAction>(form->FindComponent(st.Args[0])) : nullptr;
         if (!action) Misuse("the active form has no action '" + st.Args[0] + "'");
         if (!DoAsUser(s.FSession, [&] { return action->Execute(); }))
             Refuse("'" + st.Args[0] + "' is disabled");
     }},
    {"button", "NAME",
     "click a button of the active form or of its tool bar, by caption or component name", 1, 1,
     [](TScript& s, const TStatement& st) {
         if (!DoAsUser(s.FSession, [&] { return ClickButton(st.Args[0]); }))
             Refuse("'" + st.Args[0] + "' is disabled");
     }},
    {"list", "NAME LINE...",
     "click a line of a list in the active form, by its number or its text, and the others with Ctrl",
     2, Any,
     [](TScript&, const TStatement& st) { ClickLines(st.Args[0], std::span(st.Args).subspan(1)); }},
    {"dblclick", "NAME LINE", "click a line of a list twice", 2, 2,
     [](TScript&, const TStatement& st) { DoubleClickLine(st.Args[0], st.Args[1]); }},
    {"drag", "NAME LINE LINE",
     "drag a line of a list, with those selected, in front of another; the number behind the last "
     "line is the end",
     3, 3,
     [](TScript&, const TStatement& st) { DragLine(st.Args[0], st.Args[1], st.Args[2]); }},
    {"field", "NAME TEXT", "put the focus into a field of the active form and type its new text", 2,
     2, [](TScript&, const TStatement& st) { FillField(st.Args[0], st.Args[1]); }},
    {"popup", "NAME ITEM",
     "open a pop-up menu of the active form, by its name or its control's, and click an item, by its "
     "caption or component name",
     2, 2, [](TScript&, const TStatement& st) { ClickPopup(st.Args[0], st.Args[1]); }},
    {"wait", "MS", "let so many milliseconds go by for the timers", 1, 1,
     [](TScript& s, const TStatement& st) {
         const int time = StrToInt(st.Args[0]);
         if (time < 0) Misuse("time does not go back");
         Wait(s.FSession, static_cast<std::uint64_t>(time));
     }},
    {"copy", "", "select all that the memo of the active form shows and copy it to the clipboard", 0, 0,
     [](TScript&, const TStatement&) {
         auto& memo = ActiveComponent<TMemo>("memo");
         memo.SelectAll();
         memo.CopyToClipboard();
     }},
    {"cpu",
     "FILE | program FILE [base A] [entry A] [until A] [steps N] | at PANE A | close | resume",
     "a program has stopped, as a recording tells, or a small x86 program that is run to an address "
     "or so many instructions: the CPU window opens; at moves the selection of a pane; close closes "
     "the window; resume lets the program go on",
     1, 10, [](TScript& s, const TStatement& st) { s.RunCpu(st.Args); }},
    {"registry", "NAME VALUE", "write a value of the pack's key in the script's own registry", 2, 2,
     [](TScript& s, const TStatement& st) {
         s.FSession.OS().WriteRegistryString(RegistryKey, st.Args[0], st.Args[1]);
     }},
    {"set", "PATH VALUE",
     "set a setting, for example EditorManagerData.SafeStringMoving False; the pack saves it when it "
     "is unloaded",
     2, 2, [](TScript&, const TStatement& st) { SetSetting(st.Args[0], st.Args[1]); }},
    {"fail", "PLACE",
     "the pack has a trial expert from its next start on, which fails in its create, init, load, "
     "menu, update, command or destroy, or nowhere; its command is TrialItem",
     1, 1,
     [](TScript& s, const TStatement& st) {
         CheckWords(st.Args, 0,
                    {"create", "init", "load", "menu", "update", "command", "destroy", "nowhere"});
         TTrialExpert::FailsIn = st.Args[0];
         s.FSession.AddTrialExpert();
     }},
    {"apply", "", "apply changed menu settings: the menu is rebuilt at the next pump", 0, 0,
     [](TScript& s, const TStatement&) {
         if (!s.FSession.PackRuns()) Refuse("the pack is not started");
         TExpManager::Instance()->DoApplySettings();
     }},
    {"layout", "english|german|russian", "activate a keyboard layout", 1, 1,
     [](TScript& s, const TStatement& st) {
         for (const TLayoutName& named : LayoutNames)
             if (SameText(named.Name, st.Args[0])) {
                 s.FSession.OS().ActivateKeyboardLayout(named.Layout);
                 return;
             }
         Misuse("'" + st.Args[0] + "' is no layout; there are english, german and russian");
     }},
    {"print", "TOPIC [ARG...]", "print what a user would see, see the topics below", 1, Any,
     [](TScript& s, const TStatement& st) { s.FOutput(s.Print(st.Args)); }},
    {"say", "TEXT...", "print the text", 0, Any,
     [](TScript& s, const TStatement& st) {
         std::string line;
         for (const std::string& word : st.Args) line += (line.empty() ? "" : " ") + word;
         s.FOutput(Lines(line));
     }},
    {"expect", "TOPIC [ARG...]",
     "compare what print would print with the block below; the script fails with the difference", 1,
     Any,
     [](TScript& s, const TStatement& st) {
         std::string expected;
         for (const std::string& line : st.Block) expected += line + "\n";
         const std::string found = s.Print(st.Args);
         if (found == expected) return;
         std::string diff = UnifiedDiff(expected, found, "expected", "found");
         diff.pop_back(); // the message ends its last line itself
         Refuse("not as expected\n" + diff);
     }},
    {"refuse", "VERB [ARG...]", "run another statement, which must be refused", 1, Any,
     [](TScript& s, const TStatement& st) {
         TStatement inner = st;
         inner.Verb = st.Args[0];
         inner.Args.erase(inner.Args.begin());
         try {
             s.Run(inner);
         } catch (const EScriptError& error) {
             if (error.ExitCode() == ExitUsage) throw;
             return;
         }
         Refuse("'" + inner.Verb + "' was not refused");
     }},
};

const TScript::TTopic TScript::TTables::Topics[] =
    {
        {"text", "[A-B]", "the lines of the current file", 1,
         [](TScript& s, const TArgs& args) {
             const auto [first, last] = s.Rows(args, 0);
             std::string text;
             for (int row = first; row <= last; ++row)
                 text += Shown(CurrentView(s.FSession).Buffer().Text().LineText(row)) + "\n";
             return text;
         }},
        {"lines", "[A-B]", "the same with their numbers", 1,
         [](TScript& s, const TArgs& args) {
             const auto [first, last] = s.Rows(args, 0);
             std::string text;
             for (int row = first; row <= last; ++row)
                 text += Format("%4d  ", {row}) +
                         Shown(CurrentView(s.FSession).Buffer().Text().LineText(row)) + "\n";
             return text;
         }},
        {"bytes", "[A-B]", "the same to the byte: escapes, line ends included", 1,
         [](TScript& s, const TArgs& args) {
             const auto [first, last] = s.Rows(args, 0);
             const TEditText& source = CurrentView(s.FSession).Buffer().Text();
             std::string text;
             for (int row = first; row <= last; ++row) {
                 const std::size_t end =
                     row < source.LineCount() ? source.LineStart(row + 1) : source.Size();
                 text += "\"" + Escaped(source.Text(source.LineStart(row), end)) + "\"\n";
             }
             return text;
         }},
        {"selection", "", "the bytes of the block, with escapes", 0,
         [](TScript& s, const TArgs&) {
             return "\"" + Escaped(CurrentView(s.FSession).BlockText()) + "\"\n";
         }},
        {"cursor", "", "the place of the cursor", 0,
         [](TScript& s, const TArgs&) {
             return Lines(PlaceText(CurrentView(s.FSession).Cursor()));
         }},
        {"block", "", "style and ends of the block, and where in it the cursor stands", 0,
         [](TScript& s, const TArgs&) {
             const TSourceView& view = CurrentView(s.FSession);
             if (!view.HasBlock()) return Lines("none, cursor " + PlaceText(view.Cursor()));
             return Lines(std::string(view.BlockStyle() == btColumn ? "column " : "stream ") +
                          PlaceText(view.BlockStart()) + "-" + PlaceText(view.BlockEnd()) +
                          ", cursor " + PlaceText(view.Cursor()));
         }},
        {"view", "", "the rows that are seen", 0,
         [](TScript& s, const TArgs&) {
             const TSourceView& view = CurrentView(s.FSession);
             return Lines(Format("rows %d-%d", {view.TopRow(), view.BottomRow()}));
         }},
        {"diff", "", "what has changed in the current file since it was opened", 0,
         [](TScript& s, const TArgs&) {
             const TSourceBuffer& buffer = CurrentView(s.FSession).Buffer();
             const std::string name = fs::path(buffer.FileName()).filename().string();
             return UnifiedDiff(s.FOriginals[buffer.FileName()], buffer.Text().Text(),
                                name + " (before)", name + " (after)");
         }},
        {"modified", "", "whether the current file differs from the saved one", 0,
         [](TScript& s, const TArgs&) {
             return Lines(CurrentView(s.FSession).Buffer().Modified() ? "yes" : "no");
         }},
        {"file", "NAME", "the bytes of a file on disk, with escapes", 1,
         [](TScript& s, const TArgs& args) {
             if (args.empty()) Misuse("print file needs a name");
             return "\"" + Escaped(ReadAll(s.FileOf(args[0]))) + "\"\n";
         }},
        {"tabs", "", "the tabs of the editor, the current one with a *", 0,
         [](TScript& s, const TArgs&) {
             TTabControl& tabs = s.FSession.Ide().EditWindow().TabControl();
             std::string text;
             for (int i = 0; i < tabs.Tabs().Count(); ++i)
                 text += (i == tabs.TabIndex() ? "* " : "  ") + tabs.Tabs()[i] + "\n";
             return text;
         }},
        {"form", "", "the active form by its component name, or else by its class", 0,
         [](TScript&, const TArgs&) {
             const TForm* const form = Screen()->ActiveForm();
             if (!form) return Lines("-");
             return Lines(form->Name().empty() ? form->ClassName() : std::string_view(form->Name()));
         }},
        {"menu", "[all]",
         "the main menu with the pack's items: caption, [shortcut], (component name), identifier, "
         "picture, state; with all every menu in full",
         1,
         [](TScript& s, const TArgs& args) {
             CheckWords(args, 0, {"all"});
             return s.FSession.MenuText(HasWord(args, 0, "all"));
         }},
        {"dialogs", "",
         "the dialogs shown since the last time, with their answers; files of the script without "
         "their folder",
         0,
         [](TScript& s, const TArgs&) {
             std::string text;
             const auto& dialogs = s.FSession.OS().Dialogs();
             for (; s.FDialogsSeen < dialogs.size(); ++s.FDialogsSeen) {
                 const TPortableOS::TShownDialog& dialog = dialogs[s.FDialogsSeen];
                 std::string_view answer;
                 for (const TDialogButton& named : DialogButtons)
                     if (named.Answer == dialog.Answer) answer = named.Name;
                 text += Format("[%s] %s -> %s\n",
                                {dialog.Caption, Escaped(s.Shortened(dialog.Text)), answer});
             }
             return text;
         }},
        {"beeps", "", "the number of beeps since the last time", 0,
         [](TScript& s, const TArgs&) {
             const int beeps = s.FSession.OS().Beeps() - s.FBeepsSeen;
             s.FBeepsSeen += beeps;
             return Lines(IntToStr(beeps));
         }},
        {"layout", "", "the active keyboard layout", 0,
         [](TScript& s, const TArgs&) {
             for (const TLayoutName& named : LayoutNames)
                 if (named.Layout == s.FSession.OS().GetKeyboardLayout()) return Lines(named.Name);
             return Lines("unknown");
         }},
        {"grid", "", "the grid of the active form, the selected row with a *", 0,
     [](TScript&, const TArgs&) {
         const TStringGrid& grid = ActiveGrid();
         std::string text;
         for (int row = 0; row < grid.RowCount(); ++row) {
             text += row > 0 && row == grid.Row() ? "* " : "  ";
             for (int col = 0; col < grid.ColCount(); ++col)
                 text += (col > 0 ? " | " : "") + grid.Cell(col, row);
             text += "\n";
         }
         return text;
     }},
    {"tree", "",
     "the nodes of the settings editor that are seen, the selected one with a *; a + behind one hides "
     "those below it",
     0, [](TScript&, const TArgs&) { return SettingsTreeText(); }},
    {"rows", "",
     "the rows of the settings editor: caption, control, LEFT,TOP WIDTHxHEIGHT in pixels, state, and "
     "the value as the user sees it",
     0, [](TScript&, const TArgs&) { return SettingsRowsText(); }},
    {"toolbar", "", "the buttons of the active form's tool bar", 0,
     [](TScript&, const TArgs&) {
         const TToolBar& bar = ActiveToolBar();
         std::string text;
         for (int i = 0; i < bar.ButtonCount(); ++i) text += Lines(ButtonText(*bar.Buttons(i)));
         return text;
     }},
    {"list", "NAME", "the lines of a list in the active form, the selected ones with a *", 1,
     [](TScript&, const TArgs& args) {
         if (args.empty()) Misuse("print list needs a name");
         return ListText(args[0]);
     }},
    {"field", "NAME", "the text of a field in the active form, and what it offers", 1,
     [](TScript&, const TArgs& args) {
         if (args.empty()) Misuse("print field needs a name");
         return FieldText(args[0]);
     }},
    {"popup", "NAME", "the items of a pop-up menu of the active form", 1,
     [](TScript&, const TArgs& args) {
         if (args.empty()) Misuse("print popup needs a name");
         return PopupText(args[0]);
     }},
    {"memo", "", "the lines in the memo of the active form", 0,
     [](TScript&, const TArgs&) {
         std::string text;
         TStrings& lines = ActiveComponent<TMemo>("memo").Lines();
         for (int i = 0; i < lines.Count(); ++i) text += Lines(Shown(lines[i]));
         return text;
     }},
    {"clipboard", "", "the text of the clipboard, as a quoted word", 0,
     [](TScript&, const TArgs&) { return Lines("\"" + Escaped(Clipboard().AsText()) + "\""); }},
    {"cpu", "[disassembly|registers|flags|dump|stack|stop]",
     "what the panes of the CPU window show at their selections, or one of them; with stop where "
     "and why the program stands",
     1,
     [](TScript& s, const TArgs& args) {
         const TStoppedState& program = s.FSession.Ide().StoppedProgram();
         if (HasWord(args, 0, "stop")) return Lines(program ? program->StopText() : "-");
         TCpuWindow& window = OpenCpuWindow(s.FSession);
         if (!args.empty()) return CpuPaneText(FindCpuPane(window, args[0]));
         std::string text;
         for (int i = 0; i < window.ComponentCount(); ++i)
             if (auto* const pane = ClassCast<TCpuPane>(window.Components(i)))
                 text += "[" + pane->Name() + "]\n" + CpuPaneText(*pane);
         return text;
     }},
    {"registry", "NAME", "a value of the pack's key in the registry", 1,
     [](TScript& s, const TArgs& args) {
         if (args.empty()) Misuse("print registry needs a name");
         const auto value = s.FSession.OS().ReadRegistryString(RegistryKey, args[0]);
         return Lines(value ? "\"" + Escaped(s.Shortened(*value)) + "\"" : "-");
     }},
    {"setting", "PATH", "a setting", 1,
         [](TScript&, const TArgs& args) {
             if (args.empty()) Misuse("print setting needs a path");
             return Lines(ShownSetting(GetSetting(args[0])));
         }},
    {"settings", "[PATH]", "the settings below a path, each as PATH=VALUE", 1,
         [](TScript&, const TArgs& args) {
             return ListSettings(args.empty() ? std::string_view() : args[0]);
         }},
        {"changes", "", "what has changed in the settings since the last time, or since the first",
         0,
         [](TScript& s, const TArgs&) {
             const std::string settings = ListSettings({});
             if (s.FSettingsSeen.empty()) s.FSettingsSeen = settings;
             const std::string before = std::exchange(s.FSettingsSeen, settings);
             const std::string diff = UnifiedDiff(before, settings, "before", "after");
             return diff.empty() ? Lines("-") : diff;
         }},
        {"log", "",
         "the pack's error log, as it stands in the scratch folder, with [ time ] for the times", 0,
         [](TScript& s, const TArgs&) {
             const fs::path file = s.ScratchFile(ErrorLogName);
             return fs::exists(file) ? s.Shortened(WithoutTimes(ReadFileEx(file.string())))
                                     : Lines("-");
         }},
        {"trace",
         "", "how far start-up and shut-down have got, and with which experts, newest first", 0,
         [](TScript& s, const TArgs&) {
             const TErrorLogState traces = s.FSession.Traces();
             return "constructor: " + OrNone(traces.ConstructorTrace) +
                    "\ncreated: " + OrNone(traces.CreatedExperts) +
                    "\ndestructor: " + OrNone(traces.DestructorTrace) +
                    "\ndeleted: " + OrNone(traces.DeletedExperts) + "\n";
         }},
};

const TScript::TVerb& TScript::TTables::FindVerb(std::string_view name) {
    for (const TVerb& verb : Verbs)
        if (SameText(verb.Name, name)) return verb;
    Misuse("unknown verb '" + std::string(name) + "'; tarn run --help lists them");
}

const TScript::TTopic& TScript::TTables::FindTopic(std::string_view name) {
    for (const TTopic& topic : Topics)
        if (SameText(topic.Name, name)) return topic;
    Misuse("unknown topic '" + std::string(name) + "'; tarn run --help lists them");
}

std::string TScript::Help() {
    std::string text;
    const auto row = [&text](std::string_view name, std::string_view args, std::string_view help) {
        constexpr std::size_t indent = 34;
        constexpr std::size_t width = 96;
        std::string line = "  " + std::string(name) + (args.empty() ? "" : " ") + std::string(args);
        const auto wrap = [&] {
            text += line + "\n";
            line.assign(indent, ' ');
        };
        if (line.size() >= indent)
            wrap();
        else
            line.resize(indent, ' ');
        for (bool first = true; !help.empty(); first = false) {
            const std::string_view word = help.substr(0, help.find(' '));
            if (line.size() + 1 + word.size() > width) wrap(), first = true;
            line.append(first ? "" : " ").append(word);
            help.remove_prefix(std::min(word.size() + 1, help.size()));
        }
        text += line + "\n";
    };
    text +=
        "A script has a statement a line. # begins a comment, quoted words know \\n \\r \\t \\\\ "
        "\\\" \\xHH,\nlines that begin with | are the block of the statement above them:\n\n"
        "  file Demo.pas\n"
        "  |   procedure B;\n"
        "  |   function A: Integer;\n"
        "  open Demo.pas\n"
        "  start\n"
        "  pump\n"
        "  lines 1-2\n"
        "  press Ctrl+;\n"
        "  print diff\n"
        "\nVerbs:\n";
    for (const TVerb& verb : TTables::Verbs) row(verb.Name, verb.Args, verb.Help);
    text += "\nTopics of print and expect:\n";
    for (const TTopic& topic : TTables::Topics) row(topic.Name, topic.Args, topic.Help);
    return text;
}

// --- Playing ----------------------------------------------------------------------------------

TScript::TScript(fs::path folder, TOutput output, TUserDialogs* console)
    : FSession(console), FFolder(std::move(folder)), FOutput(std::move(output)) {
    TTrialExpert::FailsIn.clear();
    // A script has a package directory and a registry of its own: it depends on nothing that the
    // user has chosen, and leaves nothing behind.
    FSession.OS().SetModuleFileName(ScratchFile("package").string());
    FSession.OS().SetRegistryFile(ScratchFile("registry").string());
    FSession.LetPackSave();
    Application()->OnModal = TMethod<void(TForm&)>::Of<&TScript::RunModal>(this);
}

void TScript::Play(std::string_view text) {
    FStatements = ParseScript(text);
    FNext = 0;
    while (FNext < FStatements.size()) RunNext();
}

void TScript::RunNext() {
    const TStatement& statement = FStatements[FNext++];
    try {
        Run(statement);
    } catch (const EScriptError& error) {
        throw EScriptError(error.ExitCode(), Format("%d: %s", {statement.Line, error.what()}));
    }
    if (OnStatement) OnStatement();
    if (FFailure) std::rethrow_exception(std::exchange(FFailure, nullptr));
}

void TScript::RunModal(TForm& form) {
    const TWeak<TForm> open(&form);
    const auto goesOn = [&] { return open && form.ModalResult == mrNone && !FFailure; };
    try {
        while (goesOn() && FNext < FStatements.size()) {
            // A modal form has a message loop of its own.
            FSession.Ide().PumpMessages();
            if (goesOn()) RunNext();
        }
    } catch (...) {
        FFailure = std::current_exception();
        if (open)
            form.ModalResult = mrNone; // nobody goes on in it: cancelled whatever it says to that
    }
}

void TScript::Run(const TStatement& statement) {
    const TVerb& verb = TTables::FindVerb(statement.Verb);
    if (statement.Args.size() < verb.Least || statement.Args.size() > verb.Most)
        Misuse(Format("usage: %s %s", {verb.Name, verb.Args}));
    const bool takesBlock = verb.Name == "file" || verb.Name == "expect";
    if (statement.HasBlock && !takesBlock) Misuse(Format("%s takes no block", {verb.Name}));
    try {
        verb.Run(*this, statement);
    } catch (const EScriptError&) {
        throw;
    } catch (const EConvertError& error) {
        Misuse(error.what());
    } catch (const EFileError& error) {
        throw EScriptError(ExitIO, error.what());
    } catch (const fs::filesystem_error& error) {
        throw EScriptError(ExitIO, error.what());
    } catch (const std::exception& error) {
        Refuse(error.what());
    }
}

std::string TScript::Print(const TArgs& args) {
    const TTopic& topic = TTables::FindTopic(args[0]);
    if (args.size() - 1 > topic.Most)
        Misuse(Format("usage: print %s %s", {topic.Name, topic.Args}));
    return topic.Print(*this, {args.begin() + 1, args.end()});
}

void TScript::RunCpu(const TArgs& args) {
    TIde& ide = FSession.Ide();
    const std::string& word = args[0];
    if (args.size() == 1 && SameText(word, "close")) {
        OpenCpuWindow(FSession);
        ide.CloseCpuWindow();
    } else if (args.size() == 1 && SameText(word, "resume")) {
        if (!ide.StoppedProgram()) Refuse("no program is stopped");
        ide.ResumeProgram();
    } else if (args.size() == 1) {
        ide.StopAt(LoadStoppedProgram({.File = FileOf(word).string()}));
    } else if (SameText(word, "program")) {
        ide.StopAt(LoadStoppedProgram(CpuProgram(args, FileOf(args[1]).string())));
    } else if (SameText(word, "at") && args.size() == 3) {
        auto* const pane = ClassCast<TAddressPane>(&FindCpuPane(OpenCpuWindow(FSession), args[1]));
        const auto address = ParseAddress(args[2]);
        if (!pane) Misuse("'" + args[1] + "' has no addresses");
        if (!address) Misuse("'" + args[2] + "' is no address");
        pane->SetSelected(static_cast<int>(*address));
    } else {
        Misuse("usage: cpu FILE, cpu program FILE ..., cpu at PANE ADDRESS, cpu close or resume");
    }
}

fs::path TScript::FileOf(std::string_view name) const {
    const fs::path scratch = FScratch.Path() / name;
    return fs::exists(scratch) ? scratch : FFolder / name;
}

std::string TScript::Shortened(std::string text) const {
    for (const fs::path& folder : {FScratch.Path(), FFolder}) {
        const std::string prefix = (folder / "").string();
        for (std::size_t at = 0; (at = text.find(prefix, at)) != std::string::npos;)
            text.erase(at, prefix.size());
    }
    return text;
}

fs::path TScript::ScratchFile(std::string_view name) const {
    const fs::path file = name;
    if (name.empty() || file.filename() != file || name == "." || name == "..")
        Misuse("'" + std::string(name) + "' is no plain file name");
    return FScratch.Path() / file;
}

void TScript::NoteOriginal() {
    if (TSourceBuffer* const buffer = FSession.Ide().CurrentBuffer())
        FOriginals.try_emplace(buffer->FileName(), buffer->Text().Text());
}

std::pair<int, int> TScript::Rows(const TArgs& args, std::size_t index) {
    const TEditText& text = CurrentView(FSession).Buffer().Text();
    if (index < args.size()) {
        const auto rows = ParseRows(args[index]);
        CheckPlace(text, {rows.second, 1});
        return rows;
    }
    // Behind a final line break there is no line to show.
    const int last = text.LineCount();
    return {1, last > 1 && text.LineLength(last) == 0 ? last - 1 : last};
}

} // namespace tarn
