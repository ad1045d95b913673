// Internal to numeric/: not installed, may change in any commit.
//
// The accurate phase of the arc functions and roots. The fast phase leaves two neighbouring doubles;
// the midpoint m between them decides. No function is evaluated a second time: its inverse at m
// is compared with the argument.
//
//     arc tangent of y / x > m    y cos m > x sin m
//     arc cosine of x > m         cos m > x
//     cube root of x > m          x > m^3
//     x^((1 - 2^-54) / 3) > m     ln(x / m^3) > 2^-54 ln x
//
// The cube is exact: 162 bits. The others are compared in 128 bits, and where both sides agree
// to what those are good for, in 256 and in 512. Equality would go down; it never occurs: sine and cosine of an
// algebraic number other than 0 have no algebraic ratio (Lindemann), and a midpoint has a bit too many
// to be a power (docs/elementary.md).
#pragma once

#include <corvale/numeric/elementary/DoubleDouble.hpp>

namespace corvale::internal {

/// Whether the angle of (x, y), from 0 to pi, lies above the midpoint of `ends`.
///
/// Precondition: y > 0; finite; `ends` are neighbours, the first at least 0.
[[nodiscard]] bool IsArcTangentAbove(double y, double x, RoundedEnds ends) noexcept;

/// Whether y / x is the midpoint of `ends` itself. Precondition as before.
[[nodiscard]] bool IsMidpointRatio(double y, double x, RoundedEnds ends) noexcept;

/// The same for the arc cosine of `x`. Precondition: |x| < 1.
[[nodiscard]] bool IsArcCosineAbove(double x, RoundedEnds ends) noexcept;

/// The same for the cube root of `x`. Precondition: x is from 1 to 8.
[[nodiscard]] bool IsCubeRootAbove(double x, RoundedEnds ends) noexcept;

/// The same for 2^-k (2^3k x)^((1 - 2^-54) / 3). Precondition: x is from 1 to 8.
[[nodiscard]] bool IsPowerAbove(double x, int k, RoundedEnds ends) noexcept;

}  // namespace corvale::internal
