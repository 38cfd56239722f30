#include "TObjectStorage.h"

#include "DataHandlingErrors.h"
#include "ObjectInputs.h"
#include "ObjectStorageStrings.h"
#include "TWrapper.h"
#include "rtl/TMemoryStream.h"
#include "rtl/TStrings.h"
#include "streaming/FormBinary.h"
#include "streaming/FormResource.h"
#include "streaming/TFormTextPrinter.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace tarn {

std::function<bool(std::string_view)> TObjectStorage::AskUser;

// --- Saving -----------------------------------------------------------------------------------

std::unique_ptr<TWriter> TObjectStorage::MakeWriter(TStream& stream) const {
    return CreateWriter ? CreateWriter(stream) : std::make_unique<TWriter>(stream);
}

void TObjectStorage::WriteRoots(TObjectList objects, TStream& stream, bool asResource) const {
    const std::unique_ptr<TWriter> writer = MakeWriter(stream);
    const auto write = [&](TComponent& root) {
        if (!asResource) return writer->WriteRootComponent(root);
        WriteResource(stream, root.ClassName(),
                      [&](TStream&) { writer->WriteRootComponent(root); });
    };
    for (TPersistent* const object : objects) WithRootOf(*object, write);
}

void TObjectStorage::WriteProperties(TObjectList objects, TStream& stream) const {
    const std::unique_ptr<TWriter> writer = MakeWriter(stream);
    writer->WriteSignature(FExtSignature);
    for (TPersistent* const object : objects) {
        writer->WriteProperties(*object);
        writer->WriteListEnd();
    }
    writer->FlushBuffer();
}

void TObjectStorage::WriteText(TObjectList objects, TStream& stream,
                               const TStrings& descriptions) const {
    TMemoryStream binary;
    WriteRoots(objects, binary, false);
    TFormBinaryReader reader(binary.Text());
    TFormTextPrinter printer(stream);
    int index = 0;
    for (TPersistent* const object : objects) {
        const std::string_view description =
            index < descriptions.Count() ? descriptions[index] : std::string_view();
        if (!object->InheritsFrom(TComponent::ClassRecord))
            tarn::WriteObjectDescription(*object, description, stream);
        reader.Parse(printer);
        ++index;
    }
}

void TObjectStorage::SaveObjects(TObjectList objects, const TStreamOrFile& target,
                                 const TStrings& descriptions) const {
    switch (FFormat) {
    case osfBin:
    case osfResBin:
        return SaveObjectBinary(objects, target, FFormat == osfResBin);
    case osfExtBin:
        return SaveObjectBinaryEx(objects, target);
    case osfText:
        return SaveObjectText(objects, target, descriptions);
    }
}

void TObjectStorage::SaveObjectBinary(TObjectList objects, const TStreamOrFile& target,
                                      bool asResource) const {
    target.Write([&](TStream& stream) { WriteRoots(objects, stream, asResource); });
}

void TObjectStorage::SaveObjectBinaryEx(TObjectList objects, const TStreamOrFile& target) const {
    target.Write([&](TStream& stream) { WriteProperties(objects, stream); });
}

void TObjectStorage::SaveObjectText(TObjectList objects, const TStreamOrFile& target,
                                    const TStrings& descriptions) const {
    target.Write([&](TStream& stream) { WriteText(objects, stream, descriptions); });
}

void TObjectStorage::SaveObjectDataBinary(TObjectList objects, const TStreamOrFile& target,
                                          std::string_view description, bool asResource) const {
    target.Write([&](TStream& stream) {
        tarn::WriteBinDataHeader(stream, asResource, description);
        WriteRoots(objects, stream, asResource);
    });
}

void TObjectStorage::SaveObjectDataText(TObjectList objects, const TStreamOrFile& target,
                                        const TStrings& descriptions,
                                        std::string_view description) const {
    target.Write([&](TStream& stream) {
        tarn::WriteTextDataHeader(stream, description);
        WriteText(objects, stream, descriptions);
    });
}

// --- Loading ----------------------------------------------------------------------------------

