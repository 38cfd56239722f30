#include "ota/ToolsAPI.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

TIntf<IInterface>& Services() {
    static TIntf<IInterface> services;
    return services;
}

} // namespace

const TIntf<IInterface>& IDEServices() {
    return Services();
}

void SetIDEServices(TIntf<IInterface> services) {
    Services() = std::move(services);
}

void RegisterPackageWizard(const TIntf<IOTAWizard>& wizard) {
    const auto services = IDEService<IOTAWizardServices>();
    if (!services) throw EInvalidOperation("there is no IDE to register a wizard with");
    services->AddWizard(wizard);
}

} // namespace tarn
