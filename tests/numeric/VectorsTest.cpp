#include <corvale/numeric/Vectors.hpp>

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <vector>

namespace corvale::GenFunctions {
namespace {

using test::Bits;

constexpr double kPi = 3.141592653589793;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void ExpectSameBits(const Vector3& actual, const Vector3& expected, const char* why) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(Bits(actual[i]), Bits(expected[i])) << "component " << i + 1 << ": " << why;
}

void ExpectNear(const Vector3& actual, const Vector3& expected, const char* why) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-13) << "component " << i + 1 << ": " << why;
}

TEST(Vectors, ProductAndMagnitude) {
    ExpectSameBits(Cross({1, 2, 3}, {4, 5, 7}), {-1, 5, -3}, "by hand");
    ExpectSameBits(UnitVec({0, 3, -4}), {0, 0.6, -0.8}, "exact divisions");
    ExpectSameBits(UnitVec({0, 0, 0}), {kNaN, kNaN, kNaN}, "no direction");

    EXPECT_EQ(Mag({3, 4, 12}), 13.0);
    EXPECT_EQ(Mag({0x1p53, 1, 1}), 0x1p53) << "squares are added one after the other";
    EXPECT_EQ(Mag({1e200, 0, 0}), std::numeric_limits<double>::infinity()) << "no scaling";
}

struct AngleCase {
    Vector3 a, b;
    double angle;
    const char* why;
};
const AngleCase kAngles[] = {
    {{1, 0, 0}, {2, 0, 0}, 0.0, "parallel"},
    {{1, 0, 0}, {-1, 0, 0}, kPi, "opposite"},
    {{1, 0, 0}, {0, 1, 0}, kPi / 2, "a right angle"},
    {{1, 1, 1}, {3, 3, 3}, 0.0, "a cosine beyond 1 by rounding"},
    {{1, 1e-9, 0}, {1, 0, 0}, 0.0, "a cosine that rounds to 1"},
    {{0, 0, 0}, {1, 0, 0}, kNaN, "no direction"},
};

TEST(Vectors, AngleBetween) {
    for (const AngleCase& c : kAngles)
        EXPECT_EQ(Bits(AngleOf2Vecs(c.a, c.b)), Bits(c.angle)) << c.why;
    EXPECT_NEAR(AngleOf2Vecs({1, 0, 0}, {1, 1, 0}), kPi / 4, 1e-15);
}

TEST(Rotations, AboutAnyAxis) {
    ExpectNear(
        RodriguesRot({1, 2, 3}, 120, {std::sqrt(1.0 / 3), std::sqrt(1.0 / 3), std::sqrt(1.0 / 3)}),
        {3, 1, 2}, "a third of a turn about the diagonal");
    ExpectNear(RodriguesRot({0, 0, 1}, 90, {0, 0, 2}), {0, 0, 4}, "the axis is not normalised");
    ExpectSameBits(RodriguesRot({-0.0, -0.0, -0.0}, -60, {1, 1, 1}), {0, 0, 0},
                   "+0 along the axis");
    ExpectNear(Rotate({1, 2, 3}, 3, kPi / 2), {2, -1, 3}, "the axes turn, not the vector");
    for (const std::int32_t axis : {0, 4, -1, INT32_MIN})
        ExpectSameBits(Rotate({1, 2, 3}, axis, 1), {1, 2, 3}, "no such axis");
}

// More than a block of 64, with a last group of one; angles of every phase of sine and cosine.
TEST(Rotations, OfManyAreThoseOfEach) {
    constexpr std::int32_t kCount = 64 * 3 + 5, kWide = 4;
    constexpr double kSpecial[] = {0.0,    -0.0,  90.0,   180.0,
                                   -270.0, 360.0, 1e-300, 0x1p-1074,
                                   3e4,    1e22,  kNaN,   std::numeric_limits<double>::infinity(),
                                   -1e308};
    std::vector<double> v, k, angles, result(std::size_t{kCount} * kWide, -1.0);
    for (std::int32_t i = 0; i < kCount * kWide; ++i) {
        v.push_back(std::cos(i) * (i % 13 == 0 ? 0.0 : 1e3));
        k.push_back(std::sin(i * 3));
    }
    for (std::int32_t i = 0; i < kCount; ++i)
        angles.push_back(i % 3 == 0 ? kSpecial[static_cast<std::size_t>(i) % std::size(kSpecial)]
                                    : std::tan(i) * 100.0);
    const VectorSeries<const double> vectors({v.data() + v.size() - 2, 3, -1}, -kWide, kCount);
    const VectorSeries<const double> axes({k.data() + 1, 3}, kWide, kCount),
        one({k.data(), 3}, 0, kCount);
    const VectorSeries<double> results({result.data(), 3}, kWide, kCount);
    for (const auto& turnedAbout : {axes, one}) {
        RodriguesRotEach(vectors, {angles.data(), kCount}, turnedAbout, results);
        for (std::int32_t i = 1; i <= kCount; ++i) {
            const auto from = vectors(i), axis = turnedAbout(i);
            const auto to = results(i);
            ExpectSameBits(
                {to(1), to(2), to(3)},
                RodriguesRot({from(1), from(2), from(3)}, angles[static_cast<std::size_t>(i) - 1],
                             {axis(1), axis(2), axis(3)}),
                "as one by one");
            EXPECT_EQ(result[static_cast<std::size_t>(i * kWide) - 1], -1.0) << "between vectors";
        }
    }
    const std::vector<double> before = result;
    RodriguesRotEach(vectors, {angles.data(), kCount - 1}, axes, results);
    RodriguesRotEach(vectors, {angles.data(), kCount}, {k.data(), 2, kCount}, results);
    RodriguesRotEach(vectors, {angles.data(), kCount}, {k.data(), 3, 1}, results);
    RodriguesRotEach({}, {}, {}, {});
    for (std::size_t i = 0; i < result.size(); ++i) EXPECT_EQ(Bits(result[i]), Bits(before[i]));
}

}  // namespace
}  // namespace corvale::GenFunctions
