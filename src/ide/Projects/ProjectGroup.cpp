#include "Projects/ProjectFile.h"
#include "Projects/TextCursor.h"

#include <map>
#include <set>

namespace tarn {

namespace {

/// The words of a text between blanks; a word in double quotes may contain blanks.
std::vector<std::string> SplitWords(std::string_view text) {
    std::vector<std::string> words;
    TTextCursor cursor(text);
    for (;;) {
        cursor.AdvanceWhile(IsBlank);
        if (cursor.AtEnd()) return words;
        if (cursor.Peek() == '"') {
            cursor.Advance();
            std::string_view word;
            cursor.AdvancePast("\"", word);
            words.emplace_back(word);
        } else {
            words.emplace_back(cursor.AdvanceWhile([](char c) { return !IsBlank(c); }));
        }
    }
}

/// The position of the first "=" or ":" that stands outside quotes; npos when there is none.
std::size_t FindOperator(std::string_view line) {
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            quoted = !quoted;
        else if (!quoted && (line[i] == '=' || line[i] == ':'))
            return i;
    }
    return line.npos;
}

/// A file name may contain "#", so that only one behind a blank begins a comment.
std::string_view WithoutComment(std::string_view line) {
    for (std::size_t i = 1; i < line.size(); ++i)
        if (line[i] == '#' && IsBlank(line[i - 1])) return line.substr(0, i);
    return line;
}

class TProjectGroupReader {
public:
    explicit TProjectGroupReader(std::string_view text) : FCursor(text) {}

    TProjectGroupFile Read() {
        while (!FCursor.AtEnd()) {
            const int line = FCursor.Line();
            ReadLine(NextLine(), line);
        }
        return Collect();
    }

private:
    struct TRule {
        std::string FileName;
        int Line;
        int SecondLine = 0; ///< of another rule for the same target
    };

    /// One line with those that continue it behind a backslash. Comment lines are never continued.
    std::string NextLine() {
        const bool isComment = FCursor.Peek() == '#';
        std::string line;
        for (;;) {
            std::string_view part = FCursor.AdvanceWhile([](char c) { return !IsLineEnd(c); });
            FCursor.Advance(FCursor.StartsWith("\r\n") ? 2 : 1);
            while (!part.empty() && IsBlank(part.back())) part.remove_suffix(1);
            const bool continues = part.ends_with('\\') && !isComment;
            if (continues) part.remove_suffix(1);
            line += part;
            if (!continues || FCursor.AtEnd()) return line;
            line += ' ';
        }
    }
    void ReadLine(std::string_view line, int number) {
        // A line that begins with a blank is a command of the rule above it.
        if (line.empty() || IsBlank(line[0]) || line[0] == '#' || line[0] == '!') return;
        line = WithoutComment(line);
        const std::size_t found = FindOperator(line);
        if (found == line.npos) throw EProjectFileError(number, "neither a macro nor a rule");
        const std::string_view right = line.substr(found + 1);
        if (line[found] == ':')
            ReadRule(line.substr(0, found), right, number);
        else if (SameText(Trim(line.substr(0, found)), "PROJECTS")) {
            FTargets = SplitWords(right);
            FTargetsLine = number;
        }
    }
    void ReadRule(std::string_view targets, std::string_view files, int number) {
        const std::vector<std::string> words = SplitWords(files);
        for (const std::string& target : SplitWords(targets)) {
            const auto [rule, isNew] = FRules.try_emplace(
                LowerCase(target), TRule{words.empty() ? std::string() : words[0], number});
            if (!isNew && rule->second.SecondLine == 0) rule->second.SecondLine = number;
        }
    }
    TProjectGroupFile Collect() const {
        if (FTargetsLine == 0) throw EProjectFileError(1, "no PROJECTS");
        TProjectGroupFile group;
        std::set<std::string> seen;
        for (const std::string& target : FTargets) {
            const auto rule = FRules.find(LowerCase(target));
            const auto fail = [&](int line, const char* text) {
                throw EProjectFileError(line, "project \"" + target + "\" " + text);
            };
            if (!seen.insert(LowerCase(target)).second) fail(FTargetsLine, "stands twice");
            if (rule == FRules.end()) fail(FTargetsLine, "has no rule");
            if (rule->second.SecondLine != 0) fail(rule->second.SecondLine, "has a second rule");
            if (rule->second.FileName.empty()) fail(rule->second.Line, "has no file");
            group.Projects.push_back({target, rule->second.FileName});
        }
        return group;
    }

    TTextCursor FCursor;
    std::vector<std::string> FTargets;
    int FTargetsLine = 0;
    std::map<std::string, TRule> FRules; ///< by target in lower case
};

} // namespace

TProjectGroupFile ReadProjectGroup(std::string_view text) {
    return TProjectGroupReader(text).Read();
}

} // namespace tarn
