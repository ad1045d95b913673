#include "reference/MatrixInversion.hpp"

#include "reference/Square.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace corvale::reference {
namespace {

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

}  // namespace corvale::reference
