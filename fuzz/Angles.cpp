// Angles, vectors and the two functions of a real, bit for bit against their formulas.
#include "Targets.hpp"

#include "literal/LiteralNumeric.hpp"

#include <corvale/numeric/Angles.hpp>
#include <corvale/numeric/SmallHelpers.hpp>
#include <corvale/numeric/Vectors.hpp>

namespace corvale::fuzz {
namespace {

using namespace GenFunctions;

constexpr double kTwoPi = 6.283185307179586, kPi = 3.141592653589793;

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
        ExpectSame(View(DegToDDMMSSSSS_Str(deg)), literal::DegreeText(deg), "DegToDDMMSSSSS_Str");
}

void HoursOf(double deg) {
    std::int32_t hours = -1, minutes = -1;
    double seconds = -1.0;
    DegToHHMMSSS(deg, hours, minutes, seconds);
    const literal::Hours wanted =
        std::isfinite(deg) ? literal::CarriedHours(deg) : literal::Hours{0, 0, NAN};
    ExpectSame(hours, wanted.hours, "DegToHHMMSSS hours");
    ExpectSame(minutes, wanted.minutes, "DegToHHMMSSS minutes");
    ExpectSame(seconds, wanted.seconds, "DegToHHMMSSS seconds");
    const auto text = DegToHHMMSSS_Str(deg);
    if (std::isfinite(deg))
        ExpectSame(View(text), literal::HourText(deg), "DegToHHMMSSS_Str");
    else
        ExpectSame(View(text), "*******", "DegToHHMMSSS_Str");
}

void Turns(double a, double b) {
    double turn = std::fabs(a) >= kTwoPi ? std::fmod(a, kTwoPi) : a;
    if (turn < 0.0) turn = turn + kTwoPi;
    ExpectSame(FMod2P(a), turn, "FMod2P");

    const double d = std::fmod(a, 360.0) - std::fmod(b, 360.0);
    const double folded = std::copysign(std::fabs(360.0 - std::fabs(d)), -d);
    ExpectSame(DeltaAngleLT180(a, b), std::fabs(d) <= 180.0 ? d : folded, "DeltaAngleLT180");

    const double angle = std::atan2(a, b);
    ExpectSame(AcTan(a, b), angle < 0.0 ? angle + kTwoPi : angle, "AcTan");

    const double sine = std::fabs(a) < 1.0 ? std::atan(a / std::sqrt(1.0 - a * a))
                                           : std::copysign(1.5707963267948966, a);
    ExpectSame(AcSin(a), std::isnan(a) ? a : sine, "AcSin");
}

double LiteralSerExp(double x) {
    if (std::fabs(x) > 0.75) return 1.0 / x;
    if (std::fabs(x) > 0.01) return (1.0 - std::exp(-100.0 * (x * x))) / x;
    double term = 100.0 * x, sum = term;
    for (int k = 2; k <= 21; ++k) {
        term = -term * (100.0 * (x * x)) / k;
        sum = sum + term;
        if (term < 1e-10 * x || term < 1e-24) break;
    }
    return sum;
}

void ExpectVector(const Vector3& got, const Vector3& wanted, const char* what) {
    for (std::size_t i = 0; i < 3; ++i) ExpectSame(got[i], wanted[i], what);
}

double LiteralMag(const Vector3& v) {
    return std::sqrt(0.0 + v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

Vector3 LiteralCross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

void Pair(const Vector3& a, const Vector3& b) {
    const double m = LiteralMag(a);
    ExpectSame(Mag(a), m, "Mag");
    ExpectVector(UnitVec(a), {a[0] / m, a[1] / m, a[2] / m}, "UnitVec");
    ExpectVector(Cross(a, b), LiteralCross(a, b), "Cross");
    const double x = (a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) / (LiteralMag(b) * m);
    const bool isAlong = std::fabs(x) + 2.220446049250313e-16 > 1.0;
    ExpectSame(AngleOf2Vecs(a, b), isAlong ? (x > 0.0 ? 0.0 : kPi) : std::acos(x), "AngleOf2Vecs");
}

void Rotations(const Vector3& v, const Vector3& k, std::int32_t axis, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    Vector3 frame = v;
    if (axis == 1) frame = {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]};
    if (axis == 2) frame = {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]};
    if (axis == 3) frame = {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]};
    ExpectVector(Rotate(v, axis, angle), frame, "Rotate");

    const double theta = angle * 0.017453292519943295;
    const double cosine = std::cos(theta), sine = std::sin(theta);
    const Vector3 w = LiteralCross(k, v);
    const double d = 0.0 + k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    Vector3 turned;
    for (std::size_t i = 0; i < 3; ++i)
        turned[i] = w[i] * sine + v[i] * cosine + k[i] * d * (1.0 - cosine);
    ExpectVector(RodriguesRot(v, angle, k), turned, "RodriguesRot");
}

}  // namespace

void Angles(Choices in) {
    const std::size_t kind = in.Below(6);
    const double a = in.Real(), b = in.Real();
    if (kind == 0) return Degrees(a);
    if (kind == 1) return HoursOf(a);
    if (kind == 2) return Turns(a, b);
    const Vector3 v{a, b, in.Real()};
    if (kind == 3) {
        ExpectSame(CubRt(a), std::copysign(std::pow(std::fabs(a), 0.3333333333333333), a), "CubRt");
        return ExpectSame(SerExp(b), LiteralSerExp(b), "SerExp");
    }
    const bool isMultiple = in.Flip();  // of the first: parallel but for rounding
    const double factor = in.Real();
    const Vector3 other = isMultiple ? Vector3{v[0] * factor, v[1] * factor, v[2] * factor}
                                     : Vector3{factor, in.Real(), in.Real()};
    if (kind == 4) return Pair(v, other);
    Rotations(v, other, static_cast<std::int32_t>(in.Below(5)), in.Real());
}

}  // namespace corvale::fuzz
