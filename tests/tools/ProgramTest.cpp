#include <corvale/Corvale.h>

#include "ProgramRuns.hpp"
#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace corvale {
namespace {

using test::Outcome;
using test::ProgramRuns;
using test::Quoted;
using test::ReadFile;
using test::WriteFile;

std::string InfoLine() {
    std::string line(CORVALE_MESSAGE_WIDTH, ' ');
    CorvaleGetInfo(line.data());
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

constexpr std::string_view kHardValues =
    "QZ_DMA_ON\n"
    "QZ_MOIC 0.1 -0.0 5e-324 1e400 -1e400 1.7976931348623157e308 2.2250738585072014e-308 1e23\n";

void ExpectHardValue(double value, std::size_t i) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double values[] = {
        0.1, -0.0, 5e-324, infinity, -infinity, 1.7976931348623157e308, 2.2250738585072014e-308,
        1e23};
    EXPECT_EQ(test::Bits(value), test::Bits(i < std::size(values) ? values[i] : 0.0)) << i + 1;
}

TEST_F(ProgramRuns, SaysWhatItIs) {
    EXPECT_EQ(Corvale("info").out, InfoLine() + "\n");
    EXPECT_EQ(nlohmann::json::parse(Corvale("info --json").out).at("information"), InfoLine());
    for (const char* version : {"--version", "-V"})
        EXPECT_EQ(Corvale(version).out, "corvale " CORVALE_VERSION "\n");
    EXPECT_EQ(Corvale("help").out, Corvale("--help").out);
    EXPECT_EQ(Corvale("help load").out, Corvale("load --help").out);
    const Outcome help = Corvale("--help");
    EXPECT_EQ(help.exitCode, 0);
    for (const char* command : {"info", "load", "selftest"})
        EXPECT_NE(help.out.find(command), std::string::npos) << command;
    EXPECT_EQ(Corvale("load --help").exitCode, 0);
}

TEST_F(ProgramRuns, ChecksEveryArgument) {
    const Outcome selfTest = Corvale("selftest");
    EXPECT_EQ(selfTest.exitCode, 0) << selfTest.out;
    EXPECT_EQ(selfTest.out.find("WRONG"), std::string::npos) << selfTest.out;
    for (const char* argument : {"cOut", "d6Out", "str ", "l6 ", "i3Out"})
        EXPECT_NE(selfTest.out.find(argument), std::string::npos) << argument;
}

TEST_F(ProgramRuns, PrintsRowsThatReadBack) {
    WriteFile("hard.inp", kHardValues);
    const Outcome load = Corvale("load hard.inp");
    EXPECT_EQ(load.exitCode, 0) << load.err;
    EXPECT_EQ(load.out.substr(0, load.out.find('\n')), InfoLine());
    EXPECT_NE(load.out.find("element-set key mode  1\n"), std::string::npos);
    EXPECT_NE(load.out.find("all-key mode          0\n"), std::string::npos);

    std::istringstream rows(load.out.substr(load.out.find("MOIC\n") + 5));
    for (std::size_t i = 0; i < CORVALE_MOIC_COUNT; ++i) {
        if (std::size_t first = 0, last = 0; i % 4 == 0) {
            std::string to;
            rows >> first >> to >> last;
            EXPECT_EQ(first, i + 1) << "a row of four begins";
        }
        std::string number;
        rows >> number;
        ExpectHardValue(std::strtod(number.c_str(), nullptr), i);
    }
}

TEST_F(ProgramRuns, PrintsOneJsonObjectThatReadsBack) {
    WriteFile("hard.inp", kHardValues);
    const Outcome load = Corvale("load hard.inp --json");
    EXPECT_EQ(load.exitCode, 0) << load.err;
    const auto all = nlohmann::json::parse(load.out);
    auto others = all;
    others.erase("moic");
    EXPECT_EQ(others, nlohmann::json::parse(R"({"status": 0, "message": "", "elsetKeyMode": 1,
                                               "allKeyMode": 0, "dupKeyMode": 0})"));
    ASSERT_EQ(all.at("moic").size(), std::size_t{CORVALE_MOIC_COUNT});
    for (std::size_t i = 0; i < CORVALE_MOIC_COUNT; ++i) {
        const auto& value = all.at("moic").at(i);
        if (i == 3 || i == 4)
            EXPECT_EQ(value, i == 3 ? "Infinity" : "-Infinity");
        else
            ExpectHardValue(value.get<double>(), i);
    }
}

TEST_F(ProgramRuns, PrintsTheStoredMessageOfAFailure) {
    const std::string message = "FileOpen: Unable to open file \"missing.inp\" for reading.";
    const Outcome rows = Corvale("load missing.inp");
    EXPECT_EQ(rows.exitCode, 2);
    EXPECT_EQ(rows.out, "");
    EXPECT_EQ(rows.err, message + " (No such file or directory)\n");
    const Outcome json = Corvale("load missing.inp --json --log run.log");
    EXPECT_EQ(json.exitCode, 2);
    EXPECT_EQ(json.err, rows.err);
    const nlohmann::json wanted = {
        {"status", 2}, {"message", message}, {"reason", "No such file or directory"}};
    EXPECT_EQ(nlohmann::json::parse(json.out), wanted) << "and no values";
    EXPECT_NE(ReadFile("run.log").find("\nError-" + message + "\n"), std::string::npos);

    WriteFile("good.inp", "");
    const Outcome log = Corvale("load good.inp --log no/such/folder/log");
    EXPECT_EQ(log.exitCode, 2);
    EXPECT_EQ(log.err,
              "OpenLogFile: log file failed to open. "
              "(\"no/such/folder/log\": No such file or directory)\n");
}

TEST_F(ProgramRuns, RefusesWhatItCouldNotDoWhole) {
    WriteFile("good.inp", "QZ_DMA_ON\n");
    WriteFile("precious.log", "kept");
    const struct {
        std::string arguments;
        const char *complaint, *why;
    } cases[] = {
        {"load good.inp --log 'g\too\xc3\xa9'", "byte 2 has the code 9",
         "a tab would end the name"},
        {"load good.inp --log 'a\x7f'", "the code 127", "an unprintable character"},
        {"load good.inp --log ' x'", "begins with a blank", "the blank would be removed"},
        {"load good.inp --log 'x '", "ends with a blank", "this one too"},
        {"load good.inp --log " + std::string(513, 'n'), "513 characters", "it would be cut"},
        {"load good.inp --log 'precious.log\xc3\xa9'", "code 195", "precious.log would be emptied"},
        {"load 'precious.log\xc3\xa9'", "(No such file", "precious.log would be read"},
        {"load ' good.inp'", "(No such file", "so would good.inp"},
        {"load ''", "(No such file", "no name"},
        {"load .", "(Is a directory)", "nothing that is read"},
        {"load good.inp --log ./good.inp", "same file", "the log would empty the input"},
        {"load new.inp --log ./new.inp", "same file", "or be its own input"},
        {"load good.inp --log said >said", "same file", "or overwrite its own output"},
        {"load good.inp --log /dev/stdout >>said", "same file", "by whatever name"},
        {"load good.inp --log ''", "blank", "an empty name is not no name"},
        {"load", "FILE", "nothing to load"},
        {"", "subcommand", "nothing to do"},
        {"frobnicate", "\"frobnicate\" is no command\n", "an unknown command"},
        {"laod x", "\"laod\" is no command; did you mean load?\nRun", "one letter off"},
        {"check --jsn x", "\"--jsn\" is no option; did you mean --json?\nRun", "an option"},
        {"help laod", "did you mean load?", "nothing to help with"},
        {"info extra", "\"extra\" is one argument too many", "an argument too many"},
        {"info >/dev/full; exit $? #", "", "output that cannot be written"},
        {"--help >/dev/full; exit $? #", "", "nor help"},
    };
    for (const auto& [arguments, complaint, why] : cases) {
        const Outcome outcome = Corvale(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << why;
        EXPECT_NE(outcome.err.find(complaint), std::string::npos) << why << ": " << outcome.err;
    }
    EXPECT_EQ(ReadFile("precious.log"), "kept");
    EXPECT_EQ(ReadFile("good.inp"), "QZ_DMA_ON\n");
}

// The C API would cut these names and open another file, or none.
TEST_F(ProgramRuns, ReadsFilesOfAnyName) {
    const std::string folder(200, 'n');
    std::filesystem::create_directories(folder + "/" + folder);
    for (const std::string& name : {std::string("na\xc3\xafve orbit.inp"), std::string(" a\tb "),
                                    std::string("  "), folder + "/" + folder + "/" + folder}) {
        WriteFile(name, "QZ_DMA_ON\n");
        const Outcome load = Corvale("load --json " + Quoted(name));
        EXPECT_EQ(load.exitCode, 0) << load.err;
        EXPECT_NE(load.out.find("\"elsetKeyMode\": 1"), std::string::npos) << name;
    }
}

TEST_F(ProgramRuns, ExamplesPrintWhatTheCardsSet) {
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
