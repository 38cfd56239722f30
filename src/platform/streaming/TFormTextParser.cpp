#include "streaming/TFormTextParser.h"

#include "rtl/SafeFile.h"
#include "streaming/FormFloat.h"
#include "streaming/FormHex.h"
#include "streaming/FormValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>

namespace tarn {

namespace {

constexpr std::size_t MaxNameLength = 255; ///< what the length byte of the binary form holds
constexpr std::uint32_t MaxCode = 0x10FFFF;
constexpr std::size_t FirstBytes = 4096; ///< room for a binary block to begin with

// --- Characters -------------------------------------------------------------------------------

enum TCharFlag : std::uint8_t {
    cfBlank = 1,
    cfNameStart = 2,
    cfName = 4,
    cfDigit = 8,
    cfQuotedEnd = 16, ///< ends a run of plain characters in quotes
    cfHigh = 32
};

constexpr std::uint8_t FlagsOf(int c) {
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c >= 128;
    const bool digit = c >= '0' && c <= '9';
    int flags = 0;
    if (c <= ' ') flags |= cfBlank;
    if (letter) flags |= cfNameStart | cfName;
    if (digit) flags |= cfDigit | cfName;
    if (c == '\'' || c == '\r' || c == '\n') flags |= cfQuotedEnd;
    if (c >= 128) flags |= cfHigh;
    return static_cast<std::uint8_t>(flags);
}

constexpr auto CharFlags = [] {
    std::array<std::uint8_t, 256> table{};
    for (int c = 0; c < 256; ++c) table[static_cast<std::size_t>(c)] = FlagsOf(c);
    return table;
}();

std::uint8_t Flags(char c) {
    return CharFlags[static_cast<unsigned char>(c)];
}
bool Is(char c, int flags) {
    return (Flags(c) & flags) != 0;
}
char LowerChar(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string_view Between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

/// Behind the name that begins at `at`; `at` itself where none does.
const char* NameEnd(const char* at, const char* end) {
    const char* const start = at;
    while (at < end && Is(*at, cfNameStart)) {
        while (at < end && Is(*at, cfName)) ++at;
        if (at == end || *at != '.') return at;
        ++at;
    }
    return start;
}

// --- Messages ---------------------------------------------------------------------------------

constexpr std::ptrdiff_t MaxShownLine = 80;

/// The rest of the line.
std::string Offending(const char* at, const char* end) {
    if (at == end) return "end of text";
    const char* const limit = at + std::min<std::ptrdiff_t>(end - at, MaxShownLine);
    const char* const stop = std::find_if(at, limit, [](char c) { return c == '\r' || c == '\n'; });
    return stop == at ? "end of line" : ShownFormText(Between(at, stop));
}

/// The first line break of the text, or the one to use when there is none.
std::string_view LineBreakOf(std::string_view text, std::string_view otherwise) {
    const std::size_t lf = text.find('\n');
    // Only what stands before the first LF can be a break of its own.
    const std::size_t cr = text.substr(0, lf).find('\r');
    if (cr == std::string_view::npos) return lf == std::string_view::npos ? otherwise : "\n";
    return cr + 1 == lf ? "\r\n" : "\r";
}

/// Whether the last line that is not blank ends with a line break.
bool HasFinalBreak(std::string_view text) {
    const auto end =
        std::find_if(text.rbegin(), text.rend(), [](char c) { return !Is(c, cfBlank); });
    return std::any_of(text.rbegin(), end, [](char c) { return c == '\r' || c == '\n'; });
}

} // namespace

// --- Places -----------------------------------------------------------------------------------

TTextPlace TextPlaceOf(std::string_view text, std::size_t offset) {
    TTextPlace place;
    std::size_t lineStart =
        text.starts_with(Utf8Mark) && offset >= Utf8Mark.size() ? Utf8Mark.size() : 0;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] != '\n' && (text[i] != '\r' || text.substr(i + 1, 1) == "\n")) continue;
        ++place.Line;
        lineStart = i + 1;
    }
    place.Column = static_cast<std::int64_t>(offset - lineStart) + 1;
    return place;
}

bool IsFormName(std::string_view text) {
    const char* const end = text.data() + text.size();
    return !text.empty() && text.size() <= MaxNameLength && NameEnd(text.data(), end) == end;
}

/// Counts the nesting as long as it lives.
class TFormTextParser::TInside {
public:
    explicit TInside(TFormTextParser& parser, const char* at) : FParser(parser) {
        if (parser.FDepth == MaxFormDepth)
            parser.FailAt(at, "nested deeper than " + std::to_string(MaxFormDepth));
        ++parser.FDepth;
    }
    ~TInside() { --FParser.FDepth; }
    TInside(const TInside&) = delete;
    TInside& operator=(const TInside&) = delete;

private:
    TFormTextParser& FParser;
};

