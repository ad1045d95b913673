// Angles and their texts: the formulas step by step. For round-to-nearest.
#pragma once

#include <corvale/numeric/Elementary.hpp>

#include <array>
#include <cmath>
#include <cstdio>
#include <string>

namespace corvale::reference {

inline constexpr double kTwoPi = 6.283185307179586;

inline double FMod2P(double x) {
    const double r = std::fabs(x) >= kTwoPi ? std::fmod(x, kTwoPi) : x;
    return r < 0.0 ? r + kTwoPi : r;
}

inline double AcTan(double s, double c) {
    const double a = Elementary::ArcTan2(s, c);
    return a < 0.0 ? a + kTwoPi : a;
}

inline double AcSin(double x) {
    if (std::isnan(x)) return x;
    if (std::fabs(x) < 1.0) return Elementary::ArcTan(x / std::sqrt(1.0 - x * x));
    return std::copysign(1.5707963267948966, x);
}

inline double DeltaAngleLT180(double a, double b) {
    const double d = std::fmod(a, 360.0) - std::fmod(b, 360.0);
    if (std::fabs(d) <= 180.0) return d;
    return std::copysign(std::fabs(360.0 - std::fabs(d)), -d);
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

}  // namespace corvale::reference
