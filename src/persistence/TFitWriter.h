#pragma once

#include "streaming/TWriter.h"

#include <functional>
#include <string_view>

namespace tarn {

class TSpcCollection;

/// Writes a settings tree for a TFitReader.
///
/// All properties are written that can be read back and whose class does not say that they are not
/// stored, those that have their default value too: read over a tree whose values are others by
/// now, a stream is to end at the values that were saved. Behind them stands what was kept when it
/// was read and had no place.
class TFitWriter : public TWriter {
public:
    using TWriter::TWriter;

    void WriteProperties(TPersistent& instance) override;
    /// A collection as TWriter writes it. The items that a settings collection has kept stand at
    /// the places that they had when they were read.
    void WriteCollection(TCollection& collection) override;
    /// The same for a collection that an object writes as a block of its data.
    void WriteCollectionEx(TCollection& collection);

protected:
    bool IsStoredProp(TPersistent& instance, const TPropInfo& prop) override;
    void WriteItems(TCollection& collection) override;
    /// Property records that were kept. \param key the name that tells a kept item from the others;
    /// empty where they belong to an item that is there, or to the root
    virtual void WriteKept(std::string_view records, std::string_view key);
};

/// Leaves out some of the properties. What tells the items of a settings collection apart is always
/// written.
class TFilteringWriter : public TFitWriter {
public:
    using TFitWriter::TFitWriter;

    /// Whether a property is to be written, with all that it holds; also asked about each part of
    /// what is written. \param instance the object that has it; the collection for a kept item
    /// \param path its dotted name below the root or item
    std::function<bool(const TPersistent& instance, std::string_view path)> OnFilter;

    void WriteProperty(TPersistent& instance, const TPropInfo& prop) override;
    void WriteProperties(TPersistent& instance) override;
    void WriteCollection(TCollection& collection) override;
    void DefineProperty(std::string_view name, const TReaderProc& readData,
                        const TWriterProc& writeData, bool hasData) override;
    void DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                              const TStreamProc& writeData, bool hasData) override;

protected:
    /// Calls `write` for what is to be written. Here OnFilter decides.
    virtual void Filter(const TPersistent& instance, std::string_view path,
                        const std::function<void()>& write);
    /// The property that Filter is asked about, by its dotted name below the root, the names of
    /// collections included: "MenuData_.Caption".
    const std::string& Place() const { return FPlace; }
    void WriteKept(std::string_view records, std::string_view key) override;

private:
    void Offer(std::string_view name, const std::function<void()>& write);

    const TPersistent* FInstance = nullptr; ///< whose properties are being written
    std::string FPlace;
    std::string FCollectionPath; ///< what a place begins with inside a collection
};

} // namespace tarn
