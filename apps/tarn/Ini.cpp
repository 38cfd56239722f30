#include "Ini.h"

#include "ScriptSource.h"
#include "TIniStrings.h"
#include "rtl/SafeFile.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace tarn {
namespace {

/// What the command line gives.
struct TRequest {
    std::string File, Section, Key, Value;

    [[noreturn]] void Refuse(std::string_view what) const {
        throw EScriptError(ExitRefused, File + ": there is no " + std::string(what));
    }
    std::string SectionText() const { return "section [" + Escaped(Section) + "]"; }
    void RequireKey(const TIniStrings& ini, const std::string& key) const {
        if (!ini.HasSection(Section)) Refuse(SectionText());
        if (!ini.HasKey(Section, key)) Refuse("key " + Escaped(key) + " in " + SectionText());
    }
};

/// A document of a file that is there.
std::unique_ptr<TIniStrings> ReadDocument(const TRequest& request) {
    if (!IdentityOf(request.File)) (void)LoadFileText(request.File); // raises: there is none
    return std::make_unique<TIniStrings>(request.File);
}

/// How many lines of a text the document does not hold: comments, and keys before any section.
int LinesLeftOut(std::string_view text) {
    int leftOut = 0;
    bool inSection = false;
    if (text.starts_with(Utf8Mark)) text.remove_prefix(Utf8Mark.size());
    ForEachLine(text, [&](std::string_view line) {
        const bool header = line.starts_with('[') && line.ends_with(']');
        inSection = inSection || header;
        if (!line.empty() && (line.starts_with(';') || !inSection)) ++leftOut;
    });
    return leftOut;
}

/// Changes a document and writes it. A file with lines that the document does not hold is kept
/// beside it.
template <class F> void Change(const TRequest& request, bool mayBeNew, F&& change) {
    std::string former;
    try {
        former = LoadFileText(request.File);
    } catch (const EFileError& error) {
        if (!mayBeNew || error.Kind() != feMissing) throw;
    }
    TIniStrings ini(request.File);
    change(ini);
    if (const int leftOut = LinesLeftOut(former); leftOut > 0) {
        const std::string backup = request.File + "~";
        SaveFileText(backup, former);
        std::fprintf(stderr, "tarn: %s: %d left out: comments and lines before any section; %s\n",
                     request.File.c_str(), leftOut, ("the former file is " + backup).c_str());
    }
    ini.UpdateFile();
}

void PrintLine(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

void PrintLines(const TStrings& lines) {
    for (int i = 0; i < lines.Count(); ++i) PrintLine(lines[i]);
}

// --- The commands -----------------------------------------------------------------------------

void Get(const TRequest& request) {
    const auto ini = ReadDocument(request);
    request.RequireKey(*ini, request.Key);
    PrintLine(ini->ReadString(request.Section, request.Key, ""));
}

void Set(const TRequest& request) {
    Change(request, true,
           [&](TIniStrings& ini) { ini.WriteString(request.Section, request.Key, request.Value); });
}

void DeleteKey(const TRequest& request) {
    Change(request, false, [&](TIniStrings& ini) {
        request.RequireKey(ini, request.Key);
        ini.DeleteKey(request.Section, request.Key);
    });
}

void DeleteSection(const TRequest& request) {
    Change(request, false, [&](TIniStrings& ini) {
        if (!ini.HasSection(request.Section)) request.Refuse(request.SectionText());
        ini.EraseSection(request.Section);
    });
}

void Rename(const TRequest& request) {
    Change(request, false, [&](TIniStrings& ini) {
        request.RequireKey(ini, request.Key);
        ini.ReplaceString(request.Section, request.Key, request.Value);
    });
}

void Sections(const TRequest& request) {
    TStringList names;
    ReadDocument(request)->ReadSections(names);
    PrintLines(names);
}

void Keys(const TRequest& request) {
    const auto ini = ReadDocument(request);
    if (!ini->HasSection(request.Section)) request.Refuse(request.SectionText());
    TStringList names;
    ini->ReadSection(request.Section, names);
    PrintLines(names);
}

void Sort(const TRequest& request) {
    Change(request, false, [](TIniStrings& ini) { ini.Sort(); });
}

} // namespace

void AddIniCommand(CLI::App& app, std::function<void()>& chosen) {
    CLI::App* const ini = app.add_subcommand("ini", "Read or change an INI text file");
    ini->require_subcommand(1);
    const auto request = std::make_shared<TRequest>();
    ini->add_option("FILE", request->File, "the file")->required();
    ini->footer("Names are compared without case; the first section and the first key of a name "
                "count.\nWriting leaves out comments and lines before the first section; the "
                "former file then\nstays beside the new one as FILE~. A word that begins with - "
                "stands behind --.");

    const auto add = [&](const std::string& name, const std::string& help,
                         void (*run)(const TRequest&)) {
        CLI::App* const command = ini->add_subcommand(name, help);
        command->final_callback([=, &chosen] { chosen = [=] { run(*request); }; });
        return command;
    };
    const auto word = [&](CLI::App* command, const std::string& name, std::string& target) {
        return command->add_option(name, target)->required();
    };
    CLI::App* const get = add("get", "Print a value", Get);
    word(get, "SECTION", request->Section);
    word(get, "KEY", request->Key);
    CLI::App* const set = add("set", "Write a value; what is missing is made", Set);
    word(set, "SECTION", request->Section);
    word(set, "KEY", request->Key);
    word(set, "VALUE", request->Value);
    CLI::App* const erase = add("delete", "Delete a key, or a section with its keys", DeleteKey);
    word(erase, "SECTION", request->Section);
    const CLI::Option* const key = erase->add_option("KEY", request->Key);
    erase->final_callback([=, &chosen] {
        chosen = [=] { key->count() > 0 ? DeleteKey(*request) : DeleteSection(*request); };
    });
    CLI::App* const rename = add("rename", "Give a key another name", Rename);
    word(rename, "SECTION", request->Section);
    word(rename, "KEY", request->Key);
    word(rename, "NEWKEY", request->Value);
    add("sections", "Print the names of the sections", Sections);
    word(add("keys", "Print the names of a section's keys", Keys), "SECTION", request->Section);
    add("sort", "Sort the sections and the keys of each", Sort);
}

} // namespace tarn
