#include <corvale/core/CardTable.hpp>

#include "ProgramRuns.hpp"
#include "tools/FindingKinds.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace corvale {
namespace {

using nlohmann::json;
using test::Outcome;
using test::ProgramRuns;
using test::Quoted;
using test::ReadFile;
using test::WriteFile;

class Check : public ProgramRuns {
  protected:
    static json FileOf(const std::string& content) {
        WriteFile("in", content);
        const Outcome outcome = Corvale("check --json in");
        const json file = json::parse(outcome.out).at("files").at(0);
        const json& findings = file.at("findings");
        const bool hasProblems =
            std::any_of(findings.begin(), findings.end(),
                        [](const json& each) { return each.at("severity") != "note"; });
        EXPECT_EQ(outcome.exitCode, hasProblems ? 1 : 0) << content;
        EXPECT_EQ(outcome.err, "");
        return file;
    }
};

TEST_F(Check, ExplainsAFaultyFile) {
    const Outcome text = Run(std::string("cp ") + CORVALE_FAULTY_INPUT + " faulty.inp; " +
                             CORVALE_PROGRAM + " check faulty.inp");
    EXPECT_EQ(text.exitCode, 1);
    EXPECT_EQ(text.err, "");
    EXPECT_EQ(text.out, ReadFile(CORVALE_FAULTY_OUTPUT));
    EXPECT_EQ(Corvale("check - <faulty.inp | sed 's/^standard input:/faulty.inp:/'").out, text.out);
}

TEST_F(Check, ThePageOfCardsShowsTheTable) {
    std::string rows = "|---|---|---|\n";
    for (const internal::Card& card : internal::kCards)
        rows += "| `" + std::string(NameOf(card)) + "` | 1 to " +
                std::to_string(card.keyword.size()) + " | " + std::string(card.effect) + " |\n";
    EXPECT_NE(ReadFile(CORVALE_PAGE_OF_CARDS).find(rows + "\n"), std::string::npos) << rows;
}

TEST_F(Check, SaysWhatLoadingSets) {
    for (const char* input : {CORVALE_EXAMPLE_INPUT, CORVALE_FAULTY_INPUT}) {
        const json sets = json::parse(Corvale(std::string("check --json ") + input).out)
                              .at("files")
                              .at(0)
                              .at("sets");
        const json loaded = json::parse(Corvale(std::string("load --json ") + input).out);
        EXPECT_EQ(sets.at("moic"), loaded.at("moic")) << input;
        EXPECT_EQ(sets.at("elsetKeyMode"), loaded.at("elsetKeyMode")) << input;
        EXPECT_EQ(sets.at("allKeyMode"), loaded.at("allKeyMode")) << input;
    }
}

const std::string kBlanks = " 8" + std::string(80000, ' ');  // more than is kept of a line
const std::string kTo511(503, ' ');                          // the columns 9 to 511

struct FindingCase {
    std::string content;
    const char* code;  // of the only finding; "" for none
    int line, column;
    const char* message;  // a part of it
};
const FindingCase kFindings[] = {
    {"", "", 0, 0, ""},
    {"* QZ_MOIC 1 2 3\n  \nSTEP 60.0\nQZ_FRAME TEME\n", "", 0, 0, ""},
    {"QZ_MOIC 1, ,3 2*4.5 5* 1D3 7Q-2 1.5+2 /km\r\nqz_dma_all_on ON\r\n", "", 0, 0, ""},
    {"QZ_MOIC 1/2\n", "slash", 1, 10, "values 2 to 128 keep what they held"},
    {"QZ_MOIC 1 x 2,3/ 4\n", "not-a-number", 1, 11,
     "\"x\", is not a number; values 2 to 128 keep what they held, and 2 more words are not read"},
    {"QZ_MOIC 127*1 x\n", "not-a-number", 1, 15, "value 128 keeps what it held"},
    {"QZ_MOIC 2*3*4\n", "not-a-number", 1, 9, "a second repeat count"},
    {"QZ_MOIC 2*x\n", "not-a-number", 1, 9, "what is repeated"},
    {std::string("QZ_MOIC 1\0 2\n", 13), "not-a-number", 1, 9, "a NUL"},
    {"QZ_MOIC 1 2\r3", "not-a-number", 1, 11, "a carriage return"},
    {"QZ_MOIC 1\r\r\n", "not-a-number", 1, 9, "a carriage return"},
    {"QZ_MOIC ++1\n", "not-a-number", 1, 9, "no digit"},
    {"QZ_MOIC 1e5.5\n", "not-a-number", 1, 9, "a point in the exponent"},
    {"QZ_MOIC ,,/\n", "sets-nothing", 1, 1, ""},
    {"QZ_MOIC 130*0\n", "beyond-last", 1, 9, "2 values"},
    {"QZ_MOIC 127*0 1 , 2 3\n", "beyond-last", 1, 19, "2 values"},
    {"QZ_MOIC 128*0 / 1 2\n", "", 0, 0, ""},
    {"QZ_MOIC 1" + kTo511 + "7 8\n", "cut", 1, 513, "2 words"},
    {"QZ_MOIC " + kTo511 + "7 8\n", "cut", 1, 514, "1 word stands"},
    {"QZ_MOIC " + kTo511 + "78 9\n", "cut-number", 1, 512,
     "\"7\" is read, and 1 more word is not read"},
    {"QZ_MOIC 1 x" + kBlanks + "9", "not-a-number", 1, 11, "and at least 1 more word is not read"},
    {"QZ_MOIC 1 / " + kTo511 + "7 8\n", "", 0, 0, ""},
    {"* " + kTo511 + "a long comment, and a long line that is no card\n", "", 0, 0, ""},
    {"\n\n\tQZ_DMA_ON\n", "not-in-column-1", 3, 2, "behind a tab"},
    {"QZ_MOIC1 2\n", "no-blank-in-column-8", 1, 8, "'1'"},
    {"QZ-MOIC 1\n", "unknown-keyword", 1, 1, "QZ_MOIC"},
    {"qz_dam_on\n", "unknown-keyword", 1, 1, "QZ_DMA_ON"},
    {"QZ_DMA_ALL_OFF\n", "unknown-keyword", 1, 1, "back to 0"},
    {"QZ_DMA_ONLY\n", "longer-word", 1, 1, "columns 1 to 9"},
    {"QZ_DMA_ON 0\n", "not-off", 1, 11, "set to 1"},
    {"x\rQZ_DMA_ON\r", "carriage-return", 1, 3, ""},
    {"\xff\xfeQ\n", "two-byte-text", 1, 1, ""},
    {"qz_dma\n", "unfinished-keyword", 1, 1, "QZ_DMA_ON and QZ_DMA_ALL_ON begin with it"},
    {"QZ_DMA_\n", "unfinished-keyword", 1, 1, "QZ_DMA_ON"},
    {"QZ_ 1\nQZ_FRAME\n", "", 0, 0, ""},
    {"QZ_MOI 1\n", "unknown-keyword", 1, 1, "it looks like QZ_MOIC"},
    {"QZ_MOIC 398600,8\n", "decimal-comma", 1, 9, "two values"},
    {"QZ_MOIC 1 3*-0,5E3 / km\n", "decimal-comma", 1, 11, "\"3*-0,5E3\""},
    {"QZ_MOIC 1,2,3 4,5\n", "", 0, 0, ""},
    {"QZ_MOIC 1, 2,3 ,4\n", "", 0, 0, ""},
    {"QZ_MOIC 1.5 2,5 1E3,5 1,+5 1\n", "", 0, 0, ""},
    {"QZ_MOIC 1 2 3\n\nQZ_MOIC 1 , , 4 5\n", "overwritten", 3, 1, "values 1, 3, set in line 1"},
    {"QZ_MOIC 1\nQZ_MOIC 2\nQZ_MOIC 3\n", "overwritten", 2, 1, "value 1, set in line 1"},
    {"QZ_MOIC 1\nQZ_MOIC , 2\nQZ_MOIC 3*7\n", "overwritten", 3, 1, "1, 2, set in lines 1 to 2"},
    {"QZ_MOIC 128*0\nQZ_MOIC 1\n", "", 0, 0, ""},
    {"QZ_MOIC 128*0\nQZ_MOIC 1\nQZ_MOIC 2\n", "overwritten", 3, 1, "set in line 2"},
    {"QZ_MOIC 1 2\nQZ_MOIC , 2\n", "changes-nothing", 2, 1, "value 2 holds already"},
    {"QZ_MOIC 1e0 2*0\nQZ_MOIC 1d0 0 0.\n", "overwritten", 2, 1, "values 1 to 3"},
    {"QZ_DMA_ON\nQZ_DMA_ALL_ON\nqz_dma_on\n", "changes-nothing", 3, 1, "set in line 1"},
    {"QZ_MOIC 1 1e400\n", "too-large", 1, 11, "value 2, \"1e400\""},
    {"QZ_MOIC 1 -1e-400\n", "too-small", 1, 11, "sets 0"},
    {"*corvale-ignore-file: slash,cutt\nQZ_MOIC 1/2\n", "unknown-code", 1, 29, "\"cutt\""},
    {"* corvale-ignore: slash not-off\n\nQZ_MOIC 1/2\n", "", 0, 0, ""},
    {"* corvale-ignore: slash\nSTEP\nQZ_MOIC 1/2\n", "slash", 3, 10, ""},
};

TEST_F(Check, FindsWhatIsWrong) {
    std::set<std::string> codes;
    for (const auto& [content, code, line, column, message] : kFindings) {
        const json file = FileOf(content);
        const json& findings = file.at("findings");
        ASSERT_EQ(findings.size(), *code == '\0' ? 0U : 1U) << content << findings;
        if (findings.empty()) continue;
        EXPECT_EQ(findings[0].at("code"), code) << content;
        EXPECT_EQ(findings[0].at("line"), line) << content;
        EXPECT_EQ(findings[0].at("column"), column) << content;
        EXPECT_NE(findings[0].at("message").get<std::string>().find(message), std::string::npos)
            << findings;
        codes.insert(code);
    }
    for (const tool::FindingRow& row : tool::kFindingRows)
        EXPECT_EQ(codes.count(std::string(row.code)), 1U) << row.code << " is never found";
}

TEST_F(Check, ThePageOfFindingsShowsTheTable) {
    const std::string page = ReadFile(CORVALE_PAGE_OF_FINDINGS);
    std::string rows = "|---|---|---|\n";
    for (const auto& [kind, code, severity, summary, fix] : tool::kFindingRows) {
        rows += "| `" + std::string(code) + "` | " + std::string(tool::SeverityName(severity)) +
                " | " + std::string(summary) + " |\n";
        EXPECT_NE(page.find("\n## " + std::string(code) + " {#finding_"), std::string::npos)
            << code;
    }
    EXPECT_NE(page.find(rows + "\n"), std::string::npos) << rows;
}

// Some 3 KB a finding if they were kept, and the cards, which come after them, 60 bytes each.
TEST_F(Check, NeedsNoMemoryForMoreFindings) {
    if (test::kIsSanitized) GTEST_SKIP() << "a sanitizer needs all addresses";
    const Outcome outcome = Run("yes 'QZ_DMA_ON 0' | head -n 200000 >many; ulimit -v 100000; " +
                                Quoted(CORVALE_PROGRAM) + " check --json many");
    EXPECT_EQ(outcome.exitCode, 1) << outcome.err;
    const json file = json::parse(outcome.out).at("files").at(0);
    EXPECT_EQ(file.at("findings").size(), 200000U + 199999U) << "not-off and changes-nothing";
    EXPECT_EQ(file.at("cards").size(), 200000U);
    EXPECT_EQ(file.at("cards").back().at("line"), 200000);
    for (const char* format : {"text", "short", "jsonl", "sarif", "github"}) {
        const Outcome streamed = Run("ulimit -v 100000; " + Quoted(CORVALE_PROGRAM) +
                                     " check many --format " + format + " | grep -c not-off");
        EXPECT_EQ(streamed.out.substr(0, 5), "20000") << format << streamed.err;
    }
}

// A file's name could steer the terminal, and a program that reads the output.
TEST_F(Check, NamesAreEscaped) {
    const std::string name = "e\x1b[31m\n\xc2\x9b.inp";
    const std::string shown = "e\\x1B[31m\\x0A\\xC2\\x9B.inp";
    WriteFile(name, " QZ_DMA_ON\nQZ_DMA_ON\n");
    for (const std::string command : {"check ", "check --all ", "check --json ", "load no",
                                      "load missing --log ", "check no", "no"}) {
        const Outcome outcome = Corvale(command + Quoted(name));
        const std::string said = outcome.out + outcome.err;
        EXPECT_TRUE(std::ranges::all_of(said, [](char c) {
            return c == '\n' || (c >= ' ' && c <= '~');
        })) << command;
        const bool isJson = command == "check --json ";
        EXPECT_NE(said.find(isJson ? "\\u001b" : shown), std::string::npos) << said;
    }
    EXPECT_EQ(json::parse(Corvale("check --json " + Quoted(name)).out).at("files")[0].at("file"),
              name);
}

TEST_F(Check, CountsUnusualBytes) {
    const json file = FileOf("\xef\xbb\xbf* \xc3\xa9\t\n*\r\n*\r*\n*" + std::string(1, '\0'));
    EXPECT_EQ(file.at("bytes"),
              json::parse(R"({"byteOrderMark": true, "linesWithCrLf": 1, "linesWithInnerCr": 1,
                              "linesWithTabs": 1, "linesWithNuls": 1,
                              "linesWithBytesAbove127": 1})"));
    EXPECT_EQ(file.at("lines"), 4);
}

TEST_F(Check, TakesSeveralFilesAndSaysWhichCannotBeRead) {
    WriteFile("good", "QZ_DMA_ON\n");
    WriteFile("bad", " QZ_DMA_ON\n");
    const struct {
        const char* arguments;
        int exitCode;
        std::size_t errors;
        const char* why;
    } cases[] = {
        {"good", 0, 0, "no findings"},
        {"good bad good", 1, 0, "one has a finding"},
        {"bad missing good", 2, 1, "one is missing"},
        {".", 2, 1, "a folder"},
        {"/dev/zero", 2, 1, "no text, and no end"},
        {"- </dev/zero", 2, 1, "nor by this name"},
        {"/dev/null", 0, 0, "an empty file"},
        {"- <&-", 2, 1, "standard input is closed"},
        {"sub\\\\good", 0, 0, "a backslash is a slash, as in loading"},
    };
    ASSERT_EQ(Run("mkfifo fifo && mkdir sub && cp good sub").exitCode, 0);
    EXPECT_EQ(Corvale("check fifo").err,
              "corvale: \"fifo\" cannot be read: nobody writes to this pipe\n");
    for (const auto& [arguments, exitCode, errors, why] : cases) {
        const Outcome outcome = Corvale(std::string("check ") + arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << why << ": " << outcome.err;
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), errors) << why << ": " << outcome.err;
        const Outcome quiet = Corvale(std::string("check --quiet ") + arguments);
        EXPECT_EQ(quiet.exitCode, exitCode) << why;
        EXPECT_EQ(quiet.out, "") << why;
    }
    EXPECT_EQ(json::parse(Corvale("check --json bad missing").out).at("files").at(1).at("error"),
              "No such file or directory");
    const Outcome all = Corvale("check --all bad good");
    EXPECT_NE(all.out.find("bad: 1 line, 0 cards, 1 finding; loading it sets nothing"),
              std::string::npos);
}

}  // namespace
}  // namespace corvale
