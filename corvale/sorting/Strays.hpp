// Internal to sorting/: not installed, may change in any commit.
//
// Keys that ascend but for a few strays, as in a sorted list that was changed here and there: the
// strays are set aside, sorted by themselves and merged again. Bench: NearlySorted in
// bench/SortBench.cpp.
#pragma once

#include <corvale/sorting/KeyRange.hpp>

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvale::internal {

/// Where all but one in sixteen of the keys ascend, moves the others to the end and returns how
/// many ascend before them. Otherwise returns 0 and has changed nothing; that is seen early where
/// strays are dense. `block` is memory to work in, an element for each key.
[[nodiscard]] std::size_t SetStraysAside(const KeyRange& all,
                                         std::span<std::int32_t> block) noexcept;

/// Merges the strays that were set aside behind `kept` keys, sorted by now, with these.
void MergeStrays(const KeyRange& all, std::size_t kept, std::span<std::int32_t> block) noexcept;

}  // namespace corvale::internal
