#include <corvale/numeric/Angles.hpp>

#include "Bits.hpp"
#include "literal/LiteralNumeric.hpp"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace corvale::GenFunctions {
namespace {

using test::Bits;

constexpr double kTwoPi = 6.283185307179586;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct RealCase {
    double x, y, result;
    const char* why;
};

constexpr RealCase kReduced[] = {
    {0.0, 0, 0.0, "nothing to do"},
    {-0.0, 0, -0.0, "a negative zero is not negative"},
    {-1e-20, 0, kTwoPi, "a tiny negative angle rounds up to a turn"},
    {kTwoPi, 0, 0.0, "a turn"},
    {7.0, 0, 7.0 - kTwoPi, "over a turn"},
    {-7.0, 0, (-7.0 + kTwoPi) + kTwoPi, "below a negative turn"},
    {1e300, 0, 0x1.63d315c34e8c0p+2, "the exact remainder, by integer arithmetic"},
    {kInfinity, 0, kNaN, "no angle"},
    {kNaN, 0, kNaN, "no angle"},
};

TEST(FMod2P, ReducesToOneTurn) {
    for (const RealCase& c : kReduced) EXPECT_EQ(Bits(FMod2P(c.x)), Bits(c.result)) << c.x << c.why;
}

constexpr RealCase kArcTangents[] = {
    {0, 1, 0.0, "along +x"},
    {1, 0, kHalfPi, "along +y"},
    {0, -1, 2 * kHalfPi, "along -x"},
    {-0.0, -1, 2 * kHalfPi, "-pi becomes pi"},
    {-1, 0, kTwoPi - kHalfPi, "along -y"},
    {-1e-300, 1, kTwoPi, "just below +x rounds to a turn"},
    {kNaN, 1, kNaN, "NaN spreads"},
};

TEST(AcTan, GoesRoundTheCircle) {
    for (const RealCase& c : kArcTangents)
        EXPECT_EQ(Bits(AcTan(c.x, c.y)), Bits(c.result)) << c.x << ' ' << c.y << ' ' << c.why;
}

constexpr RealCase kArcSines[] = {
    {1.0, 0, kHalfPi, "the end"},           {-1.0, 0, -kHalfPi, "the other end"},
    {1.0000001, 0, kHalfPi, "beyond it"},   {-kInfinity, 0, -kHalfPi, "far beyond, with the sign"},
    {-0.0, 0, -0.0, "zero keeps its sign"}, {kNaN, 0, kNaN, "NaN spreads"},
};

TEST(AcSin, EndsAtAQuarterTurn) {
    for (const RealCase& c : kArcSines) EXPECT_EQ(Bits(AcSin(c.x)), Bits(c.result)) << c.x << c.why;
    EXPECT_NEAR(AcSin(0.5), kTwoPi / 12, 2e-16);
    EXPECT_NEAR(AcSin(-0x1.fffffffffffffp-1), -kHalfPi, 2e-8);
}

constexpr RealCase kDifferences[] = {
    {10, 350, 20, "across the turn"},
    {350, 10, -20, "and back"},
    {190, 10, 180, "exactly half a turn stays"},
    {10, 190, -180, "with its sign"},
    {370, 0, 10, "reduced first"},
    {200, 0, -160, "folded"},
    {-200, 0, 160, "folded"},
    {300, -200, -140, "a turn and more apart: one fold only"},
    {-300, 300, 240, "likewise"},
    {1e300, 1e300, 0, "exact remainders"},
    {kInfinity, 0, kNaN, "no angle"},
};

TEST(DeltaAngleLT180, FoldsOnce) {
    for (const RealCase& c : kDifferences)
        EXPECT_EQ(Bits(DeltaAngleLT180(c.x, c.y)), Bits(c.result)) << c.x << ' ' << c.y << c.why;
}

struct SplitCase {
    double deg;
    std::int32_t whole, minutes;
    double seconds;
    const char *text, *why;
};

constexpr SplitCase kDegrees[] = {
    {0.0, 0, 0, 0.0, "0000000.000", "zero"},
    {-0.0, 0, 0, 0.0, "0000000.000", "is not negative"},
    {10.5, 10, 30, 0.0, "0103000.000", "a positive sign shows as 0"},
    {-10.5, -10, 30, 0.0, "-103000.000", "minutes carry no sign"},
    {-0.5, 0, 30, 0.0, "-003000.000", "the text keeps the sign that the numbers lose"},
    {10.1, 10, 5, 59.999999999998735, "0100600.000", "the text carries, the numbers do not"},
    {0.016527777777777777, 0, 0, 59.49999999999999, "0000059.500", "below the carry"},
    {0.0166, 0, 0, 59.76, "0000100.000", "59.76 seconds show as a minute"},
    {99.99999, 99, 59, 59.96400000000244, "0**0000.000", "carries into the third digit"},
    {100.0, 100, 0, 0.0, "0**0000.000", "three digits"},
    {-720.25, -720, 15, 0.0, "-**1500.000", "more than a turn is not reduced"},
    {0.0625 / 3600, 0, 0, 0.0625, "0000000.062", "a tie goes to even"},
    {0.1875 / 3600, 0, 0, 0.1875, "0000000.188", "a tie goes to even"},
    {5e-324, 0, 0, 0.0, "0000000.000", "the least double"},
    {2147483647.0, 2147483647, 0, 0.0, "0**0000.000", "the largest whole degrees"},
    {2147483648.0, 0, 0, kNaN, "0**********", "one more"},
    {-2147483648.0, INT32_MIN, 0, 0.0, "-**0000.000", "the least whole degrees"},
    {1e300, 0, 0, kNaN, "0**********", "huge"},
    {-kInfinity, 0, 0, kNaN, "-**********", "no angle, with a sign"},
    {kNaN, 0, 0, kNaN, "0**********", "no angle"},
};

template <std::size_t Width>
std::string Text(const std::array<char, Width>& text) {
    return {text.data(), text.size()};
}

TEST(Degrees, SplitAndWritten) {
    for (const SplitCase& c : kDegrees) {
        std::int32_t dd = -1;
        std::int32_t mm = -1;
        double ss = -1;
        DegToDDMMSSS(c.deg, dd, mm, ss);
        EXPECT_EQ(dd, c.whole) << c.deg << ": " << c.why;
        EXPECT_EQ(mm, c.minutes) << c.deg << ": " << c.why;
        if (std::isnan(c.seconds))
            EXPECT_TRUE(std::isnan(ss)) << c.deg;
        else
            EXPECT_NEAR(ss, c.seconds, 1e-9) << c.deg << ": " << c.why;
        EXPECT_EQ(Text(DegToDDMMSSSSS_Str(c.deg)), c.text) << c.deg << ": " << c.why;
    }
}

constexpr SplitCase kHours[] = {
    {0.0, 0, 0, 6e-11, "0000000", "the guard alone"},
    {15.0, 1, 0, 6e-11, "0100000", "an hour"},
    {180.0, 12, 0, 6e-11, "1200000", "half a day"},
    {-15.0, 23, 0, 6e-11, "2300000", "reduced upwards"},
    {1.0025, 0, 4, 0.6, "0004006", "tenths"},
    {359.9999999, 0, 0, 0.0, "0000000", "carries twice, to a whole day"},
    {59.9 / 240, 0, 0, 59.9, "0000599", "below the carry"},
    {-1e-20, 24, 0, 6e-11, "0000000", "rounds up to a turn: 24 hours, without a carry"},
    {1e20, 18, 40, 6e-11, "1840000", "the exact remainder is 280"},
    {1e300, 0, 0, 6e-11, "0000000", "the exact remainder is 0"},
    {kInfinity, 0, 0, kNaN, "*******", "no angle"},
    {kNaN, 0, 0, kNaN, "*******", "no angle"},
};

TEST(Hours, SplitAndWritten) {
    for (const SplitCase& c : kHours) {
        std::int32_t hh = -1;
        std::int32_t mm = -1;
        double ss = -1;
        DegToHHMMSSS(c.deg, hh, mm, ss);
        EXPECT_EQ(hh, c.whole) << c.deg << ": " << c.why;
        EXPECT_EQ(mm, c.minutes) << c.deg << ": " << c.why;
        if (std::isnan(c.seconds))
            EXPECT_TRUE(std::isnan(ss)) << c.deg;
        else
            EXPECT_NEAR(ss, c.seconds, 1e-9) << c.deg << ": " << c.why;
        EXPECT_EQ(Text(DegToHHMMSSS_Str(c.deg)), c.text) << c.deg << ": " << c.why;
    }
}

// Random angles, angles near whole seconds, and their neighbours, where carries are decided.
TEST(Sexagesimal, AgreesWithThePlainSteps) {
    std::mt19937_64 random(5);
    for (int i = 0; i < 200000; ++i) {
        double deg =
            static_cast<double>(static_cast<std::int64_t>(random() >> 9)) / 0x1p55 * 1600 - 800;
        if (i % 3 == 1) deg = std::round(deg * 3600) / 3600;
        if (i % 3 == 2)
            deg = std::nextafter(std::round(deg * 36000) / 36000, i % 2 == 0 ? 1e3 : -1e3);
        ASSERT_EQ(Text(DegToDDMMSSSSS_Str(deg)), literal::DegreeText(deg)) << deg;
        ASSERT_EQ(Text(DegToHHMMSSS_Str(deg)), literal::HourText(deg)) << deg;

        std::int32_t hh = 0;
        std::int32_t mm = 0;
        double ss = 0;
        DegToHHMMSSS(deg, hh, mm, ss);
        const literal::Hours plain = literal::CarriedHours(deg);
        ASSERT_TRUE(hh == plain.hours && mm == plain.minutes && ss == plain.seconds) << deg;
    }
}

}  // namespace
}  // namespace corvale::GenFunctions
