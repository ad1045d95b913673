// Internal to platform/: not installed, may change in any commit.
#pragma once

#include <corvale/platform/Descriptors.hpp>

#include <span>
#include <string_view>

namespace corvale::internal {

/// Writes the pieces of one text and a line end to `file`, on a line of their own. CR and LF inside
/// become blanks. False when the system does not take all of it.
[[nodiscard]] bool WriteTextLine(TextFile& file, std::span<const std::string_view> pieces) noexcept;

}  // namespace corvale::internal
