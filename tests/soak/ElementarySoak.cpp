// The elementary functions against MPFR, bit for bit.
//
//     elementary_soak FUNCTION COUNT [SEED]   ArcTan2, a name of kFunctions, or all; COUNT arguments.
//                                             Prints: function, arguments, differences, how many came
//                                             near a midpoint
//
// The arguments take turns: typical ones, all magnitudes, any bits, and neighbours of where something
// happens: multiples of an eighth of a turn, 1, cubes. An argument counts as hard where MPFR finds the
// exact value within 2^-20 of a unit of a midpoint between two doubles: the rounding test of the fast
// phase fails there.
#include "tests/support/Bits.hpp"

#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

#include <mpfr.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string_view>

namespace {

namespace Elementary = corvale::Elementary;

constexpr mpfr_prec_t kPrecision = 160;

// Near where something happens: `unit` is from -1 to 1.
double NearAngle(double unit) {
    return std::floor(std::fabs(unit) * 4096.0) * 0.7853981633974483;
}
double NearOne(double unit) {
    return std::copysign(1.0 - std::ldexp(std::fabs(unit), -8), unit);
}
double NearCube(double unit) {
    const double root = std::floor(unit * 200000.0);
    return root * root * root;
}

int PowerOfThird(mpfr_t value, const mpfr_t x, mpfr_rnd_t mode) {
    mpfr_t exponent;
    mpfr_init2(exponent, 53);
    mpfr_set_d(exponent, 0.3333333333333333, MPFR_RNDN);
    mpfr_abs(value, x, MPFR_RNDN);
    int inexact = mpfr_pow(value, value, exponent, mode);
    if (mpfr_signbit(x) != 0) mpfr_neg(value, value, MPFR_RNDN);
    mpfr_clear(exponent);
    return inexact;
}

struct Function {
    std::string_view name;
    double (*ours)(double);
    int (*exact)(mpfr_t, const mpfr_t, mpfr_rnd_t);
    double typical;  // arguments up to here are typical
    double (*near)(double);
};
const Function kFunctions[] = {
    {"Sin", Elementary::Sin, mpfr_sin, 6.3, NearAngle},
    {"Cos", Elementary::Cos, mpfr_cos, 6.3, NearAngle},
    {"Exp", Elementary::Exp, mpfr_exp, 60.0, NearAngle},
    {"ArcTan", Elementary::ArcTan, mpfr_atan, 10.0, NearOne},
    {"ArcCos", Elementary::ArcCos, mpfr_acos, 1.0, NearOne},
    {"CubeRoot", Elementary::CubeRoot, mpfr_cbrt, 1e5, NearCube},
    {"CubRt", corvale::GenFunctions::CubRt, PowerOfThird, 1e5, NearCube},
};

double Unit(std::mt19937_64& random) {
    return 2.0 * (static_cast<double>(random() >> 11U) * 0x1p-53) - 1.0;
}

double Argument(double typical, double (*near)(double), std::mt19937_64& random) {
    const double unit = Unit(random);
    switch (random() % 5) {
        case 0:
            return unit * typical;
        case 1:
            return unit * 750.0;
        case 2:
            return std::ldexp(unit, -static_cast<int>(random() % 64));
        case 3:
            return std::bit_cast<double>(random());
        default:
            return std::nextafter(near(unit), random() % 2 == 0 ? 1e9 : -1e9);
    }
}

// Two arguments: of any ratio, or such that their quotient has few bits, is tiny or is halfway
// between two subnormal numbers.
void Arguments(std::mt19937_64& random, double& y, double& x) {
    y = Argument(1.0, NearOne, random);
    x = Argument(1.0, NearOne, random);
    const auto bits = static_cast<int>(random() % 52);
    if (random() % 4 == 0) y = x * std::ldexp(std::floor(std::ldexp(y, bits)), -bits);
    if (random() % 8 == 0) y = std::ldexp(x, -1000 - static_cast<int>(random() % 75)) * 1.5;
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

// Our NaN has one pattern; MPFR has no payload.
bool IsSame(double got, double wanted) {
    const double one = std::isnan(wanted) ? std::numeric_limits<double>::quiet_NaN() : wanted;
    return corvale::test::Bits(got) == corvale::test::Bits(one);
}

class Comparison {
  public:
    Comparison(std::string_view name, std::uint64_t seed) : name_(name), random_(seed) {
        mpfr_inits2(53, x_, y_, static_cast<mpfr_ptr>(nullptr));
        mpfr_init2(value_, kPrecision);
    }
    ~Comparison() { mpfr_clears(x_, y_, value_, static_cast<mpfr_ptr>(nullptr)); }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    void One(const Function& function) {
        const double x = Argument(function.typical, function.near, random_);
        mpfr_set_d(x_, x, MPFR_RNDN);
        KeepInexact(function.exact(value_, x_, MPFR_RNDZ));
        Judge(function.ours(x), x, 0.0);
    }

    void Two() {
        double y = 0.0, x = 0.0;
        Arguments(random_, y, x);
        mpfr_set_d(y_, y, MPFR_RNDN);
        mpfr_set_d(x_, x, MPFR_RNDN);
        KeepInexact(mpfr_atan2(value_, y_, x_, MPFR_RNDZ));
        Judge(Elementary::ArcTan2(y, x), y, x);
    }

    int Report() const {
        std::printf("%s %ld arguments, %ld differences, %ld hard\n", name_.data(), count_,
                    differences_, hard_);
        return differences_ == 0 ? 0 : 1;
    }

  private:
    // The last bit of a value that was cut is set: no value then looks like a midpoint that is none.
    void KeepInexact(int inexact) {
        if (inexact == 0 || mpfr_regular_p(value_) == 0 || mpfr_min_prec(value_) == kPrecision)
            return;
        mpfr_sgn(value_) > 0 ? mpfr_nextabove(value_) : mpfr_nextbelow(value_);
    }

    void Judge(double got, double first, double second) {
        const double wanted = mpfr_get_d(value_, MPFR_RNDN);
        ++count_;
        if (!IsSame(got, wanted) && ++differences_ <= 20)
            std::fprintf(stderr, "%s(%a, %a): %a, not %a\n", name_.data(), first, second, got,
                         wanted);
        hard_ += IsHard(value_, wanted) ? 1 : 0;
    }

    std::string_view name_;
    std::mt19937_64 random_;
    mpfr_t x_, y_, value_;
    long count_ = 0, differences_ = 0, hard_ = 0;
};

bool IsWanted(std::string_view wanted, std::string_view name) {
    return wanted == "all" || wanted == name;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const long count = std::atol(argv[2]);
    const std::uint64_t seed = argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 1;
    int status = 0;
    for (const Function& function : kFunctions) {
        if (!IsWanted(argv[1], function.name)) continue;
        Comparison comparison(function.name, seed);
        for (long i = 0; i < count; ++i) comparison.One(function);
        status |= comparison.Report();
    }
    if (IsWanted(argv[1], "ArcTan2")) {
        Comparison comparison("ArcTan2", seed);
        for (long i = 0; i < count; ++i) comparison.Two();
        status |= comparison.Report();
    }
    return status;
}
