#include "qsStrSetScan.h"

#include <bit>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TARN_WIDE __attribute__((target("avx2")))
#endif

namespace tarn::scan {

#if defined(TARN_WIDE)

namespace {

constexpr std::size_t Width = 32;

/// A set as a table of 16 rows, one for each low half (nibble) of a character code; a bit of a row
/// stands for a high half. Codes below and above 128 have a table of their own, since a row has
/// eight bits.
struct TNibbleTables {
    __m256i Below128;
    __m256i Above127;
};

TARN_WIDE __m256i Twice(const std::uint8_t (&row)[16]) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row)));
}

TARN_WIDE TNibbleTables TablesOf(const TCharSet& set) {
    std::uint8_t rows[2][16] = {};
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        for (std::uint64_t bits = set.Quarter(quarter); bits != 0; bits &= bits - 1) {
            const std::size_t code =
                64 * quarter + static_cast<std::size_t>(std::countr_zero(bits));
            rows[code / 128][code % 16] |= static_cast<std::uint8_t>(1U << (code / 16 % 8));
        }
    }
    return {Twice(rows[0]), Twice(rows[1])};
}

/// One bit for each of the Width characters at `at`, the first one lowest: is it in the set?
TARN_WIDE std::uint32_t Members(const TNibbleTables& tables, const char* at) {
    static constexpr std::uint8_t highBits[16] = {1, 2, 4, 8, 16, 32, 64, 128,
                                                  1, 2, 4, 8, 16, 32, 64, 128};
    const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    // A shuffle looks up the low half and gives 0 for a code above 127, so that with the top bit
    // turned over exactly one of the two tables answers.
    const __m256i turned = _mm256_xor_si256(text, _mm256_set1_epi8(static_cast<char>(0x80)));
    const __m256i row = _mm256_or_si256(_mm256_shuffle_epi8(tables.Below128, text),
                                        _mm256_shuffle_epi8(tables.Above127, turned));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi16(text, 4), _mm256_set1_epi8(0x0F));
    const __m256i bit = _mm256_shuffle_epi8(Twice(highBits), high);
    return static_cast<std::uint32_t>(
        _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_and_si256(row, bit), bit)));
}

} // namespace

bool HasWideSetScan() {
    return __builtin_cpu_supports("avx2") != 0;
}

TARN_WIDE std::size_t WideFirstOf(std::string_view text, const TCharSet& set) {
    const TNibbleTables tables = TablesOf(set);
    std::size_t at = 0;
    for (; text.size() - at >= Width; at += Width)
        if (const std::uint32_t hits = Members(tables, text.data() + at); hits != 0)
            return at + static_cast<std::size_t>(std::countr_zero(hits));
    for (; at < text.size(); ++at)
        if (set.Contains(text[at])) return at;
    return std::string_view::npos;
}

TARN_WIDE std::size_t WideLastOf(std::string_view text, const TCharSet& set) {
    const TNibbleTables tables = TablesOf(set);
    std::size_t left = text.size();
    for (; left >= Width; left -= Width)
        if (const std::uint32_t hits = Members(tables, text.data() + left - Width); hits != 0)
            return left - Width + static_cast<std::size_t>(std::bit_width(hits)) - 1;
    while (left > 0)
        if (set.Contains(text[--left])) return left;
    return std::string_view::npos;
}

#else

bool HasWideSetScan() {
    return false;
}
std::size_t WideFirstOf(std::string_view, const TCharSet&) {
    return std::string_view::npos;
}
std::size_t WideLastOf(std::string_view, const TCharSet&) {
    return std::string_view::npos;
}

#endif

} // namespace tarn::scan
