// `corvale check --format sarif`: the Static Analysis Results Interchange Format, version 2.1.0. The
// results are printed as they come; what is known at the end follows them.
#include "CheckReport.hpp"
#include "EditorColumns.hpp"
#include "Escapes.hpp"
#include "JsonFindings.hpp"

#include <corvale/Corvale.h>

#include <iostream>
#include <string_view>
#include <vector>

namespace corvale::tool {

namespace {

using nlohmann::ordered_json;

// A file's name as a relative reference, or as a whole one where it begins with a slash.
std::string Uri(std::string_view name) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string uri = name.substr(0, 1) == "/" ? "file://" : "";
    for (const char c : name)
        uri += plain.find(c) == std::string_view::npos ? PercentOf(c) : std::string(1, c);
    return uri;
}

ordered_json Rules() {
    ordered_json rules = ordered_json::array();
    for (const FindingRow& row : kFindingRows)
        rules.push_back({{"id", row.code},
                         {"shortDescription", {{"text", row.summary}}},
                         {"defaultConfiguration", {{"level", SeverityName(row.severity)}}}});
    return rules;
}

ordered_json Region(const Line& line, const Finding& finding) {
    const std::size_t start = finding.column - 1;
    return {{"startLine", line.number},
            {"startColumn", UnitsOf(line.text, start) + 1},
            {"endColumn", UnitsOf(line.text, start + finding.length) + 1}};
}

class SarifReport : public FindingsReport {
  public:
    SarifReport() {
        const ordered_json driver = {
            {"name", "corvale check"}, {"version", CORVALE_VERSION}, {"rules", Rules()}};
        std::cout << "{\"version\": \"2.1.0\",\n\"runs\": [{\n\"tool\": {\"driver\": " << driver
                  << "},\n\"columnKind\": \"utf16CodeUnits\",\n\"results\": [";
    }
    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        artifact_ = {{"uri", Uri(name)}};
    }
    void Fail(const FileFailure& failure) override {
        CheckReport::Fail(failure);
        failures_.push_back(
            {{"level", "error"},
             {"message", {{"text", QuotedName(FileName()) + " " + failure.Text()}}}});
    }
    void Finish() override {
        const bool isWhole = failures_.empty();
        const ordered_json invocation = {{"executionSuccessful", isWhole},
                                         {"toolExecutionNotifications", std::move(failures_)}};
        std::cout << "\n],\n\"invocations\": [" << invocation << "]\n}]}\n";
    }

  private:
    void Print(const Line& line, const Explained& explained, const Finding& finding) override {
        const FindingRow& row = RowOf(finding.kind);
        const std::string help = finding.help.empty() ? "" : " (" + finding.help + ")";
        ordered_json properties = {{"elements", JsonElements(finding.elements)}};
        if (const auto* const card = CardOfFinding(explained, finding); card != nullptr)
            properties["card"] = NameOf(*card);
        const ordered_json place = {
            {"physicalLocation",
             {{"artifactLocation", artifact_}, {"region", Region(line, finding)}}}};
        const ordered_json result = {{"ruleId", row.code},
                                     {"ruleIndex", static_cast<std::size_t>(row.kind)},
                                     {"level", SeverityName(row.severity)},
                                     {"message", {{"text", finding.message + help}}},
                                     {"locations", ordered_json::array({place})},
                                     {"properties", std::move(properties)}};
        std::cout << (isFirst_ ? "\n" : ",\n") << result;
        isFirst_ = false;
    }

    bool isFirst_ = true;
    ordered_json artifact_;
    ordered_json failures_ = ordered_json::array();  // one for each file that cannot be read
};

}  // namespace

std::unique_ptr<CheckReport> MakeSarifReport() {
    return std::make_unique<SarifReport>();
}

}  // namespace corvale::tool
