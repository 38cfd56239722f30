#pragma once

#include "rtl/FileIO.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tarn {

/// A memory area with a name that all processes of the user know, or with none for this process
/// alone. Whoever opens it first makes it, full of zeros; others join it as it is. It goes with its
/// last user.
///
/// Each user holds a shared lock on it: who gets the exclusive lock is alone. That holds also when
/// users die without closing: then the name outlives them, and the next one to open it, being
/// alone, makes it new. A child process that inherits the object is no user of its own.
class TNamedArea {
public:
    /// \param size of a new area, bytes. Raises EOSError.
    TNamedArea(std::string_view name, std::int64_t size);
    TNamedArea(const TNamedArea&) = delete;
    TNamedArea& operator=(const TNamedArea&) = delete;
    ~TNamedArea();

    THandle Handle() const { return FHandle; }

private:
    void Open(std::string_view name, std::int64_t size);
    bool TryJoin(std::int64_t size);
    void Close() noexcept;
    [[noreturn]] void Fail(std::string_view what);

    std::string FName;     ///< as errors call it
    std::string FPathName; ///< as the system calls it; empty without a name
    THandle FHandle = NoHandle;
    pid_t FProcess;
};

} // namespace tarn
