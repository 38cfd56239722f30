#pragma once

#include <cstddef>
#include <string_view>

namespace tarn {

inline bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}
inline bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}

/// A place in a text that only moves forward and knows its line.
class TTextCursor {
public:
    explicit TTextCursor(std::string_view text) : FText(text) {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        if (FText.starts_with(byteOrderMark)) FText.remove_prefix(byteOrderMark.size());
    }

    bool AtEnd() const { return FPos == FText.size(); }
    /// The character `offset` places ahead; 0 past the end.
    char Peek(std::size_t offset = 0) const {
        return offset < FText.size() - FPos ? FText[FPos + offset] : '\0';
    }
    bool StartsWith(std::string_view mark) const { return FText.substr(FPos).starts_with(mark); }
    std::size_t Position() const { return FPos; }
    /// The 1-based line of the place. CR LF, CR and LF end a line.
    int Line() const { return FLine; }
    /// The text from an earlier position up to here.
    std::string_view From(std::size_t start) const { return FText.substr(start, FPos - start); }

    /// Moves ahead, at most to the end.
    void Advance(std::size_t count = 1) {
        for (; count > 0 && !AtEnd(); --count) {
            const char c = FText[FPos++];
            if (c == '\n' || (c == '\r' && Peek() != '\n')) ++FLine;
        }
    }
    template <class F> std::string_view AdvanceWhile(F wanted) {
        const std::size_t start = FPos;
        while (!AtEnd() && wanted(Peek())) Advance();
        return From(start);
    }
    /// Moves behind the next `mark` and gives the text before it in `before`; false, and to the end
    /// of the text, when there is none.
    bool AdvancePast(std::string_view mark, std::string_view& before) {
        const std::size_t found = FText.find(mark, FPos);
        const bool isFound = found != FText.npos;
        before = FText.substr(FPos, isFound ? found - FPos : found);
        Advance(before.size() + (isFound ? mark.size() : 0));
        return isFound;
    }

private:
    std::string_view FText;
    std::size_t FPos = 0;
    int FLine = 1;
};

} // namespace tarn
