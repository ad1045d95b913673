// Elementary: functions of double, correctly rounded: the result is the double nearest to the exact
// value, for every argument.
//
// Bad input  nothing fails: where no value exists the result is NaN. Every NaN that comes out is the
//            same one, quiet, with sign and payload 0
// Threads    no state, no allocation: any number of threads at once
// Exactness  correctly rounded in the rounding mode to nearest, a tie to even: the same bits on every
//            processor, with every compiler and C library, with and without fused multiply-add. In
//            other rounding modes a result is one of the two doubles around the exact value, or
//            next to them. The floating-point exception flags mean nothing afterwards
//
// A call takes about as long as in a C library that is off by a unit now and then. One call in some
// ten thousand needs more digits and takes 1 to 5 microseconds.
//
// Angles     Sin  Cos  SinCos  SinCosEach
// Arcs       ArcTan  ArcTan2  ArcCos
// Powers     Exp  CubeRoot
#pragma once

#include <corvale/base/Module.hpp>
#include <corvale/numeric/Views.hpp>

namespace corvale::Elementary {

/// The sine and the cosine of one angle.
struct SineCosine {
    double sine;    ///< from -1 to 1
    double cosine;  ///< from -1 to 1
};

/// The sine of `x`. An angle of any size is reduced exactly: Sin(1e300) is the sine of 1e300.
///
/// Units      radians
/// Bad input  an infinity gives NaN
[[nodiscard]] CORVALE_API double Sin(double x) noexcept;

/// The cosine of `x`, which may have any size.
///
/// Units      radians
/// Bad input  an infinity gives NaN
[[nodiscard]] CORVALE_API double Cos(double x) noexcept;

/// Sin(x) and Cos(x), in less time than both.
///
/// Units      radians
/// Bad input  an infinity gives two NaN
/// Exactness  the bits of Sin and Cos
[[nodiscard]] CORVALE_API SineCosine SinCos(double x) noexcept;

/// Sine and cosine of each angle of `x`, several at a time.
///
/// Units      radians
/// Shape      any strides; `sines` and `cosines` have at least as many elements as `x`, or none where
///            they are not wanted
/// Bad input  fewer elements: nothing is written; an infinity gives two NaN
/// Aliasing   a result may lie on the angle of its own number, and not on another one; the two
///            results must not overlap
/// Exactness  the bits of Sin and Cos
CORVALE_API void SinCosEach(GenFunctions::VectorView<const double> x,
                            GenFunctions::VectorView<double> sines,
                            GenFunctions::VectorView<double> cosines) noexcept;

/// The angle from -pi/2 to pi/2 whose tangent is `x`. ArcTan(-0.0) is -0.0.
///
/// Units      radians
/// Bad input  an infinity gives the double nearest to pi/2, with its sign
[[nodiscard]] CORVALE_API double ArcTan(double x) noexcept;

/// The angle from -pi to pi whose sine and cosine are proportional to `y` and `x`, in this order. It
/// has the sign of `y`, of a zero too; an `x` of -0.0 counts as negative: ArcTan2(0.0, -0.0) is the
/// double nearest to pi.
///
/// Units      radians; `y` and `x` share any unit
/// Bad input  two infinities lie on a diagonal: odd multiples of pi/4
[[nodiscard]] CORVALE_API double ArcTan2(double y, double x) noexcept;

/// The angle from 0 to pi whose cosine is `x`.
///
/// Units      radians
/// Bad input  |x| > 1 gives NaN
[[nodiscard]] CORVALE_API double ArcCos(double x) noexcept;

/// e to the power of `x`. Beyond about 709.78 it is an infinity, below about -745.13 it is 0.
///
/// Units      `x` has none
/// Bad input  an infinity gives an infinity or 0, as its sign says
[[nodiscard]] CORVALE_API double Exp(double x) noexcept;

/// The number whose cube is `x`, with the sign of `x`. The exponent of GenFunctions::CubRt is the
/// double below one third: results differ where a root is near a midpoint of two doubles.
///
/// Units      `x` has any, the result its cube root
/// Bad input  an infinity gives itself
[[nodiscard]] CORVALE_API double CubeRoot(double x) noexcept;

}  // namespace corvale::Elementary
