// What `corvale check` prints of its files. Everything is printed as the lines come: memory does not
// grow with the files, however much there is to say of them.
#pragma once

#include "CardLines.hpp"
#include "Input.hpp"
#include "LineFixer.hpp"

#include <memory>
#include <string>

namespace corvale::tool {

enum class CheckFormat : std::uint8_t { Text, Short, Json, JsonLines, Sarif, Github };

/// The format, and how much of it.
struct CheckStyle {
    CheckFormat format = CheckFormat::Text;
    bool isQuiet = false;         ///< nothing but errors
    bool showsAll = false;        ///< lines without interest, too
    bool isFindingsOnly = false;  ///< neither cards nor what loading sets
};

/// What cannot be done with a file, "read" or "fixed", and why.
struct FileFailure {
    std::string_view verb;
    std::string why;

    /// "cannot be read: " and why.
    [[nodiscard]] std::string Text() const;
};

/// Takes what is found out about the files, one file after the other. This one prints nothing but
/// errors; each format is a class derived from it.
class CheckReport {
  public:
    CheckReport() = default;
    virtual ~CheckReport() = default;
    CheckReport(const CheckReport&) = delete;
    CheckReport& operator=(const CheckReport&) = delete;

    virtual void BeginFile(const std::string& name) { name_ = name; }
    /// Before the lines of a file: what was mended in it, in its old form.
    virtual void TakeFix(const Line& /*line*/, const FixedLine& /*fixed*/) {}
    virtual void TakeLine(const Line& /*line*/, const Explained& /*explained*/) {}
    virtual void EndFile(const FileContent& /*content*/) {}
    /// Instead of EndFile: the file cannot be read, or not to its end, or not be mended.
    virtual void Fail(const FileFailure& failure);
    /// After the last file.
    virtual void Finish() {}
    /// Whether `TakeLine` would print something.
    [[nodiscard]] virtual bool Wants(const Explained& /*explained*/) const { return false; }

  protected:
    [[nodiscard]] const std::string& FileName() const { return name_; }

  private:
    std::string name_;
};

/// For the formats that take findings one by one and leave all else out.
class FindingsReport : public CheckReport {
  public:
    void TakeLine(const Line& line, const Explained& explained) final {
        for (const Finding& finding : explained.findings) Print(line, explained, finding);
    }
    [[nodiscard]] bool Wants(const Explained& explained) const final {
        return !explained.findings.empty();
    }

  private:
    virtual void Print(const Line& line, const Explained& explained, const Finding& finding) = 0;
};

/// "warning[not-a-number]:"
[[nodiscard]] std::string LabelOf(FindingKind kind);

[[nodiscard]] std::unique_ptr<CheckReport> MakeCheckReport(const CheckStyle& style);

// Each format in a file of its own; the first is one JSON object for all files.
[[nodiscard]] std::unique_ptr<CheckReport> MakeJsonReport(bool isFindingsOnly);
[[nodiscard]] std::unique_ptr<CheckReport> MakeShortReport();
[[nodiscard]] std::unique_ptr<CheckReport> MakeJsonLinesReport();
[[nodiscard]] std::unique_ptr<CheckReport> MakeGithubReport();
[[nodiscard]] std::unique_ptr<CheckReport> MakeSarifReport();

}  // namespace corvale::tool
