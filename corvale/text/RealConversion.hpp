// Internal to the library: not installed, may change in any commit.
//
// The one place where a decimal number becomes a double. Readers scan a number with ScanReal and
// check what follows it; ToDouble forms the value, only when it is wanted. AlignedDecimal.hpp reads
// the commonest fields of the same grammar without a scan. RealConversion.cpp tells how the value is
// rounded.
//
// The grammar, after an optional sign:
//   mantissa  digits with at most one point; no implied decimals
//   exponent  E e D d (Q q where the rules say so), an optional sign and digits; or a sign that
//             follows the mantissa directly and digits. Without digits it counts as 0
//
// Threads    no state, no allocation: any number of threads at once
// Exactness  correctly rounded to nearest, ties to even, whatever the thread's rounding mode and
//            locale and whether it flushes subnormals: all digits count, and all arithmetic is on
//            integers. Too large is an infinity, too small a zero, both with their sign
#pragma once

#include <corvale/text/DigitWords.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvale::internal {

/// What differs between the readers' numbers.
struct RealRules {
    bool exponentQ;      ///< Q and q begin an exponent too
    bool emptyMantissa;  ///< a mantissa without any digit counts as +0: "", "-", ".", "-e5"
};

/// A number as it was scanned, before any rounding.
struct ScannedReal {
    std::uint64_t digits = 0;   ///< the first 19 significant digits, or all where they are fewer
    std::int64_t exponent = 0;  ///< the value is digits x 10^exponent, above it if truncated
    bool isNegative = false;
    bool isTruncated = false;        ///< there are digits other than 0 after the 19th; then:
    std::string_view mantissa = {};  ///< all digits, and the point, in the scanned text
};

/// The longest mantissa that may become a double: no reader gives more of a line than that.
constexpr std::size_t kLongestMantissa = 512;

/// The number of a mantissa with more than 19 digits.
[[nodiscard]] ScannedReal KeepFirstDigits(std::string_view mantissa, bool isNegative) noexcept;

/// The nearest double to digits x 10^exponent.
[[nodiscard]] double DecimalToDouble(std::uint64_t digits, std::int64_t exponent,
                                     bool isNegative) noexcept;

/// The nearest double to a truncated number.
[[nodiscard]] double TruncatedToDouble(const ScannedReal& number) noexcept;

/// The nearest double. A truncated mantissa has no more than kLongestMantissa characters.
[[nodiscard]] inline double ToDouble(const ScannedReal& number) noexcept {
    if (number.isTruncated) return TruncatedToDouble(number);
    return DecimalToDouble(number.digits, number.exponent, number.isNegative);
}

// All below is inline: in each reader the rules are constants, which saves a third of the time of a
// field (bench: RealField/Corvale).

[[nodiscard]] constexpr bool IsSign(char c) noexcept {
    return c == '+' || c == '-';
}

[[nodiscard]] constexpr bool IsExponentLetter(char c, bool exponentQ) noexcept {
    const int lower = c | 0x20;
    return lower == 'e' || lower == 'd' || (exponentQ && lower == 'q');
}

/// Reads the mantissa at `at` and returns the position after it; `npos` where it has no digit and
/// needs one. The digits before and after the point are one number; more than 19 do not fit it, so
/// such a mantissa is read again.
[[nodiscard, gnu::always_inline]] inline std::size_t ScanMantissa(std::string_view text,
                                                                  std::size_t at, RealRules rules,
                                                                  ScannedReal& number) noexcept {
    constexpr std::size_t kKeptDigits = 19;  // the most that always fit 64 bits
    const std::size_t first = at;
    at = AppendDigits(text, at, number.digits);
    std::size_t count = at - first;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = at + 1;
        at = AppendDigits(text, fraction, number.digits);
        number.exponent = -static_cast<std::int64_t>(at - fraction);
        count = at - first - 1;
    }
    if (count == 0) {
        if (!rules.emptyMantissa) return std::string_view::npos;
        number.isNegative = false;
    }
    if (count > kKeptDigits)
        number = KeepFirstDigits({text.data() + first, at - first}, number.isNegative);
    return at;
}

/// Adds the exponent at `at`, if one is there, and returns the position after it.
[[nodiscard]] inline std::size_t ScanExponent(std::string_view text, std::size_t at, bool exponentQ,
                                              std::int64_t& exponent) noexcept {
    const bool hasLetter = IsExponentLetter(text[at], exponentQ);
    if (!hasLetter && !IsSign(text[at])) return at;
    if (hasLetter) ++at;
    bool isNegative = false;
    if (at < text.size() && IsSign(text[at])) isNegative = text[at++] == '-';

    // Saturates: beyond this every mantissa that fits in memory overflows or underflows.
    constexpr std::int64_t kLimit = 1'000'000'000'000'000;
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        if (value < kLimit) value = value * 10 + (text[at] - '0');
    exponent += isNegative ? -value : value;
    return at;
}

/// Scans the longest number that begins at position `at` <= size of `text`. Returns the position
/// after it; `npos` where no number begins. The characters before `at` do not matter, but must be
/// readable.
[[nodiscard, gnu::always_inline]] inline std::size_t ScanReal(std::string_view text, std::size_t at,
                                                              RealRules rules,
                                                              ScannedReal& number) noexcept {
    number = {};
    if (at < text.size()) {
        number.isNegative = text[at] == '-';
        at += IsSign(text[at]) ? 1 : 0;
    }
    at = ScanMantissa(text, at, rules, number);
    if (at >= text.size()) return at;  // `npos`, too
    return ScanExponent(text, at, rules.exponentQ, number.exponent);
}

}  // namespace corvale::internal
