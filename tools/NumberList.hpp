// The numbers of a QZ_MOIC card, read a second time to explain them: what the library reads
// silently, told with columns and reasons. Tests compare the two on random cards.
#pragma once

#include "Findings.hpp"

#include <string_view>
#include <vector>

namespace corvale::tool {

inline constexpr std::size_t kColumns = internal::kCardColumns;  ///< of a line that count

/// Which elements the numbers of one card set, and what of them was not used.
struct NumberList {
    Elements isSet;
    bool setsAllToOne = false;  ///< by one repeat count, as in 128*0
    std::vector<Finding> findings;
};

/// Reads the numbers of the card `line` into `values`. Its first 512 columns count; `line` may hold
/// more of it, and `length` is that of all of it.
[[nodiscard]] NumberList ReadNumbers(std::string_view line, std::size_t length,
                                     ElementValues& values);

/// A value, n*value or n* of a card: where it stands, and which elements it is for.
struct NumberItem {
    std::size_t column, length;
    std::size_t first, count;  ///< elements, counted from 0
};

/// The items of a card that are read. The arguments are those of `ReadNumbers`.
[[nodiscard]] std::vector<NumberItem> ItemsOf(std::string_view line, std::size_t length);

}  // namespace corvale::tool
