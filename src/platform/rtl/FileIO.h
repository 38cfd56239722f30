#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// The system's handle of an open file.
using THandle = int;

/// The handle of no file.
inline constexpr THandle NoHandle = -1;

/// How a file is opened: one of the first five, with a share flag if one likes.
enum TFileMode : std::uint16_t {
    fmOpenRead = 0,
    fmOpenWrite = 1,
    fmOpenReadWrite = 2,
    fmAppend = 3,      ///< makes the file when it is missing; what is written goes to its end
    fmCreate = 0xFF00, ///< makes the file, or empties it; for reading and writing

    // What others may do with the file meanwhile. The system has no such locks: taken, not kept.
    fmShareCompat = 0,
    fmShareExclusive = 0x10,
    fmShareDenyWrite = 0x20,
    fmShareDenyRead = 0x30,
    fmShareDenyNone = 0x40
};
constexpr TFileMode operator|(TFileMode mode, TFileMode share) {
    return static_cast<TFileMode>(std::uint16_t{mode} | std::uint16_t{share});
}

// The system's calls, repeated when a signal has interrupted them. A failure is -1, the reason in
// errno.
THandle FileOpen(std::string_view name, TFileMode mode);
/// Bytes read, which may be fewer than asked for; 0 at the end.
std::int64_t FileRead(THandle handle, void* buffer, std::int64_t count);
/// Bytes written: all of them, or what could be written before the failure.
std::int64_t FileWrite(THandle handle, const void* buffer, std::int64_t count);

/// Whether the open file is the one of that name.
bool SameFile(THandle handle, std::string_view name);

/// Closes a handle when it goes; NoHandle is none.
class TOwnedHandle {
public:
    explicit TOwnedHandle(THandle handle = NoHandle) : FHandle(handle) {}
    TOwnedHandle(const TOwnedHandle&) = delete;
    TOwnedHandle& operator=(const TOwnedHandle&) = delete;
    ~TOwnedHandle() { Reset(NoHandle); }

    THandle Get() const { return FHandle; }
    void Reset(THandle handle);

private:
    THandle FHandle;
};

/// An open file. Every operation raises EInOutError naming the file and the reason.
class TFile {
public:
    TFile(std::string_view name, TFileMode mode);
    TFile(const TFile&) = delete;
    TFile& operator=(const TFile&) = delete;
    /// Closes the file; an error of that is lost, see Close.
    ~TFile();

    THandle Handle() const { return FHandle; }
    std::uint64_t Size() const; ///< bytes
    std::string ReadAll();
    /// Hands the data to the system in one call, so that what another process appends to the file
    /// at the same time does not get into it.
    void Write(std::string_view data);
    void Clear(); ///< makes the file empty
    void Close();

private:
    [[noreturn]] void Fail(std::string_view what) const;

    std::string FName;
    THandle FHandle;
};

/// The size in bytes of an open file. Raises EInOutError.
std::uint64_t HandleSize(THandle handle);

/// Raises EInOutError "cannot WHAT: reason" with the reason of the system's last error.
[[noreturn]] void RaiseLastInOutError(std::string_view what);

} // namespace tarn
