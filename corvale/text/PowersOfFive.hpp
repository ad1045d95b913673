// Internal to the library: not installed, may change in any commit.
//
// The powers of five that turn decimal exponents into binary ones, made while compiling. 10 KB.
// proofs/numbers compares them with powers of whole numbers.
#pragma once

#include <corvale/base/Uint128.hpp>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// The 128 leading bits of a power of five: between 2^127 and 2^128.
struct PowerOfFive {
    std::uint64_t high;
    std::uint64_t low;
};

// The exponents that matter: of a number of 19 digits or fewer a smaller exponent gives less than
// half the least double, a larger one more than the greatest.
constexpr int kLeastTenExponent = -342;
constexpr int kGreatestTenExponent = 308;

// 5^55 is the greatest power of five below 2^128.
constexpr int kGreatestExactExponent = 55;

namespace making {

// 5^342 has 795 bits; 128 more for the leading bits of its reciprocal.
using Wide = std::array<std::uint64_t, 15>;

// value = value * 5; must fit.
consteval void MultiplyByFive(Wide& value) noexcept {
    std::uint64_t carry = 0;
    for (std::uint64_t& word : value) {
        const Uint128 product = Uint128{word} * 5 + carry;
        word = static_cast<std::uint64_t>(product);
        carry = static_cast<std::uint64_t>(product >> 64U);
    }
}

// value = value / 5, rounded down. Rounding down at each step is the same as once at the end.
consteval void DivideByFive(Wide& value) noexcept {
    std::uint64_t remainder = 0;
    for (std::size_t i = value.size(); i > 0; --i) {
        const Uint128 dividend = Uint128{remainder} << 64U | value[i - 1];
        value[i - 1] = static_cast<std::uint64_t>(dividend / 5);
        remainder = static_cast<std::uint64_t>(dividend % 5);
    }
}

consteval PowerOfFive LeadingBits(const Wide& value) noexcept {
    std::size_t top = value.size() - 1;
    while (value[top] == 0) --top;
    const auto word = [&](std::size_t below) { return top >= below ? value[top - below] : 0; };
    const int shift = std::countl_zero(value[top]);
    if (shift == 0) return {word(0), word(1)};
    return {word(0) << shift | word(1) >> (64 - shift), word(1) << shift | word(2) >> (64 - shift)};
}

// The next number of 128 bits, for powers that have more. None of them is 128 ones, so it is one.
consteval PowerOfFive RoundUp(PowerOfFive power) noexcept {
    ++power.low;
    if (power.low == 0) ++power.high;
    return power;
}

consteval auto MakePowers() noexcept {
    std::array<PowerOfFive, kGreatestTenExponent - kLeastTenExponent + 1> powers{};
    Wide power{1};
    for (int q = 0; q <= kGreatestTenExponent; ++q, MultiplyByFive(power)) {
        const PowerOfFive bits = LeadingBits(power);
        powers[static_cast<std::size_t>(q - kLeastTenExponent)] =
            q <= kGreatestExactExponent ? bits : RoundUp(bits);
    }
    Wide reciprocal{};
    reciprocal.back() = std::uint64_t{1} << 63U;
    for (int q = -1; q >= kLeastTenExponent; --q) {
        DivideByFive(reciprocal);
        powers[static_cast<std::size_t>(q - kLeastTenExponent)] = RoundUp(LeadingBits(reciprocal));
    }
    return powers;
}

}  // namespace making

/// 5^q for the exponents above: exact for 0 to 55, otherwise the least 128 bits above it.
inline constexpr auto kPowersOfFive = making::MakePowers();

[[nodiscard]] constexpr const PowerOfFive& PowerOf(int q) noexcept {
    return kPowersOfFive[static_cast<std::size_t>(q - kLeastTenExponent)];
}

/// floor(log2(10^q)) for the exponents above.
[[nodiscard]] constexpr int BinaryExponentOfTen(int q) noexcept {
    return (q * 217706) >> 16;  // log2(10) = 217705.9 / 65536: right to q = 642
}

}  // namespace corvale::internal
