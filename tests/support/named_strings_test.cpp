#include "TNamedStrings.h"

#include "rtl/SysUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

/// The lines and the search table in one text: "line/line NAME[LINE] NAME[LINE]".
std::string Dump(const TNamedStrings& list) {
    std::string text;
    for (int i = 0; i < list.Count(); ++i) text.append(i > 0 ? "/" : "").append(list[i]);
    std::string table = list.GetSearchText();
    for (std::size_t at = 0; (at = table.find("\r\n", at)) != std::string::npos;)
        table.replace(at, 2, " ");
    return text + table;
}

/// What the call does to the list, and with which error or which result it ends.
template <class F> std::string Outcome(TNamedStrings& list, F&& call) {
    std::string end;
    try {
        end = call();
    } catch (const EStringListError& error) {
        end = error.Message();
    }
    return Dump(list) + (end.empty() ? "" : ": " + end);
}

void Fill(TStrings& list, std::string_view lines) {
    list.SetCommaText(lines);
}

// --- Quick search -----------------------------------------------------------------------------

/// Whether the name is found, and where, and its value.
std::string Lookup(const TNamedStrings& list, std::string_view name) {
    int index = -7;
    const bool found = list.FindByName(name, index);
    return (found ? "" : "no ") + std::to_string(index) + " '" + list.GetNamedValue(name) + "'";
}

TEST(NamedStrings, QuickSearchByTheRules) {
    const struct {
        std::string_view Lines;
        void (*Change)(TNamedStrings& list);
        std::string_view Name; ///< looked up at the end
        std::string Expected;
    } cases[] = {
        // Preparing: lines without a name stay out, the first of equal names is found.
        {"b=1,plain,=x,a=,B=2", [](auto&) {}, "B", "b=1/plain/=x/a=/B=2 a[3] b[0] B[4]: 0 '1'"},
        {"a=b=c", [](auto&) {}, "", "a=b=c a[0]: no -1 ''"},
        {"a=b=c", [](auto&) {}, "A", "a=b=c a[0]: 0 'b=c'"},
        {"a=1", [](auto& l) { l.LeaveQuickSearchMode(); }, "a", "a=1: no -1 '1'"},
        {"a=1", [](auto& l) { l.Put(0, "b=2"), l.EnterQuickSearchMode(); }, "b", "b=2 b[0]: 0 '2'"},
        // Values: an overwritten line, a new one that the table never learns of, a deleted one.
        {"a=1", [](auto& l) { l.SetNamedValue("A", "2"); }, "a", "A=2 a[0]: 0 '2'"},
        {"a=1", [](auto& l) { l.SetNamedValue("n", "1"), l.SetNamedValue("n", "2"); }, "n",
         "a=1/n=1/n=2 a[0]: no -1 ''"},
        {"a=1,b=2", [](auto& l) { l.SetNamedValue("a", ""); }, "a", "b=2 a[0] b[1]: 0 '2'"},
        {"a=1", [](auto& l) { l.SetNamedValue("n", ""); }, "n", "a=1 a[0]: no -1 ''"},
        {"a=1", [](auto& l) { l.SetNamedValue("", "x"); }, "", "a=1/=x a[0]: no -1 ''"},
        // Outside the mode the first line of the name is meant, and later ones are found as well.
        {"a=1",
         [](auto& l) {
             l.LeaveQuickSearchMode();
             l.SetNamedValue("n", "1"), l.SetNamedValue("N", "2"), l.SetNamedValue("a", "");
         },
         "n", "N=2: no -1 '2'"},
        // New lines enter the table, those behind them are not counted on.
        {"b=1", [](auto& l) { l.Add("a=2"), l.Add("plain"); }, "a",
         "b=1/a=2/plain a[1] b[0]: 1 '2'"},
        {"b=1", [](auto& l) { l.Insert(0, "a=2"); }, "b", "a=2/b=1 a[0] b[0]: 0 '2'"},
        {"a=1,xy=2", [](auto& l) { l.Insert(0, "b"); }, "xy", "b/a=1/xy=2 a[0] xy[1]: 1 ''"},
        // A line's text that is another line's name is what the table is asked for.
        {"a=1,b=2", [](auto& l) { l.Delete(0); }, "a", "b=2 a[0] b[1]: 0 '2'"},
        {"b=1,a=2,a", [](auto& l) { l.Delete(2); }, "b", "b=1/a=2 a[1]: no -1 ''"},
        {"b=1,a=2,A", [](auto& l) { l.Exchange(2, 0); }, "a", "A/a=2/b=1 a[1] b[0]: 1 '2'"},
        {"b=1,a=2,A", [](auto& l) { l.Exchange(0, 2); }, "b", "A/a=2/b=1 a[1] b[0]: 0 ''"},
        {"A,a=2,b=1", [](auto& l) { l.Exchange(0, 2); }, "b", "b=1/a=2/A a[1] b[2]: 2 ''"},
        {"A,a=2,b=1", [](auto& l) { l.Move(0, 2); }, "b", "a=2/b=1/A a[1] b[2]: 2 ''"},
        {"b=1,a=2", [](auto& l) { l.Move(0, 1); }, "b", "a=2/b=1 a[1] b[0]: 0 '2'"},
        // The mode outlives clearing and assigning.
        {"a=1", [](auto& l) { l.Clear(), l.Add("b=2"); }, "b", "b=2 b[0]: 0 '2'"},
        {"a=1", [](auto& l) { Fill(l, "c=1,b=2"); }, "b", "c=1/b=2 b[1] c[0]: 1 '2'"},
        {"a=1", [](auto& l) { l.SetTextStr("c=1\nb=2"); }, "a", "c=1/b=2 b[1] c[0]: no -1 ''"},
        {"a=1", [](auto& l) { l.Assign(std::make_unique<TStringList>().get()), l.Add("b="); }, "b",
         "b= b[0]: 0 ''"},
        {"a=1",
         [](auto& l) {
             TStringList source{"b=2"};
             l.LeaveQuickSearchMode();
             l.Assign(&source);
         },
         "b", "b=2: no -1 '2'"},
        {"a=1",
         [](auto& l) {
             TStringList source{"c=1", "b=2", "B=3"};
             l.Assign(&source);
         },
         "b", "c=1/b=2/B=3 b[1] B[2] c[0]: 1 '2'"},
    };
    for (const auto& c : cases) {
        TNamedStrings list;
        Fill(list, c.Lines);
        list.EnterQuickSearchMode();
        c.Change(list);
        EXPECT_EQ(Outcome(list, [&] { return Lookup(list, c.Name); }), c.Expected);
    }
}

