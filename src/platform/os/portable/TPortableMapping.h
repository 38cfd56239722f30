#pragma once

#include "os/TSystemMapping.h"
#include "os/portable/TNamedArea.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tarn {

/// A shared mapping of a file or of a named area.
class TPortableMapping : public TSystemMapping {
public:
    /// Raise EOSError. A file that was made longer is then as long as before.
    explicit TPortableMapping(const TMapFile& file);
    explicit TPortableMapping(const TMapArea& area);
    ~TPortableMapping() override;

    std::int64_t Size() const override { return FSize; }
    void Read(std::int64_t offset, void* buffer, std::int64_t count) const override;
    void Write(std::int64_t offset, const void* buffer, std::int64_t count) override;
    void Flush() override;

private:
    void Map(THandle handle, std::int64_t size, TMapAccess access);
    void RequireBytes(std::string_view verb, std::int64_t offset, std::int64_t count) const;
    [[noreturn]] void RaiseLost(std::string_view verb, std::int64_t offset) const;

    std::optional<TNamedArea> FArea;
    TOwnedHandle FFile; ///< of a file, beside the caller's
    std::string FName;
    std::byte* FView = nullptr;
    std::size_t FViewSize = 0;
    std::int64_t FSize = 0;
};

} // namespace tarn
