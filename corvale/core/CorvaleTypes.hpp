// CorvaleTypes: what every library of the family shares: widths, statuses, the key modes that are
// global to the process, and the record of a DMA element set.
//
// Threads    the modes are read and written whole from any thread; nothing orders a change of a
//            mode with what other threads do
#pragma once

#include <corvale/base/Module.hpp>

#include <array>
#include <atomic>
#include <cstdint>
#include <type_traits>

namespace corvale::CorvaleTypes {

inline constexpr std::int32_t StatusOk = 0;      ///< done
inline constexpr std::int32_t StatusFailed = 2;  ///< the reason is in the last-error store

inline constexpr std::int32_t NameWidth = 512;     ///< file names and general text
inline constexpr std::int32_t MessageWidth = 128;  ///< messages and the information line

/// The duplication key mode, 0 when the library is loaded.
extern CORVALE_API std::atomic<std::int32_t> gDupKeyMode;

/// The all-key mode, 0 when the library is loaded.
extern CORVALE_API std::atomic<std::int32_t> gAllKeyMode;

/// 1 once the all-key mode has been set, 0 when the library is loaded and after a reset.
extern CORVALE_API std::atomic<std::int32_t> gUseAllKeyMode;

/// A DMA element set: six 8-byte words whose meaning belongs to the libraries that use them. A new
/// one is all zeros; copying copies all 48 bytes. This library makes, reads and keeps none.
struct EltDma {
    std::array<std::int64_t, 6> words{};  ///< in the order in which they lie in memory
};
static_assert(sizeof(EltDma) == 48 && std::is_trivially_copyable_v<EltDma>);

}  // namespace corvale::CorvaleTypes
