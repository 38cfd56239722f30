#include "TIniStrings.h"

#include "TTestFolder.h"
#include "rtl/SafeFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tarn {
namespace {

/// The document of a text and back, lines joined by "|".
std::string Joined(const TIniStrings& ini) {
    TStringList lines;
    ini.GetStrings(lines);
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) text.append(i ? "|" : "").append(lines[i]);
    return text;
}

std::string Joined(const TStrings& lines) {
    std::string text;
    for (int i = 0; i < lines.Count(); ++i) text.append(i ? "|" : "").append(lines[i]);
    return text;
}

TEST(IniStrings, ParsesAndPrints) {
    struct {
        std::string_view Text, Printed, PrintedWithoutBareLines;
    } const cases[] = {
        {"", "", ""},
        {"a=1\n[S]\nk=v=w", "[S]|k=v=w|", "[S]|k=v=w|"},
        {"[S]\r\n=x\r\nplain\r\n", "[S]|=x|plain|", "[S]|"},
        {"[S]\nk=\n;c=1\n\n l = r ", "[S]|k| l = r |", "[S]|k| l = r |"},
        {"[]\n[ ]\n []\n[x\n]", "[]||[ ]| []|[x|]|", "[]||[ ]|"},
        {"[[a]]\rb=1\r[A=B]\r[", "[[a]]|b=1||[A=B]|[|", "[[a]]|b=1||[A=B]|"},
        {std::string_view("[a\0b]\nc\0d=e\0f", 13), std::string_view("[a\0b]|c\0d=e\0f|", 14),
         std::string_view("[a\0b]|c\0d=e\0f|", 14)},
        {"[S]\na=1\n[s]\nb=2\na=3\nA=4\n[S]\na", "[S]|a=1||[s]|b=2|a=3|A=4||[S]|a|",
         "[S]|a=1||[s]|b=2|a=3|A=4||[S]|"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Text);
        TIniStrings ini;
        ini.SetText(std::string(c.Text));
        EXPECT_EQ(Joined(ini), c.Printed);
        TStringList lines;
        lines.SetTextStr(ini.GetText());
        TIniStrings again;
        again.SetStrings(lines);
        EXPECT_EQ(Joined(again), c.Printed);
        ini.IgnoreBareLines = true;
        ini.SetText(std::string(c.Text));
        EXPECT_EQ(Joined(ini), c.PrintedWithoutBareLines);
    }
}

TEST(IniStrings, ReadsWritesRenamesAndDeletes) {
    TIniStrings ini;
    ini.SetText("[Ä]\nkey=1\nKEY=2\n[ä]\nkey=3");
    EXPECT_EQ(ini.ReadString("ä", "Key", "d"), "1");
    EXPECT_EQ(ini.ReadString("ä", "none", "d"), "d");
    EXPECT_EQ(ini.ReadString("none", "key", "d"), "d");
    ini.AddString("none", "a=b");
    ini.ReplaceString("none", "a", "b");
    ini.ReplaceString("ä", "none", "b");
    ini.DeleteKey("none", "a");
    ini.DeleteKey("ä", "none");
    ini.EraseSection("none");
    EXPECT_EQ(Joined(ini), "[Ä]|key=1|KEY=2||[ä]|key=3|");
    ini.ReplaceString("ä", "KEY", "new");
    EXPECT_EQ(ini.ReadString("ä", "key", "d"), "2");
    ini.DeleteKey("ä", "key");
    ini.WriteString("ä", "a=b", "c");
    ini.WriteString("ä", "", "v");
    ini.WriteString("ä", "e", "");
    ini.WriteString("new", ";k", "two\r\nlines");
    ini.AddString("new", ";k=again");
    EXPECT_EQ(Joined(ini), "[Ä]|new=1|a=b=c|=v|e||[ä]|key=3||[new]|;k=two\r\nlines|;k=again|");
    EXPECT_EQ(ini.ReadString("ä", "a", "d"), "b=c");
    ini.EraseSection("Ä");
    EXPECT_EQ(ini.ReadString("Ä", "key", "d"), "3");

    TStringList list{"old"};
    ini.ReadSections(list);
    EXPECT_EQ(Joined(list), "ä|new");
    ini.ReadSection("NEW", list);
    EXPECT_EQ(Joined(list), ";k|;k");
    ini.WriteString("ä", "empty", "");
    ini.ReadSectionValues("ä", list);
    EXPECT_EQ(Joined(list), "key=3|empty");
    ini.ReadSectionValues("none", list);
    EXPECT_EQ(list.Count(), 0);
    list.Add("old");
    ini.ReadSection("none", list);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_TRUE(ini.HasSection("Ä") && ini.HasKey("ä", "EMPTY") && ini.SectionExists("new"));
    EXPECT_FALSE(ini.HasSection("none") || ini.HasKey("none", "") || ini.ValueExists("ä", "x") ||
                 ini.SectionExists("none"));
}

