// Findings and cards in JSON, as every format writes them.
#pragma once

#include "CardLines.hpp"

#include <nlohmann/json.hpp>

namespace corvale::tool {

/// The numbers of the elements in `set`, counted from 1.
[[nodiscard]] nlohmann::ordered_json JsonElements(const Elements& set);

/// What a finding is about and where it stands, but for the file. `card` is null where no card seems
/// meant.
[[nodiscard]] nlohmann::ordered_json JsonFinding(std::uint64_t line, const Explained& explained,
                                                 const Finding& finding);

/// What a card sets: its keyword, a mode or elements, and which of them have been set before.
[[nodiscard]] nlohmann::ordered_json JsonCard(const Explained& explained);

}  // namespace corvale::tool
