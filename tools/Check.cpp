#include "CardLines.hpp"
#include "CheckReport.hpp"
#include "Commands.hpp"
#include "Input.hpp"
#include "Terminal.hpp"

#include <algorithm>
#include <iostream>

namespace corvale::tool {

namespace {

CheckStyle StyleOf(const CheckOptions& options) {
    if (options.isQuiet) return CheckStyle::Quiet;
    if (options.asJson) return CheckStyle::Json;
    return options.showsAll ? CheckStyle::AllLines : CheckStyle::Text;
}

int CheckFile(const std::string& name, const CheckOptions& options, CheckReport& report) {
    report.BeginFile(name == "-" ? "standard input" : name);
    InputFile input(name);
    ProgressBar bar(name, input.Size().value_or(0),
                    ShowProgress(options.isQuiet, options.showsProgress));
    FileContent content;
    Line line;
    while (std::cout && input.ReadLine(line, kLineKept)) {
        const Explained explained = ExplainLine(line, content);
        if (report.Wants(explained)) {
            bar.MakeWay();
            report.TakeLine(line, explained);
        }
        bar.Update(input.BytesRead());
    }
    bar.Clear();
    if (input.Failure()) {
        report.Unreadable(*input.Failure());
        return kExitFailed;
    }
    report.EndFile(content);
    return content.findings > 0 ? kExitFindings : kExitOk;
}

}  // namespace

int Check(const CheckOptions& options) {
    UseColours(options.colour);
    const auto report = MakeCheckReport(StyleOf(options));
    int status = kExitOk;
    for (const std::string& name : options.files)
        status = std::max(status, CheckFile(name, options, *report));
    report->Finish();
    return status;
}

}  // namespace corvale::tool
