// Inputs for the targets without libFuzzer: random bytes of a few flavours, the same everywhere.
#pragma once

#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

namespace corvale::fuzz {

using Input = std::vector<std::uint8_t>;

/// The first bytes, which choose what is done, are any; the others too, or mostly those that put
/// pieces of text, or characters of numbers, or a mixture.
inline Input RandomInput(std::mt19937_64& random) {
    constexpr std::string_view kCharacters = "0123456789+-.eEdD ,=";
    constexpr std::size_t kChoosing = 8;
    const std::size_t limit = std::size_t{2} << random() % 9;
    Input input(random() % limit);
    const std::uint64_t flavour = random() % 4;
    for (std::size_t i = 0; i < input.size(); ++i) {
        const std::uint64_t bits = random();
        input[i] = static_cast<std::uint8_t>(bits);
        if (i < kChoosing || flavour == 0 || bits >> 56U == 0) continue;
        const bool isPiece = flavour == 1 || (flavour == 3 && bits >> 61U != 0);
        input[i] = isPiece ? input[i] | 0x80U
                           : static_cast<std::uint8_t>(kCharacters[bits % kCharacters.size()]);
    }
    return input;
}

}  // namespace corvale::fuzz
