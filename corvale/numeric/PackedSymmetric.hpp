// Packed symmetric matrices: the lower triangle alone, row by row.
//
// The packed form of an n-by-n symmetric matrix has n(n+1)/2 elements: (1,1), (2,1), (2,2), (3,1),
// (3,2), (3,3), (4,1) and so on. Element (i,j) with j <= i is at position i(i-1)/2 + j, counted
// from 1. For every procedure:
//
// Bad input  any element value is moved as it is, NaN and -0.0 included
// Aliasing   input and result must not share elements; where they do, those elements end up with
//            unspecified values of the input, and nothing outside the result is written
// Exactness  elements are moved, never computed
// Threads    no state: any number of threads at once
//
// Sizes    SizeOfLta  SizeOfSqrMtx
// Convert  SqrMtx2Lta  Lta2SqrMtx
#pragma once

#include <corvale/base/Module.hpp>
#include <corvale/numeric/Views.hpp>

#include <cstdint>

namespace corvale::GenFunctions {

/// The packed length of a square matrix: n(n+1)/2, n being its row count; 0 for an empty one.
///
/// Shape      only the row count of `square` is used
/// Bad input  from n = 65536 on, where the length does not fit: 2147483647
[[nodiscard]] CORVALE_API std::int32_t SizeOfLta(MatrixView<const double> square) noexcept;

/// The order of the square matrix for a packed array: the largest n with n(n+1)/2 <= its length.
///
/// Shape      only the length of `packed` is used
/// Bad input  none: exact for every length, 65535 for 2147483647
[[nodiscard]] CORVALE_API std::int32_t SizeOfSqrMtx(VectorView<const double> packed) noexcept;

/// Packs the lower triangle of `square`. Elements above the diagonal are never read.
///
/// Shape      `square` n by n or wider; `packed` holds at least `SizeOfLta(square)` elements, of
///            which exactly that many are written
/// Bad input  fewer columns than rows, or a shorter `packed`: nothing is written
CORVALE_API void SqrMtx2Lta(MatrixView<const double> square, VectorView<double> packed) noexcept;

/// Writes each packed element to both of its places in `square`, so that it is symmetric.
///
/// Shape      n = `SizeOfSqrMtx(packed)`; `square` n by n or larger, rows and columns 1 to n of it
///            are written
/// Bad input  packed elements after the last complete row are ignored; a smaller `square` is left
///            as it is
CORVALE_API void Lta2SqrMtx(VectorView<const double> packed, MatrixView<double> square) noexcept;

}  // namespace corvale::GenFunctions
