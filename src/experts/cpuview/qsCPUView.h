#pragma once

#include "qsExpShrForm.h"

namespace tarn {

/// The capture of the text in the CPU window.
class TCPUFormMng : public TSharedManager {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TCPUFormMng();
};

// Initialization and finalization of the unit, counted.
void InitializeCPUView();
void FinalizeCPUView();

} // namespace tarn
