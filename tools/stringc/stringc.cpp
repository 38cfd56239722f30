// stringc TABLE LANGUAGE OUTPUT
//
// Turns one language of the string table into the rows of a C++ initialiser,
//     {51044, "Move block left (1 pos)"},
// in ascending order of id, for an include inside a braced list; or, when OUTPUT ends in ".rc",
// into a resource script for a language module. The table is described at its own top. Every fault
// is told as TABLE:LINE: text; a faulty table writes no output.
//
// Exit code: 0 written, 1 faulty table or a file that cannot be read or written, 2 wrong usage.

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct TRow {
    int Id;
    std::string Text;
};

struct EStringTableError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    for (std::size_t end; (end = text.find(separator)) != text.npos; text.remove_prefix(end + 1))
        fields.push_back(text.substr(0, end));
    fields.push_back(text);
    return fields;
}

int ParseId(std::string_view field) {
    int id = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), id);
    if (error != std::errc() || end != field.data() + field.size() || id < 1 || id > 65535)
        throw EStringTableError("\"" + std::string(field) + "\" is not an id from 1 to 65535");
    return id;
}

/// The length of the UTF-8 character that the text begins with; 0 when it is none.
std::size_t Utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    const bool overlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool surrogate = lead == 0xED && byte(1) >= 0xA0;
    const bool beyond = lead == 0xF4 && byte(1) >= 0x90;
    return overlong || surrogate || beyond ? 0 : length;
}

char Unescape(std::string_view escape) {
    switch (escape.size() < 2 ? '\0' : escape[1]) {
    case 'r':
        return '\r';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case '\\':
        return '\\';
    default:
        throw EStringTableError("bad escape \"" + std::string(escape.substr(0, 2)) +
                                "\"; there are \\r \\n \\t \\\\");
    }
}

std::string ParseText(std::string_view field) {
    if (field.empty()) throw EStringTableError("empty text");
    std::string text;
    while (!field.empty()) {
        const std::size_t length = Utf8Length(field);
        if (length == 0) throw EStringTableError("text is not UTF-8");
        if (static_cast<unsigned char>(field[0]) < 32 || field[0] == 127)
            throw EStringTableError("control character in the text; write \\r, \\n or \\t");
        if (field[0] == '\\') {
            text += Unescape(field);
            field.remove_prefix(2);
        } else {
            text += field.substr(0, length);
            field.remove_prefix(length);
        }
    }
    return text;
}

/// The placeholders of the platform's Format in their order, each as written. A per cent sign that
/// begins none stands in a text that is not formatted.
std::vector<std::string_view> Placeholders(std::string_view text) {
    std::vector<std::string_view> found;
    for (std::size_t at = 0; (at = text.find('%', at)) != text.npos;) {
        const std::size_t type = text.find_first_not_of("0123456789:-.", at + 1);
        if (type != text.npos && std::string_view("duxfs%").find(text[type]) != text.npos) {
            found.push_back(text.substr(at, type + 1 - at));
            at = type;
        }
        ++at;
    }
    return found;
}

std::string Joined(const std::vector<std::string_view>& texts) {
    std::string joined;
    for (const std::string_view text : texts) (joined += joined.empty() ? "" : " ") += text;
    return joined.empty() ? "none" : joined;
}

std::size_t Count(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) ++count;
    return count;
}

/// What a text is taken apart by; a translation needs as many of each as the first language.
struct TMark {
    std::string_view Text;
    std::string_view Name;
};
constexpr std::array Marks = {
    TMark{"##", "\"##\""},
    TMark{"\r\n", "\"\\r\\n\""},
    TMark{"|", "\"|\""},
};

void CheckTranslation(std::string_view language, std::string_view first, std::string_view text) {
    const auto check = [&](std::string_view what, const std::string& given,
                           const std::string& wanted) {
        if (given != wanted)
            throw EStringTableError(std::string(language) + ": " + std::string(what) + ": " +
                                    given + " instead of " + wanted);
    };
    check("placeholders", Joined(Placeholders(text)), Joined(Placeholders(first)));
    for (const TMark& mark : Marks)
        check("number of " + std::string(mark.Name), std::to_string(Count(text, mark.Text)),
              std::to_string(Count(first, mark.Text)));
}

/// Reads the lines of a table one by one and keeps the texts of one language.
class TStringTable {
public:
    explicit TStringTable(std::string_view language) : FLanguage(language) {}

