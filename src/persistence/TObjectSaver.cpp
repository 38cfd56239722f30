#include "TObjectSaver.h"

#include "ObjectStorageStrings.h"
#include "TFitReader.h"
#include "TFitWriter.h"
#include "TLoadJournal.h"
#include "TTextPlaces.h"
#include "qsLocale.h"
#include "rtl/TCollection.h"
#include "rtl/TMemoryStream.h"
#include "streaming/FormBinary.h"
#include "streaming/TFormTextPrinter.h"
#include "vcl/TComponent.h"

namespace tarn {
namespace {

constexpr std::uint8_t BinaryFormat = 1;
constexpr std::uint8_t TextFormat = 2;

} // namespace

// --- Saving -----------------------------------------------------------------------------------

std::unique_ptr<TFitWriter> TObjectSaver::MakeWriter(TStream& stream) const {
    return std::make_unique<TFitWriter>(stream, BufferSize);
}

void TObjectSaver::WriteRoot(TPersistent& object, TStream& stream,
                             std::string_view headerName) const {
    if (DoBeforeCreateWriter) DoBeforeCreateWriter();
    const std::unique_ptr<TFitWriter> writer = MakeWriter(stream);
    if (DoAfterCreateWriter) DoAfterCreateWriter(*writer);
    if (auto* const component = ClassCast<TComponent>(&object))
        writer->WriteRootComponent(*component);
    else
        writer->WriteAsComponent(object, headerName);
}

void TObjectSaver::WriteObject(TPersistent& object, TStream& stream, std::string_view description,
                               std::string_view headerName) const {
    if (Format == BinaryFormat) {
        if (!description.empty()) WriteBinDataHeader(stream, false, description);
        return WriteRoot(object, stream, headerName);
    }
    if (!description.empty()) WriteTextDataHeader(stream, description);
    TMemoryStream binary;
    WriteRoot(object, binary, headerName);
    TFormTextPrinter printer(stream);
    TFormBinaryReader(binary.Text()).Parse(printer);
}

void TObjectSaver::SaveObjects(TObjectList objects, const TStreamOrFile& target,
                               const TStrings& descriptions, std::string_view headerName) const {
    if (Format != BinaryFormat && Format != TextFormat)
        throw EWriteError(tarn::Format("the saver has no format %d", {int{Format}}));
    target.Write([&](TStream& stream) {
        int index = 0;
        for (TPersistent* const object : objects) {
            const std::string_view description =
                index < descriptions.Count() ? descriptions[index] : std::string_view();
            ++index;
            bool accept = true;
            if (DoBeforeWriteObject) DoBeforeWriteObject(*object, accept);
            if (!accept) continue;
            WriteObject(*object, stream, description, headerName);
            if (DoAfterWriteObject) DoAfterWriteObject(*object);
        }
    });
}

// --- Loading ----------------------------------------------------------------------------------

/// The objects in a stream, one after the other. The stream is left behind the last one read.
class TObjectSaver::TBlocks {
public:
    explicit TBlocks(TStream& stream)
        : FStream(stream), FStart(stream.Position()), FBytes(ReadRest(stream)), FParser(FBytes),
          FPlaces(FBytes) {}
    TBlocks(const TBlocks&) = delete;
    TBlocks& operator=(const TBlocks&) = delete;
    ~TBlocks() { FStream.SetPosition(FStart + FOffset); }

    /// Takes a data header, when one stands here.
    bool TakeHeader(std::string& description, bool& text) {
        const std::string_view left = Left();
        if (!left.starts_with(BinDataLabel) && !left.starts_with(TextDataLabel)) return false;
        TBytesStream stream(left);
        TObjectStorageFormat format{};
        bool asResource = false;
        ReadDataHeader(stream, format, asResource, description);
        text = format == osfText;
        FOffset += stream.Position();
        return true;
    }

    std::uint8_t Detect() const {
        TBytesStream stream(Left());
        TObjectStorageFormat format{};
        if (TestStreamFormat(stream, format)) {
            if (format == osfBin) return BinaryFormat;
            if (format == osfText) return TextFormat;
        }
        throw EReadError(
            tarn::Format("offset %d: neither a component stream nor its text", {FOffset}));
    }

    /// The bytes that hold the next object as a component stream, from `offset` on.
    std::string_view Begin(std::uint8_t format, std::int64_t& offset) {
        FFormat = format;
        offset = FOffset;
        if (format == BinaryFormat) return FBytes;
        FParser.SetOffset(FOffset);
        FBinary.clear();
        FPlaces.SetObject(static_cast<std::size_t>(FOffset));
        TFormBinaryWriter writer(FBinary);
        FParser.Parse(writer);
        offset = 0;
        return FBinary;
    }
    /// What the reader's messages call its places.
    std::string PlaceOf(std::int64_t offset) {
        if (FFormat == BinaryFormat) return tarn::Format("offset %d", {offset});
        const TTextPlace place = FPlaces.PlaceOf(offset, FBinary);
        return tarn::Format("line %d, column %d", {place.Line, place.Column});
    }
    /// Goes behind the object, which the reader has read up to that place.
    void End(std::int64_t position) {
        FOffset = FFormat == BinaryFormat ? position : FParser.Offset();
    }

private:
    std::string_view Left() const {
        return std::string_view(FBytes).substr(static_cast<std::size_t>(FOffset));
    }

