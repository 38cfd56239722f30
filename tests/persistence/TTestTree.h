#pragma once

#include "qsSpcMng.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TVariant.h"
#include "vcl/Graphics.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

enum TFruit : std::uint8_t { frApple, frPear, frPlum };
inline constexpr std::string_view FruitNames[] = {"frApple", "frPear", "frPlum"};
template <> inline constexpr TTypeInfo TypeInfoOf<TFruit> = EnumType("TFruit", FruitNames);

/// A value of every kind.
class TValues : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::int8_t Short = 0;
    std::uint16_t Word = 0;
    int Integer = 0;
    std::uint32_t Cardinal = 0;
    TColor Color = 0;
    char Char = 0;
    char16_t Wide = 0;
    bool Flag = false;
    TFruit Fruit = frApple;
    TSet<TFruit> Fruits;
    float Single = 0;
    double Double = 0;
    long double Extended = 0;
    std::int64_t Int64 = 0;
    std::string Text;
    TShortString<8> Brief;
    std::u16string WideText;
    TVariant Variant;
};
inline constexpr TPropInfo ValuesProps[] = {
    Published<&TValues::Short>("Short"),
    Published<&TValues::Word>("Word"),
    Published<&TValues::Integer>("Integer", {.Default = 5}),
    Published<&TValues::Cardinal>("Cardinal"),
    Published<&TValues::Color>("Color", {.Type = &ColorType}),
    Published<&TValues::Char>("Char"),
    Published<&TValues::Wide>("Wide"),
    Published<&TValues::Flag>("Flag", {.Default = true}),
    Published<&TValues::Fruit>("Fruit", {.Default = frPlum}),
    Published<&TValues::Fruits>("Fruits", {.Default = 1}),
    Published<&TValues::Single>("Single"),
    Published<&TValues::Double>("Double"),
    Published<&TValues::Extended>("Extended"),
    Published<&TValues::Int64>("Int64"),
    Published<&TValues::Text>("Text"),
    Published<&TValues::Brief>("Brief"),
    Published<&TValues::WideText>("WideText"),
    Published<&TValues::Variant>("Variant"),
};
inline constinit const TClassRecord TValues::ClassRecord{"TValues", &TPersistent::ClassRecord,
                                                         CreateObject<TValues>, ValuesProps};

/// An object with blocks of data, which refuses some states when it is halfway in them.
class TPart : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TPart() {
        AddStorageProc(
            "Note",
            [this](TReader& reader) {
                if (reader.NextValue() == vaList) reader.ReadListBegin(); // and leaves the rest
                Take(Note, reader.ReadString(), "a bad note");
            },
            [this](TWriter& writer) { writer.WriteString(Note); }, true);
        AddStorageProc(
            "Nothing", {}, [](TWriter& writer) { writer.WriteInteger(1); }, false);
        AddBinStorageProc(
            "Raw",
            [this](TStream& stream) {
                std::string bytes(static_cast<std::size_t>(stream.Size()), '\0');
                stream.ReadBuffer(bytes.data(), stream.Size());
                Take(Raw, bytes, "bad bytes");
            },
            [this](TStream& stream) { stream.WriteText(Raw); }, true);
    }

    int Number = 0;
    const std::string& Text() const { return FText; }
    void SetText(const std::string& text) { Take(FText, text, "a bad text"); }
    TStrings* Lines() const { return FLines.get(); }
    void SetLines(TStrings* value) { FLines->Assign(value); }
    std::string Note, Raw;

private:
    static void Take(std::string& place, const std::string& value, const char* error) {
        place = value;
        if (value == "bad") throw Exception(error);
    }

    std::string FText;
    std::unique_ptr<TStringList> FLines = std::make_unique<TStringList>();
};
inline constexpr TPropInfo PartProps[] = {
    Published<&TPart::Number>("Number"),
    Published<&TPart::Text, &TPart::SetText>("Text"),
    Published<&TPart::Lines, &TPart::SetLines>("Lines"),
};
inline constinit const TClassRecord TPart::ClassRecord{"TPart", &TSpcObject::ClassRecord,
                                                       CreateObject<TPart>, PartProps};

/// An item of a plain collection.
class TLine : public TCollectionItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Number() const { return FNumber; }
    void SetNumber(int value) {
        if (value == 13) throw Exception("an unlucky number");
        FNumber = value;
    }
    std::string Text;

private:
    int FNumber = 0;
};
inline constexpr TPropInfo LineProps[] = {Published<&TLine::Number, &TLine::SetNumber>("Number"),
                                          Published<&TLine::Text>("Text")};
inline constinit const TClassRecord TLine::ClassRecord{"TLine", &TCollectionItem::ClassRecord,
                                                       CreateObject<TLine>, LineProps};

