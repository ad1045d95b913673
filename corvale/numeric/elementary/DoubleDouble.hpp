// Internal to numeric/: not installed, may change in any commit.
//
// Arithmetic of the fast phases: a value as the unevaluated sum of two doubles, and the test that
// says whether the sum rounds safely.
//
// The leading products must be exact, and the bits must not depend on whether a processor has a
// fused multiply-add. So factors are cut to heads of 26 bits: the product of two heads has 52 bits
// and is exact as a double. A table stores its values as a head and the rest.
//
// Source     T. J. Dekker, Numer. Math. 18 (1971), 224-242; A. Ziv, ACM Trans. Math. Softw. 17
//            (1991), 410-423 (the rounding test)
#pragma once

#include <bit>
#include <cstdint>

namespace corvale::internal {

/// What every function returns that has no value: a quiet NaN with sign and payload 0, whatever NaN
/// it was given, so that its bits are the same everywhere too.
inline constexpr double kNaN = std::bit_cast<double>(std::uint64_t{0x7FF8} << 48U);

/// The value `high` + `low`.
struct DoubleDouble {
    double high;
    double low;
};

/// A table's value as a head of 26 bits and the rest, together good to 2^-80.
struct TableValue {
    double head;
    double rest;
};

/// `x` with the last 27 of its 53 bits cleared: 26 bits, towards 0. x - Head(x) is exact and below
/// 2^-25 |x|. Not for subnormal values: their heads can be 0.
inline double Head(double x) noexcept {
    constexpr std::uint64_t kTail = (std::uint64_t{1} << 27U) - 1;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & ~kTail);
}

/// The bits of a double's fraction, and what its exponent field adds to the exponent.
inline constexpr unsigned kFractionBits = 52;
inline constexpr int kBias = 1023;

/// 2^exponent, from the least normal double to the greatest power of 2.
inline double PowerOfTwo(int exponent) noexcept {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + kBias) << kFractionBits);
}

/// a + b without error where |a| >= |b| or a = 0. Otherwise the error is below 2^-52 |b|.
inline DoubleDouble FastTwoSum(double a, double b) noexcept {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// A length as a whole number of steps and what remains, at most half a step.
struct WholeSteps {
    std::int64_t count;
    DoubleDouble rest;
};

/// A step's length, as a head whose product with `count` is exact and the rest, and its reciprocal.
struct StepLength {
    double head;
    double rest;
    double reciprocal;
};

/// `x` by the nearest number of steps. Precondition: count * step.head is exact.
inline WholeSteps ReduceBySteps(double x, const StepLength& step) noexcept {
    constexpr double kToWhole = 0x1.8p52;  // added and subtracted it rounds to a whole number,
    const double shifted = x * step.reciprocal + kToWhole;  // whose last bits are then the sum's
    const double count = shifted - kToWhole;
    const double exact = x - count * step.head;
    const double tail = count * step.rest;
    const double high = exact - tail;
    return {std::bit_cast<std::int64_t>(shifted) - std::bit_cast<std::int64_t>(kToWhole),
            {high, (exact - high) - tail}};
}

/// Both ends of the interval `value` +- `error`, rounded. Where they are equal they are the value
/// that was approximated, rounded to nearest: rounding is monotonic.
struct RoundedEnds {
    double lower;
    double upper;

    [[nodiscard]] bool Agree() const noexcept { return lower == upper; }
};

/// Precondition: `value.low` + `error` is exact but for a relative 2^-53, which the caller's
/// `error` includes.
inline RoundedEnds RoundBothEnds(DoubleDouble value, double error) noexcept {
    return {value.high + (value.low - error), value.high + (value.low + error)};
}

}  // namespace corvale::internal
