// Internal to the library: not installed, may change in any commit.
#pragma once

#include <mutex>

namespace corvale::internal {

/// What `NamedLock` finds under the names of the two message locks, without the search.
[[nodiscard]] std::mutex& ErrorMessageMutex() noexcept;
[[nodiscard]] std::mutex& InfoMessageMutex() noexcept;

}  // namespace corvale::internal
