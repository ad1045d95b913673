// Internal to the library: not installed, may change in any commit.
//
// Eight characters at a time in one 64-bit word, the first of them in the lowest byte whatever the
// byte order of the machine. Nothing outside the text is ever read.
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

/// Writes eight bytes from `first` on, all of which must be writable.
inline void StoreEight(std::uint64_t word, char* first) noexcept {
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    std::memcpy(first, &word, sizeof word);
}

/// Four bytes from `first` on, likewise.
[[nodiscard]] inline std::uint64_t LoadFour(const char* first) noexcept {
    std::uint32_t word;
    std::memcpy(&word, first, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap32(word);
    return word;
}

/// The bytes of a text narrower than eight; zeros follow. Two or three loads that overlap.
[[nodiscard]] inline std::uint64_t LoadNarrow(std::string_view text) noexcept {
    const std::size_t size = text.size();
    if (size >= 4) {
        const std::uint64_t last = LoadFour(text.data() + size - 4);
        return LoadFour(text.data()) | last << 8 * (size - 4);
    }
    if (size == 0) return 0;
    const auto byte = [&](std::size_t at) {
        return std::uint64_t{static_cast<unsigned char>(text[at])} << 8 * at;
    };
    return byte(0) | byte(size / 2) | byte(size - 1);
}

/// The eight bytes of `text` from `at` <= size on; zeros stand for those past the end.
[[nodiscard]] inline std::uint64_t WordAt(std::string_view text, std::size_t at) noexcept {
    const std::size_t left = text.size() - at;
    if (left >= 8) return LoadEight(text.data() + at);
    if (text.size() < 8) return LoadNarrow(text) >> 8 * (at & 7U);
    const std::size_t missing = 8 - left;  // 1 to 8; a word cannot be shifted by its width
    return LoadEight(text.data() + text.size() - 8) >> 4 * missing >> 4 * missing;
}

/// What is left of ASCII digits is their value 0 to 9; every other character is above 9.
[[nodiscard]] constexpr std::uint64_t DigitValues(std::uint64_t word) noexcept {
    return word ^ kEachByte * '0';
}

/// The upper bit of each byte that is above 9; 0 where all eight are digits.
[[nodiscard]] constexpr std::uint64_t NonDigits(std::uint64_t values) noexcept {
    return (((values & kEachByte * 0x7F) + kEachByte * 0x76) | values) & kEachByte * 0x80;
}

/// How many of the eight are digits before the first that is not one: 0 to 8.
[[nodiscard]] constexpr unsigned LeadingDigits(std::uint64_t values) noexcept {
    return static_cast<unsigned>(std::countr_zero(NonDigits(values))) / 8;
}

/// The number that the first `count` digits make, up to 8 of them.
[[nodiscard]] constexpr std::uint64_t NumberOf(std::uint64_t values, unsigned count) noexcept {
    // zeros come first now; in two steps, since a word cannot be shifted by its width
    const std::uint64_t digits = values << (32 - 4 * count) << (32 - 4 * count);
    const std::uint64_t pairs = digits * 10 + (digits >> 8U);
    constexpr std::uint64_t kPair = 0x000000FF000000FFU;
    const std::uint64_t high = (pairs & kPair) * (100 + (1000000ULL << 32U));
    const std::uint64_t low = (pairs >> 16U & kPair) * (1 + (10000ULL << 32U));
    return (high + low) >> 32U;
}

/// The eight digits of a number below 10^8, leading zeros included, as characters.
[[nodiscard]] constexpr std::uint64_t EightDigits(std::uint64_t number) noexcept {
    // Each step splits all parts at once; the multiplications divide by 100 and by 10 exactly for
    // parts of up to four and two digits.
    const std::uint64_t fours = number / 10000 | number % 10000 << 32U;
    const std::uint64_t hundreds = fours * 5243 >> 19U & 0x0000007F0000007FU;
    const std::uint64_t twos = hundreds | (fours - hundreds * 100) << 16U;
    const std::uint64_t tens = twos * 103 >> 10U & 0x000F000F000F000FU;
    return (tens | (twos - tens * 10) << 8U) + kEachByte * '0';
}

/// How many blanks `text` begins with.
[[nodiscard]] inline std::size_t LeadingBlanks(std::string_view text) noexcept {
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        const std::uint64_t others = LoadEight(text.data() + at) ^ kEachByte * ' ';
        if (others != 0) return at + static_cast<unsigned>(std::countr_zero(others)) / 8;
    }
    while (at < text.size() && text[at] == ' ') ++at;
    return at;
}

/// Takes the digits of `text` from `at` on into `number` (modulo 2^64, behind what it holds) and
/// returns the position after them.
[[nodiscard]] inline std::size_t TakeDigits(std::string_view text, std::size_t at,
                                            std::uint64_t& number) noexcept {
    unsigned count = 8;
    while (count == 8) {
        const std::uint64_t values = DigitValues(WordAt(text, at));
        count = LeadingDigits(values);
        number = number * kSmallPowersOfTen[count] + NumberOf(values, count);
        at += count;
    }
    return at;
}

}  // namespace corvale::internal
