#pragma once

#include "rtl/FileIO.h"
#include "rtl/SysUtils.h"
#include "rtl/TObject.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

struct TStreamErrorTag {
    static constexpr std::string_view Name = "EStreamError";
};
struct TReadErrorTag {
    static constexpr std::string_view Name = "EReadError";
};
struct TWriteErrorTag {
    static constexpr std::string_view Name = "EWriteError";
};
struct TFCreateErrorTag {
    static constexpr std::string_view Name = "EFCreateError";
};
struct TFOpenErrorTag {
    static constexpr std::string_view Name = "EFOpenError";
};

/// An operation that a stream cannot do, a position or a size that no stream can have.
using EStreamError = TNamedException<TStreamErrorTag>;
/// Bytes that a stream does not have.
using EReadError = TNamedException<TReadErrorTag, EStreamError>;
/// Bytes that a stream does not take.
using EWriteError = TNamedException<TWriteErrorTag, EStreamError>;
/// A file that cannot be made.
using EFCreateError = TNamedException<TFCreateErrorTag, EStreamError>;
/// A file that cannot be opened.
using EFOpenError = TNamedException<TFOpenErrorTag, EStreamError>;

enum TSeekOrigin : std::uint8_t { soFromBeginning, soFromCurrent, soFromEnd };

/// A sequence of bytes with a position at which it is read and written. Positions, sizes and counts
/// are 64-bit and count bytes from 0.
class TStream : public TObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Reads at most `count` bytes and returns how many; 0 at the end.
    virtual std::int64_t Read(void* buffer, std::int64_t count) = 0;
    /// Writes at most `count` bytes and returns how many.
    virtual std::int64_t Write(const void* buffer, std::int64_t count) = 0;
    /// Moves the position and returns it.
    virtual std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) = 0;

    std::int64_t Position() { return Seek(0, soFromCurrent); }
    void SetPosition(std::int64_t position) { Seek(position, soFromBeginning); }
    /// Found by going to the end and back, unless a stream knows better.
    virtual std::int64_t Size();
    /// Raises EStreamError for a stream whose size is fixed.
    virtual void SetSize(std::int64_t newSize);

    /// Reads or writes all the bytes, by as many calls as it takes. Raise EReadError and
    /// EWriteError telling how many there were.
    void ReadBuffer(void* buffer, std::int64_t count);
    void WriteBuffer(const void* buffer, std::int64_t count);
    void WriteText(std::string_view text) {
        WriteBuffer(text.data(), static_cast<std::int64_t>(text.size()));
    }

    /// Copies `count` bytes from the source's position to this one's; count 0 is the whole source
    /// from its start. Returns the bytes copied. Raises EReadError, EWriteError.
    std::int64_t CopyFrom(TStream& source, std::int64_t count);

protected:
    /// The position that a seek leads to in a stream without checks of its own: it may be before
    /// the start and behind the end. Raises EStreamError when 64 bits do not hold it.
    static std::int64_t SeekTarget(std::int64_t offset, TSeekOrigin origin, std::int64_t position,
                                   std::int64_t size) {
        if (origin == soFromBeginning) return offset;
        return EndOf(origin == soFromCurrent ? position : size, offset);
    }
    /// The end of `count` bytes from a position on. Raises EStreamError when 64 bits do not hold
    /// it.
    static std::int64_t EndOf(std::int64_t position, std::int64_t count) {
        std::int64_t end = 0;
        if (__builtin_add_overflow(position, count, &end)) RaiseOutOfRange(position, count);
        return end;
    }

private:
    [[noreturn]] static void RaiseOutOfRange(std::int64_t position, std::int64_t count);
};

/// A stream over the system's handle of an open file, which is the caller's. What the system
/// refuses raises EReadError, EWriteError or, when it is no transfer, EStreamError.
class THandleStream : public TStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit THandleStream(THandle handle) : FHandle(handle) {}

    THandle Handle() const { return FHandle; }
    std::int64_t Read(void* buffer, std::int64_t count) override;
    std::int64_t Write(const void* buffer, std::int64_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
    /// Leaves the position at the new end.
    void SetSize(std::int64_t newSize) override;

protected:
    /// What an error calls the stream.
    virtual std::string Name() const;

private:
    THandle FHandle;
};

/// A stream over a file, which is open as long as the object lives.
class TFileStream : public THandleStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Raises EFCreateError (fmCreate) or EFOpenError, naming the file and the reason.
    TFileStream(std::string_view fileName, TFileMode mode);
    ~TFileStream() override;

    const std::string& FileName() const { return FFileName; }

protected:
    std::string Name() const override { return FFileName; }

private:
    std::string FFileName;
};

} // namespace tarn
