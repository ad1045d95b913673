// Internal to sorting/: not installed, may change in any commit.
//
// Keys that stand in order already, for long stretches: sorted, reversed, up and down, a few sorted
// lists appended.
#pragma once

#include <corvale/sorting/KeyRange.hpp>

#include <cstdint>
#include <span>

namespace corvale::internal {

/// Sorts `range` where it ascends or descends as a whole, and says whether it does. Ends at the
/// first pair that does not. `range` is not empty.
[[nodiscard]] bool SortOneRun(const KeyRange& range) noexcept;

/// Sorts `all`, more than 256 keys, where it consists of a few long runs, ascending or descending,
/// and says whether it did. Otherwise runs that descend may have been reversed. Gives up at the
/// first short run. `block` is memory to work in, an element for each key.
[[nodiscard]] bool SortLongRuns(const KeyRange& all, std::span<std::int32_t> block) noexcept;

}  // namespace corvale::internal
