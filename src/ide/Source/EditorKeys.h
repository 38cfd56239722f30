#pragma once

#include "vcl/ShortCuts.h"

namespace tarn {

class TSourceView;

/// What the source editor does with a key that nobody took before it: the cursor keys, with Shift
/// extending the block and with Alt and Shift a column block, and the keys that edit. They go by
/// characters and by where these are seen. False for a key that it does not know.
bool PressEditorKey(TSourceView& view, TShortCut key);

} // namespace tarn
