#pragma once

#include "ota/ToolsAPI.h"

#include <functional>
#include <vector>

namespace tarn {

/// A package of add-ins as the IDE sees it. Each function may be empty.
struct TIdePackage {
    std::function<void()> Initialize; ///< the start of its units
    std::function<void()> Register;   ///< hands its wizards to the IDE
    std::function<void()> Finalize;   ///< the end of its units
};

/// The packages that are loaded, and the wizards that they have registered.
class TPackages {
public:
    TPackages() = default;
    TPackages(const TPackages&) = delete;
    TPackages& operator=(const TPackages&) = delete;
    ~TPackages() { UnloadAll(); }

    /// Initializes the package and lets it register. What it raises goes to the application's
    /// handler; then its wizards are released, it is finalized if it was initialized, and the
    /// result is false.
    bool Load(TIdePackage package);
    /// Releases the wizards of the package loaded last, newest first, each after its Destroyed, and
    /// finalizes it. An error goes to the application's handler and the rest still runs. Does
    /// nothing without a package.
    void Unload();
    void UnloadAll();
    int Count() const { return static_cast<int>(FPackages.size()); }

    /// The index of the wizard, by which it can be removed.
    int AddWizard(const TIntf<IOTAWizard>& wizard);
    /// Raises EListError for an index that no wizard has.
    void RemoveWizard(int index);
    /// The wizard of an index; null when it was removed. Raises EListError outside the list.
    TIntf<IOTAWizard> Wizard(int index) const;
    int WizardCount() const { return static_cast<int>(FWizards.size()); }

private:
    struct TLoaded {
        TIdePackage Package;
        std::size_t FirstWizard;
    };

    void ReleaseWizards(std::size_t first);

    std::vector<TLoaded> FPackages;
    std::vector<TIntf<IOTAWizard>> FWizards; ///< null where one was removed
};

} // namespace tarn
