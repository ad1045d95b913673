// Small helpers: two functions of a real, a line checksum, a table search, logical values.
//
// A logical value is a 32-bit integer, 1 for true and 0 for false.
//
// Bad input  nothing fails but `CkSum`, which says so in its status
// Threads    no state, no allocation: any number of threads at once
// Exactness  fixed order of operations, the same bits everywhere, around the one call of
//            Elementary.hpp that a comment names, correctly rounded. Which NaN comes out, its sign
//            included, is not promised
//
// Functions       CubRt  SerExp
// Lines           CkSum
// Tables          FindRecIdx
// Logical values  Int2Logical  Logical2Int  InvalidFlag
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>
#include <string_view>

namespace corvale::GenFunctions {

/// The cube root of `x`, with its sign (-8 gives -2, -0.0 gives -0.0).
///
/// Units      the cube root of that of `x`
/// Exactness  |x| to the power of the double below one third, correctly rounded; the cube root
///            itself is Elementary::CubeRoot
[[nodiscard]] CORVALE_API double CubRt(double x) noexcept;

/// (1 - exp(-100 x^2)) / x, also near 0, where it is 0.
///
/// Kept behaviour: beyond 0.75 it is 1/x, the exponential being below 4e-25. Up to 0.01 it is
/// a series whose stop tests look at signed terms: it ends after two terms for positive x
/// (100 x - 5000 x^3), after up to three for negative x. What is left out is up to 4.2e-8 of the
/// value for negative x, and up to 1.7e-5 for positive x.
///
/// Units      `x` has none
/// Bad input  an infinity gives 0 with its sign
/// Exactness  one exponential between 0.01 and 0.75
[[nodiscard]] CORVALE_API double SerExp(double x) noexcept;

/// The checksum of the characters `first` to `last` of `line`, counted from 1: the digits count
/// their value, each '-' counts 1, all others nothing, and `sum` is the total modulo 10.
///
/// Width      a `last` beyond the text means its end
/// Bad input  `first` > `last` or `first` < 1: `status` 2 and `sum` 0; otherwise `status` 0
/// Aliasing   `sum` and `status` are separate objects
CORVALE_API void CkSum(std::string_view line, std::int32_t first, std::int32_t last,
                       std::int32_t& sum, std::int32_t& status) noexcept;

/// The index i, from 1, with table(i) <= `value` < table(i + 1); 1 up to the first entry and `n`
/// from the last one on.
///
/// Kept behaviour: among equal entries the index is where a walk, one entry at a time from the one
/// that linear interpolation gives, meets `value`: downwards the last of them, upwards the first
/// above the start. For (1, 2, 2, 2, 5) and 2 the start is 2 and the index 3. The time is that of a
/// bisection at most, however uneven the table.
///
/// Units      `table` and `value` share any unit
/// Shape      `n` entries, ascending
/// Bad input  `n` < 1 gives 0 and `table` is not read. With NaN, or a table that does not ascend,
///            some index from 1 to `n`: 1 for a NaN `value`
[[nodiscard]] CORVALE_API std::int32_t FindRecIdx(const double* table, std::int32_t n,
                                                  double value) noexcept;

/// 1 for every `i` but 0.
[[nodiscard]] CORVALE_API std::int32_t Int2Logical(std::int32_t i) noexcept;

/// The stored value of the logical `b`, 1 or 0.
///
/// Bad input  another value is returned as it is
[[nodiscard]] CORVALE_API std::int32_t Logical2Int(std::int32_t b) noexcept;

/// 1 for every `i` that is neither 0 nor 1, negative ones included.
[[nodiscard]] CORVALE_API std::int32_t InvalidFlag(std::int32_t i) noexcept;

}  // namespace corvale::GenFunctions
