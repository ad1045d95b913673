// Internal to sorting/: not installed, may change in any commit.
//
// The ways of sorting that QuickSortIterative chooses from, a file each. docs/sorting.md has a table of
// them and a picture.
#pragma once

#include <corvale/sorting/KeyRange.hpp>
#include <corvale/sorting/RangeStack.hpp>

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvale::internal {

/// FewKeys.cpp: sorts `range`, of one to kRanked keys.
void SortFewKeys(const KeyRange& range) noexcept;

/// FewKeys.cpp: sorts `range` key by key, keeping the order of equal ones: for keys that stand in order
/// but for a few.
void InsertOneByOne(const KeyRange& range) noexcept;

/// FewKeys.cpp: the bytes in which keys of `range` differ lie between `first` and `end`; both are 0 where
/// all keys are equal.
struct Difference {
    std::size_t first;
    std::size_t end;
};
[[nodiscard]] Difference FindDifference(const KeyRange& range) noexcept;

/// KeyRuns.cpp: sorts `range` where it ascends or descends as a whole, and says whether it does. Ends at
/// the first pair that does not. `range` is not empty.
[[nodiscard]] bool SortOneRun(const KeyRange& range) noexcept;

/// KeyRuns.cpp: sorts `all`, more than 256 keys, where it consists of a few long runs, ascending or
/// descending, and says whether it did. Otherwise runs that descend may have been reversed. Gives up at
/// the first short run. `block` is memory to work in, an element for each key.
[[nodiscard]] bool SortLongRuns(const KeyRange& all, std::span<std::int32_t> block) noexcept;

/// KeyRuns.cpp: the same for up to 256 keys, from 64 on. Equal keys keep their order.
[[nodiscard]] bool SortShortRuns(const KeyRange& range) noexcept;

/// Strays.cpp: keys that ascend but for a few strays, as in a sorted list that was changed here and
/// there. Where all but one in sixteen ascend, moves the others to the end and returns how many ascend
/// before them. Otherwise returns 0 and has changed nothing; that is seen early where strays are dense.
/// `block` is memory to work in, an element for each key. Bench: NearlySorted in bench/SortBench.cpp.
[[nodiscard]] std::size_t SetStraysAside(const KeyRange& all,
                                         std::span<std::int32_t> block) noexcept;

/// Strays.cpp: merges the strays that were set aside behind `kept` keys, sorted by now, with these.
void MergeStrays(const KeyRange& all, std::size_t kept, std::span<std::int32_t> block) noexcept;

/// ShortRanges.cpp: the longest range that is sorted by words; places fit the eight low bits of one.
constexpr std::size_t kShortRange = 256;

/// ShortRanges.cpp: sorts `range`, of kShortRange keys at most, which begins at place `begin` of all keys,
/// and leaves on `pending` the parts whose keys agree in all bytes that were looked at.
void SortShortRange(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept;

/// KeyBuckets.cpp: deals the keys of `range`, which begins at place `begin` of all keys, into buckets whose
/// order is that of the keys, in place, and leaves the buckets that still need sorting on `pending`.
void DealIntoBuckets(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept;

}  // namespace corvale::internal
