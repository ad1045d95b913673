// What all filters share: the lines that they read, and the loop over them.
#pragma once

#include "Filters.hpp"
#include "Input.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace corvale::tool {

/// What of a line cannot be used.
struct Unusable {
    std::size_t column = 1;  ///< counted from 1
    std::string why;
};

using Converted = std::variant<std::string, Unusable>;

using Conversion = std::function<Converted(std::string_view text)>;

/// Takes each line, or fields of it, through `convert` and prints what comes out. The output is
/// handed on before more input is waited for, so that a filter answers at once. Line ends stay LF or
/// CR LF as they are.
int RunFilter(std::string_view command, const FilterOptions& options, const Conversion& convert);

/// The lines of files, one file after the other; of standard input where no file is named; or values
/// of the command line, each a line.
class InputLines {
  public:
    explicit InputLines(const FilterOptions& options);

    /// Reads the next line whole. False at the end of the last file, and at a file that cannot be
    /// opened or read.
    [[nodiscard]] bool Next(Line& line);
    /// The file that cannot be read, and why: ""numbers.txt" cannot be read: Permission denied".
    [[nodiscard]] const std::optional<std::string>& Failure() const { return failure_; }
    /// Where a line stands that was just read: "numbers.txt: line 2", or "argument 2".
    [[nodiscard]] std::string Place(const Line& line) const;

  private:
    [[nodiscard]] bool Open();

    const std::vector<std::string>& values_;
    std::size_t valuesTaken_ = 0;
    std::vector<std::string> files_;
    std::size_t opened_ = 0;
    std::optional<InputFile> file_;
    std::optional<std::string> failure_;
};

/// Says on standard error that a line cannot be used.
void SayUnusable(std::string_view command, const std::string& place, const Unusable& unusable);

/// Says on standard error that a file cannot be read; returns the exit status.
int SayUnreadable(std::string_view command, const std::string& failure);

/// `line` without the blanks at both ends; `column` is where it begins.
struct Trimmed {
    std::string_view text;
    std::size_t column = 1;
};
[[nodiscard]] Trimmed Trim(std::string_view line);

}  // namespace corvale::tool
