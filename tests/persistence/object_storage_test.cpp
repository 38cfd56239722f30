#include "ErrorOf.h"
#include "TTestFolder.h"
#include "qsDataHndl.h"
#include "rtl/SafeFile.h"
#include "rtl/TCollection.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TStrings.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"
#include "vcl/Graphics.h"
#include "vcl/TComponent.h"

#include <gtest/gtest.h>

#include <optional>

namespace tarn {
namespace {

using namespace std::string_literals;

class TNote : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 8;
    TColor Color = clBlack;
    std::string Text() const { return FText; }
    void SetText(std::string text) {
        if (text == "bad" && !IsLenient) throw Exception("no such text");
        SuppressedWhenSet = SuppressErrorInfo;
        FText = std::move(text);
    }
    std::string State() const { return Format("%d %d %s", {Size, int{Color}, FText}); }

    bool IsLenient = false;
    bool SuppressedWhenSet = false;

private:
    std::string FText;
};
constexpr TPropInfo NoteProps[] = {
    Published<&TNote::Size>("Size", {.Default = 8}),
    Published<&TNote::Color>("Color", {.Default = clBlack, .Type = &ColorType}),
    Published<&TNote::Text, &TNote::SetText>("Text")};
constinit const TClassRecord TNote::ClassRecord{"TNote", &TPersistent::ClassRecord,
                                                CreateObject<TNote>, NoteProps};

class TBox : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 0;
    TBox* Next = nullptr;
};
constexpr TPropInfo BoxProps[] = {Published<&TBox::Size>("Size"), Published<&TBox::Next>("Next")};
constinit const TClassRecord TBox::ClassRecord{"TBox", &TComponent::ClassRecord, CreateObject<TBox>,
                                               BoxProps};

class TRow : public TCollectionItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }
    int Width = 0;
};
constexpr TPropInfo RowProps[] = {Published<&TRow::Width>("Width")};
constinit const TClassRecord TRow::ClassRecord{"TRow", &TCollectionItem::ClassRecord,
                                               CreateObject<TRow>, RowProps};

/// A note and a box, which can be stored and compared.
struct TPair {
    TPair() = default;
    TPair(int noteSize, std::string_view text, int boxSize) {
        Note.Size = noteSize;
        Note.Color = 0x123456; // a colour without a name
        Note.SetText(std::string(text));
        Box.Size = boxSize;
        Box.SetName("Box");
    }
    TNote Note;
    TBox Box;
    TPersistent* List[2] = {&Note, &Box};

    std::string State() const { return Format("%s, %s %d", {Note.State(), Box.Name(), Box.Size}); }
};

enum TGeneration : std::uint8_t { genFunctions, genClass };
constexpr TGeneration Generations[] = {genFunctions, genClass};

void Save(TGeneration generation, TObjectStorageFormat format, TObjectList objects,
          const TStreamOrFile& target, const TStrings& descriptions = TStringList()) {
    TObjectStorage storage;
    storage.SetFormat(format);
    if (generation == genClass) return storage.SaveObjects(objects, target, descriptions);
    if (format == osfText) return SaveObjectText(objects, target, descriptions);
    if (format == osfExtBin) return SaveObjectBinaryEx(objects, target);
    SaveObjectBinary(objects, target, format == osfResBin);
}

void Load(TGeneration generation, TObjectStorageFormat format, TObjectList objects,
          const TStreamOrFile& source) {
    const TObjectStorage storage;
    const bool isClass = generation == genClass;
    if (format == osfText)
        return isClass ? (void)storage.LoadObjectText(objects, source)
                       : LoadObjectText(objects, source);
    if (format == osfExtBin)
        return isClass ? storage.LoadObjectBinaryEx(objects, source)
                       : LoadObjectBinaryEx(objects, source);
    const bool asResource = format == osfResBin;
    return isClass ? storage.LoadObjectBinary(objects, source, asResource)
                   : LoadObjectBinary(objects, source, asResource);
}

bool SafeLoad(TGeneration generation, TObjectStorageFormat format, TObjectList objects,
              TStream& source, bool asks, const TDescriptionEvent& onDescription) {
    if (generation == genFunctions)
        return SafeLoadObjects(objects, source, format, asks, onDescription);
    TObjectStorage storage;
    storage.OnDescription = onDescription;
    storage.SetFormat(format);
    storage.AsksToContinue = asks;
    return storage.SafeLoadObjects(objects, source);
}