TFormTextParser::TFormTextParser(std::string_view text, const TFormLayout& layout)
    : FText(text), FPos(text.data()), FEnd(text.data() + text.size()), FLayout(layout) {
    FLayout.LineBreak = LineBreakOf(text, layout.LineBreak);
    FLayout.Utf8Mark = text.starts_with(Utf8Mark);
    FLayout.EscapeHighBytes = false;
    FLayout.DoubledQuotes = false;
    FLayout.FixedFloats = false;
    FLayout.FinalBreak = HasFinalBreak(text);
    if (FLayout.Utf8Mark) FPos += Utf8Mark.size();
}

bool TFormTextParser::AtEnd() {
    SkipBlanks();
    return FPos == FEnd;
}

void TFormTextParser::Parse(IFormSink& sink) {
    FSink = &sink;
    FPath.clear();
    SkipBlanks();
    if (!AtObject()) Fail("\"object\" expected");
    ParseObject();
    SkipLineBreak();
}

// --- Words ------------------------------------------------------------------------------------

void TFormTextParser::SkipBlanks() {
    const char* at = FPos;
    while (at < FEnd && Is(*at, cfBlank)) ++at;
    FPos = at;
}

/// Skips the rest of a line when it is blank.
void TFormTextParser::SkipLineBreak() {
    const char* at = FPos;
    while (at < FEnd && (*at == ' ' || *at == '\t')) ++at;
    if (at < FEnd && *at != '\r' && *at != '\n') return;
    if (at < FEnd && *at++ == '\r' && at < FEnd && *at == '\n') ++at;
    FPos = at;
}

bool TFormTextParser::Accept(char c) {
    SkipBlanks();
    if (FPos == FEnd || *FPos != c) return false;
    ++FPos;
    return true;
}

void TFormTextParser::Expect(char c, std::string_view what) {
    if (!Accept(c)) Fail(what);
}

std::string_view TFormTextParser::ReadName(std::string_view what) {
    SkipBlanks();
    const std::string_view name = Between(FPos, NameEnd(FPos, FEnd));
    if (name.empty()) Fail(what);
    if (name.size() > MaxNameLength) Fail("name of more than 255 characters");
    FPos += name.size();
    return name;
}

bool TFormTextParser::AtName() const {
    return Is(Peek(), cfNameStart);
}

/// Whether the keyword (in small letters) follows, and not a property of that name.
bool TFormTextParser::AtKeyword(std::string_view keyword) const {
    const char* at = FPos;
    for (const char c : keyword)
        if (at == FEnd || LowerChar(*at++) != c) return false;
    if (at < FEnd && (Is(*at, cfName) || *at == '.')) return false;
    while (at < FEnd && Is(*at, cfBlank)) ++at;
    return at == FEnd || *at != '=';
}

bool TFormTextParser::AcceptKeyword(std::string_view keyword) {
    if (!AtKeyword(keyword)) return false;
    FPos += keyword.size();
    return true;
}

bool TFormTextParser::AtObject() const {
    return AtKeyword("object") || AtKeyword("inherited") || AtKeyword("inline");
}

// --- Objects ----------------------------------------------------------------------------------

void TFormTextParser::ParseObject() {
    const TInside inside(*this, FPos);
    const TFormHeader header = ReadHeader();
    FPath.push_back({header.ObjectName.empty() ? header.ClassName : header.ObjectName});
    FSink->BeginObject(header);
    ParseProperties();
    FSink->BeginChildren();
    for (SkipBlanks(); AtObject(); SkipBlanks()) ParseObject();
    if (!AcceptKeyword("end")) Fail("object or \"end\" expected");
    FSink->EndObject();
    FPath.pop_back();
}

TFormHeader TFormTextParser::ReadHeader() {
    TFormHeader header;
    if (AcceptKeyword("inherited"))
        header.Flags = {ffInherited};
    else if (AcceptKeyword("inline"))
        header.Flags = {ffInline};
    else
        AcceptKeyword("object");
    header.ClassName = ReadName("name of an object or class expected");
    const char* const behind = FPos;
    if (Accept(':')) {
        header.ObjectName = header.ClassName;
        header.ClassName = ReadName("name of a class expected");
    } else {
        FPos = behind;
    }
    SkipBlanks();
    if (Peek() != '[') return header;
    header.Flags.Include(ffChildPos);
    using TLimits = std::numeric_limits<std::int32_t>;
    header.ChildPos = static_cast<std::int32_t>(ReadBracketed(TLimits::min(), TLimits::max()));
    return header;
}

