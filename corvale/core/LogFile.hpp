// Internal to the library: not installed, may change in any commit.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace corvale::internal {

/// Closes the log that is open, then opens `name` as the log, created or emptied. Returns a status;
/// on failure the message is stored. Callers do not log meanwhile.
[[nodiscard]] std::int32_t OpenLog(std::string_view name) noexcept;

/// Closes the log, if one is open, and clears the error store.
void CloseLog() noexcept;

/// What an error line begins with in the log; it is not part of the stored message.
inline constexpr std::string_view kErrorPrefix = "Error-";

/// `FileIO::TraceLogError` of a message in pieces that follow `kErrorPrefix`, so that one with a
/// long name in it needs no memory.
void TraceErrorLine(std::span<const std::string_view> line) noexcept;

}  // namespace corvale::internal