/// An item that is told from the others by "Key" and has a caption that is stored when it is its
/// own.
class TEntry : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string GetNodeName() override { return "node " + Key; }
    void PutAbsent(const TPutText& put) override { put("Caption", DefaultCaption); }
    void Assign(const TPersistent* source) override {
        const auto& entry = dynamic_cast<const TEntry&>(*source);
        Key = entry.Key, Caption = entry.Caption, Number = entry.Number;
        FPart->Number = entry.FPart->Number;
    }

    static constexpr const char* DefaultCaption = "usual";
    std::string Key, Caption = DefaultCaption;
    int Number = 0;
    const std::string& Fixed() const { return Key; }
    TPart* Part() const { return FPart.get(); }

private:
    std::unique_ptr<TPart> FPart = std::make_unique<TPart>();
};
inline constexpr TPropInfo EntryProps[] = {
    Published<&TEntry::Key>("Key"),
    Published<&TEntry::Caption>("Caption",
                                {.IsStored =
                                     [](const TObject& item) {
                                         return static_cast<const TEntry&>(item).Caption !=
                                                TEntry::DefaultCaption;
                                     }}),
    Published<&TEntry::Number>("Number"),
    Published<&TEntry::Fixed>("Fixed"),
    Published<&TEntry::Part>("Part"),
};
inline constinit const TClassRecord TEntry::ClassRecord{"TEntry", &TSpcItem::ClassRecord,
                                                        CreateObject<TEntry>, EntryProps};

class TEntries : public TFixedCollection {
public:
    explicit TEntries(std::string_view updateName = "Key")
        : TFixedCollection(TClassRef<TCollectionItem>::Of<TEntry>()), FUpdateName(updateName) {}
    std::string GetUpdateName() const override { return FUpdateName; }
    TEntry* Get(int index) const { return static_cast<TEntry*>(Items(index)); }
    std::vector<TEntry*> All() const {
        std::vector<TEntry*> all;
        all.reserve(static_cast<std::size_t>(Count()));
        for (int i = 0; i < Count(); ++i) all.push_back(Get(i));
        return all;
    }

private:
    std::string FUpdateName;
};

class TReferences : public TFreeCollection {
public:
    TReferences() : TFreeCollection(TClassRef<TCollectionItem>::Of<TWrapperItem>()) {}
};

/// A settings tree with all that one can have.
class TTree : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    int Size = 0;
    TValues* Values() const { return FValues.get(); }
    TPart* Part() const { return FPart.get(); }
    void SetPart(TPart* value) { FPart->Assign(value); }
    TCollection* Lines() const { return FLines.get(); }
    TEntries Entries;
    TReferences References;

protected:
    void DefineProperties(TFiler& filer) override {
        TSpcObject::DefineProperties(filer);
        DefineKeyedCollection(filer, "Entries_", Entries, false);
        DefineKeyedCollection(filer, "References_", References, true);
    }

private:
    std::unique_ptr<TValues> FValues = std::make_unique<TValues>();
    std::unique_ptr<TPart> FPart = std::make_unique<TPart>();
    std::unique_ptr<TCollection> FLines =
        std::make_unique<TCollection>(TClassRef<TCollectionItem>::Of<TLine>());
};
inline constexpr TPropInfo TreeProps[] = {
    Published<&TTree::Size>("Size"),
    Published<&TTree::Values>("Values"),
    Published<&TTree::Part, &TTree::SetPart>("Part"),
    Published<&TTree::Lines>("Lines"),
};
inline constinit const TClassRecord TTree::ClassRecord{"TTree", &TSpcObject::ClassRecord,
                                                       CreateObject<TTree>, TreeProps};

// --- Saving and loading in memory ------------------------------------------------------------

/// A list of one object, for the length of a call.
class TOne {
public:
    explicit TOne(TPersistent& object) : FObject(&object) {}
    operator TObjectList() const { return {&FObject, 1}; } // NOLINT(google-explicit-constructor)

private:
    TPersistent* FObject;
};

/// A stream over bytes, for the length of a call.
class TOver {
public:
    explicit TOver(std::string_view bytes) : FStream(bytes) {}
    operator TStreamOrFile() { return FStream; } // NOLINT(google-explicit-constructor)

private:
    TBytesStream FStream;
};

template <class T = TObjectSaver>
std::string Saved(TPersistent& object, std::uint8_t format = 1, T&& saver = T()) {
    saver.Format = format;
    TMemoryStream stream;
    saver.SaveObjects(TOne(object), stream, TStringList());
    return std::string(stream.Text());
}

/// The error of a whole load in whatever format; empty when there is none.
inline std::string LoadError(TPersistent& object, std::string_view bytes) {
    TObjectSaver saver;
    saver.DetectFormat = saver.KeepGoing = true; // which a whole load does not do
    saver.AsksToContinue = false;
    std::string error;
    return saver.SafeLoadObjects(TOne(object), TOver(bytes), &error) || !error.empty()
               ? error
               : "cancelled";
}

} // namespace tarn
