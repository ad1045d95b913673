// Cube root and x^((1 - 2^-54) / 3), correctly rounded.
//
// With x = 2^3k m, 1 <= m < 8, a cell of the table gives y = m^(1/3) but for 2^-17. y is cut to 17 bits,
// so that y^3 and m - y^3 are exact, and with q = (m - y^3) / y^3
//
//     m^(1/3) = y (1 + q)^(1/3) = y + y (q/3 - q^2/9 + 5 q^3/81 - ...),
//
// where the correction is 2^-17 of y and a plain double is good to 2^-68 of the result. The power is
// the cube root times e^(-ln x 2^-54 / 3) = 1 - ln x 2^-54 / 3 + ..., for which 18 bits of the
// logarithm suffice.
//
// Where the rounding test fails, once in some 10,000 calls, MidpointTests.hpp decides: the cube root
// exactly. Neither value is ever a midpoint: its cube would have more bits than a double, and the power
// is rational for x = 1 alone, since 2^54 would have to divide each exponent of a factor of x.
#include <corvale/numeric/elementary/CubeRoots.hpp>

#include <corvale/numeric/Elementary.hpp>

#include <corvale/numeric/elementary/CubeRootTable.hpp>
#include <corvale/numeric/elementary/MidpointTests.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

namespace corvale::internal {

namespace {

// The absolute error of the fast phase for roots from 1 to 2; proofs/elementary/.
constexpr double kError = 0x1p-67;

constexpr double kLogTwo = 0x1.62e42fefa39efp-1;
constexpr double kMinusThird = -0x1.5555555555555p-56;  // -2^-54 / 3

constexpr std::uint64_t kFraction = (std::uint64_t{1} << kFractionBits) - 1;
constexpr std::uint64_t kOne = std::uint64_t{kBias} << kFractionBits;  // the bits of 1.0
constexpr double kThird = 1.0 / 3.0;
constexpr double kNinth = 1.0 / 9.0;
constexpr unsigned kCellBits = 5;
static_assert(std::size(kCubeRootCells) == 1U << kCellBits);

// q/3 - q^2/9 + 5 q^3/81 - 10 q^4/243 for |q| < 2^-15: (1 + q)^(1/3) - 1 but for 2^-71.
double RootSeries(double q) noexcept {
    return q *
           (0x1.5555555555556p-2 +
            q * (-0x1.c71c71c71c71cp-4 + q * (0x1.f9adba2a9297bp-5 + q * -0x1.511e91455c349p-5)));
}

double RoundedCubeRoot(double m, RoundedEnds ends) noexcept {
    if (ends.Agree()) return ends.lower;
    return IsCubeRootAbove(m, ends) ? ends.upper : ends.lower;
}

double RoundedPower(double m, int k, RoundedEnds ends) noexcept {
    if (ends.Agree()) return ends.lower;
    return IsPowerAbove(m, k, ends) ? ends.upper : ends.lower;
}

// Of x = 2^3k m: m, k, y with 17 bits, the correction relative to y, and ln x but for 2^-18.
struct RoughRoot {
    double m;
    int k;
    double y;
    double correction;
    double logarithm;
};

// For normal positive x, scaled by 2^exponentOffset before, which is a multiple of 2^3.
[[gnu::always_inline]] inline RoughRoot RoughRootOf(double x, int exponentOffset) noexcept {
    constexpr int kThirdsOfBias = 341;  // 1023 = 3 * 341
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const auto biased = static_cast<unsigned>(bits >> kFractionBits);
    const unsigned power = biased / 3;
    const std::uint64_t third = biased % 3;

    const std::uint64_t fraction = bits & kFraction;
    const std::uint64_t cell = fraction >> (kFractionBits - kCellBits);
    const CubeRootCell& near = kCubeRootCells[cell];
    const double first = std::bit_cast<double>(fraction | kOne);
    const double middle =
        std::bit_cast<double>((2 * cell + 1) << (kFractionBits - kCellBits - 1) | kOne);
    const double g = (first - middle) * near.reciprocal;

    constexpr double kToGrid = 0x1.8p+36;  // added and subtracted it rounds to multiples of 2^-16
    const double root = near.cubeRoot * kCubeRootsOfPowers[third];
    const double y = (root + root * (g * (kThird - g * kNinth)) + kToGrid) - kToGrid;
    const double cube = y * y * y;
    const double m = std::bit_cast<double>(fraction | (kOne + (third << kFractionBits)));
    const double q = (m - cube) * (1.0 / cube);

    const int exponent = static_cast<int>(biased) - kBias - exponentOffset;
    const double logarithm = exponent * kLogTwo + (near.logarithm + g * (1.0 - 0.5 * g));
    return {m, static_cast<int>(power) - kThirdsOfBias - exponentOffset / 3, y, RootSeries(q),
            logarithm};
}

[[gnu::always_inline]] inline RoughRoot RoughRootOf(double x) noexcept {
    constexpr double kFromSubnormal = 0x1p+54;  // a power of 8 that makes it normal
    const bool isSubnormal = x < std::numeric_limits<double>::min();
    return RoughRootOf(isSubnormal ? x * kFromSubnormal : x, isSubnormal ? 54 : 0);
}

// Whether the root is neither x itself nor NaN.
bool HasRoot(double magnitude) noexcept {
    return magnitude > 0.0 && magnitude <= std::numeric_limits<double>::max();
}

}  // namespace

double PowerOfThird(double x) noexcept {
    const double magnitude = std::fabs(x);
    if (!HasRoot(magnitude)) [[unlikely]]
        return std::isnan(x) ? kNaN : magnitude;
    const RoughRoot rough = RoughRootOf(magnitude);
    const double late = rough.logarithm * kMinusThird;
    const double low = rough.y * (rough.correction + (late + late * rough.correction));
    const double root = RoundedPower(rough.m, rough.k, RoundBothEnds({rough.y, low}, kError));
    return root * PowerOfTwo(rough.k);
}

}  // namespace corvale::internal

namespace corvale::Elementary {

double CubeRoot(double x) noexcept {
    using namespace internal;
    const double magnitude = std::fabs(x);
    if (!HasRoot(magnitude)) [[unlikely]]
        return std::isnan(x) ? kNaN : x;
    const RoughRoot rough = RoughRootOf(magnitude);
    const double low = rough.y * rough.correction;
    const double root = RoundedCubeRoot(rough.m, RoundBothEnds({rough.y, low}, kError));
    return std::copysign(root * PowerOfTwo(rough.k), x);
}

}  // namespace corvale::Elementary
