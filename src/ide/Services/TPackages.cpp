#include "Services/TPackages.h"

#include "rtl/SysUtils.h"

namespace tarn {
namespace {

/// Runs one step of a package; false when it failed, which the application has been told.
template <class F> bool Try(F&& step) {
    try {
        step();
        return true;
    } catch (...) {
        Application()->HandleException(Application());
        return false;
    }
}

void Call(const std::function<void()>& function) {
    if (function) function();
}

} // namespace

bool TPackages::Load(TIdePackage package) {
    if (!Try([&] { Call(package.Initialize); })) return false;
    FPackages.push_back({std::move(package), FWizards.size()});
    // A copy: Register may run for long and load packages itself.
    const std::function<void()> registerPackage = FPackages.back().Package.Register;
    if (Try([&] { Call(registerPackage); })) return true;
    Unload();
    return false;
}

void TPackages::Unload() {
    if (FPackages.empty()) return;
    const TLoaded loaded = std::move(FPackages.back());
    FPackages.pop_back();
    ReleaseWizards(loaded.FirstWizard);
    Try([&] { Call(loaded.Package.Finalize); });
}

void TPackages::UnloadAll() {
    while (!FPackages.empty()) Unload();
    ReleaseWizards(0);
}

int TPackages::AddWizard(const TIntf<IOTAWizard>& wizard) {
    if (!wizard) throw EInvalidOperation("there is no wizard to register");
    FWizards.push_back(wizard);
    return WizardCount() - 1;
}

TIntf<IOTAWizard> TPackages::Wizard(int index) const {
    if (index < 0 || index >= WizardCount()) throw EListError(Format(SListIndexError, {index}));
    return FWizards[static_cast<std::size_t>(index)];
}

void TPackages::RemoveWizard(int index) {
    const TIntf<IOTAWizard> wizard = Wizard(index);
    if (!wizard) throw EListError(Format(SListIndexError, {index}));
    // The others keep their indexes.
    FWizards[static_cast<std::size_t>(index)] = nullptr;
    wizard->Destroyed();
}

void TPackages::ReleaseWizards(std::size_t first) {
    while (FWizards.size() > first) {
        const TIntf<IOTAWizard> wizard = std::move(FWizards.back());
        FWizards.pop_back();
        if (wizard) Try([&] { wizard->Destroyed(); });
    }
}

} // namespace tarn
