#pragma once

namespace tarn {

/// The texts of object storage.
enum TObjectStorageStr : int {
    strLoadQuestion = 50535,
    strNoLabel = 50580,
    strNoObject = 50585,
    strBinExt = 65524 ///< the extensions of the formats follow in their order
};

} // namespace tarn
