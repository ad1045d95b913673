// Internal to numeric/: not installed, may change in any commit.
//
// Counts as digits of a fixed width, with leading zeros, collected in words. A short text is
// returned in registers; one that is written byte by byte, or in pieces that overlap, first waits
// until all bytes have reached memory, which takes longer than everything else (bench: NumToAlpha5
// and DegToHHMMSSS_Str in bench/SmallBench.cpp).
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace corvale::internal {

/// Up to eight characters, the first in the lowest byte.
using Characters = std::uint64_t;

/// The digit of `value` below 10.
[[nodiscard]] constexpr Characters OneDigit(std::uint32_t value) noexcept {
    return '0' + value;
}

/// "00" to "99".
inline constexpr auto kTwoDigits = [] {
    std::array<std::uint16_t, 100> pairs{};
    for (std::uint32_t value = 0; value < pairs.size(); ++value)
        pairs[value] =
            static_cast<std::uint16_t>(OneDigit(value / 10) | OneDigit(value % 10) << 8U);
    return pairs;
}();

/// The two digits of `value` below 100.
[[nodiscard]] constexpr Characters TwoDigits(std::uint32_t value) noexcept {
    return kTwoDigits[value];
}

/// The three digits of `value` below 1000.
[[nodiscard]] constexpr Characters ThreeDigits(std::uint32_t value) noexcept {
    const std::uint32_t tens = value / 10;
    return TwoDigits(tens) | OneDigit(value - 10 * tens) << 16U;
}

/// Writes the first `Count` of `characters` to `target`, in pieces of 8, 4, 2 and 1.
template <std::size_t Count>
void Put(Characters characters, char* target) noexcept {
    if constexpr (Count > 0) {
        constexpr std::size_t kPiece = std::bit_floor(Count);
        Characters piece = characters;
        if constexpr (std::endian::native == std::endian::big) piece = __builtin_bswap64(piece);
        std::memcpy(target, &piece, kPiece);
        if constexpr (kPiece < 8) Put<Count - kPiece>(characters >> 8 * kPiece, target + kPiece);
    }
}

/// The characters of one or two words as a text.
template <std::size_t Width>
[[nodiscard]] std::array<char, Width> TextOf(Characters first, Characters second = 0) noexcept {
    std::array<char, Width> text;
    Put<(Width < 8 ? Width : 8)>(first, text.data());
    if constexpr (Width > 8) Put<Width - 8>(second, text.data() + 8);
    return text;
}

}  // namespace corvale::internal
