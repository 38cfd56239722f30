#include "TSession.h"

#include "Package.h"
#include "ScriptSource.h"
#include "TTrialExpert.h"

namespace tarn {
namespace fs = std::filesystem;

TSession::TSession(TUserDialogs* console) : FFormerOS(InstallOS(&FOS)) {
    FNoSaving.emplace(ExpManagerSlots().SaveExpData, nullptr);
    FOS.SetConsole(console);
    // The layout is the US one now: what the keys are called is kept for KeyOf.
    for (int key = 255; key >= VK_BACK; --key) {
        const std::string name = ShortCutToText(static_cast<TShortCut>(key));
        if (!name.empty()) FKeys[UpperCase(name)] = static_cast<TVirtualKey>(key);
    }
    FIde.emplace();
}

TSession::~TSession() {
    FIde.reset();
    InstallOS(FFormerOS);
}

bool TSession::StartPack() {
    FTraces.reset();
    const auto initialize = [this] {
        InitializePackage();
        if (FTrialExpert) RegisterTrialExpert();
    };
    const auto finalize = [this] {
        FTraces = ErrorLog();
        FinalizePackage();
    };
    if (!FIde->Packages().Load({initialize, Register, finalize})) return false;
    // A package whose start was abandoned stays loaded; the next start is to be a fresh one.
    if (!PackRuns()) FIde->Packages().Unload();
    return PackRuns();
}

void TSession::StopPack() {
    FIde->Packages().Unload();
}

std::string TSession::WithLastDialog(std::string message) const {
    if (!FOS.Dialogs().empty() && !FOS.Dialogs().back().OnConsole)
        message += ": " + FOS.Dialogs().back().Text;
    return message;
}

TShortCut TSession::KeyOf(std::string_view text) const {
    constexpr std::pair<std::string_view, TShortCut> modifiers[] = {
        {"SHIFT+", scShift}, {"CTRL+", scCtrl}, {"ALT+", scAlt}};
    const std::string upper = UpperCase(text);
    std::string_view rest = upper;
    unsigned bits = 0;
    for (bool found = true; found;) {
        found = false;
        for (const auto& [prefix, bit] : modifiers)
            if (rest.starts_with(prefix)) {
                bits |= bit;
                rest.remove_prefix(prefix.size());
                found = true;
            }
    }
    const auto key = FKeys.find(rest);
    return key == FKeys.end() ? TShortCut{0} : static_cast<TShortCut>(bits | key->second);
}

// --- The menu ---------------------------------------------------------------------------------

namespace {

/// The first item below `parent` that fits, depth first; null when none does.
template <class F> TMenuItem* FindBelow(TMenuItem& parent, F&& fits) {
    for (int i = 0; i < parent.Count(); ++i) {
        if (fits(*parent.Items(i))) return parent.Items(i);
        if (TMenuItem* const below = FindBelow(*parent.Items(i), fits)) return below;
    }
    return nullptr;
}

const std::string& ItemIDOf(TMenuItem& item) {
    static const std::string none;
    const auto* const own = ClassCast<TExpMenuItem>(&item);
    return own ? own->ItemID : none;
}

void AppendItem(std::string& text, TMenuItem& item, int level) {
    text.append(2 * static_cast<std::size_t>(level), ' ').append(item.Caption());
    if (item.ShortCut() != 0) text += " [" + ShortCutToText(item.ShortCut()) + "]";
    if (!item.Name().empty()) text += " (" + item.Name() + ")";
    if (!ItemIDOf(item).empty()) text += " id=" + ItemIDOf(item);
    if (item.ImageIndex() >= 0) text += " image=" + IntToStr(item.ImageIndex());
    if (item.RadioItem()) text += " radio";
    if (item.Checked()) text += " checked";
    if (!item.Enabled()) text += " disabled";
    if (!item.Visible()) text += " hidden";
    text += "\n";
}

} // namespace

TMenuItem* TSession::FindMenuItem(std::string_view name) {
    TMenuItem& root = *FIde->MainForm().Menu->Items();
    if (name.empty()) return nullptr;
    if (name.find('|') == std::string_view::npos) {
        if (TMenuItem* const item =
                FindBelow(root, [&](TMenuItem& i) { return SameText(ItemIDOf(i), name); }))
            return item;
        if (TMenuItem* const item =
                FindBelow(root, [&](TMenuItem& i) { return SameText(i.Name(), name); }))
            return item;
    }
    TMenuItem* item = &root;
    while (item) {
        const std::size_t bar = name.find('|');
        item = item->Find(Trim(name.substr(0, bar)));
        if (bar == std::string_view::npos) break;
        name.remove_prefix(bar + 1);
    }
    return item;
}

std::vector<std::string> TSession::CommandIDs() {
    std::vector<std::string> ids;
    FindBelow(*FIde->MainForm().Menu->Items(), [&](TMenuItem& item) {
        if (!ItemIDOf(item).empty()) ids.push_back(ItemIDOf(item));
        return false;
    });
    return ids;
}

std::string TSession::MenuText(bool all) {
    std::string text;
    const auto append = [&](auto& self, TMenuItem& parent, int level) -> void {
        for (int i = 0; i < parent.Count(); ++i) {
            TMenuItem& item = *parent.Items(i);
            AppendItem(text, item, level);
            // The pack's menu may stand inside another one.
            const auto ours = [](TMenuItem& below) { return below.Name() == "qsTarnExpMenu"; };
            if (all || ClassCast<TExpMenuItem>(&item) || FindBelow(item, ours))
                self(self, item, level + 1);
        }
    };
    append(append, *FIde->MainForm().Menu->Items(), 0);
    return text;
}

// --- The pack and its directory ---------------------------------------------------------------

TRunningPack::TRunningPack(TUserDialogs* console, const std::string& packageDir,
                           const std::string& registry)
    : TSession(console) {
    const fs::path program = OS().GetModuleFileName();
    OS().SetModuleFileName((PackageFolder(packageDir) / program.filename()).string());
    OS().SetRegistryFile(registry);
    if (!StartPack()) throw EScriptError(ExitRefused, WithLastDialog("the pack does not start"));
    Ide().PumpMessages();
}

fs::path PackageFolder(const std::string& name) {
    fs::path folder =
        name.empty() ? fs::path(TPortableOS().GetModuleFileName()).parent_path() : fs::path(name);
    if (!fs::is_directory(folder))
        throw EScriptError(ExitIO, "cannot read " + folder.string() + ": is no folder");
    return folder;
}

TSourceView& CurrentView(TSession& session) {
    TSourceView* const view = session.Ide().CurrentView();
    if (!view) throw EScriptError(ExitRefused, "no file is open");
    return *view;
}

} // namespace tarn
