#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvale::Elementary {
namespace {

using test::Bits;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Values by MPFR 4.2 with 53 bits, to nearest.
struct AngleCase {
    double x, sine, cosine;
    const char* why;
};
constexpr AngleCase kAngles[] = {
    {0x1.921fb54442d18p+0, 0x1p+0, 0x1.1a62633145c07p-54, "a quarter turn"},
    {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53, -0x1p+0, "half a turn"},
    {-0x1.921fb54442d18p+2, 0x1.1a62633145c07p-52, 0x1p+0, "a turn"},
    {0x1p+0, 0x1.aed548f090ceep-1, 0x1.14a280fb5068cp-1, "plain"},
    {0x1.ffffffffffff8p+9, -0x1.44ad2614eff0dp-3, 0x1.f98669d7ae8a5p-1,
     "the last of the subtractions"},
    {0x1p+10, -0x1.44ad2614e80abp-3, 0x1.f98669d7aedb8p-1, "the first beyond"},
    {0x1.0f0cf064dd592p+73, -0x1.b453ab76bf397p-1, 0x1.0be2cef01c8f4p-1,
     "a classic of large reductions"},
    {0x1.6ac5b262ca1ffp+849, 0x1p+0, -0x1.14ae72e6ba22fp-61,
     "nearest of all doubles to a multiple of a quarter turn"},
    {0x1.fffffffffffffp+1023, 0x1.452fc98b34e97p-8, -0x1.fffe62ecfab75p-1, "the greatest double"},
    {0x1p-27, 0x1p-27, 0x1p+0, "the first that is no longer itself"},
    {0x1.fffffffffffffp-28, 0x1.fffffffffffffp-28, 0x1p+0, "the last that is itself"},
    {0x1.fe767739d0f6dp-2, 0x1.e9950730c4696p-2, 0x1.c1b0b5040b269p-1, "a published worst case"},
    {0x1.598bae9e632f6p-7, 0x1.598a0aea48996p-7, 0x1.fff8b65d498ep-1, "a published worst case"},
    {0.0, 0.0, 1.0, "zero"},
    {-0.0, -0.0, 1.0, "a negative zero"},
    {0x1p-1074, 0x1p-1074, 1.0, "the least double"},
    {kInfinity, kNaN, kNaN, "no angle"},
    {-kInfinity, kNaN, kNaN, "no angle"},
    {-kNaN, kNaN, kNaN, "every NaN comes out as one"},
};

TEST(Elementary, SineAndCosine) {
    for (const auto& [x, sine, cosine, why] : kAngles) {
        EXPECT_EQ(Bits(Sin(x)), Bits(sine)) << why;
        EXPECT_EQ(Bits(Cos(x)), Bits(cosine)) << why;
        EXPECT_EQ(Bits(SinCos(x).sine), Bits(sine)) << why;
        EXPECT_EQ(Bits(SinCos(x).cosine), Bits(cosine)) << why;
    }
}

// All cases in each lane of a group, over more than a block of 64, in place and backwards.
TEST(Elementary, SineAndCosineOfManyAreThoseOfEach) {
    constexpr std::size_t kCases = std::size(kAngles);
    for (std::size_t count = 1; count < 150; count += 3) {
        std::vector<double> x(count), cosines(2 * count + 1, -7.0);
        for (std::size_t i = 0; i < count; ++i) x[i] = kAngles[(i + count) % kCases].x;
        const auto size = static_cast<std::int32_t>(count);
        SinCosEach({x.data(), size}, {x.data(), size}, {&cosines[2 * count - 1], size, -2});
        for (std::size_t i = 0; i < count; ++i) {
            const auto& wanted = kAngles[(i + count) % kCases];
            EXPECT_EQ(Bits(x[i]), Bits(wanted.sine)) << wanted.why << ", " << i << " of " << count;
            EXPECT_EQ(Bits(cosines[2 * (count - i) - 1]), Bits(wanted.cosine)) << wanted.why;
            EXPECT_EQ(cosines[2 * i], -7.0) << "between";
        }
    }
    std::vector<double> x(3, 1.0), result(3, -7.0);
    SinCosEach({x.data(), 3}, {result.data(), 2}, {});
    SinCosEach({x.data(), 3}, {}, {result.data(), 1});
    SinCosEach({}, {}, {});
    EXPECT_EQ(result, std::vector<double>(3, -7.0)) << "too few results";
    SinCosEach({x.data(), 3}, {}, {result.data(), 3});
    EXPECT_EQ(Bits(result[2]), Bits(Cos(1.0))) << "cosines alone";
}

struct PowerCase {
    double x, power;
    const char* why;
};
constexpr PowerCase kPowers[] = {
    {0x1p+0, 0x1.5bf0a8b145769p+1, "plain"},
    {-0x1.47ae147ae147bp-7, 0x1.fae7cfd2b9cfep-1, "small"},
    {0x1p-53, 0x1.0000000000001p+0, "half a unit and a little: up"},
    {-0x1p-54, 0x1p+0, "almost half way to the next lower: up"},
    {0x1.62e42fefa39efp+9, 0x1.fffffffffff2ap+1023, "the greatest finite"},
    {0x1.62e42fefa39fp+9, kInfinity, "the first infinite"},
    {-0x1.62p+9, 0x1.7c8ab2288c9abp-1022, "the last of the fast"},
    {-0x1.6232bdd7abcd2p+9, 0x1.000000000007cp-1022, "the last normal"},
    {-0x1.724p+9, 0x0.0000000000033p-1022, "subnormal"},
    {-0x1.74910d52d3051p+9, 0x0.0000000000001p-1022, "the last above half the least"},
    {-0x1.74910d52d3053p+9, 0x0p+0, "less than half the least"},
    {0x1.9e9cbbfd6080bp-31, 0x1.000000033d398p+0, "a published worst case"},
    {0.0, 1.0, "zero"},
    {0x1p-54, 1.0, "half a unit, and less than nothing more"},
    {kInfinity, kInfinity, "an infinity"},
    {-kInfinity, 0.0, "an infinity"},
    {-kNaN, kNaN, "every NaN comes out as one"},
};

TEST(Elementary, Exponential) {
    for (const auto& [x, power, why] : kPowers) EXPECT_EQ(Bits(Exp(x)), Bits(power)) << why;
}

struct ArcCase {
    double x, arc;
    const char* why;
};
constexpr ArcCase kArcTangents[] = {
    {0x1p+0, 0x1.921fb54442d18p-1, "an eighth of a turn"},
    {0x1p-1, 0x1.dac670561bb4fp-2, "plain"},
    {0x1p-27, 0x1p-27, "the first that is no longer itself"},
    {0x1.fffffffffffffp-8, 0x1.fffd555bbba96p-8, "the last below the table"},
    {0x1p-7, 0x1.fffd555bbba97p-8, "the first in the table"},
    {0x1.fffffffffffffp+6, 0x1.901fb7eee715ep+0, "the last in the table"},
    {0x1p+7, 0x1.901fb7eee715ep+0, "the first beyond"},
    {1e300, 0x1.921fb54442d18p+0, "a quarter turn but for next to nothing"},
    {0x1.f9e8b6fc7d9a3p-2, 0x1.d5e40b89a62abp-2, "plain, all bits in use"},
    {0x1p-1074, 0x1p-1074, "the least double"},
    {-0.0, -0.0, "a negative zero"},
    {-kInfinity, -0x1.921fb54442d18p+0, "an infinity"},
    {-kNaN, kNaN, "every NaN comes out as one"},
};

TEST(Elementary, ArcTangent) {
    for (const auto& [x, arc, why] : kArcTangents) {
        EXPECT_EQ(Bits(ArcTan(x)), Bits(arc)) << why;
        EXPECT_EQ(Bits(ArcTan2(x, 1.0)), Bits(arc)) << why;
    }
}

struct PointCase {
    double y, x, arc;
    const char* why;
};
constexpr PointCase kPoints[] = {
    {1.0, -1.0, 0x1.2d97c7f3321d2p+1, "left above"},
    {-1.0, -1.0, -0x1.2d97c7f3321d2p+1, "left below"},
    {1e-5, -3.0, 0x1.921f994dfb705p+1, "a small angle before half a turn"},
    {3.0, 0x1p-1030, 0x1.921fb54442d18p+0, "a quotient that overflows"},
    {1e-300, 1e300, 0.0, "a quotient that underflows"},
    {0x1p-1074, 0x1p-1074, 0x1.921fb54442d18p-1, "both subnormal"},
    {0x1.fffffffffffffp+1023, 0x1.fffffffffffffp+1023, 0x1.921fb54442d18p-1, "both greatest"},
    {0x1p-1022, 2.0, 0x0.8p-1022, "a subnormal angle"},
    {0x1.8p-1000, 0x1p+74, 0x1p-1074, "half way between two subnormal angles: just below, so down"},
    {0x5p-1074, 2.0, 0x2p-1074, "half way to an odd one: down, too"},
    {0.0, 1.0, 0.0, "on the axis"},
    {-0.0, -1.0, -0x1.921fb54442d18p+1, "on the axis, on the left, from below"},
    {0.0, -0.0, 0x1.921fb54442d18p+1, "the origin, from the left"},
    {-2.0, 0.0, -0x1.921fb54442d18p+0, "straight down"},
    {kInfinity, -kInfinity, 0x1.2d97c7f3321d2p+1, "a diagonal"},
    {-kInfinity, kInfinity, -0x1.921fb54442d18p-1, "a diagonal"},
    {kInfinity, 1.0, 0x1.921fb54442d18p+0, "infinitely high"},
    {-1.0, -kInfinity, -0x1.921fb54442d18p+1, "infinitely far on the left"},
    {kNaN, kInfinity, kNaN, "no point"},
    {0.0, -kNaN, kNaN, "every NaN comes out as one"},
};

TEST(Elementary, ArcTangentOfAPoint) {
    for (const auto& [y, x, arc, why] : kPoints) EXPECT_EQ(Bits(ArcTan2(y, x)), Bits(arc)) << why;
}

constexpr ArcCase kArcCosines[] = {
    {0x1p-1, 0x1.0c152382d7366p+0, "a sixth of a turn"},
    {-0x1p-1, 0x1.0c152382d7366p+1, "a third"},
    {0.0, 0x1.921fb54442d18p+0, "a quarter"},
    {0x1p-60, 0x1.921fb54442d18p+0, "a quarter but for next to nothing"},
    {0x1.ff2e48e8a71dep-8, 0x1.902085a7a536p+0, "the last near 0"},
    {0x1.fbfffffffffffp-1, 0x1.002abde953639p-3, "the last of the table"},
    {0x1.fcp-1, 0x1.002abde953619p-3, "the first near 1"},
    {0x1.fffffffffffffp-1, 0x1p-26, "the last below 1"},
    {-0x1.fffffffffffffp-1, 0x1.921fb52442d18p+1, "the first above -1"},
    {1.0, 0.0, "no angle at all"},
    {-1.0, 0x1.921fb54442d18p+1, "half a turn"},
    {0x1.0000000000001p+0, kNaN, "no cosine"},
    {-kInfinity, kNaN, "no cosine"},
    {-kNaN, kNaN, "every NaN comes out as one"},
};

TEST(Elementary, ArcCosine) {
    for (const auto& [x, arc, why] : kArcCosines) EXPECT_EQ(Bits(ArcCos(x)), Bits(arc)) << why;
}

struct RootCase {
    double x, root, power;
    const char* why;
};
constexpr RootCase kRoots[] = {
    {1.0, 1.0, 1.0, "the one exact power"},
    {8.0, 2.0, 2.0, "an exact root; a power less than half a unit below"},
    {0x1.fffffffffffffp+1023, 0x1.428a2f98d728bp+341, 0x1.428a2f98d724p+341, "the greatest double"},
    {0x1p-1022, 0x1.428a2f98d728bp-341, 0x1.428a2f98d72d5p-341, "the least normal double"},
    {0x1p-1074, 0x1p-358, 0x1.000000000003ep-358, "the least double"},
    {0x1.fffffffffffffp-1, 1.0, 1.0, "next to 1"},
    {0.0, 0.0, 0.0, "zero"},
    {kInfinity, kInfinity, kInfinity, "an infinity"},
    {kNaN, kNaN, kNaN, "NaN"},
};

TEST(Elementary, CubeRootAndPowerOfAThird) {
    for (const auto& [x, root, power, why] : kRoots) {
        EXPECT_EQ(Bits(CubeRoot(x)), Bits(root)) << why;
        EXPECT_EQ(Bits(GenFunctions::CubRt(x)), Bits(power)) << why;
        EXPECT_EQ(Bits(CubeRoot(-x)), std::isnan(x) ? Bits(kNaN) : Bits(-root)) << why;
    }
}

double ValueOf(const std::string& function, double x) {
    using Function = double (*)(double);
    constexpr std::pair<std::string_view, Function> kFunctions[] = {
        {"Sin", Sin},
        {"Cos", Cos},
        {"Exp", Exp},
        {"ArcTan", ArcTan},
        {"ArcCos", ArcCos},
        {"CubeRoot", CubeRoot},
        {"CubRt", GenFunctions::CubRt},
    };
    for (const auto& [name, value] : kFunctions)
        if (name == function) return value(x);
    ADD_FAILURE() << function;
    return kNaN;
}

// Every line of the file names its arguments' result by MPFR; proofs/elementary/hard_cases.py finds
// them. All need the accurate phase, or the longest reductions of an angle.
TEST(Elementary, HardArguments) {
    std::ifstream file(CORVALE_CASES "/hard_arguments.txt");
    int cases = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        std::istringstream words(line);
        std::string function, x, y, result, distance;
        words >> function;
        if (function == "ArcTan2") words >> y;
        words >> x >> result >> distance;
        const auto number = [](const std::string& text) {
            return std::strtod(text.c_str(), nullptr);
        };
        const double ours =
            function == "ArcTan2" ? ArcTan2(number(y), number(x)) : ValueOf(function, number(x));
        EXPECT_EQ(Bits(ours), Bits(number(result))) << line;
        ++cases;
    }
    EXPECT_GT(cases, 3000);
}

}  // namespace
}  // namespace corvale::Elementary
