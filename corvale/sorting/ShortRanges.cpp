#include <corvale/sorting/ShortRanges.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>

namespace corvale::internal {

namespace {

// A word holds seven bytes of a key and, below them, the key's place.
constexpr std::size_t kWindow = 7;
using Words = std::array<std::uint64_t, kShortRange>;

// The first byte in which keys of the range differ; the length of a key where all are equal.
std::size_t FirstDifference(const KeyRange& range) noexcept {
    std::array<std::uint64_t, 4> difference{};
    for (std::size_t i = 1; i < range.count; ++i)
        for (std::size_t w = 0; w < 4; ++w)
            difference[w] |= WordAt(range.keys[i], 8 * w) ^ WordAt(range.keys[0], 8 * w);
    for (std::size_t w = 0; w < 4; ++w)
        if (difference[w] != 0)
            return 8 * w + static_cast<std::size_t>(std::countl_zero(difference[w])) / 8;
    return kKeyBytes;
}

void Load(const KeyRange& range, std::size_t offset, std::uint64_t* words) noexcept {
    const std::size_t inside = std::min(offset, kKeyBytes - 8);
    const std::size_t shift = 8 * (offset - inside);
    for (std::size_t i = 0; i < range.count; ++i)
        words[i] = (WordAt(range.keys[i], inside) << shift & ~std::uint64_t{0xFF}) | i;
}

// Sorts a few distinct words: each goes where the count of smaller ones says. No branch depends on
// them.
void SortByRank(const std::uint64_t* in, std::size_t count, std::uint64_t* out) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t rank = 0;
        for (std::size_t j = 0; j < count; ++j) rank += in[j] < in[i] ? 1 : 0;
        out[rank] = in[i];
    }
}

// Merges two sorted halves whose lengths differ by one at most, from both ends at once: two chains
// of operations that do not wait for each other, and no branch that depends on the words. Neither
// half can run out before the last step.
void MergeHalves(const std::uint64_t* in, std::size_t half, std::size_t count,
                 std::uint64_t* out) noexcept {
    const std::uint64_t* left = in;
    const std::uint64_t* right = in + half;
    const std::uint64_t* leftBack = in + half - 1;
    const std::uint64_t* rightBack = in + count - 1;
    for (std::size_t i = 0; i < count / 2; ++i) {
        const bool isRight = *right < *left;
        out[i] = isRight ? *right : *left;
        right += isRight ? 1 : 0;
        left += isRight ? 0 : 1;

        const bool isLeft = *rightBack < *leftBack;
        out[count - 1 - i] = isLeft ? *leftBack : *rightBack;
        leftBack -= isLeft ? 1 : 0;
        rightBack -= isLeft ? 0 : 1;
    }
    if (count % 2 == 1) out[count / 2] = left <= leftBack ? *left : *right;
}

// Sorts distinct words by merging equal parts; returns where the result is, `words` or `other`.
std::uint64_t* SortWords(std::uint64_t* words, std::uint64_t* other, std::size_t count) noexcept {
    std::size_t parts = 1;
    while (count > 8 * parts) parts *= 2;
    const auto border = [&](std::size_t i) { return i * count / parts; };
    for (std::size_t i = 0; i < parts; ++i)
        SortByRank(words + border(i), border(i + 1) - border(i), other + border(i));

    for (; parts > 1; parts /= 2) {
        std::swap(words, other);
        for (std::size_t i = 0; i < parts; i += 2) {
            const std::size_t begin = border(i);
            MergeHalves(words + begin, border(i + 1) - begin, border(i + 2) - begin, other + begin);
        }
    }
    return other;
}

// Moves each key to its place, cycle by cycle. `sorted[i]` names where the i-th key comes from.
void Reorder(const KeyRange& range, const std::uint64_t* sorted) noexcept {
    std::array<std::uint8_t, kShortRange> source;
    for (std::size_t i = 0; i < range.count; ++i)
        source[i] = static_cast<std::uint8_t>(sorted[i] & 0xFF);

    for (std::size_t first = 0; first < range.count; ++first) {
        if (source[first] == first) continue;
        const Key key = range.keys[first];
        const std::int64_t companion = range.companion[first];
        std::size_t at = first;
        for (std::size_t from = source[at]; from != first; from = source[at]) {
            range.Put(at, range, from);
            source[at] = static_cast<std::uint8_t>(at);
            at = from;
        }
        range.keys[at] = key;
        range.companion[at] = companion;
        source[at] = static_cast<std::uint8_t>(at);
    }
}

void PushTies(const std::uint64_t* sorted, std::size_t count, std::size_t begin,
              RangeStack& pending) noexcept {
    std::size_t first = 0;
    for (std::size_t i = 1; i <= count; ++i) {
        if (i < count && (sorted[i] ^ sorted[first]) <= 0xFF) continue;
        if (i - first > 1) pending.Push(begin + first, begin + i);
        first = i;
    }
}

}  // namespace

void SortShortRange(const KeyRange& range, std::size_t begin, RangeStack& pending) noexcept {
    const std::size_t offset = FirstDifference(range);
    if (offset == kKeyBytes) return;

    Words words;
    Words other;
    Load(range, offset, words.data());
    const std::uint64_t* sorted = SortWords(words.data(), other.data(), range.count);
    Reorder(range, sorted);
    if (offset + kWindow < kKeyBytes) PushTies(sorted, range.count, begin, pending);
}

}  // namespace corvale::internal
