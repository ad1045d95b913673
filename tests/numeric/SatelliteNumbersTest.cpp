#include <corvale/numeric/GenFunctions.hpp>

#include <gtest/gtest.h>
#include <climits>
#include <cstdint>
#include <limits>
#include <string_view>

namespace corvale::GenFunctions {
namespace {

// All numbers below a million and all kinds of five characters are compared with plain versions in
// a soak run; here are the ends and what has another width.
struct NumberCase {
    std::int32_t number;
    std::string_view code, why;
};
constexpr NumberCase kNumbers[] = {
    {INT_MIN, "00000", "no number below 1 has a code"},
    {180000, "J0000", "first after the gap at I"},
    {230000, "P0000", "first after the gap at O"},
    {339999, "Z9999", "last with a letter"},
    {INT_MAX, "83647", "the largest"},
};

TEST(NumToAlpha5, WritesEveryRange) {
    for (const auto& [number, code, why] : kNumbers) {
        const auto written = NumToAlpha5(number);
        EXPECT_EQ(std::string_view(written.data(), written.size()), code) << why;
    }
}

struct CodeCase {
    std::string_view code;
    std::int32_t number;
    std::string_view why;
};
constexpr CodeCase kCodes[] = {
    {"", 0, "an empty text is blank"},
    {"12345678", 12345, "only five characters count"},
    {"    7A", 7, "not even a wrong sixth one"},
    {"B0001", 110001, "a letter code"},
    {"A", 100000, "short: as if blanks followed, and blank digits are 0"},
    {"A 1 2", 100012, "blanks between its digits"},
    {"A-", 0, "a sign alone is no number"},
    {"O1234", 0, "O is no code"},
    {std::string_view("12\0\0\0", 5), 0, "a NUL is no blank"},
    {"\t  12", 0, "nor is a tab"},
    {"A\xff\xff\xff\xff", 0, "bytes above 127"},
};

TEST(Alpha5ToNum, ReadsFieldsAndCodes) {
    for (const auto& [code, number, why] : kCodes)
        EXPECT_EQ(Alpha5ToNum(code), number) << '"' << code << "\": " << why;
}

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();

struct KeyCase {
    std::int64_t key, address, next;
    std::int32_t isDma, isNoDup;
    const char* why;
};
constexpr KeyCase kKeys[] = {
    {0, 0, 10000000000, 0, 1, "zero is no DMA key and has no duplication"},
    {125, 12, 10000000125, 0, 1, "any other key has no duplication"},
    {-25, -2, 9999999975, 0, 1,
     "division truncates toward zero; a negative key is below the limit"},
    {-20, -2, 9999999980, 1, 0, "divisibility ignores the sign; a multiple of ten is a DMA key"},
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
