#pragma once

namespace tarn {

/// Initializes the units of the package in their order: the manager's unit, then each expert's,
/// which registers its class. An error in between undoes what was done and passes on.
void InitializePackage();
/// Finalizes the units in reverse order.
void FinalizePackage();

} // namespace tarn
