#pragma once

#include "rtl/TStream.h"
#include "streaming/FormSink.h"
#include "streaming/FormValues.h"
#include "streaming/TFiler.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TCollection;

/// Writes a component stream: its values one by one, or whole objects. What the format cannot hold
/// raises EWriteError.
class TWriter : public TFiler {
public:
    /// Writes at the stream's position. The stream stays the caller's.
    /// \param bufferSize bytes, at least 1
    explicit TWriter(TStream& stream, int bufferSize = 4096);
    /// Writes what is left in the buffer; who wants to hear of an error calls FlushBuffer before.
    ~TWriter() override;

    std::int64_t Position(); ///< in the stream
    void FlushBuffer() override;

    // --- Values -------------------------------------------------------------------------------

    void WriteValue(TValueType type) { PutByte(type); }
    void WriteListBegin() { WriteValue(vaList); }
    void WriteListEnd() { WriteValue(vaNull); }
    void WriteInteger(std::int64_t value); ///< as small as it goes
    void WriteFloat(long double value);    ///< vaExtended
    void WriteSingle(float value);
    void WriteDouble(double value);
    void WriteDate(double value);           ///< days
    void WriteCurrency(std::int64_t value); ///< ten-thousandths
    void WriteBoolean(bool value) { WriteValue(value ? vaTrue : vaFalse); }
    void WriteChar(char value); ///< a string of one byte
    /// A text in UTF-8: as vaString or vaLString when it is ASCII, else as vaUTF8String. Any bytes
    /// are read back as they were.
    void WriteString(std::string_view value);
    void WriteWideString(std::u16string_view value);
    void WriteIdent(std::string_view value);
    void WriteSet(const TTypeInfo& setType,
                  std::uint32_t mask); ///< bits without a name are left out
    void WriteBinary(std::string_view bytes);
    /// What `writeData` puts into the stream that it gets.
    void WriteBinary(const TStreamProc& writeData);

    // --- The parts that are no values ---------------------------------------------------------

    void WriteStr(std::string_view name); ///< up to 255 bytes
    void WriteSignature(std::string_view signature = FilerSignature);
    /// \param className decides whether a prefix is needed where the flags do not
    void WritePrefix(TFilerFlags flags, std::int32_t childPos, std::string_view className = {});

    // The values behind their type bytes.
    void WriteIntegerOf(TValueType type, std::int64_t value);
    void WriteFloatOf(TValueType type, long double value);
    void WriteTextOf(TValueType type, std::string_view text);
    void WriteBlock(std::string_view bytes);

    // --- Objects ------------------------------------------------------------------------------

    /// A root component with its signature, flushed.
    void WriteRootComponent(TComponent& root) { WriteDescendent(root, nullptr); }
    /// A root component as what it changes of an ancestor, which is a component of the same
    /// class or of one that the class descends from.
    void WriteDescendent(TComponent& root, TComponent* ancestor);
    /// An object that need not be a component, as a root component without children, flushed.
    void WriteAsComponent(TPersistent& object, std::string_view name);
    /// A component that stands in another's list of children.
    void WriteComponent(TComponent& component);
    /// The stored properties: the published ones in the order of their declaration, inherited ones
    /// first, then those that the object defines. The end of their list is the caller's.
    virtual void WriteProperties(TPersistent& instance);
    /// A property, name and value; nothing when it is not to be stored.
    virtual void WriteProperty(TPersistent& instance, const TPropInfo& prop);
    /// A collection's value, its type byte first.
    virtual void WriteCollection(TCollection& collection);
    /// What a component holds: head, properties, children. Called by TComponent::WriteState.
    void WriteData(TComponent& instance);

    /// The name of the method that an event property holds; without it, or when it is empty, the
    /// event is not stored.
    std::function<std::string(TWriter&, const TPersistent& instance, const TPropInfo& prop)>
        OnGetMethodName;

    /// The component that a frame is a change of, which stays the slot's; null, or no slot, when
    /// the frame is to be written with all that is in it.
    std::function<TComponent*(TWriter&, const TComponent& frame)> OnFindAncestor;

    void DefineProperty(std::string_view name, const TReaderProc& readData,
                        const TWriterProc& writeData, bool hasData) override;
    void DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                              const TStreamProc& writeData, bool hasData) override;

protected:
    /// What stands before the names of properties: "Font." inside that sub-object.
    const std::string& PropPath() const { return FPropPath; }
    void SetPropPath(std::string value) { FPropPath = std::move(value); }
    void WritePropName(std::string_view name);
    /// Parts of a stream as they were read.
    void WriteRaw(std::string_view bytes) { PutBytes(bytes); }
    /// Whether a property is to be stored: it can be read back, the object says so, and it differs
    /// from the ancestor's or, without an ancestor, from its default. What has no default is always
    /// stored.
    virtual bool IsStoredProp(TPersistent& instance, const TPropInfo& prop);
    /// The value of a property of any kind but tkClass.
    virtual void WritePropValue(TPersistent& instance, const TPropInfo& prop);
    /// The items of a collection.
    virtual void WriteItems(TCollection& collection);
    /// An item of a collection: list begin, properties, list end.
    virtual void WriteItem(TPersistent& item);
    /// The name by which a component is referred to from the lookup root; empty when it has none.
    virtual std::string ReferenceName(const TComponent& component) const;

private:
    class TNesting;

    char* Put(std::size_t count);
    void PutByte(unsigned value) { *Put(1) = static_cast<char>(value); }
    void PutBytes(std::string_view bytes);
    void PutNumber(std::uint64_t value, int bytes);

    /// The ancestor, when it has the property, too.
    TPersistent* AncestorWith(const TPropInfo& prop) const;
    void WriteOrdinal(const TTypeInfo& type, std::int32_t value);
    void WriteVariant(const TVariant& value);
    void WriteObjectProp(TPersistent& instance, const TPropInfo& prop);
    void WriteSubObject(TPersistent& object, TObject* ancestor, std::string_view name);
    bool SameCollections(TCollection& collection, TCollection& ancestor);
    void WriteChildren(TComponent& instance);

    TStream& FStream;
    std::vector<char> FBuffer;
    std::size_t FUsed = 0;
    std::string FPropPath;
    int FDepth = 0;
    TComponent* FLookupAncestor = nullptr; ///< has the ancestors of the lookup root's components
    TFilerFlags FFlags;                    ///< of the component to be written
    std::int32_t FChildPos = 0;
};

} // namespace tarn
