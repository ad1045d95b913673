// Internal to the library: not installed, may change in any commit.
//
// Eight characters at a time in one 64-bit word, the first of them in the lowest byte whatever the
// byte order of the machine. Nothing outside the text is ever read.
//
// Measured: a digit loop of one character a step makes StrToReal 1.6 times as slow; bench:
// RealField/Corvale.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace corvale::internal {

constexpr std::uint64_t kEachByte = 0x0101010101010101U;

/// The power of ten that makes room for up to eight digits.
constexpr std::uint64_t kSmallPowersOfTen[] = {1,      10,      100,      1000,     10000,
                                               100000, 1000000, 10000000, 100000000};

/// Eight bytes from `first` on, all of which must be readable.
[[nodiscard]] inline std::uint64_t LoadEight(const char* first) noexcept {
    std::uint64_t word;
    std::memcpy(&word, first, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    return word;
}

/// The bytes of a text narrower than eight; zeros follow.
[[nodiscard]] inline std::uint64_t LoadNarrow(std::string_view text) noexcept {
    std::uint64_t word = 0;
    for (std::size_t i = text.size(); i > 0; --i)
        word = word << 8U | static_cast<unsigned char>(text[i - 1]);
    return word;
}

/// The eight bytes of `text` from `at` <= size on; zeros stand for those past the end.
[[nodiscard]] inline std::uint64_t WordAt(std::string_view text, std::size_t at) noexcept {
    if (text.size() - at >= 8) return LoadEight(text.data() + at);
    if (text.size() < 8) return at < 8 ? LoadNarrow(text) >> 8 * at : 0;
    const std::size_t missing = at + 8 - text.size();  // 1 to 8
    return LoadEight(text.data() + text.size() - 8) >> 8U >> 8 * (missing - 1);
}

/// What is left of ASCII digits is their value 0 to 9; every other character is above 9.
[[nodiscard]] constexpr std::uint64_t DigitValues(std::uint64_t word) noexcept {
    return word ^ kEachByte * '0';
}

/// How many of the eight are digits before the first that is not one: 0 to 8.
[[nodiscard]] constexpr unsigned LeadingDigits(std::uint64_t values) noexcept {
    const std::uint64_t above9 = ((values & kEachByte * 0x7F) + kEachByte * 0x76) | values;
    return static_cast<unsigned>(std::countr_zero(above9 & kEachByte * 0x80)) / 8;
}

/// The number that the first `count` digits make, 1 to 8 of them.
[[nodiscard]] constexpr std::uint64_t NumberOf(std::uint64_t values, unsigned count) noexcept {
    const std::uint64_t digits = values << (64 - 8 * count);  // zeros come first now
    const std::uint64_t pairs = digits * 10 + (digits >> 8U);
    constexpr std::uint64_t kPair = 0x000000FF000000FFU;
    const std::uint64_t high = (pairs & kPair) * (100 + (1000000ULL << 32U));
    const std::uint64_t low = (pairs >> 16U & kPair) * (1 + (10000ULL << 32U));
    return (high + low) >> 32U;
}

/// Takes the digits of `text` from `at` on into `number` (modulo 2^64, behind what it holds) and
/// returns the position after them.
[[nodiscard]] inline std::size_t TakeDigits(std::string_view text, std::size_t at,
                                            std::uint64_t& number) noexcept {
    for (;;) {
        const std::uint64_t values = DigitValues(WordAt(text, at));
        const unsigned count = LeadingDigits(values);
        if (count == 0) return at;
        number = number * kSmallPowersOfTen[count] + NumberOf(values, count);
        at += count;
        if (count < 8) return at;
    }
}

}  // namespace corvale::internal
