// The key modes: the globals of CorvaleTypes and CorvaleCardReading, and all that reads or sets them.
//
// Each mode is one aligned atomic integer, so a reader never sees half of a value. Procedures that
// write two of them do so one after the other; a caller that needs both together has to serialise.
#include <corvale/core/KeyModes.hpp>

#include <corvale/core/CorvaleTypes.hpp>

namespace corvale {

namespace {

// Relaxed: a mode is read and written whole, and nothing orders it with what other threads do.
std::int32_t Load(const std::atomic<std::int32_t>& mode) noexcept {
    return mode.load(std::memory_order_relaxed);
}

void Store(std::atomic<std::int32_t>& mode, std::int32_t value) noexcept {
    mode.store(value, std::memory_order_relaxed);
}

}  // namespace

namespace CorvaleTypes {

// Usable before the first static constructor and after the last exit handler.
constinit std::atomic<std::int32_t> gDupKeyMode{0};
constinit std::atomic<std::int32_t> gAllKeyMode{0};
constinit std::atomic<std::int32_t> gUseAllKeyMode{0};

}  // namespace CorvaleTypes

namespace CorvaleCardReading {

using CorvaleTypes::gAllKeyMode;
using CorvaleTypes::gDupKeyMode;
using CorvaleTypes::gUseAllKeyMode;

constinit std::atomic<std::int32_t> ElsetKeyMode{0};

// The procedures store any value: the C API checks what its callers pass.

std::int32_t DupKeyModeGet() noexcept {
    return Load(gDupKeyMode);
}

void DupKeyModeSet(std::int32_t mode) noexcept {
    Store(gDupKeyMode, mode);
}

std::int32_t AllKeyModeGet() noexcept {
    return Load(gAllKeyMode);
}

void AllKeyModeSet(std::int32_t mode) noexcept {
    Store(gAllKeyMode, mode);
    Store(gUseAllKeyMode, 1);
}

std::int32_t UseAllKeyMode() noexcept {
    return Load(gUseAllKeyMode);
}

std::int32_t ElsetKeyModeGet() noexcept {
    return Load(ElsetKeyMode);
}

void ElsetKeyModeSet(std::int32_t mode) noexcept {
    Store(ElsetKeyMode, mode);
}

}  // namespace CorvaleCardReading

namespace internal {

// Not `ElsetKeyMode`, which no reset touches: callers rely on it. The order of the stores is kept
// behaviour, though it promises nothing to other threads.
void ResetAllKeys() noexcept {
    Store(CorvaleTypes::gUseAllKeyMode, 0);
    Store(CorvaleTypes::gAllKeyMode, 0);
    Store(CorvaleTypes::gDupKeyMode, 0);
}

}  // namespace internal

}  // namespace corvale
