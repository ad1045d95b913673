// Internal to text/: not installed, may change in any commit.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Writes the characters of `input` that are a digit or a point to `output`, in their order, as
/// many as fit, and returns how many. What `output` holds after them is unspecified; it may be
/// `input` itself.
[[nodiscard]] std::size_t KeepDigitsAndPoints(std::string_view input,
                                              std::span<char> output) noexcept;

}  // namespace corvale::internal
