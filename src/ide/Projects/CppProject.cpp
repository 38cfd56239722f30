#include "Projects/ProjectFile.h"
#include "Projects/TextCursor.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace tarn {

namespace {

struct TXmlAttribute {
    std::string_view Name;
    std::string Value;
};

enum TXmlTagKind : std::uint8_t { xtEnd, xtOpen, xtClose, xtEmpty };

struct TXmlTag {
    TXmlTag(TXmlTagKind kind, int line) : Kind(kind), Line(line) {}

    TXmlTagKind Kind;
    int Line;
    std::string_view Name;
    std::vector<TXmlAttribute> Attributes;

    /// The value of an attribute, its name compared without case; empty when there is none.
    std::string_view Value(std::string_view name) const {
        for (const TXmlAttribute& attribute : Attributes)
            if (SameText(attribute.Name, name)) return attribute.Value;
        return {};
    }
};

void AppendUtf8(std::string& text, unsigned code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    const int extra = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned leads[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(leads[extra] | (code >> (6 * extra)));
    for (int i = extra - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
}

/// Appends the character of an entity, given without "&" and ";"; false when it is unknown.
bool AppendEntity(std::string& text, std::string_view entity) {
    constexpr std::pair<std::string_view, char> entities[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [name, character] : entities)
        if (entity == name) {
            text += character;
            return true;
        }
    if (!entity.starts_with('#')) return false;
    entity.remove_prefix(1);
    const bool hexadecimal = entity.starts_with('x');
    if (hexadecimal) entity.remove_prefix(1);
    unsigned code = 0;
    const char* last = entity.data() + entity.size();
    const auto [end, error] = std::from_chars(entity.data(), last, code, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != last || code == 0 || code > 0x10FFFF) return false;
    AppendUtf8(text, code);
    return true;
}

/// An attribute's value with its entities replaced; what is none stays as it stands.
std::string Unescape(std::string_view raw) {
    constexpr std::size_t longestEntity = 10;
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '&') {
            const std::size_t length = raw.substr(i + 1, longestEntity).find(';');
            if (length != raw.npos && AppendEntity(text, raw.substr(i + 1, length))) {
                i += length + 1;
                continue;
            }
        }
        text += raw[i];
    }
    return text;
}

bool IsXmlNameChar(char c) {
    return !IsBlank(c) && std::string_view("<>/=\"'!?&").find(c) == std::string_view::npos;
}

/// Reads the tags of an XML text one by one. Texts between them, comments, processing instructions
/// and character data are passed over.
class TXmlScanner {
public:
    explicit TXmlScanner(std::string_view text) : FCursor(text) {}

    /// The next tag, of kind xtEnd behind the last one.
    TXmlTag Next() {
        for (;;) {
            FCursor.AdvanceWhile([](char c) { return c != '<'; });
            if (FCursor.AtEnd()) return TXmlTag(xtEnd, FCursor.Line());
            if (!SkipAside()) return ReadTag();
        }
    }
    /// Whether a tag is the first thing in the rest of the text that is not blank.
    bool IsAtTag() {
        FCursor.AdvanceWhile(IsBlank);
        return FCursor.Peek() == '<';
    }

private:
    [[noreturn]] static void Fail(int line, std::string_view message) {
        throw EProjectFileError(line, std::string(message));
    }
    bool SkipAside() {
        constexpr std::pair<std::string_view, std::string_view> asides[] = {
            {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}};
        for (const auto& [open, close] : asides) {
            if (!FCursor.StartsWith(open)) continue;
            const int line = FCursor.Line();
            FCursor.Advance(open.size());
            std::string_view inside;
            if (!FCursor.AdvancePast(close, inside))
                Fail(line, "\"" + std::string(open) + "\" is not closed");
            return true;
        }
        return false;
    }
    TXmlTag ReadTag() {
        TXmlTag tag(xtOpen, FCursor.Line());
        FCursor.Advance();
        if (FCursor.Peek() == '/') {
            tag.Kind = xtClose;
            FCursor.Advance();
        }
        tag.Name = FCursor.AdvanceWhile(IsXmlNameChar);
        if (tag.Name.empty()) Fail(tag.Line, "\"<\" without a name");
        for (;;) {
            FCursor.AdvanceWhile(IsBlank);
            if (FCursor.AtEnd())
                Fail(tag.Line, "tag \"" + std::string(tag.Name) + "\" is not closed");
            if (FCursor.Peek() == '>') break;
            if (tag.Kind == xtOpen && FCursor.StartsWith("/>")) {
                tag.Kind = xtEmpty;
                FCursor.Advance();
                break;
            }
            tag.Attributes.push_back(ReadAttribute());
        }
        FCursor.Advance();
        return tag;
    }
    TXmlAttribute ReadAttribute() {
        const int line = FCursor.Line();
        TXmlAttribute attribute{FCursor.AdvanceWhile(IsXmlNameChar), {}};
        if (attribute.Name.empty())
            Fail(line, std::string("unexpected \"") + FCursor.Peek() + "\" in a tag");
        FCursor.AdvanceWhile(IsBlank);
        const bool hasValue = FCursor.Peek() == '=';
        if (hasValue) FCursor.Advance();
        FCursor.AdvanceWhile(IsBlank);
        const char quote = FCursor.Peek();
        if (!hasValue || (quote != '"' && quote != '\''))
            Fail(line, "attribute \"" + std::string(attribute.Name) + "\" has no value in quotes");
        FCursor.Advance();
        std::string_view value;
        if (!FCursor.AdvancePast({&quote, 1}, value))
            Fail(line, "value of \"" + std::string(attribute.Name) + "\" is not closed");
        attribute.Value = Unescape(value);
        return attribute;
    }

