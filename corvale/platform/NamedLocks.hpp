// NamedLocks: process-wide locks that libraries of the family look up by name.
//
// "cs_logerrormessage"  held while an error message is stored and its log line written
// "cs_loginfomessage"   the same for informational messages
// any other name        a lock of its own, made when it is first asked for
#pragma once

#include <corvale/base/Module.hpp>

#include <mutex>
#include <string_view>

namespace corvale::NamedLocks {

/// Held while an error message is stored and its log line written.
inline constexpr std::string_view ErrorMessageLock = "cs_logerrormessage";
/// Held while an informational message is stored and its log line written.
inline constexpr std::string_view InfoMessageLock = "cs_loginfomessage";

/// The lock of that name, compared byte for byte: the same object for every caller in the process,
/// valid until the process ends. Only the first call for a new name allocates.
///
/// Width      any; trailing blanks count
/// Bad input  any name is usable, the empty one included; if allocation fails, such names share one
///            lock
/// Threads    any number at once, from the first static constructor to the last exit handler; not
///            from a signal handler. In a child process after fork every lock is free, whoever held
///            it in the parent; in the program's own handlers, once they have called the library
[[nodiscard]] CORVALE_API std::mutex& NamedLock(std::string_view name) noexcept;

}  // namespace corvale::NamedLocks
