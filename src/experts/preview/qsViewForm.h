#pragma once

#include "TCustomExpert.h"

namespace tarn {

/// The preview of the forms and units of the project.
class TViewFormMng : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TViewFormMng();
};

// Initialization and finalization of the unit, counted.
void InitializeViewForm();
void FinalizeViewForm();

} // namespace tarn
