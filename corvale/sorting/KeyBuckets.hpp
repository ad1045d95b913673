// Internal to sorting/: not installed, may change in any commit.
//
// Long ranges: the keys are dealt into buckets by their first bytes that differ, in place.
#pragma once

#include <corvale/sorting/KeyRange.hpp>
#include <corvale/sorting/RangeStack.hpp>

#include <cstddef>

namespace corvale::internal {

/// Deals the keys of `range`, which begins at place `begin` of all keys, into buckets whose order
/// is that of the keys, and leaves the buckets that still need sorting on `pending`.
void DealIntoBuckets(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept;

}  // namespace corvale::internal
