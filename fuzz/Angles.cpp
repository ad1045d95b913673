// Angles, vectors and the two functions of a real, bit for bit against their formulas.
#include "Targets.hpp"

#include "reference/Angles.hpp"
#include "reference/SmallHelpers.hpp"
#include "reference/Vectors.hpp"

#include <corvale/numeric/Angles.hpp>
#include <corvale/numeric/SmallHelpers.hpp>
#include <corvale/numeric/Vectors.hpp>

namespace corvale::fuzz {
namespace angles {

using namespace GenFunctions;

template <std::size_t Width>
std::string_view View(const std::array<char, Width>& text) {
    return {text.data(), text.size()};
}

void Degrees(double deg) {
    const bool isInRange = deg > -2147483649.0 && deg < 2147483648.0;
    std::int32_t whole = -1, minutes = -1;
    double seconds = -1.0;
    DegToDDMMSSS(deg, whole, minutes, seconds);
    const double f = deg - std::trunc(deg), m0 = std::trunc(f * 60.0);
    ExpectSame(whole, isInRange ? static_cast<std::int32_t>(deg) : 0, "DegToDDMMSSS degrees");
    ExpectSame(minutes, isInRange ? static_cast<std::int32_t>(std::fabs(m0)) : 0,
               "DegToDDMMSSS minutes");
    ExpectSame(seconds, isInRange ? std::fabs((f - m0 / 60.0) * 3600.0) : NAN,
               "DegToDDMMSSS seconds");
    if (!isInRange)
        ExpectSame(View(DegToDDMMSSSSS_Str(deg)).substr(1), "**********", "DegToDDMMSSSSS_Str");
    else if (std::fabs(deg) < 1e9)
        ExpectSame(View(DegToDDMMSSSSS_Str(deg)), reference::DegreeText(deg), "DegToDDMMSSSSS_Str");
}

void HoursOf(double deg) {
    std::int32_t hours = -1, minutes = -1;
    double seconds = -1.0;
    DegToHHMMSSS(deg, hours, minutes, seconds);
    const reference::Hours wanted =
        std::isfinite(deg) ? reference::CarriedHours(deg) : reference::Hours{0, 0, NAN};
    ExpectSame(hours, wanted.hours, "DegToHHMMSSS hours");
    ExpectSame(minutes, wanted.minutes, "DegToHHMMSSS minutes");
    ExpectSame(seconds, wanted.seconds, "DegToHHMMSSS seconds");
    const auto text = DegToHHMMSSS_Str(deg);
    if (std::isfinite(deg))
        ExpectSame(View(text), reference::HourText(deg), "DegToHHMMSSS_Str");
    else
        ExpectSame(View(text), "*******", "DegToHHMMSSS_Str");
}

void ExpectVector(const Vector3& got, const Vector3& wanted, const char* what) {
    for (std::size_t i = 0; i < 3; ++i) ExpectSame(got[i], wanted[i], what);
}

void RealsOf(double a, double b) {
    ExpectSame(FMod2P(a), reference::FMod2P(a), "FMod2P");
    ExpectSame(DeltaAngleLT180(a, b), reference::DeltaAngleLT180(a, b), "DeltaAngleLT180");
    ExpectSame(AcTan(a, b), reference::AcTan(a, b), "AcTan");
    ExpectSame(AcSin(a), reference::AcSin(a), "AcSin");
    ExpectSame(SerExp(b), reference::SerExp(b), "SerExp");
}

void Pair(const Vector3& a, const Vector3& b) {
    ExpectSame(Mag(a), reference::Mag(a), "Mag");
    ExpectVector(UnitVec(a), reference::UnitVec(a), "UnitVec");
    ExpectVector(Cross(a, b), reference::Cross(a, b), "Cross");
    ExpectSame(AngleOf2Vecs(a, b), reference::AngleOf2Vecs(a, b), "AngleOf2Vecs");
}

}  // namespace angles

void Angles(Choices in) {
    using namespace angles;
    const std::size_t kind = in.Below(5);
    const double a = in.Real(), b = in.Real();
    if (kind < 2) {  // the number itself or one of its neighbours, where carries are decided
        const int side = in.Byte() % 3;
        const double deg = side == 0 ? a : std::nextafter(a, side == 1 ? -1e9 : 1e9);
        return (kind == 0 ? Degrees : HoursOf)(deg);
    }
    if (kind == 2) return RealsOf(a, b);
    const Vector3 v{a, b, in.Real()};
    const bool isMultiple = in.Flip();  // of the first: parallel but for rounding
    const double factor = in.Real();
    const Vector3 other = isMultiple ? Vector3{v[0] * factor, v[1] * factor, v[2] * factor}
                                     : Vector3{factor, in.Real(), in.Real()};
    if (kind == 3) return Pair(v, other);
    const auto axis = static_cast<std::int32_t>(in.Below(5));
    const double angle = in.Real();
    ExpectVector(Rotate(v, axis, angle), reference::Rotate(v, axis, angle), "Rotate");
    ExpectVector(RodriguesRot(v, angle, other), reference::RodriguesRot(v, angle, other),
                 "RodriguesRot");
}

}  // namespace corvale::fuzz
