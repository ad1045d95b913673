// Internal to the library: not installed, may change in any commit.
//
// The one place that turns characters into a double. Every reader scans with ScanReal and decides,
// at its call, what may follow the number; the value is formed by ToDouble, only when it is wanted.
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

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvale::internal {

/// What differs between the readers' numbers.
struct RealRules {
    bool exponentQ;      ///< Q and q begin an exponent too
    bool emptyMantissa;  ///< a mantissa without any digit counts as +0: "", "-", ".", "-e5"
};

/// A number as it was scanned, before any rounding. Refers to the scanned text.
struct ScannedReal {
    std::string_view mantissa;  ///< digits with at most one point, leading zeros included
    std::uint64_t digits = 0;   ///< the first 19 significant digits, or all where they are fewer
    std::int64_t exponent = 0;  ///< the value is digits x 10^exponent, or above it where `isCut`
    bool isNegative = false;
    bool isCut = false;  ///< there are digits other than 0 after the 19th
};

/// Scans the number that begins at position `at` <= size of `text` and takes every character that
/// continues it. Returns the position after the last one taken; `npos` where no number begins. What
/// stands before `at` is not looked at, but must be readable.
[[nodiscard]] std::size_t ScanReal(std::string_view text, std::size_t at, RealRules rules,
                                   ScannedReal& number) noexcept;

/// The nearest double.
[[nodiscard]] double ToDouble(const ScannedReal& number) noexcept;

/// Both in one, for a caller who wants every value: `end` is what `ScanReal` returns, and where no
/// number begins the value is 0.
[[nodiscard]] double ReadReal(std::string_view text, std::size_t at, RealRules rules,
                              std::size_t& end) noexcept;

}  // namespace corvale::internal
