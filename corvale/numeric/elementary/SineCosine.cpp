// Sine and cosine, correctly rounded.
//
// An angle is reduced by steps of pi/512: x = k pi/512 + t, |t| <= pi/1024. A table has
// sin(k pi/512), of which a cosine is the entry from the other end, so that with
//
//     sin x = a cos t + b sin t,  a = sin(k pi/512), b = cos(k pi/512)
//     cos x = b cos t - a sin t
//
// all is a + b t, whose leading parts are exact, and terms below 2^-17, whose rounding errors are
// what is left: 2^-67 of a, or of t where a is 0.
//
// Quarter turns: in the odd ones a and b change places and t its sign, in the second half of a turn
// the sine changes its sign, in the second and third quarter the cosine.
//
// Three phases. Below 512 a subtraction of k times two constants leaves t good to 2^-78, which
// suffices unless the result itself is near 0: where k is a multiple of a quarter turn, but not 0, and beyond
// 512, integers reduce the angle (Rotate by 90 or 180 degrees is such a one). Where the rounding test
// of the fast phase fails, once in 12,000 calls, wide reals decide.
#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/AngleReduction.hpp>
#include <corvale/numeric/elementary/SineTable.hpp>
#include <corvale/numeric/elementary/WideSeries.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace corvale::Elementary {

namespace {

using internal::DoubleDouble;
using internal::Head;
using internal::TableValue;
using internal::WideReal;
using Angle = internal::ReducedAngle<DoubleDouble>;

constexpr unsigned kStepBits = 10;  // a turn has 1024 steps
constexpr std::uint32_t kQuarter = 256;
static_assert(4 * kQuarter == 1U << kStepBits && std::size(internal::kSines) == kQuarter + 1);

// pi/512. The head has 36 bits: its product with a number of steps below 2^17, as those of angles
// below 512 are, is exact.
constexpr internal::StepLength kStep = {0x1.921fb5444p-8, 0x1.68c234c4c6629p-47,
                                        0x1.45f306dc9c883p7};

// Below this |sin x| rounds to |x| and cos x to 1: x^2/6 and x^2/2 are less than half a unit.
constexpr double kTiny = 0x1p-27;
constexpr double kFastLimit = 512.0;

// The error of the fast phase relative to a, or to t where a is 0: proofs/elementary/.
constexpr double kError = 0x1.bp-68;

Angle ReduceByConstants(double x) noexcept {
    const auto [count, rest] = internal::ReduceBySteps(x, kStep);
    return {static_cast<std::uint32_t>(count), rest};
}

// sin and cos of a whole number of steps.
struct Node {
    TableValue sine;
    TableValue cosine;
};

TableValue WithSign(TableValue value, std::uint32_t isNegative) noexcept {
    const std::uint64_t sign = std::uint64_t{isNegative} << 63U;
    const auto flip = [sign](double x) {
        return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) ^ sign);
    };
    return {flip(value.head), flip(value.rest)};
}

// In odd quarters the index runs backwards; the sine is negative in the second half of a turn, the
// cosine a quarter earlier. No branch: each would be mispredicted every other time.
Node NodeAt(std::uint32_t step) noexcept {
    const std::uint32_t odd = 0U - step / kQuarter % 2;  // all bits, or none
    const std::uint32_t index = (kQuarter & odd) + ((step % kQuarter ^ odd) - odd);
    return {WithSign(internal::kSines[index], step / (2 * kQuarter) % 2),
            WithSign(internal::kSines[kQuarter - index], (step + kQuarter) / (2 * kQuarter) % 2)};
}

// What sine and cosine of one angle share.
struct Remainder {
    double t;              // the double nearest to the remainder
    double head;           // its first 26 bits
    double tail;           // the rest, with what the double lacks
    double sineLessT;      // sin t - t
    double cosineLessOne;  // cos t - 1
};

// The polynomials are good to 2^-76 of t and to 2^-87.
Remainder PowersOf(DoubleDouble t) noexcept {
    const double head = Head(t.high);
    const double square = t.high * t.high;
    const double sine =
        -0x1.5555555555555p-3 + square * (0x1.1111110f8755cp-7 + square * -0x1.9fafdf4a16769p-13);
    const double cosine = 0x1.555555555549ep-5 + square * -0x1.6c16bb2a49e76p-10;
    return {t.high, head, (t.high - head) + t.low, t.high * square * sine,
            square * square * cosine - (0.5 * square + t.high * t.low)};
}

// Two doubles: SinCos computes both results at once, in a seventh less time (bench: Rotate).
using Pair [[gnu::vector_size(16)]] = double;

