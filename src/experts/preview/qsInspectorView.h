#pragma once

#include "TCustomExpert.h"

namespace tarn {

/// The form selector on the Object Inspector.
class TInspectorViewMng : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TInspectorViewMng();
};

// Initialization and finalization of the unit, counted.
void InitializeInspectorView();
void FinalizeInspectorView();

} // namespace tarn
