// Satellite keys: signed 64-bit numbers that identify satellites and element sets.
//
// A DMA key is a non-zero multiple of 10, ten times an address. A key without duplication is 0, or
// no multiple of 10 and below 3670000000000000000. For every procedure:
//
// Bad input  every key is usable, negative ones included
// Threads    no state: any number of threads at once
#pragma once

#include <corvale/base/Module.hpp>

#include <cstdint>

namespace corvale::GenFunctions {

/// The address in a DMA key: `key` / 10, truncated toward zero (-25 gives -2).
[[nodiscard]] CORVALE_API std::int64_t SatKeyToAddr(std::int64_t key) noexcept;

/// `SatKeyToAddr` as an integer as wide as an address. Where addresses have fewer than 64 bits the
/// high bits are lost.
[[nodiscard]] CORVALE_API std::intptr_t KeyToCPtr(std::int64_t key) noexcept;

/// 1 if `key` is not 0 and divisible by 10 (-20 is, -25 is not), else 0.
[[nodiscard]] CORVALE_API std::int32_t IsDma(std::int64_t key) noexcept;

/// 1 if `key` is 0, or not divisible by 10 and at most 3669999999999999999, else 0. Negative keys
/// that are not divisible by 10 count as keys without duplication.
[[nodiscard]] CORVALE_API std::int32_t IsNoDup(std::int64_t key) noexcept;

/// The key that follows `key`: 10000000000 higher, wrapping past the largest 64-bit value.
[[nodiscard]] CORVALE_API std::int64_t NextSatKey(std::int64_t key) noexcept;

}  // namespace corvale::GenFunctions