TEST(IniStrings, LinesInAndOut) {
    // A line is a line, also with breaks in it.
    const TStringList source{"[S]", "k=a\n[T]", "old=1", ";\nx=1"};
    TIniStrings ini;
    ini.SetStrings(source);
    EXPECT_EQ(Joined(ini), "[S]|k=a\n[T]|old=1|");

    TStringList lines{"before"};
    int changes = 0;
    const auto count = [&changes](TObject*) { ++changes; };
    lines.OnChange = TNotifyEvent::Calling(count);
    ini.GetStrings(lines);
    EXPECT_EQ(Joined(lines), "before|[S]|k=a\n[T]|old=1|");
    EXPECT_EQ(changes, 1);

    // A new document shares nothing with keys that the former one had given back.
    ini.DeleteKey("S", "k");
    ini.SetStrings(source);
    ini.IgnoreBareLines = true;
    for (const char* line : {"bare", "=bare", "e=", "new=2"}) ini.AddString("s", line);
    ini.WriteString("S", "", "bare");
    EXPECT_EQ(Joined(ini), "[S]|k=a\n[T]|old=1|e|new=2|");

    // The lines may be a section of the document itself.
    ini.IgnoreBareLines = false;
    ini.ReplaceString("S", "k", "[keys]");
    ini.SetStrings(*ini.GetSection("S"));
    EXPECT_EQ(Joined(ini), "[keys]|old|e|new|");
}

TEST(IniStrings, SortsStablyAndKeepsThePlaceOfNewKeys) {
    TIniStrings ini;
    ini.SetText("[b]\nz=1\na=1\nA=2\nm=1\n[a]\ny=1\nx=1");
    ini.Sort();
    EXPECT_EQ(Joined(ini), "[a]|x=1|y=1||[b]|a=1|A=2|m=1|z=1|");
    ini.ReplaceString("b", "z", "A"); // from behind: behind its equals
    ini.ReplaceString("b", "m", "B");
    ini.AddString("b", "a=0"); // a new one: before its equals
    ini.WriteString("c", "q", "1");
    ini.WriteString("c", "p", "1");
    ini.AddSection("aa");
    ini.AddString("aa", "2");
    ini.AddString("aa", "1");
    EXPECT_EQ(Joined(ini), "[a]|x=1|y=1||[aa]|2|1||[b]|a=0|a=1|A=2|A=1|B=1||[c]|p=1|q=1|");
    ini.SetKeySorted(true); // no change: the flag is on
    EXPECT_EQ(ini.GetSection("aa")->Sorted(), false);
    ini.ReplaceString("b", "a", "B"); // from the front: before its equals
    EXPECT_EQ(Joined(*ini.GetSection("b")), "a|A|A|B|B");
    EXPECT_EQ(ini.ReadString("b", "B", ""), "0");
    // Parsing keeps both switches.
    ini.SetText("[b]\nd=1\nc=1\n[A]");
    EXPECT_EQ(Joined(ini), "[A]||[b]|c=1|d=1|");
    ini.UnSort();
    ini.WriteString("0", "b", "1");
    ini.WriteString("0", "a", "1");
    EXPECT_EQ(Joined(ini), "[A]||[b]|c=1|d=1||[0]|b=1|a=1|");
}

TEST(IniStrings, SectionIsAStringListWithValuesAsCompanions) {
    TIniStrings ini;
    TIniSection& keys = *ini.AddSection("S");
    keys.TStrings::Add("b");
    keys.Insert(0, "a");
    EXPECT_EQ(TStrings::ClassRecord.Name, keys.ClassName());
    EXPECT_EQ(Joined(keys), "a|b");
    keys.Put(1, "c");
    EXPECT_EQ(Joined(keys), "a|c");
    ini.WriteString("s", "C", "v");
    EXPECT_EQ(dynamic_cast<TIniValue&>(*keys.GetObject(1)).Text(), "v");
    EXPECT_EQ(Joined(ini), "[S]|a|c=v|");
    EXPECT_EQ(keys.IndexOf("C"), 1);
    TObject other;
    EXPECT_THROW(keys.PutObject(0, &other), EStringListError);
    EXPECT_THROW(keys.AddObject("x", &other), EStringListError);
    EXPECT_THROW(keys.InsertObject(0, "x", &other), EStringListError);
    EXPECT_THROW(keys.Insert(3, "x"), EStringListError);
    EXPECT_THROW(keys.Delete(2), EStringListError);
    keys.SetSorted(true);
    EXPECT_THROW(keys.Put(0, "x"), EStringListError);
    EXPECT_THROW(keys.Insert(0, "x"), EStringListError);
    keys.Delete(0);
    EXPECT_EQ(Joined(ini), "[S]|c=v|");
    keys.Clear();
    EXPECT_TRUE(keys.Sorted() && keys.Count() == 0);
}

