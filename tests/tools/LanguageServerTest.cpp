#include "ProgramRuns.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace corvale {
namespace {

using nlohmann::json;
using test::Outcome;
using test::ProgramRuns;
using test::ReadFile;
using test::WriteFile;

constexpr const char* kUri = "file:///cards.inp";

// A client that says all it has to say and then reads the answers.
class LanguageServer : public ProgramRuns {
  protected:
    void Say(const std::string& body) {
        said_ += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
    void Request(int id, const std::string& method, const json& params = json::object()) {
        Say(json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", params}}.dump());
    }
    void Notify(const std::string& method, const json& params = json::object()) {
        Say(json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}.dump());
    }
    void Open(const std::string& text) {
        Notify("textDocument/didOpen",
               {{"textDocument",
                 {{"uri", kUri}, {"languageId", "corvale"}, {"version", 1}, {"text", text}}}});
    }
    static json At(int line, int character) { return {{"line", line}, {"character", character}}; }
    void Hover(int id, int line, int character) {
        Request(id, "textDocument/hover",
                {{"textDocument", {{"uri", kUri}}}, {"position", At(line, character)}});
    }
    // The messages of the server, and its exit status.
    std::vector<json> Answers(int exitCode = 0) {
        WriteFile("in", said_);
        const Outcome outcome = Corvale("lsp <in");
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        std::vector<json> answers;
        for (std::size_t at = 0; at < outcome.out.size();) {
            const std::size_t body = outcome.out.find("\r\n\r\n", at) + 4;
            const std::size_t size = std::stoul(outcome.out.substr(at + 16));
            answers.push_back(json::parse(outcome.out.substr(body, size)));
            at = body + size;
        }
        return answers;
    }
    void ShutDown() {
        Request(99, "shutdown");
        Notify("exit");
    }

  private:
    std::string said_;
};

TEST_F(LanguageServer, PublishesFindingsAsTheyCome) {
    Request(1, "initialize", {{"capabilities", json::object()}});
    Notify("initialized");
    Open("QZ_DMA_ON\n QZ_DMA_ON\nQZ_MOIC 1 \xf0\x9f\x8c\x8d\n");
    Notify("textDocument/didChange", {{"textDocument", {{"uri", kUri}, {"version", 2}}},
                                      {"contentChanges", {{{"text", "QZ_DMA_ON\n"}}}}});
    Notify("textDocument/didClose", {{"textDocument", {{"uri", kUri}}}});
    ShutDown();
    const auto answers = Answers();
    ASSERT_EQ(answers.size(), 5U);
    EXPECT_EQ(answers[0].at("id"), 1);
    EXPECT_TRUE(answers[0].at("result").at("capabilities").at("hoverProvider"));
    const json& params = answers[1].at("params");
    EXPECT_EQ(params.at("uri"), kUri);
    ASSERT_EQ(params.at("diagnostics").size(), 2U);
    EXPECT_EQ(params.at("diagnostics")[0].at("range"),
              (json{{"start", At(1, 1)}, {"end", At(1, 10)}}));
    EXPECT_EQ(params.at("diagnostics")[0].at("code"), "not-in-column-1");
    EXPECT_EQ(params.at("diagnostics")[0].at("severity"), 2);
    EXPECT_EQ(params.at("diagnostics")[1].at("range"),
              (json{{"start", At(2, 10)}, {"end", At(2, 12)}}))
        << "one character, two units";
    EXPECT_TRUE(answers[2].at("params").at("diagnostics").empty());
    EXPECT_TRUE(answers[3].at("params").at("diagnostics").empty());
    EXPECT_EQ(answers[4], json::parse(R"({"id": 99, "jsonrpc": "2.0", "result": null})"));
}

TEST_F(LanguageServer, SaysWhatACardSetsAndWhichElementItIs) {
    const struct {
        int line, character;
        const char* hint;  // "" for none
    } cases[] = {
        {0, 3, "QZ_DMA_ON sets the element-set key mode to 1"},
        {1, 0, "QZ_MOIC sets values 1 to 3, 6"},
        {1, 9, "QZ_MOIC sets values 1 to 3, 6; value 1 is 1.5"},
        {1, 12, "QZ_MOIC sets values 1 to 3, 6; values 2 to 3 are 0.25"},
        {1, 20, "QZ_MOIC sets values 1 to 3, 6; values 4 to 5 keep what they held"},
        {1, 24, "QZ_MOIC sets values 1 to 3, 6; value 6 is 1e+100"},
        {2, 4, ""},
        {9, 0, ""},
    };
    Open("QZ_DMA_ON\nQZ_MOIC 1.5 2*.25 , 2* 1D100\n* comment\n");
    for (const auto& [line, character, hint] : cases)
        Hover(line * 100 + character, line, character);
    ShutDown();
    const auto answers = Answers();
    ASSERT_EQ(answers.size(), std::size(cases) + 2);
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const json& result = answers[i + 1].at("result");
        const std::string hint = result.is_null() ? "" : result.at("contents").at("value");
        EXPECT_EQ(hint, cases[i].hint) << i;
    }
}

TEST_F(LanguageServer, OffersWhatMendsAndWhatSilences) {
    Open("\tQZ_DMA_ON\r\nQZ_MOIC 1/3\r\n");
    for (const int line : {0, 1})
        Request(line, "textDocument/codeAction",
                {{"textDocument", {{"uri", kUri}}},
                 {"range", {{"start", At(line, 3)}, {"end", At(line, 3)}}},
                 {"context", {{"diagnostics", json::array()}}}});
    ShutDown();
    const auto answers = Answers();
    const json& mending = answers.at(1).at("result");
    ASSERT_EQ(mending.size(), 2U);
    EXPECT_EQ(
        mending[0].at("edit").at("changes").at(kUri),
        (json::array({{{"range", {{"start", At(0, 0)}, {"end", At(0, 1)}}}, {"newText", ""}}})));
    EXPECT_EQ(mending[0].at("diagnostics")[0].at("code"), "not-in-column-1");
    const json& silencing = answers.at(2).at("result");
    ASSERT_EQ(silencing.size(), 1U) << "a slash has no certain fix";
    EXPECT_EQ(silencing[0].at("edit").at("changes").at(kUri)[0].at("newText"),
              "* corvale-ignore: slash\n");
}

TEST_F(LanguageServer, OutlivesWhatIsNoMessage) {
    Say("{");
    Say("[1, 2]");
    Say("{\"id\": 1, \"result\": 7}");
    Request(2, "textDocument/rename");
    Request(3, "textDocument/hover", {{"textDocument", 5}});
    Notify("textDocument/didOpen", {{"textDocument", "none"}});
    Notify("$/cancelRequest", {{"id", 2}});
    Hover(4, 0, 0);
    Notify("exit");
    const auto answers = Answers(1);
    ASSERT_EQ(answers.size(), 5U);
    const int codes[] = {-32700, -32700, -32601, -32602};
    for (std::size_t i = 0; i < std::size(codes); ++i)
        EXPECT_EQ(answers[i].at("error").at("code"), codes[i]) << i;
    EXPECT_TRUE(answers[4].at("result").is_null()) << "no such document";
    for (const char* input :
         {"", "Content-Length: 99999999999\r\n\r\n{}", "\r\n", "Content-Length: 5\r\n\r\n{"}) {
        WriteFile("in", input);
        EXPECT_EQ(Corvale("lsp <in").exitCode, 2) << input;
    }
}

}  // namespace
}  // namespace corvale
