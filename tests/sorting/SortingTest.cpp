#include <corvale/sorting/Sorting.hpp>

#include "literal/KeyPatterns.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <climits>
#include <numeric>

namespace corvale::Sorting {
namespace {

using test::Padded;
using test::Pattern;

std::vector<std::int64_t> Numbers(std::size_t n) {
    std::vector<std::int64_t> numbers(n);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

// Ascending, and every companion beside the key that it came with.
void ExpectSorted(const std::vector<Key>& before) {
    std::vector<Key> keys = before;
    std::vector<std::int64_t> companion = Numbers(keys.size());
    QuickSortIterative(static_cast<std::int32_t>(keys.size()), keys.data(), companion.data());

    std::vector<bool> isSeen(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto from = static_cast<std::size_t>(companion[i]);
        ASSERT_TRUE(from < keys.size() && !isSeen[from]) << "companion " << i << " lost";
        isSeen[from] = true;
        ASSERT_EQ(keys[i], before[from]) << "companion " << i << " left its key";
        ASSERT_FALSE(i > 0 && test::IsPlainlyLess(keys[i], keys[i - 1])) << "order at " << i;
    }
}

// Around the lengths at which the method changes.
constexpr std::size_t kSizes[] = {1,   2,   3,   5,   8,   9,    10,   16,   17,   64,   100,
                                  255, 256, 257, 300, 511, 1000, 1279, 1281, 2600, 5000, 20000};

TEST(QuickSortIterative, SortsEveryPatternAndSize) {
    std::mt19937_64 random(1);
    for (int pattern = 0; pattern < test::kPatterns; ++pattern) {
        for (const std::size_t n : kSizes) {
            SCOPED_TRACE(std::string(test::kPatternNames[pattern]) + ", n = " + std::to_string(n));
            ExpectSorted(test::MakeKeys(static_cast<Pattern>(pattern), n, random));
            if (HasFatalFailure()) return;
        }
    }
}

// Runs of all lengths, up and down, with equal keys across their borders.
TEST(QuickSortIterative, MergesRuns) {
    std::mt19937_64 random(2);
    for (int round = 0; round < 400; ++round) {
        std::vector<Key> keys;
        const std::size_t runs = 1 + random() % 4;
        for (std::size_t run = 0; run < runs; ++run) {
            const auto pattern = random() % 2 == 0 ? Pattern::Few : Pattern::Random;
            std::vector<Key> part = test::MakeKeys(pattern, 1 + random() % 2000, random);
            std::sort(part.begin(), part.end(), test::IsPlainlyLess);
            if (random() % 2 == 0) std::reverse(part.begin(), part.end());
            keys.insert(keys.end(), part.begin(), part.end());
        }
        SCOPED_TRACE("round " + std::to_string(round));
        ExpectSorted(keys);
        if (HasFatalFailure()) return;
    }
}

TEST(QuickSortIterative, OrdersByUnsignedBytes) {
    std::vector<Key> keys = {Padded("b"),
                             Padded("\xe9"),
                             Padded("B"),
                             Padded(""),
                             Padded("~"),
                             Padded("B!"),
                             Padded(std::string(1, '\0')),
                             Padded("B"),
                             Padded("\x7f")};
    keys[2][31] = '\x01';
    const std::vector<std::size_t> order = {6, 3, 2, 7, 5, 0, 4, 8, 1};
    std::vector<Key> sorted = keys;
    std::vector<std::int64_t> companion = Numbers(keys.size());
    QuickSortIterative(static_cast<std::int32_t>(keys.size()), sorted.data(), companion.data());
    for (std::size_t i = 0; i < order.size(); ++i) EXPECT_EQ(sorted[i], keys[order[i]]) << i;
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
        std::vector<std::int64_t> companion = Numbers(keys.size());
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
