#include "Settings.h"

#include "ScriptSource.h"
#include "TExpManager.h"
#include "qsDataHndl2.h"
#include "qsExpShrData.h"
#include "rtl/TNearNames.h"
#include "vcl/Graphics.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace tarn {
namespace {

[[noreturn]] void Refuse(const std::string& what) {
    throw EScriptError(ExitUsage, what);
}

// --- The tree ---------------------------------------------------------------------------------

/// A node of the settings tree, or a setting in it.
struct TEntry {
    std::string Name;
    TPersistent* Node = nullptr;     ///< what has entries below; null for a setting
    TPersistent* Owner = nullptr;    ///< what it is stored with
    const TPropInfo* Prop = nullptr; ///< of the owner, that it is
    std::string_view Block = {};     ///< of the owner's data, that it is; else an item of a list
};

std::string KeyOf(const TPersistent& item) {
    const auto* const own = dynamic_cast<const TSpcItem*>(&item);
    const auto* const list = own ? dynamic_cast<TSpcCollection*>(own->Collection()) : nullptr;
    return list ? list->GetUpdateName() : std::string();
}

TObject* ObjectOf(const TPersistent& owner, const TPropInfo& prop) {
    TObject* object = nullptr;
    if (prop.PropType->Kind == tkClass) prop.Get(owner, &object);
    return object;
}

/// What a property is in the tree; none when it has neither a text nor entries.
std::optional<TEntry> PropEntry(TPersistent& owner, const TPropInfo& prop) {
    constexpr TTypeKind texts[] = {tkInteger, tkChar,   tkEnumeration, tkSet,
                                   tkFloat,   tkString, tkLString,     tkWString};
    TEntry entry{std::string(prop.Name), nullptr, &owner, &prop};
    if (!prop.Get) return std::nullopt;
    if (std::count(std::begin(texts), std::end(texts), prop.PropType->Kind) != 0) return entry;
    TObject* const object = ObjectOf(owner, prop);
    if (ClassCast<TStrings>(object)) return entry;
    // A component is another one's, to which the setting only refers.
    if (ClassCast<TComponent>(object)) return std::nullopt;
    entry.Node = ClassCast<TPersistent>(object);
    return entry.Node ? std::optional(entry) : std::nullopt;
}

/// Calls `visit(const TEntry&)` with what stands directly below a node.
template <class F> void EachEntry(TPersistent& node, F&& visit) {
    if (auto* const data = ClassCast<TExpData>(&node)) {
        visit({"ActiveExperts", &data->ActiveExperts, data, nullptr, "ActiveExperts_"});
        visit({"MenuData", &data->MenuData, data, nullptr, "MenuData_"});
        visit({"CustomData", &data->CustomData, data, nullptr, "CustomData_"});
        return; // the properties are the same
    }
    if (auto* const list = ClassCast<TCollection>(&node))
        for (int i = 0; i < list->Count(); ++i) {
            auto* const item = ClassCast<TSpcItem>(list->Items(i));
            visit({item ? item->GetNodePropName() : IntToStr(i), list->Items(i), list->Items(i)});
        }
    // The entries of a wrapped object stand in the place of its own.
    const auto* const wrapper = ClassCast<TWrapperItem>(&node);
    TPersistent* const nested = wrapper ? wrapper->NestedObject() : nullptr;
    const TClassRecord& record = node.ClassType();
    ForEachProp(record, [&](const TPropInfo& prop) {
        if (record.FindProp(prop.Name) != &prop) return; // a descendant has it again
        if (wrapper && SameText(prop.Name, "NestedObject")) return;
        if (nested && nested->ClassType().FindProp(prop.Name)) return;
        if (const auto entry = PropEntry(node, prop)) visit(*entry);
    });
    if (nested) EachEntry(*nested, visit);
}

// --- Paths ------------------------------------------------------------------------------------

/// Takes a name from the front of a path.
bool TakeName(std::string_view& path, std::string_view name) {
    const bool whole = path.size() == name.size();
    if (!SameText(path.substr(0, name.size()), name) || (!whole && path[name.size()] != '.'))
        return false;
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    return true;
}

/// The entry whose name the path begins with, the longest one; the path becomes the rest.
std::optional<TEntry> TakeEntry(TPersistent& node, std::string_view& path) {
    std::optional<TEntry> found;
    std::string_view rest = path;
    EachEntry(node, [&](const TEntry& entry) {
        std::string_view behind = path;
        if (found && entry.Name.size() <= found->Name.size()) return;
        if (!TakeName(behind, entry.Name)) return;
        found = entry;
        rest = behind;
    });
    path = rest;
    return found;
}

std::vector<std::string> NamesBelow(TPersistent& node) {
    std::vector<std::string> names;
    EachEntry(node, [&names](const TEntry& entry) { names.push_back(entry.Name); });
    return names;
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

/// "; is A meant?", or all that there are.
std::string Instead(std::string_view path, const std::vector<std::string>& names) {
    TNearNames near(path, path.substr(0, path.find('.')));
    for (const std::string& name : names) near.Offer(name);
    std::string meant = MeantText(near.Nearest());
    if (!meant.empty()) return meant;
    return names.empty() ? "; there is nothing" : "; there are " + Joined(names);
}

/// Whether the settings of an item are kept for later.
bool IsUnplaced(TPersistent& node, std::string_view path) {
    const auto* const list = ClassCast<TSpcCollection>(&node);
    return list && std::any_of(list->UnplacedItems.begin(), list->UnplacedItems.end(),
                               [path](const TUnplacedItem& item) {
                                   std::string_view rest = path;
                                   return TakeName(rest, item.Ident);
                               });
}

[[noreturn]] void RefuseBelow(TPersistent& node, std::string_view path, std::string_view where) {
    const std::string name(path.substr(0, path.find('.')));
    if (IsUnplaced(node, path))
        Refuse(Format("%s.%s: no active expert has it; its settings are kept", {where, name}));
    Refuse(Format("there is no '%s' in %s", {name, where}) + Instead(path, NamesBelow(node)));
}

[[noreturn]] void RefuseAtTop(std::string_view path) {
    TExpData& data = ExpData();
    if (IsUnplaced(data.CustomData, path)) RefuseBelow(data.CustomData, path, "CustomData");
    std::vector<std::string> names = NamesBelow(data.CustomData);
    std::vector<std::string> elsewhere;
    EachEntry(data, [&](const TEntry& list) {
        std::string_view rest = path;
        if (const auto item = TakeEntry(*list.Node, rest))
            elsewhere.push_back(list.Name + "." + item->Name);
        names.push_back(list.Name);
    });
    Refuse(Format("there is no '%s'", {path.substr(0, path.find('.'))}) +
           (elsewhere.empty() ? Instead(path, names) : MeantText(elsewhere)));
}

struct TFound {
    TEntry Entry;
    std::string Path; ///< as the program spells it
};

/// What a path leads to; the root for the empty one.
TFound Find(std::string_view path) {
    if (!HasExpData()) throw EScriptError(ExitRefused, "the pack is not started");
    TExpData& data = ExpData();
    TFound found{{"", &data, nullptr}, ""};
    if (path.empty()) return found;
    std::string_view rest = path;
    auto entry = TakeEntry(data, rest);
    if (!entry) {
        entry = TakeEntry(data.CustomData, rest);
        if (entry) found.Path = "CustomData.";
    }
    if (!entry) RefuseAtTop(path);
    for (;;) {
        found.Path += entry->Name;
        found.Entry = *entry;
        if (rest.empty()) return found;
        if (!entry->Node) Refuse(found.Path + " has nothing below it");
        TPersistent& node = *entry->Node;
        entry = TakeEntry(node, rest);
        if (!entry) RefuseBelow(node, rest, found.Path);
        found.Path += '.';
    }
}

TFound FindSetting(std::string_view path) {
    TFound found = Find(path);
    if (found.Entry.Node)
        Refuse((found.Path.empty() ? "a path is missing" : found.Path + " is no setting") +
               "; below it there are " + Joined(NamesBelow(*found.Entry.Node)));
    return found;
}

// --- Values -----------------------------------------------------------------------------------

bool IsColor(const TTypeInfo& type) {
    return SameText(type.Name, ColorType.Name);
}

std::string TextOf(const TEntry& entry) {
    const TPropInfo& prop = *entry.Prop;
    if (IsColor(*prop.PropType)) {
        std::int32_t color = 0;
        prop.Get(*entry.Owner, &color);
        return ColorToString(color);
    }
    if (prop.PropType->Kind != tkClass) return GetPropAsText(*entry.Owner, prop);
    const auto& lines = *ClassCast<TStrings>(ObjectOf(*entry.Owner, prop));
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) text.append(lines[i]).append("\n");
    return text;
}

void PutText(const TEntry& entry, std::string_view text) {
    const TPropInfo& prop = *entry.Prop;
    if (IsColor(*prop.PropType) && text.starts_with('$')) {
        const std::int32_t color = StringToColor(text);
        return prop.Set(*entry.Owner, &color);
    }
    if (prop.PropType->Kind != tkClass) return SetPropByText(*entry.Owner, prop, text);
    ClassCast<TStrings>(ObjectOf(*entry.Owner, prop))->SetTextStr(text);
}

/// "a number": what a property of the type takes; empty when it takes any text.
std::string Wanted(const TTypeInfo& type) {
    const auto names = [](const TTypeInfo& enumeration) {
        return Joined({enumeration.Names.begin(), enumeration.Names.end()});
    };
    if (IsColor(type)) return "a name such as clRed, or a number such as $00C8D0D4";
    switch (type.Kind) {
    case tkInteger:
        return Format("a whole number from %d to %d", {type.MinValue, type.MaxValue});
    case tkEnumeration:
        return "one of " + names(type);
    case tkSet:
        return "any of " + names(*type.CompType) + " in brackets, with commas between";
    case tkFloat:
        return "a number, or a date or a time where it is one";
    default:
        return {};
    }
}

/// Whether it is the program's alone to change a setting.
bool IsFixed(const TEntry& entry) {
    const bool writable = entry.Prop->Set || entry.Prop->PropType->Kind == tkClass;
    if (!writable || SameText(entry.Prop->Name, KeyOf(*entry.Owner))) return true;
    const std::string full = Format("%s.%s", {entry.Owner->ClassName(), entry.Prop->Name});
    const TExpManager* const manager = TExpManager::Instance();
    return manager && manager->Editor()->DisabledProps()->IndexOf(full) >= 0;
}

void AppendBelow(std::string& text, const std::string& path, TPersistent& node) {
    EachEntry(node, [&](const TEntry& entry) {
        const std::string below = (path.empty() ? "" : path + ".") + entry.Name;
        if (entry.Node)
            AppendBelow(text, below, *entry.Node);
        else if (entry.Prop)
            text += below + "=" + ShownSetting(TextOf(entry)) + "\n";
    });
}

} // namespace

