#include "ProgramRuns.hpp"

#include <algorithm>
#include <string>

namespace corvale {
namespace {

using test::Outcome;
using test::ProgramRuns;
using test::ReadFile;
using test::WriteFile;

class Filters : public ProgramRuns {};

struct LineCase {
    const char *arguments, *in, *out, *why;
};
const LineCase kLines[] = {
    {"alpha5", "0\n99999\n100000\n +339999 \n", "00000\n99999\nA0000\nZ9999\n", "all forms"},
    {"alpha5 --decode", "J1234\n 00000\n007\nA 1 2\n", "181234\n0\n7\n100012\n", "and back"},
    {"angle", "10.5\n-0.5\n1.05D1\r\n", "0103000.000\n-003000.000\n0103000.000\r\n", "CR stays"},
    {"angle", "100\n-359.9999999999\n99.9999999999\n", "01000000.000\n-3600000.000\n01000000.000\n",
     "three digits, also by a carry"},
    {"angle", "10:30:00\n -0:0:0.5\n193d16m\n10H30M15.5S\n10.5m\n1d1'2\"\n+10d\n",
     "0103000.000\n-000000.500\n01931600.000\n01573352.500\n0001030.000\n0010102.000\n0100000."
     "000\n",
     "as people write them"},
    {"angle --hours", "193:16:17.76\n12h53m5.184s\n", "1253052\n1253052\n", "colons: degrees"},
    {"angle --decode", "01931600.000\n-9995959.999\n00103000.000\n",
     "193.26666666666668\n-999.9999997222222\n10.5\n", "three digits back"},
    {"angle --decode", "10:30\n10h30m\n-0:0:0.000000001\n999:59:59.999999999\n",
     "10.5\n157.5\n-2.777777777777778e-13\n999.9999999999998\n", "one rounding here too"},
    {"angle --hours --decode", "10:30\n10d30m\n30m\n", "157.5\n10.5\n7.5\n", "hours without a d"},
    {"angle --hours", "180\n-15\n1e22\n", "1200000\n2300000\n1840000\n", "any angle has hours"},
    {"angle --decode", "0103000.000\n-003000.001\n", "10.5\n-0.5000002777777778\n", "one rounding"},
    {"angle --hours --decode", "1200000\n0000001\n", "180\n0.0004166666666666667\n", "tenths"},
    {"compress", " 1.500000000000000E+003, 0.000000000000000E+000 , 12.50\n\n", "1.5E+3,,12.5\n\n",
     "a row"},
    {"number", "1.5-3\n 1D3 \n-0\n0.1", "0.0015\n1000\n-0\n0.1\n", "a last line without its end"},
    {"number --integer", "-2147483648\n007\n0\n", "-2147483648\n7\n0\n", "32 bits"},
    {"number --value", "A = 1.5 \n=2\n", "1.5\n2\n", "behind the ="},
    {"number --value --integer", "A = 15\n", "15\n", "both"},
    {"upper", "a\xc3\xa9z{ i\xc4\xb1\n", "A\xc3\xa9Z{ I\xc4\xb1\n", "ASCII only"},
    {"lower", "AZ[ I\xc4\xb0\n", "az[ i\xc4\xb0\n", "ASCII only"},
    {"replace a bcd", "aaa x\n\n", "bcdbcdbcd x\n\n", "a result of any width"},
    {"replace aa ''", "aaab  \n", "ab  \n", "trailing blanks stay"},
};

TEST_F(Filters, TakeALineAtATime) {
    for (const auto& [arguments, in, out, why] : kLines) {
        WriteFile("in", in);
        const Outcome outcome = Corvale(std::string(arguments) + " <in");
        EXPECT_EQ(outcome.exitCode, 0) << arguments << ": " << outcome.err;
        EXPECT_EQ(outcome.out, out) << arguments << ": " << why;
    }
}

struct UnusableCase {
    const char *arguments, *in, *place;
};
const UnusableCase kUnusable[] = {
    {"alpha5", "1\n340000\n2\n", "line 2, column 1: "},
    {"alpha5", "1\n -1\n2\n", "line 2, column 2: "},
    {"alpha5", "1\n12x4\n2\n", "line 2, column 3: "},
    {"alpha5", "1\n\n2\n", "line 2, column 1: "},
    {"alpha5 --decode", "1\nI0000\n2\n", "line 2, column 1: "},
    {"alpha5 --decode", "1\n  A00000\n2\n", "line 2, column 8: "},
    {"alpha5 --decode", "1\n+\n2\n", "line 2, column 1: "},
    {"angle", "0\n1000\n0\n", "line 2, column 1: "},
    {"angle", "0\n999.99999999999\n0\n", "line 2, column 1: "},
    {"angle", "0\n10:60:00\n0\n", "line 2, column 6: "},
    {"angle", "0\n 10:30:\n0\n", "line 2, column 8: "},
    {"angle", "0\n1:2:3:4\n0\n", "line 2, column 8: "},
    {"angle", "0\n10.5:30\n0\n", "line 2, column 6: "},
    {"angle", "0\n10m30d\n0\n", "line 2, column 7: "},
    {"angle", "0\n10h30\n0\n", "line 2, column 6: "},
    {"angle", "0\n0:0:0.0000000001\n0\n", "line 2, column 16: "},
    {"angle", "0\n1e999\n0\n", "line 2, column 1: "},
    {"angle", "0\n 1.2.3\n0\n", "line 2, column 5: "},
    {"angle --decode", "0000000.000\n0006000.000\n0000000.000\n", "line 2, column 1: "},
    {"angle --decode", "0000000.000\n00000000000\n0000000.000\n", "line 2, column 8: "},
    {"angle --hours --decode", "0000000\n2400000\n0000000\n", "line 2, column 1: "},
    {"angle --hours --decode", "0000000\n00000000\n0000000\n", "line 2, column 8: "},
    {"compress", "1\n1.5E+00,2\n2\n", "line 2, column 4: "},
    {"number", "1\n1,5\n2\n", "line 2, column 2: "},
    {"number", "1\ninf\n2\n", "line 2, column 1: "},
    {"number --value", "a=1\nb 1\na=2\n", "line 2, column 1: "},
    {"number --value", "a=1\nb=2=3\na=2\n", "line 2, column 4: "},
    {"number --value", "a=1\nb =\na=2\n", "line 2, column 4: "},
    {"number --integer", "1\n2147483648\n2\n", "line 2, column 1: "},
    {"number --integer", "1\n12-3\n2\n", "line 2, column 3: "},
};

TEST_F(Filters, NameWhatTheyCannotUseAndStopOrGoOn) {
    for (const auto& [arguments, in, place] : kUnusable) {
        WriteFile("in", in);
        const Outcome strict = Corvale(std::string(arguments) + " <in");
        const Outcome goesOn = Corvale(std::string(arguments) + " --keep-going <in");
        EXPECT_EQ(strict.exitCode, 1) << arguments << " <<< " << in;
        EXPECT_EQ(goesOn.exitCode, 1) << arguments << " <<< " << in;
        EXPECT_NE(strict.err.find(place), std::string::npos) << strict.err << place;
        EXPECT_EQ(strict.err, goesOn.err);
        EXPECT_EQ(std::ranges::count(strict.out, '\n'), 1) << strict.out;
        EXPECT_EQ(std::ranges::count(goesOn.out, '\n'), 3) << goesOn.out;
        EXPECT_NE(goesOn.out.find("\n\n"), std::string::npos) << "an empty line in its place";
    }
}

// A key of 32 characters and the integer behind it.
std::string KeyLine(const std::string& key, const std::string& number) {
    return test::Padded(key, 32) + std::string(21 - number.size(), ' ') + number + "\n";
}

TEST_F(Filters, ReadFilesOneAfterTheOther) {
    WriteFile("one", "1\n2");
    WriteFile("two", "3\nx\n4\n");
    EXPECT_EQ(Corvale("alpha5 --file one -f - </dev/null").out, "00001\n00002\n");
    EXPECT_EQ(Corvale("upper one - one <two").out, "1\n2\n3\nX\n4\n1\n2\n");
    EXPECT_EQ(Corvale("replace x y two").out, "3\ny\n4\n");
    EXPECT_EQ(Corvale("sort --number two one").out, KeyLine("1", "4") + KeyLine("2", "5") +
                                                        KeyLine("3", "1") + KeyLine("4", "3") +
                                                        KeyLine("x", "2"));
    const Outcome unusable = Corvale("number --keep-going -f one -f two");
    EXPECT_EQ(unusable.out, "1\n2\n3\n\n4\n");
    EXPECT_TRUE(unusable.err.starts_with("corvale number: two: line 2, column 1: "))
        << unusable.err;
    const Outcome missing = Corvale("lower two 'no\\such\tfile' two");
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_EQ(missing.out, "3\nx\n4\n");
    EXPECT_EQ(missing.err,
              "corvale lower: \"no\\\\such\\x09file\" cannot be read: No such file or directory\n");
}

TEST_F(Filters, SortKeysWithTheirIntegers) {
    WriteFile("in", KeyLine("b", "-5") + test::Padded("a", 32) + " 9223372036854775807\n" +
                        KeyLine("\xc3", "2") + KeyLine("", "+3") + KeyLine("B", "4"));
    const std::string sorted = KeyLine("", "3") + KeyLine("B", "4") +
                               KeyLine("a", "9223372036854775807") + KeyLine("b", "-5") +
                               KeyLine("\xc3", "2");
    EXPECT_EQ(Corvale("sort <in").out, sorted);
    EXPECT_EQ(Corvale("sort </dev/null").out, "");

    WriteFile("in", "b\na\n");
    EXPECT_EQ(Corvale("sort --number <in").out, KeyLine("a", "2") + KeyLine("b", "1"));
    WriteFile("in", KeyLine("b", "1") + "a\n" + KeyLine("a", "+-5") + KeyLine("a", "2"));
    const Outcome strict = Corvale("sort <in");
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_EQ(strict.out, "") << "nothing is sorted";
    const Outcome goesOn = Corvale("sort --keep-going <in");
    EXPECT_EQ(goesOn.exitCode, 1);
    EXPECT_EQ(goesOn.out, KeyLine("a", "2") + KeyLine("b", "1"));
    EXPECT_NE(goesOn.err.find("line 3, column 51: "), std::string::npos) << goesOn.err;
}

const LineCase kRows[] = {
    {"alpha5 --column 2", "x,100000,5\r\n,25,\n", "x,A0000,5\r\n,00025,\n", "the rest stays"},
    {"alpha5 -c 3,1", "1,2,3,4\n", "00001,2,00003,4\n", "in any order"},
    {"alpha5 -c 1 -c 1", "1\n", "00001\n", "once"},
    {"alpha5 -c 2 --header", "number,code\n1,1\n", "number,code\n1,00001\n", "names stay"},
    {"angle -c 2 -d tab", "a\t-0.5\n", "a\t-003000.000\n", "tabs"},
    {"angle -c 2 --delimiter ';'", "1,5;10:30\n", "1,5;0103000.000\n", "semicolons"},
    {"number -c 1", "\"1.5-3\",x\"y\n", "\"0.0015\",x\"y\n", "quoted before, quoted after"},
    {"upper -c 2", "\"a,\"\"b\",\"c,\"\"d\",e\n", "\"a,\"\"b\",\"C,\"\"D\",e\n", "marks in fields"},
    {"replace -c 1 a ','", "a,a\n\"a\"\n", "\",\",a\n\",\"\n", "quoted because it must be"},
    {"replace -c 1 a '\"'", "ab,a\nba,\n", "\"\"\"b\",a\nb\",\n", "a mark at the beginning"},
};

TEST_F(Filters, ConvertColumnsOfRows) {
    for (const auto& [arguments, in, out, why] : kRows) {
        WriteFile("in", in);
        const Outcome outcome = Corvale(std::string(arguments) + " <in");
        EXPECT_EQ(outcome.exitCode, 0) << arguments << ": " << outcome.err;
        EXPECT_EQ(outcome.out, out) << arguments << ": " << why;
    }
    const struct {
        const char *arguments, *row, *kept, *place;
    } unusable[] = {
        {"alpha5 -c 2", "1,x,3", "1,,3", "line 1, column 3: "},
        {"alpha5 -c 2,3", "1,2,-", "1,00002,", "line 1, column 6: "},
        {"alpha5 -c 4", "1,2,3", "", "line 1, column 6: the row ends in column 3"},
        {"upper -c 1", "a,\"b", "", "line 1, column 3: this quotation mark"},
        {"upper -c 1", "\"a\"b,c", "", "line 1, column 4: a quoted field"},
        {"number -c 2", "\"\"\"\",\"1\"\"2\"", "\"\"\"\",", "line 1, column 8: "},
    };
    for (const auto& [arguments, row, kept, place] : unusable) {
        WriteFile("in", std::string(row) + "\n");
        const Outcome strict = Corvale(std::string(arguments) + " <in");
        EXPECT_EQ(strict.exitCode, 1) << row;
        EXPECT_EQ(strict.out, "") << row;
        EXPECT_NE(strict.err.find(place), std::string::npos) << strict.err;
        EXPECT_EQ(Corvale(std::string(arguments) + " --keep-going <in").out,
                  std::string(kept) + "\n");
    }
}

TEST_F(Filters, TakeValuesAsArguments) {
    const struct {
        const char *arguments, *out;
    } cases[] = {
        {"alpha5 100000 25", "A0000\n00025\n"},
        {"alpha5 --decode A0000", "100000\n"},
        {"angle -10.5 --hours -.5", "2318000\n2358000\n"},
        {"angle 10:30:00", "0103000.000\n"},
        {"number --value 'A = -1D3'", "-1000\n"},
        {"number -c 2 'a,1D3'", "a,1000\n"},
    };
    for (const auto& [arguments, out] : cases) {
        const Outcome outcome = Corvale(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, out) << arguments;
    }
    WriteFile("file", "1\n");
    const Outcome file = Corvale("alpha5 --keep-going 1 file -1");
    EXPECT_EQ(file.out, "00001\n\n\n");
    EXPECT_EQ(file.err,
              "corvale alpha5: argument 2, column 1: \"file\" is no integer; a file is read with "
              "--file\n"
              "corvale alpha5: argument 3, column 1: \"-1\" is no number from 0 to 339999\n");
}

TEST_F(Filters, TakeEverySatelliteNumberThereAndBack) {
    EXPECT_EQ(
        Run(std::string("seq 0 339999 >numbers.txt; ") + CORVALE_PROGRAM +
            " alpha5 <numbers.txt | " + CORVALE_PROGRAM + " alpha5 --decode | cmp - numbers.txt")
            .exitCode,
        0);
}

TEST_F(Filters, RefuseWrongArguments) {
    WriteFile("in", "a\n");
    for (const char* arguments :
         {"replace '' x", "replace a", "alpha5 --strict --keep-going", "angle --degrees --hours",
          "alpha5 1 --file in", "alpha5 --header 1", "upper -d ,", "upper -c 0", "upper -c 1,x",
          "upper -c 1 -d '\"'", "upper -c 1 -d ''", "upper -1"}) {
        const Outcome outcome = Corvale(std::string(arguments) + " <in");
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_NE(outcome.err, "") << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
    }
}

}  // namespace
}  // namespace corvale