/// A stream that holds the bytes, at its start.
struct TBytes : TMemoryStream {
    explicit TBytes(std::string_view bytes) {
        WriteText(bytes);
        SetPosition(0);
    }
};

const std::string NoteBytes = "TPF0\bTWrapper\0"
                              "\rInstance.Size\2\5"
                              "\16Instance.Color\4\x56\x34\x12\0"
                              "\rInstance.Text\6\2ab\0\0"s;
const std::string BoxBytes = "TPF0\4TBox\3Box\4Size\2\7\0\0"s;
const std::string PairText = "object TWrapper\r\n"
                             "  Instance.Size = 5\r\n"
                             "  Instance.Color = 1193046\r\n"
                             "  Instance.Text = 'ab'\r\n"
                             "end\r\n"
                             "object Box: TBox\r\n"
                             "  Size = 7\r\n"
                             "end\r\n";
const std::string NoteLine = "stored Instance --> TNote\r\n";

/// The bytes inside a resource of the class, which says that it has another size than it has when
/// `more` is not 0.
std::string Resource(std::string_view className, std::string_view bytes, int more = 0) {
    const char size = static_cast<char>(std::ssize(bytes) + more);
    return "\xFF\n\0"s + std::string(className) + "\0\x30\x10"s + size + "\0\0\0"s +
           std::string(bytes);
}

std::string ExtBytes(std::string_view signature) {
    return std::string(signature) + "\4Size\2\5\5Color\4\x56\x34\x12\0\4Text\6\2ab\0\4Size\2\7\0"s;
}

TEST(ObjectStorage, WritesTheseBytesAndReadsThemBack) {
    const std::string resources =
        "\xFF\n\0TWRAPPER\0\x30\x10\x46\0\0\0"s + NoteBytes + Resource("TBOX", BoxBytes);
    const struct {
        TObjectStorageFormat Format;
        std::string Bytes[2]; ///< of the functions, of the class
    } cases[] = {
        {osfBin, {NoteBytes + BoxBytes, NoteBytes + BoxBytes}},
        {osfResBin, {resources, resources}},
        {osfExtBin, {ExtBytes("TPF0"), ExtBytes("TPF2")}},
        {osfText, {NoteLine + PairText, NoteLine + PairText}},
    };
    const TTestFolder folder;
    for (const auto& each : cases)
        for (const TGeneration generation : Generations) {
            SCOPED_TRACE(StorageFormatExt(each.Format) + (generation ? " class" : ""));
            const std::string& bytes = each.Bytes[generation];
            const std::string file = folder.File("pair" + StorageFormatExt(each.Format));
            TPair pair(5, "ab", 7);
            TMemoryStream stream;
            stream.WriteText("><");
            stream.SetPosition(1);
            Save(generation, each.Format, pair.List, stream);
            stream.WriteText("<");
            Save(generation, each.Format, pair.List, file);
            EXPECT_EQ(stream.Text(), ">" + bytes + "<");
            EXPECT_EQ(LoadFileText(file), bytes);

            TPair read;
            TPair readFile;
            stream.SetPosition(1);
            Load(generation, each.Format, {}, stream);
            EXPECT_EQ(stream.Position(), each.Format == osfExtBin ? 5 : 1);
            stream.SetPosition(1);
            Load(generation, each.Format, read.List, stream);
            Load(generation, each.Format, readFile.List, file);
            const std::string box = each.Format == osfExtBin ? "" : "Box";
            EXPECT_EQ(read.State(), "5 1193046 ab, " + box + " 7");
            EXPECT_EQ(readFile.State(), read.State());
            EXPECT_EQ(stream.Position(), stream.Size() - 1);

            TPair other;
            TBytes ofOther(each.Bytes[1 - generation]);
            const std::string wrong =
                generation ? "TPF2 expected, not 'TPF0'" : "TPF0 expected, not 'TPF2'";
            EXPECT_EQ(ErrorOf([&] { Load(generation, each.Format, other.List, ofOther); }),
                      each.Format == osfExtBin ? "EInvalidImage: offset 0: " + wrong : "");
            EXPECT_EQ(other.State(), each.Format == osfExtBin ? TPair().State() : read.State());
        }
}

