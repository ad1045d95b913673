#include <corvale/numeric/Angles.hpp>

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <span>
#include <string>

namespace corvale::GenFunctions {
namespace {

using test::Bits;

constexpr double kTwoPi = 6.283185307179586;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Angles, ReduceAndInvert) {
    const struct {
        double got, wanted;
        const char* why;
    } cases[] = {
        {FMod2P(-0.0), -0.0, "a negative zero is not negative"},
        {FMod2P(-1e-20), kTwoPi, "a tiny negative angle rounds up to a turn"},
        {FMod2P(kTwoPi), 0.0, "a turn"},
        {FMod2P(-7.0), (-7.0 + kTwoPi) + kTwoPi, "below a negative turn"},
        {FMod2P(1e300), 0x1.63d315c34e8c0p+2, "the exact remainder, by integer arithmetic"},
        {FMod2P(kInfinity), kNaN, "no angle"},

        {AcTan(1, 0), kHalfPi, "along +y"},
        {AcTan(-0.0, -1), 2 * kHalfPi, "-pi becomes pi"},
        {AcTan(-1, 0), kTwoPi - kHalfPi, "along -y"},
        {AcTan(-1e-300, 1), kTwoPi, "just below +x rounds to a turn"},
        {AcTan(kNaN, 1), kNaN, "NaN spreads"},

        {AcSin(1.0000001), kHalfPi, "beyond the end"},
        {AcSin(-kInfinity), -kHalfPi, "far beyond, with the sign"},
        {AcSin(-0.0), -0.0, "zero keeps its sign"},
        {AcSin(kNaN), kNaN, "NaN spreads"},

        {DeltaAngleLT180(10, 350), 20, "across the turn"},
        {DeltaAngleLT180(190, 10), 180, "exactly half a turn stays"},
        {DeltaAngleLT180(10, 190), -180, "with its sign"},
        {DeltaAngleLT180(370, 0), 10, "reduced first"},
        {DeltaAngleLT180(300, -200), -140, "a turn and more apart: one fold only"},
        {DeltaAngleLT180(-300, 300), 240, "likewise"},
        {DeltaAngleLT180(1e300, 1e300), 0, "exact remainders"},
        {DeltaAngleLT180(kInfinity, 0), kNaN, "no angle"},
    };
    for (const auto& [got, wanted, why] : cases) EXPECT_EQ(Bits(got), Bits(wanted)) << why;
    EXPECT_NEAR(AcSin(0.5), kTwoPi / 12, 2e-16);
    EXPECT_NEAR(AcSin(-0x1.fffffffffffffp-1), -kHalfPi, 2e-8);
}

template <std::size_t Width>
std::string Text(const std::array<char, Width>& text) {
    return {text.data(), text.size()};
}

struct SplitCase {
    double deg;
    std::int32_t whole, minutes;
    double seconds;
    const char *text, *why;
};

constexpr SplitCase kDegrees[] = {
    {-0.0, 0, 0, 0.0, "0000000.000", "is not negative"},
    {-10.5, -10, 30, 0.0, "-103000.000", "minutes carry no sign"},
    {-0.5, 0, 30, 0.0, "-003000.000", "the text keeps the sign that the numbers lose"},
    {10.1, 10, 5, 59.999999999998735, "0100600.000", "the text carries, the numbers do not"},
    {0.01653, 0, 0, 59.507999999999996, "0000100.000", "59.508 seconds show as a minute"},
    {0.01652, 0, 0, 59.472, "0000059.472", "less than 59.5 do not"},
    {99.99999, 99, 59, 59.96400000000244, "0**0000.000", "carries into the third digit"},
    {-720.25, -720, 15, 0.0, "-**1500.000", "more than a turn is not reduced"},
    {0.0625 / 3600, 0, 0, 0.0625, "0000000.062", "a tie goes to even"},
    {0.1875 / 3600, 0, 0, 0.1875, "0000000.188", "a tie goes to even"},
    {5e-324, 0, 0, 0.0, "0000000.000", "the least double"},
    {2147483647.0, 2147483647, 0, 0.0, "0**0000.000", "the largest whole degrees"},
    {2147483648.0, 0, 0, kNaN, "0**********", "one more"},
    {-2147483648.0, INT32_MIN, 0, 0.0, "-**0000.000", "the least whole degrees"},
    {-kInfinity, 0, 0, kNaN, "-**********", "no angle, with a sign"},
    {kNaN, 0, 0, kNaN, "0**********", "no angle"},
};

constexpr SplitCase kHours[] = {
    {180.0, 12, 0, 6e-11, "1200000", "half a day, and the guard"},
    {-15.0, 23, 0, 6e-11, "2300000", "reduced upwards"},
    {359.9999999, 0, 0, 0.0, "0000000", "carries twice, to a whole day"},
    {-1e-20, 24, 0, 6e-11, "0000000", "rounds up to a turn: 24 hours, without a carry"},
    {1e20, 18, 40, 6e-11, "1840000", "the exact remainder is 280"},
    {0x1.b4e81b45b5e82p-13, 0, 0, 0.05, "0000000", "0.49999999999999994 tenths stay below half"},
    {0.0010416666664166665, 0, 0, 0.25, "0000003", "2.5 tenths, a tie, go up"},
    {kInfinity, 0, 0, kNaN, "*******", "no angle"},
};

void ExpectSplit(std::span<const SplitCase> cases, auto split, auto write) {
    for (const SplitCase& c : cases) {
        std::int32_t whole = -1, minutes = -1;
        double seconds = -1;
        split(c.deg, whole, minutes, seconds);
        EXPECT_EQ(whole, c.whole) << c.deg << ": " << c.why;
        EXPECT_EQ(minutes, c.minutes) << c.deg << ": " << c.why;
        EXPECT_EQ(std::isnan(seconds), std::isnan(c.seconds)) << c.deg << ": " << c.why;
        EXPECT_FALSE(std::fabs(seconds - c.seconds) > 1e-9) << c.deg << ": " << c.why;
        EXPECT_EQ(Text(write(c.deg)), c.text) << c.deg << ": " << c.why;
    }
}

TEST(Sexagesimal, IsSplitAndWritten) {
    ExpectSplit(kDegrees, DegToDDMMSSS, DegToDDMMSSSSS_Str);
    ExpectSplit(kHours, DegToHHMMSSS, DegToHHMMSSS_Str);
}

}  // namespace
}  // namespace corvale::GenFunctions
