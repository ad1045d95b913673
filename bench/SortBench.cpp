// The sort beside its peers, for each pattern and size: Pattern/Peer/keys. The peers sort records
// of key and companion. Times are CPU time of the sorting alone; a run sorts many different blocks,
// so that the branch predictor cannot learn the short ones.
#include <corvale/sorting/Sorting.hpp>

#include "reference/inputs/KeyPatterns.hpp"

#include <benchmark/benchmark.h>
#include <algorithm>
#include <boost/sort/flat_stable_sort/flat_stable_sort.hpp>
#include <boost/sort/pdqsort/pdqsort.hpp>
#include <boost/sort/spinsort/spinsort.hpp>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

namespace {

using corvale::reference::Pattern;
using corvale::Sorting::Key;

struct Record {
    Key key;
    std::int64_t companion;
};

extern "C" void rust_ipnsort(Record* records, std::size_t n);
extern "C" void rust_driftsort(Record* records, std::size_t n);

std::uint64_t Word(const Key& key, std::size_t offset) {
    std::uint64_t word = 0;
    std::memcpy(&word, key.data() + offset, 8);
    return __builtin_bswap64(word);
}

int Compare(const void* a, const void* b) {
    return std::memcmp(a, b, sizeof(Key));
}
// What makes the peers fastest: eight bytes at a time, as the library compares.
bool LessByWord(const Record& a, const Record& b) {
    for (std::size_t i = 0; i < sizeof(Key); i += 8)
        if (Word(a.key, i) != Word(b.key, i)) return Word(a.key, i) < Word(b.key, i);
    return false;
}

// All blocks of one pattern and size, in both layouts, and what they sort to.
struct Blocks {
    std::size_t n;
    std::vector<Key> keys, sorted;
    std::vector<std::int64_t> companion;
    std::vector<Record> records;
};

const Blocks& BlocksOf(Pattern pattern, std::size_t n) {
    static std::map<std::pair<Pattern, std::size_t>, Blocks> made;
    if (const auto found = made.find({pattern, n}); found != made.end()) return found->second;
    if (n > 1'000'000) made.clear();  // about 200 bytes a key
    Blocks& blocks = made[{pattern, n}];

    blocks.n = n;
    std::mt19937_64 random(n);
    for (std::size_t size = 0; size < std::max<std::size_t>(n, 20000); size += n) {
        std::vector<Key> keys = corvale::reference::MakeKeys(pattern, n, random);
        blocks.keys.insert(blocks.keys.end(), keys.begin(), keys.end());
        std::sort(keys.begin(), keys.end(), corvale::reference::IsLess);
        blocks.sorted.insert(blocks.sorted.end(), keys.begin(), keys.end());
    }
    for (const Key& key : blocks.keys) {
        blocks.companion.push_back(static_cast<std::int64_t>(blocks.records.size()));
        blocks.records.push_back({key, blocks.companion.back()});
    }
    return blocks;
}

double CpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void SortCorvale(Key* keys, std::int64_t* companion, std::size_t n) {
    corvale::Sorting::QuickSortIterative(static_cast<std::int32_t>(n), keys, companion);
}

// The sort as a plain quicksort has it: last key as pivot.
void SortPlainly(Key* keys, std::int64_t* companion, std::size_t n) {
    std::vector<std::int32_t> stack = {1, static_cast<std::int32_t>(n)};
    while (!stack.empty()) {
        const std::int32_t high = stack.back();
        const std::int32_t low = stack[stack.size() - 2];
        stack.resize(stack.size() - 2);
        const std::int32_t p = corvale::Sorting::Partition(low, high, keys, companion);
        if (p - 1 > low) stack.insert(stack.end(), {low, p - 1});
        if (high > p + 1) stack.insert(stack.end(), {p + 1, high});
    }
}

template <void (*Sort)(Key*, std::int64_t*, std::size_t)>
void Lists(benchmark::State& state, Pattern pattern) {
    const Blocks& blocks = BlocksOf(pattern, static_cast<std::size_t>(state.range(0)));
    std::vector<Key> keys;
    std::vector<std::int64_t> companion;
    for (auto _ : state) {
        keys = blocks.keys;
        companion = blocks.companion;
        const double begin = CpuSeconds();
        for (std::size_t i = 0; i < keys.size(); i += blocks.n)
            Sort(keys.data() + i, companion.data() + i, blocks.n);
        state.SetIterationTime(CpuSeconds() - begin);
    }
    if (keys != blocks.sorted) state.SkipWithError("not sorted");
    state.SetItemsProcessed(state.iterations() * std::ssize(keys));
}

template <class Sort>
void Records(benchmark::State& state, Pattern pattern, Sort sort) {
    const Blocks& blocks = BlocksOf(pattern, static_cast<std::size_t>(state.range(0)));
    std::vector<Record> records;
    for (auto _ : state) {
        records = blocks.records;
        const double begin = CpuSeconds();
        for (std::size_t i = 0; i < records.size(); i += blocks.n)
            sort(records.data() + i, records.data() + i + blocks.n);
        state.SetIterationTime(CpuSeconds() - begin);
    }
    for (std::size_t i = 0; i < records.size(); ++i)
        if (records[i].key != blocks.sorted[i]) return state.SkipWithError("not sorted");
    state.SetItemsProcessed(state.iterations() * std::ssize(records));
}

void Register(Pattern pattern, std::size_t n) {
    const std::string topic = corvale::reference::kPatternNames[static_cast<int>(pattern)];
    const auto add = [&](const char* peer, auto body) {
        benchmark::RegisterBenchmark((topic + "/" + peer).c_str(), body)
            ->Arg(static_cast<std::int64_t>(n))
            ->UseManualTime();
    };
    const auto addRecords = [&](const char* peer, auto sort) {
        add(peer, [=](benchmark::State& state) { Records(state, pattern, sort); });
    };
    add("Corvale", [=](benchmark::State& state) { Lists<SortCorvale>(state, pattern); });
    addRecords("pdqsort",
               [](Record* begin, Record* end) { boost::sort::pdqsort(begin, end, LessByWord); });
    addRecords("pdqsort_branchless", [](Record* begin, Record* end) {
        boost::sort::pdqsort_branchless(begin, end, LessByWord);
    });
    addRecords("spinsort",
               [](Record* begin, Record* end) { boost::sort::spinsort(begin, end, LessByWord); });
    addRecords("flat_stable_sort", [](Record* begin, Record* end) {
        boost::sort::flat_stable_sort(begin, end, LessByWord);
    });
#ifdef CORVALE_RUST_SORTS
    addRecords("ipnsort", [](Record* begin, Record* end) {
        rust_ipnsort(begin, static_cast<std::size_t>(end - begin));
    });
    addRecords("driftsort", [](Record* begin, Record* end) {
        rust_driftsort(begin, static_cast<std::size_t>(end - begin));
    });
#endif
    addRecords("std_sort", [](Record* begin, Record* end) { std::sort(begin, end, LessByWord); });
    addRecords("qsort", [](Record* begin, Record* end) {
        std::qsort(begin, static_cast<std::size_t>(end - begin), sizeof(Record), Compare);
    });
    if (n <= 100 || pattern == Pattern::Random)
        add("plain", [=](benchmark::State& state) { Lists<SortPlainly>(state, pattern); });
}

}  // namespace

int main(int argc, char** argv) {
    for (int pattern = 0; pattern < corvale::reference::kPatterns; ++pattern)
        for (std::size_t n = 10; n <= 10'000'000; n *= 10)
            Register(static_cast<Pattern>(pattern), n);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
