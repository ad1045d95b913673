// The formulas of the vectors step by step. For round-to-nearest.
#pragma once

#include <corvale/numeric/Elementary.hpp>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace corvale::reference {

using Vector = std::array<double, 3>;

inline constexpr double kPi = 3.141592653589793;

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
    return Elementary::ArcCos(x);
}

inline Vector Rotate(const Vector& v, std::int32_t axis, double angle) {
    const auto [s, c] = Elementary::SinCos(angle);
    if (axis == 1) return {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]};
    if (axis == 2) return {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]};
    if (axis == 3) return {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]};
    return v;
}

inline Vector RodriguesRot(const Vector& v, double angle, const Vector& k) {
    const auto [s, c] = Elementary::SinCos(angle * 0.017453292519943295);
    const Vector w = Cross(k, v);
    const double d = 0.0 + k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    Vector turned;
    for (std::size_t i = 0; i < 3; ++i) turned[i] = w[i] * s + v[i] * c + k[i] * d * (1.0 - c);
    return turned;
}

}  // namespace corvale::reference
