// Internal to core/: not installed, may change in any commit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Lines in the order of the file, cut to 512 columns, without line ends.
using Lines = std::span<const std::string_view>;

/// Reads the rest of a unit and hands over the lines that can be cards: those that begin with QZ
/// in any case. They come in groups as large as the buffer allows and are valid until `take`
/// returns, as are the 32 characters before each of them. A read error ends the file; a line that
/// it cuts off is not handed over.
void ReadCandidateLines(std::int32_t unit, void (*take)(Lines lines) noexcept) noexcept;

}  // namespace corvale::internal
