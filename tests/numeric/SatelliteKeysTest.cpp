#include <corvale/numeric/GenFunctions.hpp>

#include <gtest/gtest.h>
#include <cstdint>
#include <limits>

namespace corvale::GenFunctions {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();

struct KeyCase {
    std::int64_t key, address, next;
    std::int32_t isDma, isNoDup;
    const char* why;
};
constexpr KeyCase kKeys[] = {
    {0, 0, 10000000000, 0, 1, "zero is no DMA key and has no duplication"},
    {120, 12, 10000000120, 1, 0, "a multiple of ten is a DMA key"},
    {125, 12, 10000000125, 0, 1, "any other key has no duplication"},
    {19, 1, 10000000019, 0, 1, "division truncates"},
    {-25, -2, 9999999975, 0, 1, "toward zero for negative keys too"},
    {-20, -2, 9999999980, 1, 0, "divisibility ignores the sign"},
    {-7, 0, 9999999993, 0, 1, "a negative key is below the limit"},
    {-10000000000, -1000000000, 0, 1, 0, "the key before zero"},
    {3669999999999999999, 366999999999999999, 3670000009999999999, 0, 1, "last below the limit"},
    {3670000000000000000, 367000000000000000, 3670000010000000000, 1, 0, "the limit, a multiple"},
    {3670000000000000001, 367000000000000000, 3670000010000000001, 0, 0, "first above the limit"},
    {kLeast, kLeast / 10, kLeast + 10000000000, 0, 1, "the least key ends in 8"},
    {kGreatest, kGreatest / 10, kLeast + 9999999999, 0, 0, "the next key wraps"},
};

TEST(SatelliteKeys, ClassifyAndConvert) {
    for (const KeyCase& c : kKeys) {
        EXPECT_EQ(SatKeyToAddr(c.key), c.address) << c.key << ": " << c.why;
        EXPECT_EQ(KeyToCPtr(c.key), c.address) << c.key << ": " << c.why;
        EXPECT_EQ(NextSatKey(c.key), c.next) << c.key << ": " << c.why;
        EXPECT_EQ(IsDma(c.key), c.isDma) << c.key << ": " << c.why;
        EXPECT_EQ(IsNoDup(c.key), c.isNoDup) << c.key << ": " << c.why;
    }
}

}  // namespace
}  // namespace corvale::GenFunctions
