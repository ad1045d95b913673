#include <corvale/sorting/Ways.hpp>

#include <corvale/sorting/WordRanks.hpp>

#include <algorithm>
#include <array>
#include <cstdint>

namespace corvale::internal {

namespace {

// Longer than a range: the vector loads read past its end and ignore what they find.
using Words = std::array<std::uint64_t, kShortRange + kRanked>;

void Load(const KeyRange& range, std::size_t offset, std::uint64_t* words) noexcept {
    const std::size_t inside = std::min(offset, kKeyBytes - 8);
    const std::size_t shift = 8 * (offset - inside);
    for (std::size_t i = 0; i < range.count; ++i)
        words[i] = (BigWordAt(range.keys[i], inside) << shift & ~kPlace) | i;
}

template <class Path>
struct SortByRank {
    CORVALE_INLINE void operator()(const std::uint64_t* in, std::size_t count,
                                   std::uint64_t* out) const noexcept {
        std::int64_t places[kRanked];
        Rank<Path>{}(in, count, places);
        for (std::size_t i = 0; i < count; ++i) out[places[i]] = in[i];
    }
};

// Merges two sorted halves whose lengths differ by one at most, from both ends at once: two chains
// of operations that do not wait for each other, and no branch that depends on the words. Neither
// half can run out before the last step.
void MergeHalves(const std::uint64_t* in, std::size_t half, std::size_t count,
                 std::uint64_t* out) noexcept {
    const std::uint64_t* left = in;
    const std::uint64_t* right = in + half;
    const std::uint64_t* leftEnd = in + half;
    const std::uint64_t* rightEnd = in + count;
    for (std::size_t i = 0; i < count / 2; ++i) {
        const std::uint64_t isRight = *right < *left ? 1 : 0;
        out[i] = Choose(isRight, *right, *left);
        right += isRight;
        left += 1 - isRight;

        const std::uint64_t isLeft = rightEnd[-1] < leftEnd[-1] ? 1 : 0;
        out[count - 1 - i] = Choose(isLeft, leftEnd[-1], rightEnd[-1]);
        leftEnd -= isLeft;
        rightEnd -= 1 - isLeft;
    }
    if (count % 2 == 1) out[count / 2] = left < leftEnd ? *left : *right;
}

// Sorts distinct words by merging equal parts; returns where the result is, `words` or `other`.
std::uint64_t* SortWords(std::uint64_t* words, std::uint64_t* other, std::size_t count) noexcept {
    std::size_t parts = 2;
    while (count > kRanked * parts) parts *= 2;
    const auto border = [&](std::size_t i) { return i * count / parts; };
    for (std::size_t i = 0; i < parts; ++i)
        OnBestPath<SortByRank>(words + border(i), border(i + 1) - border(i), other + border(i));

    for (; parts > 1; parts /= 2) {
        std::swap(words, other);
        for (std::size_t i = 0; i < parts; i += 2) {
            const std::size_t begin = border(i);
            MergeHalves(words + begin, border(i + 1) - begin, border(i + 2) - begin, other + begin);
        }
    }
    return other;
}

// The first words of the keys in their order, each with the place where its key is. Out of line, as
// `Permute` is: their arrays never stand on the stack together, and the smallest threads have 16 KiB.
[[gnu::noinline]] void SortFirstWords(const KeyRange& range, std::size_t offset,
                                      Words& words) noexcept {
    Words other;
    TakeForWritten(words);
    Load(range, offset, words.data());
    const std::uint64_t* sorted = SortWords(words.data(), other.data(), range.count);
    if (sorted == other.data()) std::copy_n(sorted, range.count, words.data());
}

// `sorted[i]` names where the i-th value comes from. By way of a copy: to follow the cycles in place
// takes half the moves and, with a branch for each cycle that cannot be foreseen, more time. Bench:
// Random, 10 and 100 keys, in bench/SortBench.cpp.
template <class T>
[[gnu::noinline]] void Permute(T* values, std::size_t count, const Words& sorted) noexcept {
    std::array<T, kShortRange> copy;
    std::copy_n(values, count, copy.data());
    for (std::size_t i = 0; i < count; ++i) values[i] = copy[sorted[i] & kPlace];
}

void SortTies(const KeyRange& range, const Words& sorted, std::size_t begin,
              RangeStack& pending) noexcept {
    std::size_t first = 0;
    for (std::size_t i = 1; i <= range.count; ++i) {
        if (i < range.count && (sorted[i] ^ sorted[first]) <= kPlace) continue;
        if (i - first > kRanked)
            pending.Push(begin + first, begin + i);
        else if (i - first > 1)
            InsertOneByOne(range.Part(first, i));
        first = i;
    }
}

void SortMany(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept {
    if (SortOneRun(range)) return;
    const Difference difference = FindDifference(range);
    Words sorted;
    SortFirstWords(range, difference.first, sorted);
    Permute(range.keys, range.count, sorted);
    Permute(range.companion, range.count, sorted);
    if (difference.first + kWindow < difference.end) SortTies(range, sorted, begin, pending);
}

}  // namespace

void SortShortRange(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept {
    range.count > kRanked ? SortMany(range, begin, pending) : SortFewKeys(range);
}

}  // namespace corvale::internal
