// The loop that all filters share.
#pragma once

#include "Filters.hpp"

#include <cstdint>
#include <functional>
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

/// Takes each line through `convert` and prints what comes out. The output is handed on before more
/// input is waited for, so that a filter answers at once. Line ends stay LF or CR LF as they are.
int RunFilter(std::string_view command, const FilterOptions& options,
              const std::function<Converted(std::string_view line)>& convert);

/// Says on standard error that a line cannot be used.
void SayUnusable(std::string_view command, std::uint64_t line, const Unusable& unusable);

/// Says on standard error why standard input cannot be read; returns the exit status.
int SayUnreadable(std::string_view command, const std::string& why);

/// `line` without the blanks at both ends; `column` is where it begins.
struct Trimmed {
    std::string_view text;
    std::size_t column = 1;
};
[[nodiscard]] Trimmed Trim(std::string_view line);

}  // namespace corvale::tool
