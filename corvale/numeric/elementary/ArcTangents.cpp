// Arc tangent of one and of two arguments, correctly rounded.
//
// The leading bits of y / x lead to a breakpoint, an angle with a tangent t of 9 bits. The angle is
// that one plus the arc tangent of r = (y - t x) / (x + t y), |r| < 2^-6.98. The few bits of t leave
// the leading products exact, so r is good to 2^-75. Only its cube and higher powers are plain
// doubles: the angle is good to 2^-68 of its value.
//
// Beyond the table the angle of a ratio r below 2^-7 is r + arctan r - r, and that of a ratio from
// 2^7 up is left to pi / 2. Left of the y axis angles are mirrored.
//
// Where the rounding test fails, once in some 10,000 calls, MidpointTests.hpp compares the angle with
// the midpoint of the two doubles that are left.
//
// Why not a series around each breakpoint: it saves the division, but takes seven coefficients each.
#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/ArcSeries.hpp>
#include <corvale/numeric/elementary/ArcTable.hpp>
#include <corvale/numeric/elementary/MidpointTests.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace corvale::Elementary {

namespace {

using internal::ArcTangentTail;
using internal::Breakpoint;
using internal::DoubleDouble;
using internal::FastTwoSum;
using internal::HalfTurn;
using internal::HalfTurnOf;
using internal::Head;
using internal::kBias;
using internal::kFractionBits;
using internal::kNaN;
using internal::kPi;
using internal::kPiRest;
using internal::PowerOfTwo;
using internal::RoundBothEnds;
using internal::RoundedEnds;

// The errors of the fast phase; proofs/elementary/. The first is relative to the breakpoint's angle.
// Below the first breakpoint the cube is larger beside the angle, to which the second is relative.
constexpr double kError = 0x1p-67;
constexpr double kSmallError = 0x1p-64;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kThreeQuartersOfPi = 0x1.2d97c7f3321d2p+1;

// The table's cells: the exponent and 5 bits of a ratio from 2^-7 to 2^7.
constexpr unsigned kCellShift = 47;
constexpr double kLeastRatio = 0x1p-7;
constexpr std::uint64_t kFirstCell = std::bit_cast<std::uint64_t>(kLeastRatio) >> kCellShift;
constexpr std::uint64_t kCells = std::size(internal::kTangentCells);
static_assert(kCells == std::uint64_t{14} * 32);

// At least kCells for a ratio outside the table, and for NaN.
std::uint64_t CellOf(double ratio) noexcept {
    return (std::bit_cast<std::uint64_t>(ratio) >> kCellShift) - kFirstCell;
}

const Breakpoint& BreakpointOf(std::uint64_t cell) noexcept {
    return internal::kBreakpoints[internal::kTangentCells[cell]];
}

// `r` rounded to a multiple of 2^-32: 26 bits where |r| < 2^-6.
double GridHead(double r) noexcept {
    constexpr double kToGrid = 0x1.8p+20;
    return (r + kToGrid) - kToGrid;
}

// Where the ends differ y and x decide.
double Rounded(RoundedEnds ends, double y, double x) noexcept {
    if (ends.Agree()) return ends.lower;
    return internal::IsArcTangentAbove(y, x, ends) ? ends.upper : ends.lower;
}

// fraction 2^exponent with the fraction from 1 to 2.
struct Scaled {
    double fraction;
    int exponent;
};

Scaled Scale(double x) noexcept {
    const bool isSubnormal = x < std::numeric_limits<double>::min();
    const auto bits = std::bit_cast<std::uint64_t>(isSubnormal ? x * 0x1p+54 : x);
    const int biased = static_cast<int>(bits >> kFractionBits);
    const std::uint64_t fraction =
        bits - (static_cast<std::uint64_t>(biased - kBias) << kFractionBits);
    return {std::bit_cast<double>(fraction), biased - kBias - (isSubnormal ? 54 : 0)};
}

// The arc tangent of a ratio below 2^-7, as (high + low) 2^exponent; high has 26 bits.
struct SmallAngle {
    double high;
    double low;
    int exponent;
};

// 2^exponent, but not below 2^-190: from there down a ratio's cube, and the ratio beside pi, no
// longer count.
double ScaleOf(int exponent) noexcept {
    return PowerOfTwo(std::max(exponent, -190));
}

SmallAngle SmallAngleOf(double y, double x) noexcept {
    const Scaled over = Scale(y);
    const Scaled under = Scale(x);
    const int exponent = over.exponent - under.exponent;
    const double inverse = 1.0 / under.fraction;
    const double ratio = over.fraction * inverse;
    const double head = Head(ratio);
    const double divisor = Head(under.fraction);
    const double rest = (over.fraction - head * divisor) - head * (under.fraction - divisor);
    const double scale = ScaleOf(exponent);
    return {head, rest * inverse + ArcTangentTail(ratio * scale) / scale, exponent};
}

// The double nearest to a half or quarter turn plus or minus a small angle.
double RoundedBeside(const HalfTurn& turn, const SmallAngle& angle, double y, double x) noexcept {
    const double factor = turn.sign * ScaleOf(angle.exponent);
    const DoubleDouble sum = FastTwoSum(turn.high, factor * angle.high);
    return Rounded(RoundBothEnds({sum.high, sum.low + (turn.rest + factor * angle.low)}, kError), y,
                   x);
}

// The angle is less than the quotient by next to nothing: a tie that the division rounded up goes
// down.
double SubnormalAngle(double quotient, double y, double x) noexcept {
    if (quotient == 0.0) return quotient;
    const double below = std::bit_cast<double>(std::bit_cast<std::uint64_t>(quotient) - 1);
    return internal::IsMidpointRatio(y, x, {below, quotient}) ? below : quotient;
}

double SmallPositiveAngle(double quotient, double y, double x) noexcept {
    if (quotient <= std::numeric_limits<double>::min()) return SubnormalAngle(quotient, y, x);
    const SmallAngle angle = SmallAngleOf(y, x);
    const auto [lower, upper] = RoundBothEnds({angle.high, angle.low}, angle.high * kSmallError);
    const double scale = PowerOfTwo(angle.exponent);
    return Rounded({lower * scale, upper * scale}, y, x);
}

// For a ratio in the table and arguments whose heads and products are normal.
double TableAngle(std::uint64_t cell, double y, double x) noexcept {
    const double magnitude = std::fabs(x);
    const Breakpoint& near = BreakpointOf(cell);
    const double t = near.tangent;
    const double yHead = Head(y);
    const double xHead = Head(magnitude);
    const double yTail = y - yHead;
    const double xTail = magnitude - xHead;
    const double leading = y - t * xHead;
    const double following = -(t * xTail);
    const double sum = magnitude + t * y;
    const double divisor = Head(sum);
    const double divisorRest = ((xHead - divisor) + t * yHead) + (xTail + t * yTail);

    const double inverse = 1.0 / sum;
    const double r = (leading + following) * inverse;
    const double rHead = GridHead(r);
    const double rest = (leading - rHead * divisor) + (following - rHead * divisorRest);

    const HalfTurn& half = HalfTurnOf(x);
    const double high = half.high + half.sign * (near.angleHigh + rHead);
    const double early = half.rest + half.sign * near.angleLow;
    const double late = half.sign * (rest * inverse + ArcTangentTail(r));
    return Rounded(RoundBothEnds(high, early, late, near.angleHigh * kError), y, x);
}

// The angle of a point on an axis or infinitely far.
double AxisAngle(double y, double x) noexcept {
    if (y == kInfinity && std::fabs(x) == kInfinity) return x > 0.0 ? kPi / 4 : kThreeQuartersOfPi;
    if (y == kInfinity || (x == 0.0 && y != 0.0)) return kPi / 2;
    return HalfTurnOf(x).high;
}

// The angle of positive finite y and |x|.
double FiniteAngle(double y, double x) noexcept {
    const double magnitude = std::fabs(x);
    const double quotient = y / magnitude;
    const std::uint64_t cell = CellOf(quotient);
    if (cell < kCells) {
        const double scale = PowerOfTwo(-std::clamp(Scale(magnitude).exponent, -1022, 1022));
        return TableAngle(cell, y * scale, x * scale);
    }
    if (quotient > 1.0) {
        const HalfTurn quarter{kPi / 2, kPiRest / 2, -HalfTurnOf(x).sign};
        return RoundedBeside(quarter, SmallAngleOf(magnitude, y), y, x);
    }
    if (x > 0.0) return SmallPositiveAngle(quotient, y, x);
    return RoundedBeside(HalfTurnOf(x), SmallAngleOf(y, magnitude), y, x);
}

// For the arguments that the fast phase does not take. Out of line, so that its values do not take
// registers.
[[gnu::noinline]] double Otherwise(double y, double x) noexcept {
    if (std::isnan(y) || std::isnan(x)) return kNaN;
    const double magnitude = std::fabs(y);
    const bool isOrdinary =
        magnitude > 0.0 && magnitude < kInfinity && std::fabs(x) > 0.0 && std::fabs(x) < kInfinity;
    return std::copysign(isOrdinary ? FiniteAngle(magnitude, x) : AxisAngle(magnitude, x), y);
}

// arctan x for x >= 0 outside the table.
[[gnu::noinline]] double ArcTanOutside(double x) noexcept {
    if (x < 0x1p-27) return x;  // x^3 / 3 is less than half a unit of x
    if (x < kLeastRatio)
        return Rounded(RoundBothEnds({x, ArcTangentTail(x)}, x * kSmallError), x, 1.0);
    return x < kInfinity ? FiniteAngle(x, 1.0) : kPi / 2;
}

// Whether x lies far enough from the ends of the range for all products.
bool IsMiddling(double x) noexcept {
    constexpr std::uint64_t kLeast = kBias - 900;
    return ((std::bit_cast<std::uint64_t>(x) >> kFractionBits) & 0x7FFU) - kLeast < 1800;
}

}  // namespace

