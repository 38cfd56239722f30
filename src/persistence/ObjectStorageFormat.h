#pragma once

#include <cstdint>
#include <string>

namespace tarn {

/// The forms in which objects are stored, one after the other.
enum TObjectStorageFormat : std::uint8_t {
    osfBin,    ///< a component stream each
    osfResBin, ///< a component stream inside a resource each
    osfExtBin, ///< one signature, then each object's properties alone, without any names of objects
    osfText    ///< the text of a component stream each; a line of description before what is none
};

/// The extension of files in a format, its point included, in the current language.
std::string StorageFormatExt(TObjectStorageFormat format);

} // namespace tarn
