#pragma once

#include "Modules/TFileEditor.h"

namespace tarn {

/// The editor of a project's resource file, which is only known by its name.
class TResourceEditor : public TFileEditor {
public:
    using TFileEditor::TFileEditor;

    void Show() override {} // there is nothing to see of it
    TIntf<IOTAEditor> Interface() override;

private:
    TIntf<IOTAProjectResource> FInterface;
};

} // namespace tarn
