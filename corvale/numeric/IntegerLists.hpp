// Integer lists: duplicates out, and sorted.
//
// A list is meant for positive integers; 0 marks an empty slot. `n` is its count on entry and the
// count of what is kept on return.
//
// Shape      `list` holds `n` elements
// Bad input  `n` below 1: nothing happens, `list` may be null. each procedure tells what becomes of
//            negative integers
// Aliasing   `list` is changed in place; `n` is not one of its elements
// Threads    no state: any number of threads at once on different lists
//
// Scratch    lists of more than 256 allocate up to 16 bytes an element for the length of the call.
//            If the allocation fails the result is the same, in O(n^2) time (up to 20 s for a
//            million); otherwise the time grows with the length
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>

namespace corvale::GenFunctions {

/// Removes empty slots and duplicates; of equal values the last one stays. What is kept moves to
/// the front in its order, and 0 fills the rest: (5, 3, 5) becomes (3, 5, 0) with `n` = 2.
///
/// Kept behaviour: slot `n` never counts as empty, and if no other slot is empty or repeated
/// nothing changes: (7, 8, 0) stays as it is, with `n` = 3, and so do negative values. Otherwise
/// negative values are dropped like zeros, but a negative value stays in its slot unless a kept
/// value is moved there: (6, 6, -1) becomes (6, 0, -1) with `n` = 1.
CORVALE_API void IDupe(std::int32_t* list, std::int32_t& n) noexcept;

/// Does what `IDupe` does, then sorts what is kept: ascending for `order` 0 or above, descending
/// for `order` below 0. A list of one 0 becomes an empty one, with `n` = 0.
CORVALE_API void ISort(std::int32_t order, std::int32_t* list, std::int32_t& n) noexcept;

}  // namespace corvale::GenFunctions
