// The order of keys and one step of the quicksort, exchange by exchange.
#pragma once

#include <corvale/sorting/Sorting.hpp>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace corvale::reference {

using Sorting::Key;

/// Whether `a` comes before `b`: bytes as unsigned values.
inline bool IsLess(const Key& a, const Key& b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(), [](char left, char right) {
            return static_cast<unsigned char>(left) < static_cast<unsigned char>(right);
        });
}

/// Returns the final index of the pivot, `keys[high]` counted from 1.
inline std::int32_t Partition(std::int32_t low, std::int32_t high, Key* keys,
                              std::int64_t* companion) {
    const auto swap = [&](std::int32_t i, std::int32_t j) {
        std::swap(keys[i - 1], keys[j - 1]);
        std::swap(companion[i - 1], companion[j - 1]);
    };
    const Key pivot = keys[high - 1];
    std::int32_t i = low - 1;
    for (std::int32_t j = low; j < high; ++j)
        if (IsLess(keys[j - 1], pivot)) swap(++i, j);
    swap(low >= high ? low : i + 1, high);
    return low >= high ? low : i + 1;
}

}  // namespace corvale::reference
