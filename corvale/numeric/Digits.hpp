// Internal to numeric/: not installed, may change in any commit.
//
// Counts as digits of a fixed width, with leading zeros, collected in words. A short text is
// returned in registers; one that is written byte by byte, or in pieces that overlap, first waits
// until all bytes have reached memory, which takes longer than everything else (bench: NumToAlpha5
// and DegToHHMMSSS_Str in bench/SmallBench.cpp).
#pragma once

#include <corvale/base/Words.hpp>

#include <array>
#include <cstddef>
#include <cstdint>

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

/// The characters of one or two words as a text.
template <std::size_t Width>
[[nodiscard]] std::array<char, Width> TextOf(Characters first, Characters second = 0) noexcept {
    std::array<char, Width> text;
    StoreFirst<(Width < 8 ? Width : 8)>(first, text.data());
    if constexpr (Width > 8) StoreFirst<Width - 8>(second, text.data() + 8);
    return text;
}

}  // namespace corvale::internal
