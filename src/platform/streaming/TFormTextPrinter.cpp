#include "streaming/TFormTextPrinter.h"

#include "rtl/SafeFile.h"
#include "rtl/Unicode.h"
#include "streaming/FormFloat.h"
#include "streaming/FormHex.h"
#include "streaming/FormValues.h"
#include "streaming/TFormTextParser.h"
#include "streaming/TFormTextString.h"

#include <array>
#include <charconv>

namespace tarn {

namespace {

constexpr std::size_t RowLength = 64; ///< characters of a long string in a row
constexpr std::size_t RowBytes = 32;  ///< bytes of a binary block in a row
constexpr std::size_t FlushSize = 65536;
constexpr std::size_t BlanksPerLevel = 2;

bool IsHighSurrogate(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}
bool IsLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

/// Whether the unit is half of a character that both halves are there of.
bool IsPaired(std::u16string_view text, std::size_t i) {
    if (IsHighSurrogate(text[i])) return i + 1 < text.size() && IsLowSurrogate(text[i + 1]);
    return IsLowSurrogate(text[i]) && i > 0 && IsHighSurrogate(text[i - 1]);
}

/// Where a row of a long string ends that begins at `begin`.
std::size_t RowEnd(std::string_view text, std::size_t begin) {
    return std::min(text.size(), begin + RowLength);
}
std::size_t RowEnd(std::u16string_view text, std::size_t begin) {
    if (text.size() - begin <= RowLength) return text.size();
    const std::size_t end = begin + RowLength;
    return IsLowSurrogate(text[end]) && IsHighSurrogate(text[end - 1]) ? end - 1 : end;
}

} // namespace

TFormTextPrinter::TFormTextPrinter(std::string& target, const TFormLayout& layout, int level)
    : FOut(&target), FLayout(layout), FLevel(level) {}

TFormTextPrinter::TFormTextPrinter(TStream& target, const TFormLayout& layout, int level)
    : FStream(&target), FOut(&FBuffer), FLayout(layout), FLevel(level) {}

void TFormTextPrinter::Flush() {
    if (!FStream) return;
    FStream->WriteText(FBuffer);
    FBuffer.clear();
}

// --- Pieces -----------------------------------------------------------------------------------

void TFormTextPrinter::PutName(std::string_view name) {
    if (!IsFormName(name))
        throw EWriteError("a text cannot hold the name \"" + ShownFormText(name) + '"');
    Put(name);
}

void TFormTextPrinter::PutNumber(std::int64_t value) {
    std::array<char, 24> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    Put({buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())});
}

void TFormTextPrinter::NewLine() {
    if (FStream && FBuffer.size() >= FlushSize) Flush();
    Put(FLayout.LineBreak);
    FOut->append(static_cast<std::size_t>(FLevel) * BlanksPerLevel, ' ');
}

/// The values of a list have lines of their own.
void TFormTextPrinter::BeginValue() {
    if (!FInside.empty() && FInside.back() == coList) NewLine();
}

// --- Objects ----------------------------------------------------------------------------------

void TFormTextPrinter::BeginObject(const TFormHeader& header) {
    if (FObjects++ == 0) {
        if (FLayout.Utf8Mark && FAtStart) Put(Utf8Mark);
        if (!FLayout.FinalBreak && !FAtStart) Put(FLayout.LineBreak);
        FAtStart = false;
        FOut->append(static_cast<std::size_t>(FLevel) * BlanksPerLevel, ' ');
    } else {
        NewLine();
    }
    if (header.Flags.Contains(ffInherited))
        Put("inherited ");
    else if (header.Flags.Contains(ffInline))
        Put("inline ");
    else
        Put("object ");
    if (!header.ObjectName.empty()) {
        PutName(header.ObjectName);
        Put(": ");
    }
    PutName(header.ClassName);
    if (header.Flags.Contains(ffChildPos)) {
        Put(" [");
        PutNumber(header.ChildPos);
        Put("]");
    }
    ++FLevel;
}

void TFormTextPrinter::EndObject() {
    --FLevel;
    NewLine();
    Put("end");
    if (--FObjects > 0) return;
    if (FLayout.FinalBreak) Put(FLayout.LineBreak);
    Flush();
}

void TFormTextPrinter::Property(std::string_view name) {
    NewLine();
    PutName(name);
    Put(" = ");
}

// --- Values -----------------------------------------------------------------------------------

void TFormTextPrinter::Integer(TValueType type, std::int64_t value) {
    BeginValue();
    if (type == vaCurrency)
        AppendFormCurrency(*FOut, value, FLayout.FixedFloats);
    else
        PutNumber(value);
}

void TFormTextPrinter::Float(TValueType type, long double value) {
    BeginValue();
    AppendFormFloat(*FOut, type, value, FLayout.FixedFloats);
}

void TFormTextPrinter::Ident(TValueType type, std::string_view name) {
    BeginValue();
    if (type == vaIdent)
        PutName(name);
    else
        Put(NameOfValue(type));
}

