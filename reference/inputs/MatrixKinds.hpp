// Matrices of every kind that fails in a way of its own, column by column: inputs of tests, fuzz
// targets and benchmarks.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace corvale::reference {

using Matrix = std::vector<double>;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Uniform in [-0.5, 0.5], the same on every machine.
inline Matrix RandomMatrix(std::int32_t rows, std::int32_t columns, std::int32_t seed) {
    std::mt19937_64 bits(static_cast<std::uint64_t>(seed));
    Matrix m(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
    for (double& value : m) value = static_cast<double>(bits() >> 11) * 0x1p-53 - 0.5;
    return m;
}

inline double& Element(Matrix& m, std::int32_t n, std::int32_t i, std::int32_t j) {
    return m[static_cast<std::size_t>(j % n) * static_cast<std::size_t>(n) +
             static_cast<std::size_t>(i % n)];
}

/// M M' + 0.1 I for a random M.
inline Matrix PositiveDefinite(std::int32_t n) {
    const Matrix m = RandomMatrix(n, n, n);
    const auto order = static_cast<std::size_t>(n);
    Matrix a(m.size());
    for (std::int32_t j = 0; j < n; ++j)
        for (std::int32_t i = 0; i < n; ++i) {
            double sum = i == j ? 0.1 : 0.0;
            for (std::size_t k = 0; k < m.size(); k += order)
                sum += m[k + static_cast<std::size_t>(i)] * m[k + static_cast<std::size_t>(j)];
            Element(a, n, i, j) = sum;
        }
    return a;
}

inline Matrix Random(std::int32_t n) {
    return RandomMatrix(n, n, 1000 + n);
}

/// Small whole numbers: many equal magnitudes, many exact zeros during elimination.
inline Matrix Ties(std::int32_t n) {
    Matrix a = Random(n);
    for (double& value : a) value = std::nearbyint(3.0 * value);
    return a;
}

/// A column of zeros, of either sign.
inline Matrix Singular(std::int32_t n) {
    Matrix a = Random(n);
    for (std::int32_t i = 0; i < n; ++i) Element(a, n, i, n / 2) = i % 2 == 0 ? 0.0 : -0.0;
    return a;
}

/// Positive definite but for one row and column that repeat others.
inline Matrix NearlySingular(std::int32_t n) {
    Matrix a = PositiveDefinite(n);
    for (std::int32_t i = 0; i < n; ++i) Element(a, n, i, n / 3) = Element(a, n, i, 2 * n / 3);
    for (std::int32_t i = 0; i < n; ++i) Element(a, n, n / 3, i) = Element(a, n, 2 * n / 3, i);
    return a;
}

inline Matrix With(Matrix a, std::int32_t n, std::int32_t i, std::int32_t j, double value) {
    Element(a, n, i, j) = Element(a, n, j, i) = value;
    return a;
}

inline Matrix Scaled(Matrix a, double factor) {
    for (double& value : a) value *= factor;
    return a;
}

/// Rows of very different size, so that intermediate sums overflow.
inline Matrix Uneven(std::int32_t n) {
    Matrix a = PositiveDefinite(n);
    for (std::int32_t j = 0; j < n; ++j)
        for (std::int32_t i = 0; i < n; ++i)
            Element(a, n, i, j) *= std::ldexp(1.0, (i % 7 - 3) * 90 + (j % 7 - 3) * 90);
    return a;
}

struct MatrixKind {
    const char* name;
    Matrix (*make)(std::int32_t n);
};

inline constexpr MatrixKind kMatrixKinds[] = {
    {"positive definite", PositiveDefinite},
    {"random", Random},
    {"ties", Ties},
    {"a column of zeros", Singular},
    {"nearly singular", NearlySingular},
    {"a NaN early", [](std::int32_t n) { return With(PositiveDefinite(n), n, 0, 1, kNaN); }},
    {"a NaN late", [](std::int32_t n) { return With(Random(n), n, n / 2, n - 1, kNaN); }},
    {"a NaN pivot",
     [](std::int32_t n) { return With(PositiveDefinite(n), n, n / 2, n / 2, kNaN); }},
    {"infinite",
     [](std::int32_t n) { return With(PositiveDefinite(n), n, n / 3, n - 1, kInfinity); }},
    {"an infinite pivot",
     [](std::int32_t n) { return With(PositiveDefinite(n), n, n - 1, n - 1, -kInfinity); }},
    {"a zero pivot", [](std::int32_t n) { return With(PositiveDefinite(n), n, 0, 0, -0.0); }},
    {"the last pivot zero", [](std::int32_t n) { return With(Ties(n), n, n - 1, n - 1, 0.0); }},
    {"subnormal", [](std::int32_t n) { return Scaled(PositiveDefinite(n), 0x1p-1060); }},
    {"huge", [](std::int32_t n) { return Scaled(PositiveDefinite(n), 0x1p1020); }},
    {"uneven", Uneven},
    {"zeros", [](std::int32_t n) { return Scaled(Random(n), 0.0); }},
};

}  // namespace corvale::reference
