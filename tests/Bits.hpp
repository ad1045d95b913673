// Test help: doubles compared by their bits, any NaN equal to any NaN.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace corvale::test {

inline std::uint64_t Bits(double value) {
    return std::isnan(value) ? 0x7ff8000000000000U : std::bit_cast<std::uint64_t>(value);
}

}  // namespace corvale::test
