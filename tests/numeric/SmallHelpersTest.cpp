#include <corvale/numeric/SmallHelpers.hpp>

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

namespace corvale::GenFunctions {
namespace {

using test::Bits;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct FunctionCase {
    double x, result;
    const char* why;
};

constexpr FunctionCase kRoots[] = {
    {-8, -2, "the sign comes back"}, {27, 3, "a cube"},
    {-0.0, -0.0, "a negative zero"}, {-kInfinity, -kInfinity, "an infinity"},
    {kNaN, kNaN, "NaN spreads"},
};

TEST(CubRt, CarriesTheSign) {
    for (const auto& [x, result, why] : kRoots) EXPECT_EQ(Bits(CubRt(x)), Bits(result)) << why;
}

constexpr FunctionCase kExponentials[] = {
    {0.0, 0.0, "zero"},
    {-0.0, 0.0, "negative zero: the second term is +0"},
    {0.7500000000000001, 1 / 0.7500000000000001, "beyond the last exponential"},
    {-kInfinity, -0.0, "1/x"},
    {kNaN, kNaN, "NaN spreads"},
};

TEST(SerExp, TakesThreeWays) {
    for (const auto& [x, result, why] : kExponentials)
        EXPECT_EQ(Bits(SerExp(x)), Bits(result)) << why;
    EXPECT_NEAR(SerExp(0.5), (1 - std::exp(-25.0)) / 0.5, 3e-16);
    EXPECT_NEAR(SerExp(0.01), 1 - 0.005, 1e-15) << "two terms for positive x";
    EXPECT_NEAR(SerExp(-0.01), -1 + 0.005 - 0.00005 / 3, 1e-15) << "three terms for negative x";
    EXPECT_EQ(SerExp(-1e-9), 100 * -1e-9) << "the second term, 5e-24, vanishes in the sum";
}

struct LineCase {
    std::string_view line;
    std::int32_t first, last, sum, status;
    const char* why;
};
constexpr LineCase kLines[] = {
    {"1-2 A9", 1, 6, 3, 0, "digits, a minus, and characters that count nothing"},
    {"1-2 A9", 0, 6, 0, 2, "before the first character"},
    {"1-2 A9", 4, 3, 0, 2, "an empty range"},
    {"1-2 A9", 6, INT_MAX, 9, 0, "ends with the text"},
    {"1-2 A9", INT_MAX, INT_MAX, 0, 0, "begins after it"},
    {"", 1, 1, 0, 0, "an empty text"},
};

TEST(CkSum, CountsDigitsAndMinuses) {
    for (const LineCase& c : kLines) {
        std::int32_t sum = -1;
        std::int32_t status = -1;
        CkSum(c.line, c.first, c.last, sum, status);
        EXPECT_EQ(sum, c.sum) << c.why;
        EXPECT_EQ(status, c.status) << c.why;
    }
}

struct TableCase {
    std::vector<double> table;
    double value;
    std::int32_t index;
    const char* why;
};
const TableCase kTables[] = {
    {{0, 10, 20, 30}, -5, 1, "before the first"},
    {{5}, 4, 1, "one entry, below"},
    {{}, 6, 0, "no entry"},
    {{-1.7e308, 0, 1.7e308}, -1, 1, "the range overflows"},
    {{0, 5e-324, 1e-323, 1.5e-323}, 5e-324, 2, "the step vanishes"},
    {{1, 2, 3}, kNaN, 1, "no value"},
    {{-kInfinity, 2, 3}, 2, 2, "an infinite range"},
    {{kNaN, 2, 3}, 2, 1, "no first entry"},
    {{1, 2, kNaN}, 2, 3, "no last entry"},
};

TEST(FindRecIdx, FindsThePlace) {
    for (const TableCase& c : kTables)
        EXPECT_EQ(FindRecIdx(c.table.data(), static_cast<std::int32_t>(c.table.size()), c.value),
                  c.index)
            << c.value << ": " << c.why;
}

TEST(Logical, ConvertsAndJudges) {
    for (const std::int32_t i : {0, 1, 2, -1, INT_MIN}) {
        EXPECT_EQ(Int2Logical(i), i == 0 ? 0 : 1) << i;
        EXPECT_EQ(InvalidFlag(i), i == 0 || i == 1 ? 0 : 1) << i;
    }
    for (const std::int32_t i : {0, 1}) EXPECT_EQ(Logical2Int(i), i);
}

}  // namespace
}  // namespace corvale::GenFunctions
