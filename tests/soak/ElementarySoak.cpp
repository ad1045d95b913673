// The elementary functions against MPFR, bit for bit.
//
//     elementary_soak FUNCTION COUNT [SEED]   Sin, Cos or Exp; COUNT arguments. Prints: function,
//                                             arguments, differences, how many came near a midpoint
//
// The arguments take turns: typical ones, all magnitudes, any bits, and for the angles the neighbours
// of multiples of an eighth of a turn. An argument counts as hard where MPFR finds the exact value within
// 2^-20 of a unit of a midpoint between two doubles: the rounding test of the fast phase fails there.
#include "tests/support/Bits.hpp"

#include <corvale/numeric/Elementary.hpp>

#include <mpfr.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>

namespace {

constexpr mpfr_prec_t kPrecision = 160;

struct Function {
    std::string_view name;
    double (*ours)(double);
    int (*exact)(mpfr_t, const mpfr_t, mpfr_rnd_t);
    double typical;  // arguments up to here are typical
};
const Function kFunctions[] = {
    {"Sin", corvale::Elementary::Sin, mpfr_sin, 6.3},
    {"Cos", corvale::Elementary::Cos, mpfr_cos, 6.3},
    {"Exp", corvale::Elementary::Exp, mpfr_exp, 60.0},
};

double Unit(std::mt19937_64& random) {
    return static_cast<double>(random() >> 11U) * 0x1p-53;
}

double Argument(const Function& function, std::mt19937_64& random) {
    const double unit = 2.0 * Unit(random) - 1.0;
    switch (random() % 5) {
        case 0:
            return unit * function.typical;
        case 1:
            return unit * 750.0;
        case 2:
            return std::ldexp(unit, -static_cast<int>(random() % 64));
        case 3:
            return std::bit_cast<double>(random());
        default: {
            const double multiple = std::floor(Unit(random) * 4096.0) * 0.7853981633974483;
            return std::nextafter(multiple, random() % 2 == 0 ? 1e9 : -1e9);
        }
    }
}

// Whether `value` lies within 2^-20 of a unit of a midpoint between two doubles near `rounded`.
bool IsHard(const mpfr_t value, double rounded) {
    if (!std::isnormal(rounded)) return false;
    const double unit = std::ldexp(1.0, std::ilogb(rounded) - 52);
    mpfr_t rest;
    mpfr_init2(rest, 53);
    mpfr_sub_d(rest, value, rounded, MPFR_RNDN);
    const double distance = std::fabs(mpfr_get_d(rest, MPFR_RNDN)) / unit;
    mpfr_clear(rest);
    return std::fabs(distance - 0.5) < 0x1p-20;
}

int Compare(const Function& function, long count, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    mpfr_t argument, value;
    mpfr_init2(argument, 53);
    mpfr_init2(value, kPrecision);
    long differences = 0, hard = 0;
    for (long i = 0; i < count; ++i) {
        const double x = Argument(function, random);
        mpfr_set_d(argument, x, MPFR_RNDN);
        function.exact(value, argument, MPFR_RNDN);
        const double wanted = mpfr_get_d(value, MPFR_RNDN);
        const double got = function.ours(x);
        if (corvale::test::Bits(got) != corvale::test::Bits(wanted) && ++differences <= 20)
            std::fprintf(stderr, "%s(%a): %a, not %a\n", function.name.data(), x, got, wanted);
        hard += IsHard(value, wanted) ? 1 : 0;
    }
    mpfr_clear(argument);
    mpfr_clear(value);
    std::printf("%s %ld arguments, %ld differences, %ld hard\n", function.name.data(), count,
                differences, hard);
    return differences == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const std::uint64_t seed = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 1;
    for (const Function& function : kFunctions)
        if (function.name == argv[1]) return Compare(function, std::atol(argv[2]), seed);
    return 2;
}
