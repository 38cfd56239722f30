#pragma once

#include "rtl/TStream.h"
#include "streaming/FormSink.h"
#include "streaming/TFormTextString.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// What is wrong in the text of a form, and where. The message is "line L, column C: PATH: what";
/// the path is left out where there is none.
class EParserError : public EReadError {
public:
    EParserError(std::int64_t offset, std::int64_t line, std::int64_t column,
                 const std::string& message)
        : EReadError(message), FOffset(offset), FLine(line), FColumn(column) {}

    std::string_view ClassName() const override { return "EParserError"; }
    std::int64_t Offset() const { return FOffset; } ///< 0-based, in the text
    std::int64_t Line() const { return FLine; }     ///< 1-based
    std::int64_t Column() const { return FColumn; } ///< 1-based, in bytes

private:
    std::int64_t FOffset;
    std::int64_t FLine;
    std::int64_t FColumn;
};

/// A place in a text, both from 1; columns count bytes.
struct TTextPlace {
    std::int64_t Line = 1;
    std::int64_t Column = 1;
};
/// The place of an offset. Lines end with CR LF, LF, or CR alone; the mark of UTF-8 is no column.
TTextPlace TextPlaceOf(std::string_view text, std::size_t offset);

/// Whether a text is what the text form of forms takes for one name: identifiers joined by points,
/// where bytes from 128 on count as letters, 255 bytes at most.
bool IsFormName(std::string_view text);

/// Reads the text form of forms: objects, one after another.
///
/// Keywords and the constants True, False, nil and Null are found in any case; "end", "item" and
/// the like are property names where "=" follows. Blanks are all characters up to 32, wherever they
/// do not split a word. An integer has the smallest type that holds it; a hexadecimal one ("$") is
/// the 64 bits that it shows.
///
/// Strings without characters above 255 are bytes, vaString up to 255 of them and vaLString
/// beyond; with such characters they are of the type WideText, and what stands in quotes counts as
/// the code of its byte. Behind the mark of UTF-8 quotes hold characters instead of bytes, and
/// strings with characters above 127 are of the type WideText.
class TFormTextParser : public IFormSource {
public:
    /// The text stays the caller's and has to outlive the parser. `layout` tells what no text
    /// tells: PlainFloat, WideText and WideCodes.
    explicit TFormTextParser(std::string_view text, const TFormLayout& layout = {});

    /// Whether nothing but blanks follows; they are skipped.
    bool AtEnd();
    /// Reads one object and leaves the offset behind its "end" and the line break there. Raises
    /// EParserError; the offset is then anywhere.
    void Parse(IFormSink& sink);
    /// The layout as it shows in what was read so far. Floats are fixed or short as the first one
    /// is that can only be either, quotes are doubled when the first one is; high bytes are escaped
    /// when one is and none stands for itself.
    const TFormLayout& Layout() const { return FLayout; }

    std::int64_t Offset() const override { return FPos - FText.data(); }
    /// Goes to an offset in the text, between objects.
    void SetOffset(std::int64_t offset) { FPos = FText.data() + offset; }

    /// Raises the error for the text at the current offset, with the path to what is being read.
    [[noreturn]] void Fail(std::string_view what) const { FailAt(FPos, what); }

private:
    /// A part of the path to what is being read: a name, or the number of an item or value.
    struct TStep {
        std::string_view Name;
        std::int64_t Index = 0;
    };
    class TInside;

    char Peek() const { return FPos < FEnd ? *FPos : '\0'; }
    void SkipBlanks();
    void SkipLineBreak();
    bool Accept(char c);
    void Expect(char c, std::string_view what);
    std::string_view ReadName(std::string_view what);
    bool AtKeyword(std::string_view keyword) const;
    bool AcceptKeyword(std::string_view keyword);
    bool AtObject() const;
    bool AtName() const;

    void ParseObject();
    TFormHeader ReadHeader();
    void ParseProperties();
    void ParseProperty();
    void ParseValue();
    void ParseIdent();
    void ParseSet();
    void ParseList();
    void ParseCollection();
    void ParseItem();
    void ParseBinary();

    void ParseNumber();
    void ParseHex(const char* start);
    bool SkipNumber();
    void EmitFloat(std::string_view token, TValueType type);
    void EmitCurrency(std::string_view token);
    template <class TAppend> void RecogniseFloat(std::string_view written, TAppend&& append);
    std::int64_t ReadBracketed(std::int64_t low, std::int64_t high);

    void ParseString();
    bool ParseSimpleString();
    void ReadPieces();
    void ReadQuoted();
    void ReadCode();
    bool AcceptPlus();
    const char* QuotedRunEnd(const char* at, bool& hasHigh) const;
    void RecogniseQuote(bool isDoubled);
    void RecogniseBytes(bool raw, bool escaped);

    [[noreturn]] void FailAt(const char* at, std::string_view what) const;
    std::string PathText() const;

    std::string_view FText;
    const char* FPos;
    const char* FEnd;
    IFormSink* FSink = nullptr;
    TFormLayout FLayout;
    std::vector<TStep> FPath;
    int FDepth = 0;
    bool FFloatsKnown = false; ///< a float has shown its style
    bool FQuotesKnown = false; ///< a quote inside a string was seen
    bool FHasRawBytes = false; ///< bytes from 128 on have stood for themselves
    TFormTextString FString;
    std::string FBinary;
    std::string FSample; ///< a float in another style
};

/// Reads a text with one object, and blanks around it. `layout` on entry tells what no text tells
/// (PlainFloat, WideText, WideCodes), on return the layout of the text. Raises EParserError, also
/// for what stands behind the object.
void ParseFormText(std::string_view text, IFormSink& sink, TFormLayout* layout = nullptr);

} // namespace tarn
