#include <corvale/sorting/Ways.hpp>

#include <corvale/sorting/BucketRules.hpp>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <utility>

namespace corvale::internal {

namespace {

// More buckets miss the caches, fewer take more passes; bench: Random and Prefix, a million keys,
// in bench/SortBench.cpp.
constexpr std::size_t kMostBuckets = 512;
constexpr std::size_t kFewestBuckets = 16;
constexpr std::size_t kKeysPerBucket = 16;

struct Bucket {
    std::uint32_t next;  // the first place not yet filled
    std::uint32_t end;
};
using Buckets = std::array<Bucket, kMostBuckets>;

// Counts the keys of each bucket and says whether the rule has one for each key.
template <class Rule>
bool CountKeys(const KeyRange& range, const Rule& rule, Buckets& buckets) noexcept {
    for (std::size_t i = 0; i < range.count; ++i) {
        const std::size_t bucket = rule(range.keys[i]);
        if (bucket >= kNoBucket) return false;
        ++buckets[bucket].end;
    }
    std::uint32_t place = 0;
    for (std::size_t b = 0; b < rule.Count(); ++b) {
        buckets[b].next = place;
        place += buckets[b].end;
        buckets[b].end = place;
    }
    return true;
}

// Takes a key that is not where it belongs, puts it there, goes on with the one it drives out.
template <class Rule>
void FillBuckets(const KeyRange& range, const Rule& rule, Buckets& buckets) noexcept {
    for (std::size_t b = 0; b < rule.Count(); ++b) {
        for (; buckets[b].next < buckets[b].end; ++buckets[b].next) {
            const std::size_t hole = buckets[b].next;
            std::size_t target = rule(range.keys[hole]);
            if (target == b) continue;

            Key key = range.keys[hole];
            std::int64_t companion = range.companion[hole];
            while (target != b) {
                const std::size_t place = buckets[target].next++;
                const std::size_t ahead = std::min(place + 4, range.count - 1);
                __builtin_prefetch(range.keys + ahead, 1);
                __builtin_prefetch(range.companion + ahead, 1);
                target = rule(range.keys[place]);
                std::swap(key, range.keys[place]);
                std::swap(companion, range.companion[place]);
            }
            range.keys[hole] = key;
            range.companion[hole] = companion;
        }
    }
}

// Returns false, with nothing done, where the rule has not seen all bytes of the keys.
template <class Rule>
bool Deal(const KeyRange& range, std::size_t begin, const Rule& rule,
          RangeStack& pending) noexcept {
    Buckets buckets{};
    if (!CountKeys(range, rule, buckets)) return false;
    FillBuckets(range, rule, buckets);
    if (rule.IsComplete()) return true;

    for (std::size_t b = rule.Count(); b-- > 0;) {
        const std::size_t first = b == 0 ? 0 : buckets[b - 1].end;
        if (buckets[b].end - first > 1) pending.Push(begin + first, begin + buckets[b].end);
    }
    return true;
}

// Whether a sample of the keys falls into few buckets, so that many passes would be needed.
bool IsPoor(const KeyRange& range, const ScaledRule& rule) noexcept {
    constexpr std::size_t kSample = 32;
    constexpr std::size_t kFew = 8;
    std::bitset<kMostBuckets> isUsed;
    for (std::size_t i = 0; i < kSample; ++i)
        isUsed.set(rule(range.keys[i * range.count / kSample]));
    return isUsed.count() <= kFew;
}

}  // namespace

void DealIntoBuckets(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept {
    const std::size_t most =
        std::clamp(range.count / (2 * kKeysPerBucket) * 2, kFewestBuckets, kMostBuckets);
    const Survey survey = SurveyBytes(range);
    const ScaledRule rule(survey, most);
    if (rule.Count() == 0) return;

    if (rule.IsComplete() || !IsPoor(range, rule)) {
        Deal(range, begin, rule, pending);
        return;
    }
    // Bytes of few values are mostly all in a sample; a pass over all keys for each digit took a
    // sixth of the time. Bench: TwoValues, a million keys, in bench/SortBench.cpp.
    constexpr std::size_t kSample = 512;
    const auto deal = [&](std::size_t step) {
        return Deal(range, begin, RankedRule(range, survey, most, step), pending);
    };
    if (!deal(1 + range.count / kSample)) deal(1);
}

}  // namespace corvale::internal
