#include "EigenVectors.hpp"

namespace eigen {

double Mag(const Vector3& v) noexcept {
    return View(v).norm();
}

Vector3 Cross(const Vector3& a, const Vector3& b) noexcept {
    return Stored(View(a).cross(View(b)));
}

Vector3 Rotate(const Vector3& v, std::int32_t, double angle) noexcept {
    return Stored(Eigen::AngleAxisd(-angle, Eigen::Vector3d::UnitZ()) * View(v));
}

}  // namespace eigen
