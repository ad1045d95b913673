// `corvale lsp`: the Language Server Protocol 3.17, as much of it as findings, hints and quick fixes
// need. Messages are JSON-RPC 2.0, each behind a header with its length. Positions count lines from 0
// and units of UTF-16.
#include "Commands.hpp"
#include "Document.hpp"
#include "EditorColumns.hpp"
#include "Joined.hpp"

#include <corvale/Corvale.h>

#include <charconv>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

namespace {

using nlohmann::json;

constexpr std::size_t kLongest = 0x10000000;  // bytes of a message; a longer one is no message
enum : std::int16_t { kParseError = -32700, kUnknownMethod = -32601, kBadParameters = -32602 };

// The length in the header of the next message; nothing where there is none.
std::optional<std::size_t> ReadHeader() {
    std::optional<std::size_t> length;
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "\r" || line.empty()) return length;
        constexpr std::string_view name = "Content-Length: ";
        std::size_t value = 0;
        if (!line.starts_with(name)) continue;
        std::from_chars(line.data() + name.size(), line.data() + line.size(), value);
        length = value;
    }
    return std::nullopt;
}

// The next message; nothing at the end of the input, or where no message begins.
std::optional<std::string> ReadMessage() {
    const auto length = ReadHeader();
    if (!length || *length > kLongest) return std::nullopt;
    std::string body(*length, ' ');
    if (!std::cin.read(body.data(), static_cast<std::streamsize>(*length))) return std::nullopt;
    return body;
}

void Send(json message) {
    message["jsonrpc"] = "2.0";
    const std::string body = message.dump(-1, ' ', true, json::error_handler_t::replace);
    std::cout << "Content-Length: " << body.size() << "\r\n\r\n" << body << std::flush;
}

json Capabilities() {
    return {{"positionEncoding", "utf-16"},
            {"textDocumentSync", {{"openClose", true}, {"change", 1}}},
            {"hoverProvider", true},
            {"codeActionProvider", {{"codeActionKinds", json::array({"quickfix"})}}}};
}

json Position(const Line& line, std::size_t byte) {
    return {{"line", line.number - 1}, {"character", UnitsOf(line.text, byte)}};
}

json Range(const Line& line, std::size_t column, std::size_t length) {
    return {{"start", Position(line, column - 1)}, {"end", Position(line, column - 1 + length)}};
}

json Diagnostic(const Line& line, const Finding& finding) {
    const FindingRow& row = RowOf(finding.kind);
    const std::string help = finding.help.empty() ? "" : Joined("; ", finding.help);
    return {{"range", Range(line, finding.column, finding.length)},
            {"severity", static_cast<int>(row.severity) + 1},
            {"code", row.code},
            {"source", "corvale"},
            {"message", finding.message + help}};
}

json Action(const std::string& uri, const std::string& title, const json& diagnostic, json edits) {
    return {{"title", title},
            {"kind", "quickfix"},
            {"diagnostics", json::array({diagnostic})},
            {"edit", {{"changes", {{uri, std::move(edits)}}}}}};
}

// What mends a finding, and what silences it.
void AddActions(const std::string& uri, const Line& line, const Finding& finding, json& actions) {
    const FindingRow& row = RowOf(finding.kind);
    const json diagnostic = Diagnostic(line, finding);
    json edits = json::array();
    for (const Edit& edit : finding.fix)
        edits.push_back({{"range", Range(line, edit.column, edit.length)}, {"newText", edit.text}});
    if (!edits.empty())
        actions.push_back(Action(uri, std::string(row.fix), diagnostic, std::move(edits)));
    const json above = {{"range", Range(line, 1, 0)},
                        {"newText", Joined("* corvale-ignore: ", row.code, "\n")}};
    actions.push_back(Action(uri, Joined("silence ", row.code, " in this line"), diagnostic,
                             json::array({above})));
}

class Server {
  public:
    int Run() {
        while (const auto body = ReadMessage()) {
            const json message = json::parse(*body, nullptr, false);
            if (message.is_object() && message.value("method", "") == "exit")
                return isShutDown_ ? kExitOk : kExitFindings;
            Take(message);
        }
        return isShutDown_ ? kExitOk : kExitFailed;
    }

