// Internal to sorting/: not installed, may change in any commit.
//
// Short ranges: sorted by seven bytes of each key and its place in one word.
#pragma once

#include <corvale/sorting/KeyRange.hpp>
#include <corvale/sorting/RangeStack.hpp>

#include <cstddef>

namespace corvale::internal {

/// The longest range that `SortShortRange` takes: places fit the eight low bits of a word.
constexpr std::size_t kShortRange = 256;

/// Sorts `range`, which begins at place `begin` of all keys, and leaves on `pending` the parts
/// whose keys agree in all bytes that were looked at.
void SortShortRange(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept;

}  // namespace corvale::internal
