// Internal to numeric/: not installed, may change in any commit.
//
// Counts as digits of a fixed width, with leading zeros, put together to short texts.
//
// Idea  Each part of a text is a word with its width as a template argument; TextOf shifts the
//       parts together while compiling, and stores each word of the text once.
// Why   A short text is returned in registers. One that is written byte by byte, or in pieces that
//       overlap, must reach memory before it can be loaded there, which takes longer than
//       everything else; bench: NumToAlpha5 and DegToHHMMSSS_Str in bench/SmallBench.cpp.
#pragma once

#include <corvale/base/Words.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// `Width` characters as a little word; zeros follow.
template <std::size_t Width>
struct Part {
    static_assert(Width <= 8);
    std::uint64_t word;
};

[[nodiscard]] constexpr Part<1> OneCharacter(char c) noexcept {
    return {static_cast<unsigned char>(c)};
}

/// What a field shows that cannot hold its number.
template <std::size_t Width>
[[nodiscard]] constexpr Part<Width> Asterisks() noexcept {
    return {EachByte('*') >> 8 * (8 - Width)};
}

/// "00" to "99" as little words.
inline constexpr auto kTwoDigits = [] {
    std::array<std::uint16_t, 100> pairs{};
    for (std::uint32_t value = 0; value < pairs.size(); ++value)
        pairs[value] = static_cast<std::uint16_t>(('0' + value / 10) | ('0' + value % 10) << 8U);
    return pairs;
}();

/// The two digits of `value` below 100.
[[nodiscard]] constexpr Part<2> TwoDigits(std::uint32_t value) noexcept {
    return {kTwoDigits[value]};
}

/// The three digits of `value` below 1000.
[[nodiscard]] constexpr Part<3> ThreeDigits(std::uint32_t value) noexcept {
    const std::uint32_t tens = value / 10;
    return {kTwoDigits[tens] | std::uint64_t{'0' + (value - 10 * tens)} << 16U};
}

/// The text of the parts from left to right. None reaches from the first eight characters into the
/// next ones.
template <std::size_t... Widths>
[[nodiscard]] auto TextOf(Part<Widths>... parts) noexcept {
    constexpr std::size_t kWidth = (Widths + ...);
    static_assert(kWidth <= 16);
    std::uint64_t words[2] = {};
    std::size_t at = 0;
    const auto add = [&](std::uint64_t word, std::size_t width) {
        words[at / 8] |= word << 8 * (at % 8);
        at += width;
    };
    (add(parts.word, Widths), ...);

    std::array<char, kWidth> text;
    constexpr std::size_t kFirst = std::min<std::size_t>(kWidth, 8);
    StoreFirst<kFirst>(words[0], text.data());
    if constexpr (kWidth > 8) StoreFirst<kWidth - 8>(words[1], text.data() + 8);
    return text;
}

}  // namespace corvale::internal
