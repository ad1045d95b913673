#include <corvale/numeric/elementary/AngleReduction.hpp>

#include <corvale/base/Uint128.hpp>
#include <corvale/numeric/elementary/SineTable.hpp>

#include <array>
#include <bit>
#include <iterator>

namespace corvale::internal {

namespace {

constexpr std::uint64_t kFirstBit = std::uint64_t{1} << 63U;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52U;

// 2 pi, as a wide real and as a head of 26 bits and the rest.
constexpr WideReal kTwoPi = {kPiFraction, 3, false};
constexpr double kTwoPiHead = 0x1.921fb58p2;
constexpr double kTwoPiRest = -0x1.dde973dcb3b3ap-25;

// 64 bits of 2/pi from `bit` on, with the zeros in front of it.
std::uint64_t WindowWord(std::size_t bit) noexcept {
    const Uint128 both = Uint128{kTwoOverPi[bit / 64]} << 64U | kTwoOverPi[bit / 64 + 1];
    return static_cast<std::uint64_t>(both << (bit % 64) >> 64U);
}

template <std::size_t kCount>
using TurnWords = std::array<std::uint64_t, kCount>;

// |x| / (2 pi) without its whole part. For |x| = m 2^e the bit of 2/pi with the weight 2^-j
// contributes whole turns for j <= e - 2: the window begins at j = e - 1.
//
// |x| >= 2^-27 has e >= -79, whose window begins 80 bits before the point; the largest e is 971.
template <std::size_t kCount>
void FractionOfTurn(double x, TurnWords<kCount>& words) noexcept {
    static_assert(std::size(kTwoOverPi) * 64 >= 971 + 126 + 64 * kCount + 1);
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const std::uint64_t biased = bits >> 52U & 0x7FFU;
    const std::uint64_t significand = (bits & (kHiddenBit - 1)) | kHiddenBit;
    const auto first = static_cast<std::size_t>(biased + 126 - 1075);

    std::uint64_t carry = 0;
    for (std::size_t i = kCount; i-- > 0;) {
        const Uint128 sum = Uint128{WindowWord(first + 64 * i)} * significand + carry;
        words[i] = static_cast<std::uint64_t>(sum);
        carry = static_cast<std::uint64_t>(sum >> 64U);
    }
}

// What is known of a remainder beside its words, which are a fraction of a turn in two's
// complement.
struct TurnStep {
    std::uint32_t step;
    // All ones where the words are negative, else 0. "Exclusive or" with it makes them a magnitude,
    // a negative one a unit too small.
    std::uint64_t turnOver;
    std::uint64_t sign;  // of the remainder of x, as the sign bit of a double
};

template <std::size_t kCount>
TurnStep ReduceTurn(double x, unsigned stepBits, TurnWords<kCount>& words) noexcept {
    FractionOfTurn(x, words);
    const std::uint64_t halfStep = kFirstBit >> stepBits;
    const std::uint64_t step = (words[0] + halfStep) >> (64U - stepBits);
    words[0] -= step << (64U - stepBits);
    const std::uint64_t turnOver = 0 - (words[0] >> 63U);
    const std::uint64_t isNegative = 0 - (std::bit_cast<std::uint64_t>(x) >> 63U);
    return {static_cast<std::uint32_t>((step ^ isNegative) - isNegative), turnOver,
            (turnOver ^ isNegative) & kFirstBit};
}

template <std::size_t kWidth>
ReducedAngle<WideReal> Reduced(double x, unsigned stepBits) noexcept {
    TurnWords<kWidth + 2> words;
    const TurnStep turn = ReduceTurn(x, stepBits, words);
    for (std::uint64_t& word : words) word ^= turn.turnOver;
    WideReal rest = Multiply(Normalised(words, 0, kWidth), kTwoPi, kWidth);
    rest.isNegative = turn.sign != 0;
    return {turn.step, rest};
}

// 2^-exponent with a sign bit.
double SignedPowerOfTwo(std::uint64_t sign, std::size_t exponent) noexcept {
    return std::bit_cast<double>(sign | std::uint64_t{1023 - exponent} << 52U);
}

}  // namespace

ReducedAngle<WideReal> ReduceWide(double x, unsigned stepBits, std::size_t width) noexcept {
    if (width == kNarrow) return Reduced<kNarrow>(x, stepBits);
    return width == kMiddle ? Reduced<kMiddle>(x, stepBits) : Reduced<kWide>(x, stepBits);
}

// The first 26 bits of the remainder times those of 2 pi are exact. The 53 bits that follow enter
// the second product alone: together 79 bits are used.
ReducedAngle<DoubleDouble> ReduceExactly(double x, unsigned stepBits) noexcept {
    TurnWords<4> words;
    const auto [step, turnOver, sign] = ReduceTurn(x, stepBits, words);
    const std::size_t first = words[0] != turnOver ? 0 : words[1] != turnOver ? 1 : 2;
    const std::uint64_t word = words[first] ^ turnOver;
    const auto zeros = static_cast<unsigned>(std::countl_zero(word));
    const Uint128 both = (Uint128{word} << 64U | (words[first + 1] ^ turnOver)) << zeros;
    const auto lead = static_cast<std::int64_t>(both >> 102U);
    const auto next = static_cast<std::int64_t>(both >> 49U & (2 * kHiddenBit - 1));
    const double scale = SignedPowerOfTwo(sign, 64 * first + zeros + 26);
    const double head = static_cast<double>(lead) * scale;
    const double rest = static_cast<double>(next) * (scale * 0x1p-53);
    const double low = head * kTwoPiRest + rest * (kTwoPiHead + kTwoPiRest);
    return {step, FastTwoSum(head * kTwoPiHead, low)};
}

}  // namespace corvale::internal
