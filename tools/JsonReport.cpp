// `corvale check --json`. The findings of a file are printed as they come. Its cards, which stand in
// an array of their own, are kept until then in a file without a name, so that memory does not grow
// with their number.
#include "CheckReport.hpp"
#include "Joined.hpp"
#include "JsonFindings.hpp"
#include "JsonTexts.hpp"
#include "Spool.hpp"

#include <iostream>
#include <string_view>
#include <utility>

namespace corvale::tool {

namespace {

using internal::kKeyModes;
using nlohmann::ordered_json;

constexpr bool IsSetByCards(std::size_t mode) {
    return std::ranges::any_of(internal::kCards,
                               [&](const auto& card) { return card.mode == mode; });
}

ordered_json JsonSets(const FileContent& content) {
    ordered_json sets;
    for (std::size_t i = 0; i < kKeyModes.size(); ++i) {
        if (!IsSetByCards(i)) continue;
        ordered_json& mode = sets[std::string(kKeyModes[i].id)];
        if (content.setsMode[i]) mode = 1;
    }
    ordered_json moic = ordered_json::array();
    for (std::size_t i = 0; i < kElements; ++i)
        moic.push_back(content.isSet[i] ? JsonReal(content.values[i]) : nullptr);
    sets["moic"] = std::move(moic);
    return sets;
}

ordered_json JsonBytes(const FileContent& content) {
    return {{"byteOrderMark", content.hasByteOrderMark},
            {"linesWithCrLf", content.withReturn},
            {"linesWithInnerCr", content.innerReturns},
            {"linesWithTabs", content.withTabs},
            {"linesWithNuls", content.withNuls},
            {"linesWithBytesAbove127", content.withHighBytes}};
}

class JsonReport : public CheckReport {
  public:
    explicit JsonReport(bool isFindingsOnly) : isFindingsOnly_(isFindingsOnly) {}

    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        std::cout << (isFirstFile_ ? "{\"files\": [\n" : ",\n") << "{\"file\": " << JsonName(name);
        isFirstFile_ = false;
        hasFixes_ = hasFindings_ = false;
    }
    void TakeFix(const Line& line, const FixedLine& fixed) override {
        ordered_json codes = ordered_json::array();
        for (const FindingKind kind : fixed.mended) codes.push_back(RowOf(kind).code);
        std::cout << (hasFixes_ ? ",\n  " : ",\n \"fixed\": [\n  ")
                  << ordered_json({{"line", line.number},
                                   {"codes", std::move(codes)},
                                   {"text", ordered_json::parse(JsonName(fixed.text))}});
        hasFixes_ = true;
    }
    void TakeLine(const Line& line, const Explained& explained) override {
        if (explained.kind == LineKind::Card && !isFindingsOnly_) {
            cards_.Add(cards_.IsEmpty() ? "\n  " : ",\n  ");
            cards_.Add(Joined("{\"line\":", line.number, ","));
            cards_.Add(std::string_view(JsonCard(explained).dump()).substr(1));
        }
        EndFixes();
        for (const Finding& finding : explained.findings) {
            std::cout << (hasFindings_ ? ",\n  " : ",\n \"findings\": [\n  ")
                      << JsonFinding(line.number, explained, finding);
            hasFindings_ = true;
        }
    }
    void EndFile(const FileContent& content) override {
        EndArrays();
        Put("lines", content.lines);
        if (!isFindingsOnly_) Put("sets", JsonSets(content));
        if (!isFindingsOnly_) Put("bytes", JsonBytes(content));
        std::cout << '}';
    }
    void Fail(const FileFailure& failure) override {
        CheckReport::Fail(failure);
        EndFixes();
        if (hasFindings_ || !cards_.IsEmpty()) EndArrays();
        Put("error", failure.why);
        std::cout << '}';
    }
    void Finish() override { std::cout << "\n]}\n"; }
    [[nodiscard]] bool Wants(const Explained& explained) const override {
        return (explained.kind == LineKind::Card && !isFindingsOnly_) ||
               !explained.findings.empty();
    }

  private:
    static void Put(std::string_view key, const ordered_json& value) {
        std::cout << ",\n \"" << key << "\": " << value;
    }
    void EndFixes() {
        if (std::exchange(hasFixes_, false)) std::cout << ']';
    }
    void EndArrays() {
        EndFixes();
        std::cout << (hasFindings_ ? "]" : ",\n \"findings\": []");
        if (isFindingsOnly_) return;
        std::cout << ",\n \"cards\": [";
        cards_.Print();
        std::cout << ']';
    }

    bool isFindingsOnly_;
    bool isFirstFile_ = true;
    bool hasFixes_ = false, hasFindings_ = false;
    Spool cards_;
};

}  // namespace

std::unique_ptr<CheckReport> MakeJsonReport(bool isFindingsOnly) {
    return std::make_unique<JsonReport>(isFindingsOnly);
}

}  // namespace corvale::tool