double ArcTan(double x) noexcept {
    const double magnitude = std::fabs(x);
    const std::uint64_t cell = CellOf(magnitude);
    if (cell >= kCells) [[unlikely]]
        return std::isnan(x) ? kNaN : std::copysign(ArcTanOutside(magnitude), x);

    // TableAngle with 1 for |x|, written out: calling it takes 7 % more time (6.6 and 7.1 ns).
    const Breakpoint& near = BreakpointOf(cell);
    const double t = near.tangent;
    const double head = Head(magnitude);
    const double numerator = magnitude - t;
    const double sum = 1.0 + t * magnitude;
    const double divisor = Head(sum);
    const double divisorRest = ((1.0 - divisor) + t * head) + t * (magnitude - head);

    const double inverse = 1.0 / sum;
    const double r = numerator * inverse;
    const double rHead = GridHead(r);
    const double rest = (numerator - rHead * divisor) - rHead * divisorRest;

    const double high = near.angleHigh + rHead;
    const double late = rest * inverse + ArcTangentTail(r);
    const RoundedEnds ends = RoundBothEnds(high, near.angleLow, late, near.angleHigh * kError);
    return std::copysign(Rounded(ends, magnitude, 1.0), x);
}

double ArcTan2(double y, double x) noexcept {
    const double magnitude = std::fabs(y);
    const std::uint64_t cell = CellOf(magnitude / std::fabs(x));
    if (cell >= kCells || !IsMiddling(x)) [[unlikely]]
        return Otherwise(y, x);
    return std::copysign(TableAngle(cell, magnitude, x), y);
}

}  // namespace corvale::Elementary
