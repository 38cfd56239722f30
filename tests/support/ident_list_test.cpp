#include "TIdentList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>

namespace tarn {
namespace {

/// An object whose class lists the interface in its table.
class TNamed : public TPersistent, public IIdentIntf {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    explicit TNamed(std::string_view ident = {}) : Ident(ident) {}
    HResult QueryInterface(const TGUID& iid, void*& obj) override {
        return GetInterface(iid, obj) ? S_OK : E_NOINTERFACE;
    }
    int _AddRef() override { return -1; }
    int _Release() override { return -1; }
    std::string GetIdent() override { return Ident; }
    std::string Ident;
};
constexpr TInterfaceEntry NamedInterfaces[] = {Implements<TNamed, IIdentIntf>()};
const TClassRecord TNamed::ClassRecord{
    "TNamed", &TPersistent::ClassRecord, CreateObject<TNamed>, {}, NamedInterfaces};

/// A counted object, which takes itself off the living ones at its end, and then may look at a list
/// that it was in.
class TCounted : public TInterfacedObject<IIdentIntf> {
public:
    TCounted(std::string_view ident, std::string& living, std::function<void()> atEnd = {})
        : FIdent(ident), FLiving(living), FAtEnd(std::move(atEnd)) {
        FLiving += FIdent;
    }
    ~TCounted() override {
        FLiving.erase(FLiving.find(FIdent), FIdent.size());
        if (FAtEnd) FAtEnd();
    }
    std::string GetIdent() override { return FIdent; }

private:
    std::string FIdent;
    std::string& FLiving;
    std::function<void()> FAtEnd;
};

template <class List> std::string Dump(const List& list) {
    std::string text;
    for (int i = 0; i < list.Count(); ++i) {
        if constexpr (std::is_same_v<List, TIdentList>)
            text += dynamic_cast<IIdentIntf*>(list[i])->GetIdent() + " ";
        else
            text += list[i]->GetIdent() + " ";
    }
    return text;
}

/// The result of a call, or the message of its error.
template <class F> std::string Result(F&& call) {
    try {
        return std::to_string(call());
    } catch (const EIdentListError& error) {
        return std::string(error.ClassName()) + ": " + error.what();
    } catch (const EListError& error) {
        return std::string(error.ClassName()) + ": " + error.what();
    }
}

constexpr std::string_view NoIntf = "EIdentListError: Object should support interface IIdentIntf";

TEST(IdentList, AddsInOrderOrLeavesTheListAsItIs) {
    const auto unacceptable = [](const std::string& ident) {
        return "EIdentListError: Unacceptable value for identifier [" + ident + "]";
    };
    const struct {
        std::string Ident;
        std::string Result, List;
    } cases[] = {
        {"abc", "1", "ABB abc b Z_ _a "}, // small letters count as capitals, "_" comes behind them
        {"ABC1", "1", "ABB ABC1 b Z_ _a "},
        {"__", "4", "ABB b Z_ _a __ "},
        {"_9", "3", "ABB b Z_ _9 _a "},
        {"B", "EIdentListError: Identifier value must be unique [B]", ""},
        {"_A", "EIdentListError: Identifier value must be unique [_A]", ""},
        {"", unacceptable(""), ""},
        {"1abc", unacceptable("1abc"), ""},
        {"a b", unacceptable("a b"), ""},
        {"a-", unacceptable("a-"), ""},
        {"\u00E4", unacceptable("\u00E4"), ""},
        {"a\n", unacceptable("a\n"), ""},
    };
    for (const auto& c : cases) {
        TNamed items[] = {TNamed("b"), TNamed("_a"), TNamed("ABB"), TNamed("Z_")};
        TIdentList list;
        for (TNamed& item : items) list.Add(&item);
        EXPECT_EQ(Result([&] { return list.Add(&items[0]); }),
                  "EIdentListError: Identifier value must be unique [b]");
        TNamed added(c.Ident);
        EXPECT_EQ(Result([&] { return list.Add(&added); }), c.Result);
        EXPECT_EQ(Dump(list), c.List.empty() ? "ABB b Z_ _a " : c.List) << c.Ident;

        std::string living;
        TIdentIntfList references;
        for (TNamed& item : items) references.Add(TIntf<IIdentIntf>(&item));
        EXPECT_EQ(Result([&] { return references.Add(new TCounted(c.Ident, living)); }), c.Result);
        EXPECT_EQ(Dump(references), Dump(list));
        EXPECT_EQ(living, c.List.empty() ? "" : c.Ident);
    }
}

TEST(IdentList, FindsByIdentifier) {
    TNamed a("a"), c("C"), other("c"), missing("b");
    std::string living;
    TCounted derived("d", living);
    TObject plain;
    TIdentList list;
    for (TObject* item :
         {static_cast<TObject*>(&derived), static_cast<TObject*>(&c), static_cast<TObject*>(&a)})
        list.Add(item);
    const struct {
        std::string_view Ident;
        bool Found;
        int Index;
    } finds[] = {{"A", true, 0}, {"c", true, 1},  {"D", true, 2},
                 {"", false, 0}, {"b", false, 1}, {"dd", false, 3}};
    for (const auto& f : finds) {
        int index = -7;
        EXPECT_EQ(list.Find(f.Ident, index), f.Found) << f.Ident;
        EXPECT_EQ(index, f.Index) << f.Ident;
    }
    EXPECT_EQ(list.IndexOf(&other), 1); // not the same object, but its identifier
    EXPECT_EQ(list.IndexOf(&missing), -1);
    for (TObject* object : {&plain, static_cast<TObject*>(nullptr)}) {
        EXPECT_EQ(Result([&] { return list.Add(object); }), NoIntf);
        EXPECT_EQ(Result([&] { return list.IndexOf(object); }), NoIntf);
        EXPECT_EQ(Result([&] { return list.Remove(object); }), NoIntf);
    }
    EXPECT_EQ(Result([] { return TIdentIntfList().Add(nullptr); }), NoIntf);
    for (const int index : {-1, 3}) {
        const std::string error =
            "EListError: List index out of bounds (" + std::to_string(index) + ")";
        EXPECT_EQ(Result([&] { return list.Delete(index), 0; }), error);
        EXPECT_EQ(Result([&] { return list.Items(index), 0; }), error);
    }
    EXPECT_EQ(Dump(list), "a C d ");
    EXPECT_EQ(list.Remove(&missing), -1);
    EXPECT_EQ(list.Remove(&other), 1);
    EXPECT_EQ(Dump(list), "a d ");
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(living, "d"); // nothing is owned
}

TEST(IdentList, CountsReferences) {
    std::string living;
    {
        TIdentIntfList list;
        for (const char* ident : {"c", "a", "d", "b"}) list.Add(new TCounted(ident, living));
        EXPECT_EQ(living, "cadb");
        list.Delete(0);
        EXPECT_EQ(living, "cdb");
        const TIntf<IIdentIntf> kept = list[1];
        EXPECT_EQ(list.Remove(kept), 1);
        EXPECT_EQ(living, "cdb");
        list.Clear();
        EXPECT_EQ(living, "c");
        list.Add(kept);
    }
    EXPECT_EQ(living, "");
}

TEST(IdentList, ShowsAnItemAtItsEndTheListWithoutIt) {
    std::string living, seen;
    TIdentIntfList list;
    for (const char* ident : {"a", "b", "c"})
        list.Add(new TCounted(ident, living, [&] { seen += Dump(list) + "|"; }));
    list.Delete(0);
    EXPECT_EQ(seen, "b c |");
    list.Clear();
    EXPECT_EQ(seen, "b c |||");
}

TEST(IdentList, AgreesWithAMap) {
    std::mt19937 random(5);
    TIdentList list;
    std::map<std::string, std::unique_ptr<TNamed>> model; // by the identifier in capitals
    for (int step = 0; step < 5000; ++step) {
        std::string ident = random() % 2 ? "Expert_" : ""; // compared by the letter and by the word
        for (unsigned i = random() % 3 + 1; i > 0; --i) ident += "aBcD_"[random() % 5];
        const std::string key = UpperCase(ident);
        auto item = std::make_unique<TNamed>(ident);
        const auto found = model.find(key);
        const int place = static_cast<int>(std::distance(model.begin(), model.lower_bound(key)));
        if (random() % 3 == 0) {
            ASSERT_EQ(list.Remove(item.get()), found == model.end() ? -1 : place);
            model.erase(key);
        } else if (found == model.end()) {
            ASSERT_EQ(list.Add(item.get()), place);
            model[key] = std::move(item);
        } else
            ASSERT_EQ(list[list.IndexOf(item.get())], found->second.get());
        std::string expected;
        for (const auto& [name, object] : model) expected += object->Ident + " ";
        ASSERT_EQ(Dump(list), expected);
    }
}

} // namespace
} // namespace tarn