/// Reads "[5]".
std::int64_t TFormTextParser::ReadBracketed(std::int64_t low, std::int64_t high) {
    ++FPos;
    SkipBlanks();
    std::int64_t value = 0;
    const auto result = std::from_chars(FPos, FEnd, value);
    if (result.ec != std::errc() || value < low || value > high) Fail("position expected");
    FPos = result.ptr;
    Expect(']', "\"]\" expected");
    return value;
}

void TFormTextParser::ParseProperties() {
    for (SkipBlanks(); AtName() && !AtKeyword("end") && !AtObject(); SkipBlanks()) ParseProperty();
}

void TFormTextParser::ParseProperty() {
    const std::string_view name = ReadName("name of a property expected");
    FPath.push_back({name});
    Expect('=', "\"=\" expected");
    SkipBlanks();
    FSink->Property(name);
    ParseValue();
    FPath.pop_back();
}

// --- Values -----------------------------------------------------------------------------------

void TFormTextParser::ParseValue() {
    SkipBlanks();
    const char c = Peek();
    switch (c) {
    case '\'':
    case '#':
        return ParseString();
    case '[':
        return ParseSet();
    case '(':
        return ParseList();
    case '<':
        return ParseCollection();
    case '{':
        return ParseBinary();
    default:
        break;
    }
    if (Is(c, cfNameStart))
        ParseIdent();
    else if (Is(c, cfDigit) || c == '-' || c == '+' || c == '$')
        ParseNumber();
    else
        Fail("value expected");
}

void TFormTextParser::ParseIdent() {
    const std::string_view name = ReadName("value expected");
    const TValueType type = name.size() <= 5 ? IdentTypeOf(name) : vaIdent;
    FSink->Ident(type, type == vaIdent ? name : NameOfValue(type));
}

void TFormTextParser::ParseSet() {
    ++FPos;
    FSink->BeginSet();
    if (!Accept(']')) {
        do FSink->SetElement(ReadName("element of a set expected"));
        while (Accept(','));
        Expect(']', "\",\" or \"]\" expected");
    }
    FSink->EndSet();
}

void TFormTextParser::ParseList() {
    const TInside inside(*this, FPos++);
    FSink->BeginList();
    FPath.push_back({});
    for (; !Accept(')'); ++FPath.back().Index) {
        if (FPos == FEnd) Fail("\")\" expected");
        ParseValue();
    }
    FPath.pop_back();
    FSink->EndList();
}

void TFormTextParser::ParseCollection() {
    const TInside inside(*this, FPos++);
    FSink->BeginCollection();
    FPath.push_back({});
    for (; !Accept('>'); ++FPath.back().Index) ParseItem();
    FPath.pop_back();
    FSink->EndCollection();
}

void TFormTextParser::ParseItem() {
    if (!AcceptKeyword("item")) Fail("\"item\" or \">\" expected");
    SkipBlanks();
    std::optional<std::int64_t> order;
    using TLimits = std::numeric_limits<std::int64_t>;
    if (Peek() == '[') order = ReadBracketed(TLimits::min(), TLimits::max());
    FSink->BeginItem(order);
    ParseProperties();
    if (!AcceptKeyword("end")) Fail("property or \"end\" expected");
    FSink->EndItem();
}

void TFormTextParser::ParseBinary() {
    const char* const start = FPos++;
    const void* const found = std::memchr(FPos, '}', static_cast<std::size_t>(FEnd - FPos));
    if (!found) FailAt(start, "binary block not closed");
    const char* const close = static_cast<const char*>(found);
    std::size_t size = 0;
    for (SkipBlanks(); FPos < close; SkipBlanks()) {
        const std::size_t left = static_cast<std::size_t>(close - FPos) / 2;
        // The block grows with what has been read, and not beyond what the text can hold.
        if (size == FBinary.size())
            FBinary.resize(size + std::min(left, std::max(size * 3, FirstBytes)));
        const std::size_t part = std::min(left, FBinary.size() - size);
        const std::size_t count = DecodeFormHex(FPos, part, FBinary.data() + size);
        FPos += count * 2;
        size += count;
        const bool isWhole = count == part && part > 0;
        if (!isWhole && !Is(Peek(), cfBlank)) Fail("two hexadecimal digits expected");
    }
    ++FPos;
    FSink->Binary(std::string_view(FBinary).substr(0, size));
}

// --- Numbers ----------------------------------------------------------------------------------

