#include "Projects/ProjectFile.h"
#include "Projects/TextCursor.h"

#include <algorithm>

namespace tarn {

namespace {

// Identifiers are those of the compiler plus all bytes above 127, the letters of any encoding.
bool IsNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) > 127;
}
bool IsNameChar(char c) {
    return IsNameStart(c) || (c >= '0' && c <= '9');
}
bool IsName(std::string_view text) {
    return !text.empty() && IsNameStart(text[0]) &&
           std::all_of(text.begin(), text.end(), IsNameChar);
}

enum TTokenKind : std::uint8_t { tkEnd, tkName, tkString, tkOpenString, tkSymbol };

struct TToken {
    TTokenKind Kind = tkEnd;
    std::string_view Text; ///< of a string: between the quotes, inner quotes still doubled
    int Line = 1;
    std::string_view Comment; ///< the first brace comment in front of the token
};

/// The file that a directive such as "$R *.RES" names; empty for all other directives, the range
/// checking switch "$R+" included.
std::string_view ResourceOfDirective(std::string_view directive) {
    const auto wordEnd = std::find_if_not(directive.begin() + 1, directive.end(), IsNameChar);
    const auto length = static_cast<std::size_t>(wordEnd - directive.begin());
    const std::string_view word = directive.substr(1, length - 1);
    std::string_view rest = directive.substr(length);
    if (!SameText(word, "R") && !SameText(word, "RESOURCE")) return {};
    if (rest.empty() || !IsBlank(rest[0])) return {};
    rest = Trim(rest);
    if (rest.starts_with('\'')) return rest.substr(1, rest.find('\'', 1) - 1);
    return rest.substr(0, static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), IsBlank) -
                                                   rest.begin()));
}

/// Splits Pascal source into tokens and notes the resource directive on the way.
class TPascalScanner {
public:
    explicit TPascalScanner(std::string_view text) : FCursor(text) {}

    TToken Next() {
        TToken token;
        SkipComments(token.Comment);
        token.Line = FCursor.Line();
        if (FCursor.AtEnd()) return token;
        const char c = FCursor.Peek();
        if (IsNameStart(c)) {
            token.Kind = tkName;
            token.Text = FCursor.AdvanceWhile(IsNameChar);
        } else if (c == '\'') {
            ReadString(token);
        } else {
            const std::size_t start = FCursor.Position();
            FCursor.Advance();
            token.Kind = tkSymbol;
            token.Text = FCursor.From(start);
        }
        return token;
    }
    std::string_view Resource() const { return FResource; }

private:
    void SkipComments(std::string_view& comment) {
        for (;;) {
            FCursor.AdvanceWhile(IsBlank);
            if (FCursor.StartsWith("//"))
                FCursor.AdvanceWhile([](char c) { return !IsLineEnd(c); });
            else if (FCursor.StartsWith("{"))
                SkipComment("{", "}", comment);
            else if (FCursor.StartsWith("(*")) {
                std::string_view namesNoForm;
                SkipComment("(*", "*)", namesNoForm);
            } else
                return;
        }
    }
    void SkipComment(std::string_view open, std::string_view close, std::string_view& comment) {
        const int line = FCursor.Line();
        FCursor.Advance(open.size());
        std::string_view inside;
        if (!FCursor.AdvancePast(close, inside))
            throw EProjectFileError(line, "comment is not closed");
        if (!inside.starts_with('$')) {
            if (comment.empty()) comment = inside;
        } else if (FResource.empty()) {
            FResource = ResourceOfDirective(inside);
        }
    }
    void ReadString(TToken& token) {
        FCursor.Advance();
        const std::size_t start = FCursor.Position();
        for (;;) {
            FCursor.AdvanceWhile([](char c) { return c != '\'' && !IsLineEnd(c); });
            token.Text = FCursor.From(start);
            if (FCursor.Peek() != '\'') {
                token.Kind = tkOpenString;
                return;
            }
            FCursor.Advance();
            if (FCursor.Peek() != '\'') break;
            FCursor.Advance();
        }
        token.Kind = tkString;
    }

