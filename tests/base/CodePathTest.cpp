#include <corvale/base/CodePath.hpp>

#include <gtest/gtest.h>

namespace {

// The compiler's own question to the processor is the reference. Both answers of the library are
// asked for: the one that it finds and the one that it remembers. Without this test a processor
// never found to have AVX2 would cost nothing but the speed, and no other test would fail.
TEST(CodePath, FindsWhatTheProcessorHas) {
#if CORVALE_HAS_AVX2_PATH
    const bool expected = __builtin_cpu_supports("avx2") != 0;
    EXPECT_EQ(corvale::internal::FindAvx2(), expected);
#else
    const bool expected = false;
#endif
    EXPECT_EQ(corvale::internal::HasAvx2(), expected);
}

}  // namespace
