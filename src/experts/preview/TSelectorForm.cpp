#include "preview/TSelectorForm.h"

#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TSelectorForm::ClassRecord{"TSelectorForm", &TChoiceForm::ClassRecord};

TSelectorForm::TSelectorForm(TInspectorViewMng* manager)
    : TChoiceForm(manager, "InspectorFormViewForm", LocaleStr(51127)) {}

void TSelectorForm::FillList(TStrings& lines) {
    FForms.clear();
    for (int i = 0; i < Screen()->FormCount(); ++i) {
        TForm* const form = Screen()->Forms(i);
        if (form == this || !form->Visible() || form->Caption().empty()) continue;
        FForms.emplace_back(form);
        lines.Add(form->Caption());
    }
}

void TSelectorForm::Choose(int index) {
    const TWeak<TForm> form = FForms[static_cast<std::size_t>(index)];
    if (!form || !form->Visible()) return Populate();
    if (form->WindowState() == wsMinimized) form->SetWindowState(wsNormal);
    Hide();
    if (form) form->Show();
}

} // namespace tarn
