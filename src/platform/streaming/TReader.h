#pragma once

#include "rtl/TStream.h"
#include "streaming/FormSink.h"
#include "streaming/TFiler.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

class TCollection;
class TCustomMemoryStream;

/// What is wrong in a component stream, and where. The message is "PLACE: PATH: what", names
/// without control characters; the path is left out where there is none.
class EReaderError : public EReadError {
public:
    /// \param place the offset, for people
    EReaderError(std::int64_t offset, std::string_view place, std::string path,
                 std::string_view what, bool canContinue);

    std::string_view ClassName() const override { return "EReaderError"; }
    std::int64_t Offset() const { return FOffset; }   ///< 0-based, in the stream
    const std::string& Path() const { return FPath; } ///< "MainForm.Panel1.Font.Size"
    /// Whether the reader knows where the next value begins: false for bytes that make no sense,
    /// and for an error that OnError was asked about already.
    bool CanContinue() const { return FCanContinue; }
    void SetCanContinue(bool value) { FCanContinue = value; }

private:
    std::int64_t FOffset;
    std::string FPath;
    bool FCanContinue;
};

struct TInvalidImageTag {
    static constexpr std::string_view Name = "EInvalidImage";
};
/// A stream that begins with another signature than the expected one.
using EInvalidImage = TNamedException<TInvalidImageTag, EReaderError>;

/// Why a property that a stream names has no place in the object that is read.
enum TNoPlace : std::uint8_t { npUnknown, npNoObject, npReadOnly };

/// Reads a component stream: its values one by one, or whole objects.
///
/// Over memory (a memory stream, or bytes) the memory is the buffer and nothing is copied; such a
/// stream must not change while it is read. Every length is checked against what is left before
/// room is made for it. What does not fit the format raises EReaderError.
class TReader : public TFiler {
public:
    /// Reads from the stream's position on. The stream stays the caller's and is left, at the end
    /// and by FlushBuffer, at the place up to which was read.
    /// \param bufferSize bytes, at least 1
    explicit TReader(TStream& stream, int bufferSize = 4096);
    /// Over bytes that stay the caller's.
    explicit TReader(std::string_view bytes);
    ~TReader() override;

    std::int64_t Position() const { ///< in the stream
        return FBuffer ? FBase + (FNext - FBuffer) : UnbufferedPosition();
    }
    void SetPosition(std::int64_t position);
    std::int64_t BytesLeft(); ///< up to the end of the stream
    void FlushBuffer() override;

    // --- Values. Reading a value of another type raises EReaderError naming both. -------------

    /// The byte that follows, which is not consumed: a value's type, or 0 at the end of any list.
    TValueType NextValue();
    TValueType ReadValue(); ///< consumes the type's byte; an unknown one is an error
    void CheckValue(TValueType type);
    bool EndOfList() { return NextValue() == vaNull; }
    void ReadListBegin() { CheckValue(vaList); }
    void ReadListEnd() { CheckValue(vaNull); }

    std::int32_t ReadInteger(); ///< any integer that 32 bits hold
    std::int64_t ReadInt64();
    /// The float readers take any number and convert it.
    long double ReadFloat();
    float ReadSingle() { return static_cast<float>(ReadFloat()); }
    double ReadDouble() { return static_cast<double>(ReadFloat()); }
    double ReadDate() { return static_cast<double>(ReadFloat()); } ///< days
    std::int64_t ReadCurrency();                                   ///< ten-thousandths, rounded
    bool ReadBoolean();
    char ReadChar(); ///< a string of one character up to 255
    /// Any string type, as UTF-8. The bytes of vaString and vaLString go through DecodeText.
    std::string ReadString();
    std::u16string ReadWideString();
    /// An identifier; False, True, nil and Null are identifiers, too.
    std::string ReadIdent();
    std::uint32_t ReadSet(const TTypeInfo& setType); ///< the mask
    void SkipValue();

    // --- The parts that are no values ---------------------------------------------------------

    std::string ReadStr() { return std::string(ReadShortText()); } ///< a name: length byte, bytes
    /// Raises EInvalidImage when another one stands there.
    void ReadSignature(std::string_view signature = FilerSignature);
    /// What may stand before an object's class name; `childPos` stays when the stream has none.
    void ReadPrefix(TFilerFlags& flags, std::int32_t& childPos);
    void SkipProperty(); ///< name and value
    /// One object with its properties and children.
    void SkipComponent(bool withHeader);
    /// A signature and an object.
    void SkipObject();

