#include "DataHeader.h"

#include "DataHandlingErrors.h"
#include "ObjectStorageStrings.h"
#include "streaming/FormResource.h"
#include "streaming/TFiler.h"
#include "vcl/TComponent.h"

#include <algorithm>
#include <array>

namespace tarn {
namespace {

constexpr std::size_t LongestBinDescription = 255;

/// The bytes at the position, `count` of them or as many as there are.
std::string TakeBytes(TStream& stream, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t done = 0;
    while (done < count) {
        const std::int64_t now =
            stream.Read(bytes.data() + done, static_cast<std::int64_t>(count - done));
        if (now <= 0) break;
        done += static_cast<std::size_t>(now);
    }
    bytes.resize(done);
    return bytes;
}

/// Exactly `count` bytes. Raises EReadError.
std::string ReadBytes(TStream& stream, std::size_t count) {
    std::string bytes(count, '\0');
    stream.ReadBuffer(bytes.data(), static_cast<std::int64_t>(count));
    return bytes;
}

/// Goes behind the next carriage return and the byte that follows it, and returns the offset of the
/// carriage return. Nothing is kept of the line: it may be as long as the stream.
std::int64_t SkipLine(TStream& stream) {
    const std::int64_t start = stream.Position();
    std::array<char, 4096> piece;
    for (std::int64_t at = start;;) {
        const std::int64_t count = stream.Read(piece.data(), piece.size());
        if (count <= 0) break;
        const char* const end = piece.data() + count;
        const char* const found = std::find<const char*>(piece.data(), end, '\r');
        at += found - piece.data();
        if (found == end) continue;
        stream.SetPosition(at + 1);
        TakeBytes(stream, 1);
        return at;
    }
    throw EReadError(Format("offset %d: a line without a carriage return", {start}));
}

std::string ReadLine(TStream& stream) {
    const std::int64_t start = stream.Position();
    const std::int64_t end = SkipLine(stream);
    const std::int64_t next = stream.Position();
    stream.SetPosition(start);
    std::string line = ReadBytes(stream, static_cast<std::size_t>(end - start));
    stream.SetPosition(next);
    return line;
}

/// The text in one line.
std::string Flattened(std::string_view text) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && text.substr(i + 1, 1) == "\n") ++i;
        line += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
    }
    return line;
}

std::string IdentifyingText(const TPersistent& object) {
    const auto* const component = dynamic_cast<const TComponent*>(&object);
    if (component && !component->Name().empty()) return component->Name();
    return std::string(object.ClassName());
}

struct TDataHeader {
    TObjectStorageFormat Format = osfBin;
    bool AsResource = false;
    std::string Description;
};

[[noreturn]] void RaiseNoLabel() {
    throw EDataHandlingError(LocaleStr(strNoLabel));
}

TDataHeader BinDataHeader(TStream& stream) {
    const std::string flag = ReadBytes(stream, 1);
    if (static_cast<unsigned char>(flag[0]) > 1) RaiseNoLabel();
    const std::string length = ReadBytes(stream, 1);
    return {osfBin, flag[0] == 1, ReadBytes(stream, static_cast<unsigned char>(length[0]))};
}

TDataHeader TextDataHeader(TStream& stream) {
    TDataHeader header{osfText, false, ReadLine(stream)};
    SkipLine(stream);
    return header;
}

TDataHeader DataHeaderOf(TStream& stream) {
    const std::string label = TakeBytes(stream, BinDataLabel.size());
    if (label == BinDataLabel) return BinDataHeader(stream);
    if (label == TextDataLabel) return TextDataHeader(stream);
    RaiseNoLabel();
}

} // namespace

std::string StorageFormatExt(TObjectStorageFormat format) {
    return LocaleStr(int{strBinExt} + int{format});
}

void WriteBinDataHeader(const TStreamOrFile& target, bool asResource,
                        std::string_view description) {
    description = description.substr(0, LongestBinDescription);
    std::string header(BinDataLabel);
    header += asResource ? '\1' : '\0';
    header += static_cast<char>(description.size());
    header += description;
    target.Write([&](TStream& stream) { stream.WriteText(header); });
}

void WriteTextDataHeader(const TStreamOrFile& target, std::string_view description) {
    std::string line(TextDataLabel);
    if (!description.empty()) line += ' ' + Flattened(description);
    const std::string rule(line.size(), SeparatorChar);
    target.Write([&](TStream& stream) {
        stream.WriteText(line.append(LineBreak).append(rule).append(LineBreak));
    });
}

void ReadDataHeader(const TStreamOrFile& source, TObjectStorageFormat& format, bool& asResource,
                    std::string& description) {
    TDataHeader header = source.Read(DataHeaderOf);
    format = header.Format;
    asResource = header.AsResource;
    description = std::move(header.Description);
}

void SkipDataHeader(const TStreamOrFile& source) {
    source.Read(DataHeaderOf);
}

void WriteObjectDescription(const TPersistent& object, std::string_view description,
                            const TStreamOrFile& target) {
    std::string line = description.empty()
                           ? Format("stored Instance --> %s", {IdentifyingText(object)})
                           : Flattened(description);
    target.Write([&](TStream& stream) { stream.WriteText(line.append(LineBreak)); });
}

void SkipObjectDescription(const TStreamOrFile& source) {
    source.Read(SkipLine);
}

bool TestStreamFormat(const TStreamOrFile& source, TObjectStorageFormat& format) {
    constexpr std::size_t most = 4;
    constexpr std::string_view textBegins = "\t\v\r IOio";
    const std::string bytes = source.Read([](TStream& stream) {
        const std::int64_t position = stream.Position();
        std::string first = TakeBytes(stream, most);
        stream.SetPosition(position);
        return first;
    });
    if (IsResource(bytes))
        format = osfResBin;
    else if (bytes == FilerSignature)
        format = osfBin;
    else if (bytes == ExtBinSignature)
        format = osfExtBin;
    else if (textBegins.find(bytes[0]) != std::string_view::npos)
        format = osfText;
    else
        return false;
    return true;
}

} // namespace tarn
