#include "Modules/TResourceEditor.h"

#include "Services/OtaModules.h"

namespace tarn {

TIntf<IOTAEditor> TResourceEditor::Interface() {
    if (!FInterface) FInterface = MakeProjectResourceInterface(*this);
    return FInterface;
}

} // namespace tarn
