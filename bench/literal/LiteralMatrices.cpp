#include "LiteralMatrices.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace corvale::literal {
namespace {

/// An n-by-n matrix by columns, counted from 1.
struct Square {
    explicit Square(std::int32_t n) : order(n), own(Count(), 0.0), elements(own.data()) {}
    Square(double* data, std::int32_t n) : order(n), elements(data) {}
    std::size_t Count() const {
        return static_cast<std::size_t>(order) * static_cast<std::size_t>(order);
    }
    Square(const Square&) = delete;  // `elements` may point into `own`
    Square& operator=(const Square&) = delete;
    double& operator()(std::int32_t i, std::int32_t j) const {
        return elements[std::ptrdiff_t{j - 1} * order + i - 1];
    }
    std::int32_t order;
    std::vector<double> own;
    double* elements;
};

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

/// One Gauss-Jordan step with the pivot in row p and column k.
void Eliminate(const Square& r, std::int32_t p, std::int32_t k) {
    const double q = 1.0 / r(p, k);
    r(p, k) = 1.0;
    for (std::int32_t i = 1; i <= r.order; ++i) r(i, k) = r(i, k) * q;
    for (std::int32_t j = 1; j <= r.order; ++j) {
        if (j == k) continue;
        const double t = r(p, j);
        r(p, j) = 0.0;
        for (std::int32_t i = 1; i <= r.order; ++i) r(i, j) = r(i, j) - r(i, k) * t;
    }
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

void MtxInv(const double* a, std::int32_t n, double* result) {
    const Square r(result, n), reduced(n);
    std::copy(a, a + r.Count(), result);
    std::vector<std::int32_t> record(static_cast<std::size_t>(n) + 1, 0);
    for (std::int32_t k = 1; k <= n; ++k) {
        std::int32_t p = 0;
        double largest = 0.0;
        for (std::int32_t i = 1; i <= n; ++i)
            if (record[static_cast<std::size_t>(i)] == 0 && std::fabs(r(i, k)) > largest)
                p = i, largest = std::fabs(r(i, k));
        if (p == 0) return;
        record[static_cast<std::size_t>(p)] = k;
        Eliminate(r, p, k);
    }
    std::copy(result, result + r.Count(), reduced.elements);
    for (std::int32_t j = 1; j <= n; ++j)
        for (std::int32_t i = 1; i <= n; ++i)
            r(record[static_cast<std::size_t>(i)], j) =
                reduced(i, record[static_cast<std::size_t>(j)]);
}

void MInv(const double* a, std::int32_t n, double* result) {
    const Square r(result, n);
    std::copy(a, a + r.Count(), result);
    for (std::int32_t k = 1; k <= n; ++k) {
        if (r(k, k) == 0.0) return std::fill(result, result + r.Count(), 0.0);
        Eliminate(r, k, k);
    }
}

void SqrMtx2Lta(const double* square, std::int32_t n, double* packed) {
    for (std::int32_t i = 0; i < n; ++i)
        for (std::int32_t j = 0; j <= i; ++j) *packed++ = square[std::ptrdiff_t{j} * n + i];
}

void Lta2SqrMtx(const double* packed, std::int32_t n, double* square) {
    for (std::int32_t i = 0; i < n; ++i)
        for (std::int32_t j = 0; j <= i; ++j)
            square[std::ptrdiff_t{j} * n + i] = square[std::ptrdiff_t{i} * n + j] = *packed++;
}

}  // namespace corvale::literal
