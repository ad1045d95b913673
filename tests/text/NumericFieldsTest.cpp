#include "tests/support/Bits.hpp"
#include "tests/support/CommaLocale.hpp"
#include "tests/support/GuardPage.hpp"
#include "tests/support/NumberEnvironment.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <gtest/gtest.h>
#include <array>
#include <limits>

namespace corvale::StrFunctions {
namespace {

using namespace test;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
constexpr double kGreatest = std::numeric_limits<double>::max();

// Ten digits that are eighty in a row below.
#define TEN(digit) digit digit digit digit digit digit digit digit digit digit
#define EIGHTY_NINES TEN("9") TEN("9") TEN("9") TEN("9") TEN("9") TEN("9") TEN("9") TEN("9")

struct RealCase {
    std::string_view field;
    double value;
    std::string_view why;
};
constexpr RealCase kReals[] = {
    {"", 0.0, "width 0"},
    {"abc 1.5", 0.0, "the number must come first"},
    {"\t1.5", 0.0, "a tab is not a blank"},
    {"        1234.5678", 1234.5678, "right-aligned, more than a word of blanks"},
    {"                         -0.25", -0.25, "far to the right"},
    {"+1234567890123456", 1234567890123456.0, "sixteen digits after a sign"},
    {"   -7", -7.0, "a narrow field"},
    {"     -12.5E-03", -0.0125, "right-aligned, with an exponent"},
    {"    12.5D0000002", 1250.0, "an exponent with more digits than are joined at once"},
    {"     12.5x2", 12.5, "another letter"},
    {"   -   5", 0.0, "a sign alone, then something else"},
    {"12              345.5", 12.0, "the first of two, far from the right end"},
    {"x               345.5", 0.0, "nothing before another character"},
    {"   1.2.3", 0.0, "a second point"},
    {"    +.-5", 0.0, "a point alone, then an exponent"},
    {"123", 123.0, "no implied decimals"},
    {"       .", 0.0, "a point alone, to the right"},
    {"-", 0.0, "a sign alone is a plain zero"},
    {"-0", -0.0, "the sign of a written zero stays"},
    {"1.5-3", 0.0015, "a sign starts the exponent"},
    {"1.5E+", 1.5, "also with a sign"},
    {"+-1", 0.0, "the second sign starts the exponent of nothing"},
    {"3.0d-2x", 0.03, "D, and the end at another character"},
    {"1d2", 100.0, "small d"},
    {"1.5q3", 1.5, "Q is no exponent letter here"},
    {"1.5e2.5", 0.0, "a point in the exponent"},
    {"inf", 0.0, "no word for infinity"},
    {"0x1p3", 0.0, "no hexadecimals: the field is 0"},
    {"9007199254740993", 9007199254740992.0, "halfway goes to even"},
    {"9007199254740993.00000000000000000000000000000001", 9007199254740994.0, "all digits count"},
    {"9007199254740992.99999999999999999999999999999999", 9007199254740992.0, "from below, too"},
    {"0.500000000000000055511151231257827021181583404541015625", 0.5, "a long halfway to even"},
    {"0.500000000000000166533453693773481063544750213623046875", 0x1.0000000000002p-1,
     "and upwards"},
    {"00000000000000000000000000000000000000000000000000001.5", 1.5, "zeros in front do not count"},
    {"8333555911216085471e-339", 8333555911216085471e-339, "the product leaves it open"},
    {"5953899025029163907e59", 5953899025029163907e59, "with a positive exponent"},
    {"7844502793054418328e49", 7844502793054418328e49, "only its last word is not 0"},
    {"5648530716491343090123e-325", 5648530716491343090123e-325,
     "more digits, open at the first 19"},
    {"5648530716491343089999e-325", 5648530716491343089999e-325, "and at their successor"},
    {"1.7976931348623158e308", kGreatest, "rounds down to the greatest"},
    {"1.7976931348623159e308", kInfinity, "rounds up beyond it"},
    {"-1e-999", -0.0, "below the range, with its sign"},
    {"2.4703282292062327e-324", 0.0, "just below half the least"},
    {"2.4703282292062328e-324", kLeast, "just above half the least"},
    {"2.2250738585072011e-308", 0x0.fffffffffffffp-1022, "the greatest subnormal"},
    {"2.2250738585072014e-308", std::numeric_limits<double>::min(), "the least normal"},
    {"1e+999999999999999999999999999999", kInfinity, "an endless exponent"},
    {EIGHTY_NINES "99", 1e80, "only 80 characters are looked at"},
    {"     " EIGHTY_NINES "9", 1e80, "counted from the first character that is not blank"},
    {"1." TEN("0") TEN("0") TEN("0") TEN("0") TEN("0") TEN("0") TEN("0") "00000e-23", 0.01,
     "cut inside the exponent"},
};

void CheckReals() {
    for (const auto& [field, value, why] : kReals)
        for (const auto side : kSides) {
            const GuardedBuffer buffer(field, side);
            for (const int mode : kRoundingModes) {
                const RoundingModeScope scope(mode);
                EXPECT_EQ(Bits(StrToReal(buffer.Text())), Bits(value)) << field << ": " << why;
            }
        }
}

TEST(StrToReal, ReadsFieldsInEveryRoundingMode) {
    CheckReals();
}

// Of the writers only many decimals are left to the standard library.
TEST(Numbers, AreTheSameWhereTheDecimalPointIsAComma) {
    const CommaLocaleScope locale;
    ASSERT_TRUE(locale.IsComma());
    CheckReals();
    std::string text(25, '?');
    Fx0ToAx(-0.1, 25, text);
    EXPECT_EQ(text, "-.10000000000000000555111");
}

struct IntegerCase {
    std::string_view field;
    std::int32_t value;
    std::string_view why;
};
constexpr IntegerCase kIntegers[] = {
    {"", 0, "width 0"},
    {"abc 12 x", 12, "the first run, wherever it stands"},
    {"           7", 7, "right-aligned"},
    {"0000000000007", 0, "its first 12 characters are zeros"},
    {"2147483647", 2147483647, "the greatest"},
    {"2147483648", 0, "beyond it"},
    {"-2147483648", std::numeric_limits<std::int32_t>::min(), "the least"},
    {"-2147483649", 0, "beyond it"},
    {"- 5", 0, "the first run is the sign"},
    {"000000000001-5", 1, "the sign is beyond the 12 characters"},
};

TEST(StrToInt, ReadsTheFirstRun) {
    for (const auto& [field, value, why] : kIntegers)
        for (const auto side : kSides)
            EXPECT_EQ(StrToInt(GuardedBuffer(field, side).Text()), value) << field << ": " << why;
}

struct PairCase {
    std::string_view text;
    double reals[2];
    std::int32_t integers[2];
    std::string_view why;
};
constexpr PairCase kPairs[] = {
    {"", {0, 0}, {0, 0}, "no number at all: both are written"},
    {"7", {7, 0}, {7, 0}, "no second number"},
    {"1.5,2.5", {1.5, 2.5}, {1, 5}, "a point belongs to a real only"},
    {"1.5 / -2.5x9", {1.5, -2.5}, {1, 5}, "any characters between, the rest ignored"},
    {".5 -.25", {0.5, -0.25}, {5, 0}, "a sign alone is a run"},
    {"1.5E3 2", {1.5, 3.0}, {1, 5}, "letters separate"},
    {"1.5-3 2+4", {0.0015, 20000}, {1, 0}, "a sign starts an exponent, but no integer"},
    {"1.2.3 4", {0, 4}, {1, 2}, "an unusable run counts as one"},
};

TEST(StrTo2, ReadsTwoRuns) {
    for (const PairCase& c : kPairs) {
        std::array<double, 2> reals{-1, -1};
        std::array<std::int32_t, 2> integers{-1, -1};
        StrTo2Reals(c.text, reals[0], reals[1]);
        StrTo2Ints(c.text, integers[0], integers[1]);
        for (const std::size_t k : {0U, 1U}) {
            EXPECT_EQ(reals[k], c.reals[k]) << c.text << ": " << c.why;
            EXPECT_EQ(integers[k], c.integers[k]) << c.text << ": " << c.why;
        }
    }
}

struct LineCase {
    std::string_view line;
    double real;
    std::int32_t integer;
    std::string_view why;
};
constexpr LineCase kLines[] = {
    {"MASS = 12.5", 12.5, 12, "the value"},
    {"COUNT =", 0, 0, "nothing after it"},
    {"2 = 17 = 3", 17, 17, "the first one separates"},
    {"FLAG = yes", 0, 1, "YES in any case"},
    {"FLAG = True", 0, 1, "TRUE"},
    {"FLAG = TR 5", 0, 5, "not TRUE: a number"},
    {"FLAG = off 5", 0, 0, "OFF comes before any number"},
    {"FLAG = 5 YES", 5, 5, "the word must come first"},
};

TEST(InputLines, GiveTheirValue) {
    for (const LineCase& c : kLines) {
        EXPECT_EQ(InputStrToReal(c.line), c.real) << c.line << ": " << c.why;
        EXPECT_EQ(InputStrToInt(c.line), c.integer) << c.line << ": " << c.why;
    }
}

struct NumberWordCase {
    std::string_view value;
    double number;
    std::string_view word;
    std::string_view why;
};
constexpr NumberWordCase kNumberWords[] = {
    {" 60 sec", 60, "sec", "the common line"},
    {" 60", 0, "", "no word: failed"},
    {" 60 'two words' x", 60, "two word", "enclosed, and cut to the width"},
    {" 60 \" it's\"", 60, "it's", "the other delimiter, moved to the left"},
    {" 60 'it''s'", 60, "it's", "the delimiter written twice"},
    {" 60 'open", 0, "", "not closed: failed"},
    {" 60 ''", 60, "", "an empty word is a word"},
    {"+1.5E+2 X", 150, "X", "the exponent"},
    {"1.5 km/s", 1.5, "km", "a slash ends the word"},
    {"1.5 , km,x", 1.5, "km", "a comma with blanks, a comma at the end"},
    {"1.5;km;x", 1.5, "km", "semicolons likewise"},
    {",km", 0, "km", "nothing for the number"},
    {"1.5,,km", 1.5, "", "nothing for the word"},
    {"1.5 /", 1.5, "", "a slash ends the reading"},
    {"/ 5 km", 0, "", "before both"},
    {"abc km", 0, "", "not a number"},
    {"2*3 km", 0, "", "no repeat counts"},
    {"1.5\tkm x", 0, "", "a tab is no separator"},
    {"1e999 far", kInfinity, "far", "too large is an infinity"},
    {EIGHTY_NINES "99 far", 1e80, "far", "80 characters of the number count"},
};

TEST(InputStrToNumStr, ReadsANumberAndAWord) {
    for (const auto& [value, number, word, why] : kNumberWords) {
        const std::string line = "KEY =" + std::string(value);
        double readNumber = -1;
        std::string readWord(8, '?');
        InputStrToNumStr(line, readNumber, readWord);
        EXPECT_EQ(readNumber, number) << line << ": " << why;
        EXPECT_EQ(readWord, Padded(word, 8)) << line << ": " << why;
    }
    double number = -1;
    InputStrToNumStr("KEY 5 km", number, {});
    EXPECT_EQ(number, 0.0) << "no equals sign, and no room for a word";
}

TEST(OnOff2Int, LooksAtTwoCharacters) {
    for (const std::string_view text : {"on", "  On", "ONLY", "oN "}) EXPECT_EQ(OnOff2Int(text), 1);
    for (const std::string_view text : {"", " ", "o", " o", "OFF", "YES", "TRUE", "x on"})
        EXPECT_EQ(OnOff2Int(text), 0) << text;
}

}  // namespace
}  // namespace corvale::StrFunctions