TEST(NamedStrings, QuickSearchErrors) {
    const struct {
        std::string_view Lines;
        void (*Change)(TNamedStrings& list);
        std::string Expected;
    } cases[] = {
        {"a=1", [](auto& l) { l.Add("A=2"); },
         "a=1/A=2 a[0]: string list does not allow duplicates: A"},
        {"a=1", [](auto& l) { l.Insert(0, "A=2"); },
         "A=2/a=1 a[0]: string list does not allow duplicates: A"},
        {"x,a=1", [](auto& l) { l.Delete(0), (void)l.GetNamedValue("a"); },
         "a=1 a[1]: List index out of bounds (1)"},
        {"x,a=1", [](auto& l) { l.Delete(0), l.SetNamedValue("a", "2"); },
         "a=1 a[1]: List index out of bounds (1)"},
        {"x,a=1", [](auto& l) { l.Delete(0), l.SetNamedValue("a", ""); },
         "a=1 a[1]: List index out of bounds (1)"},
        {"x,a=1,a", [](auto& l) { l.Delete(2); }, "x/a=1/a a[1]: List index out of bounds (1)"},
        {"x,a=1,a", [](auto& l) { l.Exchange(2, 0); },
         "a/a=1/x a[1]: List index out of bounds (1)"},
        {"x,a=1,a", [](auto& l) { l.Move(2, 0); }, "a/x/a=1 a[1]: List index out of bounds (1)"},
        {"a=1", [](auto& l) { l.Delete(1); }, "a=1 a[0]: List index out of bounds (1)"},
        {"a=1", [](auto& l) { l.Move(0, -1); }, "a=1 a[0]: List index out of bounds (-1)"},
    };
    for (const auto& c : cases) {
        TNamedStrings list;
        Fill(list, c.Lines);
        list.EnterQuickSearchMode();
        EXPECT_EQ(Outcome(list, [&] { return c.Change(list), "no error"; }), c.Expected);
    }
    TNamedStrings list;
    Fill(list, "a=1");
    list.EnterQuickSearchMode();
    EXPECT_THROW(list.Assign(nullptr), EConvertError);
    EXPECT_EQ(Dump(list), "a=1 a[0]");
}

