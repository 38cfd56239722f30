#pragma once

#include "qsExpShrForm.h"

namespace tarn {

/// The manager of the units that are open in the editor.
class TUnitManager : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TUnitManager();
};

// Initialization and finalization of the unit, counted.
void InitializeUnitMng();
void FinalizeUnitMng();

} // namespace tarn
