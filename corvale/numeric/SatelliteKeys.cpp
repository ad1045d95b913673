#include <corvale/numeric/SatelliteKeys.hpp>

namespace corvale::GenFunctions {

// Keys without duplication lie below this limit.
constexpr std::int64_t kKeyLimit = 3670000000000000000;
// The distance of a key to the next one.
constexpr std::uint64_t kKeyStep = 10000000000;

std::int64_t SatKeyToAddr(std::int64_t key) noexcept {
    return key / 10;
}

std::intptr_t KeyToCPtr(std::int64_t key) noexcept {
    return static_cast<std::intptr_t>(SatKeyToAddr(key));
}

std::int32_t IsDma(std::int64_t key) noexcept {
    return key != 0 && key % 10 == 0 ? 1 : 0;
}

std::int32_t IsNoDup(std::int64_t key) noexcept {
    return key == 0 || (key % 10 != 0 && key < kKeyLimit) ? 1 : 0;
}

// Unsigned, where wrapping past the largest value is defined.
std::int64_t NextSatKey(std::int64_t key) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(key) + kKeyStep);
}

}  // namespace corvale::GenFunctions