TEST(IniStrings, TypedValues) {
    TIniStrings ini;
    ini.WriteInteger("S", "i", -42);
    ini.WriteBool("S", "b", true);
    ini.SetText(std::string(Trim(ini.GetText())));
    EXPECT_EQ(Joined(ini), "[S]|i=-42|b=1|");
    for (const char* line : {"hex=$1F", "bad=12x", "big=99999999999", "zero=0"})
        ini.AddString("S", line);
    EXPECT_EQ(ini.ReadInteger("S", "i", 0), -42);
    EXPECT_EQ(ini.ReadInteger("S", "hex", 0), 31);
    EXPECT_EQ(ini.ReadInteger("S", "bad", 7), 7);
    EXPECT_EQ(ini.ReadInteger("S", "big", 7), 7);
    EXPECT_EQ(ini.ReadInteger("S", "none", 7), 7);
    EXPECT_TRUE(ini.ReadBool("S", "hex", false) && ini.ReadBool("S", "none", true));
    EXPECT_FALSE(ini.ReadBool("S", "zero", true) || ini.ReadBool("S", "bad", false));
}

TEST(IniStrings, FileIsReadAndReplacedAsAWhole) {
    const TTestFolder folder;
    const std::string file = folder.File("a.ini");
    TIniStrings missing(file);
    EXPECT_EQ(Joined(missing), "");
    missing.WriteString("S", "k", "v");
    missing.UpdateFile();
    EXPECT_EQ(LoadFileText(file), "[S]\r\nk=v\r\n\r\n");

    SaveFileText(file, "\xEF\xBB\xBF[S]\nk=w");
    missing.LoadValues();
    EXPECT_EQ(missing.ReadString("S", "k", ""), "w");
    missing.UpdateFile();
    EXPECT_EQ(LoadFileText(file), "\xEF\xBB\xBF[S]\r\nk=w\r\n\r\n");

    SaveFileText(file, "[S]\nk=x");
    missing.LoadValues();
    missing.UpdateFile();
    EXPECT_EQ(LoadFileText(file), "[S]\r\nk=x\r\n\r\n");

    TIniStrings nameless;
    nameless.WriteString("S", "k", "v");
    EXPECT_THROW(nameless.UpdateFile(), EInOutError);
    nameless.LoadValues();
    EXPECT_EQ(Joined(nameless), "");
    EXPECT_THROW(TIniStrings(folder.Path()), EFileError);
}

// --- Against a plain list ----------------------------------------------------------------------

/// The same rules on plain vectors.
class TNaiveIni {
public:
    struct TKey {
        std::string Name, Value;
    };
    struct TSection {
        std::string Name;
        bool Sorted;
        std::vector<TKey> Keys;
    };
    std::vector<TSection> Sections;
    bool SectionSorted = false, KeySorted = false;

    template <class T> static T* Find(std::vector<T>& items, std::string_view name) {
        for (T& item : items)
            if (AnsiCompareText(item.Name, name) == 0) return &item;
        return nullptr;
    }
    template <class T> static T& Add(std::vector<T>& items, bool sorted, T item) {
        auto at = items.end();
        if (sorted)
            at = std::find_if(items.begin(), items.end(), [&](const T& other) {
                return AnsiCompareText(other.Name, item.Name) >= 0;
            });
        return *items.insert(at, std::move(item));
    }
    template <class T> static void Sort(std::vector<T>& items) {
        std::stable_sort(items.begin(), items.end(), [](const T& a, const T& b) {
            return AnsiCompareText(a.Name, b.Name) < 0;
        });
    }
    void AddLine(TSection& section, const std::string& line) {
        const std::size_t mark = line.find('=');
        if (mark == 0 || mark == std::string::npos)
            Add(section.Keys, section.Sorted, {line, ""});
        else
            Add(section.Keys, section.Sorted, {line.substr(0, mark), line.substr(mark + 1)});
    }
    std::string Text() const {
        std::string text;
        for (const TSection& section : Sections) {
            text += "[" + section.Name + "]\r\n";
            for (const TKey& key : section.Keys)
                text += key.Name + (key.Value.empty() ? "" : "=" + key.Value) + "\r\n";
            text += "\r\n";
        }
        return text;
    }
};

