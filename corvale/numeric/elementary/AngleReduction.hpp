// Internal to numeric/: not installed, may change in any commit.
//
// Angles of any size reduced by a fraction of a turn, in integers (M. H. Payne, R. N. Hanek, ACM
// SIGNUM Newsletter 18 (1983), 19-24): |x| = m 2^e with a whole m of 53 bits. The bits of
// 1/(2 pi) whose product with m 2^e is whole are left out, the others make a window of words; the
// product of m and the window, without what is whole in it, is the fraction of the turn.
#pragma once

#include <corvale/numeric/elementary/DoubleDouble.hpp>
#include <corvale/numeric/elementary/WideReal.hpp>

namespace corvale::internal {

/// An angle as a whole number of steps and a remainder of at most half a step. Only the last bits
/// of `step` count, as many as its turn has steps: it is the number modulo 2^32.
template <typename Real>
struct ReducedAngle {
    std::uint32_t step;
    Real rest;
};

/// `x` by steps of a turn / 2^stepBits; the remainder in radians. Its relative error is below
/// 2^(3 - 64 width): two more words than `width` are computed with, which covers the 53 bits of m and the at
/// most 65 leading bits that the remainder loses where `x` lies near a multiple of a step.
///
/// Precondition: x is finite and |x| >= 2^-27; stepBits is 2 to 16.
[[nodiscard]] ReducedAngle<WideReal> ReduceWide(double x, unsigned stepBits,
                                                std::size_t width) noexcept;

/// The same with the remainder as a sum of two doubles, good to 2^-75 of its value.
[[nodiscard]] ReducedAngle<DoubleDouble> ReduceExactly(double x, unsigned stepBits) noexcept;

}  // namespace corvale::internal
