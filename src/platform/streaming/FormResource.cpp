#include "streaming/FormResource.h"

#include "rtl/SysUtils.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"
#include "vcl/TComponent.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr unsigned char OrdinalMark = 0xFF;
constexpr int LongestText = 255; ///< bytes of a type or a name

[[noreturn]] void NoResource(std::string_view what) {
    throw EReadError(Format("no resource: %s", {what}));
}

std::uint32_t NumberAt(std::string_view bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    return value;
}

void PutNumber(std::string& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
}

/// Takes a type or a name from the front of the bytes.
void TakeId(std::string_view bytes, std::size_t& at, std::uint16_t& ordinal, std::string& text) {
    if (at >= bytes.size()) NoResource("its head ends too early");
    if (static_cast<unsigned char>(bytes[at]) == OrdinalMark) {
        if (bytes.size() - at < 3) NoResource("its head ends too early");
        ordinal = static_cast<std::uint16_t>(NumberAt(bytes, at + 1, 2));
        at += 3;
        return;
    }
    const std::size_t end = bytes.substr(at, LongestText + 1).find('\0');
    if (end == std::string_view::npos) NoResource("a name without an end");
    ordinal = 0;
    text = bytes.substr(at, end);
    at += end + 1;
}

void PutId(std::string& bytes, std::uint16_t ordinal, std::string_view text) {
    if (text.size() > LongestText || text.find('\0') != std::string_view::npos)
        throw EWriteError(Format("'%s' cannot name a resource", {text.substr(0, LongestText)}));
    if (text.empty()) {
        bytes += static_cast<char>(OrdinalMark);
        PutNumber(bytes, ordinal, 2);
    } else {
        bytes.append(text) += '\0';
    }
}

/// A head from its bytes; what follows it need not be there.
TResourceHead ParseHead(std::string_view bytes) {
    if (!IsResource(bytes)) NoResource("it does not begin with a numbered type");
    TResourceHead head;
    std::size_t at = 0;
    TakeId(bytes, at, head.Type, head.TypeName);
    TakeId(bytes, at, head.Ordinal, head.Name);
    if (bytes.size() - at < 2 + TResourceHead::SizeBytes) NoResource("its head ends too early");
    head.Flags = static_cast<std::uint16_t>(NumberAt(bytes, at, 2));
    head.SizeAt = static_cast<std::int64_t>(at) + 2;
    head.Size = NumberAt(bytes, at + 2, TResourceHead::SizeBytes);
    return head;
}

void RequireData(const TResourceHead& head, std::int64_t left) {
    if (head.Size > left)
        throw EReadError(Format("the resource ends: %d of %d bytes", {left, head.Size}));
}

} // namespace

bool IsResource(std::string_view bytes) {
    return !bytes.empty() && static_cast<unsigned char>(bytes[0]) == OrdinalMark;
}

TResourceHead ReadResourceHead(std::string_view bytes) {
    TResourceHead head = ParseHead(bytes);
    RequireData(head, static_cast<std::int64_t>(bytes.size()) - head.DataAt());
    return head;
}

TResourceHead ReadResourceHead(TStream& stream) {
    constexpr std::int64_t longest = 2 * (LongestText + 1) + 2 + TResourceHead::SizeBytes;
    const std::int64_t start = stream.Position();
    const std::int64_t left = stream.Size() - start;
    std::string bytes(static_cast<std::size_t>(std::clamp<std::int64_t>(left, 0, longest)), '\0');
    stream.ReadBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    stream.SetPosition(start);
    TResourceHead head = ParseHead(bytes);
    RequireData(head, left - head.DataAt());
    stream.SetPosition(start + head.DataAt());
    return head;
}

std::string ResourceSizeBytes(std::int64_t size) {
    if (size < 0 || size > 0xFFFFFFFF) throw EWriteError(Format("a resource of %d bytes", {size}));
    std::string bytes;
    PutNumber(bytes, static_cast<std::uint32_t>(size), TResourceHead::SizeBytes);
    return bytes;
}

std::string ResourceHeadBytes(const TResourceHead& head) {
    std::string bytes;
    PutId(bytes, head.Type, head.TypeName);
    PutId(bytes, head.Ordinal, head.Name);
    PutNumber(bytes, head.Flags, 2);
    return bytes + ResourceSizeBytes(head.Size);
}

std::string FormResourceHead(std::string_view className, std::int64_t size) {
    TResourceHead head;
    head.Name = UpperCase(className);
    head.Size = size;
    return ResourceHeadBytes(head);
}

void WriteResource(TStream& stream, std::string_view className,
                   const std::function<void(TStream&)>& body) {
    stream.WriteText(FormResourceHead(className, 0));
    const std::int64_t start = stream.Position();
    body(stream);
    const std::int64_t end = stream.Position();
    const std::string size = ResourceSizeBytes(end - start);
    stream.SetPosition(start - TResourceHead::SizeBytes);
    stream.WriteText(size);
    stream.SetPosition(end);
}

// --- Components -------------------------------------------------------------------------------

void WriteComponent(TStream& stream, TComponent& root) {
    TWriter writer(stream);
    writer.WriteRootComponent(root);
}

TComponent* ReadComponent(TStream& stream, TComponent* root) {
    TReader reader(stream);
    return reader.ReadRootComponent(root);
}

void WriteComponentRes(TStream& stream, TComponent& root) {
    WriteResource(stream, root.ClassName(), [&](TStream& body) { WriteComponent(body, root); });
}

TComponent* ReadComponentRes(TStream& stream, TComponent* root) {
    ReadResourceHead(stream);
    return ReadComponent(stream, root);
}

} // namespace tarn
