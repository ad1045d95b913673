// Internal to the library: not installed, may change in any commit.
//
// The modes of the satellite keys as data: what people and programs call each, how it is read and
// how it is set. Whoever lists the modes goes through this table.
#pragma once

#include <corvale/core/CorvaleCardReading.hpp>

#include <array>
#include <cstdint>
#include <string_view>

namespace corvale::internal {

/// A mode, 0 when the library is loaded.
struct KeyMode {
    std::string_view name;  ///< for people
    std::string_view id;    ///< for programs: its name in JSON
    std::int32_t (*get)() noexcept;
    void (*set)(std::int32_t mode) noexcept;
};

/// The index of a mode in `kKeyModes`.
enum KeyModeIndex : std::uint8_t { kElsetKeys, kAllKeys, kDupKeys };

inline constexpr std::array<KeyMode, 3> kKeyModes = {{
    {"element-set key mode", "elsetKeyMode", CorvaleCardReading::ElsetKeyModeGet,
     CorvaleCardReading::ElsetKeyModeSet},
    {"all-key mode", "allKeyMode", CorvaleCardReading::AllKeyModeGet,
     CorvaleCardReading::AllKeyModeSet},
    {"duplication key mode", "dupKeyMode", CorvaleCardReading::DupKeyModeGet,
     CorvaleCardReading::DupKeyModeSet},
}};

/// Sets the all-key mode and the duplication key mode to 0 and forgets that the first was chosen.
void ResetAllKeys() noexcept;

}  // namespace corvale::internal
