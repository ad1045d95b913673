#include "CheckReport.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "Terminal.hpp"
#include "Texts.hpp"

#include <algorithm>
#include <bit>
#include <iostream>
#include <string_view>

namespace corvale::tool {

namespace {

using internal::kKeyModes;

constexpr std::size_t kExcerpt = 72;  // columns of a line that are shown

std::string Count(std::uint64_t count, std::string_view noun) {
    return Joined(count, " ", noun, count == 1 ? "" : "s");
}

// One character for each byte, so that columns stay columns.
std::string Visible(std::string_view text) {
    std::string visible(text);
    std::ranges::replace_if(
        visible, [](char c) { return c < ' ' || c > '~'; }, '?');
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] == '\t') visible[i] = ' ';
    return visible;
}

// The part of a line around a finding, and the mark under it.
void PrintExcerpt(const Line& line, const Finding& finding) {
    const std::string number = std::to_string(line.number);
    const std::string margin(std::max<std::size_t>(number.size(), 4), ' ');
    const std::size_t at = finding.column - 1;
    const std::size_t end = at + finding.length;
    // as little of the beginning is left out as shows all of the finding
    const std::size_t start = end <= kExcerpt ? 0 : std::min(at, end - kExcerpt + 10);
    const std::string text =
        Visible(std::string_view(line.text).substr(std::min(start, line.text.size()), kExcerpt));
    const std::string_view cutFront = start > 0 ? "..." : "";
    const std::string_view cutBack = start + kExcerpt < line.length ? "..." : "";
    std::string mark = "^";
    mark.append(std::min(finding.length, kExcerpt) - 1, '~');

    std::cout << std::string(margin.size() - number.size(), ' ') << number << " | " << cutFront
              << text << cutBack << '\n'
              << margin << " | " << std::string(cutFront.size() + at - start, ' ')
              << Coloured(Colour::Mark, mark) << '\n';
}

bool SetsAnything(const FileContent& content) {
    return content.setsMode.any() || content.isSet.any();
}

void PrintModes(const FileContent& content) {
    for (std::size_t i = 0; i < kKeyModes.size(); ++i)
        if (content.setsMode[i]) std::cout << "  " << PaddedName(kKeyModes[i]) << "1\n";
}

void PrintValues(const FileContent& content) {
    const auto same = [&](std::size_t i, std::size_t j) {
        return content.isSet[j] && std::bit_cast<std::uint64_t>(content.values[i]) ==
                                       std::bit_cast<std::uint64_t>(content.values[j]);
    };
    constexpr std::size_t width = 22;
    for (std::size_t first = 0; first < kElements; ++first) {
        if (!content.isSet[first]) continue;
        std::size_t last = first;
        while (last + 1 < kElements && same(first, last + 1)) ++last;
        std::string label = Joined("  MOIC ", first + 1);
        if (last > first) label += Joined(" to ", last + 1);
        label.resize(std::max(label.size() + 1, width), ' ');
        std::cout << label << RealText(content.values[first]) << '\n';
        first = last;
    }
}

void PrintBytes(const FileContent& content) {
    const struct {
        std::uint64_t lines;
        std::string_view what;
    } kinds[] = {{content.withReturn, "end with CR LF"},
                 {content.innerReturns, "hold a carriage return"},
                 {content.withTabs, "hold tabs"},
                 {content.withNuls, "hold a NUL"},
                 {content.withHighBytes, "hold bytes above 127"}};
    if (content.hasByteOrderMark) std::cout << "  the file begins with a byte order mark\n";
    for (const auto& [lines, what] : kinds)
        if (lines > 0) std::cout << "  lines that " << what << ": " << lines << '\n';
}

class TextReport : public CheckReport {
  public:
    explicit TextReport(const CheckStyle& style)
        : showsAll_(style.showsAll), isFindingsOnly_(style.isFindingsOnly) {}

