#include <corvale/text/RealConversion.hpp>

#include <corvale/text/ExactDecimal.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>

namespace corvale::internal {

namespace {

// The bits of a positive double: the answer, or (where it is not sure) perhaps the double below it.
struct Estimate {
    std::uint64_t bits;
    bool isSure;
};

constexpr std::uint64_t kInfinityBits = 0x7FF0000000000000U;

// The nearest double to (high + tail) x 2^exponent, 2^62 <= high; `hasTail` tells 0 < tail < 1 from
// tail = 0. No branch on what is rounded: which way it goes cannot be predicted.
std::uint64_t RoundToBits(std::uint64_t high, bool hasTail, int exponent) noexcept {
    int dropped = 10 + static_cast<int>(high >> 63U);
    int biased = exponent + dropped + 1075;
    if (biased >= 2047) return kInfinityBits;
    if (biased < 1) {  // subnormal: fewer bits are kept
        dropped += 1 - biased;
        biased = 1;
        if (dropped > 64) return 0;
    }
    const std::uint64_t doubled = high >> (dropped - 1);  // with the first bit that is dropped
    const bool isSticky = hasTail || high << 1U << (64 - dropped) != 0;
    const std::uint64_t significand = doubled >> 1U;
    const std::uint64_t up = doubled & (significand | static_cast<std::uint64_t>(isSticky)) & 1U;
    // The hidden bit adds the 1 that is missing in the exponent, and a carry moves to the next one.
    return (static_cast<std::uint64_t>(biased - 1) << 52U) + significand + up;
}

// Of the powers that are not exact none begins like a power of two for 64 bits, so a product with
// one of them keeps its first bit when 1 is taken from the upper word.
static_assert([] {
    for (int q = kLeastTenExponent; q <= kGreatestTenExponent; ++q) {
        const bool isExact = q >= 0 && q <= kGreatestExactExponent;
        if (!isExact && PowerOf(q).high == std::uint64_t{1} << 63U) return false;
    }
    return true;
}());

// digits x 10^exponent. The product of the digits, moved to the left end of their word, and a power
// of five has 192 bits. The power is exact or less than 1 too large, so the product is exact or
// less than 2^64 too large, and the upper word is right unless the middle one is 0. Even then the
// true product is whole, and the upper word right, where the power divides by 5^27 or less: the
// next such product is at least 5^-27 > 2^-64 upper units away.
[[gnu::always_inline]] inline Estimate EstimateBits(std::uint64_t digits,
                                                    std::int64_t exponent) noexcept {
    if (digits == 0 || exponent < kLeastTenExponent) return {0, true};
    if (exponent > kGreatestTenExponent) return {kInfinityBits, true};
    const int q = static_cast<int>(exponent);
    const PowerOfFive& power = PowerOf(q);
    const int shift = std::countl_zero(digits);
    const std::uint64_t factor = digits << shift;

    const Uint128 lower = Uint128{factor} * power.low;
    const Uint128 upper = Uint128{factor} * power.high + static_cast<std::uint64_t>(lower >> 64U);
    const auto high = static_cast<std::uint64_t>(upper >> 64U);
    const auto middle = static_cast<std::uint64_t>(upper);
    const int binary = BinaryExponentOfTen(q) + 1 - shift;

    const bool isPowerExact = q >= 0 && q <= kGreatestExactExponent;
    if (middle == 0 && !isPowerExact && (q >= 0 || q < -27))
        return {RoundToBits(high - 1, true, binary), false};
    const bool hasTail = middle != 0 || (isPowerExact && static_cast<std::uint64_t>(lower) != 0);
    return {RoundToBits(high, hasTail, binary), true};
}

// The double of these bits or the next one, whichever is nearer to |number|.
std::uint64_t RoundExactly(const ScannedReal& number, std::uint64_t below) noexcept {
    if (below == kInfinityBits) return below;
    const auto order = CompareWithMiddle(number, below);
    const bool isOdd = (below & 1U) != 0;
    return below + (order > 0 || (order == 0 && isOdd) ? 1 : 0);
}

double WithSign(std::uint64_t bits, bool isNegative) noexcept {
    return std::bit_cast<double>(bits | static_cast<std::uint64_t>(isNegative) << 63U);
}

}  // namespace

// The first 19 digits that count become `digits`, the others move the exponent.
ScannedReal KeepFirstDigits(std::string_view mantissa, bool isNegative) noexcept {
    constexpr int kKeptDigits = 19;
    ScannedReal number{.isNegative = isNegative, .mantissa = mantissa};
    int kept = 0;
    bool isFraction = false;
    for (const char c : mantissa) {
        if (c == '.') {
            isFraction = true;
        } else if (kept < kKeptDigits) {
            number.digits = number.digits * 10 + static_cast<std::uint64_t>(c - '0');
            if (number.digits != 0) ++kept;
            if (isFraction) --number.exponent;
        } else {
            number.isCut = number.isCut || c != '0';
            if (!isFraction) ++number.exponent;
        }
    }
    return number;
}

double DecimalToDouble(std::uint64_t digits, std::int64_t exponent, bool isNegative) noexcept {
    const Estimate estimate = EstimateBits(digits, exponent);
    if (estimate.isSure) return WithSign(estimate.bits, isNegative);
    return WithSign(RoundExactly({digits, exponent}, estimate.bits), isNegative);
}

// The digits and their successor bracket the number. Where both round to the same double it is the
// answer; otherwise the exact comparison decides between the lower one and the next.
double CutToDouble(const ScannedReal& number) noexcept {
    const Estimate below = EstimateBits(number.digits, number.exponent);
    const Estimate above = EstimateBits(number.digits + 1, number.exponent);
    const bool isDecided = below.isSure && above.isSure && below.bits == above.bits;
    const std::uint64_t bits = isDecided ? below.bits : RoundExactly(number, below.bits);
    return WithSign(bits, number.isNegative);
}

}  // namespace corvale::internal
