#pragma once

#include "rtl/TStream.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// A stream over a piece of memory that it does not own. Positions are not checked: before the
/// start and behind the end nothing is read.
class TCustomMemoryStream : public TStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::int64_t Read(void* buffer, std::int64_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override {
        return FPosition = SeekTarget(offset, origin, FPosition, FSize);
    }
    std::int64_t Size() override { return FSize; }

    void* Memory() const { return FMemory; }
    std::string_view Text() const {
        return {static_cast<const char*>(FMemory), static_cast<std::size_t>(FSize)};
    }
    /// Points the stream at memory that stays the caller's and must outlive its use; the position
    /// stays. Raises EStreamError for a negative size, or one without memory.
    void SetPointer(void* memory, std::int64_t size);

    /// Writes all the bytes, whatever the position.
    void SaveToStream(TStream& stream) const;
    void SaveToFile(std::string_view fileName) const;

protected:
    char* Bytes() const { return static_cast<char*>(FMemory); }

    void* FMemory = nullptr;
    std::int64_t FSize = 0;
    std::int64_t FPosition = 0;
};

/// Bytes that stay the caller's, as a stream that cannot be written to.
class TBytesStream final : public TCustomMemoryStream {
public:
    explicit TBytesStream(std::string_view bytes) {
        // The stream asks for memory to write to, and never does.
        SetPointer(const_cast<char*>(bytes.data()), static_cast<std::int64_t>(bytes.size()));
    }
    std::int64_t Write(const void*, std::int64_t) override { return 0; }
};

/// A stream in memory that grows as it is written. Bytes that its growth adds hold anything, those
/// that a write leaves out behind the old end are 0.
///
/// Pointed at foreign memory, it neither frees nor reallocates that: it writes into it, and what
/// does not fit it any more moves, with all the rest, to a block of the stream's own. Its former
/// own block stays as it is until then, so that the stream can be pointed back at it.
class TMemoryStream : public TCustomMemoryStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TMemoryStream() = default;
    ~TMemoryStream() override;

    /// A write before the start writes nothing. Raises EOutOfMemory.
    std::int64_t Write(const void* buffer, std::int64_t count) override;
    /// A position behind the new end moves there. Raises EOutOfMemory, EStreamError below 0.
    void SetSize(std::int64_t newSize) override;
    void Clear();

    /// Replaces the contents by the whole of another stream; the position stays where it can.
    void LoadFromStream(TStream& stream);
    void LoadFromFile(std::string_view fileName);

    std::int64_t Capacity() const { return FCapacity; } ///< bytes of the stream's own block

protected:
    /// Gives the stream's own block another size: rounds `newCapacity` up as the class does,
    /// returns the block, null for none, and leaves it as it was when it raises. A class whose
    /// blocks are not from the general allocator calls Clear in its destructor.
    virtual void* Realloc(std::int64_t& newCapacity);

    /// Realloc over the general allocator with steps of `step` bytes.
    void* ReallocInSteps(std::int64_t& newCapacity, std::int64_t step);
    /// The capacity rounded up to whole steps. Raises EOutOfMemory when no memory holds it.
    static std::int64_t RoundCapacity(std::int64_t capacity, std::int64_t step);
    void* Block() const { return FBlock; } ///< the stream's own

private:
    void SetCapacity(std::int64_t newCapacity);

    void* FBlock = nullptr;
    std::int64_t FCapacity = 0;
};

/// A stream over a string of its own.
class TStringStream : public TStream {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TStringStream() = default;
    explicit TStringStream(std::string_view text) : FText(text) {}

    /// Positions are not checked: before the start and behind the end nothing is read.
    std::int64_t Read(void* buffer, std::int64_t count) override;
    /// Writes over what is there and behind it; bytes left out behind the old end are 0. A write
    /// before the start writes nothing. Raises EOutOfMemory.
    std::int64_t Write(const void* buffer, std::int64_t count) override;
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override {
        return FPosition = SeekTarget(offset, origin, FPosition, Size());
    }
    std::int64_t Size() override { return static_cast<std::int64_t>(FText.size()); }
    /// A position behind the new end moves there. Raises EOutOfMemory, EStreamError below 0.
    void SetSize(std::int64_t newSize) override;

    const std::string& DataString() const { return FText; }
    /// The next bytes, as many as there are up to `count`.
    std::string ReadString(std::int64_t count);
    void WriteString(std::string_view text) { WriteText(text); }

private:
    void Resize(std::int64_t size);

    std::string FText;
    std::int64_t FPosition = 0;
};

} // namespace tarn
