#include "streaming/TReader.h"

#include "rtl/TMemoryStream.h"
#include "rtl/Unicode.h"
#include "streaming/FormValues.h"
#include "streaming/TFormTextString.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn {
namespace {

std::string Located(std::string_view place, std::string_view path, std::string_view what) {
    std::string message = std::string(place) + ": ";
    if (!path.empty()) message.append(ShownFormPath(path)).append(": ");
    return message.append(MaskedFormText(what));
}

std::string Shown(std::string_view text) {
    return "'" + ShownFormText(text) + "'";
}

} // namespace

EReaderError::EReaderError(std::int64_t offset, std::string_view place, std::string path,
                           std::string_view what, bool canContinue)
    : EReadError(Located(place, path, what)), FOffset(offset), FPath(std::move(path)),
      FCanContinue(canContinue) {}

// --- The buffer -------------------------------------------------------------------------------

TReader::TReader(TStream& stream, int bufferSize)
    : FStream(&stream), FMemory(ClassCast<TCustomMemoryStream>(&stream)) {
    if (FMemory) return;
    FOwnBuffer.resize(static_cast<std::size_t>(std::max(bufferSize, 1)));
    FBase = stream.Position();
}

TReader::TReader(std::string_view bytes) {
    AttachMemory(bytes, 0);
}

TReader::~TReader() {
    try {
        TReader::FlushBuffer();
    } catch (const Exception&) {
        // A stream that cannot seek stays where it is.
        FStream = nullptr;
    }
}

void TReader::AttachMemory(std::string_view bytes, std::int64_t position) {
    const auto size = static_cast<std::int64_t>(bytes.size());
    const std::int64_t at = std::clamp<std::int64_t>(position, 0, size);
    FBuffer = bytes.data();
    FNext = FBuffer + at;
    FEnd = FBuffer + size;
    FBase = position - at;
}

void TReader::FlushBuffer() {
    if (!FStream || !FBuffer) return;
    const std::int64_t position = Position();
    FBuffer = FNext = FEnd = nullptr;
    FStream->SetPosition(position);
}

std::int64_t TReader::UnbufferedPosition() const {
    return FStream ? FStream->Position() : FBase;
}

void TReader::SetPosition(std::int64_t position) {
    if (position >= FBase && position <= FBase + (FEnd - FBuffer) && FBuffer) {
        FNext = FBuffer + (position - FBase);
        return;
    }
    if (!FStream) FailAt(position, "no such offset");
    FBuffer = FNext = FEnd = nullptr;
    FStream->SetPosition(position);
}

std::int64_t TReader::BytesLeft() {
    if (FMemory && !FBuffer) Refill(0);
    if (!FStream || FMemory) return FEnd - FNext;
    return std::max<std::int64_t>(FStream->Size() - Position(), 0);
}

void TReader::Refill(std::int64_t count) {
    if (FMemory && !FBuffer) AttachMemory(FMemory->Text(), FMemory->Position());
    if (FStream && !FMemory) FillBuffer(count);
    const std::int64_t left = FEnd - FNext;
    if (left < count) Fail(Format("the stream ends: %d of %d bytes", {left, count}));
}

void TReader::FillBuffer(std::int64_t count) {
    // A long piece makes the buffer grow only when the stream has it.
    if (count > static_cast<std::int64_t>(FOwnBuffer.size())) {
        const std::int64_t left = BytesLeft();
        if (left < count) Fail(Format("the stream ends: %d of %d bytes", {left, count}));
    }
    const std::int64_t position = Position();
    const std::int64_t have = FEnd - FNext;
    if (have > 0) std::copy(FNext, FEnd, FOwnBuffer.begin());
    if (count > static_cast<std::int64_t>(FOwnBuffer.size()))
        FOwnBuffer.resize(static_cast<std::size_t>(count));
    FBuffer = FNext = FOwnBuffer.data();
    FEnd = FNext + have;
    FBase = position;
    const char* const last = FBuffer + FOwnBuffer.size();
    while (FEnd - FNext < count) {
        const std::int64_t read = FStream->Read(FOwnBuffer.data() + (FEnd - FBuffer), last - FEnd);
        if (read <= 0) break;
        FEnd += read;
    }
}

