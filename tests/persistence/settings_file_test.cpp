// Settings trees as files: what is written, how it is matched and ordered when it is read back,
// what is kept, and that a load that fails has changed nothing.

#include "ErrorOf.h"
#include "TRandomSettings.h"
#include "TTestFolder.h"
#include "TTestTree.h"
#include "qsSpcMng.h"
#include "rtl/FormatSettings.h"
#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarn {
namespace {

using namespace std::string_literals;
using TStrs = std::vector<std::string>;

/// Loads whatever format it finds.
struct TLoader : TObjectSaver {
    TLoader() { DetectFormat = true; }
};

TEST(SettingsFile, RefusesWhatItCannotWorkWith) {
    const TTestFolder folder;
    const std::string file = folder.File("file");
    TTree tree;
    for (const TObjectStorageFormat format : {osfResBin, osfExtBin})
        EXPECT_EQ(ErrorOf([&] { SaveSpc(&tree, file, format); }),
                  "EWriteError: the saver has no format 0");
    EXPECT_FALSE(IdentityOf(file));
    EXPECT_FALSE(LoadSpc(&tree, file, true, {}));
    TSpcObject* const none = nullptr;
    std::unique_ptr<TSpcObject> noTree;
    const std::string noObject = "ESpcMngError: Specification object not given.";
    EXPECT_EQ(ErrorOf([&] { SaveSpc(none, file, osfBin); }), noObject);
    EXPECT_EQ(ErrorOf([&] { LoadSpc(none, file, true, {}); }), noObject);
    EXPECT_EQ(ErrorOf([&] { RecreateSpc(noTree); }), noObject);
    EXPECT_EQ(ErrorOf([&] { LoadSingleNode(tree, file, "Size"); }),
              "ESpcMngError: Specification file: " + file + " not found.");
    SaveFileText(file, "anything");
    EXPECT_EQ(ErrorOf([&] { LoadSpc(&tree, file, true, {}); }),
              "EReadError: offset 0: neither a component stream nor its text");
    SaveFileText(file, "sys_txt 1.01\r\n---\r\nobject A Size = 7 end");
    EXPECT_EQ(ErrorOf([&] { LoadSpc(&tree, file, true, {}); }),
              "ESpcMngError: Version information has incorrect format:  1.01.");
    EXPECT_EQ(tree.Size, 0);
}

// --- The version record -----------------------------------------------------------------------

TEST(VersionRecord, IsCheckedBeforeAnythingIsLoaded) {
    const std::string later = "Specification file F created with later editor version"
                              "Current editor version: 1.01 in file version: ";
    const struct {
        std::string Record;
        bool Text;
        std::string Outcome; ///< "ok", the number of the file in the question, or "malformed"
    } cases[] = {
        {"1.01 5.00", false, "ok"},
        {"1.02 5.00", false, "later 1.02"},
        {"1.0101 5", false, "later 1.01"}, // four digits count
        {"1.01004 5", false, "ok"},
        {"1,01 5,00", false, "malformed"},
        {"\t 1.01   5.00 ", false, "ok"},
        {"1.01", false, "malformed"},
        {"", false, "malformed"},
        {"one 5.00", false, "malformed"},
        {"1.01 five", false, "malformed"},
        {"-1 5", false, "malformed"},
        {"1.01 6.00", false, "ok"},
        {"1.01 99.98", false, "ok"},
        {"1.01 99.99", false, "platform"},
        {"1.01 100", false, "ok"},
        {"1.02 99.99", false, "later 1.02"}, // the first answer ends it
        {" e_ver: 1.01 d_ver: 5.00", true, "ok"},
        {" e_ver: 1.02 d_ver: 5.00", true, "later 1.02"},
        {"e_ver: 1.01 d_ver: 99.99", true, "platform"},
        {"e_ver:91.01 d_ver:95.00", true, "ok"}, // seven characters are passed
        {"e_ver: 1.01 5.00", true, "malformed"},
        {"1.01 d_ver: 5.00", true, "malformed"},
        {"d_ver: 5.00 e_ver: 1.01", true, "malformed"},
        {"e_ver:d_ver:", true, "malformed"},
        {"1.01 5.00", true, "malformed"},
        {"e_ver: 1.01 d_ver: 5.00", false, "malformed"},
    };
    for (const auto& c : cases) {
        std::string outcome = "ok";
        const TScopedValue ask(TObjectStorage::AskUser, [&](std::string_view question) {
            outcome = question.starts_with(later)
                          ? "later " + std::string(question.substr(later.size(), 4))
                          : "platform";
            return false;
        });
        bool cancel = true;
        const std::string error = ErrorOf([&] { CheckVer(c.Record, c.Text, cancel, {"F"}); });
        if (!error.empty()) {
            EXPECT_EQ(error,
                      "ESpcMngError: Version information has incorrect format: " + c.Record + ".");
            outcome = "malformed";
        }
        EXPECT_EQ(outcome, c.Outcome) << c.Record;
        EXPECT_EQ(cancel, c.Outcome != "ok" && c.Outcome != "malformed") << c.Record;
        if (!error.empty()) continue;
        CheckVer(c.Record, c.Text, cancel, {"F", false});
        EXPECT_FALSE(cancel) << c.Record << ", unchecked";
    }
}

TEST(VersionRecord, HasAPointWhateverTheSeparatorIs) {
    const TScopedValue comma(FormatSettings().DecimalSeparator, ",");
    EXPECT_EQ(MakeVerInfo(osfBin), "1.01 5.00");
    EXPECT_EQ(MakeVerInfo(osfText), "e_ver: 1.01 d_ver: 5.00");
    EXPECT_EQ(MakeVerInfo(osfResBin) + MakeVerInfo(osfExtBin), "");
    bool cancel = true;
    for (const std::string_view record : {"1.01 5.00", "1,01 5,00"}) {
        CheckVer(record, false, cancel, {"F"});
        EXPECT_FALSE(cancel);
    }
    EXPECT_EQ(FormatSettings().DecimalSeparator, ",");
}

TEST(VersionRecord, ADeclinedLoadTouchesNothing) {
    TTree tree;
    std::string stored = "sys_bin\0\4"
                         "2 5 TPF0\1X\0\4Size\2\7\0\0"s;
    TObjectSaver saver;
    saver.OnCheckDescription = [](std::string_view description, bool text, bool& cancel) {
        EXPECT_EQ(description, "2 5 ");
        EXPECT_FALSE(text);
        cancel = true;
    };
    EXPECT_FALSE(saver.LoadObjects(TOne(tree), TOver(stored)));
    EXPECT_EQ(tree.Size, 0);
    EXPECT_TRUE(saver.LoadObjects(TOne(tree), TOver(stored.erase(0, 13)))); // nothing to check
    EXPECT_EQ(tree.Size, 7);
}

// --- Matching and order -----------------------------------------------------------------------

/// What reading is to do with the order: positions count the items that are not there.
TStrs OrderedBy(const TStrs& stored, TStrs live) {
    for (std::size_t position = 0; position < stored.size(); ++position) {
        const auto found = std::find(live.begin(), live.end(), stored[position]);
        if (found == live.end()) continue;
        const std::string id = *found;
        live.erase(found);
        live.insert(live.begin() + static_cast<int>(std::min(position, live.size())), id);
    }
    return live;
}

template <class T> TStrs IdentsOf(const T& collection) {
    TStrs idents;
    for (int i = 0; i < collection.Count(); ++i)
        idents.push_back(collection.Items(i)->GetNodePropName());
    return idents;
}

TEST(KeyedCollection, ItemsGoToTheirStoredPlaces) {
    TRandomSettings random(1);
    const auto someOf = [&] {
        TStrs idents;
        for (char c = 'a'; c < 'j'; ++c)
            if (random.Below(2) == 0)
                idents.insert(idents.begin() + static_cast<int>(random.Below(idents.size() + 1)),
                              std::string(1, c));
        return idents;
    };
    for (int round = 0; round < 400; ++round) {
        const TStrs live = someOf();
        const TStrs stored = someOf();
        const bool free = random.Below(2) == 0;
        const bool keepOrder = random.Below(4) != 0;
        TMemoryStream stream;
        TWriter writer(stream);
        writer.WriteValue(vaCollection);
        for (const std::string& id : stored) {
            if (random.Below(2) == 0) writer.WriteInteger(77); // an order, which nobody needs
            writer.WriteListBegin();
            if (!free) writer.WriteStr("Number"), writer.WriteInteger(5);
            writer.WriteStr(free ? "AObjectID" : "Key");
            writer.WriteString(random.Below(2) == 0 ? id : UpperCase(id));
            writer.WriteListEnd();
        }
        writer.WriteListEnd();
        writer.FlushBuffer();

        TEntries fixed;
        TReferences references;
        TSpcCollection& collection = free ? static_cast<TSpcCollection&>(references) : fixed;
        for (const std::string& id : live)
            free ? (void)references.Add(nullptr, id) : (void)fixed.Add(id);
        TFitReader reader(stream.Text());
        if (free)
            reader.ReadFreeCollection(collection, keepOrder);
        else
            reader.ReadFixedCollection(collection, keepOrder);
        EXPECT_EQ(reader.BytesLeft(), 0);
        EXPECT_EQ(IdentsOf(collection), keepOrder ? OrderedBy(stored, live) : live);
        TStrs kept, expected;
        for (const TUnplacedItem& item : collection.UnplacedItems) {
            EXPECT_EQ(LowerCase(item.Ident), stored[static_cast<std::size_t>(item.Position)]);
            kept.push_back(LowerCase(item.Ident));
        }
        for (const std::string& id : stored)
            if (std::find(live.begin(), live.end(), id) == live.end()) expected.push_back(id);
        EXPECT_EQ(kept, expected);
        for (const TEntry* entry : fixed.All())
            EXPECT_EQ(entry->Number, std::count(stored.begin(), stored.end(), entry->Key) * 5);
    }
}

/// A tree with items of those identifiers.
struct TTreeOf : TTree {
    TTreeOf(std::initializer_list<std::string_view> entries, // NOLINT: all members are made here
            std::initializer_list<std::string_view> references = {}) {
        for (const std::string_view id : entries) Entries.Add(id);
        for (const std::string_view id : references)
            References.Add(Parts.emplace_back(std::make_unique<TPart>()).get(), id);
    }
    std::vector<std::unique_ptr<TPart>> Parts;
};

std::string Body(std::string_view properties) {
    return "object TTree\r\n" + std::string(properties) + "end\r\n";
}
/// An item as it is stored; the part's properties in full.
std::string Item(std::string_view key, std::string_view rest) {
    return Format("    item\r\n      %s\r\n%s    end", {key, rest});
}
std::string Part(std::string_view path, int number) {
    std::string text;
    for (const std::string_view line :
         {"Number = %d", "Text = ''", "Lines.Strings = ()", "Note = ''", "Raw = {}"})
        text += Format("      %s.", {path}) + Format(line, {number}) + "\r\n";
    return text;
}

TEST(KeyedCollection, WhatHasNoPlaceComesBackAtTheNextSave) {
    const auto entry = [](std::string_view id, int number, std::string_view extra = {}) {
        return Item(Format("Key = '%s'", {id}), Format("      Number = %d\r\n", {number}) +
                                                    Part("Part", number) + std::string(extra));
    };
    const auto reference = [](std::string_view id, int number, std::string_view extra = {}) {
        return Item(Format("AObjectID = '%s'", {id}),
                    Part("NestedObject", number) + std::string(extra));
    };
    const std::string own = "      Caption = 'own'\r\n";
    const std::string extra = "      Later.Colors = [coRed, coBlue]\r\n      Newer = <\r\n"
                              "        item\r\n          A = 1\r\n        end>\r\n";
    const auto stored = [&](const TStrs& entries, const TStrs& references) {
        std::string text = "  Entries_ = <";
        for (const std::string& each : entries) text += "\r\n" + each;
        text += ">\r\n  References_ = <";
        for (const std::string& each : references) text += "\r\n" + each;
        return text + ">\r\n";
    };
    TTreeOf whole({"a", "b", "c"}, {"x", "y"});
    const std::string root = Saved(whole, 2).substr(14);
    const std::string front = root.substr(0, root.find("  Entries_"));
    const std::string back = "  Blocks_ = <\r\n    item\r\n      Unknown = True\r\n    end>\r\n";
    const auto file = [&](const TStrs& entries, const TStrs& references) {
        return Body(front + stored(entries, references) + back);
    };
    const std::string all =
        file({entry("z", 1), entry("c", 3, extra), entry("b", 2), entry("a", 1)},
             {reference("y", 2, extra), reference("w", 4), reference("x", 1)});

    // An older pack, and one with all but one expert switched off.
    TTreeOf older({"b"}, {"x"});
    const TSpcItem* const item = older.Entries.Items(0);
    EXPECT_EQ(LoadError(older, all), "");
    EXPECT_EQ(Saved(older, 2), all);
    EXPECT_EQ(older.Entries.Items(0), item);
    EXPECT_EQ(LoadError(older, all) + Saved(older, 2), all) << "twice";
    static_cast<TEntry*>(older.Entries.Items(0))->Number = 9;
    older.Entries.Add("n");
    older.Entries.Add("A"); // in the meantime: stands for the one that was kept
    older.References.GetItem(0)->AObjectID = "X";
    EXPECT_EQ(Saved(older, 2),
              file({entry("z", 1), entry("c", 3, extra),
                    Item("Key = 'b'", "      Number = 9\r\n" + Part("Part", 2)), entry("n", 0),
                    entry("A", 0)},
                   {reference("y", 2, extra), reference("w", 4), reference("X", 1)}));
    // What a stream does not mention stays as it is, what is kept as well.
    TTreeOf again({"c", "b"}, {"y"});
    EXPECT_EQ(LoadError(again, all), "");
    EXPECT_EQ(LoadError(again,
                        "object TTree Later = 1 Entries_ = < item Key = 'c' newer = 2 Last = "
                        "3 end item Key = 'b' end item Key = 'q' end > end"),
              "");
    const std::string later = "      Later.Colors = [coRed, coBlue]\r\n      newer = 2\r\n"
                              "      Last = 3\r\n";
    EXPECT_EQ(Saved(again, 2),
              Body(front +
                   stored({entry("z", 1), entry("c", 3, later), Item("Key = 'q'", ""),
                           entry("a", 1), entry("b", 2)},
                          {reference("y", 2, extra), reference("w", 4), reference("x", 1)}) +
                   back + "  Later = 1\r\n"));
    // A copy has what its original keeps.
    TEntries copy;
    copy.Assign(&again.Entries);
    TMemoryStream copied, original;
    for (auto [stream, list] : {std::pair{&copied, &copy}, {&original, &again.Entries}})
        TFitWriter(*stream).WriteCollectionEx(*list);
    EXPECT_EQ(copied.Text(), original.Text());
    // The newer pack finds all of it.
    EXPECT_EQ(LoadError(whole, all), "");
    EXPECT_EQ(IdentsOf(whole.Entries), (TStrs{"c", "b", "a"}));
    EXPECT_EQ(Saved(whole, 2), all);

    // An item's own caption is stored; none in the file takes it away.
    static_cast<TEntry*>(whole.Entries.Items(1))->Caption = "own";
    const std::string named =
        file({entry("z", 1), entry("c", 3, extra),
              Item("Key = 'b'", own + "      Number = 2\r\n" + Part("Part", 2)), entry("a", 1)},
             {reference("y", 2, extra), reference("w", 4), reference("x", 1)});
    whole.Part()->UnplacedProps = "\4Lost\2\1"; // from when it was a root itself
    EXPECT_EQ(Saved(whole, 2), named);
    for (const std::string& text : {all, named, all}) {
        EXPECT_EQ(LoadError(whole, text), "");
        EXPECT_EQ(Saved(whole, 2), text);
    }
}

// --- All or nothing ---------------------------------------------------------------------------

/// All that a load could change, the objects themselves included.
std::string StateOf(TTree& tree) {
    std::string state = Saved(tree);
    for (const TCollection* list : {static_cast<TCollection*>(&tree.Entries),
                                    static_cast<TCollection*>(&tree.References), tree.Lines()})
        for (int i = 0; i < list->Count(); ++i)
            state += ' ' + std::to_string(reinterpret_cast<std::uintptr_t>(list->Items(i)));
    return state;
}

TEST(WholeLoad, AnErrorAnywhereLeavesEverythingAsItWas) {
    const std::string good =
        "Size = 7 Values.Text = 'new' Part.Number = 7 Part.Text = 'new' Part.Lines.Strings = "
        "('new') Part.Note = 'new' Part.Raw = {6E} Lines = < item Number = 7 Nope = 1 end item end "
        "> "
        "Entries_ = < item Key = 'b' Number = 7 Part.Lines.Strings = ('new') Part.Note = 'new' "
        "New = 1 Fixed = 'x' end item Key = 'new' end item Key = 'a' Caption = 'new' end > "
        "References_ = < item AObjectID = 'y' NestedObject.Lines.Strings = ('new') "
        "NestedObject.Raw = {6E} end item AObjectID = 'x' NestedObject.Text = 'new' end > New = 1 ";
    const struct {
        std::string_view Bad, Error;
    } cases[] = {
        {"Size = 'seven'", "line 2, column 8: TTree.Size: an integer expected, not vaString"},
        {"Values.Fruit = frNone", "line 2, column 16: TTree.Values.Fruit: 'frNone' is no value of "
                                  "TFruit"},
        {"Part = nil", "cannot assign nothing to a TPart"},
        {"Part.Text = 'bad'", "a bad text"},
        {"Part.Note = 'bad'", "a bad note"},
        {"Part.Note = 5", "line 2, column 13: TTree.Part.Note: a string expected, not vaInt8"},
        {"Part.Note = ('more' 'than one')",
         "line 2, column 13: TTree.Part.Note: a block that is not read to its end"},
        {"Part.Raw = {626164}", "bad bytes"},
        {"Part.Raw = 5", "line 2, column 12: TTree.Part.Raw: vaBinary expected, not vaInt8"},
        {"Lines = < item Number = 8 end item Number = 13 end >",
         "line 2, column 45: TTree.Lines[1].Number: an unlucky number"},
        {"Entries_ = < item Number = 1 end >",
         "line 2, column 19: TTree.Entries_[0]: Property Key not found"},
        {"Entries_ = < item Key = 'a' Part.Text = 'bad' end >", "a bad text"},
        {"Entries_ = < item Key = 'a' Part.Note = 'bad' end >", "a bad note"},
        {"References_ = < item NestedObject.Number = 1 AObjectID = 'x' end >",
         "line 2, column 22: TTree.References_[0]: Property AObjectID not found"},
        {"References_ = < item end >",
         "line 2, column 17: TTree.References_[0]: Property AObjectID not found"},
        {"References_ = < item AObjectID = 'x' NestedObject.Raw = {626164} end >", "bad bytes"},
        {"References_ = < item AObjectID = 'x' NestedObject = nil end >",
         "line 2, column 53: TTree.References_[0].NestedObject: property NestedObject is "
         "read-only"},
        {"Entries_ = < item Key = 'b' Number = 1 end",
         "line 3, column 1: TTree.Entries_[1]: \"item\" or \">\" expected: end"},
    };
    TTreeOf tree({"a", "b", "c"}, {"x", "y"});
    TRandomSettings random(2);
    random.Change(tree);
    ASSERT_EQ(LoadError(tree, Body("Size = 1 Old = 1 Entries_ = < item Key = 'old' end item Key = "
                                   "'c' Old = 1 end >")),
              "");
    const std::string before = StateOf(tree);
    for (const auto& c : cases) {
        // The error first, last, and by itself in another block.
        for (const std::string& text : {good + "\r\n" + std::string(c.Bad) + "\r\n",
                                        "\r\n" + std::string(c.Bad) + ' ' + good}) {
            const std::string error = LoadError(tree, "object TTree " + text + "end");
            EXPECT_EQ(text.starts_with(good) ? error : error.empty() ? "none" : c.Error, c.Error);
            EXPECT_EQ(StateOf(tree), before) << text;
        }
    }
    // Every object of a list, too.
    TTree first;
    TPersistent* const both[] = {&first, &tree};
    std::string error;
    EXPECT_FALSE(TLoader().SafeLoadObjects(
        both, TOver("object A Size = 5 end object B Part.Note = 'bad' end"), &error));
    EXPECT_EQ(error, "a bad note");
    EXPECT_EQ(first.Size, 0);

    EXPECT_EQ(LoadError(tree, "object TTree " + good + "end"), "");
    for (const std::string_view part :
         {"Size = 7", "Part.Text = 'new'", "Part.Note = 'new'", "Part.Raw = {6E}", "Key = 'new'",
          "Caption = 'new'", "Number = 7", "NestedObject.Text = 'new'", "Old = 1", "Key = 'old'"})
        EXPECT_NE(Saved(tree, 2).find(part), std::string::npos) << part;
    for (const std::string_view lost : {"Nope", "Fixed"}) // a plain item's; can only be read
        EXPECT_EQ(Saved(tree, 2).find(lost), std::string::npos) << lost;
    EXPECT_EQ(IdentsOf(tree.Entries), (TStrs{"b", "c", "a"}));
    EXPECT_EQ(IdentsOf(tree.References), (TStrs{"y", "x"}));
}

// --- The other ways to load -------------------------------------------------------------------

TEST(PlainLoad, KeepsWhatWasReadBeforeTheErrorAndAsksIfItMay) {
    const std::string stored =
        "object TTree Size = 7 Nope = 1 Values.Integer = 7 Lines = < item Number = 13 Text = 'x' "
        "end > Entries_ = < item Key = 'b' Fixed = '' Number = 8 end item Key = 'a' Bad = 1 Number "
        "= 7 end > "
        "Part.Number = 7 end";
    const struct {
        std::string_view Answers; ///< empty: does not ask
        bool Asks, Loaded;
        std::string_view Questions, State;
    } cases[] = {
        {"", false, true, "", "7 7 a=7 b=8 7"},
        {"yyy", true, true, "Nope Number Bad ", "7 7 a=7 b=8 7"},
        {"yn", true, false, "Nope Number ", "7 7 a=0 b=0 0"},
        {"yyn", true, false, "Nope Number Bad ", "7 7 b=8 a=0 0"},
        {"n", true, false, "Nope ", "7 0 a=0 b=0 0"},
    };
    const auto stateOf = [](TTree& tree) {
        std::string state = Format("%d %d", {tree.Size, tree.Values()->Integer});
        for (int i = 0; i < tree.Entries.Count(); ++i) {
            const auto& entry = static_cast<TEntry&>(*tree.Entries.Items(i));
            state += Format(" %s=%d", {entry.Key, entry.Number});
        }
        return state + Format(" %d", {tree.Part()->Number});
    };
    for (const auto& c : cases) {
        TTreeOf tree({"a", "b"});
        std::string questions;
        std::string_view answers = c.Answers;
        const TScopedValue ask(TObjectStorage::AskUser, [&](std::string_view question) {
            for (const std::string_view what : {"Nope", "Number", "Bad"})
                if (question.find(what) != std::string_view::npos) {
                    questions += std::string(what) + ' ';
                    break;
                }
            const bool yes = answers.starts_with('y');
            answers.remove_prefix(1);
            return yes;
        });
        TObjectSaver saver;
        saver.DetectFormat = saver.KeepGoing = true;
        saver.AsksToContinue = c.Asks;
        EXPECT_EQ(saver.LoadObjects(TOne(tree), TOver(stored)), c.Loaded) << c.Answers;
        EXPECT_EQ(questions, c.Questions);
        std::string expected(c.State);
        if (c.Loaded) expected = "7 7 b=8 a=7 7";
        EXPECT_EQ(stateOf(tree), expected) << c.Answers;
    }
    TTreeOf tree({"a", "b"});
    EXPECT_EQ(ErrorOf([&] { TLoader().LoadObjects(TOne(tree), TOver(stored)); }),
              "EReaderError: line 1, column 30: TTree.Nope: property Nope does not exist");
    EXPECT_EQ(stateOf(tree), "7 0 a=0 b=0 0");
}

TEST(ObjectSaver, TellsItsEventsAndSkipsWhatAHookDeclines) {
    for (const std::uint8_t format : {1, 2}) {
        TTree one, two, three;
        one.Size = 1, two.Size = 2, three.Size = 3;
        TPersistent* const objects[] = {&one, &two, &three};
        std::string log;
        TObjectSaver saver;
        saver.Format = format;
        const auto before = [&](std::string_view what) {
            return [&log, what, &two](TPersistent& object, bool& accept) {
                log += std::string(what) + "? ";
                accept = &object != &two;
            };
        };
        const auto after = [&](std::string_view what) {
            return [&log, what](auto&&...) { log += std::string(what) + ' '; };
        };
        saver.DoBeforeCreateWriter = after("make");
        saver.DoAfterCreateWriter = after("writer");
        saver.DoAfterWriteObject = after("written");
        saver.DoBeforeCreateReader = after("make");
        saver.DoAfterCreateReader = after("reader");
        saver.DoAfterReadObject = after("read");
        TMemoryStream stream;
        saver.SaveObjects(objects, stream, TStringList{"first", "", "third"}, "Root");
        EXPECT_EQ(std::exchange(log, {}),
                  "make writer written make writer written make writer written ");
        saver.DoBeforeReadObject = before("read");
        one.Size = two.Size = three.Size = 0;
        stream.WriteText("rest");
        stream.SetPosition(0);
        EXPECT_TRUE(saver.LoadObjects(objects, stream));
        EXPECT_EQ(std::exchange(log, {}),
                  "make reader read? read make reader read? make reader read? read ");
        EXPECT_EQ(Format("%d %d %d", {one.Size, two.Size, three.Size}), "1 0 3");
        EXPECT_EQ(stream.Position(), stream.Size() - 4);

        saver.DoBeforeWriteObject = before("write");
        TMemoryStream fewer;
        saver.SaveObjects(objects, fewer, TStringList{"first", "second", "third"}, "Root");
        EXPECT_EQ(log, "write? make writer written write? write? make writer written ");
        EXPECT_NE(fewer.Text().find("third"), std::string_view::npos);
        EXPECT_EQ(fewer.Text().find("second"), std::string_view::npos);
    }
}

TEST(PropSaver, SavesWhatItsListsName) {
    const struct {
        std::string_view Stored, Ignored, Expected;
    } cases[] = {
        {"Size", "", "Size = 7"},
        {"part.NUMBER", "", "Part.Number = 0"},
        {"Part", "Part.Text TPart.Lines", "Part.Number = 0 Part.Note = '' Part.Raw = {}"},
        {"TPart.Number", "", "Part.Number = 0"},
        {"Part.Note Part.Lines.Strings", "", "Part.Lines.Strings = () Part.Note = ''"},
        {"Lines", "TLine.Number", "Lines = < item Text = '' end>"},
        {"Entries_", "Part Key",
         "Entries_ = < item Key = 'b' Number = 0 Kept = 1 end item Key = 'old' Number = 5 end>"},
        {"Entries_", "TEntry.Part TFixedCollection.Number",
         "Entries_ = < item Key = 'b' Number = 0 Kept = 1 end item Key = 'old' end>"},
        {"Entries_.Number", "",
         "Entries_ = < item Key = 'b' Number = 0 end item Key = 'old' Number = 5 end>"},
        {"Root Entries_.Kept", "",
         "Entries_ = < item Key = 'b' Kept = 1 end item Key = 'old' end> Root = 1"},
        {"References_", "NestedObject.Text TPart.Note NestedObject.Raw",
         "References_ = < item AObjectID = 'x' NestedObject.Number = 0 NestedObject.Lines.Strings "
         "= "
         "() end>"},
        {"", "Values Part Lines Entries_ References_ Root", "Size = 7"},
        {"Nothing", "", ""},
    };
    TTreeOf tree({"b"}, {"x"});
    ASSERT_EQ(LoadError(tree, "object TTree Size = 7 Lines = < item end > Entries_ = < item Key = "
                              "'b' Kept = 1 end item Key = 'old' Number = 5 end > Root = 1 end"),
              "");
    for (const auto& c : cases) {
        TPropSaver saver;
        TStringList names;
        names.SetCommaText(c.Stored);
        saver.SetStoredProps(names);
        names.SetCommaText(c.Ignored);
        saver.SetIgnoredProps(names);
        std::string text = Saved(tree, 2, saver).substr(12);
        std::string words; // one blank between them
        for (const char ch : text)
            if (static_cast<unsigned char>(ch) > ' ')
                words += ch;
            else if (!words.ends_with(' '))
                words += ' ';
        const std::string expected(c.Expected);
        EXPECT_EQ(words, expected.empty() ? " end " : ' ' + expected + " end ");
    }
}

// --- Parts of a file --------------------------------------------------------------------------

TEST(SettingsFile, GivesOneNodeByItsPath) {
    const TTestFolder folder;
    const std::string file = folder.File("tree");
    TTreeOf tree({"a", "b.c"}, {"x", "x.y"});
    tree.Part()->Number = 1;
    tree.Entries.Get(0)->Number = 2;
    tree.Entries.Get(1)->Part()->Number = 3;
    tree.Parts[0]->Number = 4;
    tree.Parts[1]->Number = 5;
    tree.Parts[1]->Lines()->Add("line");
    const struct {
        std::string_view Path, Expected; ///< of Number; empty when there is no such node
    } cases[] = {
        {"Part", "1"},
        {"PART", "1"},
        {"Entries.b.c.Part", "3"},
        {"Entries_.a.Part", "0"},
        {"References.x", "4"},
        {"references_.X.Y", "5"},
        {"References.z", ""},
        {"Part.Number", ""},
        {"Nothing", ""},
        {"Entries.a.Nothing", ""},
        {"Par", ""},
        {"References", ""},
        {"Entries", ""},
    };
    for (const TObjectStorageFormat format : {osfBin, osfText}) {
        SaveSpc(&tree, file, format);
        for (const auto& c : cases) {
            TPart part;
            part.Number = 99;
            EXPECT_EQ(LoadSingleNode(part, file, c.Path), !c.Expected.empty()) << c.Path;
            EXPECT_EQ(std::to_string(part.Number), c.Expected.empty() ? "99" : c.Expected)
                << c.Path;
        }
        TPart part;
        LoadSingleNode(part, file, "References.x.y");
        EXPECT_EQ(part.Lines()->GetTextStr(), "line\r\n");
        TEntry entry;
        EXPECT_TRUE(LoadSingleNode(entry, file, "Entries.a"));
        EXPECT_EQ(entry.Number, 2);
        TEntries entries;
        entries.Add("b.c");
        entries.Add("a");
        EXPECT_TRUE(LoadSingleNode(entries, file, "Entries"));
        EXPECT_EQ(IdentsOf(entries), (TStrs{"a", "b.c"}));
        EXPECT_EQ(entries.Get(1)->Part()->Number, 3);
        TTreeOf all({"a", "b.c"}, {"x", "x.y"}), spc({"b.c", "a"}, {"x.y", "x"});
        EXPECT_TRUE(LoadSingleNode(all, file, ""));
        EXPECT_EQ(Saved(all), Saved(tree));
        EXPECT_TRUE(LoadSpc(&spc, file, true, {}));
        EXPECT_EQ(Saved(spc), Saved(tree));
    }
    // All or nothing.
    SaveFileText(file, "object A Part.Number = 7 Part.Note = 'bad' end");
    TPart part;
    EXPECT_EQ(ErrorOf([&] { LoadSingleNode(part, file, "Part"); }), "Exception: a bad note");
    EXPECT_EQ(part.Number, 0);
}

// --- Every kind of value ----------------------------------------------------------------------

TEST(SettingsFile, BringsEveryValueBack) {
#ifdef __OPTIMIZE__
    constexpr int rounds = 300;
#else
    constexpr int rounds = 60;
#endif
    TRandomSettings random(3);
    TTreeOf tree({"a", "b"}, {"x"});
    TTreeOf other({"b", "a"}, {"x"});
    const auto change = [&](TTreeOf& each) {
        random.Change(each);
        random.Change(*each.Parts[0]);
        for (int i = 0; i < 2; ++i) random.Change(*each.Entries.Items(i), "Key");
    };
    const auto dump = [](TTreeOf& each) {
        return TRandomSettings::Dump(each) + TRandomSettings::Dump(*each.Parts[0]) +
               TRandomSettings::Dump(*each.Entries.Items(0)) +
               TRandomSettings::Dump(*each.Entries.Items(1));
    };
    for (int round = 0; round < rounds; ++round) {
        const std::uint8_t format = round % 2 == 0 ? 1 : 2;
        random.OnlyUtf8 = format == 2;
        change(tree);
        change(other);
        const std::string bytes = Saved(tree, format);
        ASSERT_EQ(LoadError(other, bytes), "");
        ASSERT_EQ(dump(other), dump(tree)) << "round " << round;
        ASSERT_EQ(Saved(other, format), bytes) << "round " << round;
    }
}

} // namespace
} // namespace tarn
