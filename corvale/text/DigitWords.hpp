// Internal to the library: not installed, may change in any commit.
//
// Digits and blanks, eight characters at a time in one little word (base/Words.hpp).
#pragma once

#include <corvale/base/Words.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvale::internal {

/// The power of ten that moves a number up by so many digits, up to 8.
constexpr std::uint64_t kSmallPowersOfTen[] = {1,      10,      100,      1000,     10000,
                                               100000, 1000000, 10000000, 100000000};

/// ASCII digits as their values 0 to 9; every other character is above 9.
template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word DigitValues(Word characters) noexcept {
    return characters ^ EachByte<Word>('0');
}

/// How many of the eight are digits before the first that is not one: 0 to 8.
[[nodiscard]] constexpr unsigned LeadingDigits(std::uint64_t values) noexcept {
    return static_cast<unsigned>(ZeroBytesFirst(MarkFirstAbove<9>(values)));
}

/// The number that the first `count` digits make, up to 8 of them. With zeros before them they are
/// eight digits; a multiplication joins pairs, and one for each other pair joins those: the sum of
/// the products is a word whose upper half is the number.
[[nodiscard]] constexpr std::uint64_t NumberOf(std::uint64_t values, unsigned count) noexcept {
    const std::uint64_t digits = PutZerosFirst(values, 8 - count);
    const std::uint64_t pairs = digits * 10 + (digits >> 8U);
    constexpr std::uint64_t kPair = 0x000000FF000000FFU;
    const std::uint64_t high = (pairs & kPair) * (100 + (1000000ULL << 32U));
    const std::uint64_t low = (pairs >> 16U & kPair) * (1 + (10000ULL << 32U));
    return (high + low) >> 32U;
}

/// The eight digits of a number below 10^8, leading zeros included, as characters.
[[nodiscard]] constexpr std::uint64_t EightDigits(std::uint64_t number) noexcept {
    // Each step splits all parts at once: two of four digits, four of two, eight of one.
    const std::uint64_t fours = number / 10000 | number % 10000 << 32U;
    const std::uint64_t hundreds = DivideLanes32By100(fours);
    const std::uint64_t twos = hundreds | (fours - hundreds * 100) << 16U;
    const std::uint64_t tens = DivideLanes16By10(twos);
    return (tens | (twos - tens * 10) << 8U) + EachByte('0');
}

/// How many blanks `text` begins with.
[[nodiscard]] inline std::size_t LeadingBlanks(std::string_view text) noexcept {
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        const std::uint64_t others = LoadLittle<std::uint64_t>(text.data() + at) ^ EachByte(' ');
        if (others != 0) return at + ZeroBytesFirst(others);
    }
    while (at < text.size() && text[at] == ' ') ++at;
    return at;
}

/// Appends the digits of `text` from `at` on to `number`, modulo 2^64, and returns the position
/// after them.
[[nodiscard]] inline std::size_t AppendDigits(std::string_view text, std::size_t at,
                                              std::uint64_t& number) noexcept {
    unsigned count = 8;
    while (count == 8) {
        const std::uint64_t values = DigitValues(LoadPadded(text, at));
        count = LeadingDigits(values);
        number = number * kSmallPowersOfTen[count] + NumberOf(values, count);
        at += count;
    }
    return at;
}

}  // namespace corvale::internal
