#pragma once

#include "rtl/TStream.h"

#include <concepts>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

/// Where an operation writes to or reads from: a stream, from its position on, or a file by its
/// name. Made where it is passed; the stream stays the caller's.
class TStreamOrFile {
public:
    TStreamOrFile(TStream& stream) : FStream(&stream) {}
    template <std::convertible_to<std::string_view> T>
    TStreamOrFile(const T& fileName) : FFileName(std::string_view(fileName)) {}

    /// Hands out the stream to write to. A file is replaced when all is written, so that it stays
    /// as it is when something fails. Raises EFileError, and what `write` raises.
    void Write(const std::function<void(TStream&)>& write) const;

    /// Hands out the stream to read from, which for a file ends with the call. What others may do
    /// meanwhile: read. Raises EFOpenError, and what `read` raises.
    template <class F> auto Read(F&& read) const {
        if (FStream) return read(*FStream);
        TFileStream file(FFileName, fmOpenRead | fmShareDenyWrite);
        return read(static_cast<TStream&>(file));
    }

private:
    TStream* FStream = nullptr; ///< null for a file
    std::string FFileName;
};

/// What is left of a stream, which is then at its end.
std::string ReadRest(TStream& stream);

} // namespace tarn
