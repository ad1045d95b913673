#include <corvale/text/RealConversion.hpp>

#include <corvale/text/ExactDecimal.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>

// Decimal to binary, correctly rounded, in integers.
//
// Idea      digits x 10^q = digits x 5^q x 2^q. The digits, shifted to the left end of their word,
//           times the 128 leading bits of 5^q are 192 bits; 53 of the upper word are kept, what
//           follows tells how to round.
// Why       One multiplication of 64 by 128 bits instead of long arithmetic. No rounding of the
//           processor takes part, so that no rounding mode or flushing of subnormals can matter.
// Invariant A power that is not exact is too large by less than its last bit, so the product is
//           too large by less than 2^64. That could turn the rounding only where the middle word
//           is 0 and what is dropped of the upper word exactly one half: proofs/numbers searches
//           all digits and powers and finds no such product, but for ties, which are ties. So the
//           middle word alone tells whether anything follows the upper one.
// Source    D. Lemire, "Number parsing at a gigabyte per second", Software: Practice and Experience
//           51 (2021), 1700-1727; N. Mushtak, D. Lemire, "Fast number parsing without fallback",
//           the same 53 (2023), 1467-1471. There powers are rounded down; here up, which needs no
//           special case for negative powers, and a proof of its own.
namespace corvale::internal {

namespace {

constexpr std::uint64_t kInfinityBits = 0x7FF0000000000000U;

// Drops the last bit, rounding to nearest, a tie to even; `hasMore` tells whether something follows
// that bit. Without a branch: which way it goes cannot be predicted.
std::uint64_t RoundLastBit(std::uint64_t bits, bool hasMore) noexcept {
    const std::uint64_t isOdd = bits >> 1U & 1U;
    return (bits + (isOdd | static_cast<std::uint64_t>(hasMore))) >> 1U;
}

// The bits of the nearest double to (high + tail) x 2^exponent, 2^63 <= high; `hasTail` tells
// 0 < tail < 1 from tail = 0.
std::uint64_t RoundToBits(std::uint64_t high, bool hasTail, int exponent) noexcept {
    int biased = exponent + 1086;
    if (biased >= 2047) return kInfinityBits;
    if (biased < 1) {  // subnormal: the significand has leading zeros
        const int zeros = 1 - biased;
        if (zeros > 63) return 0;
        hasTail = true;  // 19 digits times a power below 10^-300 are no multiple of 2^-1075
        high >>= zeros;
        biased = 1;
    }
    const std::uint64_t significand = RoundLastBit(high >> 10U, hasTail || high << 54U != 0);
    // The hidden bit adds the 1 that is missing in the exponent, and a carry moves to the next one.
    return (static_cast<std::uint64_t>(biased - 1) << 52U) + significand;
}

// The bits of the nearest double to digits x 10^exponent.
[[gnu::always_inline]] inline std::uint64_t NearestBits(std::uint64_t digits,
                                                        std::int64_t exponent) noexcept {
    if (digits == 0 || exponent < kLeastTenExponent) return 0;
    if (exponent > kGreatestTenExponent) return kInfinityBits;
    const int q = static_cast<int>(exponent);
    const PowerOfFive& power = PowerOf(q);
    const int shift = std::countl_zero(digits);
    const std::uint64_t factor = digits << shift;
    const Uint128 lower = Uint128{factor} * power.low;
    const Uint128 upper = Uint128{factor} * power.high + static_cast<std::uint64_t>(lower >> 64U);
    const auto high = static_cast<std::uint64_t>(upper >> 64U);
    const auto middle = static_cast<std::uint64_t>(upper);
    const int missing = static_cast<int>(~high >> 63U);
    return RoundToBits(high << missing, middle != 0, BinaryExponentOfTen(q) + 1 - shift - missing);
}

// The double of these bits or the next one above it, whichever is nearer to |number|; halfway the
// even one.
std::uint64_t RoundExactly(const ScannedReal& number, std::uint64_t below) noexcept {
    const auto order = CompareWithMiddle(number, below);
    const bool isOdd = (below & 1U) != 0;
    return below + (order > 0 || (order == 0 && isOdd) ? 1 : 0);
}

double WithSign(std::uint64_t bits, bool isNegative) noexcept {
    return std::bit_cast<double>(bits | static_cast<std::uint64_t>(isNegative) << 63U);
}

}  // namespace

// The first 19 digits from the first other than 0 on become `digits`, the others move the exponent.
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
            number.isTruncated = number.isTruncated || c != '0';
            if (!isFraction) ++number.exponent;
        }
    }
    return number;
}

double DecimalToDouble(std::uint64_t digits, std::int64_t exponent, bool isNegative) noexcept {
    return WithSign(NearestBits(digits, exponent), isNegative);
}

// The kept digits and their successor bracket the number. Where both round to the same double it is
// the answer; otherwise, which is rare, all digits decide between the lower one and the next.
double TruncatedToDouble(const ScannedReal& number) noexcept {
    const std::uint64_t below = NearestBits(number.digits, number.exponent);
    const std::uint64_t above = NearestBits(number.digits + 1, number.exponent);
    return WithSign(below == above ? below : RoundExactly(number, below), number.isNegative);
}

}  // namespace corvale::internal
