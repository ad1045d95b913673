// Vectors of space: three doubles x, y, z, and their rotations.
//
// Shape      three components each; component 1 (x) is element 0
// Bad input  nothing fails: NaN and infinities spread as the formulas have them; squares overflow
//            from about 1e154 and vanish below about 1e-162 (no scaling)
// Aliasing   where a result is returned, arguments are read whole before a result exists: a result may be assigned to an input
// Threads    no state, no allocation: any number of threads at once
// Exactness  fixed order of operations, the same bits everywhere, around the one call of
//            Elementary.hpp that a comment names, correctly rounded. Which NaN comes out, its sign
//            included, is not promised
//
// The two rotations turn in opposite senses: `Rotate` about axis 3 by +t radians gives what
// `RodriguesRot` about (0, 0, 1) gives for -t in degrees.
#pragma once

#include <corvale/base/Module.hpp>
#include <corvale/numeric/Views.hpp>

#include <array>
#include <cstdint>

namespace corvale::GenFunctions {

/// x, y, z.
using Vector3 = std::array<double, 3>;

/// The cross product of `a` and `b`.
///
/// Units      the product of theirs
[[nodiscard]] CORVALE_API Vector3 Cross(const Vector3& a, const Vector3& b) noexcept;

/// `v` divided by its magnitude.
///
/// Units      none in the result
/// Bad input  a zero vector gives three NaN
[[nodiscard]] CORVALE_API Vector3 UnitVec(const Vector3& v) noexcept;

/// The magnitude of `v`: the root of the sum of its squares in the order x, y, z.
///
/// Units      that of `v`
[[nodiscard]] CORVALE_API double Mag(const Vector3& v) noexcept;

/// The angle between `a` and `b`, from 0 to pi. Exactly 0 or pi where the cosine is 1 or -1 within
/// 2.220446049250313e-16, which is added to its magnitude as doubles are.
///
/// Units      radians; `a` and `b` have any
/// Bad input  a zero vector gives NaN
/// Exactness  one arc cosine
[[nodiscard]] CORVALE_API double AngleOf2Vecs(const Vector3& a, const Vector3& b) noexcept;

/// The coordinates of `v` in a frame turned by `angle` about its axis `axis` (1 x, 2 y, 3 z): the
/// frame turns, not the vector. (1, 0, 0) by pi/2 about axis 3 gives (0, -1, 0).
///
/// Units      `angle` in radians; the result has the unit of `v`
/// Bad input  another axis returns `v`
/// Exactness  one sine and one cosine
[[nodiscard]] CORVALE_API Vector3 Rotate(const Vector3& v, std::int32_t axis,
                                         double angle) noexcept;

/// Turns `v` about the axis `k`, right-handed: a positive angle about +z takes +x toward +y.
///
/// Units      `angle` in degrees; the result has the unit of `v`; `k` has none
/// Bad input  `k` is used as passed: only |k| = 1 gives a rotation
/// Exactness  one sine and one cosine
/// Source     O. Rodrigues, J. Math. Pures Appl. 5 (1840), 380-440
[[nodiscard]] CORVALE_API Vector3 RodriguesRot(const Vector3& v, double angle,
                                               const Vector3& k) noexcept;

/// `RodriguesRot` for each vector of `v`, with the angle and the axis that have its number, several at
/// a time.
///
/// Units      as `RodriguesRot`
/// Shape      vectors of three components and angles with any strides and distances; the count is
///            that of `v`
/// Bad input  vectors of fewer than three components, or fewer angles, axes or results than vectors:
///            nothing is written
/// Aliasing   a result may overlap what is given with its own number in any way, nothing else
/// Exactness  each result has the bits that `RodriguesRot` gives
CORVALE_API void RodriguesRotEach(VectorSeries<const double> v, VectorView<const double> angle,
                                  VectorSeries<const double> k,
                                  VectorSeries<double> result) noexcept;

}  // namespace corvale::GenFunctions
