// The sort and the integer lists on random input of every kind, for as many rounds as the argument
// says (10000 without one), against the plain versions.
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/sorting/Sorting.hpp>

#include "literal/LiteralNumeric.hpp"
#include "sorting/SortsRight.hpp"

#include <cstdio>
#include <cstdlib>

namespace {

using corvale::Sorting::Key;
using corvale::test::IsPlainlyLess;
using corvale::test::Pattern;

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

// Values from a narrow or the whole range, in some lists also zeros or negative ones.
std::vector<std::int32_t> RandomList(std::mt19937_64& random, std::size_t length) {
    const std::uint64_t range = std::uint64_t{1} << (1 + random() % 31);
    const bool hasNegatives = random() % 2 == 0;
    const bool hasZeros = random() % 2 == 0;  // negative values stay while nothing is removed
    std::vector<std::int32_t> list(length);
    for (auto& value : list) {
        value = static_cast<std::int32_t>(random() % range);
        if (hasZeros && random() % 16 == 0) value = 0;
        if (hasNegatives && random() % 8 == 0) value = -value;
    }
    return list;
}

bool ListsAgree(std::mt19937_64& random) {
    std::vector<std::int32_t> list =
        RandomList(random, 1 + random() % (std::size_t{1} << random() % 13));
    std::vector<std::int32_t> plain = list;
    auto n = static_cast<std::int32_t>(list.size());
    auto plainCount = n;
    if (const auto order = static_cast<std::int32_t>(random() % 4) - 1; order < 2) {
        corvale::GenFunctions::ISort(order, list.data(), n);
        corvale::literal::ISort(order, plain.data(), plainCount);
    } else {
        corvale::GenFunctions::IDupe(list.data(), n);
        corvale::literal::IDupe(plain.data(), plainCount);
    }
    return n == plainCount && list == plain;
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 10000;
    std::mt19937_64 random(17);
    for (int round = 0; round < rounds; ++round) {
        bool isRight = corvale::test::SortsRight(MixedKeys(random));
        for (int list = 0; list < 20; ++list) isRight = isRight && ListsAgree(random);
        if (!isRight) {
            std::printf("round %d: wrong\n", round);
            return 1;
        }
    }
    std::printf("%d rounds\n", rounds);
}
