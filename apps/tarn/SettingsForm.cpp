#include "SettingsForm.h"

#include "Controls.h"
#include "ScriptSource.h"
#include "Settings.h"
#include "TSession.h"
#include "qsSpcEditor.h"
#include "vcl/Clipbrd.h"
#include "vcl/TCheckBox.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TColorEdit.h"
#include "vcl/TComboBox.h"
#include "vcl/TDateTimePicker.h"
#include "vcl/TFontEdit.h"
#include "vcl/THotKeyEx.h"
#include "vcl/TImage.h"
#include "vcl/TMemo.h"
#include "vcl/TSpinEdit.h"

#include <algorithm>

namespace tarn {
namespace {

[[noreturn]] void Refuse(std::string_view format, std::initializer_list<TVarRec> args) {
    throw EScriptError(ExitRefused, Format(format, args));
}
/// \param names those there are, joined by ", "
[[noreturn]] void Unknown(std::string_view format, std::initializer_list<TVarRec> args,
                          const std::string& names) {
    throw EScriptError(ExitUsage,
                       Format(format, args) + (names.empty() ? "" : "; there are ") + names);
}

void Append(std::string& names, std::string_view name) {
    names.append(names.empty() ? "" : ", ").append(name);
}

TSpcForm* FindForm() {
    return ClassCast<TSpcForm>(Screen()->ActiveForm());
}

TSpcForm& ActiveSettingsForm() {
    if (TSpcForm* const form = FindForm()) return *form;
    Refuse("the settings editor is not in front", {});
}

// --- The tree ---------------------------------------------------------------------------------

/// The nodes that the next caption of a path may mean: those below `node`, or at the beginning of
/// the path, when that is null, the root and those below it.
std::vector<TTreeNode*> NextNodes(TTreeNode* node, TTreeNode* root) {
    std::vector<TTreeNode*> nodes;
    if (!node && root) nodes.push_back(root);
    const TTreeNode* const above = node ? node : root;
    for (int i = 0; above && i < above->Count(); ++i) nodes.push_back(above->Item(i));
    return nodes;
}

/// \param root null for an empty tree
TTreeNode& FindNode(TTreeNode* root, std::string_view path) {
    TTreeNode* node = nullptr;
    for (std::size_t bar = 0; bar != path.npos;) {
        bar = path.find('|');
        const std::string_view caption = Trim(path.substr(0, bar));
        const std::vector<TTreeNode*> nodes = NextNodes(node, root);
        auto found = std::find_if(nodes.begin(), nodes.end(), [&](const TTreeNode* next) {
            return AnsiSameText(next->Text(), caption);
        });
        if (found == nodes.end() && caption.starts_with('#')) {
            const int number = StrToIntDef(caption.substr(1), 0) - (node ? 1 : 0);
            if (number >= 0 && number < std::ssize(nodes)) found = nodes.begin() + number;
        }
        if (found == nodes.end()) {
            std::string names;
            for (const TTreeNode* const next : nodes) Append(names, next->Text());
            Unknown("there is no node '%s'", {caption}, names);
        }
        node = *found;
        if (bar != path.npos) path.remove_prefix(bar + 1);
    }
    return *node;
}

// --- Values as they are seen ------------------------------------------------------------------

std::string TextOf(const TControl& control) {
    return control.Text();
}
std::string TextOf(const TCheckBox& box) {
    return box.Checked() ? "checked" : "not checked";
}
std::string TextOf(const TCheckListBox& list) {
    std::string text;
    for (int i = 0; i < list.Count(); ++i)
        Append(text, (list.Checked(i) ? "[x] " : "[ ] ") + list.ItemsObject()->Get(i));
    return text;
}
std::string TextOf(const TImage& image) {
    const TGraphic* const graphic = image.PictureObject()->Graphic();
    if (!graphic || image.PictureObject()->Empty()) return "no picture";
    return Format("%s %dx%d", {graphic->ClassName(), graphic->Width(), graphic->Height()});
}
template <class C>
requires requires(const C& c) {
    c.ShownText();
}
std::string TextOf(const C& control) {
    return control.ShownText();
}

template <class... C> std::string SeenText(TControl& control) {
    std::string text;
    const auto take = [&]<class T>(T* found) {
        if (found) text = TextOf(*found);
        return found != nullptr;
    };
    (void)(take(ClassCast<C>(&control)) || ...);
    return text;
}

std::string SeenText(TControl& control) {
    return SeenText<TCheckBox, TCheckListBox, TImage, TColorEdit, TFontEdit, TDateTimePicker,
                    THotKeyEx, TControl>(control);
}

// --- Rows -------------------------------------------------------------------------------------

/// The text of a label on one line, without the colon at its end.
std::string CaptionOf(const TControlInfo& row) {
    std::string text;
    for (const char c : row.Label->Caption()) {
        const bool blank = c == ' ' || c == '\r' || c == '\n';
        if (!blank)
            text += c;
        else if (!text.ends_with(' '))
            text += ' ';
    }
    if (text.ends_with(" :")) text.resize(text.size() - 2);
    return text;
}

template <class F> void ForEachRow(F&& visit) {
    const TControlList& rows = ActiveSettingsForm().Editor().Controls();
    for (int i = 0; i < rows.Count(); ++i) visit(rows.Get(i));
}

TControlInfo& FindRow(std::string_view name) {
    TControlInfo* found = nullptr;
    std::string names;
    ForEachRow([&](TControlInfo& row) {
        const std::string caption = CaptionOf(row);
        const bool same = AnsiSameText(caption, name) || SameText(row.EPropInfo->Name, name);
        if (same && !found) found = &row;
        Append(names, caption);
    });
    if (!found) Unknown("there is no row '%s'", {name}, names);
    return *found;
}

// --- Actions ----------------------------------------------------------------------------------

/// What is to be done to a row.
struct TUse {
    TSession& Session;
    TControlInfo& Row;
    std::string Text; ///< the argument; empty when the action has none