namespace {

/// The component of a dotted path that begins below the component, with its own name, or so with
/// one of its owners; null when there is none.
TComponent* FindAround(TComponent* component, std::string_view path) {
    const std::size_t point = path.find('.');
    for (; component; component = component->Owner()) {
        if (TComponent* const found = FindComponentEx(component, path)) return found;
        if (!SameText(path.substr(0, point), component->Name())) continue;
        if (point == std::string_view::npos) return component;
        if (TComponent* const found = FindComponentEx(component, path.substr(point + 1)))
            return found;
    }
    return nullptr;
}

} // namespace

/// A load in progress.
class TObjectStorage::TLoad {
public:
    TLoad(const TObjectStorage& storage, TStream& stream, bool tolerant)
        : FStorage(storage), FStream(stream),
          FTolerant(tolerant), FEvents{
                                   [this](TStream& from) { return MakeReader(from); },
                                   [this](const TPersistent* object, std::string_view description) {
                                       return FStorage.TellDescription(object, description);
                                   }} {}
    TLoad(const TLoad&) = delete;
    TLoad& operator=(const TLoad&) = delete;

    /// False when it ended before the last object.
    bool Run(TObjectList objects, TObjectStorageFormat format) {
        for (TPersistent* const object : objects)
            if (auto* const component = ClassCast<TComponent>(object)) FKnown.push_back(component);
        std::unique_ptr<TObjectInput> input;
        const auto open = [&] {
            input = Open(format);
            return true;
        };
        return Attempt(input, open) &&
               std::all_of(objects.begin(), objects.end(), [&](TPersistent* object) {
                   FCurrent = ClassCast<TComponent>(object);
                   return Attempt(input, [&] { return input->Read(*object); });
               });
    }

    /// The same for components as roots.
    void RunRoots(std::span<TComponent*> components, TObjectStorageFormat format) {
        const std::unique_ptr<TRootInput> input = OpenRoots(format);
        std::copy_if(components.begin(), components.end(), std::back_inserter(FKnown),
                     [](const TComponent* component) { return component != nullptr; });
        for (TComponent*& component : components) {
            const bool isNew = !component;
            component = input->ReadRoot(component);
            if (isNew) FKnown.push_back(component);
        }
    }

private:
    std::unique_ptr<TObjectInput> Open(TObjectStorageFormat format) {
        if (format == osfExtBin) return PropertyInput(FStream, FEvents, FStorage.FExtSignature);
        return OpenRoots(format);
    }

    std::unique_ptr<TRootInput> OpenRoots(TObjectStorageFormat format) {
        if (format == osfText) return TextInput(FStream, FEvents);
        if (format == osfResBin) return ResourceInput(FStream, FEvents);
        return BinaryInput(FStream, FEvents);
    }

    /// Takes a step; after an error, whether the load can go on with the next one.
    template <class F> bool Attempt(const std::unique_ptr<TObjectInput>& input, F&& step) {
        if (!FTolerant) return step();
        try {
            return step();
        } catch (const Exception& error) {
            // What the reader has asked about is not asked again.
            return !FRefused && GoesOn(error.Message()) && input && input->PassFailed();
        }
    }

    std::unique_ptr<TReader> MakeReader(TStream& stream) {
        auto reader = FStorage.CreateReader ? FStorage.CreateReader(stream)
                                            : std::make_unique<TReader>(stream);
        reader->OnFindComponent = [this, first = std::move(reader->OnFindComponent)](
                                      TReader& from, std::string_view name, TComponent*& found) {
            if (first) first(from, name, found);
            if (!found) found = FindComponent(name);
        };
        if (FTolerant)
            reader->OnError = [this, first = std::move(reader->OnError)](
                                  TReader& from, std::string_view message, bool& handled) {
                if (first) first(from, message, handled);
                if (!handled) handled = GoesOn(message);
            };
        return reader;
    }

