// Internal to numeric/: not installed, may change in any commit.
//
// Sine, cosine and exponential as plain power series of a wide argument, for the accurate phase.
//
// Each series is a nest of fractions from the last term to the first, so that no operation leaves
// [0, 1) and a step's error is divided by its denominator: at the end about 2 units are left.
#pragma once

#include <corvale/numeric/elementary/WideReal.hpp>

namespace corvale::internal {

/// sin r for |r| < 1, off by at most 8 units beside the relative error of r.
[[nodiscard]] WideReal SineSeries(const WideReal& r, std::size_t width) noexcept;

/// cos r for |r| < 1, off by at most 8 units beside the absolute error of r.
[[nodiscard]] WideReal CosineSeries(const WideReal& r, std::size_t width) noexcept;

/// e^r for 0 <= r < ln 2, off by at most 8 units beside the absolute error of r.
[[nodiscard]] WideReal ExponentialSeries(const WideReal& r, std::size_t width) noexcept;

}  // namespace corvale::internal
