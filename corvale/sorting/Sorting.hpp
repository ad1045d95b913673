// Sorting: fixed-width text keys in ascending order, each with a companion integer.
//
// A key is exactly 32 characters. Keys are compared as bytes, unsigned, from the first to the last
// of the 32: blanks count like any other character, and so do NULs and bytes above 127. A companion
// list has one 64-bit integer for each key; it is moved wherever its key moves. Positions count
// from 1.
//
// Shape      `keys` and `companion` hold `n` elements each
// Bad input  every key is usable; each procedure says what counts and positions mean to it
// Aliasing   both are changed in place and do not overlap
// Threads    no state: any number of threads at once on different lists
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <cstdint>

namespace corvale::Sorting {

/// 32 characters, without a terminator.
using Key = std::array<char, 32>;

/// Sorts `keys` into ascending order and takes `companion` along.
///
/// Guaranteed: in place, without recursion; one allocation of 4 x `n` bytes, released before the
/// return, and none for `n` = 1; the time grows at most in proportion to `n`, whatever the keys
/// and their order: sorted, reversed, equal, a few values only, two lists appended, long common
/// beginnings. The same input gives the same result on every processor. Not guaranteed: the order
/// among equal keys, whose companions may come in any order (the sort is not stable). Despite its
/// name it needs no pivots; a single step with one is `Partition`.
///
/// Bad input  `n` below 1: nothing happens, the lists may be null. Where the 4 x `n` bytes are not
///            available, the process is stopped: "Error allocating %lu bytes" on standard error,
///            and exit status 1
CORVALE_API void QuickSortIterative(std::int32_t n, Key* keys, std::int64_t* companion) noexcept;

/// One partition step of a quicksort on the positions `low` to `high`: the last key is the pivot
/// and moves to the position that is returned; keys less than it stand before it in their order,
/// all others, equal ones too, behind it.
///
/// Bad input  `low` >= `high`: swaps the two keys and companions and returns `low`
[[nodiscard]] CORVALE_API std::int32_t Partition(std::int32_t low, std::int32_t high, Key* keys,
                                                 std::int64_t* companion) noexcept;

/// Exchanges two keys, which may be one and the same.
CORVALE_API void Swap_Str(Key& a, Key& b) noexcept;

/// Exchanges two integers, which may be one and the same.
CORVALE_API void Swap_Int8(std::int64_t& a, std::int64_t& b) noexcept;

/// Exchanges two integers, which may be one and the same.
CORVALE_API void Swap_Int4(std::int32_t& a, std::int32_t& b) noexcept;

}  // namespace corvale::Sorting
