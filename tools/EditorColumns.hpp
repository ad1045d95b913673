// Columns as editors and other programs count them: in units of UTF-16. The program itself counts
// bytes, as the library does.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvale::tool {

/// How many units of UTF-16 the first `bytes` bytes of `line` are. A byte that belongs to no character
/// is one unit, as an editor shows one mark for it.
[[nodiscard]] std::size_t UnitsOf(std::string_view line, std::size_t bytes);

/// How many bytes the first `units` units are: never a part of a character.
[[nodiscard]] std::size_t BytesOf(std::string_view line, std::size_t units);

}  // namespace corvale::tool
