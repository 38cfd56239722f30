#pragma once

#include "DataHeader.h"
#include "MethodParams.h"
#include "ObjectStorageFormat.h"
#include "TStreamOrFile.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tarn {

class TComponent;
class TPersistent;
class TReader;
class TStrings;
class TWriter;

/// Objects in the order in which they are stored. None may be null; they stay the caller's.
using TObjectList = std::span<TPersistent* const>;

/// Told of a description before what it describes is read: of the line before an object in a text,
/// or of a data header, then without an object. Setting `cancel` ends the load.
using TDescriptionEvent =
    std::function<void(const TPersistent* object, std::string_view description, bool& cancel)>;

/// Saves lists of objects and loads them back, in any of the formats.
///
/// An object that is no component is written inside a TWrapper, but for osfExtBin. Loading changes
/// the objects that are given, so that they keep what the stream does not mention. Errors of the
/// readers end a load, and objects keep what was read before: EReaderError, EParserError and
/// EReadError for what does not fit the format, EInvalidImage for another signature. Saving raises
/// EWriteError for what the format cannot hold. Where a file is named, the errors of TStreamOrFile
/// come to that.
///
/// A name that refers to a component means one below the root that is read, as in any component
/// stream, else what the reader's own OnFindComponent knows, else a component among the objects of
/// the list, or in the tree that owns one of them, by the names that they have at that time. In
/// osfExtBin nothing is a root, and only the latter two count.
///
/// The free functions of the same names in qsDataHndl.h are the first generation of this class:
/// they write the same, but for the signature of osfExtBin, which is "TPF0" there.
class TObjectStorage {
public:
    TObjectStorage() : TObjectStorage(ExtBinSignature) {}
    TObjectStorage(const TObjectStorage&) = delete;
    TObjectStorage& operator=(const TObjectStorage&) = delete;

    /// The format of SaveObjects and SafeLoadObjects; osfBin at first.
    TObjectStorageFormat Format() const { return FFormat; }
    void SetFormat(TObjectStorageFormat format) { FFormat = format; }

    /// Make the reader or the writer over a stream, and may set up its events; a plain one is made
    /// when they are empty. Called once for each load or save, but for each object of a text that
    /// is read. Both run over buffers of 4096 bytes.
    std::function<std::unique_ptr<TReader>(TStream& stream)> CreateReader;
    std::function<std::unique_ptr<TWriter>(TStream& stream)> CreateWriter;

    TDescriptionEvent OnDescription;

    /// Whether SafeLoadObjects asks the user after an error, or goes on at once.
    bool AsksToContinue = true;
    /// Asks the user; true for yes. Filled by whoever can show a message box; nobody to ask counts
    /// as no.
    static std::function<bool(std::string_view question)> AskUser;

    // --- Saving -------------------------------------------------------------------------------

    /// In the current format. `descriptions` are for osfText.
    void SaveObjects(TObjectList objects, const TStreamOrFile& target,
                     const TStrings& descriptions) const;
    /// \param asResource osfResBin instead of osfBin
    void SaveObjectBinary(TObjectList objects, const TStreamOrFile& target, bool asResource) const;
    void SaveObjectBinaryEx(TObjectList objects, const TStreamOrFile& target) const;
    /// \param descriptions of the objects at the same places; those of components are not written,
    /// missing and empty ones have WriteObjectDescription's text. No detection takes a line like
    /// that for a text: what begins with it is read by LoadObjectText alone.
    void SaveObjectText(TObjectList objects, const TStreamOrFile& target,
                        const TStrings& descriptions) const;
    /// A data header with the description, and the objects behind it.
    void SaveObjectDataBinary(TObjectList objects, const TStreamOrFile& target,
                              std::string_view description, bool asResource) const;
    void SaveObjectDataText(TObjectList objects, const TStreamOrFile& target,
                            const TStrings& descriptions, std::string_view description) const;

