// The small numeric procedures written plainly, step by step, as they are described to their users:
// what the real ones are compared with, in tests, soak runs and benchmarks.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace corvale::literal {

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

/// For finite degrees below 1e9 in magnitude.
inline std::string DegreeText(double deg) {
    const double whole = std::trunc(deg);
    const double fraction = deg - whole;
    const double minutes = std::trunc(fraction * 60.0);
    const double seconds = std::fabs((fraction - minutes / 60.0) * 3600.0);
    const int carry = std::round(seconds) == 60.0 ? 1 : 0;
    const int total = static_cast<int>(std::fabs(minutes)) + carry;
    const int degrees = static_cast<int>(std::fabs(whole)) + total / 60;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%c%02d%02d%6.3f", deg < 0 ? '-' : ' ', degrees % 100,
                  total % 60, carry == 1 ? 0.0 : seconds);
    std::string result = text.data();
    if (degrees >= 100) result.replace(1, 2, "**");
    for (char& c : result)
        if (c == ' ') c = '0';
    return result;
}

struct Hours {
    int hours;
    int minutes;
    double seconds;
};

inline Hours SplitHours(double deg) {
    double angle = std::fmod(deg, 360.0);
    if (angle < 0) angle += 360.0;
    const double h = angle / 15.0;
    const int hours = static_cast<int>(h);
    const double m = (h - hours) * 60.0 + 1e-12;
    const int minutes = static_cast<int>(m);
    return {hours, minutes, (m - minutes) * 60.0};
}

inline Hours CarriedHours(double deg) {
    const auto [hours, minutes, seconds] = SplitHours(deg);
    if (seconds < 59.95) return {hours, minutes, seconds};
    return {(hours + (minutes + 1) / 60) % 24, (minutes + 1) % 60, 0.0};
}

/// For finite degrees.
inline std::string HourText(double deg) {
    auto [hours, minutes, seconds] = SplitHours(deg);
    int tenths = seconds >= 59.95 ? 600 : static_cast<int>(std::round(seconds * 10.0));
    if (tenths > 599) {
        tenths = 0;
        ++minutes;
    }
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%02d%02d%03d", (hours + minutes / 60) % 24,
                  minutes % 60, tenths);
    return text.data();
}

inline void IDupe(std::int32_t* list, std::int32_t& n) {
    if (n < 2) return;
    int count = 0;
    for (int i = 0; i < n - 1; ++i) {
        bool isRepeated = false;
        for (int j = i + 1; j < n && list[i] != 0 && !isRepeated; ++j)
            isRepeated = list[j] == list[i];
        if (isRepeated) list[i] = 0;
        if (list[i] == 0) ++count;
    }
    if (count == 0) return;
    int kept = 0;
    for (int i = 0; i < n; ++i) {
        if (list[i] <= 0) continue;
        list[kept] = list[i];
        if (kept != i) list[i] = 0;
        ++kept;
    }
    n = kept;
}

inline void ISort(std::int32_t order, std::int32_t* list, std::int32_t& n) {
    if (n == 1 && list[0] == 0) n = 0;
    if (n < 2) return;
    IDupe(list, n);
    const std::int64_t direction = order < 0 ? -1 : 1;
    for (int i = 0; i < n - 1; ++i)
        for (int j = i + 1; j < n; ++j)
            if ((std::int64_t{list[j]} - list[i]) * direction < 0) std::swap(list[i], list[j]);
}

/// For ascending tables and a value that is a number. `table[0]` is entry 1.
inline std::int32_t FindRecIdx(const double* table, std::int32_t n, double value) {
    const auto entry = [table](std::int32_t i) { return table[i - 1]; };
    if (entry(1) >= value) return 1;
    if (value >= entry(n)) return n;
    const double step = (entry(n) - entry(1)) / (n - 1);
    auto i = static_cast<std::int32_t>((value - entry(1)) / step + 1);
    if (i > n) i = n;  // rounding
    while (entry(i) > value)
        if (entry(--i) == value) return i;
    while (true) {
        if (value < entry(i + 1)) return i;
        if (entry(++i) == value) return i;
    }
}

}  // namespace corvale::literal
