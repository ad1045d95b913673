// Functions of a real and a table search, step by step. For round-to-nearest.
#pragma once

#include <corvale/numeric/Elementary.hpp>

#include <cmath>
#include <cstdint>

namespace corvale::reference {

inline double CubRt(double x) {
    return std::copysign(std::pow(std::fabs(x), 0.3333333333333333), x);
}

inline double SerExp(double x) {
    if (std::fabs(x) > 0.75) return 1.0 / x;
    if (std::fabs(x) > 0.01) return (1.0 - Elementary::Exp(-100.0 * (x * x))) / x;
    double term = 100.0 * x, sum = term;
    for (int k = 2; k <= 21; ++k) {
        term = -term * (100.0 * (x * x)) / k;
        sum = sum + term;
        if (term < 1e-10 * x || term < 1e-24) break;
    }
    return sum;
}

/// For ascending tables and a value that is a number. `table[0]` is entry 1.
inline std::int32_t FindRecIdx(const double* table, std::int32_t n, double value) {
    const auto entry = [table](std::int32_t i) { return table[i - 1]; };
    if (entry(1) >= value) return 1;
    if (value >= entry(n)) return n;
    const double step = (entry(n) - entry(1)) / (n - 1);
    auto i = static_cast<std::int32_t>((value - entry(1)) / step + 1);
    if (i > n) i = n;  // rounding
    while (entry(i) > value)
        if (entry(--i) == value) return i;
    while (true) {
        if (value < entry(i + 1)) return i;
        if (entry(++i) == value) return i;
    }
}

}  // namespace corvale::reference
