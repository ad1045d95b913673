// The keywords of the cards, and words that were probably meant to be one.
#pragma once

#include "Findings.hpp"

#include <corvale/core/CardTable.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace corvale::tool {

using internal::Card;
using internal::NameOf;

/// `text` in capitals, ASCII only.
[[nodiscard]] std::string UpperCase(std::string_view text);

/// The card that a line is, as the library tells it; null if it is none.
[[nodiscard]] const Card* CardOf(std::string_view line);

/// What keeps a line that is no card from being one, if it looks as though it was meant to.
[[nodiscard]] std::optional<Finding> NearCard(std::string_view line);

/// A card that follows a carriage return inside a line, where no line begins.
[[nodiscard]] std::optional<Finding> CardAfterReturn(std::string_view line);

}  // namespace corvale::tool
