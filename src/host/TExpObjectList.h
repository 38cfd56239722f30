#pragma once

#include "TCustomExpert.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A live expert under its registered name. The record does not own the expert; the reference is
/// null once it is gone, as after a constructor that fails when it has listed its object.
struct TExpObjectInfo {
    TWeak<TCustomExpert> Expert;
    std::string Name;
};

/// The live experts in the order of their creation. The list owns its records, not the experts;
/// an index outside it raises EListError.
class TExpObjectList {
public:
    int Count() const { return static_cast<int>(FItems.size()); }
    int Add(TCustomExpert* expert, std::string_view name); ///< the index of the new entry
    const TExpObjectInfo& Get(int index) const;
    void Delete(int index);
    /// The first entry of exactly that name, -1 when there is none.
    int IndexOf(std::string_view name) const;
    /// The first entry of that object, -1 when there is none.
    int IndexOf(const TCustomExpert* expert) const;
    void Clear() { FItems.clear(); }

private:
    std::vector<TExpObjectInfo> FItems;
};

} // namespace tarn