    // The values behind their type bytes. The views end with the next read.
    std::int64_t ReadIntegerOf(TValueType type);  ///< vaInt8, vaInt16, vaInt32, vaInt64, vaCurrency
    long double ReadFloatOf(TValueType type);     ///< vaExtended, vaSingle, vaDouble, vaDate
    std::string_view ReadTextOf(TValueType type); ///< the bytes of vaString and its kin
    std::string_view ReadBlock();                 ///< of vaBinary
    std::string_view ReadShortText();             ///< a length byte and its bytes

    // --- Objects ------------------------------------------------------------------------------

    /// Reads a root component with its signature. With `root` null the stream's class is looked up
    /// and the new component is the caller's; otherwise it is read into `root`, whatever its class.
    TComponent* ReadRootComponent(TComponent* root);
    /// Reads what a root component's stream holds into an object that need not be a component.
    /// Class, name and children of the stream are passed over.
    virtual void ReadAsComponent(TPersistent& object);
    /// Reads a child of the current parent: a new component, or an existing one that the stream
    /// calls inherited. A new one without an owner is the caller's. Null when OnError let a class
    /// go that nobody knows.
    TComponent* ReadComponent();
    /// Properties up to the end of their list, which is left.
    virtual void ReadProperties(TPersistent& instance);
    /// A property, its name first. An error in the value is offered to OnError; when that handles
    /// it, reading goes on behind the value.
    virtual void ReadProperty(TPersistent& instance);
    /// The value behind the property's name.
    virtual void ReadPropValue(TPersistent& instance, const TPropInfo& prop);
    /// The items of a collection value, its type byte already consumed, in place of those that it
    /// has.
    virtual void ReadCollection(TCollection& collection);
    /// What a component holds: properties, then children. Called by TComponent::ReadState.
    void ReadData(TComponent& instance);

    /// Up to Close, references to components are only noted and no component is told that it is
    /// loaded. The object readers open a bracket of their own; one around them serves several
    /// objects that refer to each other. Left without Close, what was noted is forgotten.
    class TReferences {
    public:
        explicit TReferences(TReader& reader) : FReader(reader) { ++reader.FReferenceBrackets; }
        TReferences(const TReferences&) = delete;
        TReferences& operator=(const TReferences&) = delete;
        ~TReferences();
        void Close();

    private:
        TReader& FReader;
    };

    // --- What others may decide ---------------------------------------------------------------

    /// What messages call an offset of a stream that was made from something else; "offset O" when
    /// it is empty.
    std::function<std::string(std::int64_t offset)> OnPlace;
    /// An error that could be passed over; without a handler it is raised. `message` is complete.
    std::function<void(TReader&, std::string_view message, bool& handled)> OnError;
    /// A class by its name, before the field classes of the root and the registry are asked.
    std::function<void(TReader&, std::string_view className, const TClassRecord*& record)>
        OnFindComponentClass;
    /// May make the component itself; it is then inserted into the owner.
    std::function<void(TReader&, const TClassRecord& record, TComponent*& component)>
        OnCreateComponent;
    /// The method of that name for an event property; null when there is none, which is an error.
    std::function<void(TReader&, TPersistent& instance, const TPropInfo& prop,
                       std::string_view name, TRawMethod& method)>
        OnFindMethod;
    /// May change the name by which a component is referred to.
    std::function<void(TReader&, std::string& name)> OnReferenceName;
    /// May find a component that the lookup root does not have.
    std::function<void(TReader&, std::string_view name, TComponent*& component)> OnFindComponent;
    /// May change the name that a component is going to have.
    std::function<void(TReader&, TComponent& component, std::string& name)> OnSetName;

    TComponent* Owner = nullptr;  ///< of the components to be made
    TComponent* Parent = nullptr; ///< of the components to be read

    const std::string& Path() const { return FPath; }

    /// Errors inside the block name this part of the path: ".NAME" or, for an item, "[INDEX]".
    class TPlace {
    public:
        TPlace(TReader& reader, std::string_view name);
        TPlace(TReader& reader, int index);
        TPlace(const TPlace&) = delete;
        TPlace& operator=(const TPlace&) = delete;
        ~TPlace() { FReader.FPath.resize(FLength); }

    private:
        TReader& FReader;
        std::size_t FLength;
    };
    /// One level of objects, lists and collections. Raises EReaderError beyond MaxFormDepth.
    class TNesting {
    public:
        explicit TNesting(TReader& reader);
        TNesting(const TNesting&) = delete;
        TNesting& operator=(const TNesting&) = delete;
        ~TNesting() { --FReader.FDepth; }

    private:
        TReader& FReader;
    };

    /// Raises EReaderError for the place of the reader, or for another offset.
    [[noreturn]] void Fail(std::string_view what, bool canContinue = false) const;
    [[noreturn]] void FailAt(std::int64_t offset, std::string_view what,
                             bool canContinue = false) const;