    /// A component outside of the root that is read: below the current object, another one of the
    /// list, or an owner of either.
    TComponent* FindComponent(std::string_view path) const {
        if (TComponent* const found = FindAround(FCurrent, path)) return found;
        for (TComponent* const component : FKnown)
            if (TComponent* const found = FindAround(component, path)) return found;
        return nullptr;
    }

    bool GoesOn(std::string_view error) {
        if (!FStorage.AsksToContinue) return true;
        const std::string question =
            tarn::Format(LocaleStr(strLoadQuestion), {LineBreak, error, LineBreak});
        FRefused = !AskUser || !AskUser(question);
        return !FRefused;
    }

    const TObjectStorage& FStorage;
    TStream& FStream;
    bool FTolerant;
    bool FRefused = false;           ///< the user does not want to go on
    std::vector<TComponent*> FKnown; ///< the components among the objects
    TComponent* FCurrent = nullptr;  ///< the one to look around first; null for none
    TInputEvents FEvents;
};

bool TObjectStorage::TellDescription(const TPersistent* object,
                                     std::string_view description) const {
    bool cancel = false;
    if (OnDescription) OnDescription(object, description, cancel);
    return !cancel;
}

void TObjectStorage::LoadObjectBinary(TObjectList objects, const TStreamOrFile& source,
                                      bool asResource) const {
    Load(objects, source, asResource ? osfResBin : osfBin);
}

void TObjectStorage::LoadObjectBinaryEx(TObjectList objects, const TStreamOrFile& source) const {
    Load(objects, source, osfExtBin);
}

bool TObjectStorage::LoadObjectText(TObjectList objects, const TStreamOrFile& source) const {
    return Load(objects, source, osfText);
}

bool TObjectStorage::Load(TObjectList objects, const TStreamOrFile& source,
                          TObjectStorageFormat format, bool tolerant) const {
    return source.Read(
        [&](TStream& stream) { return TLoad(*this, stream, tolerant).Run(objects, format); });
}

void TObjectStorage::LoadComponentBinary(std::span<TComponent*> components,
                                         const TStreamOrFile& source, bool asResource) const {
    source.Read([&](TStream& stream) {
        TLoad(*this, stream, false).RunRoots(components, asResource ? osfResBin : osfBin);
    });
}

void TObjectStorage::LoadComponentText(std::span<TComponent*> components,
                                       const TStreamOrFile& source) const {
    source.Read(
        [&](TStream& stream) { TLoad(*this, stream, false).RunRoots(components, osfText); });
}

bool TObjectStorage::LoadObjects(TObjectList objects, const TStreamOrFile& source) const {
    return source.Read([&](TStream& stream) {
        TObjectStorageFormat format{};
        if (!tarn::TestStreamFormat(stream, format) || format == osfExtBin)
            throw EDataHandlingError(LocaleStr(strNoObject));
        return Load(objects, stream, format);
    });
}

bool TObjectStorage::LoadObjectData(TObjectList objects, const TStreamOrFile& source) const {
    return source.Read([&](TStream& stream) {
        TObjectStorageFormat format{};
        bool asResource = false;
        std::string description;
        tarn::ReadDataHeader(stream, format, asResource, description);
        if (!TellDescription(nullptr, description)) return false;
        return Load(objects, stream, asResource ? osfResBin : format);
    });
}

bool TObjectStorage::SafeLoadObjects(TObjectList objects, const TStreamOrFile& source) const {
    return Load(objects, source, FFormat, true);
}

// --- Looking at objects -----------------------------------------------------------------------

namespace {

std::string TextOrNothing(const TPersistent& object, const TPropInfo& prop) {
    try {
        return GetPropAsText(object, prop);
    } catch (const EDataHandlingError&) {
        return {}; // a kind without a text
    }
}

} // namespace

std::string TObjectStorage::GetObjectPropsInfo(const TPersistent& object) {
    std::string info;
    ForEachProp(object.ClassType(), [&](const TPropInfo& prop) {
        info += tarn::Format("%s: %s [%s]",
                             {prop.Name, TextOrNothing(object, prop), prop.PropType->TypeName()});
        info += LineBreak;
    });
    return info;
}

} // namespace tarn
