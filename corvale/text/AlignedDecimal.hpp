// Internal to the library: not installed, may change in any commit.
//
// The commonest field: blanks, an optional sign, digits with at most one point, up to the right
// end. Read from that end its steps do not depend on how many blanks and digits there are, where a
// scan from the left waits for each in turn and cannot predict any; bench: RealField/Corvale. Every
// x86-64 processor has the instructions; elsewhere all fields are scanned from the left.
#pragma once

#include <corvale/text/DigitWords.hpp>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace corvale::internal {

/// digits / 10^decimals, up to 15 digits.
struct AlignedDecimal {
    std::uint64_t digits;
    int decimals;
    bool isNegative;
};

#if defined(__SSE2__)

/// The last sixteen characters of a text of 8 or more; blanks stand before a narrower text.
[[nodiscard]] inline __m128i LastSixteen(std::string_view text) noexcept {
    const std::size_t width = std::min<std::size_t>(text.size(), 16);
    const char* const end = text.data() + text.size();
    const std::uint64_t blanks = EachByte(' ');
    const std::uint64_t first =
        PutZerosFirst(LoadLittle<std::uint64_t>(end - width) ^ blanks, 16 - width);
    return _mm_set_epi64x(static_cast<std::int64_t>(LoadLittle<std::uint64_t>(end - 8)),
                          static_cast<std::int64_t>(first ^ blanks));
}

/// Whether the first characters, up to the last sixteen, are blank: of a text of 8 to 24.
[[nodiscard]] inline bool IsBlankBeforeSixteen(std::string_view text) noexcept {
    const std::size_t others = 8 - (std::max<std::size_t>(text.size(), 16) - 16);
    const std::uint64_t first = LoadLittle<std::uint64_t>(text.data()) ^ EachByte(' ');
    return PutZerosFirst(first, others) == 0;
}

/// One bit for each byte of `bytes` that is `c`.
[[nodiscard]] inline unsigned BitsOf(__m128i bytes, char c) noexcept {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(c))));
}

/// The first `count` of sixteen bytes all ones, the others zeros.
[[nodiscard]] inline __m128i FirstBytes(unsigned count) noexcept {
    static constexpr std::uint64_t kWindow[] = {~0ULL, ~0ULL, 0, 0};
    const char* const window = reinterpret_cast<const char*>(kWindow);
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(window + 16 - count));
}

/// Sixteen digit values as a number: first pairs of digits are joined, then fours, then eights.
[[nodiscard]] inline std::uint64_t NumberOfSixteen(__m128i values) noexcept {
    const __m128i tens = _mm_and_si128(values, _mm_set1_epi16(0xFF));
    const __m128i pairs =
        _mm_add_epi16(_mm_mullo_epi16(tens, _mm_set1_epi16(10)), _mm_srli_epi16(values, 8));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(100 + (1 << 16)));
    const __m128i packed = _mm_packs_epi32(fours, fours);
    const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(10000 + (1 << 16)));
    const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return (both & 0xFFFFFFFFU) * kSmallPowersOfTen[8] + (both >> 32U);
}

/// Reads a field of this kind; false where it is of another kind, whatever it holds.
[[nodiscard]] inline bool ReadAlignedDecimal(std::string_view text,
                                             AlignedDecimal& decimal) noexcept {
    if (text.size() - 8 > 24 - 8 || !IsBlankBeforeSixteen(text)) return false;
    const __m128i characters = LastSixteen(text);
    const __m128i values = _mm_xor_si128(characters, _mm_set1_epi8('0'));
    const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values);
    const auto digits = static_cast<unsigned>(_mm_movemask_epi8(isDigit));
    const unsigned point = BitsOf(characters, '.');
    const unsigned blanks = BitsOf(characters, ' ');
    const unsigned minus = BitsOf(characters, '-');

    // All before the number is blank, but for a sign as the last; nothing is out of its place.
    const unsigned others = ~(digits | point) & 0xFFFFU;
    const auto first = static_cast<unsigned>(std::bit_width(others));  // where the number begins
    const unsigned before = (1U << first) - 1;
    const unsigned sign = (minus | BitsOf(characters, '+')) & ~(before >> 1U);
    const bool isClean = (before & ~(blanks | sign)) == 0 && (point & (point - 1)) == 0;
    const auto pointEnd = static_cast<unsigned>(std::countr_zero(point << 1U)) % 32;  // 0: none
    const unsigned unused = first + (point != 0 ? 1 : 0);
    if (first == 0 || unused == 16 || !isClean) return false;

    const __m128i upToPoint = FirstBytes(pointEnd);
    const __m128i moved = _mm_and_si128(upToPoint, _mm_slli_si128(values, 1));
    const __m128i joined = _mm_or_si128(moved, _mm_andnot_si128(upToPoint, values));
    decimal.digits = NumberOfSixteen(_mm_andnot_si128(FirstBytes(unused), joined));
    decimal.decimals = static_cast<int>((16 - pointEnd) % 16);
    decimal.isNegative = (minus & sign) != 0;
    return true;
}

#else

[[nodiscard]] inline bool ReadAlignedDecimal(std::string_view, AlignedDecimal&) noexcept {
    return false;
}

#endif

}  // namespace corvale::internal
