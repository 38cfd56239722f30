#include "cpuview/qsCPUView.h"

#include "cpuview/TCPUForm.h"
#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {
namespace {

constexpr TPropInfo CPUFormMngProps[] = {
    Published<&TCPUFormMng::ReadLineCount>("ReadLineCount", {.Default = 10}),
    Published<&TCPUFormMng::ViewObject>("ViewObject", {.Default = qsDisasmView}),
};

} // namespace

constinit const TClassRecord TCPUFormMng::ClassRecord{"TCPUFormMng", &TSharedManager::ClassRecord,
                                                      CreateObject<TCPUFormMng>, CPUFormMngProps};

TCPUFormMng::TCPUFormMng() {
    const std::string captions =
        Format("[TCPUFormMng]\r\nReadLineCount=%s\r\nViewObject=%s\r\n"
               "[TCPUViewType]\r\nqsDisasmView=%s\r\nqsRegView=%s\r\nqsFlagsView=%s\r\n"
               "qsDumpView=%s\r\nqsStackView=%s\r\nqsAllViews=%s",
               {LocaleStr(51224), LocaleStr(51225), LocaleStr(51226), LocaleStr(51227),
                LocaleStr(51228), LocaleStr(51229), LocaleStr(51235), LocaleStr(51236)});
    AddStoredData(this, "CPUViewData", LocaleStr(51129), captions);
}

TCPUFormMng::~TCPUFormMng() {
    delete FForm.Get();
}

void TCPUFormMng::Init(TGetItemData getItemData) {
    ExpMenuItems().clear();
    TExpMenuItemData* const data = getItemData("ViewCPUItem");
    ExpMenuItems().emplace_back(data);
    data->Caption = LocaleStr(51042);
    data->ShortCutText = "Ctrl+W";
    data->OnExecute = TNotifyEvent::Of<&TCPUFormMng::ShowCPU>(this);
    data->OnUpdate = TNotifyEvent::Of<&TCPUFormMng::UpdateMenuState>(this);
}

void TCPUFormMng::Load(bool) {
    if (FForm) FForm->SetProperties();
}

void TCPUFormMng::ShowCPU(TObject*) {
    if (!FForm) FForm = new TCPUForm(nullptr, this);
    FForm->Open();
}

TCPUForm* TCPUFormMng::Form() const {
    return FForm.Get();
}

void TCPUFormMng::UpdateMenuState(TObject* sender) {
    EnableCommand(sender, FindCPUForm() != nullptr);
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeCPUView() {
    if (Counter().Enter()) RegisterExpClass(TExpertClass::Of<TCPUFormMng>(), 3, "CPUView", 51129);
}

void FinalizeCPUView() {
    Counter().Leave();
}

} // namespace tarn