    void AddLine(std::string_view line) {
        if (line.empty() || line.front() == '#') return;
        if (FColumns == 0)
            ReadHeader(line);
        else
            ReadRow(line);
    }
    void Finish() const {
        if (FRows.empty()) throw EStringTableError("no texts");
    }
    const std::vector<TRow>& Rows() const { return FRows; }

private:
    void ReadHeader(std::string_view line) {
        const auto names = Split(line, '\t');
        FColumns = names.size();
        if (names[0] != "id") throw EStringTableError("the header must begin with \"id\"");
        FLanguages.assign(names.begin() + 1, names.end());
        const auto found = std::find(FLanguages.begin(), FLanguages.end(), FLanguage);
        if (found == FLanguages.end())
            throw EStringTableError("no column \"" + std::string(FLanguage) + "\"");
        FWanted = static_cast<std::size_t>(found - FLanguages.begin());
    }
    void ReadRow(std::string_view line) {
        const auto fields = Split(line, '\t');
        if (fields.size() != FColumns)
            throw EStringTableError(std::to_string(fields.size()) + " fields instead of " +
                                    std::to_string(FColumns));
        const int id = ParseId(fields[0]);
        if (id == FLastId) throw EStringTableError("id " + std::to_string(id) + " stands twice");
        if (id < FLastId)
            throw EStringTableError("id " + std::to_string(id) + " stands after " +
                                    std::to_string(FLastId));
        FLastId = id;
        // Every language is checked, whichever is wanted: a table is good or it is not.
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < FLanguages.size(); ++i) {
            texts.push_back(ParseText(fields[i + 1]));
            CheckTranslation(FLanguages[i], texts.front(), texts.back());
        }
        FRows.push_back({id, std::move(texts[FWanted])});
    }

    std::string_view FLanguage;
    std::size_t FColumns = 0; ///< 0 until the header is read
    std::vector<std::string> FLanguages;
    std::size_t FWanted = 0; ///< index in FLanguages
    int FLastId = 0;
    std::vector<TRow> FRows;
};

/// A C++ string literal. Octal escapes, because they end by themselves after three digits and make
/// the file independent of the compiler's source encoding.
std::string Quoted(std::string_view text) {
    std::string literal = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            (literal += '\\') += c;
        else if (code >= 32 && code < 127)
            literal += c;
        else
            for (const int shift : {9, 6, 3, 0})
                literal += shift == 9 ? '\\' : static_cast<char>('0' + ((code >> shift) & 7));
    }
    return literal += '"';
}

std::optional<std::string> ReadFile(const char* name) {
    std::ifstream file(name, std::ios::binary);
    file.peek(); // a folder opens, but cannot be read
    if (!file.is_open() || file.bad()) return std::nullopt;
    return std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A string of a resource script. Its quote is doubled, and its other characters stay as they are:
/// the script says that it is UTF-8.
std::string ResourceQuoted(std::string_view text) {
    std::string literal = "\"";
    for (const char c : text) {
        switch (c) {
        case '"':
            literal += "\"\"";
            break;
        case '\\':
            literal += "\\\\";
            break;
        case '\r':
            literal += "\\r";
            break;
        case '\n':
            literal += "\\n";
            break;
        case '\t':
            literal += "\\t";
            break;
        default:
            literal += c;
        }
    }
    return literal += '"';
}

/// The language numbers of resources: primary and sub-language.
struct TResourceLanguage {
    std::string_view Name;
    int Primary;
    int Sub;
};
constexpr std::array ResourceLanguages = {
    TResourceLanguage{"English", 0x09, 0x01},
    TResourceLanguage{"German", 0x07, 0x01},
    TResourceLanguage{"Russian", 0x19, 0x01},
};

void PrintScript(std::ostream& out, const TResourceLanguage& language,
                 const std::vector<TRow>& rows) {
    out << "#pragma code_page(65001)\nLANGUAGE " << language.Primary << ", " << language.Sub
        << "\nSTRINGTABLE\nBEGIN\n";
    for (const TRow& row : rows) out << row.Id << ", " << ResourceQuoted(row.Text) << '\n';
    out << "END\n";
}

void PrintRows(std::ostream& out, const std::vector<TRow>& rows) {
    for (const TRow& row : rows) out << '{' << row.Id << ", " << Quoted(row.Text) << "},\n";
}

/// The number of faults, each told on the error output.
int ReadTable(const char* name, std::string_view text, TStringTable& table) {
    int faults = 0;
    int number = 0;
    const auto check = [&](auto&& step) {
        try {
            step();
        } catch (const EStringTableError& error) {
            std::cerr << name << ':' << number << ": " << error.what() << '\n';
            ++faults;
        }
    };
    if (text.ends_with('\n')) text.remove_suffix(1);
    for (const std::string_view line : Split(text, '\n')) {
        ++number;
        check([&] { table.AddLine(line); });
    }
    if (faults == 0) check([&] { table.Finish(); });
    return faults;
}

int Run(const char* tableName, const char* language, const char* outputName) {
    const std::optional<std::string> text = ReadFile(tableName);
    if (!text) {
        std::cerr << "stringc: cannot read " << tableName << '\n';
        return 1;
    }
    TStringTable table(language);
    if (ReadTable(tableName, *text, table) > 0) return 1;
    const bool script = std::string_view(outputName).ends_with(".rc");
    const auto found =
        std::find_if(ResourceLanguages.begin(), ResourceLanguages.end(),
                     [&](const TResourceLanguage& known) { return known.Name == language; });
    if (script && found == ResourceLanguages.end()) {
        std::cerr << "stringc: no resource language for \"" << language << "\"\n";
        return 1;
    }
    std::ofstream output(outputName, std::ios::binary);
    if (script)
        PrintScript(output, *found, table.Rows());
    else
        PrintRows(output, table.Rows());
    output.close();
    if (output.fail()) {
        std::cerr << "stringc: cannot write " << outputName << '\n';
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: stringc TABLE LANGUAGE OUTPUT\n";
        return 2;
    }
    return Run(argv[1], argv[2], argv[3]);
}
