// Internal to numeric/: not installed, may change in any commit.
//
// Reals of 128, 256 or 512 bits: the accurate phase of the elementary functions computes with them
// what the fast phase leaves undecided. Integers only, so the bits depend on nothing.
//
// A number of words, `width`, goes with every operation: kNarrow decides what is met by
// chance, kMiddle what is known to be possible (docs/elementary.md), and kWide is a reserve. Words
// beyond `width` are ignored and come out as 0.
//
// Error      each operation truncates. A unit is 2^(exponent - 64 width) of its result: the last bit
//
// Sine and cosine of a wide argument are in WideSeries.hpp. An inverse function needs no series
// of its own: whether its result lies above a midpoint m between two doubles is the sign of, for
// the arc tangent of y/x, y cos m - x sin m, and for the arc cosine of x, cos m - x.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace corvale::internal {

/// Words of a number in the accurate phase, in its repetition and in the last one.
inline constexpr std::size_t kNarrow = 2;
inline constexpr std::size_t kMiddle = 4;
inline constexpr std::size_t kWide = 8;

/// A fraction from 0 to below 1, the most significant word first.
using Fraction = std::array<std::uint64_t, kWide>;

/// The real (-1)^isNegative x fraction x 2^exponent. The first bit of the fraction is set; zero has
/// a fraction of 0 and any exponent.
struct WideReal {
    Fraction fraction{};
    std::int64_t exponent = 0;
    bool isNegative = false;

    [[nodiscard]] bool IsZero() const noexcept { return fraction[0] == 0; }
};

/// a x b, at most a unit too small.
[[nodiscard]] Fraction Product(const Fraction& a, const Fraction& b, std::size_t width) noexcept;

/// a / divisor, at most a unit too small. `divisor` is not 0.
[[nodiscard]] Fraction Quotient(const Fraction& a, std::uint32_t divisor,
                                std::size_t width) noexcept;

/// a + b; `carries` is set where the sum reaches 1, which it then lacks.
[[nodiscard]] Fraction Sum(const Fraction& a, const Fraction& b, std::size_t width,
                           bool& carries) noexcept;

/// 1 - a but for one unit: all bits turned over. No fraction holds 1 itself.
[[nodiscard]] Fraction Complement(const Fraction& a, std::size_t width) noexcept;

/// |a| as a fraction, at most a unit too small. Precondition: |a| < 1.
[[nodiscard]] Fraction FractionOf(const WideReal& a, std::size_t width) noexcept;

/// The real `words` x 2^exponent, `words` being a fraction of any number of words, the most
/// significant first: with its leading zeros shifted out and cut to `width` words.
[[nodiscard]] WideReal Normalised(std::span<const std::uint64_t> words, std::int64_t exponent,
                                  std::size_t width) noexcept;

/// `significand` x 2^exponent, exactly.
[[nodiscard]] WideReal WideFromInteger(std::uint64_t significand, std::int64_t exponent) noexcept;

/// `x`, exactly. Finite; subnormal numbers too.
[[nodiscard]] WideReal WideFromDouble(double x) noexcept;

/// a b: magnitude at most 2 units too small.
[[nodiscard]] WideReal Multiply(const WideReal& a, const WideReal& b, std::size_t width) noexcept;

/// a + b: off by less than 2^(e - 64 width), e being the larger exponent of the two, plus 1 where
/// the sum carries. So nearly equal numbers of opposite sign leave the error that they came with.
[[nodiscard]] WideReal Add(const WideReal& a, const WideReal& b, std::size_t width) noexcept;

/// -a.
[[nodiscard]] WideReal Negated(WideReal a) noexcept;

/// The error of a value that `RoundsSafely` allows for, as a power of 2 of its units.
inline constexpr unsigned kErrorBits = 10;

/// Whether every real within 2^kErrorBits units of `value` rounds to the same double: whether no
/// midpoint of two doubles is that near. Looks at 64 (width - 1) bits after those of the double.
[[nodiscard]] bool RoundsSafely(const WideReal& value, std::size_t width) noexcept;

/// The double nearest to `value`; subnormal results and infinity come out right.
[[nodiscard]] double RoundedToDouble(const WideReal& value, std::size_t width) noexcept;

/// `value`(width), rounded to a double: with few words and, where those do not decide, with more.
///
/// A result that lies exactly on a midpoint would never be decided: callers deal with those first.
template <typename Value>
double Decided(Value value) noexcept {
    for (const std::size_t width : {kNarrow, kMiddle}) {
        const WideReal attempt = value(width);
        if (RoundsSafely(attempt, width)) return RoundedToDouble(attempt, width);
    }
    return RoundedToDouble(value(kWide), kWide);
}

}  // namespace corvale::internal
