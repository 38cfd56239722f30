// The language of the pack: its settings in the registry and the "Language" submenu.

#include "TExpManager.h"
#include "qsExpMng.h"
#include "qsLocale.h"
#include "qsLocaleSet.h"

#include <filesystem>

namespace tarn {
namespace {

constexpr std::string_view RegistryKey = "\\Software\\TarnExperts";

/// A setting of the manager and the registry value that keeps it.
struct TLanguageValue {
    std::string_view Name;
    std::string TExpManager::*Field;
};

constexpr TLanguageValue LanguageValues[] = {
    {"ExpLocaleDir", &TExpManager::LocaleDir},
    {"ExpLocaleModules", &TExpManager::LocaleModules},
    {"ExpCurrentLocale", &TExpManager::CurrentLocale},
};

bool FileExists(const std::string& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
}

/// The submenu gets no hotkeys of its own, so that an & in a caption belongs to the name.
std::string CaptionOf(TObject* sender) {
    if (const auto* const item = ClassCast<TMenuItem>(sender)) return item->Caption();
    if (const auto* const action = ClassCast<TAction>(sender)) return action->Caption();
    return {};
}

bool IsChecked(TObject* sender) {
    if (const auto* const item = ClassCast<TMenuItem>(sender)) return item->Checked();
    const auto* const action = ClassCast<TAction>(sender);
    return action && action->Checked();
}

/// The list that maps the languages' internal names to their names in the current language.
class TLanguageNames : public TStringList {
public:
    TLanguageNames() { SetTextStr(LocaleStr(50514)); }
};

/// The languages and their modules, from comma text of "Language=Module" pairs.
class TLanguageModules : public TStringList {
public:
    explicit TLanguageModules(std::string_view commaText) { SetCommaText(commaText); }
    /// The module of a line; empty when the line is no pair.
    std::string Module(int index) const {
        const std::size_t mark = Get(index).find('=');
        return mark == std::string::npos ? std::string() : Get(index).substr(mark + 1);
    }
};

} // namespace

// --- The registry -----------------------------------------------------------------------------

void ReadLanguageSettings(TExpManager& manager) {
    manager.ProcessLocalization();
}

void WriteLanguageSettings(TExpManager& manager) {
    manager.SaveLocalization();
}

void TExpManager::ProcessLocalization() {
    if (OS().OpenRegistryKey(RegistryKey))
        for (const TLanguageValue& value : LanguageValues) {
            if (const auto stored = OS().ReadRegistryString(RegistryKey, value.Name))
                this->*value.Field = *stored;
            else
                OS().WriteRegistryString(RegistryKey, value.Name, this->*value.Field);
        }
    if (!FileExists(CurrentLocale)) CurrentLocale.clear();
    // Also without a choice: a manager before this one may have left its module loaded.
    LoadNewLanguage(CurrentLocale);
}

void TExpManager::SaveLocalization() {
    if (!OS().OpenRegistryKey(RegistryKey)) return;
    for (const TLanguageValue& value : LanguageValues)
        OS().WriteRegistryString(RegistryKey, value.Name, this->*value.Field);
}

std::string TExpManager::LocaleFile(std::string_view module) const {
    std::string dir = LocaleDir.empty() ? PackageDir() : LocaleDir;
    if (!dir.empty() && !dir.ends_with('/') && !dir.ends_with('\\'))
        dir += static_cast<char>(std::filesystem::path::preferred_separator);
    return dir.append(module);
}

// --- Names ------------------------------------------------------------------------------------

std::string TExpManager::TranslateLangName(std::string_view name) const {
    std::string translated = TLanguageNames().Value(name);
    return translated.empty() ? std::string(name) : translated;
}

std::string TExpManager::RetranslateLangName(std::string_view displayName) const {
    const TLanguageNames names;
    for (int i = 0; i < names.Count(); ++i) {
        std::string name = names.Name(i);
        if (!name.empty() &&
            AnsiSameText(std::string_view(names[i]).substr(name.size() + 1), displayName))
            return name;
    }
    return std::string(displayName);
}

// --- The submenu ------------------------------------------------------------------------------

void TExpManager::CreateLangSubMenu(TMenuItem* item) {
    TActionList* const list = IDEActionList();
    if (!list || !item || !FLanguageActions) return;
    ClearItems(item, *FLanguageActions);
    item->SetAutoHotkeys(maManual);
    const std::string builtIn = TranslateLangName(DefaultLocaleStr(50501));
    CreateNewItem(Format("%s (%s)", {LocaleStr(50504), builtIn}),
                  TNotifyEvent::Of<&TExpManager::SelectDefaultLanguage>(this), item, list,
                  *FLanguageActions);
    item->Add(NewLine());

    const TLanguageModules modules(LocaleModules);
    // A name that is there twice gets one entry: it could not be told which one was chosen.
    TStringList names;
    names.SetSorted(true);
    for (int i = 0; i < modules.Count(); ++i) {
        const std::string name = modules.Name(i);
        if (!name.empty() && FileExists(LocaleFile(modules.Module(i))))
            names.Add(TranslateLangName(name));
    }
    for (int i = 0; i < names.Count(); ++i)
        CreateNewItem(names[i], TNotifyEvent::Of<&TExpManager::SelectLanguage>(this), item, list,
                      *FLanguageActions);
    if (!item->Items(item->Count() - 1)->IsLine()) item->Add(NewLine());
    CreateNewItem(LocaleStr(50505), TNotifyEvent::Of<&TExpManager::EditLangModules>(this), item,
                  list, *FLanguageActions);
    SetActiveLanguageItem(item);
}

void TExpManager::SetActiveLanguageItem(TMenuItem* item) {
    // The entry of the first pair whose module is the current one.
    std::string current;
    const TLanguageModules modules(LocaleModules);
    for (int i = 0; i < modules.Count() && current.empty(); ++i) {
        const std::string name = modules.Name(i);
        if (!name.empty() && LocaleFile(modules.Module(i)) == CurrentLocale)
            current = TranslateLangName(name);
    }
    for (int i = 0; i < item->Count(); ++i) {
        TMenuItem* const entry = item->Items(i);
        if (!entry->Action()) continue;
        const bool isDefault = i == 0;
        const bool isModules = i == item->Count() - 1;
        const bool checked =
            isDefault ? CurrentLocale.empty()
                      : !isModules && !current.empty() && AnsiSameText(CaptionOf(entry), current);
        // The action carries the mark, and the item follows it: each may be the sender of a click.
        entry->Action()->SetChecked(checked);
        entry->SetChecked(checked);
    }
}

void TExpManager::SelectLanguage(TObject* sender) {
    if (IsChecked(sender)) return;
    const TLanguageModules modules(LocaleModules);
    const std::string module = modules.Value(RetranslateLangName(CaptionOf(sender)));
    const std::string file = LocaleFile(module);
    if (module.empty() || !FileExists(file)) return;
    ChangeLanguage(file);
}

void TExpManager::SelectDefaultLanguage(TObject* sender) {
    if (!IsChecked(sender)) ChangeLanguage({});
}

void TExpManager::ChangeLanguage(const std::string& file) {
    // What was changed at run time must outlive the experts that are made anew.
    SaveOnExit();
    CurrentLocale = file;
    LoadNewLanguage(file);
    SaveLocalization();
    DoRecreateExperts();
}

void TExpManager::EditLangModules(TObject*) {
    // The IDE may let the wizard go while the dialog stands.
    const TIntf<IOTAWizard> alive(this);
    TLocaleForm form;
    form.SetModules(LocaleModules);
    form.LocaleDir = LocaleDir;
    if (form.ShowModal() != mrOk || FState == msDown) return;
    LocaleModules = form.Modules();
    LocaleDir = form.LocaleDir;
    SaveLocalization();
    // The submenu holds the very item that runs this: nothing of it is touched from here on.
    CreateLangSubMenu(FLanguageItem.Get());
}

} // namespace tarn
