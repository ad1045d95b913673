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

/// `FileIO::TraceLogError` of a message that is given in pieces, so that one with a long name in it
/// needs no memory.
void TraceErrorPieces(std::span<const std::string_view> pieces) noexcept;

}  // namespace corvale::internal
