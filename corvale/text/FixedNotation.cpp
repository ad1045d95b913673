#include <corvale/text/FixedNotation.hpp>

#include <corvale/text/DigitWords.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

// Doubles in fixed notation, exact.
//
// Idea      A double is significand / 2^shift. Its whole part is a shift away; its decimals are
//           fraction x 10^decimals / 2^shift, one product of 53 by 64 bits, of which the bits that
//           the division drops tell how to round. Digits are written in words of eight that end at
//           a fixed place, the point, so that no branch depends on how many there are.
// Why       A number of decimals that is asked for needs no search for the shortest digits, which
//           other algorithms spend their time on; bench: FixedSix and FixedTwelve in NumbersBench.
// Invariant decimals <= 19, so that 10^decimals is a word, and magnitude < 2^63, so that the whole
//           part has 19 digits. What is larger goes to the standard library, which is exact, too.
// Source    Derived here
namespace corvale::internal {

namespace {

// 10^19 is the greatest power of ten below 2^64.
constexpr std::int32_t kFastDecimals = 19;
constexpr auto kPowersOfTen = [] {
    std::array<std::uint64_t, kFastDecimals + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();

// The index of the point in the buffer: before it 19 digits in whole words, and a sign.
constexpr std::size_t kPoint = 24;
static_assert(kPoint + 1 + kFastDecimals + kWidestRendering <= RenderingBuffer{}.size());

// A magnitude, split at the point: whole + fraction / 10^decimals.
struct Parts {
    std::uint64_t whole;
    std::uint64_t fraction;
};

// A quotient by a power of two: the whole part, and the first 64 bits of what is dropped. The last
// of them is sticky: 1 if any bit after it is.
struct Quotient {
    std::uint64_t whole;
    std::uint64_t dropped;
};

// product / 2^shift, 64 <= shift < 128.
Quotient Divide(Uint128 product, int shift) noexcept {
    const auto high = static_cast<std::uint64_t>(product >> 64U);
    const auto low = static_cast<std::uint64_t>(product);
    if (shift == 64) return {high, low};
    return {high >> (shift - 64), high << (128 - shift) | static_cast<std::uint64_t>(low != 0)};
}

// The product has 117 bits at most. No branch on the rounding: which way it goes cannot be
// predicted.
Parts RoundToDecimals(double magnitude, std::size_t decimals) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52U;
    const auto biased = static_cast<int>(bits >> 52U);
    const std::uint64_t fractionBits = bits & (kHiddenBit - 1);
    const std::uint64_t significand = biased == 0 ? fractionBits : fractionBits | kHiddenBit;
    const int shift = 1075 - (biased == 0 ? 1 : biased);

    if (shift <= 0) return {significand << -shift, 0};
    if (shift >= 128) return {0, 0};  // the product is below 2^117, less than half of 2^shift
    const bool isSmall = shift >= 64;
    const std::uint64_t whole = isSmall ? 0 : significand >> shift;
    // The bits of the whole part are shifted out, and what is left is a fraction of 2^64.
    const std::uint64_t rest = isSmall ? significand : significand << (64 - shift);
    const Quotient parts = Divide(Uint128{rest} * kPowersOfTen[decimals], isSmall ? shift : 64);

    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
    const bool roundsUp = parts.dropped > kHalf - (parts.whole & 1U);  // halfway: to the even digit
    const std::uint64_t fraction = parts.whole + static_cast<std::uint64_t>(roundsUp);
    if (fraction == kPowersOfTen[decimals]) return {whole + 1, 0};
    return {whole, fraction};
}

// floor(bits x log10(2)) for a number of up to 64 bits: its digits, or one less. 1233 / 4096 is
// log10(2) rounded up.
constexpr std::size_t LeastDigits(std::size_t bits) noexcept {
    return bits * 1233 / 4096;
}
static_assert([] {
    for (std::size_t bits = 1; bits <= 64; ++bits) {
        const std::uint64_t least = std::uint64_t{1} << (bits - 1), most = least + (least - 1);
        const std::size_t digits = LeastDigits(bits);
        if (digits > 0 && least < kPowersOfTen[digits - 1]) return false;
        if (digits < kFastDecimals && most >= kPowersOfTen[digits + 1]) return false;
    }
    return true;
}());

std::size_t CountDigits(std::uint64_t number) noexcept {
    const std::size_t digits = LeastDigits(static_cast<std::size_t>(std::bit_width(number)));
    return digits + (number >= kPowersOfTen[digits] ? 1 : 0);
}

constexpr std::uint64_t kEightDigits = 100000000;

// Writes the last `count` digits of `number` up to `end`, in whole words of eight: up to seven zeros
// before them are written, too.
void PutDigits(std::uint64_t number, std::size_t count, char* end) noexcept {
    while (count > 8) {
        end -= 8;
        StoreLittle(EightDigits(number % kEightDigits), end);
        number /= kEightDigits;
        count -= 8;
    }
    StoreLittle(EightDigits(number), end - 8);
}

// Writes `number` up to `end`, likewise, and returns how many digits it has: none for 0. Those of a
// number of up to eight are counted without a branch: how many there are cannot be predicted.
std::size_t PutWhole(std::uint64_t number, char* end) noexcept {
    if (number >= kEightDigits) {
        const std::size_t count = CountDigits(number);
        PutDigits(number, count, end);
        return count;
    }
    const std::uint64_t digits = EightDigits(number);
    StoreLittle(digits, end - 8);
    return 8 - ZeroBytesFirst(DigitValues(digits));
}

// The fraction first: the zeros before its digits are overwritten by what precedes the point. The
// character before the whole part is written even where there is no sign, again without a branch.
std::string_view RenderParts(Parts parts, std::size_t decimals, char sign,
                             RenderingBuffer& buffer) noexcept {
    char* const point = buffer.data() + kPoint;
    char* const end = point + 1 + decimals;
    PutDigits(parts.fraction, decimals, end);
    std::memset(end, ' ', kWidestRendering);
    char* first = point - PutWhole(parts.whole, point);
    *point = '.';
    first[-1] = sign;
    first -= static_cast<std::ptrdiff_t>(sign != '\0');
    return {first, static_cast<std::size_t>(end - first)};
}

// More decimals, or more digits before the point, than words hold. The standard library's conversion
// is exact, too; a zero before its point is left out.
std::string_view RenderLong(double magnitude, std::int32_t decimals, char sign,
                            RenderingBuffer& buffer) noexcept {
    if (magnitude >= 1e30 || decimals > static_cast<std::int32_t>(kWidestRendering)) return {};
    buffer.fill(' ');
    char* const digits = buffer.data() + 1;
    const auto end = std::to_chars(digits, buffer.data() + buffer.size(), magnitude,
                                   std::chars_format::fixed, decimals)
                         .ptr;
    char* first = *digits == '0' ? digits + 1 : digits;
    if (sign != '\0') *--first = sign;
    return {first, static_cast<std::size_t>(end - first)};
}

std::string_view RenderText(std::string_view text, RenderingBuffer& buffer) noexcept {
    buffer.fill(' ');
    text.copy(buffer.data(), text.size());
    return {buffer.data(), text.size()};
}

std::string_view RenderInfinity(char sign, RenderingBuffer& buffer) noexcept {
    if (sign == '\0') return RenderText("Inf", buffer);
    return RenderText(sign == '+' ? "+Inf" : "-Inf", buffer);
}

}  // namespace

std::string_view RenderFixed(double value, std::int32_t decimals, SignRule rule,
                             RenderingBuffer& buffer) noexcept {
    if (std::isnan(value)) return RenderText("NaN", buffer);
    const char plus = rule == SignRule::Always ? '+' : '\0';
    const char sign = std::signbit(value) ? '-' : plus;
    const double magnitude = std::fabs(value);
    if (std::isinf(magnitude)) return RenderInfinity(sign, buffer);

    constexpr double kFastLimit = 0x1p63;  // up to 19 digits
    if (decimals > kFastDecimals || magnitude >= kFastLimit)
        return RenderLong(magnitude, decimals, sign, buffer);
    const auto count = static_cast<std::size_t>(decimals);
    return RenderParts(RoundToDecimals(magnitude, count), count, sign, buffer);
}

}  // namespace corvale::internal