std::string_view TReader::BytesSince(std::int64_t offset) {
    const std::int64_t count = Position() - offset;
    SetPosition(offset);
    return {Take(count), static_cast<std::size_t>(count)};
}

template <int Bytes> std::uint64_t TReader::TakeNumber() {
    const char* const bytes = Take(Bytes);
    std::uint64_t value = 0;
    for (int i = 0; i < Bytes; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    return value;
}

// --- Places and errors ------------------------------------------------------------------------

TReader::TPlace::TPlace(TReader& reader, std::string_view name)
    : FReader(reader), FLength(reader.FPath.size()) {
    if (FLength > 0 && !name.empty()) reader.FPath += '.';
    reader.FPath += name;
}

TReader::TPlace::TPlace(TReader& reader, int index)
    : FReader(reader), FLength(reader.FPath.size()) {
    reader.FPath += '[';
    reader.FPath += IntToStr(index);
    reader.FPath += ']';
}

TReader::TNesting::TNesting(TReader& reader) : FReader(reader) {
    if (reader.FDepth >= MaxFormDepth)
        reader.Fail(Format("nested deeper than %d levels", {MaxFormDepth}));
    ++reader.FDepth;
}

std::string TReader::PlaceOf(std::int64_t offset) const {
    return OnPlace ? OnPlace(offset) : Format("offset %d", {offset});
}

void TReader::FailAt(std::int64_t offset, std::string_view what, bool canContinue) const {
    throw EReaderError(offset, PlaceOf(offset), FPath, what, canContinue);
}

void TReader::Fail(std::string_view what, bool canContinue) const {
    FailAt(Position(), what, canContinue);
}

void TReader::FailType(std::string_view expected, TValueType found) {
    FailAt(Position() - 1, Format("%s expected, not %s", {expected, ValueTypeName(found)}), true);
}

// --- Values -----------------------------------------------------------------------------------

TValueType TReader::NextValue() {
    const auto type = static_cast<TValueType>(*Take(1));
    --FNext;
    return type;
}

TValueType TReader::ReadValue() {
    const auto type = static_cast<unsigned char>(*Take(1));
    if (type > vaDouble) FailAt(Position() - 1, Format("unknown value type %d", {int{type}}));
    return static_cast<TValueType>(type);
}

void TReader::CheckValue(TValueType type) {
    const TValueType found = ReadValue();
    if (found != type) FailType(ValueTypeName(type), found);
}

std::int64_t TReader::ReadIntegerOf(TValueType type) {
    switch (type) {
    case vaInt8:
        return static_cast<std::int8_t>(TakeNumber<1>());
    case vaInt16:
        return static_cast<std::int16_t>(TakeNumber<2>());
    case vaInt32:
        return static_cast<std::int32_t>(TakeNumber<4>());
    case vaInt64:
    case vaCurrency:
        return static_cast<std::int64_t>(TakeNumber<8>());
    default:
        FailType("an integer", type);
    }
}

std::int64_t TReader::ReadInt64() {
    const TValueType type = ReadValue();
    if (!IsInteger(type)) FailType("an integer", type);
    return ReadIntegerOf(type);
}

std::int32_t TReader::ReadInteger() {
    const std::int64_t at = Position();
    const std::int64_t value = ReadInt64();
    if (value != static_cast<std::int32_t>(value))
        FailAt(at, Format("%d does not fit 32 bits", {value}), true);
    return static_cast<std::int32_t>(value);
}

long double TReader::ReadFloatOf(TValueType type) {
    switch (type) {
    case vaExtended: {
        const std::uint64_t mantissa = TakeNumber<8>();
        return ExtendedValue({mantissa, static_cast<std::uint16_t>(TakeNumber<2>())});
    }
    case vaSingle:
        return SingleValue(static_cast<std::uint32_t>(TakeNumber<4>()));
    case vaDouble:
    case vaDate:
        return DoubleValue(TakeNumber<8>());
    default:
        FailType("a number", type);
    }
}

long double TReader::ReadFloat() {
    const TValueType type = ReadValue();
    if (type == vaCurrency) return static_cast<long double>(ReadIntegerOf(type)) / CurrencyUnit;
    if (IsInteger(type)) return static_cast<long double>(ReadIntegerOf(type));
    return ReadFloatOf(type);
}

std::int64_t TReader::ReadCurrency() {
    if (NextValue() == vaCurrency) return ReadIntegerOf(ReadValue());
    const std::int64_t at = Position();
    const long double units = std::nearbyint(ReadFloat() * CurrencyUnit);
    // The limits are powers of two, which any floating type holds.
    constexpr long double limit = 9223372036854775808.0L;
    if (!(units >= -limit && units < limit)) FailAt(at, "too great for a currency", true);
    return static_cast<std::int64_t>(units);
}

bool TReader::ReadBoolean() {
    const TValueType type = ReadValue();
    if (type != vaTrue && type != vaFalse) FailType("False or True", type);
    return type == vaTrue;
}

std::string_view TReader::ReadShortText() {
    const auto length = static_cast<unsigned char>(*Take(1));
    return {Take(length), length};
}

std::string_view TReader::ReadTextOf(TValueType type) {
    if (type == vaString) return ReadShortText();
    if (!IsText(type)) FailType("a string", type);
    auto length = static_cast<std::int64_t>(TakeNumber<4>());
    if (type == vaWString) length *= 2;
    return {Take(length), static_cast<std::size_t>(length)};
}

std::string_view TReader::ReadBlock() {
    const auto length = static_cast<std::int64_t>(TakeNumber<4>());
    return {Take(length), static_cast<std::size_t>(length)};
}

std::string TReader::ReadString() {
    const TValueType type = ReadValue();
    const std::string_view text = ReadTextOf(type);
    if (type == vaWString) return Utf16ToUtf8(Utf16OfBytes(text));
    return type == vaUTF8String || IsAscii(text) ? std::string(text) : DecodeText(text);
}

std::u16string TReader::ReadWideString() {
    if (NextValue() != vaWString) return Utf8ToUtf16(ReadString());
    return Utf16OfBytes(ReadTextOf(ReadValue()));
}

std::string TReader::DecodeText(std::string_view bytes) {
    std::u16string text;
    for (const char c : bytes) text += static_cast<unsigned char>(c);
    return Utf16ToUtf8(text);
}

char TReader::ReadChar() {
    const std::int64_t at = Position();
    const TValueType type = ReadValue();
    const std::string_view text = ReadTextOf(type);
    if (type == vaString || type == vaLString) {
        if (text.size() == 1) return text.front();
    } else {
        const std::u16string wide = type == vaWString ? Utf16OfBytes(text) : Utf8ToUtf16(text);
        if (wide.size() == 1 && wide.front() <= 0xFF) return static_cast<char>(wide.front());
    }
    FailAt(at, Shown(text) + " is not one character", true);
}

std::string TReader::ReadIdent() {
    const TValueType type = ReadValue();
    if (type == vaIdent) return ReadStr();
    const std::string_view name = NameOfValue(type);
    if (name.empty()) FailType("an identifier", type);
    return std::string(name);
}

std::uint32_t TReader::ReadSet(const TTypeInfo& setType) {
    CheckValue(vaSet);
    std::uint32_t mask = 0;
    for (;;) {
        const std::int64_t at = Position();
        const std::string_view name = ReadShortText();
        if (name.empty()) return mask;
        std::int64_t ordinal = 0;
        if (!FindOrdinal(*setType.CompType, name, ordinal) || ordinal < 0 || ordinal > 31)
            FailAt(at, Format("%s is no value of %s", {Shown(name), setType.CompType->Name}), true);
        mask |= std::uint32_t{1} << ordinal;
    }
}

// --- The parts that are no values -------------------------------------------------------------

void TReader::ReadSignature(std::string_view signature) {
    const std::int64_t at = Position();
    const auto length = std::min(static_cast<std::int64_t>(signature.size()), BytesLeft());
    const std::string_view found(Take(length), static_cast<std::size_t>(length));
    if (found != signature)
        throw EInvalidImage(at, PlaceOf(at), FPath,
                            Format("%s expected, not %s", {signature, Shown(found)}), false);
}

void TReader::ReadPrefix(TFilerFlags& flags, std::int32_t& childPos) {
    constexpr unsigned mark = 0xF0;
    flags = {};
    const auto prefix = static_cast<unsigned char>(*Take(1));
    if ((prefix & mark) != mark) {
        --FNext;
        return;
    }
    flags = TFilerFlags::FromMask(prefix & ~mark);
    if (!(flags - TFilerFlags{ffInherited, ffChildPos, ffInline}).IsEmpty())
        FailAt(Position() - 1, Format("unknown object flags $%x", {unsigned{prefix}}));
    if (flags.Contains(ffChildPos)) childPos = ReadInteger();
}

// --- Skipping ---------------------------------------------------------------------------------

void TReader::SkipBytes(std::int64_t count) {
    if (!FStream || FMemory || count <= FEnd - FNext) {
        Take(count);
        return;
    }
    const std::int64_t left = BytesLeft();
    if (left < count) Fail(Format("the stream ends: %d of %d bytes", {left, count}));
    SetPosition(Position() + count);
}

void TReader::SkipValue() {
    const TValueType type = ReadValue();
    switch (type) {
    case vaNull:
    case vaFalse:
    case vaTrue:
    case vaNil:
        break;
    case vaInt8:
    case vaInt16:
    case vaInt32:
    case vaInt64:
    case vaCurrency:
        ReadIntegerOf(type);
        break;
    case vaSingle:
        SkipBytes(4);
        break;
    case vaDouble:
    case vaDate:
        SkipBytes(8);
        break;
    case vaExtended:
        SkipBytes(10);
        break;
    case vaIdent:
    case vaString:
        ReadShortText();
        break;
    case vaBinary:
    case vaLString:
    case vaUTF8String:
        SkipBytes(static_cast<std::int64_t>(TakeNumber<4>()));
        break;
    case vaWString:
        SkipBytes(static_cast<std::int64_t>(TakeNumber<4>()) * 2);
        break;
    case vaSet:
        SkipSet();
        break;
    case vaList:
        SkipList();
        break;
    case vaCollection:
        SkipCollection();
        break;
    }
}

void TReader::SkipSet() {
    while (!ReadShortText().empty()) {
    }
}

void TReader::SkipList() {
    const TNesting nesting(*this);
    while (!EndOfList()) SkipValue();
    ReadListEnd();
}

void TReader::SkipProperty() {
    ReadShortText();
    SkipValue();
}

void TReader::SkipProperties() {
    while (!EndOfList()) SkipProperty();
    ReadListEnd();
}

void TReader::SkipCollection() {
    const TNesting nesting(*this);
    while (!EndOfList()) {
        if (IsInteger(NextValue())) SkipValue();
        ReadListBegin();
        SkipProperties();
    }
    ReadListEnd();
}

void TReader::SkipComponent(bool withHeader) {
    const TNesting nesting(*this);
    if (withHeader) {
        TFilerFlags flags;
        std::int32_t childPos = 0;
        ReadPrefix(flags, childPos);
        ReadShortText();
        ReadShortText();
    }
    SkipProperties();
    while (!EndOfList()) SkipComponent(true);
    ReadListEnd();
}

void TReader::SkipObject() {
    ReadSignature();
    SkipComponent(true);
}

} // namespace tarn
