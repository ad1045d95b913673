#include <corvale/text/FixedNotation.hpp>

#include <corvale/text/DigitWords.hpp>
#include <corvale/text/PowersOfFive.hpp>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

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
static_assert(kPoint + 1 + kFastDecimals + kWidestRendering <= RenderingRoom{}.size());

// A magnitude, cut at the point: whole + fraction / 10^decimals.
struct Parts {
    std::uint64_t whole;
    std::uint64_t fraction;
};

// What a product is above the point, and the first 64 bits below it; the last of them stands for
// all that follow.
struct Split {
    std::uint64_t above;
    std::uint64_t below;
};

// product / 2^shift, 64 <= shift < 128.
Split Divide(Uint128 product, int shift) noexcept {
    const auto high = static_cast<std::uint64_t>(product >> 64U);
    const auto low = static_cast<std::uint64_t>(product);
    if (shift == 64) return {high, low};
    return {high >> (shift - 64), high << (128 - shift) | static_cast<std::uint64_t>(low != 0)};
}

// The double is significand / 2^shift, so its decimals are significand x 10^decimals / 2^shift: at
// most 117 bits before the division, and what is left tells how to round. No branch on that: which
// way it goes cannot be predicted.
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
    // The upper bits, which are whole, fall out.
    const std::uint64_t rest = isSmall ? significand : significand << (64 - shift);
    const Split split = Divide(Uint128{rest} * kPowersOfTen[decimals], isSmall ? shift : 64);

    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63U;
    const bool isUp = split.below > kHalf - (split.above & 1U);  // halfway: to the even digit
    const std::uint64_t fraction = split.above + static_cast<std::uint64_t>(isUp);
    if (fraction == kPowersOfTen[decimals]) return {whole + 1, 0};
    return {whole, fraction};
}

std::size_t CountDigits(std::uint64_t number) noexcept {
    // 1233 / 4096 is log10(2), rounded up: the estimate is right or one too large
    const std::size_t atMost = static_cast<std::size_t>(std::bit_width(number)) * 1233 / 4096;
    return atMost + (number >= kPowersOfTen[atMost] ? 1 : 0);
}

constexpr std::uint64_t kEightDigits = 100000000;

// Writes `count` digits of `number` so that they end before `end`, in whole words of eight: up to
// seven zeros before the digits are written, too.
void PutDigits(std::uint64_t number, std::size_t count, char* end) noexcept {
    while (count > 8) {
        end -= 8;
        StoreLittle(EightDigits(number % kEightDigits), end);
        number /= kEightDigits;
        count -= 8;
    }
    StoreLittle(EightDigits(number), end - 8);
}

// Writes `number` before `end`, likewise, and returns how many digits it has: none for 0. Counting
// the zeros of a short one takes no branch, where the count could not be predicted.
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

std::string_view RenderParts(Parts parts, std::size_t decimals, char sign,
                             RenderingRoom& room) noexcept {
    char* const point = room.data() + kPoint;
    char* const end = point + 1 + decimals;
    PutDigits(parts.fraction, decimals, end);
    std::memset(end, ' ', kWidestRendering);
    char* first = point - PutWhole(parts.whole, point);
    *point = '.';
    first[-1] = sign;
    first -= static_cast<std::ptrdiff_t>(sign != '\0');
    return {first, static_cast<std::size_t>(end - first)};
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
    std::memset(end, ' ', static_cast<std::size_t>(room.data() + room.size() - end));
    char* first = *digits == '0' ? digits + 1 : digits;
    if (sign != '\0') *--first = sign;
    return {first, static_cast<std::size_t>(end - first)};
}

std::string_view RenderText(std::string_view text, RenderingRoom& room) noexcept {
    room.fill(' ');
    text.copy(room.data(), text.size());
    return {room.data(), text.size()};
}

std::string_view RenderInfinity(char sign, RenderingRoom& room) noexcept {
    if (sign == '\0') return RenderText("Inf", room);
    return RenderText(sign == '+' ? "+Inf" : "-Inf", room);
}

}  // namespace

std::string_view RenderFixed(double value, std::int32_t decimals, SignRule rule,
                             RenderingRoom& room) noexcept {
    if (std::isnan(value)) return RenderText("NaN", room);
    const char plus = rule == SignRule::Always ? '+' : '\0';
    const char sign = std::signbit(value) ? '-' : plus;
    const double magnitude = std::fabs(value);
    if (std::isinf(magnitude)) return RenderInfinity(sign, room);

    constexpr double kFastLimit = 0x1p63;  // up to 19 digits
    if (decimals > kFastDecimals || magnitude >= kFastLimit)
        return RenderLong(magnitude, decimals, sign, room);
    const auto count = static_cast<std::size_t>(decimals);
    return RenderParts(RoundToDecimals(magnitude, count), count, sign, room);
}

}  // namespace corvale::internal