TEST(ObjectStorage, ExtensionsOfFormats) {
    const std::string_view extensions[] = {".sbn", ".sbr", ".sbe", ".stx"};
    for (int format = osfBin; format <= osfText; ++format)
        EXPECT_EQ(StorageFormatExt(static_cast<TObjectStorageFormat>(format)), extensions[format]);
}

TEST(ObjectStorage, WrapsCollections) {
    TCollection rows(TClassRef<TCollectionItem>::Of<TRow>());
    static_cast<TRow*>(rows.Add())->Width = 3;
    TCollection read(TClassRef<TCollectionItem>::Of<TRow>());
    read.Add();
    read.Add();
    TPersistent* const from = &rows;
    TPersistent* const to = &read;
    const std::string text = GetProps({&from, 1}, osfText);
    EXPECT_EQ(text, "stored Instance --> TCollection\r\nobject TWrapper\r\n  Instance = <\r\n"
                    "    item\r\n      Width = 3\r\n    end>\r\nend\r\n");
    SetProps({&to, 1}, text, osfText);
    EXPECT_EQ(GetProps({&to, 1}, osfText), text);
}

// --- Headers ----------------------------------------------------------------------------------

TEST(DataHeader, WhatIsWrittenIsRead) {
    const std::string is300(300, 'x');
    const std::string is255(255, 'x');
    const struct {
        TObjectStorageFormat Format;
        bool AsResource;
        std::string Description, Bytes, Read;
    } cases[] = {
        {osfBin, false, "", "sys_bin\0\0"s, ""},
        {osfBin, true, "a\r\nb", "sys_bin\1\4a\r\nb", "a\r\nb"},
        {osfBin, false, is300, "sys_bin\0\xFF"s + is255, is255},
        {osfText, false, "", "sys_txt\r\n-------\r\n", ""},
        {osfText, false, "a\r\nb", "sys_txt a b\r\n-----------\r\n", " a b"},
        {osfText, false, " \ra\n\r\n\r", "sys_txt   a   \r\n--------------\r\n", "   a   "},
    };
    for (const auto& each : cases) {
        TMemoryStream stream;
        if (each.Format == osfText)
            WriteTextDataHeader(stream, each.Description);
        else
            WriteBinDataHeader(stream, each.AsResource, each.Description);
        EXPECT_EQ(stream.Text(), each.Bytes);
        stream.WriteText("rest");

        auto format = osfExtBin;
        bool asResource = !each.AsResource;
        std::string description = "old";
        stream.SetPosition(0);
        TObjectStorage::ReadDataHeader(stream, format, asResource, description);
        EXPECT_EQ(std::tie(format, asResource, description),
                  std::tie(each.Format, each.AsResource, each.Read));
        EXPECT_EQ(stream.Position(), std::ssize(each.Bytes));
        stream.SetPosition(0);
        SkipDataHeader(stream);
        EXPECT_EQ(stream.Position(), std::ssize(each.Bytes));
    }
}

TEST(DataHeader, RefusesWhatIsNone) {
    const std::string noLabel =
        "EDataHandlingError: Incorrect data format. Required label not found.";
    const struct {
        std::string Bytes, Error;
    } cases[] = {
        {"sys_bi", noLabel},
        {"SYS_BIN\0\0"s, noLabel},
        {"sys_bin\2\0"s, noLabel},
        {"sys_bin\x80\0"s, noLabel},
        {"sys_bin", "EReadError: stream read error: 0 of 1 bytes"},
        {"sys_bin\1", "EReadError: stream read error: 0 of 1 bytes"},
        {"sys_bin\1\xFF"
         "abc",
         "EReadError: stream read error: 3 of 255 bytes"},
        {"sys_txt a\n---\n", "EReadError: offset 7: a line without a carriage return"},
        {"sys_txt a\r\n---", "EReadError: offset 11: a line without a carriage return"},
    };
    for (const auto& each : cases) {
        TBytes stream(each.Bytes);
        auto format = osfExtBin;
        bool asResource = true;
        std::string description = "old";
        EXPECT_EQ(ErrorOf([&] { ReadDataHeader(stream, format, asResource, description); }),
                  each.Error);
        EXPECT_EQ(std::tuple(format, asResource, description), std::tuple(osfExtBin, true, "old"));
    }
}

