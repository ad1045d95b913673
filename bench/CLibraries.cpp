#include "CLibraries.hpp"

#include <cmath>
#include <cstddef>

// musl's functions, renamed where the static library is copied.
extern "C" {
double musl_sin(double x);
double musl_cos(double x);
void musl_sincos(double x, double* sine, double* cosine);
double musl_atan(double x);
double musl_atan2(double y, double x);
double musl_acos(double x);
double musl_exp(double x);
double musl_pow(double x, double y);
double musl_cbrt(double x);
}

namespace peer {

struct Glibc {
    static constexpr double (*sin)(double) = ::sin;
    static constexpr double (*cos)(double) = ::cos;
    static constexpr void (*sincos)(double, double*, double*) = ::sincos;
    static constexpr double (*atan)(double) = ::atan;
    static constexpr double (*atan2)(double, double) = ::atan2;
    static constexpr double (*acos)(double) = ::acos;
    static constexpr double (*exp)(double) = ::exp;
    static constexpr double (*pow)(double, double) = ::pow;
    static constexpr double (*cbrt)(double) = ::cbrt;
};

struct Musl {
    static constexpr double (*sin)(double) = musl_sin;
    static constexpr double (*cos)(double) = musl_cos;
    static constexpr void (*sincos)(double, double*, double*) = musl_sincos;
    static constexpr double (*atan)(double) = musl_atan;
    static constexpr double (*atan2)(double, double) = musl_atan2;
    static constexpr double (*acos)(double) = musl_acos;
    static constexpr double (*exp)(double) = musl_exp;
    static constexpr double (*pow)(double, double) = musl_pow;
    static constexpr double (*cbrt)(double) = musl_cbrt;
};

namespace gen = corvale::GenFunctions;

template <class Library>
double Procedures<Library>::Sin(double x) noexcept {
    return Library::sin(x);
}
template <class Library>
double Procedures<Library>::Cos(double x) noexcept {
    return Library::cos(x);
}
template <class Library>
double Procedures<Library>::ArcTan(double x) noexcept {
    return Library::atan(x);
}
template <class Library>
double Procedures<Library>::ArcTan2(double y, double x) noexcept {
    return Library::atan2(y, x);
}
template <class Library>
double Procedures<Library>::ArcCos(double x) noexcept {
    return Library::acos(x);
}
template <class Library>
double Procedures<Library>::Exp(double x) noexcept {
    return Library::exp(x);
}
template <class Library>
double Procedures<Library>::CubeRoot(double x) noexcept {
    return Library::cbrt(x);
}

template <class Library>
double Procedures<Library>::AcTan(double s, double c) noexcept {
    const double angle = Library::atan2(s, c);
    return angle < 0.0 ? angle + 6.283185307179586 : angle;
}

template <class Library>
double Procedures<Library>::AcSin(double x) noexcept {
    if (std::fabs(x) < 1.0) return Library::atan(x / std::sqrt(1.0 - x * x));
    if (std::isnan(x)) return x;
    return std::copysign(1.5707963267948966, x);
}

template <class Library>
double Procedures<Library>::CubRt(double x) noexcept {
    return std::copysign(Library::pow(std::fabs(x), 0.3333333333333333), x);
}

template <class Library>
double Procedures<Library>::SerExp(double x) noexcept {
    return (1.0 - Library::exp(-100.0 * (x * x))) / x;
}

template <class Library>
double Procedures<Library>::AngleOf2Vecs(const Vector3& a, const Vector3& b) noexcept {
    const double dot = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    const double magnitudes = std::sqrt(b[0] * b[0] + b[1] * b[1] + b[2] * b[2]) *
                              std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double cosine = dot / magnitudes;
    if (std::fabs(cosine) + 2.220446049250313e-16 > 1.0)
        return cosine > 0.0 ? 0.0 : 3.141592653589793;
    return Library::acos(cosine);
}

template <class Library>
Vector3 Procedures<Library>::Rotate(const Vector3& v, std::int32_t axis, double angle) noexcept {
    if (axis < 1 || axis > 3) return v;
    double s, c;
    Library::sincos(angle, &s, &c);
    if (axis == 1) return {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]};
    if (axis == 2) return {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]};
    return {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]};
}

template <class Library>
Vector3 Procedures<Library>::RodriguesRot(const Vector3& v, double angle,
                                          const Vector3& k) noexcept {
    double s, c;
    Library::sincos(angle * 0.017453292519943295, &s, &c);
    const Vector3 w = {k[1] * v[2] - k[2] * v[1], k[2] * v[0] - k[0] * v[2],
                       k[0] * v[1] - k[1] * v[0]};
    const double along = k[0] * v[0] + k[1] * v[1] + k[2] * v[2];
    Vector3 turned;
    for (std::size_t i = 0; i < 3; ++i) turned[i] = w[i] * s + v[i] * c + k[i] * along * (1.0 - c);
    return turned;
}

template struct Procedures<Glibc>;
template struct Procedures<Musl>;

}  // namespace peer