    template <class C> C& Control() const { return static_cast<C&>(*Row.EControl); }
};

bool Type(TUse& use) {
    auto& edit = use.Control<TCustomEdit>();
    edit.SelectAll();
    return edit.TypeText(use.Text);
}
template <class C> bool TypeWhole(TUse& use) {
    return use.Control<C>().TypeText(use.Text);
}

bool Paste(TUse& use) {
    auto& edit = use.Control<TCustomEdit>();
    Clipboard().SetAsText(use.Text);
    edit.SelectAll();
    return edit.PasteFromClipboard();
}

bool ClickBox(TUse& use) {
    return use.Control<TCheckBox>().Click();
}
bool ClickLabel(TUse& use) {
    return use.Row.Label->Click();
}

/// The index of a line, by its text; names those there are when it is none of them.
int LineOf(TUse& use, const TStrings& lines) {
    std::string names;
    for (int i = 0; i < lines.Count(); ++i) {
        if (AnsiSameText(lines[i], use.Text)) return i;
        Append(names, lines[i]);
    }
    Unknown("the row '%s' has no item '%s'", {CaptionOf(use.Row), use.Text}, names);
}

bool Check(TUse& use) {
    auto& list = use.Control<TCheckListBox>();
    return list.ClickCheck(LineOf(use, *list.ItemsObject()));
}
bool ChooseInBox(TUse& use) {
    auto& box = use.Control<TComboBox>();
    box.DropDown();
    return box.Choose(LineOf(use, *box.ItemsObject()));
}
bool ChooseInList(TUse& use) {
    auto& list = use.Control<TListBox>();
    return list.ClickItem(LineOf(use, *list.ItemsObject()));
}
bool ChooseColor(TUse& use) {
    const int line = LineOf(use, TColorEdit::Items());
    return use.Control<TColorEdit>().ChooseColor(StringToColor(TColorEdit::Items()[line]));
}
bool ChooseFont(TUse& use) {
    auto& edit = use.Control<TFontEdit>();
    return edit.ChooseName(edit.Items()[LineOf(use, edit.Items())]);
}
bool ChooseSize(TUse& use) {
    return use.Control<TFontEdit>().ChooseSize(StrToInt(use.Text));
}

bool PressKey(TUse& use) {
    const TShortCut key = use.Session.KeyOf(use.Text);
    if (key == 0) Unknown("'%s' is no key", {use.Text}, "");
    return use.Control<THotKeyEx>().PressKey(key);
}

/// Three numbers with a separator between them.
bool ChooseParts(TUse& use, char separator, bool (TDateTimePicker::*choose)(int, int, int)) {
    int parts[3] = {};
    std::string_view rest = use.Text;
    for (int& part : parts) {
        const std::size_t at = rest.find(separator);
        part = StrToInt(rest.substr(0, at));
        rest.remove_prefix(at == rest.npos ? rest.size() : at + 1);
    }
    return (use.Control<TDateTimePicker>().*choose)(parts[0], parts[1], parts[2]);
}
bool ChooseDate(TUse& use) {
    return ChooseParts(use, '-', &TDateTimePicker::ChooseDate);
}
bool ChooseTime(TUse& use) {
    return ChooseParts(use, ':', &TDateTimePicker::ChooseTime);
}

bool Step(TUse& use) {
    return use.Control<TSpinEdit>().Step(StrToInt(use.Text));
}

bool ClickMenu(TUse& use) {
    ClickPopup(*use.Row.EControl, use.Text);
    return true;
}

template <class C> bool DoubleClick(TUse& use) {
    return use.Control<C>().DblClick();
}

/// One thing that a user can do to the controls of a class.
struct TRowAction {
    std::string_view Name;
    const TClassRecord* Class;
    std::size_t Args;
    bool TakesFocus;
    bool (*Run)(TUse& use); ///< false when the control does not take it
};

constexpr TRowAction RowActions[] = {
    {"type", &TCustomEdit::ClassRecord, 1, true, Type},
    {"type", &TComboBox::ClassRecord, 1, true, TypeWhole<TComboBox>},
    {"type", &TColorEdit::ClassRecord, 1, true, TypeWhole<TColorEdit>},
    {"type", &TDateTimePicker::ClassRecord, 1, true, TypeWhole<TDateTimePicker>},
    {"paste", &TCustomEdit::ClassRecord, 1, true, Paste},
    {"click", &TCheckBox::ClassRecord, 0, true, ClickBox},
    {"label", &TControl::ClassRecord, 0, false, ClickLabel},
    {"check", &TCheckListBox::ClassRecord, 1, true, Check},
    {"choose", &TComboBox::ClassRecord, 1, true, ChooseInBox},
    {"choose", &TListBox::ClassRecord, 1, true, ChooseInList},
    {"choose", &TColorEdit::ClassRecord, 1, true, ChooseColor},
    {"choose", &TFontEdit::ClassRecord, 1, true, ChooseFont},
    {"size", &TFontEdit::ClassRecord, 1, true, ChooseSize},
    {"key", &THotKeyEx::ClassRecord, 1, true, PressKey},
    {"date", &TDateTimePicker::ClassRecord, 1, true, ChooseDate},
    {"time", &TDateTimePicker::ClassRecord, 1, true, ChooseTime},
    {"step", &TSpinEdit::ClassRecord, 1, true, Step},
    {"menu", &TControl::ClassRecord, 1, false, ClickMenu},
    {"dblclick", &TCustomEdit::ClassRecord, 0, false, DoubleClick<TCustomEdit>},
    {"dblclick", &TImage::ClassRecord, 0, false, DoubleClick<TImage>},
};

const TRowAction& FindAction(const TControlInfo& row, std::string_view name) {
    std::string names;
    for (const TRowAction& action : RowActions) {
        if (!row.EControl->InheritsFrom(*action.Class)) continue;
        if (SameText(action.Name, name)) return action;
        Append(names, action.Name);
    }
    Unknown("the row '%s', a %s, has no '%s'", {CaptionOf(row), row.EControl->ClassName(), name},
            names);
}

} // namespace

// --- The window -------------------------------------------------------------------------------

std::string SettingsTreeText() {
    const TTreeView& tree = ActiveSettingsForm().Tree();
    std::string text;
    for (const TTreeNode* node = tree.Items().GetFirstNode(); node; node = node->GetNextVisible()) {
        text += node == tree.Selected() ? "* " : "  ";
        text.append(2 * static_cast<std::size_t>(node->Level()), ' ');
        text += ShownSetting(node->Text());
        text += node->Count() > 0 && !node->Expanded() ? " +\n" : "\n";
    }
    return text.empty() ? "-\n" : text;
}

void ClickSettingsNode(TSession& session, std::string_view path) {
    TTreeView& tree = ActiveSettingsForm().Tree();
    TTreeNode& node = FindNode(tree.Items().GetFirstNode(), path);
    for (TTreeNode* above = node.Parent(); above; above = above->Parent()) above->Expand(false);
    if (!DoAsUser(session, [&] { return tree.ClickNode(node); }))
        Refuse("the node '%s' cannot be clicked", {path});
}

std::string SettingsRowsText() {
    std::string text;
    ForEachRow([&](TControlInfo& row) {
        TControl& control = *row.EControl;
        const std::string seen = ShownSetting(SeenText(control));
        text += Format("%s : %s %d,%d %dx%d%s =%s%s\n",
                       {CaptionOf(row), control.ClassName(), control.Left(), control.Top(),
                        control.Width(), control.Height(), control.Enabled() ? "" : " disabled",
                        seen.empty() ? "" : " ", seen});
    });
    return text.empty() ? "-\n" : text;
}

void UseSettingsRow(TSession& session, std::string_view row, const std::vector<std::string>& args) {
    TUse use{session, FindRow(row), args.size() > 1 ? args[1] : std::string()};
    const TRowAction& action = FindAction(use.Row, args[0]);
    if (args.size() - 1 != action.Args)
        throw EScriptError(
            ExitUsage, Format("%s takes %s", {action.Name, action.Args ? "one text" : "nothing"}));
    TControl& control = *use.Row.EControl;
    if (action.TakesFocus && !control.CanFocus()) Refuse("the row '%s' is disabled", {row});
    const bool done = DoAsUser(session, [&] {
        if (action.TakesFocus && !control.Focused()) control.SetFocus();
        return action.Run(use);
    });
    if (!done) Refuse("the row '%s' does not take that", {row});
}

bool CloseSettingsForm(TSession& session) {
    TSpcForm* const form = FindForm();
    if (!form) return false;
    if (!DoAsUser(session, [&] { return form->Close(); })) Refuse("the window stays open", {});
    return true;
}

} // namespace tarn
