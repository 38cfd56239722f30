#pragma once

#include "rtl/SysUtils.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {

/// A file that is no resource library with strings, or a broken one; the message says what is
/// wrong, without the file's name.
class EResourceLibraryError : public Exception {
public:
    using Exception::Exception;
    std::string_view ClassName() const override { return "EResourceLibraryError"; }
};

/// The numbered strings of a Windows library, read without Windows: the string tables among the
/// resources of a PE32 or PE32+ image for any machine, in the layout of Microsoft's "PE Format".
/// No offset and no count in the image is trusted; time and memory are linear in its size.
class TPEStrings {
public:
    /// The characters of UTF-16 that are kept of a string: what fits a buffer of 1024 with its end
    /// mark. A character of two units at the border is left out whole.
    static constexpr std::size_t MaxUnits = 1023;
    /// The largest file that FromFile takes, in bytes.
    static constexpr std::size_t MaxFileSize = std::size_t{64} << 20;

    /// Reads an image, which need not outlive the call. Of a table in several languages the first
    /// is taken; tables with a name instead of a number are left out. Raises
    /// EResourceLibraryError for what is no image, is broken or has no strings.
    explicit TPEStrings(std::string_view image);

    /// Reads a file at once. Raises EResourceLibraryError also for what is no ordinary file, cannot
    /// be read or is larger than MaxFileSize.
    static TPEStrings FromFile(std::string_view fileName);

    /// The text of a string in UTF-8, empty when there is none; it lives as long as the object.
    /// Half a surrogate pair in the library reads as U+FFFD.
    std::string_view Find(int id) const {
        if (id < 0 || id >= BlockCount * BlockSize) return {};
        const auto number = static_cast<std::size_t>(id);
        const TPage& page = FPages[FPageOf[number / BlockSize]];
        const std::uint32_t begin = page[number % BlockSize];
        return {FText.data() + begin, page[number % BlockSize + 1] - begin};
    }

    /// All strings that are not empty, by ascending id.
    std::vector<std::pair<int, std::string>> All() const;

private:
    // String ids have 16 bits; strings are stored in blocks of 16 successive ids.
    static constexpr int BlockSize = 16, BlockCount = 4096;
    /// Where each string of a block begins in FText, and where the last one ends.
    using TPage = std::array<std::uint32_t, BlockSize + 1>;

    class TReader;

    std::string FText;
    std::vector<TPage> FPages{TPage{}}; ///< the first one stands for every missing block
    std::array<std::uint16_t, BlockCount> FPageOf{};
};

} // namespace tarn
