#include "NumberEnvironment.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <gtest/gtest.h>
#include <cmath>
#include <limits>

namespace corvale::StrFunctions {
namespace {

using namespace test;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct WriterCase {
    double value;
    std::int32_t n;
    std::string_view text;  // as wide as the field that is passed
    std::string_view why;
};
constexpr WriterCase kPlain[] = {
    {3.14159, 4, "3.14", "rounded to n decimals, cut to n characters"},
    {123.456, 12, "123.45600000", "decimals that are cut"},
    {-0.5, 3, "-.5", "no digit before the point"},
    {1.99999, 3, "2.0", "the rounding carries"},
    {0.9999, 2, "1.", "into a digit before the point"},
    {-0.004, 3, "-.0", "a negative value that rounds to zero"},
    {0.4, 2, ".4", "cut, not rounded again"},
    {7.3, 2, "7.", "cut at the point"},
    {2.5, 0, "?", "n = 0 writes nothing"},
    {2.5, -1, "?", "nor a negative n"},
    {0.125, 2, ".1", "halfway"},
    {9007199254740993.0, 12, "900719925474", "sixteen digits, twelve decimals"},
    {9223372036854775808.0, 9, "922337203", "2^63"},
    {12345678901234567890.0, 9, "123456789", "more than 19 digits"},
    {0.1, 25, ".100000000000000005551115", "more decimals than digits"},
    {-1e-10, 22, "-.00000000010000000000", "small, many decimals"},
    {0.5, 29, ".5000000000000000000000000000", "just fits the field of 30"},
    {-0.5, 29, "*****************************", "one too many"},
    {0.5, 30, "******************************", "one decimal too many"},
    {1e30, 4, "****", "too many digits before the point"},
    {1.5, 31, "****************************** ", "the field has 30"},
    {1.5, 2147483647, "*****", "the text has 5"},
    {1.5, 2, "1.   ", "the text is wider"},
    {1.7976931348623157e308, 3, "***", "the greatest"},
    {5e-324, 3, ".00", "the least"},
    {kInfinity, 4, "Inf ", "infinity"},
    {-kInfinity, 4, "-Inf", "and its sign"},
    {-kNaN, 4, "NaN ", "no sign"},
    {kInfinity, 2, "In", "cut like all"},
};
constexpr WriterCase kWithSign[] = {
    {123.456, 13, "+123.45600000", "always a sign"},
    {0.5, 20, "+.50000000          ", "blanks after it"},
    {-0.0, 12, "-.00000000  ", "the sign of zero"},
    {0.0, 10, "+.00000000", "plain zero"},
    {1.0, 5, "+1.00", "cut"},
    {1.0, 3, "+1.  ", "the text is wider than n"},
    {9999999999.99, 20, "+9999999999.98999977", "the exact value"},
    {1.5e-8, 10, "+.00000001", "the exact value is below halfway"},
    {3.5e-8, 10, "+.00000004", "and here above"},
    {0.001953125, 10, "+.00195312", "halfway goes to even"},
    {0.005859375, 10, "+.00585938", "upwards, too"},
    {-1e10, 4, "****", "beyond the field of 20"},
    {1e300, 22, "********************  ", "far beyond"},
    {1.0, 0, "  ", "n = 0 leaves blanks"},
    {1.0, -5, "  ", "a negative n likewise"},
    {1.0, 25, "+1.00000000              ", "n beyond the field"},
    {1.0, 9, "+1.", "n beyond the text"},
    {kInfinity, 4, "+Inf", "infinity"},
    {-kInfinity, 4, "-Inf", "negative"},
    {kNaN, 4, "NaN ", "never a sign"},
};

template <auto Write>
void CheckWriter(std::span<const WriterCase> cases) {
    GuardedPage page;
    for (const int mode : kRoundingModes) {
        const RoundingModeScope scope(mode);
        for (const auto& [value, n, text, why] : cases) {
            const std::span<char> out = page.AtEnd(std::string(text.size(), '?'));
            Write(value, n, out);
            EXPECT_EQ(std::string(out.begin(), out.end()), text) << why << ", mode " << mode;
        }
    }
}

TEST(Fx0ToAx, WritesInEveryRoundingMode) {
    CheckWriter<Fx0ToAx>(kPlain);
}

TEST(Fx0ToSignAx, WritesInEveryRoundingMode) {
    CheckWriter<Fx0ToSignAx>(kWithSign);
}

struct RowCase {
    std::string_view row;
    std::string_view compressed;
    std::string_view why;
};
constexpr RowCase kRows[] = {
    {"", "", "width 0"},
    {"    ", "", "blank"},
    {"1.500000000000000E+003, 2.000000000000000E-001, 0.000000000000000E+000 , 3", "1.5E+3,2E-1,,3",
     "the layout, and a zero before a blank"},
    {" 1.234500000000000E+012, 1.000000000000000E-123, 5.000000000000000E+100",
     "1.2345E+12,1E-123,5E+100", "exponents of each length"},
    {"-1.234567890123456E-001,-1.000000010000000E+010, 1.000000000000001E+000,",
     "-1.234567890123456E-1,-1.00000001E+10,1.000000000000001E+0,", "zeros end anywhere"},
    {" 0.000000000000000E+000, 0.000000000000000E+000", "0E+0,", "a zero goes at the line's end"},
    {"0.000000000000000E+000, 1", "0E+0,1", "nor at its start"},
    {" 1.500000000000000E+003: 1.500000000000000e+003", "1.5E+3:1.500000000000000e+003",
     "close to the layout, but not in it"},
    {"+1.500000000000000E+003, 1.50000000000000 E+003,x1.500000000000000E+003",
     "+1.5E+3,1.5E+3,x1.5E+3", "nor these"},
    {"12.50:30.000:00.0", "12.5:30:00", "clock times"},
    {"100, 10.0, 0.0, 0.5, 1.05000", "100,10,0,0.5,1.05", "decimals and whole numbers"},
    {" 0 , 0 ,1", ",,1", "single zeros between blanks"},
    {".5,.50,.0", ".5,.5,", "no digit before the point"},
    {"5.", "5.", "a point alone stays at the end"},
    {"5.,6", "5.,6", "and before a comma"},
    {"0.000", "0", "a fraction of zeros at the end"},
    {"2023/01/01 12:00:00.000, 1.25000", "2023/01/0112:00:00,1.25", "every blank goes"},
    {"1E+005,1.0E5,1.50E", "1E+005,1E5,1.50E",
     "an exponent takes three characters after its sign, even these"},
    {"48.000.,-", "48,-  .", "a second point outlives the zeros before it"},
    {"1.00.00", "1", "and goes with them at the end"},
};

TEST(CompressCsvLine, FollowsItsRules) {
    GuardedPage page;
    for (const auto& [row, compressed, why] : kRows) {
        std::string wanted(compressed);
        wanted.resize(row.size(), ' ');
        for (const auto line : {page.AtStart(row), page.AtEnd(row)}) {
            CompressCsvLine(line);
            EXPECT_EQ(std::string(line.begin(), line.end()), wanted) << row << ": " << why;
            std::ranges::copy(row, line.begin());
        }
    }
}

TEST(CompressCsvLine, CutsAt512Characters) {
    for (const std::size_t width : {511U, 512U, 513U, 2000U}) {
        std::string line(width, '7');
        CompressCsvLine(line);
        EXPECT_EQ(line.find_last_of('7') + 1, std::min<std::size_t>(width, 512)) << width;
        EXPECT_EQ(line.size(), width);
    }
    std::string ending = std::string(508, '7') + ".5E+123";
    CompressCsvLine(ending);
    EXPECT_EQ(ending, std::string(508, '7') + ".5E+   ") << "an exponent across the limit";
}

}  // namespace
}  // namespace corvale::StrFunctions
