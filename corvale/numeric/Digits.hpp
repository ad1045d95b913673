// Internal to numeric/: not installed, may change in any commit.
//
// Counts as digits of a fixed width, with leading zeros.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace corvale::internal {

/// The last `Width` decimal digits of `value`.
template <std::size_t Width>
[[nodiscard]] constexpr std::array<char, Width> Digits(std::uint32_t value) noexcept {
    std::array<char, Width> digits{};
    for (std::size_t i = Width; i-- > 0; value /= 10)
        digits[i] = static_cast<char>('0' + value % 10);
    return digits;
}

}  // namespace corvale::internal
