#pragma once

namespace tarn {

/// The texts of the settings tree.
enum TSpcStr : int {
    strPropertyNotFound = 50536,
    strNoInitData = 51500,
    strNoSpcObject = 51501,
    strNoSpcFile = 51502,
    strUnknownSpcFormat = 51503,
    strBadVersion = 51504,
    strLaterEditor = 51505,
    strLaterPlatform = 51506
};

} // namespace tarn
