// Internal to core/: not installed, may change in any commit.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Lines in the order of the file, cut to 512 columns, without line ends.
using Lines = std::span<const std::string_view>;

/// Reads the rest of a unit and hands the lines that can be cards to `take`, in groups as large as
/// the buffer allows: those that begin with the letters of the cards in any case. The lines of a
/// group, and the 32 characters before each, may be read until `take` returns. A read error ends
/// the file; a line that it cuts off is not handed over.
void ReadCandidateLines(std::int32_t unit, void (*take)(Lines lines) noexcept) noexcept;

}  // namespace corvale::internal
