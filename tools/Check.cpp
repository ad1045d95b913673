#include "CardLines.hpp"
#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Escapes.hpp"
#include "FileFixer.hpp"
#include "Folders.hpp"
#include "Input.hpp"
#include "Joined.hpp"
#include "Terminal.hpp"

#include <algorithm>
#include <iostream>
#include <utility>

namespace corvale::tool {

namespace {

CheckFormat FormatOf(const CheckOptions& options) {
    constexpr std::pair<std::string_view, CheckFormat> formats[] = {
        {"short", CheckFormat::Short},     {"json", CheckFormat::Json},
        {"jsonl", CheckFormat::JsonLines}, {"sarif", CheckFormat::Sarif},
        {"github", CheckFormat::Github},
    };
    if (options.asJson) return CheckFormat::Json;
    for (const auto& [name, format] : formats)
        if (name == options.format) return format;
    return CheckFormat::Text;
}

KindSet KindsOf(const std::vector<std::string>& codes) {
    KindSet kinds;
    for (const std::string& code : codes)
        if (const auto kind = KindOf(code)) kinds.set(static_cast<std::size_t>(*kind));
    return kinds;
}

// The kinds that the command line asks not to be told of. Where nothing is printed notes make no
// difference.
KindSet UnwantedKinds(const CheckOptions& options) {
    KindSet unwanted = KindsOf(options.ignored);
    for (std::size_t i = 0; options.isQuiet && i < kFindingKinds; ++i)
        unwanted[i] = unwanted[i] || kFindingRows[i].severity == Severity::Note;
    if (!options.selected.empty()) unwanted |= ~KindsOf(options.selected);
    return unwanted;
}

// The files of one command line, one after the other.
class Checking {
  public:
    explicit Checking(const CheckOptions& options)
        : options_(options),
          unwanted_(UnwantedKinds(options)),
          report_(MakeCheckReport(
              {FormatOf(options), options.isQuiet, options.showsAll, options.isFindingsOnly})) {}

    int Run() {
        for (const std::string& name : options_.files) {
            if (!options_.globs.empty() && IsFolder(name))
                TakeFolder(name);
            else
                TakeFile(name);
        }
        report_->Finish();
        return status_;
    }

  private:
    void TakeFolder(const std::string& folder) {
        bool hasFiles = false;
        WalkFolder(folder, options_.globs,
                   {[&](const std::string& file) {
                        hasFiles = true;
                        TakeFile(file);
                    },
                    [&](const std::string& unreadable, const std::string& why) {
                        hasFiles = true;
                        report_->BeginFile(unreadable);
                        Fail("read", why);
                    }});
        if (hasFiles) return;
        std::cout.flush();
        std::cerr << "corvale: no file in " << QuotedName(folder) << " matches --glob\n";
        status_ = kExitFailed;
    }

    void TakeFile(const std::string& name) {
        report_->BeginFile(name == "-" ? "standard input" : name);
        if (options_.printsDiff) return Compare(name);
        if (!options_.fixes || Fix(name)) CheckFile(name);
    }

    void Compare(const std::string& name) {
        const DiffOutcome outcome = PrintDiff(name, {unwanted_, options_.fixesCommas, {}});
        if (outcome.failure) return Fail("fixed", *outcome.failure);
        status_ = std::max(status_, outcome.isDifferent ? kExitFindings : kExitOk);
    }

    bool Fix(const std::string& name) {
        const auto tell = [&](const Line& line, const FixedLine& fixed) {
            report_->TakeFix(line, fixed);
        };
        const auto failure = FixFile(name, {unwanted_, options_.fixesCommas, tell});
        if (failure) Fail("fixed", *failure);
        return !failure;
    }

    void CheckFile(const std::string& name) {
        InputFile input(name);
        ProgressBar bar(name, input.Size().value_or(0),
                        ShowProgress(options_.isQuiet, options_.showsProgress));
        FileContent content;
        content.silence.always = unwanted_;
        Line line;
        while (std::cout && input.ReadLine(line, kLineKept)) {
            const Explained explained = ExplainLine(line, content);
            if (report_->Wants(explained)) {
                bar.MakeWay();
                report_->TakeLine(line, explained);
            }
            bar.Update(input.BytesRead());
        }
        bar.Clear();
        if (input.Failure())
            return Fail("read",
                        *input.Failure() +
                            (IsFolder(name) ? " (its files are checked with --glob PATTERN)" : ""));
        report_->EndFile(content);
        status_ = std::max(status_, content.problems > 0 ? kExitFindings : kExitOk);
    }

    void Fail(std::string_view verb, const std::string& why) {
        report_->Fail({verb, why});
        status_ = kExitFailed;
    }

    const CheckOptions& options_;
    KindSet unwanted_;
    std::unique_ptr<CheckReport> report_;
    int status_ = kExitOk;
};

}  // namespace

int Check(const CheckOptions& options) {
    UseColours(options.colour);
    return Checking(options).Run();
}

}  // namespace corvale::tool
