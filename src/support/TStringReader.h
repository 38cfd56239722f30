#pragma once

#include "rtl/TStream.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TMappedFileStream;

/// Reads a stream forward through a buffer. The stream's own position runs ahead of the reading
/// position, until FlushBuffer; nobody else may move it until then.
class TSimpleReader {
public:
    /// Begins at the stream's position. The stream stays the caller's and must outlive the reader.
    /// \param bufferSize bytes; raises EStreamError below 1
    TSimpleReader(TStream& source, std::int64_t bufferSize);

    /// Reads at most `count` bytes and returns how many: fewer at the end, and never more than the
    /// buffer holds.
    std::int64_t Read(void* buffer, std::int64_t count);
    /// Fills the buffer behind the last `keep` of its unread bytes, no more than there are, which
    /// go to its front; those before them are passed over. Returns the bytes now held.
    std::int64_t ReadBuffer(std::int64_t keep);

    std::int64_t Position() const { return FPosition; } ///< the reading position
    /// Touches the source only when it leaves the bytes of the buffer.
    void SetPosition(std::int64_t position);
    /// Puts the source at the reading position and empties the buffer.
    void FlushBuffer();

    /// What the buffer holds unread; valid until the next call.
    std::string_view Unread() const {
        return {FBuffer.data() + FIndex, static_cast<std::size_t>(FCount - FIndex)};
    }
    /// Passes over that many of the unread bytes.
    void Skip(std::int64_t count) {
        FIndex += count;
        FPosition += count;
    }

private:
    TStream& FSource;
    std::vector<char> FBuffer;
    std::int64_t FIndex = 0;
    std::int64_t FCount = 0;
    std::int64_t FPosition;
};

/// Splits a stream into the strings between its delimiters, from the stream's position on.
class TStringReader {
public:
    TStringReader();
    TStringReader(const TStringReader&) = delete;
    TStringReader& operator=(const TStringReader&) = delete;
    ~TStringReader();

    /// Reads up to the next delimiter, which is passed over and no part of `text`, or to the end.
    /// False, and an empty text, when there was nothing left to read or there is no target.
    ///
    /// After it the target stands behind the delimiter, or somewhere ahead when it is read through
    /// a buffer, see Synchronize. What the target raises goes out; `text` is what was read before.
    bool ReadString(std::string& text);

    const std::string& StringDelimiter() const { return FDelimiter; }
    /// CR LF unless told. An empty one never matches: the whole rest is one string.
    void SetStringDelimiter(std::string_view delimiter);

    /// Reads a file, which is mapped into memory and needs no buffer. An empty file has no strings.
    /// Raises EMFStreamError for a missing file, EOSError; the former target then stays.
    void SetTargetFile(std::string_view fileName);
    const std::string& TargetFile() const { return FTargetFile; } ///< empty for another stream
    /// Reads a stream, which stays the caller's and must outlive its use; null is none.
    void SetTargetStream(TStream* stream);
    TStream* TargetStream() const { return FTarget; }
    /// Reads the target from where it stands, a stream with a new buffer when Buffered is set.
    void SetReader();
    /// Puts a target that is read through a buffer at the reading position. Called before anybody
    /// else uses it. A file stands there anyway, wherever it was moved; what was read ahead of it
    /// is read anew, and so seen as it is then.
    void Synchronize();

    std::int64_t BufferSize = 4096; ///< bytes, of the next buffer
    bool Buffered = true;           ///< whether the next target is read through a buffer

private:
    std::unique_ptr<TSimpleReader> MakeReader(TStream* source, bool ownFile) const;
    bool ReadFromFile(std::string& text);
    bool ReadFromBuffer(std::string& text);
    template <class R> bool ReadChunks(R& source, std::string& text);
    std::size_t AppendUpToDelimiter(std::string& text, std::string_view chunk) const;
    std::size_t AppendUpToLongDelimiter(std::string& text, std::string_view chunk,
                                        std::size_t& matched) const;

    std::string FDelimiter = "\r\n";
    /// Of a delimiter longer than a chunk, else empty: for each of its beginnings the length of the
    /// longest shorter one that it ends with.
    std::vector<std::size_t> FBorders;
    std::unique_ptr<TMappedFileStream> FFile; ///< the target when it is the reader's own
    TStream* FTarget = nullptr;
    std::string FTargetFile;
    std::unique_ptr<TSimpleReader> FReader;
};

} // namespace tarn
