// Numbers are read and written without taking memory: every way to do so in this program is
// counted.
#include <corvale/text/StrFunctions.hpp>

#include <gtest/gtest.h>
#include <array>
#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define CORVALE_OWN_MALLOC 0
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__GLIBC__)
#define CORVALE_OWN_MALLOC 0
#endif
#ifndef CORVALE_OWN_MALLOC
#define CORVALE_OWN_MALLOC 1
#endif

#if CORVALE_OWN_MALLOC  // a sanitizer has its own

namespace {
thread_local long gAllocations = 0;
}

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) {
    ++gAllocations;
    return __libc_malloc(size);
}

namespace corvale::StrFunctions {
namespace {

constexpr std::string_view kLongField = "0.12345678901234567890123456789012345678901234567890e-310";

double UseEverything(std::span<char> room) {
    double first = 0, second = 0;
    std::int32_t one = 0, two = 0;
    StrTo2Reals("1.5 2.5", first, second);
    StrTo2Ints("1 2", one, two);
    InputStrToNumStr("KEY = 9007199254740993.000000000000001 'word'", first, room);
    Fx0ToSignAx(1.5, 20, room);
    for (const std::int32_t n : {6, 25}) Fx0ToAx(1.1, n, room);
    CompressCsvLine(room);
    return first + second + one + two + StrToReal(kLongField) + StrToInt("x 5") +
           InputStrToReal("a = 5") + InputStrToInt("a = on") + OnOff2Int("on");
}

TEST(Numbers, TakeNoMemory) {
    std::array<char, 600> room{};
    const long before = gAllocations;
    const double sum = UseEverything(room);
    EXPECT_EQ(gAllocations, before);
    EXPECT_GT(sum, 0);
    void* volatile memory = std::malloc(1);
    std::free(memory);
    EXPECT_EQ(gAllocations, before + 1) << "the counting does not work";
}

}  // namespace
}  // namespace corvale::StrFunctions

#endif
