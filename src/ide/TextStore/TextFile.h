#pragma once

#include "TextStore/TGapBuffer.h"
#include "TextStore/TTextPos.h"
#include "rtl/SafeFile.h"

namespace tarn {

struct TFileContents {
    TGapBuffer<char> Bytes; // in one piece
    TFileIdentity Identity;
};

/// Reads a whole file of at most `limit` bytes.
/// Raises EFileError, of every kind but feChangedOnDisk.
TFileContents LoadFile(std::string_view path, std::size_t limit = MaxTextSize);

} // namespace tarn
