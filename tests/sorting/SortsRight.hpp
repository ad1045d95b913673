// What every sort must hold.
#pragma once

#include "reference/inputs/KeyPatterns.hpp"

#include <numeric>
#include <vector>

namespace corvale::test {

/// Whether the keys come out ascending, every companion beside the key that it came with.
inline bool SortsRight(const std::vector<Sorting::Key>& before) {
    std::vector<Sorting::Key> keys = before;
    std::vector<std::int64_t> companion(keys.size());
    std::iota(companion.begin(), companion.end(), 0);
    Sorting::QuickSortIterative(static_cast<std::int32_t>(keys.size()), keys.data(),
                                companion.data());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto from = static_cast<std::size_t>(companion[i]);
        if (from >= keys.size() || keys[i] != before[from]) return false;
        if (i > 0 && reference::IsLess(keys[i], keys[i - 1])) return false;
    }
    std::sort(companion.begin(), companion.end());
    return std::adjacent_find(companion.begin(), companion.end()) == companion.end();
}

}  // namespace corvale::test
