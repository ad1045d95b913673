// Test help: arrays of doubles compared by their bits.
#pragma once

#include "tests/support/Bits.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace corvale::test {

inline void ExpectSameBits(const std::vector<double>& got, const std::vector<double>& wanted,
                           const std::string& why) {
    ASSERT_EQ(got.size(), wanted.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_EQ(Bits(got[i]), Bits(wanted[i])) << why << ", element " << i << ": " << got[i];
}

}  // namespace corvale::test
