// The sort and the integer lists on random input of every kind, for as many rounds as the argument
// says (10000 without one), against the plain versions.
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/sorting/Sorting.hpp>

#include "literal/KeyPatterns.hpp"
#include "literal/LiteralNumeric.hpp"

#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace {

using corvale::Sorting::Key;
using corvale::test::IsPlainlyLess;
using corvale::test::Pattern;

// Ascending, with every companion beside the key that it came with.
bool SortsRight(const std::vector<Key>& before) {
    std::vector<Key> keys = before;
    std::vector<std::int64_t> companion(keys.size());
    std::iota(companion.begin(), companion.end(), 0);
    corvale::Sorting::QuickSortIterative(static_cast<std::int32_t>(keys.size()), keys.data(),
                                         companion.data());
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (keys[i] != before[static_cast<std::size_t>(companion[i])] ||
            (i > 0 && IsPlainlyLess(keys[i], keys[i - 1])))
            return false;
    std::sort(companion.begin(), companion.end());
    return std::adjacent_find(companion.begin(), companion.end()) == companion.end();
}

// Up to six stretches of different patterns, some of them sorted one way or the other.
std::vector<Key> MixedKeys(std::mt19937_64& random) {
    std::vector<Key> keys;
    const std::size_t most = std::size_t{1} << random() % 13;
    for (std::size_t stretches = 1 + random() % 6; stretches > 0; --stretches) {
        const auto pattern = static_cast<Pattern>(random() % corvale::test::kPatterns);
        std::vector<Key> part = corvale::test::MakeKeys(pattern, 1 + random() % most, random);
        if (random() % 3 != 0) std::sort(part.begin(), part.end(), IsPlainlyLess);
        if (random() % 3 == 0) std::reverse(part.begin(), part.end());
        keys.insert(keys.end(), part.begin(), part.end());
    }
    return keys;
}

bool ListsAgree(std::mt19937_64& random) {
    std::vector<std::int32_t> list(1 + random() % 700);
    const std::uint64_t range = std::uint64_t{1} << (1 + random() % 31);
    for (auto& value : list) value = static_cast<std::int32_t>(random() % range);
    for (std::size_t i = 0; i < list.size() / 8; ++i)
        list[random() % list.size()] = -static_cast<std::int32_t>(random() % range / 4);
    std::vector<std::int32_t> plain = list;
    auto n = static_cast<std::int32_t>(list.size());
    auto plainCount = n;
    const auto order = static_cast<std::int32_t>(random() % 3) - 1;
    corvale::GenFunctions::ISort(order, list.data(), n);
    corvale::literal::ISort(order, plain.data(), plainCount);
    return n == plainCount && list == plain;
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 10000;
    std::mt19937_64 random(17);
    for (int round = 0; round < rounds; ++round) {
        const bool isRight = SortsRight(MixedKeys(random)) && ListsAgree(random);
        if (!isRight) {
            std::printf("round %d: wrong\n", round);
            return 1;
        }
    }
    std::printf("%d rounds\n", rounds);
}
