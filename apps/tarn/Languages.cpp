#include "Languages.h"

#include "ScriptSource.h"
#include "TSession.h"
#include "os/portable/PEStrings.h"
#include "qsLocale.h"

#include <filesystem>

namespace tarn {
namespace {

std::string& ChosenRegistryFile() {
    static std::string file;
    return file;
}

std::string RegistryFile() {
    const std::string& chosen = ChosenRegistryFile();
    return chosen.empty() ? TPortableOS::UserRegistryFile() : chosen;
}

/// A session on the user's registry in which the menu stands.
class TLanguageSession : public TRunningPack {
public:
    TLanguageSession(TConsoleDialogs* console, const std::string& packageDir)
        : TRunningPack(console, packageDir, RegistryFile()) {}
    /// The entries of the submenu that choose a language: the first one is the default.
    std::vector<TMenuItem*> Entries() {
        std::vector<TMenuItem*> entries;
        TMenuItem& menu = *Manager().LanguageItem();
        for (int i = 0; i + 1 < menu.Count(); ++i)
            if (!menu.Items(i)->IsLine()) entries.push_back(menu.Items(i));
        return entries;
    }
};

} // namespace

void SetRegistryFile(const std::string& file) {
    ChosenRegistryFile() = file;
}

std::string ListLanguages(TConsoleDialogs* console, const std::string& packageDir) {
    TLanguageSession session(console, packageDir);
    std::string text;
    for (const TMenuItem* entry : session.Entries())
        text += (entry->Checked() ? "* " : "  ") + entry->Caption() + "\n";
    TStringList modules;
    modules.SetCommaText(session.Manager().LocaleModules);
    for (int i = 0; i < modules.Count(); ++i) {
        const std::string name = modules.Name(i);
        const std::string file = session.Manager().LocaleFile(modules.Value(name));
        if (!name.empty() && !std::filesystem::is_regular_file(file))
            text += "  " + session.Manager().TranslateLangName(name) + " (missing: " + file + ")\n";
    }
    return text;
}

void UseLanguage(const std::string& name, TConsoleDialogs* console, const std::string& packageDir) {
    TLanguageSession session(console, packageDir);
    const std::vector<TMenuItem*> entries = session.Entries();
    TMenuItem* chosen = SameText(name, "Default") ? entries.front() : nullptr;
    std::string known = "Default";
    for (std::size_t i = 1; i < entries.size(); ++i) {
        const std::string& caption = entries[i]->Caption();
        const std::string internal = session.Manager().RetranslateLangName(caption);
        if (AnsiSameText(name, caption) || AnsiSameText(name, internal)) chosen = entries[i];
        known += ", " + internal;
    }
    if (!chosen)
        throw EScriptError(ExitUsage, "unknown language '" + name + "'; there are " + known);
    session.Ide().ClickMenuItem(*chosen);
    session.Ide().PumpMessages();
    // The pack goes on without a registry; here the choice for later starts is all there is.
    const auto kept =
        session.OS().ReadRegistryString("\\Software\\TarnExperts", "ExpCurrentLocale");
    if (kept != session.Manager().CurrentLocale)
        throw EScriptError(ExitIO, "the choice cannot be kept in '" + RegistryFile() + "'");
}

// --- Checking a library -----------------------------------------------------------------------

namespace {

/// The placeholders of a text, in their order: "%s %d".
std::string Placeholders(std::string_view text) {
    std::string result;
    for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
        std::size_t end = text.find_first_not_of("0123456789:.-", at + 1);
        if (end == std::string_view::npos) break;
        constexpr std::string_view types = "sdfux";
        if (types.find(text[end]) != std::string_view::npos)
            result.append(result.empty() ? "" : " ").append(text.substr(at, end + 1 - at));
        at = end + 1;
    }
    return result;
}

} // namespace

TLanguageCheck CheckLanguage(const std::string& file) {
    constexpr int firstId = 50500, lastId = 51999;
    TLanguageCheck check;
    const auto report = [&](int id, const std::string& fault) {
        check.Report += Format("%s: %d %s\n", {file, id, fault});
        check.Faultless = false;
    };
    try {
        const TPEStrings strings = TPEStrings::FromFile(file);
        int count = 0;
        for (int id = firstId; id <= lastId; ++id) {
            const auto builtIn = FindBuiltInStr(id);
            if (!builtIn) continue;
            ++count;
            const std::string_view text = strings.Find(id);
            if (text.empty())
                report(id, "is missing");
            else if (Placeholders(text) != Placeholders(*builtIn))
                report(id, Format("has placeholders '%s' instead of '%s'",
                                  {Placeholders(text), Placeholders(*builtIn)}));
        }
        if (check.Faultless) check.Report = Format("%s: ok, %d texts\n", {file, count});
    } catch (const EResourceLibraryError& error) {
        throw EScriptError(ExitIO, file + ": " + error.what());
    }
    return check;
}

} // namespace tarn