/// Does the same to both documents, many times, with few names so that equals abound.
void PlayAtRandom(unsigned seed, int steps, int names) {
    std::mt19937 random(seed);
    const auto upTo = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto name = [&] {
        std::string text = (upTo(2) ? "k" : "K") + std::to_string(upTo(names));
        if (upTo(20) == 0) text = upTo(2) ? "" : "Ж=" + text;
        return text;
    };
    TIniStrings ini;
    TNaiveIni naive;
    using TNaive = TNaiveIni;
    for (int step = 0; step < steps; ++step) {
        const std::string section = (upTo(2) ? "s" : "S") + std::to_string(upTo(3));
        const std::string key = name();
        const std::string value = upTo(4) ? std::to_string(step) : "";
        const std::string line = Format("%s=%s", {key, value});
        TNaive::TSection* const keys = TNaive::Find(naive.Sections, section);
        TNaive::TKey* const found = keys ? TNaive::Find(keys->Keys, key) : nullptr;
        ASSERT_EQ(ini.ReadString(section, key, "none"), found ? found->Value : "none");
        switch (upTo(100)) {
        case 0:
            ini.SetKeySorted(!ini.KeySorted());
            naive.KeySorted = !naive.KeySorted;
            for (auto& s : naive.Sections) {
                s.Sorted = naive.KeySorted;
                if (s.Sorted) TNaive::Sort(s.Keys);
            }
            break;
        case 1:
            ini.SetSectionSorted(!ini.SectionSorted());
            naive.SectionSorted = !naive.SectionSorted;
            if (naive.SectionSorted) TNaive::Sort(naive.Sections);
            break;
        case 2:
            ini.AddSection(section);
            TNaive::Add(naive.Sections, naive.SectionSorted, {section, false, {}});
            break;
        case 3:
            if (upTo(5)) break;
            ini.EraseSection(section);
            if (keys) naive.Sections.erase(naive.Sections.begin() + (keys - naive.Sections.data()));
            break;
        default:
            if (const int what = upTo(8); what < 2) {
                ini.AddString(section, line);
                if (keys) naive.AddLine(*keys, line);
            } else if (what < 4) {
                ini.WriteString(section, key, value);
                if (found)
                    found->Value = value;
                else
                    naive.AddLine(keys ? *keys
                                       : TNaive::Add(naive.Sections, naive.SectionSorted,
                                                     {section, naive.KeySorted, {}}),
                                  line);
            } else if (what < 6) {
                const std::string newKey = name();
                ini.ReplaceString(section, key, newKey);
                if (found) found->Name = newKey;
                if (keys && keys->Sorted) TNaive::Sort(keys->Keys);
            } else {
                ini.DeleteKey(section, key);
                if (found) keys->Keys.erase(keys->Keys.begin() + (found - keys->Keys.data()));
            }
        }
        if (step % 16 == 0) {
            ASSERT_EQ(ini.GetText(), naive.Text()) << "seed " << seed;
        }
    }
    ASSERT_EQ(ini.GetText(), naive.Text()) << "seed " << seed;
    for (const TNaive::TSection& section : naive.Sections) {
        if (TNaive::Find(naive.Sections, section.Name) != &section) continue;
        const TIniSection& keys = *ini.GetSection(section.Name);
        for (int i = 0; i < keys.Count(); ++i) {
            ASSERT_EQ(keys[i], section.Keys[static_cast<std::size_t>(i)].Name);
            ASSERT_EQ(AnsiCompareText(keys[keys.IndexOf(keys[i])], keys[i]), 0);
        }
    }
}

TEST(IniStrings, DoesWhatPlainListsDo) {
    for (unsigned seed = 0; seed < 20; ++seed) PlayAtRandom(seed, 2000, seed % 2 ? 8 : 60);
}

/// What would take hours if any step walked the whole document.
TEST(IniStrings, LargeDocuments) {
    constexpr int keys = 50'000;
    TIniStrings ini;
    ini.SetKeySorted(true);
    for (int i = 0; i < keys; ++i) ini.WriteString("S", std::to_string(i * 7919LL % keys), "v");
    for (int i = 0; i < keys; ++i) ini.ReplaceString("S", std::to_string(i), "same");
    const TIniSection& section = *ini.GetSection("S");
    EXPECT_EQ(section.Count(), keys);
    EXPECT_EQ(section.IndexOf("same"), 0);
    ini.SetKeySorted(false);
    for (int i = 0; i < keys / 2; ++i) {
        ini.DeleteKey("S", "same");
        ini.ReplaceString("S", "same", std::to_string(i));
    }
    EXPECT_EQ(section.Count(), keys / 2);
    EXPECT_EQ(section[0], "0");

    std::string headers;
    for (int i = 0; i < keys; ++i) headers += "[]\n";
    ini.SetText(headers);
    for (int i = 0; i < keys; ++i) ini.EraseSection("");
    EXPECT_EQ(ini.GetText(), "");
}

} // namespace
} // namespace tarn
