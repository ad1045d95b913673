#include <corvale/sorting/Ways.hpp>

#include <corvale/sorting/WordRanks.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace corvale::internal {

namespace {

// Eight bytes of each key.
using Words = std::array<std::uint64_t, kRanked>;

// How words follow each other, somewhere among them.
struct Steps {
    bool up;     // one is above the one before it
    bool notUp;  // one is not
};
// Takes the words that begin at byte `offset`. No branch depends on them, and all that is not
// needed stays unwritten: at ten keys clearing the words took as long as sorting them.
CORVALE_INLINE Steps LoadWords(const KeyRange& range, std::size_t offset, Words& words) noexcept {
    bool up = false;
    bool notUp = false;
    std::uint64_t before = words[0] = BigWordAt(range.keys[0], offset);
    for (std::size_t i = 1; i < range.count; ++i) {
        const std::uint64_t word = words[i] = BigWordAt(range.keys[i], offset);
        up |= word > before;
        notUp |= word <= before;
        before = word;
    }
    return {up, notUp};
}

// Moves the keys to the order of the first seven bytes of `words`; those that agree there keep
// theirs. Returns whether some do.
template <class Path>
struct MoveByRank {
    CORVALE_INLINE bool operator()(const KeyRange* range, const Words* words) const noexcept {
        const std::size_t count = range->count;
        std::uint64_t marked[kRanked];
        for (std::size_t i = 0; i < kRanked; ++i) marked[i] = ((*words)[i] & ~kPlace) | i;
        std::int64_t places[kRanked];
        Rank<Path>{}(marked, count, places);

        // By way of a copy: in place a branch for each cycle could not be foreseen.
        Key keys[kRanked];
        std::int64_t companion[kRanked];
        std::uint64_t sorted[kRanked];
        for (std::size_t i = 0; i < count; ++i) {
            const auto place = static_cast<std::size_t>(places[i]);
            CopyKey(range->keys + i, keys + place);
            companion[place] = range->companion[i];
            sorted[place] = marked[i];
        }
        bool someAgree = false;
        std::uint64_t before = ~sorted[0];
        for (std::size_t i = 0; i < count; ++i) {
            CopyKey(keys + i, range->keys + i);
            range->companion[i] = companion[i];
            someAgree |= (sorted[i] ^ before) <= kPlace;
            before = sorted[i];
        }
        return someAgree;
    }
    // As one vector: GCC copies an array in halves, an eighth of the time at three and ten keys.
    CORVALE_INLINE static void CopyKey(const Key* from, Key* to) noexcept {
        using Vector [[gnu::vector_size(sizeof(Key)), gnu::aligned(1), gnu::may_alias]] = char;
        *reinterpret_cast<Vector*>(to) = *reinterpret_cast<const Vector*>(from);
    }
};

}  // namespace

Difference FindDifference(const KeyRange& range) noexcept {
    using Half [[gnu::vector_size(16), gnu::aligned(1), gnu::may_alias]] = std::uint64_t;
    const auto* const given = reinterpret_cast<const Half*>(range.keys);
    Half differing[2]{};
    for (std::size_t i = 1; i < range.count; ++i)
#pragma GCC unroll 2
        for (std::size_t half = 0; half < 2; ++half)
            differing[half] |= given[2 * i + half] ^ given[half];
    std::array<std::uint64_t, 4> bits;
    std::memcpy(bits.data(), differing, sizeof bits);

    std::size_t first = 0;
    std::size_t last = 4;
    while (first < 4 && bits[first] == 0) ++first;
    if (first == 4) return {0, 0};
    while (bits[last - 1] == 0) --last;
    return {8 * first + static_cast<std::size_t>(std::countl_zero(NativeToBig(bits[first]))) / 8,
            8 * last - static_cast<std::size_t>(std::countr_zero(NativeToBig(bits[last - 1]))) / 8};
}

void InsertOneByOne(const KeyRange& range) noexcept {
    for (std::size_t i = 1; i < range.count; ++i) {
        if (!IsLess(range.keys[i], range.keys[i - 1])) continue;
        const Key key = range.keys[i];
        const std::int64_t companion = range.companion[i];
        std::size_t place = i;
        do {
            range.Put(place, range, place - 1);
            --place;
        } while (place > 0 && IsLess(key, range.keys[place - 1]));
        range.keys[place] = key;
        range.companion[place] = companion;
    }
}

void SortFewKeys(const KeyRange& range) noexcept {
    const auto areEqual = [&] { return FindDifference(range).end == 0; };
    if (range.keys[0] == range.keys[range.count - 1] && areEqual()) return;

    std::size_t first = 0;  // the byte with which the words begin
    Words words;
    TakeForWritten(words);
    Steps steps = LoadWords(range, first, words);
    if (!steps.notUp) return;
    if (!steps.up && words[0] == words[range.count - 1]) {
        first = FindDifference(range).first;
        const std::size_t inside = std::min(first, kKeyBytes - 8);
        steps = LoadWords(range, inside, words);
        if (!steps.notUp) return;
        for (std::uint64_t& word : words) word <<= 8 * (first - inside);
    }
    if (!steps.up && SortOneRun(range)) return;
    const bool someAgree = OnBestPath<MoveByRank>(&range, &words);
    if (someAgree && first + kWindow < FindDifference(range).end) InsertOneByOne(range);
}

}  // namespace corvale::internal
