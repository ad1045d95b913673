// Angles: one turn, inverse functions, differences, and degrees as sexagesimal numbers and texts.
//
// Units      degrees or radians, as each comment says; minutes and seconds are those of the unit
//            above them (arc minutes of a degree, minutes of an hour). 15 degrees are an hour
// Bad input  nothing fails: NaN spreads through reals; the comments say what counts and texts hold.
//            "Beyond 32 bits" means: NaN, an infinity, or whole degrees that no 32-bit integer
//            holds
// Threads    no state, no allocation: any number of threads at once
// Exactness  fixed order of operations, the same bits everywhere; the arc tangents are correctly
//            rounded (Elementary.hpp). Which NaN comes out, its sign included, is not promised
//
// Reduce  FMod2P  DeltaAngleLT180
// Invert  AcTan  AcSin
// Split   DegToDDMMSSS  DegToHHMMSSS
// Write   DegToDDMMSSSSS_Str  DegToHHMMSSS_Str
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <cstdint>

namespace corvale::GenFunctions {

/// The angle `x` within one turn, from 0 up. A turn is the double 6.283185307179586, not 2 pi
/// itself. A tiny negative angle rounds up to that value: FMod2P(-1e-20) is a whole turn.
///
/// Units      radians
/// Bad input  an infinity gives NaN
[[nodiscard]] CORVALE_API double FMod2P(double x) noexcept;

/// The angle whose sine and cosine are proportional to `s` and `c`, in this order, from 0 to a
/// whole turn.
///
/// Units      radians; `s` and `c` share any unit
/// Bad input  both 0: the arc tangent of signed zeros, 0 or pi
[[nodiscard]] CORVALE_API double AcTan(double s, double c) noexcept;

/// The angle from -pi/2 to pi/2 whose sine is `x`.
///
/// Units      radians
/// Bad input  |x| > 1 gives pi/2 with the sign of `x`, as rounding errors beyond 1 need
[[nodiscard]] CORVALE_API double AcSin(double x) noexcept;

/// `a` - `b` the short way round: from -180 to 180, both ends included, where the two angles, reduced
/// to less than a turn with their signs kept, lie less than a turn apart. Angles of one sign do.
///
/// Units      degrees
/// Bad input  reduced angles a turn or more apart are folded once, as others are: their difference
///            d becomes |360 - |d||, up to 360, with the sign against d. 300 and -200 give -140,
///            350 and -350 give -340. An infinity gives NaN
[[nodiscard]] CORVALE_API double DeltaAngleLT180(double a, double b) noexcept;

/// Splits `deg` into whole degrees `dd`, which carry the sign, minutes `mm` and seconds `ss`, which
/// carry none: the sign of an angle between -1 and 0 is lost. Nothing is rounded or carried, so
/// 10.1 gives 10, 5 and 59.999999999998735.
///
/// Units      degrees
/// Bad input  beyond 32 bits: 0, 0 and NaN
/// Aliasing   the results are separate objects
CORVALE_API void DegToDDMMSSS(double deg, std::int32_t& dd, std::int32_t& mm, double& ss) noexcept;

/// Degrees as "sDDMMSS.SSS": '-' for negative degrees and '0' for all others, then degrees, minutes
/// and seconds with three decimals, rounded to nearest, a tie to even. 10.5 gives "0103000.000",
/// -0.5 gives "-003000.000".
///
/// Kept behaviour: seconds that round to 60 as whole seconds, from 59.5 up, carry into the
/// minutes and show as 00.000. So 59.76 seconds show as the next minute.
///
/// Units      degrees
/// Width      exactly 11, without a terminator
/// Bad input  100 degrees and more do not fit: "**" in their place. Beyond 32 bits every digit and
///            the point are '*'
[[nodiscard]] CORVALE_API std::array<char, 11> DegToDDMMSSSSS_Str(double deg) noexcept;

/// Splits `deg`, reduced to one turn from 0 up (exactly, 1e300 too), into hours `hh`, minutes `mm`
/// and seconds `ss`. Seconds from 59.95 up become 0 and carry into minutes and hours, and 24 hours
/// into 0.
///
/// Kept behaviour: 1e-12 minutes are added before the split, so whole minutes come out with
/// 6e-11 seconds (15 gives 1, 0, 6e-11). Where nothing carries the counts stay as they are: within
/// rounding of a whole turn or hour `hh` can be 24 and `mm` 60.
///
/// Units      degrees in; hours, minutes and seconds of time out
/// Bad input  NaN and infinities give 0, 0 and NaN
/// Aliasing   the results are separate objects
CORVALE_API void DegToHHMMSSS(double deg, std::int32_t& hh, std::int32_t& mm, double& ss) noexcept;

/// Degrees as "HHMMSSs": hours, minutes and tenths of seconds, rounded, a tie up; 180 gives
/// "1200000", -15 gives "2300000". What rounds up to a whole day is "0000000".
///
/// Units      degrees in; hours, minutes and seconds of time in the text
/// Width      exactly 7, without a terminator
/// Bad input  NaN and infinities give seven '*'
[[nodiscard]] CORVALE_API std::array<char, 7> DegToHHMMSSS_Str(double deg) noexcept;

}  // namespace corvale::GenFunctions