void TFormTextPrinter::Binary(std::string_view bytes) {
    BeginValue();
    Put("{");
    ++FLevel;
    if (bytes.size() < RowBytes)
        PutHexRow(bytes); // a short block stays in its line
    else
        for (std::size_t i = 0; i < bytes.size(); i += RowBytes) {
            NewLine();
            PutHexRow(bytes.substr(i, RowBytes));
        }
    --FLevel;
    Put("}");
}

void TFormTextPrinter::PutHexRow(std::string_view bytes) {
    std::array<char, RowBytes * 2> row;
    EncodeFormHex(bytes, row.data());
    Put({row.data(), bytes.size() * 2});
}

void TFormTextPrinter::BeginSet() {
    BeginValue();
    Put("[");
    FInEmptySet = true;
}

void TFormTextPrinter::SetElement(std::string_view name) {
    if (!FInEmptySet) Put(", ");
    FInEmptySet = false;
    PutName(name);
}

void TFormTextPrinter::EndSet() {
    Put("]");
}

void TFormTextPrinter::BeginList() {
    BeginValue();
    Put("(");
    ++FLevel;
    FInside.push_back(coList);
}

void TFormTextPrinter::EndList() {
    CloseBracket(')');
}

void TFormTextPrinter::BeginCollection() {
    BeginValue();
    Put("<");
    ++FLevel;
    FInside.push_back(coCollection);
}

void TFormTextPrinter::EndCollection() {
    CloseBracket('>');
}

void TFormTextPrinter::CloseBracket(char bracket) {
    FInside.pop_back();
    --FLevel;
    *FOut += bracket;
}

void TFormTextPrinter::BeginItem(std::optional<std::int64_t> order) {
    NewLine();
    Put("item");
    if (order) {
        Put(" [");
        PutNumber(*order);
        Put("]");
    }
    ++FLevel;
}

void TFormTextPrinter::EndItem() {
    --FLevel;
    NewLine();
    Put("end");
}

// --- Strings ----------------------------------------------------------------------------------

void TFormTextPrinter::String(TValueType type, std::string_view text) {
    BeginValue();
    if (type == vaWString)
        PutText(std::u16string_view(Utf16OfBytes(text)));
    else if (type == vaUTF8String && !IsAscii(text))
        PutText(std::u16string_view(Utf8ToUtf16(text)));
    else
        PutText(text);
}

/// A string of more than one row begins below its property, one level deeper.
template <class TUnit> void TFormTextPrinter::PutText(std::basic_string_view<TUnit> text) {
    if (text.empty()) return Put("''");
    if (text.size() <= RowLength) return PutRow(text);
    ++FLevel;
    for (std::size_t begin = 0; begin < text.size();) {
        if (begin > 0) Put(" +");
        NewLine();
        const std::size_t end = RowEnd(text, begin);
        PutRow(text.substr(begin, end - begin));
        begin = end;
    }
    --FLevel;
}

void TFormTextPrinter::PutRow(std::string_view row) {
    const bool isRaw = !FLayout.EscapeHighBytes && !FLayout.Utf8Mark;
    const auto code = [&](std::size_t i) { return unsigned{static_cast<unsigned char>(row[i])}; };
    const auto isPlain = [&](std::size_t i) {
        return IsQuotable(code(i)) && (isRaw || code(i) < 128);
    };
    for (std::size_t i = 0; i < row.size();) {
        const std::size_t start = i;
        while (i < row.size() && isPlain(i)) ++i;
        if (i == start) {
            PutCode(code(i++));
        } else {
            PutQuoted(row.substr(start, i - start));
        }
    }
}

void TFormTextPrinter::PutRow(std::u16string_view row) {
    const bool isRaw = !FLayout.EscapeHighBytes && FLayout.Utf8Mark;
    const auto isPlain = [&](std::size_t i) {
        if (row[i] < 128) return IsQuotable(row[i]);
        const bool isHalf = IsHighSurrogate(row[i]) || IsLowSurrogate(row[i]);
        return isRaw && (!isHalf || IsPaired(row, i));
    };
    for (std::size_t i = 0; i < row.size();) {
        const std::size_t start = i;
        while (i < row.size() && isPlain(i)) ++i;
        if (i == start) {
            PutCode(row[i++]);
        } else {
            PutQuoted(Utf16ToUtf8(row.substr(start, i - start)));
        }
    }
}

void TFormTextPrinter::PutQuoted(std::string_view text) {
    Put("'");
    // Without a layout that doubles quotes there is none in the text.
    for (std::size_t quote = 0; FLayout.DoubledQuotes; text.remove_prefix(quote + 1)) {
        quote = text.find('\'');
        if (quote == std::string_view::npos) break;
        Put(text.substr(0, quote));
        Put("''");
    }
    Put(text);
    Put("'");
}

void TFormTextPrinter::PutCode(unsigned code) {
    Put("#");
    PutNumber(code);
}

} // namespace tarn
