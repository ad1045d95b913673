#include <corvale/numeric/elementary/WideReal.hpp>

#include <corvale/base/Uint128.hpp>

#include <algorithm>
#include <bit>

namespace corvale::internal {

namespace {

constexpr std::uint64_t kFirstBit = std::uint64_t{1} << 63U;
constexpr std::int64_t kLeastNormal = -1021;  // the exponent of 2^-1022

std::uint64_t LowWord(Uint128 value) noexcept {
    return static_cast<std::uint64_t>(value);
}

std::uint64_t HighWord(Uint128 value) noexcept {
    return static_cast<std::uint64_t>(value >> 64U);
}

// The words i and i + 1, shifted left by `shift` bits, which may be 0.
std::uint64_t JoinedWord(std::span<const std::uint64_t> a, std::size_t i, unsigned shift) noexcept {
    if (i >= a.size()) return 0;
    const std::uint64_t next = i + 1 < a.size() ? a[i + 1] : 0;
    return shift == 0 ? a[i] : a[i] << shift | next >> (64U - shift);
}

Fraction ShiftedLeft(std::span<const std::uint64_t> a, std::size_t bits,
                     std::size_t width) noexcept {
    Fraction shifted{};
    for (std::size_t i = 0; i < width; ++i)
        shifted[i] = JoinedWord(a, i + bits / 64, static_cast<unsigned>(bits % 64));
    return shifted;
}

Fraction ShiftedRight(const Fraction& a, std::uint64_t bits, std::size_t width) noexcept {
    Fraction shifted{};
    if (bits >= 64 * width) return shifted;
    const auto words = static_cast<std::size_t>(bits / 64);
    const auto shift = static_cast<unsigned>(bits % 64);
    for (std::size_t i = words; i < width; ++i) {
        const std::uint64_t before =
            i > words && shift != 0 ? a[i - words - 1] << (64U - shift) : 0;
        shifted[i] = a[i - words] >> shift | before;
    }
    return shifted;
}

// How many bits of the fraction a double has: 53, or fewer where it is subnormal; below 0 for a
// value of less than half the least double.
std::int64_t KeptBits(const WideReal& value) noexcept {
    return 53 - std::max(kLeastNormal - value.exponent, std::int64_t{0});
}

// a - b, which is not negative.
Fraction Difference(const Fraction& a, const Fraction& b, std::size_t width) noexcept {
    Fraction difference{};
    std::uint64_t borrow = 0;
    for (std::size_t i = width; i-- > 0;) {
        const Uint128 word = Uint128{a[i]} - b[i] - borrow;
        difference[i] = LowWord(word);
        borrow = HighWord(word) & 1U;
    }
    return difference;
}

// The sum of two magnitudes, a's exponent being the larger; a carry costs the last bit.
WideReal SumOfMagnitudes(const WideReal& a, const Fraction& aligned, std::size_t width) noexcept {
    bool carries = false;
    WideReal sum = a;
    sum.fraction = Sum(a.fraction, aligned, width, carries);
    if (!carries) return sum;
    sum.fraction = ShiftedRight(sum.fraction, 1, width);
    sum.fraction[0] |= kFirstBit;
    ++sum.exponent;
    return sum;
}

}  // namespace

Fraction Product(const Fraction& a, const Fraction& b, std::size_t width) noexcept {
    std::array<std::uint64_t, 2 * kWide> whole{};
    for (std::size_t i = width; i-- > 0;) {
        std::uint64_t carry = 0;
        for (std::size_t j = width; j-- > 0;) {
            const Uint128 sum = Uint128{a[i]} * b[j] + whole[i + j + 1] + carry;
            whole[i + j + 1] = LowWord(sum);
            carry = HighWord(sum);
        }
        whole[i] = carry;
    }
    Fraction product{};
    for (std::size_t i = 0; i < width; ++i) product[i] = whole[i];
    return product;
}

// By half words: a 64-bit division is an instruction, a 128-bit one a call (bench: ElementarySlow).
Fraction Quotient(const Fraction& a, std::uint32_t divisor, std::size_t width) noexcept {
    Fraction quotient{};
    std::uint64_t rest = 0;
    for (std::size_t i = 0; i < width; ++i) {
        const std::uint64_t upper = rest << 32U | a[i] >> 32U;
        const std::uint64_t lower = (upper % divisor) << 32U | (a[i] & 0xFFFFFFFFU);
        quotient[i] = (upper / divisor) << 32U | lower / divisor;
        rest = lower % divisor;
    }
    return quotient;
}

Fraction Sum(const Fraction& a, const Fraction& b, std::size_t width, bool& carries) noexcept {
    Fraction sum{};
    std::uint64_t carry = 0;
    for (std::size_t i = width; i-- > 0;) {
        const Uint128 word = Uint128{a[i]} + b[i] + carry;
        sum[i] = LowWord(word);
        carry = HighWord(word);
    }
    carries = carry != 0;
    return sum;
}

Fraction Complement(const Fraction& a, std::size_t width) noexcept {
    Fraction turned{};
    for (std::size_t i = 0; i < width; ++i) turned[i] = ~a[i];
    return turned;
}

Fraction FractionOf(const WideReal& a, std::size_t width) noexcept {
    return ShiftedRight(a.fraction, static_cast<std::uint64_t>(-a.exponent), width);
}

WideReal Normalised(std::span<const std::uint64_t> words, std::int64_t exponent,
                    std::size_t width) noexcept {
    std::size_t zeros = 0;
    while (zeros < 64 * words.size() && words[zeros / 64] == 0) zeros += 64;
    if (zeros == 64 * words.size()) return {};
    zeros += static_cast<std::size_t>(std::countl_zero(words[zeros / 64]));
    return {ShiftedLeft(words, zeros, width), exponent - static_cast<std::int64_t>(zeros), false};
}

WideReal WideFromInteger(std::uint64_t significand, std::int64_t exponent) noexcept {
    return Normalised({&significand, 1}, exponent + 64, kWide);
}

WideReal WideFromDouble(double x) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const auto biased = static_cast<std::int64_t>(bits >> 52U & 0x7FFU);
    const std::uint64_t stored = bits & 0xFFFFFFFFFFFFFU;
    WideReal value = biased == 0 ? WideFromInteger(stored, -1074)
                                 : WideFromInteger(stored | std::uint64_t{1} << 52U, biased - 1075);
    value.isNegative = bits >> 63U != 0;
    return value;
}

