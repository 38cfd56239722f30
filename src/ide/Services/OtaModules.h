#pragma once

#include "ota/ToolsAPI.h"

namespace tarn {

class TFormEditor;
class TIdeModule;
class TProjectGroupModule;
class TProjectModule;
class TResourceEditor;

// The Open Tools API's views of modules and of their editors without text.
TIntf<IOTAModule> MakeModuleInterface(TIdeModule& module);
TIntf<IOTAModule> MakeProjectInterface(TProjectModule& project);
TIntf<IOTAModule> MakeProjectGroupInterface(TProjectGroupModule& group);
TIntf<IOTAFormEditor> MakeFormEditorInterface(TFormEditor& editor);
TIntf<IOTAProjectResource> MakeProjectResourceInterface(TResourceEditor& editor);

} // namespace tarn
