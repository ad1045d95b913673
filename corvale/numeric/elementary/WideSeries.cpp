#include <corvale/numeric/elementary/WideSeries.hpp>

namespace corvale::internal {

namespace {

// The last factor of the factorials: 35! > 2^132, 59! > 2^266 and 107! > 2^571, so that the first
// term that is left out is below a unit for every |r| < 1.
constexpr std::uint32_t LastFactor(std::size_t width) {
    return static_cast<std::uint32_t>(12 * width + 10);
}
static_assert(LastFactor(kNarrow) == 34 && LastFactor(kMiddle) == 58 && LastFactor(kWide) == 106);

// One step of sine and cosine: z (1 - u) / ((n - 1) n).
Fraction AlternatingStep(const Fraction& z, const Fraction& u, std::uint32_t n,
                         std::size_t width) noexcept {
    return Quotient(Product(z, Complement(u, width), width), (n - 1) * n, width);
}

Fraction SquareOf(const WideReal& r, std::size_t width) noexcept {
    const Fraction fraction = FractionOf(r, width);
    return Product(fraction, fraction, width);
}

}  // namespace

// sin r = r (1 - u2), u2 = z / (2 3) (1 - u4), u4 = z / (4 5) (1 - u6), ... with z = r^2.
//
// z is off by 3 units at most. A step adds them to the error of u, 1 for the complement and 1 for
// the product, divides by 6 or more and adds 1: the error of u stays below (e + 5) / 6 + 1 < 2.3.
// The factor r is not made a fraction: the result is as good relative to a tiny r.
WideReal SineSeries(const WideReal& r, std::size_t width) noexcept {
    const Fraction z = SquareOf(r, width);
    Fraction u{};
    for (std::uint32_t n = LastFactor(width); n >= 2; n -= 2)
        u = AlternatingStep(z, u, n + 1, width);
    return Multiply(r, {Complement(u, width), 0, false}, width);
}

// cos r = 1 - u1, u1 = z / (1 2) (1 - u3), ...: the error of u is at most (1.6 + 5) / 2 + 1 < 5.
WideReal CosineSeries(const WideReal& r, std::size_t width) noexcept {
    const Fraction z = SquareOf(r, width);
    Fraction u{};
    for (std::uint32_t n = LastFactor(width); n >= 2; n -= 2) u = AlternatingStep(z, u, n, width);
    return {Complement(u, width), 0, false};
}

// e^r - 1 = v1, v1 = (r + r v2) / 1, v2 = (r + r v3) / 2, ...: r (1 + v1) < 1 below ln 2, and the
// later ones are smaller. An error of v is at most (3 + 0.7 e) / n + 1 < 7 units; half of it counts.
WideReal ExponentialSeries(const WideReal& r, std::size_t width) noexcept {
    const Fraction fraction = FractionOf(r, width);
    Fraction v{};
    bool carries = false;
    for (std::uint32_t n = LastFactor(width); n >= 1; --n)
        v = Quotient(Sum(fraction, Product(fraction, v, width), width, carries), n, width);
    return Add(WideFromInteger(1, 0), Normalised(v, 0, width), width);
}

}  // namespace corvale::internal
