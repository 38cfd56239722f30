#include "rtl/SysUtils.h"
#include "rtl/TStrings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>
#include <unistd.h>

namespace tarn {
namespace {

using TLines = std::vector<std::string>;

TLines Lines(const TStrings& list) {
    TLines lines;
    for (int i = 0; i < list.Count(); ++i) lines.push_back(list[i]);
    return lines;
}

std::string RandomText(std::mt19937& random, std::string_view alphabet) {
    std::string text;
    for (unsigned i = random() % 12; i > 0; --i) text += alphabet[random() % alphabet.size()];
    return text;
}

// --- Texts ------------------------------------------------------------------------------------

TEST(Strings, TextToLines) {
    const struct {
        std::string_view Text;
        TLines Expected;
    } cases[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\r\n", {"a"}},
        {"a\r", {"a"}},
        {"a\n", {"a"}},
        {"\r\n", {""}},
        {"\n\r", {"", ""}},
        {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
        {"a\r\r\n\nb", {"a", "", "", "b"}},
    };
    for (const auto& c : cases) {
        TStringList list{"old"};
        list.SetTextStr(c.Text);
        EXPECT_EQ(Lines(list), c.Expected) << testing::PrintToString(c.Text);
        std::string joined;
        for (const std::string& line : c.Expected) joined += line + "\r\n";
        EXPECT_EQ(list.GetTextStr(), joined);
    }
}

TEST(Strings, ForEachLineAgreesWithANaiveSplitter) {
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        const std::string text = RandomText(random, "ab\r\n");
        TLines expected;
        std::string line;
        bool open = false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            open = text[i] != '\r' && text[i] != '\n';
            if (open) {
                line += text[i];
                continue;
            }
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            expected.push_back(std::exchange(line, {}));
        }
        if (open) expected.push_back(line);
        TLines actual;
        ForEachLine(text, [&](std::string_view s) { actual.emplace_back(s); });
        ASSERT_EQ(actual, expected) << testing::PrintToString(text);
    }
}

TEST(Strings, CommaText) {
    const struct {
        std::string_view Text;
        TLines Expected;
        std::string Back;
    } cases[] = {
        {"", {}, ""},
        {"  ", {}, ""},
        {"\"\"", {""}, "\"\""},
        {"a", {"a"}, "a"},
        {"a,b c", {"a", "b", "c"}, "a,b,c"},
        {" a , b ", {"a", "b"}, "a,b"},
        {",", {"", ""}, ","},
        {"a,,b,", {"a", "", "b", ""}, "a,,b,"},
        {"\"a,\"\"b\"\" c\",d", {"a,\"b\" c", "d"}, "\"a,\"\"b\"\" c\",d"},
        {"\"a\"b", {"a", "b"}, "a,b"},
        {"\"open", {"open"}, "open"},
        {std::string_view("\"a\"\"", 3), {"a"}, "a"}, // what follows the text is not looked at
        {"a\"b", {"a\"b"}, "\"a\"\"b\""},
        {"Russian=r.dll,English=e.dll",
         {"Russian=r.dll", "English=e.dll"},
         "Russian=r.dll,English=e.dll"},
    };
    for (const auto& c : cases) {
        TStringList list{"old"};
        list.SetCommaText(c.Text);
        EXPECT_EQ(Lines(list), c.Expected) << c.Text;
        EXPECT_EQ(list.GetCommaText(), c.Back);
    }
}

TEST(Strings, CommaTextRoundTrip) {
    std::mt19937 random(4);
    for (int round = 0; round < 3000; ++round) {
        TStringList list, back;
        for (unsigned i = random() % 4; i > 0; --i)
            list.Add(RandomText(random, std::string_view("ab\", \t\r\n\0=", 10)));
        back.SetCommaText(list.GetCommaText());
        ASSERT_EQ(Lines(back), Lines(list)) << list.GetCommaText();
    }
}

TEST(Strings, TextsMayBeStringsOfTheListItself) {
    TStringList list{"long enough to stand outside the string object\nsecond"};
    list.SetTextStr(list[0]);
    EXPECT_EQ(Lines(list), (TLines{"long enough to stand outside the string object", "second"}));
    list.Put(0, "one,two,\"three and a text that is long enough\"");
    list.SetCommaText(list[0]);
    EXPECT_EQ(Lines(list), (TLines{"one", "two", "three and a text that is long enough"}));
    for (int i = 0; i < 20; ++i) list.Add(list[2]);
    list.AddStrings(list);
    EXPECT_EQ(list.Count(), 46);
    EXPECT_EQ(list[45], list[2]);
}

TEST(Strings, NamesAndValues) {
    TStringList list{"plain", "Name=one", "=nameless", "NAME=two", "a=b=c"};
    EXPECT_EQ(list.IndexOfName("name"), 1);
    EXPECT_EQ(list.IndexOfName("plain"), -1);
    EXPECT_EQ(list.IndexOfName(""), 2);
    EXPECT_EQ(list.Value("nAmE"), "one");
    EXPECT_EQ(list.Value("A"), "b=c");
    EXPECT_EQ(list.Value("none"), "");
    EXPECT_EQ(list.Name(0), "");
    EXPECT_EQ(list.Name(4), "a");
}

TEST(Strings, SetsValues) {
    const struct {
        std::string_view Name, Value;
        TLines Expected;
    } cases[] = {
        {"A", "2", {"A=2", "plain", "A=second", "=nameless"}},
        {"a", "", {"plain", "A=second", "=nameless"}},
        {"plain", "x", {"a=1", "plain", "A=second", "=nameless", "plain=x"}},
        {"plain", "", {"a=1", "plain", "A=second", "=nameless"}},
        {"", "x", {"a=1", "plain", "A=second", "=x"}},
    };
    for (const auto& c : cases) {
        TStringList list{"a=1", "plain", "A=second", "=nameless"};
        list.SetValue(c.Name, c.Value);
        EXPECT_EQ(Lines(list), c.Expected) << c.Name << "=" << c.Value;
    }
    TStringList sorted{"b=1"};
    sorted.SetSorted(true);
    sorted.SetValue("a", "2");
    EXPECT_THROW(sorted.SetValue("b", "3"), EStringListError);
    EXPECT_EQ(Lines(sorted), (TLines{"a=2", "b=1"}));
}

TEST(Strings, Equal) {
    const TStringList list{"a", "b"};
    EXPECT_TRUE(list.Equals(TStringList{"a", "b"}));
    EXPECT_FALSE(list.Equals(TStringList{"a", "B"}));
    EXPECT_FALSE(list.Equals(TStringList{"a"}));
    EXPECT_FALSE(list.Equals(TStringList{"a", "b", ""}));
}

TEST(Strings, LoadsAndSavesFiles) {
    const std::string name = testing::TempDir() + "tarn_strings_" + std::to_string(::getpid());
    const TStringList saved{"a", "", std::string_view("b\0c", 3)};
    saved.SaveToFile(name);
    TStringList loaded{"old"};
    loaded.LoadFromFile(name);
    EXPECT_EQ(Lines(loaded), Lines(saved));
    std::remove(name.c_str());

    const auto error = [](auto call) {
        try {
            call();
        } catch (const EInOutError& e) {
            return std::string(e.Message());
        }
        return std::string("none");
    };
    EXPECT_EQ(error([&] { loaded.LoadFromFile(name); }),
              "cannot read " + name + ": no such file or folder");
    EXPECT_EQ(error([&] { loaded.SaveToFile(name + "/x"); }),
              "cannot write " + name + "/x: no such file or folder");
    EXPECT_EQ(Lines(loaded), Lines(saved));
}

// --- The list ---------------------------------------------------------------------------------

TEST(StringList, MovesCompanionsWithTheirStrings) {
    TObject a, b, c;
    const auto filled = [&](auto change) {
        TStringList list;
        list.AddObject("a", &a);
        list.AddObject("b", &b);
        list.InsertObject(2, "c", &c);
        change(list);
        std::string text;
        for (int i = 0; i < list.Count(); ++i) {
            const TObject* const object = list.GetObject(i);
            text += list[i] + (object == &a ? "1" : object == &b ? "2" : object == &c ? "3" : "0");
        }
        return text;
    };
    EXPECT_EQ(filled([](TStringList& l) { l.Move(0, 2); }), "b2c3a1");
    EXPECT_EQ(filled([](TStringList& l) { l.Move(2, 0); }), "c3a1b2");
    EXPECT_EQ(filled([](TStringList& l) { l.Move(1, 1); }), "a1b2c3");
    EXPECT_EQ(filled([](TStringList& l) { l.Exchange(0, 2); }), "c3b2a1");
    EXPECT_EQ(filled([](TStringList& l) { l.Delete(1); }), "a1c3");
    EXPECT_EQ(filled([](TStringList& l) { l.Insert(0, "x"); }), "x0a1b2c3");
    EXPECT_EQ(filled([](TStringList& l) { l.Put(1, "x"); }), "a1x2c3");
    EXPECT_EQ(filled([&](TStringList& l) { l.PutObject(0, &c); }), "a3b2c3");
    EXPECT_EQ(filled([](TStringList& l) { l.SetTextStr("a"); }), "a0");
    EXPECT_EQ(filled([&](TStringList& l) { l.Delete(l.IndexOfObject(&b)); }), "a1c3");
    EXPECT_EQ(filled([&](TStringList& l) { l.Insert(l.IndexOfObject(nullptr) + 1, "x"); }),
              "x0a1b2c3");
    EXPECT_EQ(filled([](TStringList& l) {
                  TStringList copy;
                  copy.Assign(&l);
                  l.Clear();
                  l.AddStrings(copy);
              }),
              "a1b2c3");
}

TEST(StringList, RefusesIndexesOutside) {
    TStringList list{"a", "b"};
    const struct {
        int Index;
        std::function<void(int)> Call;
    } cases[] = {
        {2, [&](int i) { list.Get(i); }},
        {-1, [&](int i) { list.GetObject(i); }},
        {2, [&](int i) { list.Put(i, "x"); }},
        {7, [&](int i) { list.PutObject(i, nullptr); }},
        {3, [&](int i) { list.Insert(i, "x"); }},
        {-1, [&](int i) { list.Insert(i, "x"); }},
        {2, [&](int i) { list.Delete(i); }},
        {2, [&](int i) { list.Exchange(0, i); }},
        {-1, [&](int i) { list.Exchange(i, 0); }},
        {2, [&](int i) { list.Move(0, i); }},
        {-2, [&](int i) { list.Move(i, 0); }},
        {2, [&](int i) { list.TStrings::Exchange(0, i); }},
        {2, [&](int i) { list.TStrings::Move(0, i); }},
    };
    for (const auto& c : cases) {
        try {
            c.Call(c.Index);
            ADD_FAILURE() << c.Index << " was accepted in case " << (&c - cases);
        } catch (const EStringListError& error) {
            EXPECT_EQ(error.Message(), Format(SListIndexError, {c.Index}));
        }
        EXPECT_EQ(Lines(list), (TLines{"a", "b"})) << "case " << (&c - cases);
    }
}

TEST(StringList, Sorting) {
    TObject first, second;
    TStringList list;
    list.AddObject("b", &first);
    list.Add("10");
    list.AddObject("B", &second);
    list.Add("_");
    list.Add("a");
    list.Sort();
    EXPECT_EQ(Lines(list), (TLines{"_", "10", "a", "b", "B"}));
    EXPECT_EQ(list.GetObject(3), &first);
    EXPECT_EQ(list.GetObject(4), &second);
    EXPECT_EQ(list.IndexOf("A"), 2);
    EXPECT_EQ(list.IndexOf("c"), -1);
    list.Add("0"); // sorted once, not for ever
    EXPECT_EQ(list[5], "0");
}

TEST(StringList, KeepsSortedAndTreatsDuplicates) {
    const struct {
        TDuplicates Duplicates;
        TLines Expected;
    } cases[] = {
        {dupIgnore, {"A", "b", "C"}},
        {dupAccept, {"a", "A", "b", "C"}},
        {dupError, {"A", "b", "C"}},
    };
    for (const auto& c : cases) {
        TStringList list{"C", "A", "b"};
        list.SetSorted(true);
        list.Duplicates = c.Duplicates;
        std::string message;
        try {
            EXPECT_EQ(list.Add("a"), 0);
        } catch (const EStringListError& error) {
            message = error.Message();
        }
        EXPECT_EQ(Lines(list), c.Expected);
        EXPECT_EQ(message,
                  c.Duplicates == dupError ? "string list does not allow duplicates: a" : "");
        int place = 0;
        EXPECT_TRUE(list.Find("B", place));
        EXPECT_EQ(place, list.IndexOf("b"));
        EXPECT_FALSE(list.Find("bb", place));
        EXPECT_EQ(place, list.Count() - 1);
        EXPECT_THROW(list.Insert(0, "x"), EStringListError);
        EXPECT_THROW(list.Put(0, "x"), EStringListError);
        EXPECT_THROW(list.Move(0, 1), EStringListError);
    }
}

TEST(StringList, LongListsAgreeWithAVector) {
    std::mt19937 random(8);
    const auto below = [&](std::size_t end) { return static_cast<int>(random() % end); };
    for (int round = 0; round < 4; ++round) {
        TStringList list;
        TLines model;
        // The list grows, then shrinks to nothing.
        const int turns = 6000;
        for (int turn = 0; turn < turns || !model.empty(); ++turn) {
            const std::string line = std::to_string(turn);
            const int i = below(model.size() + 1);
            const int j = below(model.size() + 1);
            const int size = static_cast<int>(model.size());
            const unsigned kind = turn < turns ? random() % 4 : 4 + random() % 4;
            if (kind == 0) {
                list.Add(line);
                model.push_back(line);
            } else if (kind < 4) {
                list.Insert(i, line);
                model.insert(model.begin() + i, line);
            } else if (i == size || j == size) {
                continue;
            } else if (kind == 5) {
                list.Exchange(i, j);
                std::swap(model[static_cast<std::size_t>(i)], model[static_cast<std::size_t>(j)]);
            } else if (kind == 6) {
                list.Move(i, j);
                const std::string moved = model[static_cast<std::size_t>(i)];
                model.erase(model.begin() + i);
                model.insert(model.begin() + j, moved);
            } else {
                // In runs, so that chunks become empty.
                for (int n = std::min(size - i, 40); n > 0; --n) list.Delete(i);
                model.erase(model.begin() + i, model.begin() + std::min(size, i + 40));
            }
            if (turn % 50 == 0) {
                ASSERT_EQ(Lines(list), model) << "round " << round << ", turn " << turn;
            }
        }
        ASSERT_EQ(list.Count(), 0);
    }
}

TEST(StringList, LongSortedLists) {
    std::mt19937 random(9);
    TStringList added, sorted;
    added.SetSorted(true);
    added.Duplicates = dupAccept;
    TLines model;
    for (int i = 0; i < 5000; ++i) {
        model.push_back(std::to_string(random() % 4000));
        added.Add(model.back());
        sorted.Add(model.back());
    }
    sorted.SetSorted(true);
    std::sort(model.begin(), model.end());
    EXPECT_EQ(Lines(added), model);
    EXPECT_EQ(Lines(sorted), model);
    const auto expectFinds = [&] {
        for (int i = 0; i < 4000; ++i) {
            const std::string text = std::to_string(i);
            int index = -7;
            const auto place = std::lower_bound(model.begin(), model.end(), text);
            EXPECT_EQ(added.Find(text, index), place != model.end() && *place == text) << text;
            EXPECT_EQ(index, place - model.begin()) << text;
        }
    };
    expectFinds();
    // A hole larger than any chunk.
    for (int n = 0; n < 2000; ++n) added.Delete(1000);
    model.erase(model.begin() + 1000, model.begin() + 3000);
    expectFinds();
}

/// Counts the events of a list.
struct TEventCounter {
    explicit TEventCounter(TStringList& list) {
        list.OnChanging = TNotifyEvent::Of<&TEventCounter::Changing>(this);
        list.OnChange = TNotifyEvent::Of<&TEventCounter::Change>(this);
    }
    void Changing(TObject*) { Log += '<'; }
    void Change(TObject*) { Log += '>'; }
    std::string Log;
};

TEST(StringList, TellsChanges) {
    const struct {
        std::string_view What;
        void (*Change)(TStringList& list);
        std::string Expected;
    } cases[] = {
        {"add", [](TStringList& l) { l.Add("x"); }, "<>"},
        {"put", [](TStringList& l) { l.Put(0, "x"); }, "<>"},
        {"object", [](TStringList& l) { l.PutObject(0, &l); }, "<>"},
        {"delete", [](TStringList& l) { l.Delete(0); }, "<>"},
        {"move", [](TStringList& l) { l.Move(0, 1); }, "<>"},
        {"exchange", [](TStringList& l) { l.Exchange(0, 1); }, "<>"},
        {"sort", [](TStringList& l) { l.Sort(); }, "<>"},
        {"clear", [](TStringList& l) { l.Clear(), l.Clear(); }, "<>"},
        {"text", [](TStringList& l) { l.SetTextStr("a\nb\nc"); }, "<>"},
        {"comma text", [](TStringList& l) { l.SetCommaText("a,b,c"); }, "<>"},
        {"assign", [](TStringList& l) { l.Assign(std::make_unique<TStringList>().get()); }, "<>"},
        {"assign itself", [](TStringList& l) { l.Assign(&l); }, ""},
        {"read", [](TStringList& l) { (void)l.GetTextStr(), (void)l.IndexOf("a"); }, ""},
        {"nested",
         [](TStringList& l) {
             l.BeginUpdate();
             l.Add("x");
             l.BeginUpdate();
             l.SetTextStr("y");
             l.EndUpdate();
             l.Clear();
             l.EndUpdate();
             l.Add("z");
         },
         "<><>"},
    };
    for (const auto& c : cases) {
        TStringList list{"b", "a"};
        TEventCounter counter(list);
        c.Change(list);
        EXPECT_EQ(counter.Log, c.Expected) << c.What;
    }
}

TEST(StringList, AFailureEndsTheUpdate) {
    TStringList list{"a"}, source{"b", "A"};
    list.SetSorted(true);
    list.Duplicates = dupError;
    TEventCounter counter(list);
    EXPECT_THROW(list.AddStrings(source), EStringListError);
    EXPECT_THROW(list.SetTextStr("x\nX"), EStringListError);
    EXPECT_THROW(list.SetCommaText("x,X"), EStringListError);
    counter.Log.clear();
    list.Add("c");
    EXPECT_EQ(counter.Log, "<>");

    const auto fail = [](TObject*) { throw EListError("refused"); };
    list.OnChanging = TNotifyEvent::Calling(fail);
    EXPECT_THROW(list.BeginUpdate(), EListError);
    list.OnChanging = {};
    counter.Log.clear();
    list.Add("d");
    EXPECT_EQ(counter.Log, ">");
}

TEST(StringList, AssignsOnlyStrings) {
    class TOther : public TPersistent {};
    TStringList list{"a"};
    TOther other;
    EXPECT_THROW(list.Assign(&other), EConvertError);
    EXPECT_THROW(list.Assign(nullptr), EConvertError);
    EXPECT_EQ(Lines(list), (TLines{"a"}));
    try {
        list.Assign(&other);
    } catch (const EConvertError& error) {
        EXPECT_EQ(error.Message(), "cannot assign a TPersistent to a TStringList");
    }
}

} // namespace
} // namespace tarn
