// The formats of `corvale check` that hold nothing but findings, a line each.
#include "CheckReport.hpp"
#include "Escapes.hpp"
#include "Joined.hpp"
#include "JsonFindings.hpp"
#include "JsonTexts.hpp"

#include <iostream>

namespace corvale::tool {

namespace {

// FILE:LINE:COLUMN: SEVERITY[CODE]: MESSAGE, as compilers write it and editors read it.
class ShortReport : public FindingsReport {
  public:
    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        shownName_ = Escaped(name);
    }

  private:
    void Print(const Line& line, const Explained& /*explained*/, const Finding& finding) override {
        std::cout << shownName_ << ':' << line.number << ':' << finding.column << ": "
                  << LabelOf(finding.kind) << ' ' << finding.message << '\n';
    }

    std::string shownName_;
};

// One JSON object a line.
class JsonLinesReport : public FindingsReport {
  public:
    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        start_ = Joined("{\"file\":", JsonName(name), ",");
    }
    void Fail(const FileFailure& failure) override {
        CheckReport::Fail(failure);
        std::cout << start_ << "\"error\":" << nlohmann::json(failure.why) << "}\n";
    }

  private:
    void Print(const Line& line, const Explained& explained, const Finding& finding) override {
        std::cout << start_ << JsonFinding(line.number, explained, finding).dump().substr(1)
                  << '\n';
    }

    std::string start_;
};

// Commands of a workflow of GitHub: ::warning file=...::MESSAGE
class GithubReport : public FindingsReport {
  public:
    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        start_ = Joined(" file=", Masked(name, "%\r\n:,"), ",line=");
    }
    void Fail(const FileFailure& failure) override {
        CheckReport::Fail(failure);
        std::cout << "::error" << start_ << "1::" << Masked(failure.Text(), kEnds) << '\n';
    }

  private:
    static constexpr std::string_view kEnds = "%\r\n";

    // The characters `special` as %XX.
    static std::string Masked(std::string_view text, std::string_view special) {
        std::string masked;
        for (const char c : text)
            masked += special.find(c) == std::string_view::npos ? std::string(1, c) : PercentOf(c);
        return masked;
    }
    static std::string_view Command(Severity severity) {
        return severity == Severity::Note ? "notice" : SeverityName(severity);
    }
    void Print(const Line& line, const Explained& /*explained*/, const Finding& finding) override {
        const FindingRow& row = RowOf(finding.kind);
        std::cout << "::" << Command(row.severity) << start_ << line.number
                  << ",col=" << finding.column << ",endColumn=" << finding.column + finding.length
                  << ",title=" << row.code << "::" << Masked(finding.message, kEnds) << '\n';
    }

    std::string start_;
};

}  // namespace

std::unique_ptr<CheckReport> MakeShortReport() {
    return std::make_unique<ShortReport>();
}

std::unique_ptr<CheckReport> MakeJsonLinesReport() {
    return std::make_unique<JsonLinesReport>();
}

std::unique_ptr<CheckReport> MakeGithubReport() {
    return std::make_unique<GithubReport>();
}

}  // namespace corvale::tool
