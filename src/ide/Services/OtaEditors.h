#pragma once

#include "ota/ToolsAPI.h"

namespace tarn {

class TEditWindow;
class TSourceBuffer;
class TSourceView;

// The Open Tools API's views of the source editor's objects.
TIntf<IOTAEditBuffer> MakeEditBufferInterface(TSourceBuffer& buffer);
TIntf<IOTAEditView> MakeEditViewInterface(TSourceView& view);
TIntf<IOTAKeyContext> MakeKeyContext(TSourceBuffer& buffer);

} // namespace tarn
