// Integer lists without repetitions, comparing every pair.
#pragma once

#include <cstdint>
#include <utility>

namespace corvale::reference {

inline void IDupe(std::int32_t* list, std::int32_t& n) {
    if (n < 2) return;
    int count = 0;
    for (int i = 0; i < n - 1; ++i) {
        bool isRepeated = false;
        for (int j = i + 1; j < n && list[i] != 0 && !isRepeated; ++j)
            isRepeated = list[j] == list[i];
        if (isRepeated) list[i] = 0;
        if (list[i] == 0) ++count;
    }
    if (count == 0) return;
    int kept = 0;
    for (int i = 0; i < n; ++i) {
        if (list[i] <= 0) continue;
        list[kept] = list[i];
        if (kept != i) list[i] = 0;
        ++kept;
    }
    n = kept;
}

inline void ISort(std::int32_t order, std::int32_t* list, std::int32_t& n) {
    if (n == 1 && list[0] == 0) n = 0;
    if (n < 2) return;
    IDupe(list, n);
    const std::int64_t direction = order < 0 ? -1 : 1;
    for (int i = 0; i < n - 1; ++i)
        for (int j = i + 1; j < n; ++j)
            if ((std::int64_t{list[j]} - list[i]) * direction < 0) std::swap(list[i], list[j]);
}

}  // namespace corvale::reference