TEST(DataHeader, LinesOfDescription) {
    const struct {
        std::string_view Description, Line;
    } written[] = {{"", "stored Instance --> TNote\r\n"}, {"a\r\nb\rc\n", "a b c \r\n"}};
    for (const auto& each : written) {
        TMemoryStream stream;
        WriteObjectDescription(TNote(), each.Description, stream);
        EXPECT_EQ(stream.Text(), each.Line);
    }
    for (const std::string name : {"", "Crate"}) {
        TBox box;
        box.SetName(name);
        TMemoryStream stream;
        WriteObjectDescription(box, "", stream);
        EXPECT_EQ(stream.Text(), "stored Instance --> " + (name.empty() ? "TBox" : name) + "\r\n");
    }

    const std::string isLong(5000, 'x'); // longer than what is searched at once
    const struct {
        std::string Bytes;
        std::int64_t Position;
    } skipped[] = {{"a\r\nb\r\n", 3}, {"a\n\rbc", 4}, {"a\r", 2}, {isLong + "\r\nb", 5002}};
    for (const auto& each : skipped) {
        TBytes lines(each.Bytes);
        SkipObjectDescription(lines);
        EXPECT_EQ(lines.Position(), each.Position);
    }
    TBytes endless("a\n");
    EXPECT_EQ(ErrorOf([&] { SkipObjectDescription(endless); }),
              "EReadError: offset 0: a line without a carriage return");
}

TEST(DataHeader, DetectsFormatsByTheirFirstBytes) {
    const struct {
        std::string_view Bytes;
        std::optional<TObjectStorageFormat> Format = {};
    } cases[] = {
        {""},
        {"TPF"},
        {"sys_bin"},
        {"\nobject"},
        {"\xFF", osfResBin},
        {"TPF0", osfBin},
        {"TPF2\4", osfExtBin},
        {"object A: TB", osfText},
        {"O", osfText},
        {"inline", osfText},
        {"I", osfText},
        {"\t", osfText},
        {"\v", osfText},
        {"\robject", osfText},
        {" ", osfText},
    };
    for (const auto& each : cases) {
        TBytes stream(">" + std::string(each.Bytes));
        stream.SetPosition(1);
        // Whatever the format was, it stays where none is found.
        for (const auto old : {osfBin, osfText}) {
            auto format = old;
            EXPECT_EQ(TestStreamFormat(stream, format), each.Format.has_value()) << each.Bytes;
            EXPECT_EQ(format, each.Format.value_or(old)) << each.Bytes;
            EXPECT_EQ(stream.Position(), 1);
        }
    }
}

// --- Detection, descriptions ------------------------------------------------------------------

TEST(ObjectStorage, LoadsWhatIsDetected) {
    const std::string none = "EDataHandlingError: Thread does not contain object.";
    const TPair pair(5, "ab", 7);
    const struct {
        std::string Bytes;
        std::string Error = {};
    } cases[] = {
        {NoteBytes + BoxBytes},
        {Resource("TWRAPPER", NoteBytes) + Resource("TBOX", BoxBytes)},
        {Resource("ANY", NoteBytes, 1) + "x" + Resource("NAME", BoxBytes)}, // not full
        {"Object 1 of 2\r!" + PairText}, // a byte behind the carriage return, whatever it is
        {NoteLine + PairText, none},     // the line of description that is written by default
        {ExtBytes("TPF2"), none},
        {"sys_bin\0\0"s + NoteBytes + BoxBytes, none},
    };
    for (const auto& each : cases)
        for (const TGeneration generation : Generations) {
            TPair read;
            TBytes stream(each.Bytes);
            EXPECT_EQ(ErrorOf([&] {
                          if (generation == genClass)
                              TObjectStorage().LoadObjects(read.List, stream);
                          else
                              LoadObjects(read.List, stream);
                      }),
                      each.Error);
            EXPECT_EQ(read.State(), each.Error.empty() ? pair.State() : TPair().State());
        }
}