TEST(NamedStrings, NamesOfOtherSizesLoseNothing) {
    TNamedStrings list;
    list.SetTextStr("STRA\u017FE=1\n\u00C4=2");
    list.EnterQuickSearchMode();
    EXPECT_EQ(Lookup(list, "strase"), "0 '1'");
    EXPECT_EQ(Lookup(list, "\u00E4"), "1 '2'");
    list.SetNamesAnsiComparing(false);
    EXPECT_EQ(Lookup(list, "strase"), "no -1 ''");
    EXPECT_EQ(Lookup(list, "\u00E4"), "no -1 ''");
}

TEST(NamedStrings, ComparingChangesTheOrderOfTheTable) {
    TNamedStrings list;
    Fill(list, "b=,_=,1=,A=,\u00E9=,B=,~=,a=");
    EXPECT_TRUE(list.NamesAnsiComparing());
    list.EnterQuickSearchMode();
    const std::string lines = "b=/_=/1=/A=/\u00E9=/B=/~=/a=";
    const std::string ansi = " _[1] ~[6] 1[2] A[3] a[7] b[0] B[5] \u00E9[4]";
    const std::string bytes = " 1[2] A[3] a[7] b[0] B[5] _[1] ~[6] \u00E9[4]";
    EXPECT_EQ(Dump(list), lines + ansi);
    list.SetNamesAnsiComparing(false);
    EXPECT_EQ(Dump(list), lines + bytes);
    list.SetNamesAnsiComparing(true);
    EXPECT_EQ(Dump(list), lines + ansi);
    list.LeaveQuickSearchMode();
    list.SetNamesAnsiComparing(false);
    EXPECT_FALSE(list.QuickSearch());
    list.EnterQuickSearchMode();
    EXPECT_EQ(Dump(list), lines + bytes);
}

// --- Against a naive model --------------------------------------------------------------------

/// The rules of quick search, said once more with plain vectors and walks.
struct TModel {
    struct TEntry {
        std::string Name;
        int Line;
    };
    std::vector<std::string> Lines;
    std::vector<TEntry> Table;
    bool Quick = false;
    bool Ansi = true;

    int Order(std::string_view a, std::string_view b) const {
        return Ansi ? AnsiCompareText(a, b) : UpperCase(a).compare(UpperCase(b));
    }
    template <class T> static T& At(std::vector<T>& items, int index) {
        if (index < 0 || index >= static_cast<int>(items.size()))
            throw EStringListError(Format(SListIndexError, {index}));
        return items[static_cast<std::size_t>(index)];
    }
    TEntry* Entry(std::string_view name) {
        for (TEntry& entry : Table)
            if (Quick && Order(entry.Name, name) == 0) return &entry;
        return nullptr;
    }
    void Enter(int index, bool unique) {
        const std::string& line = At(Lines, index);
        const std::size_t mark = line.find('=');
        if (!Quick || mark == std::string::npos || mark == 0) return;
        const std::string name = line.substr(0, mark);
        if (unique && Entry(name))
            throw EStringListError("string list does not allow duplicates: " + name);
        auto at = Table.begin();
        while (at != Table.end() && Order(at->Name, name) <= 0) ++at;
        Table.insert(at, {name, index});
    }
    void SetQuick(bool value) {
        Table.clear();
        Quick = value;
        for (int i = 0; i < static_cast<int>(Lines.size()); ++i) Enter(i, false);
    }
    void Insert(int index, const std::string& line) {
        if (index != static_cast<int>(Lines.size())) At(Lines, index);
        Lines.insert(Lines.begin() + index, line);
        Enter(index, true);
    }
    void Delete(int index) {
        if (const TEntry* const entry = Entry(At(Lines, index))) {
            At(Table, entry->Line);
            Table.erase(Table.begin() + entry->Line);
        }
        Lines.erase(Lines.begin() + index);
    }
    void Renumber(int index) {
        if (const TEntry* const entry = Entry(At(Lines, index)))
            At(Table, entry->Line).Line = index;
    }
    void Exchange(int a, int b) {
        std::string& first = At(Lines, a);
        std::swap(first, At(Lines, b));
        Renumber(b);
    }
    void Move(int from, int to) {
        const std::string line = At(Lines, from);
        At(Lines, to);
        Lines.erase(Lines.begin() + from);
        Lines.insert(Lines.begin() + to, line);
        Renumber(to);
    }
    void Set(const std::string& name, const std::string& value) {
        const TEntry* const entry = Entry(name);
        if (value.empty()) {
            if (entry) Delete(entry->Line);
        } else if (entry)
            At(Lines, entry->Line) = name + "=" + value;
        else
            Lines.push_back(name + "=" + value);
    }
    std::string Get(const std::string& name) {
        const TEntry* const entry = Entry(name);
        if (!entry) return "";
        const std::string& line = At(Lines, entry->Line);
        return line.size() > name.size() ? line.substr(name.size() + 1) : "";
    }
    std::string Dump() const {
        std::string text;
        for (const std::string& line : Lines) text.append(text.empty() ? "" : "/").append(line);
        for (const TEntry& e : Table) text += " " + e.Name + "[" + std::to_string(e.Line) + "]";
        return text;
    }
};