// Real is double or Pair: tables' values, and the ends of the intervals that hold the results.
template <typename Real>
struct Terms {
    Real head;
    Real rest;
};
template <typename Real>
struct Ends {
    Real lower;
    Real upper;
};

// Both ends of a cos t + b sin t. `magnitude` is that of a, or of t where a is 0.
template <typename Real>
Ends<Real> Combine(const Terms<Real>& a, const Terms<Real>& b, Real magnitude,
                   const Remainder& r) noexcept {
    const Real product = b.head * r.head;
    const Real high = a.head + product;
    const Real highRest = product - (high - a.head);
    const Real slope = b.head * r.tail + b.rest * r.t;
    const Real curve = (a.head + a.rest) * r.cosineLessOne + (b.head + b.rest) * r.sineLessT;
    const Real low = highRest + (a.rest + (slope + curve));
    const Real error = kError * magnitude;
    return {high + (low - error), high + (low + error)};
}

// sin(x + quarters pi/2) by wide reals.
double SineSlowly(double x, std::uint32_t quarters) noexcept {
    return internal::Decided([x, quarters](std::size_t width) noexcept {
        const auto [step, rest] = internal::ReduceWide(x, 2, width);
        const std::uint32_t quarter = step + quarters;
        WideReal sine = quarter % 2 == 0 ? internal::SineSeries(rest, width)
                                         : internal::CosineSeries(rest, width);
        if (quarter % 4 >= 2) sine.isNegative = !sine.isNegative;
        return sine;
    });
}

double Decide(double lower, double upper, double x, std::uint32_t quarters) noexcept {
    return lower == upper ? lower : SineSlowly(x, quarters);
}

// a is at least half a step's sine, which t never reaches, or 0.
double Magnitude(const TableValue& a, const Remainder& r) noexcept {
    return std::max(std::fabs(a.head), std::fabs(r.t));
}

// What is wanted of an angle, and the values for arguments without a reduction. A cosine is the sine
// a quarter turn later.
template <std::uint32_t kQuarters>
struct OneWanted {
    static double Of(double x, const Angle& angle) noexcept {
        const auto [a, b] = NodeAt(angle.step + kQuarters * kQuarter);
        const Remainder r = PowersOf(angle.rest);
        const auto [lower, upper] =
            Combine<double>({a.head, a.rest}, {b.head, b.rest}, Magnitude(a, r), r);
        return Decide(lower, upper, x, kQuarters);
    }
    static double OfTiny(double x) noexcept { return kQuarters == 0 ? x : 1.0; }
    static double OfNone() noexcept { return internal::kNaN; }
};
struct BothWanted {
    static SineCosine Of(double x, const Angle& angle) noexcept {
        const auto [a, b] = NodeAt(angle.step);
        const Remainder r = PowersOf(angle.rest);
        const Terms<Pair> first = {Pair{a.head, b.head}, Pair{a.rest, b.rest}};
        const Terms<Pair> second = {Pair{b.head, -a.head}, Pair{b.rest, -a.rest}};
        const Pair magnitudes = {Magnitude(a, r), Magnitude(b, r)};
        const auto [lower, upper] = Combine(first, second, magnitudes, r);
        return {Decide(lower[0], upper[0], x, 0), Decide(lower[1], upper[1], x, 1)};
    }
    static SineCosine OfTiny(double x) noexcept { return {x, 1.0}; }
    static SineCosine OfNone() noexcept { return {internal::kNaN, internal::kNaN}; }
};

// Tiny arguments, large ones, those near a multiple of a quarter turn, and those that are no
// angle. Out of line, so that the others keep their values in registers.
template <typename Wanted>
[[gnu::noinline]] auto Otherwise(double x) noexcept {
    if (std::fabs(x) < kTiny) return Wanted::OfTiny(x);
    if (!(std::fabs(x) <= std::numeric_limits<double>::max())) return Wanted::OfNone();
    return Wanted::Of(x, internal::ReduceExactly(x, kStepBits));
}

template <typename Wanted>
auto Evaluate(double x) noexcept {
    if (!(std::fabs(x) >= kTiny && std::fabs(x) < kFastLimit)) return Otherwise<Wanted>(x);
    const Angle angle = ReduceByConstants(x);
    const bool isNearZero = angle.step % kQuarter == 0 && angle.step != 0;
    return isNearZero ? Otherwise<Wanted>(x) : Wanted::Of(x, angle);
}

}  // namespace

double Sin(double x) noexcept {
    return Evaluate<OneWanted<0>>(x);
}

double Cos(double x) noexcept {
    return Evaluate<OneWanted<1>>(x);
}

SineCosine SinCos(double x) noexcept {
    return Evaluate<BothWanted>(x);
}

}  // namespace corvale::Elementary
