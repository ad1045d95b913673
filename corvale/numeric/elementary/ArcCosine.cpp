// Arc cosine, correctly rounded.
//
// The leading bits of |x| lead to a breakpoint, an angle a with a tangent t of 9 bits. With the
// sine s = sqrt(1 - x^2) the angle of |x| is a plus the arc sine of w = cos a (s - t |x|), which is
// less than 0.01225: no division, and the leading products are exact. A negative x has the angle
// that is left to pi.
//
// Near 1 the sine is small and the angle is twice the arc sine of sqrt((1 - |x|) / 2), near 0 it is
// pi / 2 less the arc sine of x.
//
// Where the rounding test fails, MidpointTests.hpp compares x with the cosine of the midpoint of the
// two doubles that are left.
#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/ArcSeries.hpp>
#include <corvale/numeric/elementary/ArcTable.hpp>
#include <corvale/numeric/elementary/MidpointTests.hpp>

#include <array>
#include <cmath>
#include <iterator>

namespace corvale::Elementary {

namespace {

using internal::ArcSineTail;
using internal::Breakpoint;
using internal::DoubleDouble;
using internal::FastTwoSum;
using internal::HalfTurn;
using internal::HalfTurnOf;
using internal::Head;
using internal::kPi;
using internal::kPiRest;
using internal::RoundBothEnds;
using internal::RoundedEnds;

// The error of the fast phase relative to the angle of |x|; proofs/elementary/.
constexpr double kError = 0x1.4p-68;
// The errors near 1, where the series loses most: the first is relative to the cube of the root, the
// second to the root.
constexpr double kNearOneError = 0x1p-50;
constexpr double kRootError = 0x1p-73;

// The table's cells are as wide as 2^-9; the first 4 and the last 4 are not used.
constexpr double kCells = 512.0;
constexpr double kLeast = 4.0 / kCells;
constexpr double kGreatest = 1.0 - 4.0 / kCells;
static_assert(std::size(internal::kCosineCells) == 512);

double Rounded(RoundedEnds ends, double x) noexcept {
    if (ends.Agree()) return ends.lower;
    return internal::IsArcCosineAbove(x, ends) ? ends.upper : ends.lower;
}

// The square root of square.high + square.low: its head has 26 bits.
DoubleDouble SquareRoot(const DoubleDouble& square) noexcept {
    const double root = std::sqrt(square.high);
    const double head = Head(root);
    const double tail = root - head;
    const double rest = ((square.high - head * head) - tail * (head + root)) + square.low;
    return {head, tail + rest * (0.5 / root)};
}

// For |x| >= kGreatest. Out of line, as the next, so that its values do not take registers.
[[gnu::noinline]] double NearOne(double magnitude, double x) noexcept {
    if (magnitude == 1.0) return x > 0.0 ? 0.0 : kPi;
    if (!(magnitude < 1.0)) return internal::kNaN;
    const double square = 0.5 * (1.0 - magnitude);
    const DoubleDouble sine = SquareRoot({square, 0.0});
    const double root = sine.high + sine.low;
    const double low = sine.low + root * internal::ArcSineRatio(square);
    const HalfTurn& half = HalfTurnOf(x);
    const DoubleDouble sum = FastTwoSum(half.high, half.sign * (2.0 * sine.high));
    return Rounded(RoundBothEnds({sum.high, sum.low + (half.rest + half.sign * (2.0 * low))},
                                 root * (kNearOneError * square + kRootError)),
                   x);
}

// For |x| < kLeast.
[[gnu::noinline]] double NearZero(double x) noexcept {
    const DoubleDouble sum = FastTwoSum(kPi / 2, -x);
    return Rounded(RoundBothEnds({sum.high, sum.low + (kPiRest / 2 - ArcSineTail(x))}, kError), x);
}

// `x` rounded to a multiple of 2^-26, for |x| up to 1.
double GridHead(double x) noexcept {
    constexpr double kToGrid = 0x1.8p+26;
    return (x + kToGrid) - kToGrid;
}

const Breakpoint& BreakpointOf(double magnitude) noexcept {
    return internal::kBreakpoints[internal::kCosineCells[static_cast<int>(magnitude * kCells)]];
}

}  // namespace

double ArcCos(double x) noexcept {
    const double magnitude = std::fabs(x);
    if (!(magnitude >= kLeast && magnitude < kGreatest)) [[unlikely]]
        return magnitude < kLeast ? NearZero(x) : NearOne(magnitude, x);

    // 1 - x^2 = square + squareRest, the first exactly: the head is a multiple of 2^-26.
    const double head = GridHead(magnitude);
    const double tail = magnitude - head;
    const double square = 1.0 - head * head;
    const double squareRest = -(tail * (head + magnitude));

    // The sine: sineHead + sineRest, the first with 26 bits.
    const double root = std::sqrt(1.0 - magnitude * magnitude);
    const double sineHead = GridHead(root);
    const double sineTail = root - sineHead;
    const double error =
        ((square - sineHead * sineHead) - sineTail * (sineHead + root)) + squareRest;
    const double sineRest = sineTail + error * (0.5 / root);

    const Breakpoint& near = BreakpointOf(magnitude);
    const HalfTurn& half = HalfTurnOf(x);
    const double cosineHead = half.sign * near.cosineHead;
    const double cosineRest = half.sign * near.cosineRest;
    const double cosine = cosineHead + cosineRest;

    // w = lead + rest; the series starts from a double near w, before the rest is known.
    const double difference = sineHead - near.tangent * head;
    const double lead = difference * cosineHead;
    const double rest = difference * cosineRest + (sineRest - near.tangent * tail) * cosine;
    const double w = (root - near.tangent * magnitude) * cosine;
    const double halfSquare = 0.5 * (w * w);
    const double series = ArcSineTail(w) + (lead - w) * halfSquare;

    const DoubleDouble sum = FastTwoSum(half.high + half.sign * near.angleHigh, lead);
    const double early = sum.low + (half.rest + half.sign * near.angleLow) + series;
    const double late = rest * (1.0 + halfSquare);
    return Rounded(RoundBothEnds(sum.high, early, late, near.angleHigh * kError), x);
}

}  // namespace corvale::Elementary