std::string GetSetting(std::string_view path) {
    return TextOf(FindSetting(path).Entry);
}

void SetSetting(std::string_view path, std::string_view text) {
    const auto [entry, whole] = FindSetting(path);
    const std::string former = TextOf(entry);
    if (text == former) return;
    if (IsFixed(entry))
        Refuse(Format("%s cannot be changed; it is %s", {whole, ShownSetting(former)}));
    try {
        PutText(entry, text);
    } catch (const Exception& error) {
        const std::string wanted = Wanted(*entry.Prop->PropType);
        Refuse(whole + ": " + ShownSetting(error.Message()) +
               (wanted.empty() ? "" : "; wanted is " + wanted));
    }
}

std::string ListSettings(std::string_view path) {
    const auto [entry, whole] = Find(path);
    std::string text;
    if (entry.Node)
        AppendBelow(text, whole, *entry.Node);
    else
        text = whole + "=" + ShownSetting(TextOf(entry)) + "\n";
    return text;
}

std::string ShownSetting(std::string_view text) {
    std::string escaped = Escaped(text);
    // Backslashes and quotes are escaped, too, but can be seen as they are.
    const auto plain =
        std::count_if(text.begin(), text.end(), [](char c) { return c == '\\' || c == '"'; });
    const bool seen = escaped.size() == text.size() + static_cast<std::size_t>(plain);
    if (seen && Trim(text) == text && !text.starts_with('"')) return std::string(text);
    return escaped.insert(0, 1, '"') + '"';
}

std::string SettingOfShown(std::string_view shown) {
    if (!shown.starts_with('"')) return std::string(shown);
    const std::vector<std::string> words = SplitWords(shown);
    if (words.size() != 1) Refuse("a value in quotes ends with the second of them");
    return words.front();
}

TSettingFilter SettingsWithout(std::string_view path) {
    const TEntry entry = Find(path).Entry;
    if (!entry.Owner) return [](const TPersistent&, std::string_view) { return false; };
    const std::string_view name = entry.Prop ? entry.Prop->Name : entry.Block;
    return [owner = entry.Owner, name, key = name.empty() ? KeyOf(*entry.Owner) : std::string()](
               const TPersistent& instance, std::string_view prop) {
        if (&instance != owner) return true;
        prop.remove_prefix(prop.rfind('.') + 1);
        return name.empty() ? SameText(prop, key) : !SameText(prop, name);
    };
}

} // namespace tarn