TEST(ObjectStorage, DataAndTheirDescriptions) {
    const struct {
        std::string_view Kind, Told;
    } cases[] = {{"bin", "[-: D]"}, {"res", "[-: D]"}, {"text", "[-:  D][TNote: second, of 2]"}};
    for (const auto& each : cases) {
        TPair pair(5, "ab", 7);
        TPersistent* const saved[] = {&pair.Box, &pair.Note};
        TMemoryStream stream;
        if (each.Kind == "text")
            // The box has no line: what is meant for it goes nowhere.
            SaveObjectDataText(saved, stream, TStringList{"first", "second,\r\nof 2"}, "D");
        else
            SaveObjectDataBinary(saved, stream, "D", each.Kind == "res");
        std::string told;
        int events = 0;
        const auto load = [&](int cancelAt) {
            TPair read;
            TPersistent* const list[] = {&read.Box, &read.Note};
            told.clear();
            events = 0;
            stream.SetPosition(0);
            const bool all = LoadObjectData(
                list, stream,
                [&](const TPersistent* object, std::string_view description, bool& cancel) {
                    told += Format("[%s: %s]", {object ? object->ClassName() : "-", description});
                    cancel = ++events == cancelAt;
                });
            return (all ? "all: " : "cancelled: ") + read.State();
        };
        EXPECT_EQ(load(0), "all: " + pair.State());
        EXPECT_EQ(told, each.Told);
        EXPECT_EQ(stream.Position(), stream.Size());
        EXPECT_EQ(load(1), "cancelled: " + TPair().State());
        const bool hasLines = each.Kind == "text"; // before the note alone
        EXPECT_EQ(load(2), hasLines ? "cancelled: 8 0 , Box 7" : "all: " + pair.State());
    }
}

TEST(ObjectStorage, RootsOfComponents) {
    TBox first;
    TBox second;
    first.SetName("First");
    second.SetName("Second");
    first.Next = &second;
    second.Next = &first;
    TPersistent* const saved[] = {&first, &second};
    RegisterClass(TBox::ClassRecord);
    for (const TObjectStorageFormat format : {osfBin, osfResBin, osfText}) {
        TMemoryStream stream;
        Save(genFunctions, format, saved, stream);
        TBox existing;
        existing.SetName("Second");
        TComponent* roots[] = {nullptr, &existing};
        stream.SetPosition(0);
        if (format == osfText)
            LoadComponentText(roots, stream);
        else
            LoadComponentBinary(roots, stream, format == osfResBin);
        const std::unique_ptr<TComponent> made(roots[0]);
        auto* const box = ClassCast<TBox>(made.get());
        ASSERT_TRUE(box);
        EXPECT_EQ(box->Name(), "First");
        EXPECT_EQ(std::tie(roots[1], box->Next, existing.Next),
                  std::tuple(&existing, &existing, box));
    }
    UnRegisterClass(TBox::ClassRecord);
}

// --- Errors -----------------------------------------------------------------------------------

/// Answers the questions of loads and keeps them.
struct TAnswers {
    explicit TAnswers(bool answer)
        : Slot(TObjectStorage::AskUser, [this, answer](std::string_view question) {
              Asked += std::string(question) + "|";
              return answer;
          }) {}
    std::string Asked;
    TScopedValue<std::function<bool(std::string_view)>> Slot;
};

std::string Question(std::string_view error) {
    return "Load error.\r\n" + std::string(error) + ".\r\nContinue loading?|";
}

