#pragma once

#include "rtl/FileIO.h"

#include <cstdint>
#include <string>

namespace tarn {

enum TMapAccess : std::uint8_t { maReadOnly, maReadWrite };

/// What is to be mapped.
struct TMapFile {
    THandle Handle;           ///< must allow the access; may be closed once the mapping is made
    std::string Name;         ///< what errors call the file
    std::int64_t MaximumSize; ///< bytes to map; 0 is the file as it is. A shorter file grows
    TMapAccess Access;
};
struct TMapArea {
    std::string Name;  ///< of an area that all the user's processes share; empty for one of its own
    std::int64_t Size; ///< of a new area, bytes, above 0
    TMapAccess Access;
};

/// A file or a memory area mapped into memory, and the view of all of it, until the object goes.
/// Offsets and counts count bytes and must lie within the size.
class TSystemMapping {
public:
    TSystemMapping() = default;
    TSystemMapping(const TSystemMapping&) = delete;
    TSystemMapping& operator=(const TSystemMapping&) = delete;
    virtual ~TSystemMapping() = default;

    /// The bytes that can be read: no more than were mapped, and than a file had then.
    virtual std::int64_t Size() const = 0;

    /// Copy bytes out of the view and into it. Raise EOSError, naming file and offset, when the
    /// system does not have them any more: another process has shortened the file, or the disk is
    /// full. A failed write may have changed the bytes before.
    virtual void Read(std::int64_t offset, void* buffer, std::int64_t count) const = 0;
    virtual void Write(std::int64_t offset, const void* buffer, std::int64_t count) = 0;

    /// Waits until the changes are on the disk. Raises EOSError.
    virtual void Flush() = 0;
};

} // namespace tarn
