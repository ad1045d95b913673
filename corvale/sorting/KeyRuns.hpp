// Internal to sorting/: not installed, may change in any commit.
//
// Keys that stand in order already, for long stretches: sorted, reversed, up and down, a few sorted
// lists appended.
#pragma once

#include <corvale/sorting/KeyRange.hpp>

#include <cstdint>
#include <span>

namespace corvale::internal {

/// Sorts `all` where it consists of a few long runs, ascending or descending, and says whether it
/// did. Otherwise the keys are only reordered within runs that descend. Gives up early where runs
/// are short. `block` is memory to work in, an element for each key.
[[nodiscard]] bool SortRuns(const KeyRange& all, std::span<std::int32_t> block) noexcept;

}  // namespace corvale::internal
