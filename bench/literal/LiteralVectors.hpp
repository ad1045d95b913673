// Test help: the formulas of angles, vectors and functions of a real, written out as they are
// described, through the C library.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace corvale::literal {

using Vector = std::array<double, 3>;

inline constexpr double kTwoPi = 6.283185307179586, kPi = 3.141592653589793;

inline double FMod2P(double x) {
    const double r = std::fabs(x) >= kTwoPi ? std::fmod(x, kTwoPi) : x;
    return r < 0.0 ? r + kTwoPi : r;
}

inline double AcTan(double s, double c) {
    const double a = std::atan2(s, c);
    return a < 0.0 ? a + kTwoPi : a;
}

inline double AcSin(double x) {
    if (std::isnan(x)) return x;
    if (std::fabs(x) < 1.0) return std::atan(x / std::sqrt(1.0 - x * x));
    return std::copysign(1.5707963267948966, x);
}

inline double DeltaAngleLT180(double a, double b) {
    const double d = std::fmod(a, 360.0) - std::fmod(b, 360.0);
    if (std::fabs(d) <= 180.0) return d;
    return std::copysign(std::fabs(360.0 - std::fabs(d)), -d);
}

inline double CubRt(double x) {
    return std::copysign(std::pow(std::fabs(x), 0.3333333333333333), x);
}

inline double SerExp(double x) {
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

inline double Mag(const Vector& v) {
    return std::sqrt(0.0 + v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

inline Vector UnitVec(const Vector& v) {
    const double m = Mag(v);
    return {v[0] / m, v[1] / m, v[2] / m};
}

inline Vector Cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double AngleOf2Vecs(const Vector& a, const Vector& b) {
    const double x = (a[0] * b[0] + a[1] * b[1] + a[2] * b[2]) / (Mag(b) * Mag(a));
    if (std::fabs(x) + 2.220446049250313e-16 > 1.0) return x > 0.0 ? 0.0 : kPi;
    return std::acos(x);
}

inline Vector Rotate(const Vector& v, std::int32_t axis, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    if (axis == 1) return {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]};
    if (axis == 2) return {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]};
    if (axis == 3) return {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]};
    return v;
}

inline Vector RodriguesRot(const Vector& v, double angle, const Vector& k) {
    const double theta = angle * 0.017453292519943295;
    const double c = std::cos(theta), s = std::sin(theta);
    const Vector w = Cross(k, v);
    const double d = 0.0 + k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    Vector turned;
    for (std::size_t i = 0; i < 3; ++i) turned[i] = w[i] * s + v[i] * c + k[i] * d * (1.0 - c);
    return turned;
}

}  // namespace corvale::literal
