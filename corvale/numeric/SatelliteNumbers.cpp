#include <corvale/numeric/SatelliteNumbers.hpp>

#include <corvale/numeric/Digits.hpp>
#include <corvale/text/DigitWords.hpp>

#include <cstddef>
#include <optional>

namespace corvale::GenFunctions {

namespace {

// What the first character stands for, in ten thousands: the digits, then the letters for 10 to 33.
constexpr std::string_view kLeading = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr std::int32_t kUnit = 10000;
static_assert(kLeading.size() * kUnit == 340000);

constexpr auto kLeadingValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t i = 0; i < kLeading.size(); ++i)
        values[static_cast<unsigned char>(kLeading[i])] = static_cast<std::int8_t>(i);
    return values;
}();

std::int32_t LeadingValue(char c) noexcept {
    return kLeadingValues[static_cast<unsigned char>(c)];
}

bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

// An integer in digits and blanks, with at most one sign before the digits; blanks alone are 0. At
// most five characters, so no value is too large.
std::optional<std::int32_t> ReadIntegerField(std::string_view field) noexcept {
    char sign = 0;
    bool hasDigit = false;
    std::int32_t value = 0;
    for (const char c : field) {
        if (c == ' ') continue;
        if (IsDigit(c)) {
            value = value * 10 + (c - '0');
            hasDigit = true;
        } else if ((c == '+' || c == '-') && sign == 0 && !hasDigit) {
            sign = c;
        } else {
            return std::nullopt;
        }
    }
    if (sign != 0 && !hasDigit) return std::nullopt;
    return sign == '-' ? -value : value;
}

// The integer of the code, or else the letter and the integer after it; 0 where neither is there.
// The rules of each are the same, so "A-001" is 100000 - 1.
std::int32_t ReadByRules(std::string_view code) noexcept {
    if (const auto number = ReadIntegerField(code)) return *number;

    const std::int32_t leading = LeadingValue(code.front());  // not empty: no characters are 0
    if (leading < 10) return 0;
    const auto rest = ReadIntegerField(code.substr(1));
    if (!rest) return 0;
    return leading * kUnit + *rest;
}

constexpr std::int32_t kNotPlain = -1;

// Four digits as a number, or kNotPlain. Joined in their word: first pairs, then both pairs.
std::int32_t ReadFourDigits(const char* digits) noexcept {
    const std::uint32_t values = internal::DigitValues(internal::LoadLittle<std::uint32_t>(digits));
    if (internal::MarkFirstAbove<9>(values) != 0) return kNotPlain;

    const std::uint32_t pairs = (values * 10 + (values >> 8U)) & 0x00FF00FFU;
    return static_cast<std::int32_t>((pairs * 100 + (pairs >> 16U)) & 0xFFFFU);
}

// Nearly every code is a digit or a letter and four digits, and is read without a loop, which saves
// most of the time of the rules; bench: Alpha5ToNum in bench/SmallBench.cpp. kNotPlain for others.
std::int32_t ReadPlainCode(std::string_view code) noexcept {
    if (code.size() != 5) return kNotPlain;
    const std::int32_t leading = LeadingValue(code[0]);
    const std::int32_t rest = ReadFourDigits(code.data() + 1);
    return leading < 0 || rest < 0 ? kNotPlain : leading * kUnit + rest;
}

}  // namespace

std::array<char, 5> NumToAlpha5(std::int32_t number) noexcept {
    const auto value = static_cast<std::uint32_t>(number < 0 ? 0 : number);
    const std::uint32_t units = value / std::uint32_t{kUnit};
    const std::uint32_t rest = value % std::uint32_t{kUnit};
    // Beyond the letters only the last five digits are shown.
    const char leading = kLeading[units < kLeading.size() ? units : units % 10];

    return internal::TextOf(internal::OneCharacter(leading), internal::TwoDigits(rest / 100),
                            internal::TwoDigits(rest % 100));
}

std::int32_t Alpha5ToNum(std::string_view text) noexcept {
    const std::string_view code = text.substr(0, 5);
    const std::int32_t number = ReadPlainCode(code);
    return number != kNotPlain ? number : ReadByRules(code);
}

}  // namespace corvale::GenFunctions
