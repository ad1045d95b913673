#include <corvale/text/FixedNotation.hpp>

#include <corvale/text/DigitWords.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>
#include <charconv>
#include <cmath>

namespace corvale::internal {

namespace {

// 10^19 is the greatest power of ten below 2^64.
constexpr std::int32_t kFastDecimals = 19;
constexpr auto kPowersOfTen = [] {
    std::array<std::uint64_t, kFastDecimals + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}();

// Where the point stands: room for 19 digits and a sign before it, in whole words.
constexpr std::size_t kPoint = 24;

// A magnitude, cut at the point: whole + fraction / 10^decimals.
struct Parts {
    std::uint64_t whole;
    std::uint64_t fraction;
};

// The double is significand / 2^shift, so its decimals are significand x 10^decimals / 2^shift: at
// most 117 bits before the division, and the remainder tells how to round.
Parts RoundToDecimals(double magnitude, std::size_t decimals) noexcept {
    const auto bits = std::bit_cast<std::uint64_t>(magnitude);
    constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52U;
    const auto biased = static_cast<int>(bits >> 52U);
    const std::uint64_t fractionBits = bits & (kHiddenBit - 1);
    const std::uint64_t significand = biased == 0 ? fractionBits : fractionBits | kHiddenBit;
    const int shift = 1075 - (biased == 0 ? 1 : biased);

    if (shift <= 0) return {significand << -shift, 0};
    if (shift >= 128) return {0, 0};  // the product is below 2^117, less than half of 2^shift
    const std::uint64_t whole = shift < 64 ? significand >> shift : 0;
    const std::uint64_t rest = shift < 64 ? significand - (whole << shift) : significand;

    const Uint128 product = Uint128{rest} * kPowersOfTen[decimals];
    const auto down = static_cast<std::uint64_t>(product >> shift);
    const Uint128 remainder = product - (Uint128{down} << shift);
    const Uint128 half = Uint128{1} << (shift - 1);
    const bool isUp = remainder > half || (remainder == half && (down & 1U) != 0);
    const std::uint64_t fraction = down + (isUp ? 1 : 0);
    if (fraction == kPowersOfTen[decimals]) return {whole + 1, 0};
    return {whole, fraction};
}

std::size_t CountDigits(std::uint64_t number) noexcept {
    // 1233 / 4096 is log10(2), rounded up: the estimate is right or one too large
    const std::size_t atMost = static_cast<std::size_t>(std::bit_width(number)) * 1233 / 4096;
    return atMost + (number >= kPowersOfTen[atMost] ? 1 : 0);
}

// Writes `count` digits of `number` so that they end before `end`, in whole words of eight: up to
// seven zeros before the digits are written, too.
void PutDigits(std::uint64_t number, std::size_t count, char* end) noexcept {
    constexpr std::uint64_t kEightDigits = 100000000;
    while (count > 8) {
        end -= 8;
        StoreEight(EightDigits(number % kEightDigits), end);
        number /= kEightDigits;
        count -= 8;
    }
    StoreEight(EightDigits(number), end - 8);
}

std::string_view RenderParts(Parts parts, std::size_t decimals, char sign,
                             RenderingRoom& room) noexcept {
    const std::size_t end = kPoint + 1 + decimals;
    PutDigits(parts.fraction, decimals, room.data() + end);
    std::size_t first = kPoint;
    if (parts.whole != 0) {
        const std::size_t count = CountDigits(parts.whole);
        PutDigits(parts.whole, count, room.data() + kPoint);
        first -= count;
    }
    room[kPoint] = '.';
    if (sign != '\0') room[--first] = sign;
    return {room.data() + first, end - first};
}

// More decimals, or more digits before the point, than the words hold. The library's conversion
// is exact, too; its "0." loses the zero.
std::string_view RenderLong(double magnitude, std::int32_t decimals, char sign,
                            RenderingRoom& room) noexcept {
    if (magnitude >= 1e30 || decimals > static_cast<std::int32_t>(kWidestRendering)) return {};
    char* const digits = room.data() + 1;
    const auto end = std::to_chars(digits, room.data() + room.size(), magnitude,
                                   std::chars_format::fixed, decimals)
                         .ptr;
    char* first = *digits == '0' ? digits + 1 : digits;
    if (sign != '\0') *--first = sign;
    return {first, static_cast<std::size_t>(end - first)};
}

std::string_view RenderInfinity(char sign) noexcept {
    if (sign == '\0') return "Inf";
    return sign == '+' ? "+Inf" : "-Inf";
}

}  // namespace

std::string_view RenderFixed(double value, std::int32_t decimals, SignRule rule,
                             RenderingRoom& room) noexcept {
    if (std::isnan(value)) return "NaN";
    const char plus = rule == SignRule::Always ? '+' : '\0';
    const char sign = std::signbit(value) ? '-' : plus;
    const double magnitude = std::fabs(value);
    if (std::isinf(magnitude)) return RenderInfinity(sign);

    constexpr double kFastLimit = 0x1p63;  // up to 19 digits
    if (decimals > kFastDecimals || magnitude >= kFastLimit)
        return RenderLong(magnitude, decimals, sign, room);
    const auto count = static_cast<std::size_t>(decimals);
    return RenderParts(RoundToDecimals(magnitude, count), count, sign, room);
}

}  // namespace corvale::internal
