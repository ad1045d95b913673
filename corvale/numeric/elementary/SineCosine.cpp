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
#include <corvale/numeric/elementary/SineLanes.hpp>
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

// What sine and cosine of one angle share. Real is double, or a vector with an angle in each lane.
template <typename Real>
struct Remainder {
    Real t;              // the double nearest to the remainder
    Real head;           // its first 26 bits
    Real tail;           // the rest, with what the double lacks
    Real sineLessT;      // sin t - t
    Real cosineLessOne;  // cos t - 1
};

// The polynomials are good to 2^-76 of t and to 2^-87.
template <typename Real>
CORVALE_INLINE Remainder<Real> PowersOf(const Real& t, const Real& head, const Real& low) noexcept {
    const Real square = t * t;
    const Real sine =
        -0x1.5555555555555p-3 + square * (0x1.1111110f8755cp-7 + square * -0x1.9fafdf4a16769p-13);
    const Real cosine = 0x1.555555555549ep-5 + square * -0x1.6c16bb2a49e76p-10;
    return {t, head, (t - head) + low, t * square * sine,
            square * square * cosine - (0.5 * square + t * low)};
}
Remainder<double> PowersOf(DoubleDouble t) noexcept {
    return PowersOf(t.high, Head(t.high), t.low);
}

// Two doubles: SinCos computes both results at once, in a seventh less time (bench: Rotate).
using Pair [[gnu::vector_size(16)]] = double;

// Real is double, Pair or a vector of lanes: tables' values, and the ends of the intervals that hold the results.
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
template <typename Real, typename Shared>
CORVALE_INLINE Ends<Real> Combine(const Terms<Real>& a, const Terms<Real>& b, const Real& magnitude,
                                  const Remainder<Shared>& r) noexcept {
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
double Magnitude(const TableValue& a, const Remainder<double>& r) noexcept {
    return std::max(std::fabs(a.head), std::fabs(r.t));
}

// What is wanted of an angle, and the values for arguments without a reduction. A cosine is the sine
// a quarter turn later.
template <std::uint32_t kQuarters>
struct OneWanted {
    static double Of(double x, const Angle& angle) noexcept {
        const auto [a, b] = NodeAt(angle.step + kQuarters * kQuarter);
        const Remainder<double> r = PowersOf(angle.rest);
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
        const Remainder<double> r = PowersOf(angle.rest);
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

// The fast phase for an angle in each lane; the lanes for which it is none are done one by one.
template <class L>
struct SinCosLanes {
    using V = typename L::Reals;
    using Words = typename L::Words;
    using Bits = typename L::Bits;

    CORVALE_INLINE void operator()(const double* angles, std::size_t count, double* sines,
                                   double* cosines) const noexcept {
        for (std::size_t i = 0; i < count; i += L::kLanes)
            Evaluate((V)internal::At<typename L::Vector>(angles + i), sines + i, cosines + i);
    }

    CORVALE_INLINE static V Absolute(const V& x) noexcept {
        return (V)((Words)x & (Words{} + INT64_MAX));
    }
    CORVALE_INLINE static V Larger(const V& x, const V& y) noexcept { return x < y ? y : x; }

    CORVALE_INLINE static void Evaluate(const V& x, double* sines, double* cosines) noexcept {
        constexpr double kToWhole = 0x1.8p52;  // as ReduceBySteps has it
        const V shifted = x * kStep.reciprocal + kToWhole;
        const V steps = shifted - kToWhole;
        const V exact = x - steps * kStep.head;
        const V restOfSteps = steps * kStep.rest;
        const V t = exact - restOfSteps;
        const Words allSteps = (Words)shifted - (Words)internal::Splat<V>(kToWhole);
        const Words step = allSteps & (4 * std::uint64_t{kQuarter} - 1);

        const V head = (V)((Words)t & ~(Words{} + ((std::uint64_t{1} << 27U) - 1)));
        const Remainder<V> r = PowersOf<V>(t, head, (exact - t) - restOfSteps);
        Terms<V> a, b;
        FindNodes(step, a, b);
        const V ofT = Absolute(t);
        const auto [sine, otherSine] = Combine<V>(a, b, Larger(Absolute(a.head), ofT), r);
        const auto [cosine, otherCosine] =
            Combine<V>(b, {-a.head, -a.rest}, Larger(Absolute(b.head), ofT), r);
        internal::At<typename L::Vector>(sines) = sine;
        internal::At<typename L::Vector>(cosines) = cosine;

        const V size = Absolute(x);
        const Bits isDone = (sine == otherSine) & (cosine == otherCosine) & (size >= kTiny) &
                            (size < kFastLimit) &
                            (((step & (kQuarter - 1)) != 0) | (allSteps == 0));
        for (std::size_t lane = 0; lane < L::kLanes; ++lane)
            if (isDone[lane] == 0) [[unlikely]] {
                const auto [s, c] = SinCos(x[lane]);
                sines[lane] = s, cosines[lane] = c;
            }
    }

    // NodeAt in lanes.
    CORVALE_INLINE static void FindNodes(const Words& step, Terms<V>& sine,
                                         Terms<V>& cosine) noexcept {
        const Words odd = -((step >> 8U) & 1U);
        const Words index = (kQuarter & odd) + (((step & (kQuarter - 1)) ^ odd) - odd);
        const TableValue* s[L::kLanes];
        const TableValue* c[L::kLanes];
        for (std::size_t lane = 0; lane < L::kLanes; ++lane) {
            s[lane] = internal::kSines + index[lane];
            c[lane] = internal::kSines + (kQuarter - index[lane]);
        }
        const Words sineSign = (step >> 9U) << 63U;
        const Words cosineSign = ((step + kQuarter) >> 9U) << 63U;
        sine = {(V)((Words)Pick<&TableValue::head>(s) ^ sineSign),
                (V)((Words)Pick<&TableValue::rest>(s) ^ sineSign)};
        cosine = {(V)((Words)Pick<&TableValue::head>(c) ^ cosineSign),
                  (V)((Words)Pick<&TableValue::rest>(c) ^ cosineSign)};
    }
    template <auto member>
    CORVALE_INLINE static V Pick(const TableValue* const* from) noexcept {
        if constexpr (L::kLanes == 4)
            return V{from[0]->*member, from[1]->*member, from[2]->*member, from[3]->*member};
        else
            return V{from[0]->*member, from[1]->*member};
    }
};
static_assert(kQuarter == 1U << 8U);

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

namespace corvale::internal {

void SinCosOfMany(const double* angles, std::size_t count, double* sines,
                  double* cosines) noexcept {
    OnBestPath<Elementary::SinCosLanes, FourLanes, TwoLanes>(angles, count, sines, cosines);
}

}  // namespace corvale::internal
