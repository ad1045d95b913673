#include "ProgramRuns.hpp"
#include "tools/FindingKinds.hpp"

#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace corvale {
namespace {

using nlohmann::json;
using test::Outcome;
using test::ProgramRuns;
using test::Quoted;
using test::ReadFile;
using test::WriteFile;

class Formats : public ProgramRuns {
  protected:
    static std::vector<std::string> LinesOf(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
    static Outcome CheckFaulty(const std::string& options) {
        return Corvale("check " + options + " " + Quoted(CORVALE_FAULTY_INPUT));
    }
    // What the other formats are compared with.
    static json Findings() {
        return json::parse(CheckFaulty("--json").out).at("files").at(0).at("findings");
    }
};

TEST_F(Formats, JsonNamesTheCardAndItsElements) {
    const std::string arguments = "check --json in";
    WriteFile("in", "qz_moic 2*7 , 1e400 x 9\n QZ_DMA_ON\nQZ_DMA_ALL_ON\nQZ_MOIC , 1\n");
    const json file = json::parse(Corvale(arguments).out).at("files").at(0);
    const json wanted = json::parse(R"([
        {"line": 1, "code": "too-large", "card": "QZ_MOIC", "elements": [3]},
        {"line": 1, "code": "not-a-number", "card": "QZ_MOIC", "elements": [4]},
        {"line": 2, "code": "not-in-column-1", "card": "QZ_DMA_ON", "elements": []},
        {"line": 4, "code": "overwritten", "severity": "note", "elements": [2]}])");
    ASSERT_EQ(file.at("findings").size(), wanted.size()) << file;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        for (const auto& [key, value] : wanted[i].items())
            EXPECT_EQ(file.at("findings")[i].at(key), value) << i << key;
    json cards = file.at("cards");
    for (json& card : cards) card.erase("effect");
    EXPECT_EQ(cards, json::parse(R"([
        {"line": 1, "card": "QZ_MOIC", "elements": [1, 2, 3], "setBefore": []},
        {"line": 3, "card": "QZ_DMA_ALL_ON", "mode": "allKeyMode"},
        {"line": 4, "card": "QZ_MOIC", "elements": [2], "setBefore": [2]}])"));
}

TEST_F(Formats, OfLinesHoldOneFindingEach) {
    const json wanted = Findings();
    const auto objects = LinesOf(CheckFaulty("--format jsonl").out);
    ASSERT_EQ(objects.size(), wanted.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        json object = json::parse(objects[i]);
        EXPECT_EQ(object.at("file"), CORVALE_FAULTY_INPUT);
        object.erase("file");
        EXPECT_EQ(object, wanted[i]);
    }
    const Outcome missing = Corvale("check --format jsonl missing");
    EXPECT_EQ(json::parse(missing.out).at("error"), "No such file or directory");
    EXPECT_EQ(missing.exitCode, 2);
}

// The matcher takes the short format apart as an editor would.
TEST_F(Formats, TheProblemMatcherReadsTheShortOne) {
    const json wanted = Findings();
    const json pattern =
        json::parse(ReadFile(CORVALE_PROBLEM_MATCHER)).at("problemMatcher")[0].at("pattern")[0];
    const std::regex expression(pattern.at("regexp").get<std::string>());
    const auto lines = LinesOf(CheckFaulty("--format short").out);
    ASSERT_EQ(lines.size(), wanted.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(lines[i], parts, expression)) << lines[i];
        EXPECT_EQ(parts[pattern.at("file")], CORVALE_FAULTY_INPUT);
        EXPECT_EQ(std::stoi(parts[pattern.at("line")]), wanted[i].at("line"));
        EXPECT_EQ(std::stoi(parts[pattern.at("column")]), wanted[i].at("column"));
        for (const char* key : {"severity", "code", "message"})
            EXPECT_EQ(std::string(parts[pattern.at(key)]), wanted[i].at(key));
    }
}

// As a runner reads it: properties end at a comma, and %25, %0D, %0A, %3A and %2C are characters.
TEST_F(Formats, OfGithubIsReadBack) {
    const std::string name = "a,b:c%\n.inp";
    WriteFile(name, " QZ_DMA_ON\nQZ_DMA_ON 0\n");
    const std::regex expression(
        "::(error|warning|notice) file=([^,:]*),line=([0-9]+),col=([0-9]+),endColumn=([0-9]+),"
        "title=([^,:]*)::(.*)");
    const auto lines = LinesOf(Corvale("check --format github " + Quoted(name)).out);
    ASSERT_EQ(lines.size(), 2U);
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(lines[0], parts, expression)) << lines[0];
    EXPECT_EQ(parts[1], "warning");
    EXPECT_EQ(parts[2], "a%2Cb%3Ac%25%0A.inp");
    EXPECT_EQ(parts[3].str() + ":" + parts[4].str() + "-" + parts[5].str(), "1:2-11");
    EXPECT_EQ(parts[6], "not-in-column-1");
    ASSERT_TRUE(std::regex_match(lines[1], parts, expression)) << lines[1];
    EXPECT_EQ(parts[1], "error");
}