    void BeginFile(const std::string& name) override {
        CheckReport::BeginFile(name);
        shownName_ = Escaped(name);
    }
    void TakeFix(const Line& line, const FixedLine& fixed) override {
        std::string codes;
        for (const FindingKind kind : fixed.mended)
            codes.append(codes.empty() ? "" : ", ").append(RowOf(kind).code);
        std::cout << Coloured(Colour::Place, Joined(shownName_, ":", line.number, ":")) << ' '
                  << Coloured(Colour::Note, Joined("fixed[", codes, "]:")) << ' '
                  << Quoted(fixed.text) << '\n';
    }
    void TakeLine(const Line& line, const Explained& explained) override {
        const std::string place = Joined(shownName_, ":", line.number, ":");
        if (explained.kind == LineKind::Card && !isFindingsOnly_)
            std::cout << Coloured(Colour::Place, place) << ' ' << Effect(explained) << '\n';
        for (const Finding& finding : explained.findings) {
            std::cout << Coloured(Colour::Place, Joined(place, finding.column, ":")) << ' '
                      << Coloured(ColourOf(finding.kind), LabelOf(finding.kind)) << ' '
                      << finding.message << '\n';
            PrintExcerpt(line, finding);
            if (!finding.help.empty()) std::cout << "     = " << finding.help << '\n';
        }
        if (showsAll_ && explained.kind != LineKind::Card && explained.findings.empty())
            std::cout << place << ' ' << KindText(explained.kind) << '\n';
    }
    void EndFile(const FileContent& content) override {
        if (isFindingsOnly_) return;
        std::cout << Coloured(Colour::Place, shownName_ + ":") << ' '
                  << Count(content.lines, "line") << ", " << Count(content.cards, "card") << ", "
                  << Count(content.findings, "finding") << "; loading it "
                  << (SetsAnything(content) ? "sets" : "sets nothing") << '\n';
        PrintModes(content);
        PrintValues(content);
        PrintBytes(content);
    }
    [[nodiscard]] bool Wants(const Explained& explained) const override {
        return showsAll_ || (explained.kind == LineKind::Card && !isFindingsOnly_) ||
               !explained.findings.empty();
    }

  private:
    static std::string_view KindText(LineKind kind) {
        if (kind == LineKind::Comment) return "a comment";
        return kind == LineKind::Blank ? "blank" : "no card of this library: passed over";
    }

    // Most cards do what the card before them did.
    const std::string& Effect(const Explained& explained) {
        const bool isSame = explained.card == last_.card && explained.sets == last_.sets &&
                            explained.setBefore == last_.setBefore;
        if (!isSame) {
            last_ = {LineKind::Card, explained.card, explained.sets, explained.setBefore};
            effect_ = EffectText(explained);
        }
        return effect_;
    }

    static Colour ColourOf(FindingKind kind) {
        const Severity severity = RowOf(kind).severity;
        if (severity == Severity::Note) return Colour::Note;
        return severity == Severity::Error ? Colour::Error : Colour::Warning;
    }

    bool showsAll_, isFindingsOnly_;
    std::string shownName_;
    Explained last_;
    std::string effect_;  // of `last_`
};

}  // namespace

std::string FileFailure::Text() const {
    return Joined("cannot be ", verb, ": ", why);
}

void CheckReport::Fail(const FileFailure& failure) {
    std::cout.flush();
    std::cerr << "corvale: " << QuotedName(name_) << ' ' << failure.Text() << '\n';
}

std::string LabelOf(FindingKind kind) {
    const FindingRow& row = RowOf(kind);
    return Joined(SeverityName(row.severity), "[", row.code, "]:");
}

std::unique_ptr<CheckReport> MakeCheckReport(const CheckStyle& style) {
    if (style.isQuiet) return std::make_unique<CheckReport>();
    switch (style.format) {
        case CheckFormat::Short:
            return MakeShortReport();
        case CheckFormat::Json:
            return MakeJsonReport(style.isFindingsOnly);
        case CheckFormat::JsonLines:
            return MakeJsonLinesReport();
        case CheckFormat::Sarif:
            return MakeSarifReport();
        case CheckFormat::Github:
            return MakeGithubReport();
        case CheckFormat::Text:
            break;
    }
    return std::make_unique<TextReport>(style);
}

}  // namespace corvale::tool
