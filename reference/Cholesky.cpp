#include "reference/Cholesky.hpp"

#include "reference/Square.hpp"

#include <cmath>
#include <cstddef>
#include <vector>

namespace corvale::reference {
namespace {

using Column = std::vector<double>;  // element 0 is not used

/// inverse(i,j) = inverse(j,i) = the sum over k of z(i,k) w(j,k), i <= j.
void Multiply(const Square& z, const Square& w, const Square& inverse) {
    for (std::int32_t i = 1; i <= z.order; ++i)
        for (std::int32_t j = i; j <= z.order; ++j) {
            double s = 0.0;
            for (std::int32_t k = 1; k <= z.order; ++k) s += z(i, k) * w(j, k);
            inverse(i, j) = inverse(j, i) = s;
        }
}

/// The inverse of an upper triangular matrix.
void InvertUpper(const Square& u, const Square& w) {
    for (std::int32_t k = 1; k <= u.order; ++k) w(k, k) = 1.0 / u(k, k);
    for (std::int32_t i = 1; i < u.order; ++i)
        for (std::int32_t j = i + 1; j <= u.order; ++j) {
            double s = 0.0;
            for (std::int32_t k = i; k < j; ++k) s += w(i, k) * u(k, j);
            w(i, j) = -(s * w(j, j));
        }
}

/// x from u x = y.
void SolveUpper(const Square& u, const Column& y, double* x) {
    const std::int32_t n = u.order;
    x[n - 1] = y[static_cast<std::size_t>(n)] / u(n, n);
    for (std::int32_t k = n - 1; k >= 1; --k) {
        double s = 0.0;
        for (std::int32_t j = n; j > k; --j) s += u(k, j) * x[j - 1];
        x[k - 1] = (y[static_cast<std::size_t>(k)] - s) * (1.0 / u(k, k));
    }
}

/// y from u' y = b.
Column SolveTransposed(const Square& u, const double* b) {
    Column y(static_cast<std::size_t>(u.order) + 1);
    y[1] = b[0] / u(1, 1);
    for (std::int32_t k = 2; k <= u.order; ++k) {
        double s = 0.0;
        for (std::int32_t i = 1; i < k; ++i) s += u(i, k) * y[static_cast<std::size_t>(i)];
        y[static_cast<std::size_t>(k)] = 1.0 / u(k, k) * (b[k - 1] - s);
    }
    return y;
}

}  // namespace

void Cholesky(const double* a, const double* b, std::int32_t n, double* inverse, double* x) {
    const Square given(const_cast<double*>(a), n);
    const Square u(n), w(n);
    for (std::int32_t k = 1; k <= n; ++k) {
        double s = 0.0;
        for (std::int32_t i = 1; i < k; ++i) s += u(i, k) * u(i, k);
        u(k, k) = std::sqrt(given(k, k) - s);
        for (std::int32_t j = k + 1; j <= n; ++j) {
            s = 0.0;
            for (std::int32_t i = 1; i < k; ++i) s += u(i, k) * u(i, j);
            u(k, j) = (given(k, j) - s) / u(k, k);
        }
    }
    SolveUpper(u, SolveTransposed(u, b), x);
    InvertUpper(u, w);
    Multiply(w, w, Square(inverse, n));
}

void Cholesky2(const double* a, const double* b, std::int32_t n, double* inverse, double* x) {
    const Square given(const_cast<double*>(a), n);
    const Square u(n), v(n), w(n), z(n);
    for (std::int32_t k = 1; k <= n; ++k) {
        double s = 0.0;
        for (std::int32_t j = 1; j < k; ++j) s += v(j, j) * (u(j, k) * u(j, k));
        v(k, k) = given(k, k) - s;
        u(k, k) = 1.0;
        for (std::int32_t j = k + 1; j <= n; ++j) {
            s = 0.0;
            for (std::int32_t m = 1; m < k; ++m) s += (v(m, m) * u(m, k)) * u(m, j);
            u(k, j) = (given(k, j) - s) * (1.0 / v(k, k));
            v(k, j) = v(k, k) * u(k, j);
        }
    }
    SolveUpper(v, SolveTransposed(u, b), x);
    InvertUpper(u, w);
    for (std::int32_t k = 1; k <= n; ++k)
        for (std::int32_t i = 1; i <= n; ++i) z(i, k) = w(i, k) * (1.0 / v(k, k));
    Multiply(z, w, Square(inverse, n));
    inverse[z.Count() - 1] = 1.0 / v(n, n);
}

}  // namespace corvale::reference
