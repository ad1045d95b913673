// Keys in the orders that sorts stumble over: inputs of tests, fuzz targets and benchmarks.
#pragma once

#include "reference/Sorting.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace corvale::reference {

inline Key Padded(const std::string& text) {
    Key key;
    key.fill(' ');
    std::copy_n(text.begin(), std::min(text.size(), key.size()), key.begin());
    return key;
}

enum class Pattern {
    Random,        // 8 to 31 letters and digits
    Sorted,        // random, ascending
    Reversed,      // random, descending
    Equal,         // one key
    OrganPipe,     // every other key up, the rest down
    Few,           // 16 keys
    Prefix,        // long common beginnings and middles
    TwoLists,      // two sorted lists, one after the other
    NearlySorted,  // sorted, one in a hundred exchanged
    Bytes,         // all 32 bytes of any value
    LastByte,      // only the last byte differs
    TwoValues,     // bytes of two values: every byte decides somewhere
};
inline constexpr const char* kPatternNames[] = {"Random",       "Sorted", "Reversed", "Equal",
                                                "OrganPipe",    "Few",    "Prefix",   "TwoLists",
                                                "NearlySorted", "Bytes",  "LastByte", "TwoValues"};
inline constexpr int kPatterns = 12;

inline Key RandomKey(Pattern pattern, std::mt19937_64& random) {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    char text[40];
    Key key = Padded("KEY");
    switch (pattern) {
        case Pattern::Equal:
            break;
        case Pattern::Few:
            std::snprintf(text, sizeof text, "KEY%02d", static_cast<int>(random() % 16));
            return Padded(text);
        case Pattern::Prefix: {
            const auto number = static_cast<int>(random() % 100000);
            const auto epoch = static_cast<int>(random() % 100000000);
            std::snprintf(text, sizeof text, "SATELLITE %05d EPOCH %08d", number, epoch);
            return Padded(text);
        }
        case Pattern::Bytes:
            for (char& c : key) c = static_cast<char>(random());
            break;
        case Pattern::LastByte:
            key[31] = static_cast<char>(random());
            break;
        case Pattern::TwoValues:
            for (std::size_t i = 0; i < key.size(); ++i)
                key[i] = random() % (2 + i) == 0 ? '\0' : '\xff';
            break;
        default: {
            const std::size_t length = 8 + random() % 24;
            key.fill(' ');
            for (std::size_t i = 0; i < length; ++i) key[i] = kLetters[random() % 62];
        }
    }
    return key;
}

inline std::vector<Key> MakeKeys(Pattern pattern, std::size_t n, std::mt19937_64& random) {
    std::vector<Key> keys(n);
    for (Key& key : keys) key = RandomKey(pattern, random);
    const auto sort = [&](auto begin, auto end) { std::sort(begin, end, IsLess); };
    const auto middle = keys.begin() + static_cast<std::ptrdiff_t>(n / 2);
    if (pattern == Pattern::Sorted || pattern == Pattern::Reversed ||
        pattern == Pattern::NearlySorted)
        sort(keys.begin(), keys.end());
    if (pattern == Pattern::TwoLists || pattern == Pattern::OrganPipe) {
        sort(keys.begin(), middle);
        sort(middle, keys.end());
    }
    if (pattern == Pattern::Reversed) std::reverse(keys.begin(), keys.end());
    if (pattern == Pattern::OrganPipe) std::reverse(middle, keys.end());
    if (pattern == Pattern::NearlySorted)
        for (std::size_t i = 0; i < n / 200; ++i) std::swap(keys[random() % n], keys[random() % n]);
    return keys;
}

}  // namespace corvale::reference
