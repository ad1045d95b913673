#include "tests/support/Bits.hpp"
#include "tests/support/GuardPage.hpp"
#include "tests/support/NumberEnvironment.hpp"

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
    {123.456, 12, "123.45600000", "decimals that are cut"},
    {1.99999, 3, "2.0", "the rounding carries"},
    {-0.004, 3, "-.0", "a negative value that rounds to zero"},
    {2.5, 0, "?", "n = 0 writes nothing"},
    {2.5, -1, "?", "nor a negative n"},
    {9007199254740993.0, 12, "900719925474", "sixteen digits, twelve decimals"},
    {0x1p64, 9, "184467440", "more than a word holds"},
    {0.1, 25, ".100000000000000005551115", "more decimals than digits"},
    {0.5, 29, ".5000000000000000000000000000", "just fits the field of 30"},
    {-0.5, 29, "*****************************", "one too many"},
    {0.5, 30, "******************************", "one decimal too many"},
    {1.5, 31, "****************************** ", "the field has 30"},
    {1.5, 2147483647, "*****", "the text has 5"},
    {1.5, 2, "1.   ", "the text is wider"},
    {kInfinity, 4, "Inf ", "infinity"},
    {-kInfinity, 4, "-Inf", "and its sign"},
    {-kNaN, 4, "NaN ", "no sign"},
    {kInfinity, 2, "In", "cut like all"},
};
constexpr WriterCase kWithSign[] = {
    {0.5, 20, "+.50000000          ", "blanks after it"},
    {-0.0, 12, "-.00000000  ", "the sign of zero"},
    {1.0, 3, "+1.  ", "the text is wider than n"},
    {0.001953125, 10, "+.00195312", "halfway goes to even"},
    {-1e10, 4, "****", "beyond the field of 20"},
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
    for (const int mode : kRoundingModes) {
        const RoundingModeScope scope(mode);
        for (const auto& [value, n, text, why] : cases) {
            const GuardedBuffer out(text.size(), '?');
            Write(value, n, out.Span());
            EXPECT_EQ(out.Text(), text) << why << ", mode " << mode;
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
    {"1.500000000000000E+003, 2.000000000000000E-001, 0.000000000000000E+000 , 3", "1.5E+3,2E-1,,3",
     "the layout, and a zero before a blank"},
    {" 1.234500000000000E+012, 1.000000000000000E-123, 5.000000000000000E+100",
     "1.2345E+12,1E-123,5E+100", "exponents of each length"},
    {"-1.234567890123456E-001,-1.000000010000000E+010, 1.000000000000001E+000,",
     "-1.234567890123456E-1,-1.00000001E+10,1.000000000000001E+0,", "zeros end anywhere"},
    {" 0.000000000000000E+000, 0.000000000000000E+000", "0E+0,", "a zero goes at the line's end"},
    {" 1.500000000000000E+003: 1.500000000000000e+003", "1.5E+3:1.500000000000000e+003",
     "close to the layout, but not in it"},
    {"+1.500000000000000E+003, 1.50000000000000 "
     "E+003,x1.500000000000000E+003,-:.500000000000000E+003,  .500000000000000E+003",
     "+1.5E+3,1.5E+3,x1.5E+3,-:.5E+3,.5E+3", "nor these"},
    {"100, 10.0, 0.0, 0.5, 1.05000", "100,10,0,0.5,1.05", "decimals and whole numbers"},
    {" 0 , 0 ,1", ",,1", "single zeros between blanks"},
    {"2023/01/01 12:00:00.000, 1.25000", "2023/01/0112:00:00,1.25", "every blank goes"},
    {"1E+005,1.0E5,1.50E", "1E+005,1E5,1.50E",
     "an exponent takes three characters after its sign, even these"},
    {"48.000.,-", "48,-  .", "a second point outlives the zeros before it"},
    {"1.00.00", "1", "and goes with them at the end"},
};

TEST(CompressCsvLine, FollowsItsRules) {
    for (const auto& [row, compressed, why] : kRows)
        for (const auto side : kSides) {
            const GuardedBuffer line(row, side);
            CompressCsvLine(line.Span());
            EXPECT_EQ(line.Text(), Padded(compressed, row.size())) << row << ": " << why;
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