TEST(NamedStrings, AgreesWithTheModel) {
    static const std::string texts[] = {
        "a=1", "A=22",   "b=",  "a",  "b",   "_=3",      "_",
        "ab=", "ab=x=y", "cd=", "Cd", "e=5", "\u00E4=6", "\u00C4=7"};
    static const std::string names[] = {"a", "B", "_", "ab", "CD", "e", "\u00C4", "none", ""};
    std::mt19937 random(11);
    const auto pick = [&](auto& from) { return from[random() % std::size(from)]; };
    for (int round = 0; round < 4000; ++round) {
        TNamedStrings list;
        TModel model;
        std::string done;
        for (int step = 0; step < 25; ++step) {
            const std::string text = pick(texts), name = pick(names);
            const std::string value = random() % 3 ? std::to_string(random() % 100) : "";
            // One step outside on either side now and then.
            const int size = static_cast<int>(model.Lines.size());
            const auto place = [&] { return static_cast<int>(random() % (size + 2u)) - 1; };
            const int i = place(), j = place();
            const auto apply = [&](auto& l, auto add, auto set, auto quick, auto ansi, auto get) {
                try {
                    switch (step < 6 ? 0 : random() % 9) {
                    case 0:
                        return add(l), std::string("add");
                    case 1:
                        return l.Insert(std::max(i, 0), text), std::string("insert");
                    case 2:
                        return l.Delete(i), std::string("delete");
                    case 3:
                        return l.Exchange(i, j), std::string("exchange");
                    case 4:
                        return l.Move(i, j), std::string("move");
                    case 5:
                        return set(l), std::string("set");
                    case 6:
                        return quick(l), std::string("quick");
                    case 7:
                        return ansi(l), std::string("ansi");
                    default:
                        return get(l);
                    }
                } catch (const EStringListError& error) {
                    return std::string(error.Message());
                }
            };
            const bool on = !model.Quick || random() % 2 == 0;
            const std::mt19937 same = random;
            const std::string expected = apply(
                model, [&](auto& l) { l.Insert(size, text); },
                [&](auto& l) {
                    if (l.Quick) l.Set(name, value);
                },
                [&](auto& l) { l.SetQuick(on); },
                [&](auto& l) {
                    l.Ansi = !l.Ansi;
                    std::stable_sort(l.Table.begin(), l.Table.end(),
                                     [&](auto& a, auto& b) { return l.Order(a.Name, b.Name) < 0; });
                },
                [&](auto& l) { return l.Quick ? l.Get(name) : ""; });
            random = same;
            const std::string actual = apply(
                list, [&](auto& l) { l.Add(text); },
                [&](auto& l) {
                    if (l.QuickSearch()) l.SetNamedValue(name, value);
                },
                [&](auto& l) { l.SetQuickSearch(on); },
                [&](auto& l) { l.SetNamesAnsiComparing(!l.NamesAnsiComparing()); },
                [&](auto& l) { return l.QuickSearch() ? l.GetNamedValue(name) : ""; });
            done += "\n" + expected + " -> " + model.Dump();
            ASSERT_EQ(actual, expected) << done;
            ASSERT_EQ(Dump(list), model.Dump()) << done;
        }
    }
}

} // namespace
} // namespace tarn
