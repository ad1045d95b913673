#include <corvale/numeric/SatelliteNumbers.hpp>

#include "literal/LiteralNumeric.hpp"

#include <gtest/gtest.h>
#include <climits>
#include <string>

namespace corvale::GenFunctions {
namespace {

std::string CodeOf(std::int32_t number) {
    const auto code = NumToAlpha5(number);
    return {code.data(), code.size()};
}

struct NumberCase {
    std::int32_t number;
    std::string_view code, why;
};
constexpr NumberCase kNumbers[] = {
    {INT_MIN, "00000", "no number below 1 has a code"},
    {-5, "00000", "nor a small negative one"},
    {7, "00007", "leading zeros"},
    {99999, "99999", "last without a letter"},
    {100000, "A0000", "first with one"},
    {179999, "H9999", "last before the gap at I"},
    {180000, "J0000", "first after it"},
    {229999, "N9999", "last before the gap at O"},
    {230000, "P0000", "first after it"},
    {339999, "Z9999", "last with a letter"},
    {340000, "40000", "beyond the letters: the last five digits"},
    {1234567, "34567", "far beyond"},
    {INT_MAX, "83647", "the largest"},
};

TEST(NumToAlpha5, WritesEveryRange) {
    for (const auto& [number, code, why] : kNumbers) EXPECT_EQ(CodeOf(number), code) << why;
}

TEST(NumToAlpha5, ComesBackFromEveryCode) {
    for (std::int32_t n = 0; n < 340000; ++n) {
        const std::string code = CodeOf(n);
        ASSERT_EQ(Alpha5ToNum(code), n) << code;
        ASSERT_EQ(code, literal::NumToAlpha5(n));
    }
}

struct CodeCase {
    std::string_view code;
    std::int32_t number;
    std::string_view why;
};
constexpr CodeCase kCodes[] = {
    {"", 0, "an empty text is blank"},
    {"     ", 0, "blank"},
    {"   12", 12, "blanks do not count"},
    {"1 2 3", 123, "nor between digits"},
    {"12345678", 12345, "only five characters count"},
    {"    7A", 7, "not even a wrong sixth one"},
    {"-0012", -12, "a sign before the digits"},
    {" + 12", 12, "with blanks around it"},
    {"--012", 0, "not two signs"},
    {"1-012", 0, "nor one after a digit"},
    {"1.5  ", 0, "a point is no digit"},
    {"B0001", 110001, "a letter code"},
    {"A1", 100001, "short: as if blanks followed"},
    {"A", 100000, "blank digits are 0"},
    {"A 1 2", 100012, "blanks between its digits"},
    {"A-001", 99999, "a sign in its digits"},
    {"A-", 0, "a sign alone is no number"},
    {"A12-3", 0, "a sign after a digit"},
    {"AB123", 0, "two letters"},
    {"a0000", 0, "a small letter"},
    {"I0000", 0, "I is no code"},
    {"O1234", 0, "nor is O"},
    {" A000", 0, "a letter must come first"},
    {std::string_view("12\0\0\0", 5), 0, "a NUL is no blank"},
    {"\t  12", 0, "nor is a tab"},
    {"A\xff\xff\xff\xff", 0, "bytes above 127"},
};

TEST(Alpha5ToNum, ReadsFieldsAndCodes) {
    for (const auto& [code, number, why] : kCodes)
        EXPECT_EQ(Alpha5ToNum(code), number) << '"' << code << "\": " << why;
}

}  // namespace
}  // namespace corvale::GenFunctions