TEST(ObjectStorage, ErrorsEndALoadOrAreAskedAbout) {
    const std::string note = "object TWrapper\r\n  Instance.Size = 5\r\n";
    const std::string box = "end\r\nobject Box: TBox\r\n  Size = 7\r\nend\r\n";
    const std::string noteResource = Resource("TWRAPPER", NoteBytes);
    const std::string untouched = TPair().State();
    const struct {
        TObjectStorageFormat Format;
        std::string Bytes, Class, Error;
        std::string Plain; ///< what is read before the error
        std::string Tolerant;
        bool All = true; ///< the tolerant load goes through all objects
    } cases[] = {
        // Errors behind which the reader goes on.
        {osfText, "x\ny\r\n" + note + "  Instance.Nope = 1\r\n  Instance.Color = 3\r\n" + box,
         "EReaderError", "line 5, column 19: TWrapper.Instance.Nope: property Nope does not exist",
         "5 0 ,  0", "5 3 , Box 7"},
        {osfText, "x\r\n" + note + "end\r\n\r\n  object Box.A: TBox\r\n  Size = 7\r\nend\r\n",
         "EReaderError", "line 6, column 3: Box.A: 'Box.A' is not a valid component name",
         "5 0 ,  0", "5 0 ,  7"},
        {osfExtBin, "TPF2\4Nope\2\1\4Size\2\6\0\4Size\2\7\0"s, "EReaderError",
         "offset 9: TNote.Nope: property Nope does not exist", untouched, "6 0 ,  7"},
        // Errors behind which the next object is found.
        {osfResBin, Resource("A", "junk") + Resource("TBOX", BoxBytes), "EInvalidImage",
         "offset 11: TPF0 expected, not 'junk'", untouched, "8 0 , Box 7"},
        {osfResBin, noteResource + Resource("TBOX", BoxBytes, -1), "EReaderError",
         "offset 124: the object ends behind its resource", "5 1193046 ab, Box 7",
         "5 1193046 ab, Box 7"},
        // Errors behind which nothing is found.
        {osfResBin, noteResource + "junk", "EReadError",
         "no resource: it does not begin with a numbered type", "5 1193046 ab,  0",
         "5 1193046 ab,  0", false},
        {osfBin, NoteBytes.substr(0, 32), "EReaderError",
         "offset 31: TWrapper: the stream ends: 1 of 14 bytes", "5 0 ,  0", "5 0 ,  0", false},
        {osfExtBin, ExtBytes("TPF0"), "EInvalidImage", "offset 0: TPF2 expected, not 'TPF0'",
         untouched, untouched, false},
        {osfText, "x\r\n" + note + "end\r\nobject Box\r\n  Size = = 7\r\nend\r\n", "EParserError",
         "line 6, column 10: Box.Size: value expected: = 7", "5 0 ,  0", "5 0 ,  0", false},
        {osfText, "x\n", "EParserError",
         "line 1, column 1: a description without a carriage return: x", untouched, untouched,
         false},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.Error);
        TBytes stream(each.Bytes);
        TPair plain;
        const std::string error = ErrorOf([&] { Load(genClass, each.Format, plain.List, stream); });
        EXPECT_EQ(error, each.Class + ": " + each.Error);
        EXPECT_EQ(plain.State(), each.Plain);

        const std::string message = error.substr(each.Class.size() + 2);
        enum { moYes, moNo, moNobody, moQuestionsOff };
        for (const TGeneration generation : Generations)
            for (const int mode : {moYes, moNo, moNobody, moQuestionsOff}) {
                // Their signature is another one.
                if (generation == genFunctions && each.Format == osfExtBin) continue;
                TAnswers answers(mode == moYes);
                if (mode == moNobody) TObjectStorage::AskUser = nullptr;
                TPair read;
                stream.SetPosition(0);
                const bool goesOn = mode == moYes || mode == moQuestionsOff;
                bool told = false;
                EXPECT_EQ(SafeLoad(generation, each.Format, read.List, stream,
                                   mode != moQuestionsOff, [&](auto, auto, bool&) { told = true; }),
                          goesOn && each.All);
                EXPECT_EQ(told, each.Format == osfText && each.Bytes != "x\n");
                EXPECT_EQ(read.State(), goesOn ? each.Tolerant : each.Plain);
                EXPECT_EQ(answers.Asked, mode == moYes || mode == moNo ? Question(message) : "");
            }
    }
}

TEST(ObjectStorage, AnErrorInsideAnObjectLeavesTheNextOne) {
    struct TUnlucky : TReader {
        using TReader::TReader;
        void ReadProperty(TPersistent& instance) override {
            if (instance.InheritsFrom(TBox::ClassRecord)) throw Exception("unlucky " + ReadStr());
            TReader::ReadProperty(instance);
        }
    };
    TPair pair(5, "ab", 7);
    TPersistent* const saved[] = {&pair.Box, &pair.Note};
    for (const TObjectStorageFormat format : {osfBin, osfResBin, osfExtBin, osfText}) {
        TMemoryStream stream;
        stream.WriteText(">");
        Save(genClass, format, saved, stream);
        stream.SetPosition(1);
        TPair read;
        read.Box.SetName("Box"); // which osfExtBin does not store
        TPersistent* const list[] = {&read.Box, &read.Note};
        TAnswers yes(true);
        TObjectStorage storage;
        storage.SetFormat(format);
        storage.CreateReader = [](TStream& from) { return std::make_unique<TUnlucky>(from); };
        EXPECT_TRUE(storage.SafeLoadObjects(list, stream));
        EXPECT_EQ(read.State(), "5 1193046 ab, Box 0");
        EXPECT_EQ(yes.Asked, Question("unlucky Size"));
    }
}

