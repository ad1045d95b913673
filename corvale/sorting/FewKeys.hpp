// Internal to sorting/: not installed, may change in any commit.
//
// A few keys: at most as many as are ranked at once.
#pragma once

#include <corvale/sorting/KeyRange.hpp>
#include <corvale/sorting/WordRanks.hpp>

#include <cstddef>

namespace corvale::internal {

/// Sorts `range`, of one to kRanked keys.
void SortFewKeys(const KeyRange& range) noexcept;

/// Sorts `range` key by key, keeping the order of equal ones: for keys that stand in order but for
/// a few.
void InsertOneByOne(const KeyRange& range) noexcept;

/// The bytes in which keys of a range differ lie between these, `end` excluded; both are 0 where
/// all keys are equal.
struct Difference {
    std::size_t first;
    std::size_t end;
};
[[nodiscard]] Difference FindDifference(const KeyRange& range) noexcept;

/// A word holds seven bytes of a key and, below them, the key's place.
constexpr std::size_t kWindow = 7;
constexpr std::uint64_t kPlace = 0xFF;

}  // namespace corvale::internal
