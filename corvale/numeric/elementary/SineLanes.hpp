// Internal to numeric/: not installed, may change in any commit.
//
// Sines and cosines of many angles, as many at a time as a vector has lanes, each with the bits of
// Elementary::SinCos.
#pragma once

#include <corvale/numeric/matrices/VectorTiles.hpp>

#include <cstddef>

namespace corvale::internal {

/// The alignment of the arrays, and what their length is a multiple of.
inline constexpr std::size_t kMostLanes = FourLanes::kLanes;
inline constexpr std::size_t kLaneAlignment = kMostLanes * sizeof(double);

/// Sines and cosines of `count` angles in radians. Precondition: the arrays are aligned to
/// kLaneAlignment, and `count` is a multiple of kMostLanes.
void SinCosOfMany(const double* angles, std::size_t count, double* sines, double* cosines) noexcept;

}  // namespace corvale::internal