void TFormTextParser::ParseNumber() {
    const char* const start = FPos;
    if (*FPos == '-' || *FPos == '+') ++FPos;
    if (Peek() == '$') return ParseHex(start);
    const char* const digits = FPos;
    bool isFloat = SkipNumber();
    const char* const end = FPos;
    if (end == digits) FailAt(start, "number expected");
    TValueType type = FLayout.PlainFloat;
    for (const TValueType suffixed : {vaSingle, vaCurrency, vaDate}) {
        if (LowerChar(Peek()) != FormNumberSuffix(suffixed)) continue;
        type = suffixed;
        isFloat = true;
        ++FPos;
        break;
    }
    if (Is(Peek(), cfName) || Peek() == '.') FailAt(start, "number expected");
    const std::string_view token = Between(*start == '+' && !isFloat ? digits : start, end);
    if (type == vaCurrency) return EmitCurrency(token);
    if (isFloat) return EmitFloat(token, type);
    std::int64_t value = 0;
    if (std::from_chars(token.data(), end, value).ec != std::errc())
        FailAt(start, "integer of more than 64 bits");
    FSink->Integer(IntegerTypeOf(value), value);
}

/// Skips a number behind its sign, or the word that is none; whether it is a float.
bool TFormTextParser::SkipNumber() {
    const auto skipDigits = [this] {
        const char* const start = FPos;
        while (FPos < FEnd && Is(*FPos, cfDigit)) ++FPos;
        return FPos > start;
    };
    if (!skipDigits()) {
        constexpr std::size_t wordLength = 3; // INF and NAN
        const std::string_view word = Between(FPos, FEnd).substr(0, wordLength);
        if (!SameText(word, "INF") && !SameText(word, "NAN")) return false;
        FPos += wordLength;
        return true;
    }
    bool isFloat = false;
    if (Peek() == '.') {
        isFloat = true;
        ++FPos;
        skipDigits();
    }
    if (LowerChar(Peek()) != 'e') return isFloat;
    const char* const behind = FPos++;
    if (Peek() == '-' || Peek() == '+') ++FPos;
    if (skipDigits()) return true;
    FPos = behind;
    return isFloat;
}

void TFormTextParser::ParseHex(const char* start) {
    std::uint64_t value = 0;
    const auto result = std::from_chars(++FPos, FEnd, value, 16);
    if (result.ec == std::errc::result_out_of_range) FailAt(start, "integer of more than 64 bits");
    if (result.ec != std::errc()) FailAt(start, "hexadecimal number expected");
    FPos = result.ptr;
    if (Is(Peek(), cfName) || Peek() == '.') FailAt(start, "hexadecimal number expected");
    const auto number = static_cast<std::int64_t>(*start == '-' ? 0 - value : value);
    FSink->Integer(IntegerTypeOf(number), number);
}

void TFormTextParser::EmitFloat(std::string_view token, TValueType type) {
    long double value = 0;
    if (!ReadFormFloat(token, type, value)) FailAt(token.data(), "number out of range");
    RecogniseFloat(Between(token.data(), FPos),
                   [&](bool fixed) { AppendFormFloat(FSample, type, value, fixed); });
    FSink->Float(type, value);
}

void TFormTextParser::EmitCurrency(std::string_view token) {
    std::int64_t value = 0;
    if (!ReadFormCurrency(token, value)) FailAt(token.data(), "currency out of range");
    RecogniseFloat(Between(token.data(), FPos),
                   [&](bool fixed) { AppendFormCurrency(FSample, value, fixed); });
    FSink->Integer(vaCurrency, value);
}

/// Learns the style of floats from the first one that looks as only one style writes it.
template <class TAppend>
void TFormTextParser::RecogniseFloat(std::string_view written, TAppend&& append) {
    if (FFloatsKnown) return;
    const auto isWritten = [&](bool fixed) {
        FSample.clear();
        append(fixed);
        return FSample == written;
    };
    const bool isFixed = isWritten(true);
    FFloatsKnown = isFixed != isWritten(false);
    FLayout.FixedFloats = FFloatsKnown && isFixed;
}

// --- Strings ----------------------------------------------------------------------------------

void TFormTextParser::ParseString() {
    if (ParseSimpleString()) return;
    FString.Start(FLayout.Utf8Mark, FLayout.WideCodes);
    do ReadPieces();
    while (AcceptPlus());
    RecogniseBytes(FString.HasRaw(), FString.HasEscaped());
    FSink->String(FString.Type(FLayout.WideText), FString.Text(FLayout.WideText));
}

