// Words that were probably meant to be others: "did you mean".
#pragma once

#include <cstddef>
#include <string_view>

namespace corvale::tool {

/// By how many insertions, losses, changes and exchanges of neighbours `a` differs from `b`.
///
/// Source  F. Damerau, "A technique for computer detection and correction of spelling errors", CACM 7
///         (1964), 171-176, for the four kinds; the table of distances is that of optimal alignment
[[nodiscard]] std::size_t WordDistance(std::string_view a, std::string_view b);

}  // namespace corvale::tool
