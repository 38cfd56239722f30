#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace tarn {

class TObject;

/// The process-wide values of the error log.
struct TErrorLogState {
    bool LogAllowed = false;
    std::uint32_t LogLimit = 50; ///< kilobytes; 0 is no limit

    // How far start-up and shut-down have got, for the log: the marks of the steps done, and the
    // names of the experts created or deleted, the newest first.
    std::string ConstructorTrace;
    std::string CreatedExperts;
    std::string DestructorTrace;
    std::string DeletedExperts;

    void ClearTraces() {
        ConstructorTrace.clear();
        CreatedExperts.clear();
        DestructorTrace.clear();
        DeletedExperts.clear();
    }
};

TErrorLogState& ErrorLog();

/// "ExpError.log", in the package's directory.
inline constexpr std::string_view ErrorLogName = "ExpError.log";

/// Hands the error to the log while that is allowed: to the slot of the manager, which
/// AppendLogEntry fills. Raises what that raises. \param sender where the error comes from; null
/// when that is not known
void WriteLogEntry(TObject* sender, const std::exception& error);

/// Appends an entry about the error to the log's file. The traces go with the first entry after
/// they were made: they are cleared even when the entry cannot be written. Raises EInOutError.
void AppendLogEntry(TObject* sender, const std::exception& error);

} // namespace tarn
