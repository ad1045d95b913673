#include <corvale/numeric/elementary/MidpointTests.hpp>

#include <corvale/numeric/elementary/ExponentialTable.hpp>
#include <corvale/numeric/elementary/WideSeries.hpp>

#include <algorithm>

namespace corvale::internal {

namespace {

// The last bits of a number of `width` words that rounding errors may reach, for the sums of this
// file: a series is off by 8 units, each doubling of an angle by less than 6 times as much.
constexpr std::int64_t kLostBits = 16;

WideReal TimesPowerOfTwo(WideReal a, std::int64_t power) noexcept {
    a.exponent += power;
    return a;
}

WideReal Difference(const WideReal& a, const WideReal& b, std::size_t width) noexcept {
    return Add(a, Negated(b), width);
}

// 54 bits: exact.
WideReal MidpointOf(RoundedEnds ends) noexcept {
    const WideReal sum = Add(WideFromDouble(ends.lower), WideFromDouble(ends.upper), kMiddle);
    return TimesPowerOfTwo(sum, -1);
}

// Whether `difference` of terms below 2^exponent is larger than its error.
bool IsDecided(const WideReal& difference, std::int64_t exponent, std::size_t width) noexcept {
    const auto bits = static_cast<std::int64_t>(64 * width);
    return !difference.IsZero() && difference.exponent > exponent - bits + kLostBits;
}

constexpr WideReal kLogTwo = {kLogarithmOfTwo, 0, false};

// A difference, and the exponent that bounds its terms: both are below 2^exponent.
struct Comparison {
    WideReal difference;
    std::int64_t exponent;
};

// Whether the difference is positive: with `width` words and, where those do not decide, with more.
template <typename Compare>
bool IsPositive(Compare compare, std::size_t width = kNarrow) noexcept {
    const auto [difference, exponent] = compare(width);
    if (width < kWide && !IsDecided(difference, exponent, width))
        return IsPositive(compare, 2 * width);
    return !difference.IsZero() && !difference.isNegative;
}

struct WideSineCosine {
    WideReal sine;
    WideReal cosine;
};

// From the sine and cosine of an angle those of its double.
WideSineCosine Doubled(const WideSineCosine& a, std::size_t width) noexcept {
    return {
        TimesPowerOfTwo(Multiply(a.sine, a.cosine, width), 1),
        Difference(Multiply(a.cosine, a.cosine, width), Multiply(a.sine, a.sine, width), width)};
}

// Of an angle below 4. Below 1 the sine is as good relative to its value as the cosine is.
WideSineCosine SineCosineOf(const WideReal& angle, std::size_t width) noexcept {
    const WideReal quarter = TimesPowerOfTwo(angle, -2);
    const WideSineCosine ofQuarter{SineSeries(quarter, width), CosineSeries(quarter, width)};
    return Doubled(Doubled(ofQuarter, width), width);
}

// 1 / a for a > 0: Newton's iteration doubles the 50 bits of the first approximation 4 times.
WideReal Reciprocal(const WideReal& a, std::size_t width) noexcept {
    const WideReal one = WideFromInteger(1, 0);
    const double lead = static_cast<double>(a.fraction[0]) * 0x1p-64;
    WideReal inverse = TimesPowerOfTwo(WideFromDouble(1.0 / lead), -a.exponent);
    for (int i = 0; i < 4; ++i) {
        const WideReal error = Difference(one, Multiply(a, inverse, width), width);
        inverse = Add(inverse, Multiply(inverse, error, width), width);
    }
    return inverse;
}

// ln((1 + q) / (1 - q)) = 2 (q + q^3/3 + q^5/5 + ...) for |q| < 2^-48: ten terms are 900 bits.
WideReal LogarithmOfRatio(const WideReal& q, std::size_t width) noexcept {
    const WideReal square = Multiply(q, q, width);
    const WideReal one = WideFromInteger(1, 0);
    WideReal sum{};
    for (const std::uint32_t n : {19U, 17U, 15U, 13U, 11U, 9U, 7U, 5U, 3U, 1U}) {
        const WideReal term = Normalised(Quotient(one.fraction, n, width), one.exponent, width);
        sum = Add(term, Multiply(square, sum, width), width);
    }
    return TimesPowerOfTwo(Multiply(q, sum, width), 1);
}

// ln(x / m^3), from the exact difference and sum of the two.
WideReal LogarithmOverCube(const WideReal& x, const WideReal& m, std::size_t width) noexcept {
    const WideReal cube = Multiply(Multiply(m, m, width), m, width);
    const WideReal sum = Add(x, cube, width);
    return LogarithmOfRatio(Multiply(Difference(x, cube, width), Reciprocal(sum, width), width),
                            width);
}

}  // namespace

// The terms are equal but for a relative 2^-52. Up to 1 each is good relative to itself; beyond, the
// sine or the cosine may be small and good relative to 1 alone.
bool IsArcTangentAbove(double y, double x, RoundedEnds ends) noexcept {
    const WideReal wideY = WideFromDouble(y), wideX = WideFromDouble(x);
    const WideReal m = MidpointOf(ends);
    return IsPositive([&](std::size_t width) noexcept -> Comparison {
        const auto [sine, cosine] = SineCosineOf(m, width);
        const WideReal difference =
            Difference(Multiply(wideY, cosine, width), Multiply(wideX, sine, width), width);
        const std::int64_t exponent =
            ends.lower < 1.0 ? wideY.exponent + 1 : std::max(wideY.exponent, wideX.exponent);
        return {difference, exponent};
    });
}

bool IsMidpointRatio(double y, double x, RoundedEnds ends) noexcept {
    const WideReal product = Multiply(MidpointOf(ends), WideFromDouble(x), kMiddle);
    return Difference(WideFromDouble(y), product, kMiddle).IsZero();
}

bool IsArcCosineAbove(double x, RoundedEnds ends) noexcept {
    const WideReal m = MidpointOf(ends);
    return IsPositive([&](std::size_t width) noexcept -> Comparison {
        return {Difference(SineCosineOf(m, width).cosine, WideFromDouble(x), width), 1};
    });
}

bool IsCubeRootAbove(double x, RoundedEnds ends) noexcept {
    const WideReal m = MidpointOf(ends);
    const WideReal cube = Multiply(Multiply(m, m, kMiddle), m, kMiddle);
    return !Difference(WideFromDouble(x), cube, kMiddle).isNegative;
}

// With v = ln(x / m^3) and w = 2^54 v - 3 k ln 2 the question is whether e^w > x. w is ln x to 50
// bits, so from about 0 to about 2.1; a quarter of it suits the series. 128 bits would not hold the
// cube.
bool IsPowerAbove(double x, int k, RoundedEnds ends) noexcept {
    const WideReal wideX = WideFromDouble(x);
    const WideReal m = MidpointOf(ends);
    WideReal power = WideFromInteger(3U * static_cast<std::uint64_t>(k < 0 ? -k : k), 0);
    power.isNegative = k < 0;
    return IsPositive(
        [&](std::size_t width) noexcept -> Comparison {
            const WideReal scaled = TimesPowerOfTwo(LogarithmOverCube(wideX, m, width), 54);
            const WideReal w = Difference(scaled, Multiply(power, kLogTwo, width), width);
            if (w.isNegative) return {w, w.exponent};  // below ln 1
            const WideReal root = ExponentialSeries(TimesPowerOfTwo(w, -2), width);
            const WideReal square = Multiply(root, root, width);
            return {Difference(Multiply(square, square, width), wideX, width), 4 + 64};
        },
        kMiddle);
}

}  // namespace corvale::internal