    TTextCursor FCursor;
};

class TCppProjectReader {
public:
    explicit TCppProjectReader(std::string_view text) : FScanner(text) {
        FProject.Kind = pfkCppProject;
    }

    TProjectFile Read() {
        if (!FScanner.IsAtTag())
            throw EProjectFileError(1, "not an XML project; makefile projects are not read");
        bool hasRoot = false;
        for (;;) {
            TXmlTag tag = FScanner.Next();
            if (tag.Kind == xtEnd) {
                CheckEnd(tag.Line, hasRoot);
                return std::move(FProject);
            }
            if (tag.Kind == xtClose) {
                Close(tag);
                continue;
            }
            if (FOpen.empty()) {
                if (hasRoot || !SameText(tag.Name, "PROJECT")) Fail(tag, "\" instead of PROJECT");
                hasRoot = true;
            }
            ReadElement(tag);
            if (tag.Kind == xtOpen) FOpen.push_back({tag.Name, tag.Line});
        }
    }

private:
    struct TOpenTag {
        std::string_view Name;
        int Line;
    };

    [[noreturn]] static void Fail(const TXmlTag& tag, std::string_view text) {
        throw EProjectFileError(tag.Line, "\"" + std::string(tag.Name) + std::string(text));
    }
    void Close(const TXmlTag& tag) {
        if (FOpen.empty()) Fail(tag, "\" is closed, but not open");
        if (!SameText(FOpen.back().Name, tag.Name))
            Fail(tag, "\" is closed instead of \"" + std::string(FOpen.back().Name) + "\"");
        FOpen.pop_back();
    }
    void CheckEnd(int line, bool hasRoot) const {
        if (!FOpen.empty())
            throw EProjectFileError(FOpen.back().Line,
                                    "\"" + std::string(FOpen.back().Name) + "\" is not closed");
        if (!hasRoot) throw EProjectFileError(line, "no PROJECT");
    }
    void ReadElement(const TXmlTag& tag) {
        if (FOpen.size() != 2) return;
        if (SameText(FOpen.back().Name, "MACROS"))
            ReadMacro(tag);
        else if (SameText(FOpen.back().Name, "FILELIST") && SameText(tag.Name, "FILE"))
            ReadFile(tag);
    }
    void ReadMacro(const TXmlTag& tag) {
        const std::string_view value = Trim(tag.Value("value"));
        if (SameText(tag.Name, "PROJECT"))
            FProject.Name = ChangeFileExt(ExtractFileName(value), "");
        else if (SameText(tag.Name, "RESFILES")) // a list, the project's own resource first
            FProject.ResourceFile = value.substr(
                0, static_cast<std::size_t>(std::find_if(value.begin(), value.end(), IsBlank) -
                                            value.begin()));
    }
    void ReadFile(const TXmlTag& tag) {
        TProjectEntry entry{std::string(tag.Value("UNITNAME")), std::string(tag.Value("FILENAME")),
                            std::string(tag.Value("FORMNAME")),
                            std::string(tag.Value("DESIGNCLASS"))};
        if (entry.FileName.empty()) Fail(tag, "\" has no FILENAME");
        if (entry.UnitName.empty())
            entry.UnitName = ChangeFileExt(ExtractFileName(entry.FileName), "");
        FProject.Entries.push_back(std::move(entry));
    }

    TXmlScanner FScanner;
    TProjectFile FProject;
    std::vector<TOpenTag> FOpen; ///< the elements around the current place, outermost first
};

} // namespace

TProjectFile ReadCppProject(std::string_view text) {
    return TCppProjectReader(text).Read();
}

} // namespace tarn
