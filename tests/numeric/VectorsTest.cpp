#include <corvale/numeric/Vectors.hpp>

#include "Bits.hpp"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <random>

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
    EXPECT_EQ(Mag({1e-200, 0, 0}), 0.0) << "no scaling";
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
    for (const std::int32_t axis : {0, 4, -1, INT32_MIN})
        ExpectSameBits(Rotate({1, 2, 3}, axis, 1), {1, 2, 3}, "no such axis");
}

// The two formulas are opposite turns, keep lengths, and take the order of operations as told.
TEST(Rotations, AreOppositeAndExactInOrder) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> component(-10, 10);
    for (int i = 0; i < 1000; ++i) {
        const Vector3 v{component(random), component(random), component(random)};
        const double angle = component(random);
        const double s = std::sin(angle);
        const double c = std::cos(angle);
        ExpectSameBits(Rotate(v, 1, angle), {v[0], c * v[1] + s * v[2], c * v[2] - s * v[1]}, "x");
        ExpectSameBits(Rotate(v, 2, angle), {c * v[0] - s * v[2], v[1], c * v[2] + s * v[0]}, "y");
        ExpectSameBits(Rotate(v, 3, angle), {c * v[0] + s * v[1], c * v[1] - s * v[0], v[2]}, "z");

        const Vector3 turned = RodriguesRot(v, -angle * 180 / kPi, {0, 0, 1});
        ExpectNear(turned, Rotate(v, 3, angle), "opposite senses");
        EXPECT_NEAR(Mag(turned), Mag(v), 1e-13);
    }
}

}  // namespace
}  // namespace corvale::GenFunctions
