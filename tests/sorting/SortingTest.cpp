#include <corvale/sorting/Sorting.hpp>

#include "SortsRight.hpp"
#include "reference/inputs/KeyPatterns.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <climits>
#include <numeric>

namespace corvale::Sorting {
namespace {

using reference::Padded;
using reference::Pattern;

// Around the lengths at which the method changes.
constexpr std::size_t kSizes[] = {1,   2,   3,   5,   8,   9,    10,   16,   17,   64,   100,
                                  255, 256, 257, 300, 511, 1000, 1279, 1281, 2600, 5000, 20000};

TEST(QuickSortIterative, SortsEveryPatternAndSize) {
    std::mt19937_64 random(1);
    for (int pattern = 0; pattern < reference::kPatterns; ++pattern)
        for (const std::size_t n : kSizes)
            for (std::size_t round = 0; round < 500 / n + 1; ++round)
                EXPECT_TRUE(
                    test::SortsRight(reference::MakeKeys(static_cast<Pattern>(pattern), n, random)))
                    << reference::kPatternNames[pattern] << ", n = " << n;
}

// A long list, the least key, or all but the greatest stand behind greater ones; or two keys more
// have changed places.
TEST(QuickSortIterative, MergesAListBehindAGreaterOne) {
    std::mt19937_64 random(1);
    for (const std::size_t n : kSizes)
        for (const std::size_t first : {n / 3, std::min<std::size_t>(n, 1), n - 1}) {
            std::vector<Key> keys = reference::MakeKeys(Pattern::Sorted, n, random);
            std::rotate(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(first),
                        keys.end());
            EXPECT_TRUE(test::SortsRight(keys)) << n << ", " << first;
            std::swap(keys[n / 2], keys[n / 2 + n / 4]);
            EXPECT_TRUE(test::SortsRight(keys)) << n << ", " << first << ", two exchanged";
        }
}

// The first bytes that differ have few values: one bucket for each is not yet an order.
TEST(QuickSortIterative, SortsKeysOfTwoLetters) {
    std::mt19937_64 random(1);
    std::vector<Key> keys(5000);
    for (Key& key : keys)
        for (char& c : key) c = random() % 2 == 0 ? 'A' : 'B';
    EXPECT_TRUE(test::SortsRight(keys));
}

TEST(QuickSortIterative, LeavesNothingToSortAlone) {
    for (const std::int32_t n : {0, -1, INT_MIN}) QuickSortIterative(n, nullptr, nullptr);
    Key key = Padded("A");
    std::int64_t companion = 7;
    QuickSortIterative(1, &key, &companion);
    EXPECT_EQ(key, Padded("A"));
    EXPECT_EQ(companion, 7);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(QuickSortIterativeDeathTest, StopsWithoutMemory) {
    const auto sortWithoutMemory = [] {
        const rlimit little{1U << 28U, 1U << 28U};
        setrlimit(RLIMIT_AS, &little);
        QuickSortIterative(INT_MAX, nullptr, nullptr);
    };
    EXPECT_EXIT(sortWithoutMemory(), testing::ExitedWithCode(1),
                "Error allocating 8589934588 bytes");
}
#endif

// Once its first list is reversed, nothing is left to merge.
TEST(QuickSortIterative, ReversesAListBeforeGreaterKeys) {
    std::mt19937_64 random(1);
    for (const std::size_t n : kSizes) {
        std::vector<Key> keys = reference::MakeKeys(Pattern::Sorted, n, random);
        std::reverse(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(n / 3));
        EXPECT_TRUE(test::SortsRight(keys)) << n;
    }
}

struct PartitionCase {
    const char *keys, *result, *companion;
    std::int32_t low, high, position;
    const char* why;
};
constexpr PartitionCase kPartitions[] = {
    {"DBACC", "BACCD", "12430", 1, 5, 3, "less before, in their order; equal behind"},
    {"CCCCC", "CCCCC", "41230", 1, 5, 1, "all equal: the pivot goes first"},
    {"ABCDE", "ABCDE", "01234", 1, 5, 5, "sorted: nothing moves"},
    {"EDCBA", "EBCDA", "03214", 2, 4, 2, "only the positions asked for"},
    {"ABCDE", "ABCDE", "01234", 3, 3, 3, "one position"},
    {"ABCDE", "DBCAE", "31204", 4, 1, 4, "low above high: exchanged"},
};

TEST(Partition, SplitsAtTheLastKey) {
    for (const PartitionCase& c : kPartitions) {
        std::vector<Key> keys;
        for (const char name : std::string(c.keys)) keys.push_back(Padded({name}));
        std::vector<std::int64_t> companion(keys.size());
        std::iota(companion.begin(), companion.end(), 0);
        EXPECT_EQ(Partition(c.low, c.high, keys.data(), companion.data()), c.position) << c.why;

        std::string names;
        std::string numbers;
        for (const Key& key : keys) names += key[0];
        for (const auto number : companion) numbers += static_cast<char>('0' + number);
        EXPECT_EQ(names, c.result) << c.why;
        EXPECT_EQ(numbers, c.companion) << c.why;
    }
}

TEST(Swap, Exchanges) {
    Key a = Padded("A");
    Key b = Padded("B");
    Swap_Str(a, b);
    EXPECT_EQ(a, Padded("B"));
    EXPECT_EQ(b, Padded("A"));
    std::int64_t i = INT64_MIN;
    std::int64_t j = 1;
    Swap_Int8(i, j);
    EXPECT_TRUE(i == 1 && j == INT64_MIN);
    std::int32_t k = INT_MIN;
    Swap_Int4(k, k);
    EXPECT_EQ(k, INT_MIN);
}

}  // namespace
}  // namespace corvale::Sorting
