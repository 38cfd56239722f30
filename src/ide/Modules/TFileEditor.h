#pragma once

#include "ota/ToolsAPI.h"

namespace tarn {

class TIdeModule;

/// One file of an open module. The module owns its editors.
class TFileEditor : public TPersistent {
public:
    TFileEditor(TIdeModule& module, std::string_view fileName)
        : FModule(&module), FFileName(fileName) {}

    TIdeModule& Module() const { return *FModule; }
    /// Gives the editor to another module, which owns it from now on.
    void SetModule(TIdeModule& module) { FModule = &module; }
    const std::string& FileName() const { return FFileName; }
    virtual void SetFileName(std::string_view value) { FFileName = value; }

    virtual bool Modified() const { return false; }
    virtual void Show() = 0; ///< brings the editor to the front
    /// The Open Tools API's view of the editor, the same one each time.
    virtual TIntf<IOTAEditor> Interface() = 0;

private:
    TIdeModule* FModule;
    std::string FFileName;
};

} // namespace tarn
