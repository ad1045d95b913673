// The keywords of the cards, and words that were probably meant to be one.
#pragma once

#include "NumberList.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

enum class Keyword : std::uint8_t { None, Moic, DmaOn, DmaAllOn };

/// The keyword in capitals; empty for none.
[[nodiscard]] std::string_view Name(Keyword keyword);

/// `text` in capitals, ASCII only.
[[nodiscard]] std::string UpperCase(std::string_view text);

/// Which card a line is, as the library tells it.
[[nodiscard]] Keyword CardOf(std::string_view line);

/// What keeps a line that is no card from being one, if it looks as though it was meant to.
[[nodiscard]] std::optional<Finding> NearCard(std::string_view line);

/// A card that follows a carriage return inside a line, where no line begins.
[[nodiscard]] std::optional<Finding> CardAfterReturn(std::string_view line);

}  // namespace corvale::tool
