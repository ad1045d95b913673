// Internal to the library: not installed, may change in any commit.
//
// The last word where leading digits do not decide how a decimal number rounds.
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
