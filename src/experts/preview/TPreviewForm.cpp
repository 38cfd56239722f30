#include "preview/TPreviewForm.h"

#include "qsLocale.h"
#include "rtl/FileIO.h"

namespace tarn {

constinit const TClassRecord TPreviewForm::ClassRecord{"TPreviewForm", &TChoiceForm::ClassRecord};

TPreviewForm::TPreviewForm(TViewFormMng* manager)
    : TChoiceForm(manager, "FormUnitViewForm", LocaleStr(51128)) {}

void TPreviewForm::FillList(TStrings& lines) {
    FEntries.clear();
    TStringList names;
    for (const TModuleNameKind kind : {mnkForm, mnkFile}) {
        GetProjectModuleNames(names, kind);
        for (int i = 0; i < names.Count(); ++i) {
            FEntries.push_back({names[i], kind});
            lines.Add(kind == mnkFile ? ExtractFileName(names[i]) : names[i]);
        }
    }
}

void TPreviewForm::Choose(int index) {
    // The project may have been changed or closed behind the window.
    const TEntry entry = FEntries[static_cast<std::size_t>(index)];
    TStringList names;
    GetProjectModuleNames(names, entry.Kind);
    if (names.IndexOf(entry.Name) < 0) return Populate();
    const TWeak<TPreviewForm> alive(this);
    ShowModuleByName(entry.Name, entry.Kind, true, true);
    if (alive && static_cast<const TViewFormMng*>(Manager())->CloseFormOnShowUnit) Hide();
}

} // namespace tarn
