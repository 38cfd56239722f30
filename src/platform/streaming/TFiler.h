#pragma once

#include "rtl/TypInfo.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

class TComponent;
class TPersistent;
class TReader;
class TStream;
class TWriter;

using TReaderProc = std::function<void(TReader& reader)>;
using TWriterProc = std::function<void(TWriter& writer)>;
using TStreamProc = std::function<void(TStream& stream)>;

/// The bytes that a root object of a component stream begins with.
inline constexpr std::string_view FilerSignature = "TPF0";

/// What the reader and the writer of component streams have in common: an object that stores more
/// than its published properties declares that to either in the same way, in DefineProperties.
class TFiler {
public:
    TFiler() = default;
    TFiler(const TFiler&) = delete;
    TFiler& operator=(const TFiler&) = delete;
    virtual ~TFiler() = default;

    /// Declares a property whose value `writeData` writes, when there is data, and `readData`
    /// reads: exactly one value each.
    virtual void DefineProperty(std::string_view name, const TReaderProc& readData,
                                const TWriterProc& writeData, bool hasData) = 0;
    /// Declares a property of raw bytes. The stream that is handed out holds nothing else and ends
    /// with the call.
    virtual void DefineBinaryProperty(std::string_view name, const TStreamProc& readData,
                                      const TStreamProc& writeData, bool hasData) = 0;
    /// Brings the stream to the place where the filer is.
    virtual void FlushBuffer() = 0;

    /// The component that is being streamed as a whole; null outside one.
    TComponent* Root() const { return FRoot; }
    /// Where names of components are looked up: the root, or the frame that is being streamed.
    TComponent* LookupRoot() const { return FLookupRoot; }
    /// The object that the one being written is a change of; null when it stands for itself.
    TPersistent* Ancestor() const { return FAncestor; }
    void SetAncestor(TPersistent* value) { FAncestor = value; }
    /// Whether child components are left out.
    bool IgnoreChildren = false;

protected:
    void SetRoot(TComponent* root) { FRoot = FLookupRoot = root; }
    void SetLookupRoot(TComponent* root) { FLookupRoot = root; }

private:
    TComponent* FRoot = nullptr;
    TComponent* FLookupRoot = nullptr;
    TPersistent* FAncestor = nullptr;
};

/// Puts another value into a variable and the old one back at the end of the block.
template <class T> class TScopedValue {
public:
    template <class V>
    TScopedValue(T& variable, V&& value) : FVariable(variable), FOld(std::move(variable)) {
        variable = std::forward<V>(value);
    }
    TScopedValue(const TScopedValue&) = delete;
    TScopedValue& operator=(const TScopedValue&) = delete;
    ~TScopedValue() { FVariable = std::move(FOld); }

private:
    T& FVariable;
    T FOld;
};

using TIdentToInt = bool (*)(std::string_view ident, std::int32_t& value);
using TIntToIdent = bool (*)(std::int32_t value, std::string& ident);

/// Lets the integer properties of a type be streamed by identifier where their value has one, for
/// example "TColor". The type counts by its name, without case; a later pair replaces an earlier
/// one. The functions return false for what they do not know.
void RegisterIntegerConsts(const TTypeInfo& type, TIdentToInt identToInt, TIntToIdent intToIdent);
/// Ends that.
void UnRegisterIntegerConsts(const TTypeInfo& type);
/// False when the type has no identifiers, or none of that name or value.
bool IdentToInteger(const TTypeInfo& type, std::string_view ident, std::int32_t& value);
bool IntegerToIdent(const TTypeInfo& type, std::int32_t value, std::string& ident);

} // namespace tarn
