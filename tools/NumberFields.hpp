// Fields of the filters: numbers that are wanted whole. The library reads a field that is no number
// as 0; here it is told apart from a written 0.
#pragma once

#include "LineFilter.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

/// A number, or what keeps the text from being one.
template <class Value>
struct Field {
    std::optional<Value> value;
    std::size_t column = 1;
    std::string why = {};
};
using IntegerField = Field<std::int32_t>;
using RealField = Field<double>;

/// The 32-bit integer that `text` is, with blanks around it, from column `skipped` + 1 on.
[[nodiscard]] IntegerField ReadInteger(std::string_view text, std::size_t skipped = 0);

/// The finite real that `text` is, of at most 80 characters.
[[nodiscard]] RealField ReadReal(std::string_view text, std::size_t skipped = 0);

/// A number as the shortest text that reads back to the same bits.
[[nodiscard]] Converted NumberText(std::string_view text, std::size_t skipped, bool isInteger);

}  // namespace corvale::tool
