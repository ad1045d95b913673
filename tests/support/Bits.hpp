// Test help: doubles compared by their bits, any NaN equal to any NaN; texts filled to a width; how
// often.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvale::test {

inline std::uint64_t Bits(double value) {
    return std::isnan(value) ? 0x7ff8000000000000U : std::bit_cast<std::uint64_t>(value);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// How often a test repeats something: less where each time costs twenty times as much.
constexpr int Times(int count) {
    return kIsSanitized ? count / 20 : count;
}

/// `text` blank-filled to `width`.
inline std::string Padded(std::string_view text, std::size_t width) {
    std::string padded(text);
    padded.resize(width, ' ');
    return padded;
}

}  // namespace corvale::test
