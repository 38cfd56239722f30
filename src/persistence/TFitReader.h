#pragma once

#include "rtl/SysUtils.h"
#include "streaming/TReader.h"

#include <string>
#include <string_view>

namespace tarn {

class TLoadJournal;
class TSpcCollection;
class TSpcItem;
class TWriter;

struct TFitReaderErrorTag {
    static constexpr std::string_view Name = "EFitReaderError";
};
/// A stored item without the property that tells it from the others.
using EFitReaderError = TNamedException<TFitReaderErrorTag, EReaderError>;

/// Reads a settings tree into the objects that exist. Whatever a stream does not mention stays as
/// it is.
///
/// The items of settings collections are found by their identifiers, without case, and keep their
/// spelling of it. Those that the collection does not have are kept as they are read, in its
/// UnplacedItems, in place of those of the same identifier that were kept before; likewise
/// properties without a place, see SetKeepsUnplaced.
class TFitReader : public TReader {
public:
    using TReader::TReader;

    /// With a journal nothing is changed by reading: all changes go into it. The journal stays the
    /// caller's. The items of a plain collection are made and read beside it; in the meantime they
    /// stand in another collection.
    void SetJournal(TLoadJournal* journal) { FJournal = journal; }
    /// Whether an unknown property, or one of an object that is not there, is kept as it is read in
    /// the UnplacedProps of the item or root that it was stored for, instead of being an error.
    /// What can only be read is passed over in any case.
    void SetKeepsUnplaced(bool value) { FKeepsUnplaced = value; }

    /// A root object, as TReader does.
    void ReadAsComponent(TPersistent& object) override;

    /// Reads a keyed collection's value, its type byte included. The property "AObjectID" comes
    /// first in each stored item; EFitReaderError (50536) when it does not.
    /// \param keepOrder moves each item that is found to the place among the stored ones at which
    /// it was read, or to the end when the list is shorter; items that were not found count
    void ReadFreeCollection(TSpcCollection& collection, bool keepOrder);
    /// The same where the property that the collection's GetUpdateName tells stands anywhere in
    /// the item.
    void ReadFixedCollection(TSpcCollection& collection, bool keepOrder);

    /// Reads the part of a root object that a path leads to into `node`: properties below a dotted
    /// name, or those of a keyed collection's item by its identifier, which is its first property;
    /// for an item that wraps an object, those of the object. False when the stream has no such
    /// part.
    bool ReadNode(TPersistent& node, std::string_view path);

    void DefineProperty(std::string_view name, const TReaderProc& readData,
                        const TWriterProc& writeData, bool hasData) override;
    void DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                              const TStreamProc& writeData, bool hasData) override;
    void ReadProperty(TPersistent& instance) override;
    void ReadCollection(TCollection& collection) override;

protected:
    void StoreProp(TPersistent& instance, const TPropInfo& prop, const void* slot) override;
    bool PassOver(TPersistent& instance, std::string_view path, TNoPlace reason) override;
    void ReadItem(TCollection& collection) override;

private:
    friend void DefineKeyedCollection(TFiler&, std::string_view, TSpcCollection&, bool);
    class TKeyedLoad;

    void ReadKeyed(TSpcCollection& collection, std::string_view key, bool keyFirst, bool keepOrder);
    std::string ReadIdent(std::string_view key, bool keyFirst);
    void ReadKeyedItem(TSpcItem& item, std::string_view key);
    bool NextPropIs(std::string_view name);
    bool ReadNodeValue(TPersistent& node, std::string_view path);
    bool ReadNodeItem(TPersistent& node, std::string_view path);
    bool ReadPropsBelow(TPersistent& node, std::string_view prefix);
    /// Exchanges `value` with what is there: at once, or when the journal is committed.
    template <class T> void Put(T& place, T value);

    TLoadJournal* FJournal = nullptr;
    bool FKeepsUnplaced = false;
    bool FDefinesKeyed = false;       ///< the block that is declared is a keyed collection
    std::int64_t FPropAt = 0;         ///< where the property that is being read begins
    std::string* FUnplaced = nullptr; ///< of the item or root that is being read
};

/// Declares a keyed collection as a block of an object's data, from its DefineProperties. Other
/// readers than TFitReader cannot read it: EFilerError.
/// \param byObjectID read as a free collection
void DefineKeyedCollection(TFiler& filer, std::string_view name, TSpcCollection& collection,
                           bool byObjectID);

} // namespace tarn