// What the schema asks for; scripts/check-program.sh compares with all of it.
TEST_F(Formats, SarifHoldsRulesAndResults) {
    WriteFile("a b", "x\xc3\xa9\xf0\x9f\x8c\x8d\rQZ_DMA_ON\n");
    const json log = json::parse(
        Corvale("check --format sarif 'a b' missing " + Quoted(CORVALE_FAULTY_INPUT)).out);
    EXPECT_EQ(log.at("version"), "2.1.0");
    const json& run = log.at("runs").at(0);
    const json& rules = run.at("tool").at("driver").at("rules");
    ASSERT_EQ(rules.size(), tool::kFindingKinds);
    const json& results = run.at("results");
    const json wanted = Findings();
    ASSERT_EQ(results.size(), wanted.size() + 1);
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(rules.at(results[i].at("ruleIndex").get<std::size_t>()).at("id"),
                  results[i].at("ruleId"));
        if (i > 0) {
            EXPECT_EQ(results[i].at("ruleId"), wanted[i - 1].at("code"));
        }
    }
    const json& place = results[0].at("locations").at(0).at("physicalLocation");
    EXPECT_EQ(place.at("artifactLocation").at("uri"), "a%20b");
    EXPECT_EQ(place.at("region"),
              json::parse(R"({"startLine": 1, "startColumn": 6, "endColumn": 15})"))
        << "in units of UTF-16: one, one, two and the carriage return";
    const json& invocation = run.at("invocations").at(0);
    EXPECT_FALSE(invocation.at("executionSuccessful"));
    EXPECT_EQ(invocation.at("toolExecutionNotifications").size(), 1U);
}

TEST_F(Formats, MayLeaveOutAllButFindings) {
    const std::string all = CheckFaulty("").out;
    const std::string only = CheckFaulty("--findings-only").out;
    EXPECT_NE(all.find("sets the element-set key mode to 1\n"), std::string::npos);
    EXPECT_EQ(only.find("sets the element-set key mode to 1\n"), std::string::npos);
    EXPECT_EQ(only.find("loading it"), std::string::npos);
    const json file = json::parse(CheckFaulty("--json --findings-only").out).at("files").at(0);
    EXPECT_EQ(file.at("findings"), Findings());
    EXPECT_FALSE(file.contains("cards") || file.contains("sets"));
}

TEST_F(Formats, OptionsChooseByCode) {
    const auto count = [&](const std::string& options) {
        return LinesOf(CheckFaulty("--format short " + options).out).size();
    };
    const std::size_t all = Findings().size();
    EXPECT_EQ(count("--select slash"), 1U);
    EXPECT_EQ(count("--select slash,cut --select not-off"), 3U);
    EXPECT_EQ(count("--ignore slash"), all - 1);
    EXPECT_EQ(count("--select slash,cut --ignore cut"), 1U);
    WriteFile("in", "QZ_MOIC 1/2\n");
    EXPECT_EQ(Corvale("check --quiet in").exitCode, 1);
    EXPECT_EQ(Corvale("check --quiet --ignore slash in").exitCode, 0);
    EXPECT_EQ(Corvale("check --select slsh in").exitCode, 2);
}

TEST_F(Formats, FoldersAreSearchedForNames) {
    ASSERT_EQ(
        Run("mkdir -p runs/b/c runs/.git && for name in runs/z.inp runs/b/y.inp "
            "runs/b/c/x.card runs/b/w.txt runs/.git/v.inp; do echo ' QZ_DMA_ON' >$name; done; "
            "ln -s .. runs/b/up")
            .exitCode,
        0);
    const auto files = [&](const std::string& options) {
        std::string names;
        for (const std::string& line : LinesOf(Corvale("check --format short " + options).out))
            names += line.substr(0, line.find(':')) + " ";
        return names;
    };
    EXPECT_EQ(files("runs --glob '*.inp'"), "runs/z.inp runs/b/y.inp ");
    EXPECT_EQ(files("--glob '*.inp' --glob '*.c?rd' runs/b runs/b/w.txt"),
              "runs/b/y.inp runs/b/c/x.card runs/b/w.txt ");
    const Outcome none = Corvale("check --glob '*.none' runs");
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.err, "corvale: no file in \"runs\" matches --glob\n");
    EXPECT_NE(Corvale("check runs").err.find("--glob"), std::string::npos);
}

}  // namespace
}  // namespace corvale
