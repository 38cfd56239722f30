#include "units/qsUnitMng.h"

#include "qsExpMng.h"
#include "qsLocale.h"

namespace tarn {

constinit const TClassRecord TUnitManager::ClassRecord{"TUnitManager", &TSharedManager::ClassRecord,
                                                       CreateObject<TUnitManager>};

TUnitManager::TUnitManager() {
    AddStoredData(this, "UnitManagerData", LocaleStr(51141), "[TUnitManager]");
}

namespace {

TUnitCounter& Counter() {
    static TUnitCounter counter;
    return counter;
}

} // namespace

void InitializeUnitMng() {
    if (Counter().Enter())
        RegisterExpClass(TExpertClass::Of<TUnitManager>(), 5, "UnitManager", 51141);
}

void FinalizeUnitMng() {
    Counter().Leave();
}

} // namespace tarn
