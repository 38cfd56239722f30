#include "preview/qsViewForm.h"

#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TViewFormMng::ClassRecord{"TViewFormMng", &TCustomExpert::ClassRecord,
                                                       CreateObject<TViewFormMng>};

TViewFormMng::TViewFormMng() {
    AddStoredData(this, "FormUnitViewData", LocaleStr(51128), "[TViewFormMng]");
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeViewForm() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TViewFormMng>(), 1, "FormUnitView", 51128);
}

void FinalizeViewForm() {
    Counter().Leave();
}

} // namespace tarn
