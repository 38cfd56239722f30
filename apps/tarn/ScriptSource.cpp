#include "ScriptSource.h"

#include "rtl/TStrings.h"

#include <array>
#include <cstdio>

namespace tarn {
namespace {

constexpr bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= 32;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw EScriptError(ExitUsage, "\\x needs two hexadecimal digits");
}

/// Reads one escape; `at` stands behind the backslash and moves behind the escape.
char ReadEscape(std::string_view line, std::size_t& at) {
    const char c = at < line.size() ? line[at++] : '\0';
    switch (c) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case '\\':
    case '"':
        return c;
    case 'x':
        if (at + 2 <= line.size()) {
            const int value = HexDigit(line[at]) * 16 + HexDigit(line[at + 1]);
            at += 2;
            return static_cast<char>(value);
        }
        [[fallthrough]];
    default:
        throw EScriptError(ExitUsage, "unknown escape; there are \\n \\r \\t \\\\ \\\" and \\xHH");
    }
}

std::string ReadQuoted(std::string_view line, std::size_t& at) {
    std::string word;
    for (++at; at < line.size();) {
        const char c = line[at++];
        if (c == '"') return word;
        word += c == '\\' ? ReadEscape(line, at) : c;
    }
    throw EScriptError(ExitUsage, "missing \" at the end of a quoted word");
}

/// The size of the UTF-8 character that the text begins with; 0 when there is none.
std::size_t Utf8Length(std::string_view text) {
    constexpr struct {
        unsigned char Mask, Lead;
        std::uint32_t Least; ///< the lowest code that may be written in this length
    } forms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
    if (text.empty()) return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    std::size_t size = 0;
    for (const auto& form : forms) {
        ++size;
        if ((byte(0) & form.Mask) != form.Lead) continue;
        if (text.size() < size) return 0;
        std::uint32_t code = byte(0) & static_cast<unsigned char>(~form.Mask);
        for (std::size_t i = 1; i < size; ++i) {
            if ((byte(i) & 0xC0) != 0x80) return 0;
            code = code << 6 | (byte(i) & 0x3FU);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        return code >= form.Least && code <= 0x10FFFF && !surrogate ? size : 0;
    }
    return 0;
}

} // namespace

std::vector<std::string> SplitWords(std::string_view line) {
    std::vector<std::string> words;
    for (std::size_t at = 0;;) {
        while (at < line.size() && IsBlank(line[at])) ++at;
        if (at >= line.size() || line[at] == '#') return words;
        const std::size_t start = at;
        if (line[at] == '"') {
            words.push_back(ReadQuoted(line, at));
        } else {
            while (at < line.size() && !IsBlank(line[at]) && line[at] != '"') ++at;
            words.emplace_back(line.substr(start, at - start));
        }
        if (at < line.size() && !IsBlank(line[at]))
            throw EScriptError(ExitUsage, "words need a blank between them, at " +
                                              std::string(line.substr(start)));
    }
}

std::string Escaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (const std::size_t size = Utf8Length(text.substr(i)); size > 1) {
            result += text.substr(i, size);
            i += size;
            continue;
        }
        const char c = text[i++];
        if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '\t')
            result += "\\t";
        else if (c == '\\' || c == '"')
            result.append({'\\', c});
        else if (c < ' ' || c > '~') {
            std::array<char, 8> hex{};
            std::snprintf(hex.data(), hex.size(), "\\x%02X", static_cast<unsigned char>(c));
            result += hex.data();
        } else
            result += c;
    }
    return result;
}

std::vector<TStatement> ParseScript(std::string_view text) {
    std::vector<TStatement> statements;
    int number = 0;
    ForEachLine(text, [&](std::string_view line) {
        ++number;
        try {
            const std::string_view trimmed = Trim(line);
            if (trimmed.starts_with('|')) {
                if (statements.empty())
                    throw EScriptError(ExitUsage, "a block line needs a statement above it");
                // One blank behind the bar belongs to the notation.
                std::string_view content = line.substr(line.find('|') + 1);
                if (content.starts_with(' ')) content.remove_prefix(1);
                statements.back().Block.emplace_back(content);
                statements.back().HasBlock = true;
                return;
            }
            std::vector<std::string> words = SplitWords(line);
            if (words.empty()) return;
            TStatement statement;
            statement.Line = number;
            statement.Verb = std::move(words.front());
            statement.Args.assign(std::make_move_iterator(words.begin() + 1),
                                  std::make_move_iterator(words.end()));
            statements.push_back(std::move(statement));
        } catch (const EScriptError& error) {
            throw EScriptError(error.ExitCode(), Format("%d: %s", {number, error.what()}));
        }
    });
    return statements;
}

} // namespace tarn
