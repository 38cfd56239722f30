// stringc TABLE LANGUAGE OUTPUT
//
// Turns one language of the string table into the rows of a C++ initialiser,
//     {51044, "Move block left (1 pos)"},
// in ascending order of id, for an include inside a braced list. The table is described at its own
// top. Every fault is told as TABLE:LINE: text; a faulty table writes no output.
//
// Exit code: 0 written, 1 faulty table or a file that cannot be read or written, 2 wrong usage.

#include <algorithm>
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
        const auto found = std::find(names.begin() + 1, names.end(), FLanguage);
        if (found == names.end())
            throw EStringTableError("no column \"" + std::string(FLanguage) + "\"");
        FColumn = static_cast<std::size_t>(found - names.begin());
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
        for (std::size_t i = 1; i < fields.size(); ++i) {
            std::string text = ParseText(fields[i]);
            if (i == FColumn) FRows.push_back({id, std::move(text)});
        }
    }

    std::string_view FLanguage;
    std::size_t FColumns = 0; ///< 0 until the header is read
    std::size_t FColumn = 0;
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

bool WriteRows(const char* name, const std::vector<TRow>& rows) {
    std::ofstream file(name, std::ios::binary);
    for (const TRow& row : rows) file << '{' << row.Id << ", " << Quoted(row.Text) << "},\n";
    file.close();
    return !file.fail();
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
    if (!WriteRows(outputName, table.Rows())) {
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
