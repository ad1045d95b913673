// Internal to numeric/: not installed, may change in any commit.
#pragma once

namespace corvale::internal {

/// x^0.3333333333333333 for x >= 0, correctly rounded. The exponent is the double (1 - 2^-54) / 3, so
/// this is a little less than the cube root where x > 1 and a little more below.
///
/// Bad input  a negative x gives the power of |x|; NaN gives the NaN of all elementary functions
[[nodiscard]] double PowerOfThird(double x) noexcept;

}  // namespace corvale::internal