TEST(ObjectStorage, AFileStaysWhenItCannotBeReplaced) {
    const TTestFolder folder;
    const std::string file = folder.File("box.sbn");
    SaveFileText(file, "old");
    TPair pair(5, "ab", 7);
    TObjectStorage storage;
    storage.CreateWriter = [](TStream& stream) {
        struct TFailing : TWriter {
            using TWriter::TWriter;
            void WriteProperty(TPersistent& instance, const TPropInfo& prop) override {
                if (instance.InheritsFrom(TBox::ClassRecord)) throw EWriteError("no boxes");
                TWriter::WriteProperty(instance, prop);
            }
        };
        return std::make_unique<TFailing>(stream);
    };
    EXPECT_EQ(ErrorOf([&] { storage.SaveObjectBinary(pair.List, file, false); }),
              "EWriteError: no boxes");
    EXPECT_EQ(LoadFileText(file), "old");
    const std::string missing = folder.File("missing");
    EXPECT_EQ(ErrorOf([&] { LoadObjects(pair.List, missing); }),
              "EFOpenError: cannot open " + missing + ": no such file or directory");
}

TEST(ObjectStorage, ReadersCanBeMadeByOthers) {
    TObjectStorage storage;
    int made = 0;
    storage.CreateReader = [&](TStream& stream) {
        ++made;
        auto reader = std::make_unique<TReader>(stream);
        reader->OnError = [](TReader&, std::string_view message, bool& handled) {
            handled = message.find("Nope") != std::string_view::npos;
        };
        return reader;
    };
    const std::string note = "\r\nobject TWrapper\r\n  Instance.Nope = 1\r\nend\r\n";
    TBytes stream(note + "object TBox\r\n  Next = A\r\n  Other = 1\r\n  Size = 7\r\nend\r\n");
    TPair read;
    storage.SetFormat(osfText);
    TAnswers yes(true);
    EXPECT_TRUE(storage.SafeLoadObjects(read.List, stream));
    // References come last.
    EXPECT_EQ(yes.Asked, Question("line 7, column 11: TBox.Other: property Other does not exist") +
                             Question("line 6, column 10: TBox.Next: no component named A"));
    EXPECT_EQ(Format("%d %d", {made, read.Box.Size}), "2 7");
}

// --- References -------------------------------------------------------------------------------

/// A box that another one owns.
TBox& AddBox(TBox& owner, std::string_view name) {
    auto box = std::make_unique<TBox>();
    box->SetName(name);
    owner.InsertComponent(box.get());
    return *box.release();
}

TEST(ObjectStorage, ReferencesReachTheListAndItsOwners) {
    for (const TGeneration generation : Generations)
        for (const TObjectStorageFormat format : {osfBin, osfResBin, osfExtBin, osfText}) {
            TBox form;
            TBox loose;
            form.SetName("Form");
            loose.SetName("Desk");
            TBox& box = AddBox(form, "Box");
            TPersistent* const list[] = {&box, &loose};
            struct TCase {
                TBox* Target;
                std::string Name; ///< in osfExtBin
            };
            std::vector<TCase> cases = {{&box, "Form.Box"},
                                        {&AddBox(form, "Other"), "Form.Other"},
                                        {&form, "Form"},
                                        {&loose, "Desk"}};
            // The other formats make what the boxes own anew.
            if (format == osfExtBin) {
                cases.push_back({&AddBox(box, "Child"), "Form.Box.Child"});
                cases.push_back({&AddBox(loose, "Child"), "Desk.Child"});
            }
            for (const TCase& each : cases) {
                SCOPED_TRACE(each.Name + StorageFormatExt(format));
                box.Next = each.Target;
                TMemoryStream stream;
                Save(generation, format, list, stream);
                const std::string stored = char(each.Name.size()) + each.Name + "\0\4Size\2\0\0"s;
                EXPECT_EQ(stream.Text().ends_with("\4Size\2\0\4Next\7"s + stored),
                          format == osfExtBin);
                box.Next = nullptr;
                stream.SetPosition(0);
                Load(generation, format, list, stream);
                EXPECT_EQ(box.Next, each.Target);
            }
        }
}

