#include "ProgramRuns.hpp"

#include <nlohmann/json.hpp>
#include <string>

namespace corvale {
namespace {

using nlohmann::json;
using test::Outcome;
using test::ProgramRuns;
using test::WriteFile;

// What files of cards set is compared with random loads by compare_diff.py; here is how it is said.
class Diff : public ProgramRuns {
  protected:
    Diff() {
        WriteFile("left", "QZ_DMA_ON\nQZ_MOIC 1 2, 3*.5\nQZ_MOIC , -0.0\n");
        WriteFile("right", "* none\nQZ_MOIC 1 0 2*5D-1 / 7\n");
    }
};

TEST_F(Diff, NamesTheCardThatDecidedEachValue) {
    const Outcome text = Corvale("diff left right");
    EXPECT_EQ(text.exitCode, 1);
    EXPECT_EQ(text.out,
              "element-set key mode\n< left:1:1: 1\n> right: 0, no card sets it\n"
              "value 2\n< left:3:11: -0\n> right:2:11: 0\n"
              "value 5\n< left:2:14: 0.5\n> right: 0, no card sets it\n");
    EXPECT_EQ(text.err, "");
    const json differences = json::parse(Corvale("diff --json left right").out).at("differences");
    ASSERT_EQ(differences.size(), 3U);
    EXPECT_EQ(differences[2], json::parse(R"({"element": 5,
        "left": {"value": 0.5, "cards": 1, "file": "left", "line": 2, "column": 14,
                 "written": "3*.5"},
        "right": {"value": 0.0, "cards": 0}})"));
}

TEST_F(Diff, EndsLikeOtherProgramsThatCompare) {
    const struct {
        const char* arguments;
        int exitCode;
        const char *out, *err, *why;
    } cases[] = {
        {"left left", 0, "", "", "the same"},
        {"- left <left", 0, "", "", "standard input"},
        {"--quiet left right", 1, "", "", "the status alone"},
        {"--json left left", 0, "{\n  \"same\": true,\n  \"differences\": []\n}\n", "", "the same"},
        {"left missing", 2, "", "\"missing\" cannot be read: No such file", "no second file"},
        {". right", 2, "", "\".\" cannot be read: Is a directory", "a folder"},
        {"--json left missing", 2, "", "No such file", "no half of an object"},
        {"- - <left", 2, "", "not both", "it can be read once"},
        {"left", 2, "", "OTHER is required", "one file"},
    };
    for (const auto& [arguments, exitCode, out, err, why] : cases) {
        const Outcome outcome = Corvale(std::string("diff ") + arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << why;
        EXPECT_EQ(outcome.out, out) << why;
        EXPECT_NE(outcome.err.find(err), std::string::npos) << why << ": " << outcome.err;
        EXPECT_EQ(outcome.err.empty(), exitCode < 2) << why << ": " << outcome.err;
    }
}

TEST_F(Diff, WhySaysWhereAValueComesFrom) {
    const Outcome text = Corvale("load left right --why 2,elsetKeyMode --why 6");
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_EQ(text.out,
              "right:2:11: value 2 is 0, written 0; the last of 3 cards that set it\n"
              "left:1:1: element-set key mode is 1, written QZ_DMA_ON\n"
              "left, right: value 6 is 0: no card sets it\n");
    EXPECT_EQ(json::parse(Corvale("load - --json --why 2 <left").out), json::parse(R"({"why": [
        {"element": 2, "value": -0.0, "cards": 2, "file": "-", "line": 3, "column": 11,
         "written": "-0.0"}]})"));
    WriteFile("new\nline", "QZ_MOIC 1\n");
    EXPECT_EQ(Corvale("load 'new\nline' --why 1").out,
              "new\\x0Aline:1:9: value 1 is 1, written 1\n");
    for (const char* arguments : {"0 left", "129 left", "'' left", "elset left", "1 missing",
                                  "1 --log x left", "1 --quiet left", "1"}) {
        const Outcome outcome = Corvale(std::string("load --why ") + arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
    }
}

}  // namespace
}  // namespace corvale
