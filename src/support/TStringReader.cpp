#include "TStringReader.h"

#include "TMappedFileStream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string.h> // NOLINT(modernize-deprecated-headers): memmem is no part of cstring
#include <utility>

namespace tarn {

// --- TSimpleReader ----------------------------------------------------------------------------

TSimpleReader::TSimpleReader(TStream& source, std::int64_t bufferSize)
    : FSource(source), FPosition(source.Position()) {
    if (bufferSize < 1)
        throw EStreamError(Format("no buffer has a size of %d bytes", {bufferSize}));
    FBuffer.resize(static_cast<std::size_t>(bufferSize));
}

std::int64_t TSimpleReader::Read(void* buffer, std::int64_t count) {
    if (count <= 0) return 0;
    if (count > FCount - FIndex) count = std::min(count, ReadBuffer(FCount - FIndex));
    std::memcpy(buffer, FBuffer.data() + FIndex, static_cast<std::size_t>(count));
    Skip(count);
    return count;
}

std::int64_t TSimpleReader::ReadBuffer(std::int64_t keep) {
    keep = std::clamp<std::int64_t>(keep, 0, FCount - FIndex);
    Skip(FCount - FIndex - keep);
    std::memmove(FBuffer.data(), FBuffer.data() + FIndex, static_cast<std::size_t>(keep));
    FIndex = 0;
    FCount = keep;
    const auto size = static_cast<std::int64_t>(FBuffer.size());
    while (FCount < size) {
        const std::int64_t got = FSource.Read(FBuffer.data() + FCount, size - FCount);
        if (got <= 0) break;
        FCount += got;
    }
    return FCount;
}

void TSimpleReader::SetPosition(std::int64_t position) {
    const std::int64_t first = FPosition - FIndex;
    if (position >= first && position <= first + FCount) {
        Skip(position - FPosition);
        return;
    }
    FSource.SetPosition(position);
    FIndex = FCount = 0;
    FPosition = position;
}

void TSimpleReader::FlushBuffer() {
    FSource.SetPosition(FPosition);
    FIndex = FCount = 0;
}

// --- TStringReader ----------------------------------------------------------------------------

namespace {

/// How many bytes are read before the delimiter is looked for.
constexpr std::size_t ChunkLength = 100;

/// What is read of a mapped file at a time, bytes.
constexpr std::int64_t ReadAheadSize = 16384;

/// Moves a source back over what was read of it too much.
void StepBack(TSimpleReader& source, std::int64_t count) {
    source.SetPosition(source.Position() - count);
}

void StepBack(TStream& source, std::int64_t count) {
    source.Seek(-count, soFromCurrent);
}

constexpr std::size_t npos = std::string_view::npos;

/// The place of a delimiter of two characters. Most often its first one is there only where it is.
std::size_t FindPair(std::string_view text, const char* pair) {
    const char* at = text.data();
    const char* const last = at + text.size() - 1;
    while (at < last) {
        const auto rest = static_cast<std::size_t>(last - at);
        at = static_cast<const char*>(std::memchr(at, pair[0], rest));
        if (!at) return npos;
        if (at[1] == pair[1]) return static_cast<std::size_t>(at - text.data());
        ++at;
    }
    return npos;
}

/// The first place of the delimiter; npos when it is nowhere or empty. Takes linear time whatever
/// the texts, unlike the standard library's search.
std::size_t Find(std::string_view text, std::string_view delimiter) {
    if (text.empty() || delimiter.empty()) return npos;
    if (delimiter.size() == 2) return FindPair(text, delimiter.data());
    const void* const found =
        ::memmem(text.data(), text.size(), delimiter.data(), delimiter.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) : npos;
}

/// How many of the delimiter's first bytes stand at the end of a text once it has `next` behind
/// `matched` of them.
std::size_t ExtendMatch(std::string_view delimiter, const std::vector<std::size_t>& borders,
                        std::size_t matched, char next) {
    while (matched > 0 && delimiter[matched] != next) matched = borders[matched - 1];
    return delimiter[matched] == next ? matched + 1 : matched;
}

} // namespace

TStringReader::TStringReader() = default;
TStringReader::~TStringReader() = default;

bool TStringReader::ReadString(std::string& text) {
    if (FFile) return ReadFromFile(text);
    if (FReader) return ReadFromBuffer(text) || ReadChunks(*FReader, text);
    if (FTarget) return ReadChunks(*FTarget, text);
    text.clear();
    return false;
}

/// Reads ahead, since each read of a mapped file costs a guard against pages that are gone, but
/// leaves the file behind the delimiter as if it had not.
bool TStringReader::ReadFromFile(std::string& text) {
    struct TPutBack {
        TMappedFileStream& File;
        TSimpleReader& Reader;
        ~TPutBack() { File.Seek(Reader.Position(), soFromBeginning); }
    };
    // Somebody may have moved the file meanwhile.
    FReader->SetPosition(FFile->Seek(0, soFromCurrent));
    const TPutBack putBack{*FFile, *FReader};
    if (ReadFromBuffer(text)) return true;
    FFile->Seek(static_cast<std::int64_t>(FReader->Unread().size()), soFromCurrent);
    return ReadChunks(*FReader, text);
}

/// Takes a string that ends in a chunk of which the buffer has all, which ReadChunks would do with
/// the same result and more steps. False when there is none.
bool TStringReader::ReadFromBuffer(std::string& text) {
    const std::string_view unread = FReader->Unread();
    const std::size_t at =
        Find(unread.substr(0, unread.size() / ChunkLength * ChunkLength), FDelimiter);
    if (at == npos) return false;
    text.assign(unread.data(), at);
    FReader->Skip(static_cast<std::int64_t>(at + FDelimiter.size()));
    return true;
}

template <class R> bool TStringReader::ReadChunks(R& source, std::string& text) {
    text.clear();
    std::array<char, ChunkLength> chunk; // NOLINT(cppcoreguidelines-pro-type-member-init)
    std::int64_t got = 0;
    std::size_t matched = 0;
    while ((got = source.Read(chunk.data(), ChunkLength)) > 0) {
        const std::string_view read(chunk.data(), static_cast<std::size_t>(got));
        const std::size_t end = FBorders.empty() ? AppendUpToDelimiter(text, read)
                                                 : AppendUpToLongDelimiter(text, read, matched);
        if (end == npos) continue;
        if (end < read.size()) StepBack(source, static_cast<std::int64_t>(read.size() - end));
        return true;
    }
    return !text.empty();
}

/// Appends a chunk, or what stands in it before the delimiter. Returns where in the chunk the
/// delimiter ends; npos when it is not there yet.
std::size_t TStringReader::AppendUpToDelimiter(std::string& text, std::string_view chunk) const {
    if (text.empty()) {
        const std::size_t at = Find(chunk, FDelimiter);
        text.append(chunk.data(), std::min(at, chunk.size()));
        return at == npos ? npos : at + FDelimiter.size();
    }
    // The delimiter may begin in what was searched before.
    const std::size_t searched = text.size();
    const std::size_t from = searched - std::min(searched, FDelimiter.size() - 1);
    text.append(chunk);
    const std::size_t at = Find(std::string_view(text).substr(from), FDelimiter);
    if (at == npos) return npos;
    text.resize(from + at);
    return from + at + FDelimiter.size() - searched;
}

/// The same for a delimiter that would be looked for in many chunks again and again: takes each
/// byte once (Knuth, Morris and Pratt). `matched` of the delimiter's bytes stand at the end of the
/// text.
std::size_t TStringReader::AppendUpToLongDelimiter(std::string& text, std::string_view chunk,
                                                   std::size_t& matched) const {
    for (std::size_t i = 0; i < chunk.size(); ++i) {
        matched = ExtendMatch(FDelimiter, FBorders, matched, chunk[i]);
        if (matched < FDelimiter.size()) continue;
        text.append(chunk.substr(0, i + 1));
        text.resize(text.size() - FDelimiter.size());
        return i + 1;
    }
    text.append(chunk);
    return npos;
}

void TStringReader::SetStringDelimiter(std::string_view delimiter) {
    FDelimiter = delimiter;
    FBorders.clear();
    if (FDelimiter.size() <= ChunkLength) return;
    FBorders.resize(FDelimiter.size());
    for (std::size_t i = 1; i < FDelimiter.size(); ++i)
        FBorders[i] = ExtendMatch(FDelimiter, FBorders, FBorders[i - 1], FDelimiter[i]);
}

void TStringReader::SetTargetFile(std::string_view fileName) {
    auto file = std::make_unique<TMappedFileStream>(fileName, false, 0, true);
    // The system maps no empty file.
    if (HandleSize(file->Handle()) > 0) file->SetMapped(true);
    FTargetFile = fileName;
    FReader = MakeReader(file.get(), true);
    FFile = std::move(file);
    FTarget = FFile.get();
}

void TStringReader::SetTargetStream(TStream* stream) {
    // The reader comes first: what it refuses leaves everything as it was.
    const bool own = FFile && stream == FFile.get();
    FReader = MakeReader(stream, own);
    FTarget = stream;
    if (own) return;
    FFile.reset();
    FTargetFile.clear();
}

void TStringReader::SetReader() {
    FReader = MakeReader(FTarget, FFile != nullptr);
}

std::unique_ptr<TSimpleReader> TStringReader::MakeReader(TStream* source, bool ownFile) const {
    if (!ownFile && (!source || !Buffered)) return nullptr;
    return std::make_unique<TSimpleReader>(*source, ownFile ? ReadAheadSize : BufferSize);
}

void TStringReader::Synchronize() {
    if (FFile)
        SetReader();
    else if (FReader)
        FReader->FlushBuffer();
}

} // namespace tarn
