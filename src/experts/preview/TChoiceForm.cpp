#include "preview/TChoiceForm.h"

#include "qsLocale.h"
#include "rtl/UpdateOnce.h"

namespace tarn {

constinit const TClassRecord TChoiceForm::ClassRecord{"TChoiceForm", &TSharedForm::ClassRecord};

TChoiceForm::TChoiceForm(TSharedManager* manager, std::string_view name, std::string_view caption)
    : TSharedForm(nullptr, manager), FList(new TListBox(this)),
      FShow(
          NewAction("acShow", "", TNotifyEvent::Of<&TChoiceForm::GoToSelected>(this), VK_RETURN)) {
    SetName(name);
    SetCaption(caption);
    SetBoundsRect({0, 0, 320, 400});
    FList->SetName("List");
    FList->SetParent(this);
    FList->SetAlign(alClient);
    FList->OnDblClick = FShow->OnExecute;
    SetActiveControl(FList);
    FShow->OnUpdate = TNotifyEvent::Of<&TChoiceForm::UpdateShow>(this);
    NewAction("acExit", LocaleStr(51085), TNotifyEvent::Of<&TChoiceForm::Exit>(this), VK_ESCAPE);
}

void TChoiceForm::OpenList() {
    Populate();
    Open();
}

void TChoiceForm::Populate() {
    TStrings& lines = FList->Items();
    UpdateOnce(lines, [&] {
        lines.Clear();
        FillList(lines);
        FList->SetItemIndex(0);
    });
}

void TChoiceForm::GoToSelected(TObject* sender) {
    RunCommand(sender, TNotifyEvent::Of<&TChoiceForm::ChooseCurrent>(this));
}

void TChoiceForm::ChooseCurrent(TObject*) {
    if (FList->ItemIndex() >= 0) Choose(FList->ItemIndex());
}

} // namespace tarn
