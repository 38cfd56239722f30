#pragma once

#include "TCustomExpert.h"
#include "rtl/SysUtils.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn {

struct TExpMngErrorTag {
    static constexpr std::string_view Name = "EExpMngError";
};
/// A refused registration of an expert class.
using EExpMngError = TNamedException<TExpMngErrorTag>;

/// The registry has slots 1 to 100; the slot is an expert's group and its place in the order of
/// creation.
inline constexpr int ExpertSlotCount = 100;

struct TExpertSlot {
    TExpertClass ExpClass;
    std::string Name;   ///< unique, compared exactly
    int CaptionId = -1; ///< string id of the displayed name; -1 displays Name itself

    std::string Caption() const;
};

/// Enters an expert class. Called from the experts' initialization only. Raises EExpMngError for a
/// slot outside 1..100, a slot that is taken, a class or a name that is registered.
void RegisterExpClass(TExpertClass expClass, int index, std::string_view name, int captionId);
/// The class in slot 1..100; null when the slot is free.
const TExpertSlot* ExpertSlot(int index);
/// Forgets all classes.
void FreeExpertRegistry();

} // namespace tarn
