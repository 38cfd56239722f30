#pragma once

#include <cstdint>
#include <string>

namespace tarn {

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

} // namespace tarn
