// The elementary functions: against each other, their symmetries, and the C library within a unit.
// Whether the last bit is right is decided by tests/soak/ElementarySoak.cpp.
#include "Targets.hpp"

#include "reference/SmallHelpers.hpp"

#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

namespace corvale::fuzz {
namespace elementary {

// The doubles in ascending order, as whole numbers.
std::int64_t Rank(double x) {
    const auto bits = std::bit_cast<std::int64_t>(x);
    return bits < 0 ? INT64_MIN - bits : bits;
}

void ExpectNear(double got, double wanted, const char* what, std::int64_t units = 1) {
    Note(test::Bits(got));
    if (!kHasGoodSine) return;
    if (std::isnan(wanted)) return Expect(std::isnan(got), what);
    const std::int64_t distance = Rank(got) - Rank(wanted);
    if (distance < -units || distance > units) ExpectSameHere(got, wanted, what);
}

void Angle(double x) {
    const auto [sine, cosine] = corvale::Elementary::SinCos(x);
    ExpectNear(sine, std::sin(x), "SinCos sine");
    ExpectNear(cosine, std::cos(x), "SinCos cosine");
    ExpectSame(corvale::Elementary::Sin(x), sine, "Sin");
    ExpectSame(corvale::Elementary::Cos(x), cosine, "Cos");
    ExpectSame(corvale::Elementary::Sin(-x), -sine, "Sin of the negative");
    ExpectSame(corvale::Elementary::Cos(-x), cosine, "Cos of the negative");
}

void Arcs(double y, double x) {
    ExpectNear(corvale::Elementary::ArcTan(x), std::atan(x), "ArcTan");
    ExpectNear(corvale::Elementary::ArcTan2(y, x), std::atan2(y, x), "ArcTan2");
    ExpectNear(corvale::Elementary::ArcCos(x), std::acos(x), "ArcCos");
    ExpectSame(corvale::Elementary::ArcTan2(x, 1.0), corvale::Elementary::ArcTan(x),
               "ArcTan2 of 1");
}

void Root(double x) {
    const double root = corvale::Elementary::CubeRoot(x);
    ExpectNear(root, std::cbrt(x), "CubeRoot", 3);  // some C libraries are off by two
    ExpectNear(GenFunctions::CubRt(x), reference::CubRt(x), "CubRt");
    ExpectSame(corvale::Elementary::CubeRoot(-x), std::isnan(root) ? root : -root,
               "CubeRoot of the negative");
}

}  // namespace elementary

void Elementary(Choices in) {
    const bool isAnyDouble = in.Flip();
    const double x = isAnyDouble ? std::bit_cast<double>(in.Raw<std::uint64_t>()) : in.Real();
    elementary::Angle(x);
    elementary::ExpectNear(corvale::Elementary::Exp(x), std::exp(x), "Exp");
    elementary::Arcs(in.Real(), x);
    elementary::Root(x);
}

}  // namespace corvale::fuzz
