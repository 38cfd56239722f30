#pragma once

/// Containers and streams: INI documents and lists of named lines or identified objects, streams
/// in the memory of a heap and over mapped files, and the reading of a stream string by string.

#include "THeapStream.h"
#include "TIdentList.h"
#include "TIniStrings.h"
#include "TMappedFileStream.h"
#include "TNamedStrings.h"
#include "TStringReader.h"