    // --- Loading ------------------------------------------------------------------------------
    // Into as many objects as are given; what is stored behind them is left in the stream. The
    // result is false when OnDescription has cancelled.

    void LoadObjectBinary(TObjectList objects, const TStreamOrFile& source, bool asResource) const;
    void LoadObjectBinaryEx(TObjectList objects, const TStreamOrFile& source) const;
    bool LoadObjectText(TObjectList objects, const TStreamOrFile& source) const;
    /// Read root components. A null among them is replaced by a new component of the class that the
    /// stream names, which is the caller's.
    void LoadComponentBinary(std::span<TComponent*> components, const TStreamOrFile& source,
                             bool asResource) const;
    void LoadComponentText(std::span<TComponent*> components, const TStreamOrFile& source) const;
    /// Detects osfBin, osfResBin or osfText and loads that. Raises EDataHandlingError 50585 for
    /// anything else.
    bool LoadObjects(TObjectList objects, const TStreamOrFile& source) const;
    /// Reads a data header and loads what it announces.
    bool LoadObjectData(TObjectList objects, const TStreamOrFile& source) const;

    /// Loads in the current format and asks after each error whether to go on. Reading then
    /// continues behind the bad value, or with the next object; where nobody can tell where that
    /// begins, it ends. False when not all objects were gone through, because it ended so, because
    /// the user said no, or because OnDescription has cancelled.
    bool SafeLoadObjects(TObjectList objects, const TStreamOrFile& source) const;

    /// What an object has, for people who look for a fault: a line "NAME: VALUE [TYPE]" for each
    /// published property, without a value where GetPropAsText has none.
    static std::string GetObjectPropsInfo(const TPersistent& object);
    /// A method type's signature, likewise: the function of that name in MethodParams.h.
    static std::string GetMethodParams(const TTypeInfo& type) {
        return tarn::GetMethodParams(type);
    }

    // --- What stands around objects: the functions of the same names in DataHeader.h ----------

    static void WriteBinDataHeader(const TStreamOrFile& target, bool asResource,
                                   std::string_view description) {
        tarn::WriteBinDataHeader(target, asResource, description);
    }
    static void WriteTextDataHeader(const TStreamOrFile& target, std::string_view description) {
        tarn::WriteTextDataHeader(target, description);
    }
    static void ReadDataHeader(const TStreamOrFile& source, TObjectStorageFormat& format,
                               bool& asResource, std::string& description) {
        tarn::ReadDataHeader(source, format, asResource, description);
    }
    static void SkipDataHeader(const TStreamOrFile& source) { tarn::SkipDataHeader(source); }
    static void WriteObjectDescription(const TPersistent& object, std::string_view description,
                                       const TStreamOrFile& target) {
        tarn::WriteObjectDescription(object, description, target);
    }
    static void SkipObjectDescription(const TStreamOrFile& source) {
        tarn::SkipObjectDescription(source);
    }
    static bool TestStreamFormat(const TStreamOrFile& source, TObjectStorageFormat& format) {
        return tarn::TestStreamFormat(source, format);
    }

protected:
    /// \param extSignature 4 bytes, of streams of the format osfExtBin
    explicit TObjectStorage(std::string_view extSignature) : FExtSignature(extSignature) {}

private:
    class TLoad;

    std::unique_ptr<TWriter> MakeWriter(TStream& stream) const;
    void WriteRoots(TObjectList objects, TStream& stream, bool asResource) const;
    void WriteProperties(TObjectList objects, TStream& stream) const;
    void WriteText(TObjectList objects, TStream& stream, const TStrings& descriptions) const;

    bool Load(TObjectList objects, const TStreamOrFile& source, TObjectStorageFormat format,
              bool tolerant = false) const;
    bool TellDescription(const TPersistent* object, std::string_view description) const;

    std::string_view FExtSignature;
    TObjectStorageFormat FFormat = osfBin;
};

} // namespace tarn
