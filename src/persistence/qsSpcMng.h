#pragma once

// The settings tree: objects, items and collections that the settings file stores and the settings
// editor shows; and the settings files.
#include "SettingsFiles.h"
#include "TFitReader.h"
#include "TFitWriter.h"
#include "TObjectSaver.h"
#include "TSpcCollection.h"
#include "TSpcObject.h"
#include "VerInfo.h"
