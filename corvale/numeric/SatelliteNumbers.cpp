#include <corvale/numeric/SatelliteNumbers.hpp>

#include <corvale/numeric/Digits.hpp>

#include <cstddef>
#include <optional>

namespace corvale::GenFunctions {

namespace {

// What the first character stands for, in ten thousands: the digits, then the letters for 10 to 33.
constexpr std::string_view kLeading = "0123456789ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr std::uint32_t kUnit = 10000;
constexpr std::int32_t kBeyondCodes = 340000;
static_assert(kLeading.size() * kUnit == kBeyondCodes);

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

// Digits and blanks with one sign before the digits; blanks alone are 0. At most five characters,
// so no value is too large.
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

// Nearly every code: a digit or a letter, and four digits. Five times as fast as the rules that
// follow it; bench: Alpha5ToNum in bench/SmallBench.cpp.
std::optional<std::int32_t> ReadPlainCode(std::string_view code) noexcept {
    if (code.size() != 5) return std::nullopt;

    std::int32_t value = LeadingValue(code[0]);
    bool isPlain = value >= 0;
    for (std::size_t i = 1; i < 5; ++i) {
        value = value * 10 + (code[i] - '0');
        isPlain = isPlain & IsDigit(code[i]);
    }
    if (!isPlain) return std::nullopt;
    return value;
}

}  // namespace

std::array<char, 5> NumToAlpha5(std::int32_t number) noexcept {
    const auto value = static_cast<std::uint32_t>(number < 0 ? 0 : number);
    std::array<char, 5> code = internal::Digits<5>(value);
    if (number >= 0 && number < kBeyondCodes) code[0] = kLeading[value / kUnit];
    return code;
}

std::int32_t Alpha5ToNum(std::string_view text) noexcept {
    const std::string_view code = text.substr(0, 5);
    if (const auto number = ReadPlainCode(code)) return *number;
    if (const auto number = ReadIntegerField(code)) return *number;

    const std::int32_t leading = LeadingValue(code.front());  // not empty: no characters are 0
    if (leading < 10) return 0;
    const auto rest = ReadIntegerField(code.substr(1));
    if (!rest) return 0;
    return leading * static_cast<std::int32_t>(kUnit) + *rest;
}

}  // namespace corvale::GenFunctions
