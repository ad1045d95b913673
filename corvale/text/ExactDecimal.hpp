// Internal to the library: not installed, may change in any commit.
//
// Exact tie-break for decimals whose first 19 digits do not determine the rounding.
#pragma once

#include <corvale/text/RealConversion.hpp>

#include <compare>
#include <cstdint>

namespace corvale::internal {

/// How |number| compares with the middle between a double and the next one above it. `bits` are
/// those of the lower double, positive and finite; the number lies within one step of it.
[[nodiscard]] std::strong_ordering CompareWithMiddle(const ScannedReal& number,
                                                     std::uint64_t bits) noexcept;

}  // namespace corvale::internal
