#include <corvale/numeric/Vectors.hpp>

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

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

}  // namespace
}  // namespace corvale::GenFunctions
