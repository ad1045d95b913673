// The elementary functions: against each other, their symmetries, and the C library within a unit.
// Whether the last bit is right is decided by tests/soak/ElementarySoak.cpp.
#include "Targets.hpp"

#include <corvale/numeric/Elementary.hpp>

namespace corvale::fuzz {
namespace elementary {

// The doubles in ascending order, as whole numbers.
std::int64_t Rank(double x) {
    const auto bits = std::bit_cast<std::int64_t>(x);
    return bits < 0 ? INT64_MIN - bits : bits;
}

void ExpectNear(double got, double wanted, const char* what) {
    Note(test::Bits(got));
    if (std::isnan(wanted)) return Expect(std::isnan(got), what);
    const std::int64_t distance = Rank(got) - Rank(wanted);
    if (distance < -1 || distance > 1) ExpectSameHere(got, wanted, what);
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

}  // namespace elementary

void Elementary(Choices in) {
    const bool isAnyDouble = in.Flip();
    const double x = isAnyDouble ? std::bit_cast<double>(in.Raw<std::uint64_t>()) : in.Real();
    elementary::Angle(x);
    elementary::ExpectNear(corvale::Elementary::Exp(x), std::exp(x), "Exp");
}

}  // namespace corvale::fuzz
