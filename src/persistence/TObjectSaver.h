#pragma once

#include "TObjectStorage.h"
#include "rtl/TStrings.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class TFitReader;
class TFitWriter;
class TLoadJournal;

/// Saves lists of objects to a settings file, or a stream, and loads them back.
///
/// Each object is a data header with the object's description, when it has one, and behind it the
/// object as the root of a component stream, whatever its class, in the binary or the text form.
/// Loading changes the objects that are given, in their order; see TFitReader.
///
/// There are three ways to load. LoadObjects ends at the first error and objects keep what was read
/// before it. With KeepGoing it asks the user after each error that can be passed over, and goes
/// on. LoadWhole and SafeLoadObjects do all or nothing.
class TObjectSaver {
public:
    TObjectSaver() = default;
    TObjectSaver(const TObjectSaver&) = delete;
    TObjectSaver& operator=(const TObjectSaver&) = delete;
    virtual ~TObjectSaver() = default;

    int BufferSize = 4096;   ///< bytes, of readers and writers
    std::uint8_t Format = 1; ///< 1: binary component stream, 2: its text form
    /// Whether a load goes by what it finds instead of by Format.
    bool DetectFormat = false;
    bool KeepGoing = false;
    /// Whether KeepGoing asks the user, or goes on at once.
    bool AsksToContinue = true;

    // --- Events -------------------------------------------------------------------------------

    /// Told of an object before it is written or read; clearing `accept` leaves it out.
    using TBeforeObject = std::function<void(TPersistent& object, bool& accept)>;
    using TAfterObject = std::function<void(TPersistent& object)>;
    TBeforeObject DoBeforeWriteObject;
    TAfterObject DoAfterWriteObject;
    TBeforeObject DoBeforeReadObject;
    TAfterObject DoAfterReadObject;
    std::function<void()> DoBeforeCreateReader;
    std::function<void(TFitReader&)> DoAfterCreateReader;
    std::function<void()> DoBeforeCreateWriter;
    std::function<void(TFitWriter&)> DoAfterCreateWriter;
    /// Told of the description in a data header, as it stands there, before its object is touched.
    /// \param text the header is that of a text
    std::function<void(std::string_view description, bool text, bool& cancel)> OnCheckDescription;

    // --- Saving and loading -------------------------------------------------------------------

    /// \param descriptions of the objects at the same places; those without one get no header
    /// \param headerName the name of each root that is no component; those have their own
    /// Raises EWriteError, before the target is opened, when Format is neither 1 nor 2.
    void SaveObjects(TObjectList objects, const TStreamOrFile& target, const TStrings& descriptions,
                     std::string_view headerName = {}) const;

    /// False when the check of a description, or the user, has cancelled the load; by the check its
    /// object and those behind it have not been touched. Raises EReadError for another format, and
    /// the errors of the readers.
    bool LoadObjects(TObjectList objects, const TStreamOrFile& source) const;
    /// All or nothing: raises what LoadObjects does, and what setters refuse, with every object as
    /// it was. Properties and items without a place are kept as they are read.
    bool LoadWhole(TObjectList objects, const TStreamOrFile& source) const;
    /// The same without a word: false for every error. \param error receives its message
    bool SafeLoadObjects(TObjectList objects, const TStreamOrFile& source,
                         std::string* error = nullptr) const;

protected:
    virtual std::unique_ptr<TFitReader> MakeReader(std::string_view bytes) const;
    virtual std::unique_ptr<TFitWriter> MakeWriter(TStream& stream) const;
    /// Reads a root with its signature.
    virtual void ReadRoot(TFitReader& reader, TPersistent& object) const;

private:
    class TBlocks;

    void WriteObject(TPersistent& object, TStream& stream, std::string_view description,
                     std::string_view headerName) const;
    void WriteRoot(TPersistent& object, TStream& stream, std::string_view headerName) const;
    bool Load(TObjectList objects, const TStreamOrFile& source, TLoadJournal* journal) const;
    bool LoadBlock(TPersistent& object, TBlocks& blocks, TLoadJournal* journal) const;
    void LetGoOn(TFitReader& reader, bool& refused) const;
    bool GoesOn(std::string_view error) const;
};

/// Saves some of the properties only. A property goes by its dotted name below the root
/// ("Font.Size", "MenuData_.Caption") or below the item that it is stored in, or by "CLASS.NAME";
/// without case. The parts of a collection whose own name is not listed count below the root only.
class TPropSaver : public TObjectSaver {
public:
    /// The only properties to be saved; all when the list is empty. What a property holds is saved
    /// with it.
    void SetStoredProps(const TStrings& names) { FStored.Assign(&names); }
    /// Properties that are not saved, whatever the other list says.
    void SetIgnoredProps(const TStrings& names) { FIgnored.Assign(&names); }

protected:
    std::unique_ptr<TFitWriter> MakeWriter(TStream& stream) const override;

private:
    class TPropWriter;

    TStringList FStored;
    TStringList FIgnored;
};

} // namespace tarn
