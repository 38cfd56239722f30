#include "streaming/TWriter.h"

#include "rtl/TMemoryStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarn {
namespace {

[[noreturn]] void Refuse(std::string_view what, std::string_view text) {
    constexpr std::size_t most = 40;
    throw EWriteError(
        Format("%s: '%s%s'", {what, text.substr(0, most), text.size() > most ? "..." : ""}));
}

} // namespace

TWriter::TWriter(TStream& stream, int bufferSize)
    : FStream(stream), FBuffer(static_cast<std::size_t>(std::max(bufferSize, 1))) {}

TWriter::~TWriter() {
    try {
        TWriter::FlushBuffer();
    } catch (const Exception&) {
        // Nobody is left to hear of it; who wants to has flushed before.
        FUsed = 0;
    }
}

std::int64_t TWriter::Position() {
    return FStream.Position() + static_cast<std::int64_t>(FUsed);
}

void TWriter::FlushBuffer() {
    // A piece that the stream refused is not offered again.
    FStream.WriteBuffer(FBuffer.data(), static_cast<std::int64_t>(std::exchange(FUsed, 0)));
}

char* TWriter::Put(std::size_t count) {
    if (count > FBuffer.size() - FUsed) {
        FlushBuffer();
        if (count > FBuffer.size()) FBuffer.resize(count);
    }
    return FBuffer.data() + std::exchange(FUsed, FUsed + count);
}

void TWriter::PutBytes(std::string_view bytes) {
    if (bytes.size() > FBuffer.size() - FUsed) {
        FlushBuffer();
        if (bytes.size() >= FBuffer.size()) {
            FStream.WriteText(bytes);
            return;
        }
    }
    if (!bytes.empty()) std::memcpy(Put(bytes.size()), bytes.data(), bytes.size());
}

void TWriter::PutNumber(std::uint64_t value, int bytes) {
    char* const place = Put(static_cast<std::size_t>(bytes));
    for (int i = 0; i < bytes; ++i) place[i] = static_cast<char>(value >> (8 * i));
}

// --- Values -----------------------------------------------------------------------------------

void TWriter::WriteIntegerOf(TValueType type, std::int64_t value) {
    const auto put = [&](int bytes) { PutNumber(static_cast<std::uint64_t>(value), bytes); };
    WriteValue(type);
    switch (type) {
    case vaInt8:
        return put(1);
    case vaInt16:
        return put(2);
    case vaInt32:
        return put(4);
    default:
        return put(8);
    }
}

void TWriter::WriteInteger(std::int64_t value) {
    WriteIntegerOf(IntegerTypeOf(value), value);
}

void TWriter::WriteCurrency(std::int64_t value) {
    WriteIntegerOf(vaCurrency, value);
}

void TWriter::WriteFloatOf(TValueType type, long double value) {
    WriteValue(type);
    switch (type) {
    case vaSingle:
        return PutNumber(SingleBits(value), 4);
    case vaDouble:
    case vaDate:
        return PutNumber(DoubleBits(value), 8);
    default:
        break;
    }
    const TExtendedBits bits = ExtendedBits(value);
    PutNumber(bits.Mantissa, 8);
    PutNumber(bits.SignExponent, 2);
}

void TWriter::WriteFloat(long double value) {
    WriteFloatOf(vaExtended, value);
}
void TWriter::WriteSingle(float value) {
    WriteFloatOf(vaSingle, value);
}
void TWriter::WriteDouble(double value) {
    WriteFloatOf(vaDouble, value);
}
void TWriter::WriteDate(double value) {
    WriteFloatOf(vaDate, value);
}

void TWriter::WriteTextOf(TValueType type, std::string_view text) {
    constexpr std::uint64_t most = 0xFFFFFFFF;
    WriteValue(type);
    if (type == vaString) return WriteStr(text);
    if (type == vaWString && text.size() % 2 != 0) Refuse("half a character at the end", text);
    const std::uint64_t length = type == vaWString ? text.size() / 2 : text.size();
    if (length > most) Refuse(Format("a string of %d bytes", {text.size()}), text);
    PutNumber(length, 4);
    PutBytes(text);
}

void TWriter::WriteString(std::string_view value) {
    WriteTextOf(IsAscii(value) ? StringTypeOf(value.size()) : vaUTF8String, value);
}

void TWriter::WriteWideString(std::u16string_view value) {
    WriteTextOf(vaWString, BytesOfUtf16(value));
}

void TWriter::WriteChar(char value) {
    WriteTextOf(vaString, {&value, 1});
}

void TWriter::WriteIdent(std::string_view value) {
    const TValueType type = IdentTypeOf(value);
    WriteValue(type);
    if (type == vaIdent) WriteStr(value);
}

void TWriter::WriteSet(const TTypeInfo& setType, std::uint32_t mask) {
    WriteValue(vaSet);
    for (int bit = 0; bit < 32; ++bit) {
        if ((mask >> bit & 1) == 0) continue;
        const std::string_view name = NameOfOrdinal(*setType.CompType, bit);
        if (!name.empty()) WriteStr(name);
    }
    WriteStr({});
}

void TWriter::WriteBlock(std::string_view bytes) {
    if (bytes.size() > 0xFFFFFFFF) Refuse(Format("a block of %d bytes", {bytes.size()}), {});
    PutNumber(bytes.size(), 4);
    PutBytes(bytes);
}

void TWriter::WriteBinary(std::string_view bytes) {
    WriteValue(vaBinary);
    WriteBlock(bytes);
}

void TWriter::WriteBinary(const TStreamProc& writeData) {
    TMemoryStream data;
    writeData(data);
    WriteBinary(data.Text());
}

// --- The parts that are no values -------------------------------------------------------------

void TWriter::WriteStr(std::string_view name) {
    if (name.size() > 255) Refuse("longer than 255 bytes", name);
    PutByte(static_cast<unsigned>(name.size()));
    PutBytes(name);
}

void TWriter::WriteSignature(std::string_view signature) {
    PutBytes(signature);
}

void TWriter::WritePrefix(TFilerFlags flags, std::int32_t childPos, std::string_view className) {
    constexpr unsigned mark = 0xF0;
    // The length of a very long class name would be taken for a prefix.
    if (!flags.IsEmpty() || className.size() >= mark) PutByte(mark | flags.Mask());
    if (flags.Contains(ffChildPos)) WriteInteger(childPos);
}

} // namespace tarn
