#include <corvale/text/RealConversion.hpp>

#include <corvale/text/DigitWords.hpp>
#include <corvale/text/ExactDecimal.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>

namespace corvale::internal {

namespace {

constexpr std::size_t kKeptDigits = 19;  // the most that always fit 64 bits

// From here on every exponent means infinity or zero, whatever the mantissa of a text in memory is.
constexpr std::int64_t kEndlessExponent = 1'000'000'000'000'000;

bool IsSign(char c) noexcept {
    return c == '+' || c == '-';
}

bool IsExponentLetter(char c, bool exponentQ) noexcept {
    const int lower = c | 0x20;
    return lower == 'e' || lower == 'd' || (exponentQ && lower == 'q');
}

// More digits than are kept: the first 19 that count become `digits`, the others move the exponent.
void KeepFirstDigits(ScannedReal& number) noexcept {
    number.digits = 0;
    number.exponent = 0;
    std::size_t kept = 0;
    bool isFraction = false;
    for (const char c : number.mantissa) {
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
}

// Takes the mantissa at `at` and returns the position after it; `npos` where it has no digit and
// needs one.
std::size_t ScanMantissa(std::string_view text, std::size_t at, RealRules rules,
                         ScannedReal& number) noexcept {
    const std::size_t first = at;
    at = TakeDigits(text, at, number.digits);
    std::size_t count = at - first;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = at + 1;
        at = TakeDigits(text, fraction, number.digits);
        count += at - fraction;
        number.exponent = -static_cast<std::int64_t>(at - fraction);
    }
    if (count == 0) {
        if (!rules.emptyMantissa) return std::string_view::npos;
        number.isNegative = false;
    }
    number.mantissa = {text.data() + first, at - first};
    if (count > kKeptDigits) KeepFirstDigits(number);
    return at;
}

// Takes the digits of an exponent; too many of them are as good as endless.
std::size_t ScanExponentDigits(std::string_view text, std::size_t at,
                               std::int64_t& exponent) noexcept {
    std::uint64_t value = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        if (value < kEndlessExponent)
            value = value * 10 + static_cast<std::uint64_t>(text[at] - '0');
    }
    exponent = static_cast<std::int64_t>(value);
    return at;
}

// Takes the exponent at `at`, if one is there, and returns the position after it.
std::size_t ScanExponent(std::string_view text, std::size_t at, RealRules rules,
                         ScannedReal& number) noexcept {
    if (at >= text.size()) return at;
    const bool hasLetter = IsExponentLetter(text[at], rules.exponentQ);
    if (!hasLetter && !IsSign(text[at])) return at;
    if (hasLetter) ++at;
    bool isNegative = false;
    if (at < text.size() && IsSign(text[at])) isNegative = text[at++] == '-';
    std::int64_t exponent;
    at = ScanExponentDigits(text, at, exponent);
    number.exponent += isNegative ? -exponent : exponent;
    return at;
}

// The bits of a positive double: the answer, or (where it is not sure) perhaps the double below it.
struct Estimate {
    std::uint64_t bits;
    bool isSure;
};

constexpr Estimate kZero = {0, true};
constexpr Estimate kInfinity = {0x7FF0000000000000U, true};

// The nearest double to (high + tail) x 2^exponent, 2^62 <= high; `hasTail` tells 0 < tail < 1 from
// tail = 0.
std::uint64_t RoundToBits(std::uint64_t high, bool hasTail, int exponent) noexcept {
    int dropped = 11 - std::countl_zero(high);
    int biased = exponent + dropped + 1075;
    if (biased >= 2047) return kInfinity.bits;
    if (biased < 1) {  // subnormal: fewer bits are kept
        dropped += 1 - biased;
        biased = 1;
    }
    if (dropped > 64) return 0;

    std::uint64_t significand = dropped == 64 ? 0 : high >> dropped;
    const std::uint64_t rest = high << (64 - dropped);
    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
    const bool isOdd = (significand & 1U) != 0;
    // no branch: which way it goes cannot be predicted
    significand += static_cast<unsigned>(rest > kHalf) |
                   (static_cast<unsigned>(rest == kHalf) & static_cast<unsigned>(hasTail || isOdd));
    // The hidden bit adds the 1 that is missing in the exponent, and a carry moves to the next one.
    return (static_cast<std::uint64_t>(biased - 1) << 52U) + significand;
}

// digits x 10^exponent. The product of the digits, moved to the left end of their word, and a power
// of five has 192 bits. The power is exact or less than 1 too large, so the product is exact or
// less than 2^64 too large, and the upper word is right unless the middle one is 0. Even then the
// true product is whole, and the upper word right, where the power divides by 5^27 or less: the
// next such product is at least 5^-27 > 2^-64 upper units away.
Estimate EstimateBits(std::uint64_t digits, std::int64_t exponent) noexcept {
    if (digits == 0 || exponent < kLeastTenExponent) return kZero;
    if (exponent > kGreatestTenExponent) return kInfinity;
    const int q = static_cast<int>(exponent);
    const PowerOfFive& power = kPowersOfFive[static_cast<std::size_t>(q - kLeastTenExponent)];
    const int shift = std::countl_zero(digits);
    const std::uint64_t factor = digits << shift;

    const Uint128 lower = Uint128{factor} * power.low;
    const Uint128 upper = Uint128{factor} * power.high + static_cast<std::uint64_t>(lower >> 64U);
    const auto high = static_cast<std::uint64_t>(upper >> 64U);
    const auto middle = static_cast<std::uint64_t>(upper);
    const int binary = BinaryExponentOfTen(q) + 1 - shift;

    if (middle != 0) return {RoundToBits(high, true, binary), true};
    if (q >= 0 && q <= kGreatestExactExponent)
        return {RoundToBits(high, static_cast<std::uint64_t>(lower) != 0, binary), true};
    if (q < 0 && q >= -27) return {RoundToBits(high, false, binary), true};
    return {RoundToBits(high - 1, true, binary), false};
}

// The digits and their successor bracket the number. Where both round to the same double it is the
// answer; otherwise the exact comparison decides between the lower one and the next.
std::uint64_t RoundHardCase(const ScannedReal& number, Estimate below) noexcept {
    if (below.bits == kInfinity.bits) return below.bits;
    const Estimate above = EstimateBits(number.digits + 1, number.exponent);
    if (number.isCut && below.isSure && above.isSure && below.bits == above.bits) return below.bits;
    const auto order = CompareWithMiddle(number, below.bits);
    const bool isOdd = (below.bits & 1U) != 0;
    return below.bits + (order > 0 || (order == 0 && isOdd) ? 1 : 0);
}

// The steps of the public pair, compiled into each of its callers.

[[gnu::always_inline]] inline std::size_t Scan(std::string_view text, std::size_t at,
                                               RealRules rules, ScannedReal& number) noexcept {
    number = {};
    if (at < text.size()) {
        number.isNegative = text[at] == '-';
        at += IsSign(text[at]) ? 1 : 0;
    }
    at = ScanMantissa(text, at, rules, number);
    if (at == std::string_view::npos) return at;
    return ScanExponent(text, at, rules, number);
}

[[gnu::always_inline]] inline double Convert(const ScannedReal& number) noexcept {
    const Estimate estimate = EstimateBits(number.digits, number.exponent);
    const std::uint64_t bits =
        estimate.isSure && !number.isCut ? estimate.bits : RoundHardCase(number, estimate);
    const std::uint64_t sign = number.isNegative ? std::uint64_t{1} << 63U : 0;
    return std::bit_cast<double>(bits | sign);
}

}  // namespace

std::size_t ScanReal(std::string_view text, std::size_t at, RealRules rules,
                     ScannedReal& number) noexcept {
    return Scan(text, at, rules, number);
}

double ToDouble(const ScannedReal& number) noexcept {
    return Convert(number);
}

double ReadReal(std::string_view text, std::size_t at, RealRules rules, std::size_t& end) noexcept {
    ScannedReal number;
    end = Scan(text, at, rules, number);
    return Convert(number);
}

}  // namespace corvale::internal
