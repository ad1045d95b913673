// Cholesky: solve A x = b for a symmetric A, and invert A, by triangular factors.
//
// `Cholesky` takes square roots and serves positive definite matrices; `Cholesky2` takes none and
// serves every symmetric matrix whose pivots differ from zero, definite or not. `CholeskyEach` and
// `Cholesky2Each` do the same for many systems of one order, several at a time. For all:
//
// Units      any, as long as those of `b`, `x` and the two matrices fit together
// Shape      `a` and `inverse` n by n, column by column, element (i,j) at position (j-1) n + i;
//            `b` and `x` have n elements. Only the diagonal and the elements above it are read from
//            `a`; every element of `inverse` and `x` is written
// Bad input  nothing is tested or reported: a pivot that is zero, negative under a square root, or
//            not finite mostly shows as infinities and NaN in the results. n < 1: nothing is
//            touched, the pointers may be null. Without memory for the factors every result is NaN
// Aliasing   `inverse` and `x` may overlap `a` and `b`: the results are those of separate arrays.
//            Where `inverse` and `x` overlap each other, `x` is written last
// Threads    no state: any number of threads at once. Up to n = 16 nothing is allocated
// Exactness  every element is the same to the last bit on every processor and with every compiler:
//            one fixed order of operations each, no fused ones; sums go in increasing index, those
//            of the back substitution in decreasing. That an element is a NaN is the same
//            everywhere, its sign and payload are not promised
//
// Cholesky  Cholesky2  CholeskyEach  Cholesky2Each
#pragma once

#include <corvale/base/Module.hpp>
#include <corvale/numeric/Views.hpp>

#include <cstdint>

namespace corvale::GenFunctions {

/// Solves A x = b by A = U'U, U upper triangular, and forms the inverse of A as W W' with W the
/// inverse of U.
///
/// Shape      as above; `inverse` is symmetric element for element
/// Bad input  where A is not positive definite the results hold NaN or infinities
CORVALE_API void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse,
                          double* x) noexcept;

/// Solves A x = b by A = U'DU, U unit upper triangular and D diagonal, and forms the inverse of A
/// as W D^-1 W' with W the inverse of U: element (i,j), i <= j, is the sum of
/// (W(i,k) 1/D(k)) W(j,k) in increasing k.
///
/// Shape      as above; `inverse` is symmetric element for element, and its last diagonal element
///            is exactly 1/D(n)
/// Bad input  a D(k) of zero gives NaN or infinities, which spread; an indefinite A is no bad input
CORVALE_API void Cholesky2(const double* a, const double* b, std::int32_t n, double* inverse,
                           double* x) noexcept;

/// `Cholesky` for each matrix of `a` with the vector of `b` that has its number. Up to order 16 at a
/// multiple of its speed; what one matrix holds changes neither speed nor results of the others.
///
/// Shape      matrices and vectors with any strides and distances; the order is the rows of `a`, the
///            count that of `a`
/// Bad input  nothing is written where `a` is not square or has no elements, where `inverse`, `b` or
///            `x` are smaller, or where there are fewer of them; without memory for the work above
///            order 16 every result is NaN
/// Aliasing   a result may overlap `a` and `b` of its own number in any way, not those of another
/// Exactness  each result has the bits that `Cholesky` gives
CORVALE_API void CholeskyEach(MatrixSeries<const double> a, VectorSeries<const double> b,
                              MatrixSeries<double> inverse, VectorSeries<double> x) noexcept;

/// `Cholesky2` for each matrix, as `CholeskyEach` is `Cholesky`.
///
/// Shape      as there
/// Bad input  as there
/// Aliasing   as there
/// Exactness  each result has the bits that `Cholesky2` gives
CORVALE_API void Cholesky2Each(MatrixSeries<const double> a, VectorSeries<const double> b,
                               MatrixSeries<double> inverse, VectorSeries<double> x) noexcept;

}  // namespace corvale::GenFunctions
