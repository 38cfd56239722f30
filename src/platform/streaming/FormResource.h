#pragma once

#include "rtl/TStream.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tarn {

class TComponent;

/// The head of a resource around a form file: type, name, flags and size of the data behind it.
/// A type or name is a number or a text.
struct TResourceHead {
    static constexpr std::uint16_t RawData = 10;
    static constexpr std::uint16_t MovablePure = 0x1030;

    std::uint16_t Type = RawData; ///< 0 when the type is a text
    std::string TypeName;
    std::uint16_t Ordinal = 0; ///< 0 when the resource is named by a text
    std::string Name;
    std::uint16_t Flags = MovablePure;
    std::int64_t SizeAt = 0; ///< offset of the 4 bytes that hold the size
    std::int64_t Size = 0;   ///< of the data, bytes

    static constexpr std::int64_t SizeBytes = 4;
    std::int64_t DataAt() const { return SizeAt + SizeBytes; } ///< offset of the data
};

/// Whether the bytes begin like a resource with a numbered type.
bool IsResource(std::string_view bytes);

/// The head at the beginning of `bytes`. Raises EReadError when they are no resource or hold less
/// data than the head says.
TResourceHead ReadResourceHead(std::string_view bytes);
/// The head at the stream's position, which is then that of the data.
TResourceHead ReadResourceHead(TStream& stream);

/// The bytes of a head. Raises EWriteError for a size that 4 bytes do not hold.
std::string ResourceHeadBytes(const TResourceHead& head);
/// The head of a form's resource: raw data under the class name in upper case.
std::string FormResourceHead(std::string_view className, std::int64_t size);

/// The 4 bytes of a size. Raises EWriteError when they do not hold it.
std::string ResourceSizeBytes(std::int64_t size);

/// Writes a head, what `body` writes, and then the size of that into the head. The stream ends up
/// behind the data.
void WriteResource(TStream& stream, std::string_view className,
                   const std::function<void(TStream&)>& body);

/// A root component and nothing else; `root` null makes one, which is the caller's.
void WriteComponent(TStream& stream, TComponent& root);
TComponent* ReadComponent(TStream& stream, TComponent* root);
/// The same inside a resource that is called as the component's class.
void WriteComponentRes(TStream& stream, TComponent& root);
TComponent* ReadComponentRes(TStream& stream, TComponent* root);

} // namespace tarn
