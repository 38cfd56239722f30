#include "ObjectInputs.h"

#include "TStreamOrFile.h"
#include "TTextPlaces.h"
#include "TWrapper.h"
#include "rtl/TMemoryStream.h"
#include "streaming/FormBinary.h"
#include "streaming/FormResource.h"
#include "streaming/TFormTextParser.h"

#include <algorithm>

namespace tarn {
namespace {

class TBinaryInput final : public TRootInput {
public:
    TBinaryInput(TStream& stream, const TInputEvents& events)
        : FReader(events.MakeReader(stream)) {}

    TComponent* ReadRoot(TComponent* root) override {
        FStart = FReader->Position();
        return FReader->ReadRootComponent(root);
    }
    bool PassFailed() override {
        try {
            FReader->SetPosition(FStart);
            FReader->SkipObject();
            return true;
        } catch (const EStreamError&) {
            return false;
        }
    }

private:
    std::unique_ptr<TReader> FReader;
    std::int64_t FStart = 0;
};

class TResourceInput final : public TRootInput {
public:
    TResourceInput(TStream& stream, const TInputEvents& events)
        : FStream(stream), FReader(events.MakeReader(stream)) {}

    TComponent* ReadRoot(TComponent* root) override {
        FEnd = Unknown;
        FReader->FlushBuffer();
        const TResourceHead head = ReadResourceHead(FStream);
        FEnd = FStream.Position() + head.Size;
        TComponent* const read = FReader->ReadRootComponent(root);
        if (FReader->Position() > FEnd) FReader->Fail("the object ends behind its resource");
        FReader->SetPosition(FEnd);
        return read;
    }
    bool PassFailed() override {
        if (FEnd == Unknown) return false;
        FReader->SetPosition(FEnd);
        return true;
    }

private:
    static constexpr std::int64_t Unknown = -1;

    TStream& FStream;
    std::unique_ptr<TReader> FReader;
    std::int64_t FEnd = Unknown; ///< of the current resource
};

class TPropertyInput final : public TObjectInput {
public:
    TPropertyInput(TStream& stream, const TInputEvents& events, std::string_view signature)
        : FReader(events.MakeReader(stream)) {
        FReader->ReadSignature(signature);
    }

    bool Read(TPersistent& object) override {
        FStart = FReader->Position();
        const TReader::TPlace place(*FReader, object.ClassName());
        TReader::TReferences references(*FReader);
        FReader->ReadProperties(object);
        FReader->ReadListEnd();
        references.Close();
        return true;
    }
    bool PassFailed() override {
        try {
            FReader->SetPosition(FStart);
            while (!FReader->EndOfList()) FReader->SkipProperty();
            FReader->ReadListEnd();
            return true;
        } catch (const EStreamError&) {
            return false;
        }
    }

private:
    std::unique_ptr<TReader> FReader;
    std::int64_t FStart = 0;
};

/// Lines of description are blanked as they are met: to the parser they are nothing, and the places
/// that its errors name are those of the whole text.
class TTextInput final : public TRootInput {
public:
    TTextInput(TStream& stream, const TInputEvents& events)
        : FStream(stream), FEvents(events), FStart(stream.Position()), FText(ReadRest(stream)),
          FParser(FText), FPlaces(FText) {
        FStream.SetPosition(FStart);
    }

    bool Read(TPersistent& object) override {
        FParsed = false;
        if (!object.InheritsFrom(TComponent::ClassRecord)) {
            const std::string description = TakeDescription();
            if (!FEvents.TellDescription(&object, description)) return false;
        }
        return TRootInput::Read(object);
    }
    TComponent* ReadRoot(TComponent* root) override {
        FBinary.SetSize(0);
        FPlaces.SetObject(static_cast<std::size_t>(FParser.Offset()));
        TFormBinaryWriter writer(FBinary);
        FParser.Parse(writer);
        FParsed = true;
        FStream.SetPosition(FStart + FParser.Offset());
        FBinary.SetPosition(0);
        const std::unique_ptr<TReader> reader = FEvents.MakeReader(FBinary);
        reader->OnPlace = [this](std::int64_t offset) { return PlaceOf(offset); };
        return reader->ReadRootComponent(root);
    }
    bool PassFailed() override { return FParsed; }

private:
    std::string TakeDescription() {
        const auto from = static_cast<std::size_t>(FParser.Offset());
        const std::size_t end = FText.find('\r', from);
        if (end == std::string::npos) FParser.Fail("a description without a carriage return");
        std::string description = FText.substr(from, end - from);
        // The byte behind goes with the line, whatever it is; breaks of lines stay, for the places.
        const std::size_t behind = std::min(end + 2, FText.size());
        for (std::size_t i = from; i < behind; ++i)
            if (static_cast<unsigned char>(FText[i]) > ' ') FText[i] = ' ';
        return description;
    }

    std::string PlaceOf(std::int64_t offset) {
        const TTextPlace place = FPlaces.PlaceOf(offset, FBinary.Text());
        return Format("line %d, column %d", {place.Line, place.Column});
    }

    TStream& FStream;
    const TInputEvents& FEvents;
    std::int64_t FStart; ///< of the text in the stream
    std::string FText;
    TFormTextParser FParser;
    TTextPlaces FPlaces;
    bool FParsed = false; ///< the parser stands behind the current object
    TMemoryStream FBinary;
};

} // namespace

bool TRootInput::Read(TPersistent& object) {
    WithRootOf(object, [this](TComponent& root) { ReadRoot(&root); });
    return true;
}

std::unique_ptr<TRootInput> BinaryInput(TStream& stream, const TInputEvents& events) {
    return std::make_unique<TBinaryInput>(stream, events);
}

std::unique_ptr<TRootInput> ResourceInput(TStream& stream, const TInputEvents& events) {
    return std::make_unique<TResourceInput>(stream, events);
}

std::unique_ptr<TRootInput> TextInput(TStream& stream, const TInputEvents& events) {
    return std::make_unique<TTextInput>(stream, events);
}

std::unique_ptr<TObjectInput> PropertyInput(TStream& stream, const TInputEvents& events,
                                            std::string_view signature) {
    return std::make_unique<TPropertyInput>(stream, events, signature);
}

} // namespace tarn
