#pragma once

// The settings tree: objects, items and collections that the settings file stores and the settings
// editor shows.
#include "TSpcObject.h"
