#include <corvale/sorting/Sorting.hpp>

#include <corvale/sorting/Ways.hpp>
#include <corvale/sorting/WordRanks.hpp>

#include <cstddef>
#include <utility>

namespace corvale::Sorting {

// Which keys are sorted in which way. The first line that fits decides; docs/sorting.md has a picture.
//
//     all keys      up to 16                                   ranked against each other    FewKeys
//                   64 and more, up to 4 runs, each a sixteenth  merged                     KeyRuns
//                   ascending but for one in sixteen           the others apart, merged     Strays
//     a range       up to 256, one run                         as it is, or reversed        KeyRuns
//                   up to 256                                  by words of seven bytes      ShortRanges
//                   few distinct bytes                         buckets by ranks of bytes    RankedRule
//                   any other                                  buckets by interpolation     ScaledRule
//
// The ranges that are still to be sorted wait on a stack. Each step sorts one or splits it by bytes
// of its keys that differ; a byte that all keys of a range share is never looked at again, so each
// key takes part in a bounded number of steps.
// NOLINTNEXTLINE(readability-non-const-parameter)
void QuickSortIterative(std::int32_t n, Key* keys, std::int64_t* companion) noexcept {
    if (n < 2) return;
    const internal::KeyRange all{keys, companion, static_cast<std::size_t>(n)};
    internal::RangeStack pending(all.count);
    if (all.count <= internal::kRanked) return internal::SortFewKeys(all);
    const bool isLong = all.count > internal::kShortRange;
    if (isLong ? internal::SortLongRuns(all, pending.Block()) : internal::SortShortRuns(all))
        return;

    const std::size_t kept = isLong ? internal::SetStraysAside(all, pending.Block()) : 0;
    pending.Push(kept, all.count);
    while (!pending.IsEmpty()) {
        std::size_t begin = 0;
        const internal::KeyRange range = pending.Pop(all, begin);
        if (range.count <= internal::kShortRange)
            internal::SortShortRange(range, begin, pending);
        else
            internal::DealIntoBuckets(range, begin, pending);
    }
    if (kept > 0) internal::MergeStrays(all, kept, pending.Block());
}

std::int32_t Partition(std::int32_t low, std::int32_t high, Key* keys,
                       std::int64_t* companion) noexcept {
    const auto isLess = [keys](std::int32_t a, std::int32_t b) {
        return internal::IsLess(keys[a - 1], keys[b - 1]);
    };
    const auto exchange = [keys, companion](std::int32_t a, std::int32_t b) {
        std::swap(keys[a - 1], keys[b - 1]);
        std::swap(companion[a - 1], companion[b - 1]);
    };
    std::int32_t behind = low;  // the first position that is not known to hold a lesser key
    for (std::int32_t j = low; j < high; ++j)
        if (isLess(j, high)) exchange(behind++, j);
    exchange(behind, high);
    return behind;
}

void Swap_Str(Key& a, Key& b) noexcept {
    std::swap(a, b);
}

void Swap_Int8(std::int64_t& a, std::int64_t& b) noexcept {
    std::swap(a, b);
}

void Swap_Int4(std::int32_t& a, std::int32_t& b) noexcept {
    std::swap(a, b);
}

}  // namespace corvale::Sorting
