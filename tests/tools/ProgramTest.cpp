#include <corvale/Corvale.h>

#include "Bits.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace corvale {
namespace {

struct Outcome {
    int exitCode;
    std::string out, err;
};

std::string Contents(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Quoted(const std::string& argument) {
    return "'" + argument + "'";
}

// Each test has an empty folder of its own, in which the programs run.
class Program : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directory(folder_);
        std::filesystem::current_path(folder_);
    }
    void TearDown() override {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }
    static Outcome Run(const std::string& command) {
        const int status = std::system((command + " >out 2>err").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents("out"), Contents("err")};
    }
    static Outcome Corvale(const std::string& arguments) {
        return Run(Quoted(CORVALE_PROGRAM) + " " + arguments);
    }

  private:
    std::filesystem::path before_ = std::filesystem::current_path();
    std::filesystem::path folder_ =
        std::filesystem::path(testing::TempDir()) / ("corvale_program_" + std::to_string(getpid()));
};

void WriteFile(const std::string& name, std::string_view text) {
    std::ofstream(name) << text;
}

std::string InfoLine() {
    std::string line(CORVALE_MESSAGE_WIDTH, ' ');
    CorvaleGetInfo(line.data());
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

// The modes and values as this process reads them from the same file.
std::array<double, CORVALE_MOIC_COUNT> ValuesIn(const std::string& file) {
    std::array<double, CORVALE_MOIC_COUNT> values{};
    WriteFile("zeros", "QZ_MOIC 128*0\n");
    EXPECT_EQ(CorvaleLoadFile("zeros"), CORVALE_OK);
    EXPECT_EQ(CorvaleLoadFile(file.c_str()), CORVALE_OK);
    GetMOICData(CORVALE_MOIC_COUNT, values.data());
    return values;
}

constexpr std::string_view kHardValues =
    "QZ_DMA_ON\n"
    "QZ_MOIC 0.1 -0.0 5e-324 1e400 -1e400 1.7976931348623157e308 2.2250738585072014e-308 1e23\n";

TEST_F(Program, SaysWhatItIs) {
    EXPECT_EQ(Corvale("info").out, InfoLine() + "\n");
    EXPECT_EQ(Corvale("--version").out, "corvale " CORVALE_VERSION "\n");
    const Outcome help = Corvale("--help");
    EXPECT_EQ(help.exitCode, 0);
    for (const char* command : {"info", "load", "selftest"})
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
    EXPECT_EQ(Corvale("load --help").exitCode, 0);
}

TEST_F(Program, ChecksEveryArgument) {
    const Outcome selfTest = Corvale("selftest");
    EXPECT_EQ(selfTest.exitCode, 0) << selfTest.out;
    EXPECT_EQ(selfTest.out.find("WRONG"), std::string::npos) << selfTest.out;
    for (const char* argument : {"cOut", "d6Out", "str ", "l6 ", "i3Out"})
        EXPECT_NE(selfTest.out.find(argument), std::string::npos) << argument;
}

TEST_F(Program, PrintsRowsThatReadBack) {
    WriteFile("hard.inp", kHardValues);
    const Outcome load = Corvale("load hard.inp");
    EXPECT_EQ(load.exitCode, 0) << load.err;
    EXPECT_EQ(load.out.substr(0, load.out.find('\n')), InfoLine());
    EXPECT_NE(load.out.find("element-set key mode  1\n"), std::string::npos);
    EXPECT_NE(load.out.find("all-key mode          0\n"), std::string::npos);

    std::istringstream rows(load.out.substr(load.out.find("MOIC\n") + 5));
    const auto values = ValuesIn("hard.inp");
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::size_t first = 0, last = 0; i % 4 == 0) {
            std::string to;
            rows >> first >> to >> last;
            EXPECT_EQ(first, i + 1) << "a row of four begins";
        }
        std::string number;
        rows >> number;
        EXPECT_EQ(test::Bits(std::strtod(number.c_str(), nullptr)), test::Bits(values[i])) << i + 1;
    }
}

TEST_F(Program, PrintsOneJsonObjectThatReadsBack) {
    WriteFile("hard.inp", kHardValues);
    const Outcome load = Corvale("load hard.inp --json");
    EXPECT_EQ(load.exitCode, 0) << load.err;
    const auto all = nlohmann::json::parse(load.out);
    EXPECT_EQ(all.size(), 6U);
    EXPECT_EQ(all.at("status"), 0);
    EXPECT_EQ(all.at("message"), "");
    EXPECT_EQ(all.at("elsetKeyMode"), 1);
    EXPECT_EQ(all.at("allKeyMode"), 0);
    EXPECT_EQ(all.at("dupKeyMode"), 0);
    const auto values = ValuesIn("hard.inp");
    ASSERT_EQ(all.at("moic").size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto& value = all.at("moic").at(i);
        if (i == 3 || i == 4) {
            EXPECT_EQ(value, i == 3 ? "Infinity" : "-Infinity");
            continue;
        }
        EXPECT_EQ(test::Bits(value.get<double>()), test::Bits(values[i])) << i + 1;
    }
}