TEST(ObjectStorage, ReferencesGoToTheNearestOfAName) {
    TBox boxes[2];
    TBox outside;
    outside.SetName("Child");
    TPersistent* const list[] = {&boxes[0], &boxes[1]};
    for (TBox& box : boxes) box.Next = &AddBox(box, "Child");
    TMemoryStream stream;
    Save(genClass, osfExtBin, list, stream);
    for (TBox* const asked : {static_cast<TBox*>(nullptr), &outside}) {
        TObjectStorage storage;
        storage.CreateReader = [asked](TStream& from) {
            auto reader = std::make_unique<TReader>(from);
            reader->OnFindComponent = [asked](TReader&, std::string_view, TComponent*& component) {
                component = asked;
            };
            return reader;
        };
        stream.SetPosition(0);
        storage.LoadObjectBinaryEx(list, stream);
        for (TBox& box : boxes) EXPECT_EQ(box.Next, asked ? asked : box.FindComponent("child"));
    }
    TBytes unknown("TPF2\4Next\7\5Other\0"s);
    EXPECT_EQ(ErrorOf([&] {
                  Load(genClass, osfExtBin, {list, 1}, unknown);
              }),
              "EReaderError: offset 9: TBox.Next: no component named Other");
}

TEST(ObjectStorage, ShowsWhatObjectsHave) {
    const TPair pair(5, "ab", 7);
    EXPECT_EQ(TObjectStorage::GetObjectPropsInfo(pair.Note) +
                  TObjectStorage::GetObjectPropsInfo(pair.Box),
              "Size: 5 [Integer]\r\nColor:  [TColor]\r\nText: ab [String]\r\n"
              "Name: Box [String]\r\nSize: 7 [Integer]\r\nNext:  [TBox]\r\n");
}

// --- Property blocks --------------------------------------------------------------------------

TEST(PropertyBlocks, HoldBinaryOrText) {
    const struct {
        TObjectStorageFormat Format;
        std::string Block;
    } cases[] = {{osfBin, NoteBytes + BoxBytes},
                 {osfResBin, ""},
                 {osfExtBin, ""},
                 {osfText, NoteLine + PairText}};
    for (const auto& each : cases) {
        TPair pair(5, "ab", 7);
        EXPECT_EQ(GetProps(pair.List, each.Format), each.Block);
        const std::string data = each.Block.empty() ? "anything" : each.Block;
        TPair set;
        TPair setEx;
        SetProps(set.List, data, each.Format);
        EXPECT_TRUE(SetPropsEx(setEx.List, data, each.Format));
        EXPECT_EQ(set.State(), each.Block.empty() ? TPair().State() : pair.State());
        EXPECT_EQ(setEx.State(), set.State());
    }
}

TEST(PropertyBlocks, ImportCopiesWhatIsStored) {
    const struct {
        TColor Color; ///< of the source
        std::string Text;
        bool Suppressed; ///< before and after
        bool Imported;
        std::string State, Asked = {};
    } cases[] = {
        {0x123456, "ab", false, true, "20 1193046 ab"},
        {clRed, "ab", true, true, "20 255 ab"},
        {0x123456, "bad", false, false, "20 1193046 own",
         Question("offset 48: TWrapper.Instance.Text: no such text")},
    };
    // Colours with a name are stored by it, the others must not get lost.
    RegisterIntegerConsts(ColorType, IdentToColor, ColorToIdent);
    for (const auto& each : cases) {
        const TScopedValue suppressed(SuppressErrorInfo, each.Suppressed);
        TAnswers no(false);
        TNote source;
        source.IsLenient = true;
        source.Color = each.Color;
        source.SetText(each.Text);
        TNote dest;
        dest.Size = 20; // the source has the default, which is not stored
        dest.SetText("own");
        EXPECT_EQ(ImportProps(dest, source), each.Imported);
        EXPECT_EQ(dest.State(), each.State);
        EXPECT_EQ(dest.SuppressedWhenSet, each.Imported || each.Suppressed);
        EXPECT_EQ(SuppressErrorInfo, each.Suppressed);
        EXPECT_EQ(no.Asked, each.Asked);
    }
    UnRegisterIntegerConsts(ColorType);
    // Also on the way out that an error takes.
    struct TUnwritable : TNote {
        void DefineProperties(TFiler&) override { throw EWriteError("not now"); }
    } source;
    TNote dest;
    EXPECT_EQ(ErrorOf([&] { ImportProps(dest, source); }), "EWriteError: not now");
    EXPECT_FALSE(SuppressErrorInfo);
}

} // namespace
} // namespace tarn
