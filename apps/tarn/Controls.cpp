#include "Controls.h"

#include "ScriptSource.h"
#include "TSession.h"
#include "vcl/TComboBox.h"
#include "vcl/TEdit.h"
#include "vcl/TListBox.h"

namespace tarn {
namespace {

[[noreturn]] void Refuse(std::string_view format, std::initializer_list<TVarRec> args) {
    throw EScriptError(ExitRefused, Format(format, args));
}
[[noreturn]] void Misuse(std::string_view format, std::initializer_list<TVarRec> args) {
    throw EScriptError(ExitUsage, Format(format, args));
}

/// The component of that class and name in the active form; null when there is none.
template <class T> T* Find(std::string_view name) {
    const TForm* const form = Screen()->ActiveForm();
    return form ? ClassCast<T>(form->FindComponent(name)) : nullptr;
}

/// \param what what the class is called
template <class T> T& Component(std::string_view what, std::string_view name) {
    if (T* const found = Find<T>(name)) return *found;
    Misuse("the active form has no %s '%s'", {what, name});
}

TListBox& ListOf(std::string_view name) {
    return Component<TListBox>("list", name);
}

/// The index of a line; `count` is that of the numbers there are.
int LineOf(const TListBox& list, std::string_view line, int count) {
    const TStrings& items = *list.ItemsObject();
    for (int i = 0; i < items.Count(); ++i)
        if (AnsiSameText(items[i], line)) return i;
    const int number = line.find_first_not_of("0123456789") == line.npos ? StrToIntDef(line, 0) : 0;
    if (number < 1 || number > count) Misuse("the list '%s' has no line '%s'", {list.Name(), line});
    return number - 1;
}
int LineOf(const TListBox& list, std::string_view line) {
    return LineOf(list, line, list.Count());
}

TPopupMenu& MenuOf(std::string_view name) {
    if (TPopupMenu* const menu = Find<TPopupMenu>(name)) return *menu;
    const TControl* const control = Find<TControl>(name);
    if (TPopupMenu* const menu = control ? control->PopupMenu() : nullptr) return *menu;
    Misuse("the active form has no pop-up menu '%s'", {name});
}

/// Calls `visit` with each item below a parent and its level, depth first.
template <class F> void ForEachItem(TMenuItem& parent, F&& visit, int level = 0) {
    for (int i = 0; i < parent.Count(); ++i) {
        visit(*parent.Items(i), level);
        ForEachItem(*parent.Items(i), visit, level + 1);
    }
}

std::string Captions(TMenuItem& root) {
    std::string names;
    ForEachItem(root, [&](TMenuItem& item, int) {
        if (!item.IsLine()) names.append(names.empty() ? "" : ", ").append(item.Caption());
    });
    return names;
}

TMenuItem* FindItem(TMenuItem& root, std::string_view name) {
    TMenuItem* found = nullptr;
    ForEachItem(root, [&](TMenuItem& item, int) {
        if (!found && SameText(item.Name(), name)) found = &item;
    });
    if (found) return found;
    for (found = &root; found;) {
        const std::size_t bar = name.find('|');
        found = found->Find(Trim(name.substr(0, bar)));
        if (bar == name.npos) break;
        name.remove_prefix(bar + 1);
    }
    return found;
}

} // namespace

bool DoAsUser(TSession& session, const std::function<bool()>& action) {
    bool done = true; // what raises has been done
    std::exception_ptr fault;
    session.Ide().RunCommand([&] {
        try {
            done = action();
        } catch (const EScriptError&) {
            fault = std::current_exception();
        }
    });
    if (fault) std::rethrow_exception(fault);
    return done;
}

// --- Lists ------------------------------------------------------------------------------------

void ClickLines(std::string_view name, std::span<const std::string> lines) {
    TListBox& list = ListOf(name);
    TShiftState shift;
    for (const std::string& line : lines) {
        if (!list.ClickItem(LineOf(list, line), shift))
            Refuse("the list '%s' cannot be clicked", {name});
        shift = {ssCtrl};
    }
}

void DoubleClickLine(std::string_view name, std::string_view line) {
    TListBox& list = ListOf(name);
    if (!list.DblClickItem(LineOf(list, line))) Refuse("the list '%s' cannot be clicked", {name});
}

void DragLine(std::string_view name, std::string_view from, std::string_view to) {
    TListBox& list = ListOf(name);
    if (!list.DragItems(LineOf(list, from), LineOf(list, to, list.Count() + 1)))
        Refuse("the line '%s' cannot be dragged there", {from});
}

std::string ListText(std::string_view name) {
    const TListBox& list = ListOf(name);
    std::string text;
    for (int i = 0; i < list.Count(); ++i)
        text += (list.Selected(i) ? "* " : "  ") + list.ItemsObject()->Get(i) + "\n";
    return text.empty() ? "-\n" : text;
}

// --- Fields -----------------------------------------------------------------------------------

void FillField(std::string_view name, std::string_view text) {
    auto& field = Component<TControl>("field", name);
    auto* const combo = ClassCast<TComboBox>(&field);
    auto* const edit = ClassCast<TCustomEdit>(&field);
    if (!combo && !edit) Misuse("'%s' is no field", {name});
    if (!field.CanFocus()) Refuse("the field '%s' cannot be filled", {name});
    field.SetFocus();
    if (edit) edit->SelectAll();
    if (!(combo ? combo->TypeText(text) : edit->TypeText(text)))
        Refuse("the field '%s' cannot be filled", {name});
}

std::string FieldText(std::string_view name) {
    auto& field = Component<TControl>("field", name);
    std::string text = field.Text() + "\n";
    if (const auto* const combo = ClassCast<TComboBox>(&field))
        for (int i = 0; i < combo->ItemsObject()->Count(); ++i)
            text += "  " + combo->ItemsObject()->Get(i) + "\n";
    return text;
}

// --- Pop-up menus -----------------------------------------------------------------------------

namespace {

/// \param name what the menu is called when it has no such item
void ClickItem(TPopupMenu& menu, TControl* control, std::string_view name, std::string_view item) {
    menu.Popup(control);
    TMenuItem* const found = FindItem(*menu.Items(), item);
    if (!found)
        Misuse("the menu '%s' has no item '%s'; there are %s",
               {name, item, Captions(*menu.Items())});
    if (!found->Enabled() || !found->Visible()) Refuse("'%s' is disabled", {item});
    found->Click();
}

} // namespace

void ClickPopup(std::string_view name, std::string_view item) {
    ClickItem(MenuOf(name), Find<TControl>(name), name, item);
}

void ClickPopup(TControl& control, std::string_view item) {
    TPopupMenu* const menu = control.PopupMenu();
    if (!menu) Misuse("a %s has no pop-up menu here", {control.ClassName()});
    ClickItem(*menu, &control, control.ClassName(), item);
}

std::string PopupText(std::string_view name) {
    TPopupMenu& menu = MenuOf(name);
    menu.Popup(Find<TControl>(name));
    std::string text;
    ForEachItem(*menu.Items(), [&](TMenuItem& item, int level) {
        text.append(2 * static_cast<std::size_t>(level), ' ').append(item.Caption());
        if (!item.Name().empty()) text += " (" + item.Name() + ")";
        if (item.RadioItem()) text += " radio";
        if (item.Checked()) text += " checked";
        if (!item.Enabled()) text += " disabled";
        if (!item.Visible()) text += " hidden";
        text += "\n";
    });
    return text.empty() ? "-\n" : text;
}

// --- Time -------------------------------------------------------------------------------------

void Wait(TSession& session, std::uint64_t milliseconds) {
    TPortableOS& os = session.OS();
    // Tick by tick: what one does, such as ending a timer, counts for the next.
    for (auto next = os.NextTimer(); next && *next <= milliseconds; next = os.NextTimer()) {
        os.AdvanceTime(*next);
        milliseconds -= *next;
        session.Ide().PumpMessages();
    }
    os.AdvanceTime(milliseconds);
    session.Ide().PumpMessages();
}

} // namespace tarn