    TTextCursor FCursor;
    std::string_view FResource;
};

std::string WithSingleQuotes(std::string_view literal) {
    std::string text;
    for (std::size_t i = 0; i < literal.size(); ++i) {
        text += literal[i];
        if (literal[i] == '\'') ++i;
    }
    return text;
}

class TPascalProjectReader {
public:
    explicit TPascalProjectReader(std::string_view text) : FScanner(text) { Next(); }

    TProjectFile Read() {
        ReadHeading();
        // Conditional directives may put several clauses of one kind behind each other.
        while (IsWord("uses") || IsWord("contains") || IsWord("requires")) ReadClause();
        while (FToken.Kind != tkEnd) Next();
        FProject.ResourceFile = FScanner.Resource();
        return std::move(FProject);
    }

private:
    void Next() { FToken = FScanner.Next(); }
    bool IsWord(std::string_view word) const {
        return FToken.Kind == tkName && SameText(FToken.Text, word);
    }
    bool IsSymbol(std::string_view symbol) const {
        return FToken.Kind == tkSymbol && FToken.Text == symbol;
    }
    [[noreturn]] void FailExpected(std::string_view what) const {
        const std::string found = FToken.Kind == tkEnd ? "the end of the file"
                                  : FToken.Kind == tkOpenString
                                      ? "a string that is not closed"
                                      : '"' + std::string(FToken.Text) + '"';
        throw EProjectFileError(FToken.Line,
                                "expected " + std::string(what) + " instead of " + found);
    }

    void ReadHeading() {
        if (IsWord("program"))
            FProject.Kind = pfkProgram;
        else if (IsWord("library"))
            FProject.Kind = pfkLibrary;
        else if (IsWord("package"))
            FProject.Kind = pfkPackage;
        else
            FailExpected("program, library or package");
        Next();
        FProject.Name = ReadName("a project name");
        if (IsSymbol("(")) // the files of a standard Pascal program
            while (FToken.Kind != tkEnd && !IsSymbol(";")) Next();
        SkipSemicolon();
    }
    void SkipSemicolon() {
        if (!IsSymbol(";")) FailExpected("\";\"");
        Next();
    }
    /// A name that may consist of several with dots between them.
    std::string ReadName(std::string_view what) {
        std::string name;
        for (;; name += '.') {
            if (FToken.Kind != tkName) FailExpected(what);
            name += FToken.Text;
            Next();
            if (!IsSymbol(".")) return name;
            Next();
        }
    }
    void ReadClause() {
        const bool namesPackages = IsWord("requires");
        do {
            Next();
            TProjectEntry entry = ReadEntry();
            if (!namesPackages) FProject.Entries.push_back(std::move(entry));
        } while (IsSymbol(","));
        if (!IsSymbol(";")) FailExpected("\",\" or \";\"");
        Next();
    }
    TProjectEntry ReadEntry() {
        TProjectEntry entry;
        entry.UnitName = ReadName("a unit name");
        if (!IsWord("in")) return entry;
        Next();
        if (FToken.Kind != tkString) FailExpected("a file name in quotes");
        entry.FileName = WithSingleQuotes(FToken.Text);
        Next();
        ReadForm(FToken.Comment, entry);
        return entry;
    }
    /// "Form" or "Form: TDesignClass"; any other comment says nothing about a form.
    static void ReadForm(std::string_view comment, TProjectEntry& entry) {
        const std::size_t colon = comment.find(':');
        const std::string_view form = Trim(comment.substr(0, colon));
        const bool hasClass = colon != comment.npos;
        const std::string_view designClass = hasClass ? Trim(comment.substr(colon + 1)) : "";
        if (!IsName(form) || (hasClass && !IsName(designClass))) return;
        entry.FormName = form;
        entry.DesignClass = designClass;
    }

    TPascalScanner FScanner;
    TToken FToken;
    TProjectFile FProject;
};

} // namespace

TProjectFile ReadPascalProject(std::string_view text) {
    return TPascalProjectReader(text).Read();
}

} // namespace tarn
