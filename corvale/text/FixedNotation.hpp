// Internal to the library: not installed, may change in any commit.
//
// Doubles in fixed notation of the least width: no digit before the point below 1.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvale::internal {

enum class SignRule : std::uint8_t { WhenNegative, Always };

/// The widest rendering that is made.
constexpr std::size_t kWidestRendering = 30;

/// Scratch for one rendering; bytes outside the returned text are overwritten.
using RenderingBuffer = std::array<char, 80>;

/// Renders `value` with 1 or more decimals somewhere in `buffer`. Blanks follow the text, so that
/// `kWidestRendering` characters can be read. A text wider than that may be returned as an empty
/// one.
///
/// Exactness  the exact value, rounded once to the decimals, halfway to the even digit, whatever
///            the thread's rounding mode
[[nodiscard]] std::string_view RenderFixed(double value, std::int32_t decimals, SignRule rule,
                                           RenderingBuffer& buffer) noexcept;

}  // namespace corvale::internal
