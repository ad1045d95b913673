#include <corvale/numeric/Angles.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

#include "Procedures.hpp"

namespace corvale::python {
namespace {

namespace gen = GenFunctions;

constexpr Procedure kProcedures[] = {
    {"fmod2p", "x", "GenFunctions::FMod2P",
     "The angle within one turn, from 0 up. A turn is the double 6.283185307179586.", "radians",
     "an infinity gives NaN", kSignature<gen::FMod2P>},
    {"ac_tan", "s, c", "GenFunctions::AcTan",
     "The angle whose sine and cosine are proportional to `s` and `c`, in this order, from 0 to a "
     "whole turn.",
     "radians; s and c share any unit", "NaN gives NaN", kSignature<gen::AcTan>},
    {"ac_sin", "x", "GenFunctions::AcSin", "The angle from -pi/2 to pi/2 whose sine is `x`.",
     "radians", "|x| > 1 gives pi/2 with the sign of x", kSignature<gen::AcSin>},
    {"delta_angle_lt180", "a, b", "GenFunctions::DeltaAngleLT180",
     "a - b the short way round, from -180 to 180, folded once.", "degrees",
     "an infinity gives NaN; reduced angles of opposite sign a turn or more apart are not folded "
     "whole (300 and -200 give -140)",
     kSignature<gen::DeltaAngleLT180>},
    {"deg_to_ddmmsss", "deg", "GenFunctions::DegToDDMMSSS",
     "Whole degrees, which carry the sign, minutes and seconds, which carry none. Nothing is "
     "rounded.",
     "degrees", "NaN, infinities and degrees beyond 32 bits give 0, 0 and NaN",
     kSignature<gen::DegToDDMMSSS>},
    {"deg_to_ddmmsss_str", "deg", "GenFunctions::DegToDDMMSSSSS_Str",
     "Degrees as b'sDDMMSS.SSS': '-' or '0', degrees, minutes, seconds. 10.5 is b'0103000.000'. "
     "Seconds from 59.5 up show as 00.000 of the next minute.",
     "degrees", "100 degrees and more show as '**', NaN and infinities as '*' throughout",
     kSignature<gen::DegToDDMMSSSSS_Str>},
    {"deg_to_hhmmsss", "deg", "GenFunctions::DegToHHMMSSS",
     "Hours, minutes and seconds of an angle within one turn; 15 degrees are an hour. Seconds from "
     "59.95 up become 0 and carry.",
     "degrees in; hours, minutes and seconds of time out", "NaN and infinities give 0, 0 and NaN",
     kSignature<gen::DegToHHMMSSS>},
    {"deg_to_hhmmsss_str", "deg", "GenFunctions::DegToHHMMSSS_Str",
     "Degrees as b'HHMMSSs': hours, minutes and tenths of seconds. 180 is b'1200000'.",
     "degrees in; hours, minutes and seconds of time in the text",
     "NaN and infinities give b'*******'", kSignature<gen::DegToHHMMSSS_Str>},
    {"cub_rt", "x", "GenFunctions::CubRt", "The cube root, with the sign of `x`.",
     "the cube root of that of x", "NaN gives NaN", kSignature<gen::CubRt>},
    {"ser_exp", "x", "GenFunctions::SerExp", "(1 - exp(-100 x^2)) / x, also near 0, where it is 0.",
     "x has none", "an infinity gives 0 with its sign", kSignature<gen::SerExp>},
};

}  // namespace

std::span<const Procedure> AngleProcedures() noexcept {
    return kProcedures;
}

}  // namespace corvale::python
