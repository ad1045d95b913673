#include <corvale/numeric/Vectors.hpp>

#include <corvale/numeric/Elementary.hpp>

#include <cmath>
#include <cstddef>

namespace corvale::GenFunctions {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kRadiansPerDegree = 0.017453292519943295;
static_assert(kPi == 0x1.921fb54442d18p+1 && kRadiansPerDegree == 0x1.1df46a2529d39p-6);

// How near 1 a cosine counts as 1: the distance from 1 to the next larger double.
constexpr double kCosineTolerance = 2.220446049250313e-16;
static_assert(kCosineTolerance == 0x1p-52);

// Of one vector with itself: here, so that AngleOf2Vecs takes both without a call.
double MagnitudeOf(const Vector3& v) noexcept {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

}  // namespace

Vector3 Cross(const Vector3& a, const Vector3& b) noexcept {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 UnitVec(const Vector3& v) noexcept {
    const double magnitude = Mag(v);  // three divisions: a reciprocal would move the last bit
    return {v[0] / magnitude, v[1] / magnitude, v[2] / magnitude};
}

double Mag(const Vector3& v) noexcept {
    return MagnitudeOf(v);
}

double AngleOf2Vecs(const Vector3& a, const Vector3& b) noexcept {
    const double dot = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    const double cosine = dot / (MagnitudeOf(b) * MagnitudeOf(a));
    if (std::fabs(cosine) + kCosineTolerance > 1.0) return cosine > 0.0 ? 0.0 : kPi;
    return Elementary::ArcCos(cosine);
}

Vector3 Rotate(const Vector3& v, std::int32_t axis, double angle) noexcept {
    if (axis < 1 || axis > 3) return v;

    // The two components that change, in the order in which the axis turns one into the other.
    const auto first = static_cast<std::size_t>(axis) % 3;
    const std::size_t second = (first + 1) % 3;
    const auto [s, c] = Elementary::SinCos(angle);
    Vector3 turned = v;
    turned[first] = c * v[first] + s * v[second];
    turned[second] = c * v[second] - s * v[first];
    return turned;
}

Vector3 RodriguesRot(const Vector3& v, double angle, const Vector3& k) noexcept {
    const auto [s, c] = Elementary::SinCos(angle * kRadiansPerDegree);
    const Vector3 w = Cross(k, v);
    // Summed from 0, so that a zero along the axis is +0.
    const double along = 0.0 + k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    Vector3 turned;
    for (std::size_t i = 0; i < 3; ++i) turned[i] = w[i] * s + v[i] * c + k[i] * along * (1.0 - c);
    return turned;
}

}  // namespace corvale::GenFunctions
