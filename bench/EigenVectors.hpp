// Eigen's vectors with the library's signatures, in a shared library of their own.
#pragma once

#include <corvale/numeric/Vectors.hpp>

#include <Eigen/Geometry>

namespace eigen {

using corvale::GenFunctions::Vector3;

inline auto View(const Vector3& v) {
    return Eigen::Map<const Eigen::Vector3d>(v.data());
}

template <class Expression>
Vector3 Stored(const Expression& expression) {
    Vector3 v;
    Eigen::Map<Eigen::Vector3d>(v.data()) = expression;
    return v;
}

double Mag(const Vector3& v) noexcept;
Vector3 Cross(const Vector3& a, const Vector3& b) noexcept;

/// About +z.
Vector3 Rotate(const Vector3& v, std::int32_t axis, double angle) noexcept;

}  // namespace eigen
