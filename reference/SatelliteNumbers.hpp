// Satellite numbers and their letter codes.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace corvale::reference {

inline std::string NumToAlpha5(std::int32_t n) {
    if (n <= 0) return "00000";
    const int q = n / 10000;
    std::array<char, 16> text{};
    if (n < 100000 || n >= 340000) {
        std::snprintf(text.data(), text.size(), "%05d", n % 100000);
        return text.data();
    }
    const char letter = static_cast<char>(q <= 17 ? 55 + q : q <= 22 ? 56 + q : 57 + q);
    std::snprintf(text.data(), text.size(), "%c%04d", letter, n % 10000);
    return text.data();
}

inline std::optional<std::int32_t> ReadInteger(const std::string& field) {
    std::string digits;
    for (const char c : field)
        if (c != ' ') digits += c;
    if (digits.empty()) return 0;
    const bool isNegative = digits[0] == '-';
    if (digits[0] == '+' || digits[0] == '-') digits.erase(0, 1);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    return (isNegative ? -1 : 1) * std::stoi(digits);
}

inline std::int32_t Alpha5ToNum(std::string text) {
    text.resize(5, ' ');
    if (const auto number = ReadInteger(text)) return *number;
    const int c = text[0];
    if (c < 'A' || c > 'Z' || c == 'I' || c == 'O') return 0;
    const int value = c <= 'H' ? c - 55 : c <= 'N' ? c - 56 : c - 57;
    const auto rest = ReadInteger(text.substr(1));
    return rest ? value * 10000 + *rest : 0;
}

}  // namespace corvale::reference
