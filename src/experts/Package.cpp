#include "Package.h"

#include "block/qsBlockMng.h"
#include "cpuview/qsCPUView.h"
#include "preview/qsInspectorView.h"
#include "preview/qsViewForm.h"
#include "qsExpMng.h"
#include "units/qsUnitMng.h"

#include <iterator>

namespace tarn {
namespace {

struct TPackageUnit {
    void (*Initialize)();
    void (*Finalize)();
};

/// The units of the package in the order of their initialization.
constexpr TPackageUnit Units[] = {
    {InitializeExpMng, FinalizeExpMng},
    {InitializeViewForm, FinalizeViewForm},
    {InitializeInspectorView, FinalizeInspectorView},
    {InitializeCPUView, FinalizeCPUView},
    {InitializeBlockMng, FinalizeBlockMng},
    {InitializeUnitMng, FinalizeUnitMng},
};

} // namespace

void InitializePackage() {
    const TPackageUnit* unit = std::begin(Units);
    try {
        for (; unit != std::end(Units); ++unit) unit->Initialize();
    } catch (...) {
        // The unit that failed has been counted as well.
        for (++unit; unit != std::begin(Units);) (--unit)->Finalize();
        throw;
    }
}

void FinalizePackage() {
    for (const TPackageUnit* unit = std::end(Units); unit != std::begin(Units);)
        (--unit)->Finalize();
}

} // namespace tarn
