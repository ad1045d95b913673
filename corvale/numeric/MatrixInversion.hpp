// Matrix inversion: Gauss-Jordan elimination of a general square matrix.
//
// `MtxInv` picks the largest pivot of each column; `MInv` takes the diagonal elements as they come.
// Neither applies a tolerance: a matrix that is singular but for rounding gives huge elements.
// `MtxInvEach` and `MInvEach` do the same for many matrices of one shape, several at a time. For all:
//
// Units      the elements of `result` have the reciprocal unit of those of `a`
// Shape      `a` r by c, any strides; `result` at least r by c, of which r by c are written
// Bad input  a `result` with fewer rows or columns than `a`, or an `a` without elements: nothing is
//            written. NaN and infinities spread. Without memory for the work every element is NaN
// Aliasing   `result` may be `a` itself or overlap it in any way: the result is that of separate
//            arrays. `a` is changed only where they overlap
// Threads    no state: any number of threads at once. Up to order 16, and for 64 elements of a
//            matrix that is not square, nothing is allocated
// Exactness  every element is the same to the last bit on every processor, with every compiler and
//            for every stride: one fixed order of operations each, no fused operations. That an
//            element is a NaN is the same everywhere, its sign and payload are not promised
//
// MtxInv  MInv  MtxInvEach  MInvEach
#pragma once

#include <corvale/base/Module.hpp>
#include <corvale/numeric/Views.hpp>

namespace corvale::GenFunctions {

/// The inverse of `a`, with partial pivoting: in each step the row with the largest magnitude among
/// those not used yet, the first of equals; a NaN is never chosen.
///
/// Bad input  not square: a copy of `a`. Singular, which is only noticed when every row that is
///            left holds an exact zero or NaN in the column: the matrix as far as it was reduced
CORVALE_API void MtxInv(MatrixView<const double> a, MatrixView<double> result) noexcept;

/// The inverse of `a`, without pivoting.
///
/// Bad input  not square, or a pivot of exactly zero: all zeros. A NaN pivot is taken like any
/// other
CORVALE_API void MInv(MatrixView<const double> a, MatrixView<double> result) noexcept;

/// `MtxInv` for each matrix of `a`. Square ones up to order 16 at a multiple of its speed; what one
/// matrix holds changes neither speed nor results of the others.
///
/// Shape      matrices with any strides and distances; the count is that of `a`
/// Bad input  fewer matrices in `result` than in `a`: nothing is written; otherwise as `MtxInv`
/// Aliasing   a result may overlap the matrix of its own number in any way, not another one
/// Exactness  each result has the bits that `MtxInv` gives
CORVALE_API void MtxInvEach(MatrixSeries<const double> a, MatrixSeries<double> result) noexcept;

/// `MInv` for each matrix, as `MtxInvEach` is `MtxInv`.
///
/// Shape      as there
/// Bad input  fewer matrices in `result` than in `a`: nothing is written; otherwise as `MInv`
/// Aliasing   as there
/// Exactness  each result has the bits that `MInv` gives
CORVALE_API void MInvEach(MatrixSeries<const double> a, MatrixSeries<double> result) noexcept;

}  // namespace corvale::GenFunctions
