#pragma once

#include "TControlInfo.h"
#include "TLoadJournal.h"

#include <memory>
#include <vector>

namespace tarn {

/// What properties held before they were written, to be put back when a later one fails.
class TRowJournal {
public:
    /// Keeps the value of a row's property; of an object that it holds, a copy.
    void Keep(const TControlInfo& info);
    /// Puts all values back, the newest first. What a setter raises is passed over: the others are
    /// put back all the same.
    void Restore() noexcept;

private:
    struct TObjectCopy {
        TPersistent* Object;
        std::unique_ptr<TPersistent> Copy;
    };
    std::vector<std::unique_ptr<TPropChange>> FProps;
    std::vector<TObjectCopy> FObjects;
};

} // namespace tarn
