#include <corvale/numeric/SmallHelpers.hpp>

#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/elementary/CubeRoots.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvale::GenFunctions {

namespace {

constexpr double kOneThird = 0.3333333333333333;
static_assert(kOneThird == 1.0 / 3.0);

// The sum for |x| up to 0.01. The stop tests compare signed terms: for positive x the second term
// is negative and ends it, for negative x the third (kept behaviour).
double SerExpSeries(double x) noexcept {
    const double square = 100.0 * (x * x);
    double term = 100.0 * x;
    double sum = term;
    for (int k = 2; k <= 21; ++k) {
        term = -term * square / k;
        sum += term;
        if (term < 1e-10 * x || term < 1e-24) break;
    }
    return sum;
}

std::int32_t CheckValue(char c) noexcept {
    if (c >= '1' && c <= '9') return c - '0';
    return c == '-' ? 1 : 0;
}

// FindRecIdx looks where linear interpolation points to, then a few entries around it, then at
// the whole table. The last search does not begin from the guess: the divisions of the guess run
// beside it, and a table that is uneven enough to need it would gain only a step or two.

// How far from the guess the second search reaches: enough for a step that varies by a few steps
// (FindRecIdx_jittered in bench/SmallBench.cpp).
constexpr std::int32_t kNear = 8;

/// The entry where linear interpolation puts `value`, counted from 0, at most n - 2.
std::int32_t Guess(const double* table, std::int32_t n, double value) noexcept {
    const double step = (table[n - 1] - table[0]) / (n - 1);
    const double index = (value - table[0]) / step + 1.0;
    if (!(index >= 1.0)) return 0;
    return index < n ? static_cast<std::int32_t>(index) - 1 : n - 2;
}

/// Of the ascending entries `first` to `last` - 1 the first that is not below `value`, else `last`.
///
/// Three entries divide the rest into quarters, and conditional moves follow: the three loads of a
/// round run at the same time and no branch depends on an entry, so that a round costs little more
/// than one of a bisection and there are half as many (FindRecIdx_exponential in
/// bench/SmallBench.cpp: 0.75 of the time of a bisection without branches).
const double* LowerBound(const double* first, const double* last, double value) noexcept {
    std::ptrdiff_t left = last - first;
    while (left >= 16) {
        const std::ptrdiff_t quarter = left / 4;
        const double *one = first + quarter, *two = one + quarter, *three = two + quarter;
        first = one[-1] < value ? one : first;
        first = two[-1] < value ? two : first;
        first = three[-1] < value ? three : first;
        left -= 3 * quarter;
    }
    while (left > 0) {
        const std::ptrdiff_t half = (left + 1) / 2;
        const double* middle = first + half;
        first = middle[-1] < value ? middle : first;
        left -= half;
    }
    return first;
}

/// The index, from 1, for a `value` that entries from `first` on equal: where a walk from `guess`,
/// one entry at a time, meets it. A walk down ends at the last of them, a walk up at the first one
/// that it comes to.
std::int32_t AmongEquals(const double* table, std::int32_t guess, std::int32_t first,
                         double value) noexcept {
    if (table[guess] < value) return first + 1;
    if (table[guess] == value) return guess + 2;  // the next one is equal, too: else it was found
    return static_cast<std::int32_t>(std::upper_bound(table + first, table + guess, value) - table);
}

/// The index, from 1, if entries from `low` + 1 to `high` bound `value`; `table[low]` is below it.
std::int32_t IndexBetween(const double* table, std::int32_t low, std::int32_t high, std::int32_t n,
                          double value) noexcept {
    const double* entry = LowerBound(table + low + 1, table + high, value);
    const auto index = static_cast<std::int32_t>(entry - table);
    if (*entry != value) return index;
    return AmongEquals(table, Guess(table, n, value), index, value);
}

}  // namespace

double CubRt(double x) noexcept {
    return std::copysign(internal::PowerOfThird(x), x);
}

double SerExp(double x) noexcept {
    if (std::fabs(x) > 0.75) return 1.0 / x;
    if (std::fabs(x) > 0.01) return (1.0 - Elementary::Exp(-100.0 * (x * x))) / x;
    return SerExpSeries(x);
}

void CkSum(std::string_view line, std::int32_t first, std::int32_t last, std::int32_t& sum,
           std::int32_t& status) noexcept {
    sum = 0;
    status = 0;
    if (first > last || first < 1) {
        status = 2;
        return;
    }
    const auto begin = std::min(static_cast<std::size_t>(first) - 1, line.size());
    const auto end = std::min(static_cast<std::size_t>(last), line.size());
    std::int64_t total = 0;
    for (std::size_t i = begin; i < end; ++i) total += CheckValue(line[i]);
    sum = static_cast<std::int32_t>(total % 10);
}

std::int32_t FindRecIdx(const double* table, std::int32_t n, double value) noexcept {
    if (n < 1) return 0;
    if (!(table[0] < value)) return 1;
    if (!(value < table[n - 1])) return n;

    const std::int32_t guess = Guess(table, n, value);
    if (table[guess] <= value && value < table[guess + 1]) return guess + 1;

    const std::int32_t low = std::max(guess - kNear, 0);
    const std::int32_t high = std::min(guess + kNear, n - 1);
    const bool isNear = table[low] < value && value < table[high];
    return isNear ? IndexBetween(table, low, high, n, value)
                  : IndexBetween(table, 0, n - 1, n, value);
}

std::int32_t Int2Logical(std::int32_t i) noexcept {
    return i != 0 ? 1 : 0;
}

std::int32_t Logical2Int(std::int32_t b) noexcept {
    return b;
}

std::int32_t InvalidFlag(std::int32_t i) noexcept {
    return i != 0 && i != 1 ? 1 : 0;
}

}  // namespace corvale::GenFunctions
