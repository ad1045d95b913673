// C libraries as peers of the elementary functions, and the procedures that need one with a C
// library's functions in place of ours. They are in a shared library, as ours are: what is compared
// is the work, not the call.
#pragma once

#include <corvale/numeric/Vectors.hpp>

#include <cstdint>

namespace peer {

using corvale::GenFunctions::Vector3;

/// The C library of this system, with its fastest path for this processor.
struct Glibc;
/// musl, compiled for every processor of this kind.
struct Musl;

template <class Library>
struct Procedures {
    static double Sin(double x) noexcept;
    static double Cos(double x) noexcept;
    static double ArcTan(double x) noexcept;
    static double ArcTan2(double y, double x) noexcept;
    static double ArcCos(double x) noexcept;
    static double Exp(double x) noexcept;
    static double CubeRoot(double x) noexcept;

    static double AcTan(double s, double c) noexcept;
    static double AcSin(double x) noexcept;
    static double CubRt(double x) noexcept;
    static double SerExp(double x) noexcept;  ///< for |x| from 0.01 to 0.75
    static double AngleOf2Vecs(const Vector3& a, const Vector3& b) noexcept;
    static Vector3 Rotate(const Vector3& v, std::int32_t axis, double angle) noexcept;
    static Vector3 RodriguesRot(const Vector3& v, double angle, const Vector3& k) noexcept;
};

extern template struct Procedures<Glibc>;
extern template struct Procedures<Musl>;

}  // namespace peer
