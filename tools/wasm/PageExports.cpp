// What the site's page "Try it" calls: `corvale check` and the filters, compiled for browsers. The page hands
// over a file by WASI, takes what is found out about its lines by the functions that it imports here, and
// gives a filter its standard input and output.
#include "CardLines.hpp"
#include "Filters.hpp"
#include "Input.hpp"
#include "Texts.hpp"

#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#define EXPORTED(name) extern "C" __attribute__((export_name(#name)))
#define IMPORTED(name) extern "C" __attribute__((import_module("page"), import_name(#name)))

// Texts are handed over as an address and a size, in bytes.

/// A line: its number, the index of its LineKind, as much as was kept of it, its whole length, and
/// what a card sets. Its findings follow.
IMPORTED(line)
void PutLine(double number, std::int32_t kind, const char* text, std::size_t size, double length,
             const char* effect, std::size_t effectSize);
IMPORTED(finding)
void PutFinding(double column, double length, const char* severity, std::size_t severitySize,
                const char* code, std::size_t codeSize, const char* message,
                std::size_t messageSize, const char* help, std::size_t helpSize);
/// A number that is known of the whole file, by its name.
IMPORTED(count) void PutCount(const char* name, std::size_t size, double count);
/// A mode that loading the file sets to 1: its name for people and for programs.
IMPORTED(mode)
void PutMode(const char* name, std::size_t nameSize, const char* id, std::size_t idSize);
/// An element, counted from 1, and the value that loading the file gives it.
IMPORTED(value) void PutValue(std::int32_t element, const char* text, std::size_t size);
/// Why the file cannot be read, or not to its end.
IMPORTED(failure) void PutFailure(const char* text, std::size_t size);

namespace {

using namespace corvale::tool;

// Which lines are handed over.
enum Wanted : std::int32_t { kNothing, kFindings, kAllLines };

// What the page calls its one file.
constexpr const char* kInput = "input";

// A file that is being explained, a part of it with each call of the page.
struct RunningCheck {
    InputFile input{kInput};
    FileContent content;
    Line line;
    bool isOver = false;
};
std::optional<RunningCheck> check;

void Put(const Line& line, const Explained& explained) {
    const std::string effect =
        explained.kind == LineKind::Card ? EffectText(explained) : std::string();
    PutLine(static_cast<double>(line.number), static_cast<std::int32_t>(explained.kind),
            line.text.data(), line.text.size(), static_cast<double>(line.length), effect.data(),
            effect.size());
    for (const Finding& finding : explained.findings) {
        const std::string_view severity = SeverityName(RowOf(finding.kind).severity);
        const std::string_view code = RowOf(finding.kind).code;
        PutFinding(static_cast<double>(finding.column), static_cast<double>(finding.length),
                   severity.data(), severity.size(), code.data(), code.size(),
                   finding.message.data(), finding.message.size(), finding.help.data(),
                   finding.help.size());
    }
}

bool IsWanted(const Explained& explained, Wanted wanted) {
    return wanted == kAllLines || (wanted == kFindings && !explained.findings.empty());
}

void PutCounts(const FileContent& content) {
    const struct {
        std::string_view name;
        std::uint64_t count;
    } counts[] = {{"lines", content.lines},
                  {"comments", content.comments},
                  {"cards", content.cards},
                  {"findings", content.findings},
                  {"byteOrderMark", content.hasByteOrderMark ? 1U : 0U},
                  {"linesWithCrLf", content.withReturn},
                  {"linesWithInnerCr", content.innerReturns},
                  {"linesWithTabs", content.withTabs},
                  {"linesWithNuls", content.withNuls},
                  {"linesWithBytesAbove127", content.withHighBytes}};
    for (const auto& [name, count] : counts)
        PutCount(name.data(), name.size(), static_cast<double>(count));
}

void PutSets(const FileContent& content) {
    for (std::size_t i = 0; i < corvale::internal::kKeyModes.size(); ++i) {
        const auto& mode = corvale::internal::kKeyModes[i];
        if (content.setsMode[i])
            PutMode(mode.name.data(), mode.name.size(), mode.id.data(), mode.id.size());
    }
    for (std::size_t i = 0; i < kElements; ++i) {
        if (!content.isSet[i]) continue;
        const std::string text = RealText(content.values[i]);
        PutValue(static_cast<std::int32_t>(i + 1), text.data(), text.size());
    }
}

// An angle is written in hours, or read back.
int ConvertAngle(bool inHours, bool decodes, const FilterOptions& options) {
    AngleOptions angle;
    angle.inHours = inHours;
    angle.decodes = decodes;
    return ConvertAngles(angle, options);
}

// The filters in the order of the page's list of them.
int RunFilterOf(std::int32_t index, const FilterOptions& options) {
    switch (index) {
        case 0:
            return EncodeAlpha5(options);
        case 1:
            return DecodeAlpha5(options);
        case 2:
            return ConvertAngle(false, false, options);
        case 3:
            return ConvertAngle(false, true, options);
        case 4:
            return ConvertAngle(true, false, options);
        case 5:
            return ConvertAngle(true, true, options);
        case 6:
            return ReadNumberFields({}, options);
        default:
            return CompressRows(options);
    }
}

}  // namespace

/// Begins to explain the page's file; what was begun before is forgotten.
EXPORTED(beginCheck) void BeginCheck() {
    check.emplace();
}

/// Explains lines until so many more bytes are read, and hands over those that are wanted. Returns
/// whether the file goes on; where it does not, what is known of all of it has been handed over.
EXPORTED(continueCheck) bool ContinueCheck(double bytes, Wanted wanted) {
    const std::uint64_t enough = check->input.BytesRead() + static_cast<std::uint64_t>(bytes);
    while (check->input.ReadLine(check->line, kLineKept)) {
        const Explained explained = ExplainLine(check->line, check->content);
        if (IsWanted(explained, wanted)) Put(check->line, explained);
        if (check->input.BytesRead() > enough) return true;
    }
    if (check->input.Failure()) {
        PutFailure(check->input.Failure()->data(), check->input.Failure()->size());
        return false;
    }
    PutCounts(check->content);
    PutSets(check->content);
    return false;
}

/// How much of the file has been read.
EXPORTED(bytesRead) double BytesRead() {
    return static_cast<double>(check->input.BytesRead());
}

/// Runs a filter from the page's standard input to its standard output; returns the exit status.
EXPORTED(filter) std::int32_t Filter(std::int32_t index) {
    FilterOptions options;
    options.goesOn = true;
    const int status = RunFilterOf(index, options);
    std::cout.flush();
    return status;
}