    void DefineProperty(std::string_view name, const TReaderProc& readData,
                        const TWriterProc& writeData, bool hasData) override;
    void DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                              const TStreamProc& writeData, bool hasData) override;

protected:
    /// The bytes of a string in the file's code page as UTF-8. Here a byte is the character of its
    /// number, as in the text form, where no other difference is left between such a string and one
    /// of characters up to 255.
    virtual std::string DecodeText(std::string_view bytes);
    /// Offers an error to OnError; false when it is to be raised.
    virtual bool Error(std::string_view message);
    /// The class of that name; null when nobody knows it.
    virtual const TClassRecord* FindComponentClass(std::string_view className);
    virtual void SetName(TComponent& component, std::string& name);
    /// The component of a dotted name below the lookup root or elsewhere; null when none.
    virtual TComponent* FindReference(std::string_view name);
    virtual TRawMethod FindMethod(TPersistent& instance, const TPropInfo& prop,
                                  std::string_view name);
    /// Properties up to the end of their list, which is left, into a new item.
    virtual void ReadItem(TCollection& collection);
    /// Gives a property the value that the slot of its kind holds.
    virtual void StoreProp(TPersistent& instance, const TPropInfo& prop, const void* slot);
    /// Asked, before it is an error, about a property whose value has no place: of that path below
    /// the instance. True when the value, which follows, has been consumed.
    virtual bool PassOver(TPersistent& instance, std::string_view path, TNoPlace reason);
    /// The value of the property of that name or path, which the reader has passed; see
    /// ReadProperty.
    void ReadNamedProperty(TPersistent& instance, std::string_view name);
    /// What messages call an offset.
    std::string PlaceOf(std::int64_t offset) const;
    /// The bytes from an offset up to the reader's position. The view ends with the next read.
    std::string_view BytesSince(std::int64_t offset);

private:
    struct TFixup {
        TWeak<TPersistent> Instance;
        const TPropInfo* Prop;
        TWeak<TComponent> Root;
        TWeak<TComponent> LookupRoot;
        std::string Name;
        std::string Path;
        std::int64_t Offset;
    };
    struct THead;
    class TRoots;

    /// The next bytes, which stand in the buffer in one piece up to the next read.
    const char* Take(std::int64_t count) {
        if (count > FEnd - FNext) Refill(count);
        return std::exchange(FNext, FNext + count);
    }
    std::int64_t UnbufferedPosition() const;
    void Refill(std::int64_t count);
    void FillBuffer(std::int64_t count);
    void AttachMemory(std::string_view bytes, std::int64_t position);
    template <int Bytes> std::uint64_t TakeNumber();
    [[noreturn]] void FailType(std::string_view expected, TValueType found);

    void SkipList();
    void SkipCollection();
    void SkipSet();
    void SkipProperties();
    void SkipBytes(std::int64_t count);

    void ReadNamedProp(TPersistent& instance, std::string_view name);
    bool ReadDefinedProp(TPersistent& instance, std::string_view name);
    void ReadObjectProp(TPersistent& instance, const TPropInfo& prop);
    std::int32_t ReadOrdinal(const TTypeInfo& type);
    std::int32_t ReadIntegerProp(const TTypeInfo& type);
    TRawMethod ReadMethod(TPersistent& instance, const TPropInfo& prop);
    template <class T> void Store(TPersistent& instance, const TPropInfo& prop, const T& slot) {
        StoreProp(instance, prop, &slot);
    }
    TVariant ReadVariant();
    void Offer(EReaderError error);
    void Offer(std::int64_t offset, const std::string& path, std::string_view what);

    void SetReferences();
    void SetReference(const TFixup& fixup);
    void FinishLoading();
    void Forget();

    THead ReadHead();
    TComponent& FindInherited(const THead& head);
    std::unique_ptr<TComponent> CreateNew(const THead& head);
    TComponent& ChildOf(const THead& head);
    void GiveName(TComponent& component, const THead& head);
    void ReadInto(TComponent& component, const THead& head);

    TStream* FStream = nullptr;             ///< null over bytes
    TCustomMemoryStream* FMemory = nullptr; ///< the stream, when its memory is the buffer
    std::vector<char> FOwnBuffer;
    const char* FBuffer = nullptr;
    const char* FNext = nullptr;
    const char* FEnd = nullptr;
    std::int64_t FBase = 0; ///< the buffer's place in the stream

    std::string FPath;
    int FDepth = 0;
    std::string_view FPropName; ///< the property that DefineProperties is asked for
    int FReferenceBrackets = 0;
    // Lists that do not move what they hold: weak references are costly to move.
    std::deque<TFixup> FFixups;
    std::deque<TWeak<TComponent>> FLoaded;
};

} // namespace tarn
