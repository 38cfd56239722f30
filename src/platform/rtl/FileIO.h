#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

/// The system's handle of an open file.
using THandle = int;

enum TFileMode : std::uint8_t {
    fmRead,
    fmCreate, ///< makes the file, or empties it
    fmAppend  ///< makes the file when it is missing; whatever is written goes to its end
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
