#pragma once

/// String search and parsing: the vocabulary of everything that reads or edits source text.
///
/// Texts are single-byte strings of at most 2,147,483,647 characters. Positions are 1-based,
/// 0 means "not found". A forward search takes a match that begins at or after `start`, a backward
/// one (R) a match that begins at or before it; the start -1 of a backward search is the last
/// character. The I variants ignore the case of the letters A to Z and of the Cyrillic letters of
/// code page 1251, whatever the locale. A blank is any character with a code from 0 to 32.
/// Nothing here raises an error of its own.

#include "TCharSet.h"
#include "rtl/TSet.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// --- Character position: 0 for a start outside the text

int CharPos(std::string_view s, char c, int start = 1);
int CharPosI(std::string_view s, char c, int start = 1);
int CharPosR(std::string_view s, char c, int start = -1);
int CharPosRI(std::string_view s, char c, int start = -1);
int CharsPos(std::string_view s, const TCharSet& chars, int start = 1);
int CharsPosR(std::string_view s, const TCharSet& chars, int start = -1);

// --- Substring position
// The time is linear in the text, whatever text and substring hold. An empty substring matches
// wherever a match may begin: at `start`, which may be one past the end for a forward search and
// is one past the end for the backward start -1.

int StringPos(std::string_view s, std::string_view sub, int start = 1);
int StringPosI(std::string_view s, std::string_view sub, int start = 1);
int StringPosR(std::string_view s, std::string_view sub, int start = -1);
int StringPosRI(std::string_view s, std::string_view sub, int start = -1);

// --- Find: the same searches; pos receives the position, 0 included, the result is pos != 0

bool FindCharPos(std::string_view s, char c, int& pos, int start = 1);
bool FindCharPosI(std::string_view s, char c, int& pos, int start = 1);
bool FindCharPosR(std::string_view s, char c, int& pos, int start = -1);
bool FindCharPosRI(std::string_view s, char c, int& pos, int start = -1);
bool FindCharsPos(std::string_view s, const TCharSet& chars, int& pos, int start = 1);
bool FindCharsPosR(std::string_view s, const TCharSet& chars, int& pos, int start = -1);
bool FindStrPos(std::string_view s, std::string_view sub, int& pos, int start = 1);
bool FindStrPosI(std::string_view s, std::string_view sub, int& pos, int start = 1);
bool FindStrPosR(std::string_view s, std::string_view sub, int& pos, int start = -1);
bool FindStrPosRI(std::string_view s, std::string_view sub, int& pos, int start = -1);
/// The first occurrence in the whole text; an empty substring is never found.
bool FindStrPosEx(std::string_view s, std::string_view sub, int& pos);

// --- Copy up to a mark
// pos receives the position of the mark. When it is found, dest receives the text between start and
// mark, without the mark: from start on in a forward search, up to and including start in a
// backward one. Otherwise dest is left as it was. dest may be the string that s views.

bool CopyToChar(std::string_view s, char c, std::string& dest, int start, int& pos,
                bool ignoreCase);
bool CopyToCharR(std::string_view s, char c, std::string& dest, int start, int& pos,
                 bool ignoreCase);
bool CopyToChars(std::string_view s, const TCharSet& chars, std::string& dest, int start, int& pos);
bool CopyToCharsR(std::string_view s, const TCharSet& chars, std::string& dest, int start,
                  int& pos);
bool CopyToStr(std::string_view s, std::string_view sub, std::string& dest, int start, int& pos,
               bool ignoreCase);
/// A match that begins at or before start but reaches past it gives the empty text.
bool CopyToStrR(std::string_view s, std::string_view sub, std::string& dest, int start, int& pos,
                bool ignoreCase);
/// The text before the first occurrence; an empty substring is never found.
bool CopyToStrEx(std::string_view s, std::string_view sub, std::string& dest, int& pos);

// --- Comparison

/// Whether the first len characters agree; true for len <= 0, whatever the pointers are.
bool CompStr(const char* p1, const char* p2, int len);
bool CompStrI(const char* p1, const char* p2, int len);
bool CompString(std::string_view s1, std::string_view s2);
bool CompText(std::string_view s1, std::string_view s2);

// --- Replacement

enum TReplaceParam : std::uint8_t {
    rpReplaceAll, ///< every occurrence, not only the first one met
    rpIgnoreCase,
};
using TReplaceParams = TSet<TReplaceParam>;

/// Replaces the first occurrence of oldText, or with rpReplaceAll each one, taken from the left.
/// Inserted text is never searched, and an empty oldText changes nothing. Linear in text + result.
std::string StrReplace(std::string_view s, std::string_view oldText, std::string_view newText,
                       TReplaceParams params = {});
/// The same from the right: the last occurrence, or each one, none overlapping a later one.
std::string StrReplaceR(std::string_view s, std::string_view oldText, std::string_view newText,
                        TReplaceParams params = {});

// --- Words

/// pos receives the first position at or after start that is not blank, or length + 1; the result
/// tells whether there is one. A start below 1 counts as 1.
bool SkipBlanks(std::string_view s, int& pos, int start = 1);
/// The first word of s: its blanks are skipped from position 1 on, whatever start is, and the word
/// runs up to the next space, whose position pos receives; a tab does not end a word. When no space
/// follows, the result is the text from start to the end, leading blanks included, and pos becomes
/// length + 1. A blank text gives the empty word and leaves pos as it was.
std::string ReadWord(std::string_view s, int& pos, int start);
/// ReadWord into word; true when it is not empty.
bool GetWord(std::string_view s, std::string& word, int& pos, int start = 1);
/// ReadWord without the position.
std::string NextWord(std::string_view s, int start = 1);
/// Whether the first word of s, as GetWord reads it, is word, ignoring case. Only the first one is
/// looked at, since reading always restarts at position 1.
bool FindWordInLine(std::string_view s, std::string_view word, int& pos);
/// Moves the characters from index up to index + count - 1 from s to dest, as many as there are.
void Cut(std::string& s, int index, int count, std::string& dest);

} // namespace tarn
