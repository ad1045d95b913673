// Internal to numeric/: not installed, may change in any commit.
//
// What the arc functions share: pi, the mirror for arguments left of the y axis, and the series
// after their leading terms.
//
// Source     the coefficients are Sollya's fpminimax; proofs/elementary proves their errors
#pragma once

#include <corvale/numeric/elementary/DoubleDouble.hpp>

#include <bit>
#include <cstdint>

namespace corvale::internal {

/// The double nearest to pi, which is a multiple of 2^-48, and the rest.
inline constexpr double kPi = 0x1.921fb54442d18p+1;
inline constexpr double kPiRest = 0x1.1a62633145c07p-53;

/// Mirrors an angle at the y axis, or leaves it: high + rest + sign angle.
struct HalfTurn {
    double high;
    double rest;
    double sign;
};
inline constexpr HalfTurn kHalfTurns[] = {{0.0, 0.0, 1.0}, {kPi, kPiRest, -1.0}};

/// The mirror for an angle whose cosine has the sign of `x`. From a table: the sign is random.
inline const HalfTurn& HalfTurnOf(double x) noexcept {
    return kHalfTurns[std::bit_cast<std::uint64_t>(x) >> 63U];
}

/// Both ends of high + early + late +- error. The error is added to what is known first: its
/// addition then takes no time.
inline RoundedEnds RoundBothEnds(double high, double early, double late, double error) noexcept {
    return {high + ((early - error) + late), high + ((early + error) + late)};
}

/// arctan r - r for |r| < 2^-6.98. The polynomial is good to 2^-73 of arctan r.
inline double ArcTangentTail(double r) noexcept {
    const double z = r * r;
    const double early = -0x1.5555555555555p-2 + z * 0x1.999999998c436p-3;
    const double late = -0x1.24924410f405p-3 + z * 0x1.c5e20578c65c6p-4;
    return r * z * (early + z * z * late);
}

/// arcsin r - r for |r| < 0.01225. The polynomial is good to 2^-80.
inline double ArcSineTail(double r) noexcept {
    const double z = r * r;
    const double early = 0x1.5555555555555p-3 + z * 0x1.3333333338ba4p-4;
    const double late = 0x1.6db6d981a5ccbp-5 + z * 0x1.f20a50f1f95b6p-6;
    return r * z * (early + z * z * late);
}

/// arcsin r / r - 1 for z = r^2 up to 2^-8. The polynomial is good to 2^-69.
inline double ArcSineRatio(double z) noexcept {
    const double late =
        0x1.f1c72c5015addp-6 + z * (0x1.6e7c63fdcf527p-6 + z * 0x1.22f17526e9124p-6);
    return z * (0x1.5555555555555p-3 +
                z * (0x1.3333333333b04p-4 + z * (0x1.6db6db69a3f21p-5 + z * late)));
}

}  // namespace corvale::internal
