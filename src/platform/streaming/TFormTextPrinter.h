#pragma once

#include "rtl/TStream.h"
#include "streaming/FormSink.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Writes the text form of forms as the IDE lays it out: two blanks for each level, long strings in
/// rows of 64 characters, binary blocks in rows of 32 bytes.
///
/// Byte strings stand in quotes as they are, or with their bytes from 128 on as codes where the
/// layout says so or the text has the mark of UTF-8. Characters above 127 of the other strings are
/// codes too, unless the text has the mark and does not escape. Of the flags "inherited" goes
/// before "inline". Raises EWriteError for a name that the text form could not give back.
class TFormTextPrinter : public IFormSink {
public:
    /// Behind what the string holds, which stays the caller's. `level`: how deep the first thing
    /// stands, as for the value of a property that is replaced in a text.
    explicit TFormTextPrinter(std::string& target, const TFormLayout& layout = {}, int level = 0);
    /// Onto a stream that stays the caller's, in pieces of some 64 KB; the rest is written when the
    /// outermost object has ended, or by Flush.
    explicit TFormTextPrinter(TStream& target, const TFormLayout& layout = {}, int level = 0);
    TFormTextPrinter(const TFormTextPrinter&) = delete;
    TFormTextPrinter& operator=(const TFormTextPrinter&) = delete;

    /// Gives a stream all that was written so far. Raises EWriteError.
    void Flush();

    void BeginObject(const TFormHeader& header) override;
    void BeginChildren() override {}
    void EndObject() override;
    void Property(std::string_view name) override;
    void Integer(TValueType type, std::int64_t value) override;
    void Float(TValueType type, long double value) override;
    void String(TValueType type, std::string_view text) override;
    void Ident(TValueType type, std::string_view name) override;
    void Binary(std::string_view bytes) override;
    void BeginSet() override;
    void SetElement(std::string_view name) override;
    void EndSet() override;
    void BeginList() override;
    void EndList() override;
    void BeginCollection() override;
    void BeginItem(std::optional<std::int64_t> order) override;
    void EndItem() override;
    void EndCollection() override;

private:
    enum TContainer : std::uint8_t { coList, coCollection };

    void Put(std::string_view text) { *FOut += text; }
    void PutName(std::string_view name);
    void PutNumber(std::int64_t value);
    void NewLine();
    void BeginValue();
    void CloseBracket(char bracket);
    void PutHexRow(std::string_view bytes);

    template <class TUnit> void PutText(std::basic_string_view<TUnit> text);
    void PutRow(std::string_view row);
    void PutRow(std::u16string_view row);
    void PutQuoted(std::string_view text);
    void PutCode(unsigned code);
    /// Whether an ASCII character can stand in quotes.
    bool IsQuotable(unsigned code) const {
        return code >= 32 && (code != '\'' || FLayout.DoubledQuotes);
    }

    TStream* FStream = nullptr;
    std::string FBuffer; ///< of a stream
    std::string* FOut;
    TFormLayout FLayout;
    int FLevel;
    int FObjects = 0;     ///< open ones
    bool FAtStart = true; ///< no object has been written
    bool FInEmptySet = false;
    std::vector<TContainer> FInside; ///< open lists and collections
};

} // namespace tarn