TEST_F(Program, PrintsTheStoredMessageOfAFailure) {
    const std::string message = "FileOpen: Unable to open file \"missing.inp\" for reading.";
    const Outcome rows = Corvale("load missing.inp");
    EXPECT_EQ(rows.exitCode, 2);
    EXPECT_EQ(rows.out, "");
    EXPECT_EQ(rows.err, message + "\n");
    const Outcome json = Corvale("load missing.inp --json --log run.log");
    EXPECT_EQ(json.exitCode, 2);
    EXPECT_EQ(json.err, message + "\n");
    EXPECT_EQ(nlohmann::json::parse(json.out).at("status"), 2);
    EXPECT_EQ(nlohmann::json::parse(json.out).at("message"), message);
    EXPECT_NE(Contents("run.log").find("\nError-" + message + "\n"), std::string::npos);

    WriteFile("good.inp", "");
    const Outcome log = Corvale("load good.inp --log no/such/folder/log");
    EXPECT_EQ(log.exitCode, 2);
    EXPECT_EQ(log.err, "OpenLogFile: log file failed to open.\n");
}

TEST_F(Program, RefusesWhatItCouldNotDoWhole) {
    WriteFile("good.inp", "QZ_DMA_ON\n");
    WriteFile("precious.log", "kept");
    const struct {
        std::string arguments;
        const char *complaint, *why;
    } cases[] = {
        {"load 'g\too\xc3\xa9.inp'", "byte 2 has the code 9", "a tab would end the name"},
        {"load 'caf\xc3\xa9.inp'", "byte 4 has the code 195", "so would an accented letter"},
        {"load 'a\x7f'", "the code 127", "an unprintable character"},
        {"load ' good.inp'", "begins with a blank", "the blank would be removed"},
        {"load 'good.inp '", "ends with a blank", "this one too"},
        {"load ''", "blank", "no name"},
        {"load " + std::string(513, 'n'), "513 characters", "the name would be cut"},
        {"load good.inp --log 'precious.log\xc3\xa9'", "code 195", "precious.log would be emptied"},
        {"load 'b\xc3\xa9' --log precious.log", "code 195", "refused before the log is opened"},
        {"load good.inp --log ./good.inp", "same file", "the log would empty the input"},
        {"load good.inp --log ''", "blank", "an empty name is not no name"},
        {"load", "FILE", "nothing to load"},
        {"", "subcommand", "nothing to do"},
        {"frobnicate", "", "an unknown command"},
        {"info extra", "", "an argument too many"},
        {"info >/dev/full; exit $? #", "", "output that cannot be written"},
        {"--help >/dev/full; exit $? #", "", "nor help"},
    };
    for (const auto& [arguments, complaint, why] : cases) {
        const Outcome outcome = Corvale(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << why;
        EXPECT_NE(outcome.err.find(complaint), std::string::npos) << why << ": " << outcome.err;
    }
    EXPECT_EQ(Contents("precious.log"), "kept");
    EXPECT_EQ(Contents("good.inp"), "QZ_DMA_ON\n");
}

TEST_F(Program, ExamplesPrintWhatTheCardsSet) {
    std::string wanted = "element-set key mode 1, all-key mode 1\n";
    constexpr std::pair<int, double> set[] = {
        {1, 6378.135},    {2, 398600.8},     {3, 1.0826158e-3}, {4, -.00253881e-3},
        {5, -1.65597e-6}, {6, 4.3752691e-3}, {7, 0.25},         {9, 1e-12}};
    for (const auto& [element, value] : set) {
        std::array<char, 64> line;
        std::snprintf(line.data(), line.size(), "MOIC(%d) = %.17g\n", element, value);
        wanted += line.data();
    }
    for (const char* example : {CORVALE_EXAMPLE_C, CORVALE_EXAMPLE_CPP}) {
        const Outcome outcome = Run(Quoted(example) + " " + Quoted(CORVALE_EXAMPLE_INPUT));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, wanted) << example;
        const Outcome missing = Run(Quoted(example) + " missing.inp");
        EXPECT_EQ(missing.exitCode, 2) << example;
        EXPECT_NE(missing.err.find("\"missing.inp\""), std::string::npos) << missing.err;
    }
}

}  // namespace
}  // namespace corvale
