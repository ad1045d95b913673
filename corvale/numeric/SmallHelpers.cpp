#include <corvale/numeric/SmallHelpers.hpp>

#include <algorithm>
#include <cmath>

namespace corvale::GenFunctions {

namespace {

constexpr double kOneThird = 0.3333333333333333;
static_assert(kOneThird == 1.0 / 3.0);

// The sum for |x| up to 0.01. The stop tests compare signed terms: for positive x the second term
// is negative and ends it, for negative x the third. That is how the function is defined.
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

// Whether the entries up to `value` count as below it, or only those less than it.
enum class Below { UpTo, Less };

template <Below kBelow>
bool IsBelow(double entry, double value) noexcept {
    return kBelow == Below::UpTo ? entry <= value : entry < value;
}

// How many of the entries `table[first]` to `table[end - 1]` come first and are below `value`, plus
// `first`. Both ends of the halving are inside the range, whatever it holds; no branch depends on
// an entry, so the processor does not run ahead: both entries that may be next are fetched before
// it is known which (bench: FindRecIdx_exponential).
template <Below kBelow>
std::int32_t Bisect(const double* table, std::int32_t first, std::int32_t end,
                    double value) noexcept {
    std::int32_t count = end - first;
    while (count > 0) {
        const std::int32_t half = count / 2;
        __builtin_prefetch(table + first + half / 2);
        __builtin_prefetch(table + first + (count - half) + half / 2);
        const bool isBelow = IsBelow<kBelow>(table[first + half], value);
        first += isBelow ? count - half : 0;
        count = half;
    }
    return first;
}

// How far the walk looks entry by entry before it bisects the rest. Enough for nearly even tables;
// bench: FindRecIdx in bench/SmallBench.cpp.
constexpr std::int32_t kStride = 8;

// The place in the table where linear interpolation puts `value`, from 0 to n - 2.
std::int32_t Guess(const double* table, std::int32_t n, double value) noexcept {
    const double step = (table[n - 1] - table[0]) / (n - 1);
    const double place = (value - table[0]) / step + 1.0;
    if (!(place >= 1.0)) return 0;
    return place < n ? static_cast<std::int32_t>(place) - 1 : n - 2;
}

// From an entry above `value` down to the last one that is not.
std::int32_t WalkDown(const double* table, std::int32_t guess, double value) noexcept {
    const std::int32_t near = std::max(guess - kStride, 0);
    if (table[near] > value) return Bisect<Below::UpTo>(table, 0, near, value) - 1;
    return Bisect<Below::UpTo>(table, near, guess, value) - 1;
}

// From an entry not above `value` up to the first later one equal to it, or else to the last below.
std::int32_t WalkUp(const double* table, std::int32_t guess, std::int32_t n,
                    double value) noexcept {
    const std::int32_t near = std::min(guess + kStride, n - 1);
    const bool isNear = !(table[near] < value);
    const std::int32_t begin = isNear ? guess + 1 : near;
    const std::int32_t place = Bisect<Below::Less>(table, begin, isNear ? near : n - 1, value);
    return table[place] == value ? place : place - 1;
}

}  // namespace

double CubRt(double x) noexcept {
    return std::copysign(std::pow(std::fabs(x), kOneThird), x);
}

double SerExp(double x) noexcept {
    if (std::fabs(x) > 0.75) return 1.0 / x;
    if (std::fabs(x) > 0.01) return (1.0 - std::exp(-100.0 * (x * x))) / x;
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
    const std::int32_t place = table[guess] > value       ? WalkDown(table, guess, value)
                               : value < table[guess + 1] ? guess
                                                          : WalkUp(table, guess, n, value);
    return place + 1;
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