/// Behind the characters that stand for themselves inside quotes.
const char* TFormTextParser::QuotedRunEnd(const char* at, bool& hasHigh) const {
    std::uint8_t flags = 0;
    std::uint8_t seen = 0;
    for (; at < FEnd; ++at) {
        flags = Flags(*at);
        if (flags & cfQuotedEnd) break;
        seen |= flags;
    }
    hasHigh = (seen & cfHigh) != 0;
    return at;
}

/// The usual string is one piece in quotes, which needs no copy. False, and nothing happened, for
/// any other.
bool TFormTextParser::ParseSimpleString() {
    if (*FPos != '\'') return false;
    bool hasHigh = false;
    const char* const start = FPos + 1;
    const char* const end = QuotedRunEnd(start, hasHigh);
    if (end == FEnd || *end != '\'' || (hasHigh && FLayout.Utf8Mark)) return false;
    const char* behind = end + 1;
    if (behind < FEnd && (*behind == '\'' || *behind == '#')) return false;
    while (behind < FEnd && Is(*behind, cfBlank)) ++behind;
    if (behind < FEnd && *behind == '+') return false;
    FPos = end + 1;
    RecogniseBytes(hasHigh, false);
    const std::string_view text = Between(start, end);
    FSink->String(StringTypeOf(text.size()), text);
    return true;
}

void TFormTextParser::ReadPieces() {
    if (Peek() != '\'' && Peek() != '#') Fail("string expected");
    while (Peek() == '\'' || Peek() == '#') {
        if (*FPos == '\'')
            ReadQuoted();
        else
            ReadCode();
    }
}

/// A quote may stand in quotes as two.
void TFormTextParser::ReadQuoted() {
    const char* const start = FPos++;
    while (true) {
        bool hasHigh = false;
        const char* end = QuotedRunEnd(FPos, hasHigh);
        const bool isClosed = end < FEnd && *end == '\'';
        if (!isClosed) FailAt(start, "string not closed");
        const bool isDoubled = end + 1 < FEnd && end[1] == '\'';
        if (isDoubled) {
            RecogniseQuote(true);
            ++end;
        }
        if (!FString.Append(Between(FPos, end), hasHigh)) Fail("string is not UTF-8");
        FPos = end + 1;
        if (!isDoubled) return;
    }
}

void TFormTextParser::ReadCode() {
    const char* const start = FPos++;
    const bool isHex = Peek() == '$';
    if (isHex) ++FPos;
    std::uint32_t code = 0;
    const auto result = std::from_chars(FPos, FEnd, code, isHex ? 16 : 10);
    if (result.ec == std::errc::invalid_argument) FailAt(start, "code of a character expected");
    if (result.ec != std::errc() || code > MaxCode) FailAt(start, "no code of a character");
    FPos = result.ptr;
    if (code == '\'') RecogniseQuote(false);
    FString.AppendCode(code);
}

/// Skips the "+" between the pieces of a string, with the blanks around it.
bool TFormTextParser::AcceptPlus() {
    const char* const behind = FPos;
    if (!Accept('+')) {
        FPos = behind;
        return false;
    }
    SkipBlanks();
    return true;
}

void TFormTextParser::RecogniseQuote(bool isDoubled) {
    if (!FQuotesKnown) FLayout.DoubledQuotes = isDoubled;
    FQuotesKnown = true;
}

void TFormTextParser::RecogniseBytes(bool raw, bool escaped) {
    FHasRawBytes = FHasRawBytes || raw;
    FLayout.EscapeHighBytes = (FLayout.EscapeHighBytes || escaped) && !FHasRawBytes;
}

// --- Errors -----------------------------------------------------------------------------------

std::string TFormTextParser::PathText() const {
    std::string path;
    for (const TStep& step : FPath) {
        if (step.Name.empty())
            ((path += '[') += std::to_string(step.Index)) += ']';
        else
            ((path += path.empty() ? "" : ".") += step.Name);
    }
    return ShownFormPath(path);
}

void TFormTextParser::FailAt(const char* at, std::string_view what) const {
    const auto offset = static_cast<std::size_t>(at - FText.data());
    const TTextPlace place = TextPlaceOf(FText, offset);
    std::string message = Format("line %d, column %d: ", {place.Line, place.Column});
    if (!FPath.empty()) (message += PathText()) += ": ";
    ((message += what) += ": ") += Offending(at, FEnd);
    throw EParserError(static_cast<std::int64_t>(offset), place.Line, place.Column, message);
}

void ParseFormText(std::string_view text, IFormSink& sink, TFormLayout* layout) {
    TFormTextParser parser(text, layout ? *layout : TFormLayout());
    parser.Parse(sink);
    if (!parser.AtEnd()) parser.Fail("end of the form expected");
    if (layout) *layout = parser.Layout();
}

} // namespace tarn
