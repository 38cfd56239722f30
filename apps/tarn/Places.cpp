#include "Places.h"

#include "ScriptSource.h"

#include <charconv>

namespace tarn {
namespace {

[[noreturn]] void Refuse(std::string_view text, std::string_view form) {
    throw EScriptError(ExitUsage, Format("'%s' is no place; write %s", {text, form}));
}

/// A whole number from 1 that is the whole text; 0 when it is none.
int Number(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && value > 0 ? value : 0;
}

} // namespace

TTextPos ParsePlace(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) Refuse(text, "ROW:COLUMN");
    const TTextPos place{Number(text.substr(0, colon)), Number(text.substr(colon + 1))};
    if (place.Row == 0 || place.Col == 0) Refuse(text, "ROW:COLUMN");
    return place;
}

std::pair<TTextPos, TTextPos> ParseRange(std::string_view text) {
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos) Refuse(text, "ROW:COLUMN-ROW:COLUMN");
    return {ParsePlace(text.substr(0, dash)), ParsePlace(text.substr(dash + 1))};
}

std::pair<int, int> ParseRows(std::string_view text) {
    const std::size_t dash = text.find('-');
    const int first = Number(text.substr(0, dash));
    const int last = dash == std::string_view::npos ? first : Number(text.substr(dash + 1));
    if (first == 0 || last < first) Refuse(text, "FIRST-LAST");
    return {first, last};
}

void CheckPlace(const TEditText& text, TTextPos place) {
    const bool inside = place.Row <= text.LineCount() &&
                        static_cast<std::size_t>(place.Col) <= text.LineLength(place.Row) + 1;
    if (inside) return;
    throw EScriptError(ExitRefused, Format("place %d:%d is outside the text of %d lines",
                                           {place.Row, place.Col, text.LineCount()}));
}

std::pair<TTextPos, TTextPos> WholeRows(const TEditText& text, int first, int last) {
    CheckPlace(text, {last, 1});
    if (last < text.LineCount()) return {{first, 1}, {last + 1, 1}};
    return {{first, 1}, {last, static_cast<int>(text.LineLength(last)) + 1}};
}

} // namespace tarn
