// The exponential, correctly rounded.
//
// x = n ln 2 / 128 + t with a whole n and |t| <= ln 2 / 256, so that e^x is 2^(n / 128) e^t. A table
// has T = 2^(i / 128) for the last seven bits i of n, the others go into the exponent. T e^t is
// T + T t, whose leading parts are exact, and terms below 2^-17, whose rounding errors are what is
// left: 2^-67 of the result.
//
// Where the rounding test fails, once in 11,000 calls, and where the result is subnormal, wide reals
// decide. The value is never a midpoint: e^x is transcendental for every x but 0.
#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/DoubleDouble.hpp>
#include <corvale/numeric/elementary/ExponentialTable.hpp>
#include <corvale/numeric/elementary/WideSeries.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace corvale::Elementary {

namespace {

using internal::DoubleDouble;
using internal::FastTwoSum;
using internal::Head;
using internal::RoundedEnds;
using internal::TableValue;
using internal::WideReal;

constexpr unsigned kSteps = 128;  // from one power of 2 to the next
static_assert(std::size(internal::kPowersOfTwo) == kSteps);

// ln 2 / 128. The head has 35 bits: its product with a number of steps below 2^17, as those of
// arguments up to kFastLimit are, is exact.
constexpr internal::StepLength kStep = {0x1.62e42fefcp-8, -0x1.c610ca86c3899p-44,
                                        0x1.71547652b82fep7};

// Up to here e^x rounds to 1: x is at most half a unit of 1, and of what lies below 1.
constexpr double kTiny = 0x1p-54;
// Up to here results are normal.
constexpr double kFastLimit = 708.0;
// From the first on e^x exceeds the greatest double by more than half a unit; below the second it
// is less than half of the least double.
constexpr double kOverflow = 709.79;
constexpr double kUnderflow = -745.14;

// The error of the fast phase relative to its result; proofs/elementary/.
constexpr double kError = 0x1p-67;

// e^t - 1 - t; the polynomial is good to 2^-77.
double Curve(DoubleDouble t) noexcept {
    const double square = t.high * t.high;
    const double even = 0x1.55555555554cp-5 + square * 0x1.6c16c6f942f9dp-10;
    const double odd = 0x1.555555555549p-3 + square * 0x1.111115b67353cp-7;
    return square * (0.5 + (t.high * odd + square * even)) + t.high * t.low;
}

// Both ends of T e^t.
RoundedEnds TimesPower(const TableValue& power, DoubleDouble t) noexcept {
    const double head = Head(t.high);
    const DoubleDouble sum = FastTwoSum(power.head, power.head * head);
    const double slope = power.head * ((t.high - head) + t.low) + power.rest * t.high;
    const double low = sum.low + (power.rest + (slope + (power.head + power.rest) * Curve(t)));
    return internal::RoundBothEnds({sum.high, low}, sum.high * kError);
}

// x = n ln 2 + r. n is never too small, so that r stays below ln 2; where n is one too large
// because x ln 2 was nearly whole, r comes out negative.
WideReal WideExponential(double x, std::size_t width) noexcept {
    constexpr double kPerUnit = kStep.reciprocal / kSteps;
    constexpr WideReal kOne = {internal::kLogarithmOfTwo, 0, false};
    auto whole = static_cast<std::int64_t>(std::floor(x * kPerUnit + 0x1p-20));
    WideReal multiple = internal::WideFromDouble(static_cast<double>(-whole));
    if (whole != 0) multiple = internal::Multiply(multiple, kOne, width);
    WideReal rest = internal::Add(internal::WideFromDouble(x), multiple, width);
    if (rest.isNegative) {
        rest = internal::Add(rest, kOne, width);
        --whole;
    }
    WideReal value = internal::ExponentialSeries(rest, width);
    value.exponent += whole;
    return value;
}

double ExpSlowly(double x) noexcept {
    return internal::Decided([x](std::size_t width) noexcept { return WideExponential(x, width); });
}

// For arguments out of the range of the fast phase. Out of line, so that its own values stay in
// registers.
[[gnu::noinline]] double Otherwise(double x) noexcept {
    if (std::fabs(x) <= kTiny) return 1.0;
    if (x >= kOverflow) return std::numeric_limits<double>::infinity();
    if (x <= kUnderflow) return 0.0;
    return std::isnan(x) ? internal::kNaN : ExpSlowly(x);
}

}  // namespace

double Exp(double x) noexcept {
    if (!(std::fabs(x) > kTiny && std::fabs(x) <= kFastLimit)) return Otherwise(x);
    const auto [step, rest] = internal::ReduceBySteps(x, kStep);
    const auto index = static_cast<std::uint64_t>(step) % kSteps;
    const RoundedEnds ends = TimesPower(internal::kPowersOfTwo[index], rest);
    if (!ends.Agree()) return ExpSlowly(x);
    const std::int64_t exponent = step >> 7;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(ends.lower) +
                                 (static_cast<std::uint64_t>(exponent) << 52U));
}

}  // namespace corvale::Elementary