WideReal Multiply(const WideReal& a, const WideReal& b, std::size_t width) noexcept {
    WideReal product =
        Normalised(Product(a.fraction, b.fraction, width), a.exponent + b.exponent, width);
    product.isNegative = a.isNegative != b.isNegative;
    return product;
}

WideReal Add(const WideReal& a, const WideReal& b, std::size_t width) noexcept {
    if (a.IsZero()) return b;
    if (b.IsZero()) return a;
    const bool isFirstLarger =
        a.exponent != b.exponent ? a.exponent > b.exponent : a.fraction >= b.fraction;
    const WideReal& larger = isFirstLarger ? a : b;
    const WideReal& smaller = isFirstLarger ? b : a;
    const auto distance = static_cast<std::uint64_t>(larger.exponent - smaller.exponent);
    const Fraction aligned = ShiftedRight(smaller.fraction, distance, width);
    if (a.isNegative == b.isNegative) return SumOfMagnitudes(larger, aligned, width);

    WideReal rest = Normalised(Difference(larger.fraction, aligned, width), larger.exponent, width);
    rest.isNegative = larger.isNegative;
    return rest;
}

WideReal Negated(WideReal a) noexcept {
    a.isNegative = !a.isNegative;
    return a;
}

// The fraction's first `kept` bits are the significand. The rest decides: its first bit says up or
// down, unless all bits that follow, up to the last word, are the opposite of it. Shifting by 53
// moves an error of 2^kErrorBits units to at most half a unit of the last word but one.
bool RoundsSafely(const WideReal& value, std::size_t width) noexcept {
    static_assert(kErrorBits + 53 < 64);
    const std::int64_t kept = KeptBits(value);
    if (kept < 0) return true;

    const Fraction rest = ShiftedLeft(value.fraction, static_cast<std::size_t>(kept), width);
    const std::uint64_t same = rest[0] >= kFirstBit ? 0 : ~std::uint64_t{0};
    std::uint64_t others = (rest[0] ^ same) & ~kFirstBit;
    for (std::size_t i = 1; i + 1 < width; ++i) others |= rest[i] ^ same;
    return others != 0;
}

double RoundedToDouble(const WideReal& value, std::size_t width) noexcept {
    const std::uint64_t sign = value.isNegative ? kFirstBit : 0;
    const std::int64_t kept = KeptBits(value);
    if (kept < 0 || value.IsZero()) return std::bit_cast<double>(sign);
    if (value.exponent > 1024) return std::bit_cast<double>(sign | std::uint64_t{0x7FF} << 52U);

    const Fraction rest = ShiftedLeft(value.fraction, static_cast<std::size_t>(kept), width);
    const std::uint64_t significand = kept == 0 ? 0 : value.fraction[0] >> (64 - kept);
    const auto steps =
        static_cast<std::uint64_t>(std::max(value.exponent - kLeastNormal, std::int64_t{0}));
    return std::bit_cast<double>(sign | ((steps << 52U) + significand + (rest[0] >> 63U)));
}

}  // namespace corvale::internal
