#pragma once

/// Lists of source lines: finding lines, dropping blank ones, sorting declarations.
///
/// Line indexes are 0-based, a negative one is never a valid line; positions inside a line are
/// 1-based as in the string utilities. A blank line holds only blanks, or nothing. Unless told
/// otherwise, an index outside the list gives false and raises nothing.

#include "rtl/TStrings.h"

#include <cstdint>
#include <string_view>

namespace tarn {

/// The words that may stand in front of a declared name without taking part in its order.
enum TInitialWords : std::uint8_t {
    iwConstructor,
    iwDestructor,
    iwFunction,
    iwProcedure,
    iwProperty
};
inline constexpr std::string_view InitialWordsNames[] = {"iwConstructor", "iwDestructor",
                                                         "iwFunction", "iwProcedure", "iwProperty"};

/// Moves index to the first line at or after it that is not blank; true when index was a valid
/// line. When every line from index on is blank, the walk leaves the list: EStringListError is
/// raised and index is left as it was.
bool SkipBlankLines(const TStrings& strings, int& index);

/// Deletes blank lines at index until another line stands there; true if one does. The index is
/// never changed.
bool DeleteBlankLines(TStrings& strings, int& index);

/// Moves index to the first line at or after it that holds ch, and pos to the last ch in that line.
/// Blank lines met on the way are deleted. When there is none, index is the line count, or as it
/// was if it was no valid line.
bool FindLine(TStrings& strings, char ch, int& index, int& pos);
/// FindLine for a text.
bool FindLineEx(TStrings& strings, std::string_view str, int& index, int& pos);

/// Moves index to the first line at or after it whose first word, as FindWordInLine reads it, is
/// word, ignoring case. Otherwise index is left as it was. Raises EStringListError like
/// SkipBlankLines when only blank lines are left to look at.
bool FindWordInLines(std::string_view word, const TStrings& strings, int& index);

/// Sorts the declarations that the lines hold, from the first line on, whatever index says.
///
/// A declaration begins on the first line that is not blank after the one before it. A comment that
/// begins its line runs to the end of that line or to the line of its closing mark; anything else
/// runs to the first line with ";", and if its first line holds "(", to the first line with ")",
/// which must hold ";" as well. The marks are sought as plain text, inside comments and literals
/// too. Blank lines are dropped.
///
/// The order is that of AnsiCompareText over the first line without its indentation and initial
/// word, then the other lines, then what was left off; equal ones keep their order. Each
/// declaration keeps its lines as they are, so that sorting again changes nothing.
///
/// True: strings holds the sorted lines, without companions, and index is their count. False, when
/// a declaration has no end: strings is left as it was, and index counts the lines before the
/// failing declaration as the work stood, each declaration joined to one line.
bool SortDeclarations(TStrings& strings, int& index);

} // namespace tarn