    TStream& FStream;
    std::int64_t FStart;
    std::string FBytes;
    std::int64_t FOffset = 0;
    std::uint8_t FFormat = BinaryFormat;
    TFormTextParser FParser;
    TTextPlaces FPlaces;
    std::string FBinary; ///< the object of a text
};

std::unique_ptr<TFitReader> TObjectSaver::MakeReader(std::string_view bytes) const {
    return std::make_unique<TFitReader>(bytes);
}

void TObjectSaver::ReadRoot(TFitReader& reader, TPersistent& object) const {
    reader.ReadAsComponent(object);
}

bool TObjectSaver::GoesOn(std::string_view error) const {
    if (!AsksToContinue) return true;
    return TObjectStorage::AskUser &&
           TObjectStorage::AskUser(
               tarn::Format(LocaleStr(strLoadQuestion), {LineBreak, error, LineBreak}));
}

/// Has the reader ask about each error that can be passed over; `refused` once the user said no.
void TObjectSaver::LetGoOn(TFitReader& reader, bool& refused) const {
    reader.OnError = [this, &refused](TReader&, std::string_view message, bool& handled) {
        handled = GoesOn(message);
        refused = !handled;
    };
}

bool TObjectSaver::LoadBlock(TPersistent& object, TBlocks& blocks, TLoadJournal* journal) const {
    std::string description;
    bool text = false;
    if (blocks.TakeHeader(description, text) && OnCheckDescription) {
        bool cancel = false;
        OnCheckDescription(description, text, cancel);
        if (cancel) return false;
    }
    std::int64_t offset = 0;
    const std::uint8_t format = DetectFormat ? blocks.Detect() : Format;
    if (DoBeforeCreateReader) DoBeforeCreateReader();
    const std::unique_ptr<TFitReader> reader = MakeReader(blocks.Begin(format, offset));
    reader->SetPosition(offset);
    reader->OnPlace = [&](std::int64_t at) { return blocks.PlaceOf(at); };
    if (DoAfterCreateReader) DoAfterCreateReader(*reader);
    reader->SetJournal(journal);
    reader->SetKeepsUnplaced(journal != nullptr);

    bool accept = true;
    if (DoBeforeReadObject) DoBeforeReadObject(object, accept);
    const auto skip = [&] {
        reader->SetPosition(offset);
        reader->SkipObject();
        blocks.End(reader->Position());
    };
    if (!accept) {
        skip();
        return true;
    }
    bool refused = false;
    if (KeepGoing && !journal) LetGoOn(*reader, refused);
    try {
        ReadRoot(*reader, object);
        blocks.End(reader->Position());
    } catch (const Exception& error) {
        if (!KeepGoing || journal) throw;
        // What the reader has asked about is not asked again.
        if (refused || !GoesOn(error.Message())) return false;
        skip();
    }
    if (DoAfterReadObject) DoAfterReadObject(object);
    return true;
}

bool TObjectSaver::Load(TObjectList objects, const TStreamOrFile& source,
                        TLoadJournal* journal) const {
    return source.Read([&](TStream& stream) {
        TBlocks blocks(stream);
        for (TPersistent* const object : objects)
            if (!LoadBlock(*object, blocks, journal)) return false;
        return true;
    });
}

bool TObjectSaver::LoadObjects(TObjectList objects, const TStreamOrFile& source) const {
    return Load(objects, source, nullptr);
}

bool TObjectSaver::LoadWhole(TObjectList objects, const TStreamOrFile& source) const {
    TLoadJournal journal;
    if (!Load(objects, source, &journal)) return false;
    journal.Commit();
    return true;
}

bool TObjectSaver::SafeLoadObjects(TObjectList objects, const TStreamOrFile& source,
                                   std::string* error) const {
    try {
        return LoadWhole(objects, source);
    } catch (const std::exception& failure) {
        if (error) *error = failure.what();
        return false;
    }
}

// --- Some of the properties -------------------------------------------------------------------

/// Goes by two lists of names.
class TPropSaver::TPropWriter final : public TFilteringWriter {
public:
    TPropWriter(TStream& stream, const TPropSaver& saver)
        : TFilteringWriter(stream, saver.BufferSize), FSaver(saver) {}

protected:
    void Filter(const TPersistent& instance, std::string_view path,
                const std::function<void()>& write) override {
        if (IsNamed(FSaver.FIgnored, instance, path)) return;
        const TScopedValue whole(FWhole, FWhole || FSaver.FStored.Count() == 0 ||
                                             IsNamed(FSaver.FStored, instance, path));
        if (FWhole || MayHoldNamed(instance, path)) write();
    }

private:
    bool IsNamed(const TStrings& list, const TPersistent& instance, std::string_view path) const {
        const std::string_view name = path.substr(path.rfind('.') + 1);
        return list.IndexOf(path) >= 0 || list.IndexOf(Place()) >= 0 ||
               list.IndexOf(tarn::Format("%s.%s", {instance.ClassName(), name})) >= 0;
    }
    /// Whether a part of the property may be in the list: each part of a sub-object is asked about,
    /// a collection is written for the sake of a name below it.
    bool MayHoldNamed(const TPersistent& instance, std::string_view path) const {
        const TPropInfo* const prop =
            instance.ClassType().FindProp(path.substr(path.rfind('.') + 1));
        if (prop && prop->PropType->Kind == tkClass) {
            TObject* value = nullptr;
            prop->Get(instance, &value);
            if (!ClassCast<TCollection>(value)) return !ClassCast<TComponent>(value);
        }
        const std::string front = Place() + '.';
        for (int i = 0; i < FSaver.FStored.Count(); ++i)
            if (SameText(FSaver.FStored[i].substr(0, front.size()), front)) return true;
        return false;
    }

    const TPropSaver& FSaver;
    bool FWhole = false; ///< what is being written belongs to a property that is to be saved
};

std::unique_ptr<TFitWriter> TPropSaver::MakeWriter(TStream& stream) const {
    return std::make_unique<TPropWriter>(stream, *this);
}

} // namespace tarn
