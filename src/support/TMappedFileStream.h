#pragma once

#include "os/TSystemMapping.h"
#include "rtl/TStream.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

struct TMFStreamErrorTag {
    static constexpr std::string_view Name = "EMFStreamError";
};
/// A size that a mapped stream cannot have. The text is that of the current language.
using EMFStreamError = TNamedException<TMFStreamErrorTag, EStreamError>;

/// A stream over a file or a named memory area that is mapped into memory. Its size is fixed by the
/// mapping: nothing is read or written outside, and nothing at all while it is not mapped.
///
/// What the operating system refuses raises EOSError. So does reading and writing bytes of a file
/// that another process has shortened meanwhile.
class TMappedFileStream final : public TStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Over an open file, which stays the caller's.
    /// \param mapped whether it is mapped at once
    /// \param maximumSize bytes to map; a shorter file grows to it. 0 is the file as it is.
    /// Raises EMFStreamError for a size below 0, or above 0 when it is read only; EOSError for what
    /// is no open file, once it is mapped.
    TMappedFileStream(THandle handle, bool mapped, std::int64_t maximumSize, bool readOnly);
    /// Opens the file, or makes it when it is missing, and closes it at the end.
    /// Raises EMFStreamError like the other, and for a missing file that is read only or without a
    /// size above 0.
    TMappedFileStream(std::string_view fileName, bool mapped, std::int64_t maximumSize,
                      bool readOnly);
    /// A memory area without a file, which all processes of the user share by its name; without a
    /// name it is this process's alone. It goes with the last mapping of it.
    /// \param maximumSize its size, bytes
    /// Raises EMFStreamError for a size below 1.
    static std::unique_ptr<TMappedFileStream> CreateSys(std::string_view name, bool mapped,
                                                        std::int64_t maximumSize, bool readOnly);

    bool Mapped() const { return FMapping != nullptr; }
    /// Maps the file or area, or ends that. The position stays.
    void SetMapped(bool mapped);

    std::int64_t Read(void* buffer, std::int64_t count) override;
    /// Writes nothing when the stream is read only.
    std::int64_t Write(const void* buffer, std::int64_t count) override;
    /// Does not check the position. Raises EStreamError when 64 bits do not hold it.
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override {
        return FPosition = SeekTarget(offset, origin, FPosition, FSize);
    }
    std::int64_t Size() override { return FSize; } ///< what is mapped

    /// Write all the mapped bytes, whatever the position, which stays.
    void SaveToStream(TStream& target) const;
    /// Raises EFCreateError, also for the mapped file itself.
    void SaveToFile(std::string_view fileName) const;
    /// Waits until the changes are on the disk, when mapped.
    void FlushView();

    THandle Handle() const { return FHandle; } ///< of the file; NoHandle for an area
    bool ReadOnly() const { return FReadOnly; }
    std::int64_t MaximumSize() const { return FMaximumSize; }

private:
    struct TSystemArea {};
    TMappedFileStream(TSystemArea, std::string_view name, std::int64_t maximumSize, bool readOnly)
        : FName(name), FMaximumSize(maximumSize), FReadOnly(readOnly), FIsArea(true) {}

    void RequireSize() const;
    std::unique_ptr<TSystemMapping> CreateMapping() const;
    /// How many of `count` bytes the mapping has from the position on.
    std::int64_t Available(std::int64_t count) const;

    TOwnedHandle FOwnHandle; ///< when the stream has opened the file
    THandle FHandle = NoHandle;
    std::string FName; ///< of the file, as errors call it, or of the area
    std::unique_ptr<TSystemMapping> FMapping;
    std::int64_t FPosition = 0;
    std::int64_t FSize = 0;
    std::int64_t FMaximumSize;
    bool FReadOnly;
    bool FIsArea = false;
};

} // namespace tarn