  private:
    // A request is answered, whatever is wrong with it; a notification never is.
    void Take(const json& message) {
        if (!message.is_object()) return Fail(nullptr, kParseError, "no JSON object");
        if (!message.contains("method")) return;  // an answer: nothing was asked
        const json id = message.value("id", json());
        try {
            const json result =
                Answer(message.at("method"), message.value("params", json::object()));
            if (id.is_null()) return;
            if (result.is_discarded()) return Fail(id, kUnknownMethod, "unknown method");
            Send({{"id", id}, {"result", result}});
        } catch (const json::exception& error) {
            if (!id.is_null()) Fail(id, kBadParameters, error.what());
        }
    }

    static void Fail(const json& id, int code, const std::string& why) {
        Send({{"id", id}, {"error", {{"code", code}, {"message", why}}}});
    }

    json Answer(const std::string& method, const json& params) {
        if (method == "initialize")
            return {{"capabilities", Capabilities()},
                    {"serverInfo", {{"name", "corvale"}, {"version", CORVALE_VERSION}}}};
        if (method == "shutdown") {
            isShutDown_ = true;
            return nullptr;
        }
        if (method == "textDocument/hover") return Hover(params);
        if (method == "textDocument/codeAction") return Actions(params);
        if (method == "textDocument/didOpen")
            Change(params.at("textDocument").at("uri"), params.at("textDocument").at("text"));
        if (method == "textDocument/didChange")
            Change(params.at("textDocument").at("uri"),
                   params.at("contentChanges").back().at("text"));
        if (method == "textDocument/didClose") Close(params.at("textDocument").at("uri"));
        return json::value_t::discarded;
    }

    void Change(const std::string& uri, const std::string& text) {
        const Document& document = documents_.insert_or_assign(uri, Document(text)).first->second;
        json diagnostics = json::array();
        for (const auto& [line, explained] : document.Lines())
            for (const Finding& finding : explained.findings)
                diagnostics.push_back(Diagnostic(line, finding));
        Publish(uri, diagnostics);
    }
    void Close(const std::string& uri) {
        documents_.erase(uri);
        Publish(uri, json::array());
    }
    static void Publish(const std::string& uri, const json& diagnostics) {
        Send({{"method", "textDocument/publishDiagnostics"},
              {"params", {{"uri", uri}, {"diagnostics", diagnostics}}}});
    }

    // The document that a request is about; null where the editor has not opened it.
    [[nodiscard]] const Document* DocumentOf(const json& params) const {
        const auto found = documents_.find(params.at("textDocument").at("uri"));
        return found == documents_.end() ? nullptr : &found->second;
    }

    [[nodiscard]] json Hover(const json& params) const {
        const Document* const document = DocumentOf(params);
        const std::size_t number = params.at("position").at("line");
        if (document == nullptr || number >= document->Lines().size()) return nullptr;
        const std::size_t units = params.at("position").at("character");
        const auto hint =
            document->Hint(number, BytesOf(document->Lines()[number].line.text, units));
        if (!hint) return nullptr;
        return {{"contents", {{"kind", "plaintext"}, {"value", *hint}}}};
    }

    [[nodiscard]] json Actions(const json& params) const {
        json actions = json::array();
        const Document* const document = DocumentOf(params);
        if (document == nullptr) return actions;
        const std::size_t first = params.at("range").at("start").at("line");
        const std::size_t last = params.at("range").at("end").at("line");
        for (std::size_t i = first; i <= last && i < document->Lines().size(); ++i)
            for (const Finding& finding : document->Lines()[i].explained.findings)
                AddActions(params.at("textDocument").at("uri"), document->Lines()[i].line, finding,
                           actions);
        return actions;
    }

    std::map<std::string, Document> documents_;
    bool isShutDown_ = false;
};

}  // namespace

int ServeEditor() {
    return Server().Run();
}

}  // namespace corvale::tool
