#include "cpuview/qsCPUView.h"

#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TCPUFormMng::ClassRecord{"TCPUFormMng", &TSharedManager::ClassRecord,
                                                      CreateObject<TCPUFormMng>};

TCPUFormMng::TCPUFormMng() {
    AddStoredData(this, "CPUViewData", LocaleStr(51129), "[TCPUFormMng]");
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
