#include <corvale/Corvale.h>

#include "tests/support/GuardPage.hpp"
#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <bit>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>

namespace corvale {
namespace {

using namespace std::string_literals;
using test::GuardedBuffer;

constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaxLong = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMinLong = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t kSignallingNaN = 0x7ff0000000000123;  // quieting would set bit 51

// All that the interface tests take by address, at odd addresses, the text at the end of mapped
// memory.
struct Arguments {
    GuardedBuffer memory{202, '\0'};
    GuardedBuffer text{CORVALE_NAME_WIDTH, ' '};

    template <class Element>
    Element* At(std::size_t offset) const {
        return reinterpret_cast<Element*>(memory.Data() + 1 + offset);
    }
    char* c = memory.Data();
    std::int32_t* i = At<std::int32_t>(0);
    std::int64_t* l = At<std::int64_t>(4);
    double* d = At<double>(12);
    std::int32_t* i3 = At<std::int32_t>(20);
    std::int64_t* l3 = At<std::int64_t>(32);
    double* d3 = At<double>(56);
    std::int32_t* i6 = At<std::int32_t>(80);
    std::int64_t* l6 = At<std::int64_t>(104);
    double* d6 = At<double>(152);
};

template <class Element>
void Set(Element* target, std::initializer_list<Element> values) {
    std::memcpy(static_cast<void*>(target), values.begin(), values.size() * sizeof(Element));
}

template <class Element>
Element First(const Element* from) {
    Element value;
    std::memcpy(&value, static_cast<const void*>(from), sizeof value);
    return value;
}

template <class Element>
void ExpectBits(const Element* target, std::initializer_list<Element> wanted,
                const char* argument) {
    EXPECT_EQ(std::memcmp(static_cast<const void*>(target), wanted.begin(),
                          wanted.size() * sizeof(Element)),
              0)
        << argument;
}

TEST(TestInterface, CopiesEveryBitAtAnyAlignmentAndInPlace) {
    const double signalling = std::bit_cast<double>(kSignallingNaN);
    const Arguments in, out;
    for (int k = 0; k < 201; ++k) in.memory.Data()[k] = static_cast<char>(k + 1);
    Set(in.d, {signalling});
    Set(in.d3, {-0.0, 5e-324, signalling});
    for (const Arguments* from : {&in, &out}) {  // the second time each output is its own input
        TestInterface(*in.c, out.c, First(in.i), out.i, First(in.l), out.l, First(in.d), out.d,
                      from->text.Data(), out.text.Data(), from->i3, out.i3, from->l3, out.l3,
                      from->d3, out.d3, from->i6, out.i6, from->l6, out.l6, from->d6, out.d6);
        EXPECT_EQ(out.memory.Text(), in.memory.Text());
    }
}

void CopyText(const char* in, char* out) {
    TestInterface('c', nullptr, 0, nullptr, 0, nullptr, 0.0, nullptr, in, out, nullptr, nullptr,
                  nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                  nullptr);
}

TEST(TestInterface, CopiesTextUpToTheFirstByteThatStops) {
    const struct {
        std::string in, kept;
        const char* why;
    } cases[] = {
        {"abcd\0"s, "abcd", "a NUL ends it"},
        {"   three blanks\0"s, "   three blanks", "no left adjustment"},
        {"ab\xe9"s, "ab", "a byte above 127 ends it"},
        {std::string(CORVALE_NAME_WIDTH, 'x'), std::string(CORVALE_NAME_WIDTH, 'x'), "all 512"},
        {"\0"s, "", "nothing"},
    };
    for (const auto& [in, kept, why] : cases) {
        const GuardedBuffer out(CORVALE_NAME_WIDTH);
        CopyText(GuardedBuffer(in).Data(), out.Data());
        const std::string wanted = test::Padded(kept, CORVALE_NAME_WIDTH);
        EXPECT_EQ(out.Text(), wanted) << why;
        CopyText(out.Data(), out.Data());
        EXPECT_EQ(out.Text(), wanted) << "in place: " << why;
    }
    const GuardedBuffer out(CORVALE_NAME_WIDTH);
    CopyText(nullptr, out.Data());
    EXPECT_EQ(out.Text(), std::string(CORVALE_NAME_WIDTH, ' ')) << "null reads as blank";
    CopyText("text", nullptr);
}

TEST(TestInterface2, AddsTheFixedAmountsAndWraps) {
    constexpr std::int64_t step = 1234567890123456789;
    const Arguments all;
    *all.c = 'a';
    Set(all.l, {kMaxLong});
    Set(all.l3, {std::int64_t{0}, -step, kMaxLong});
    Set(all.d3, {0.0, -42.0, 1e300});
    Set(all.i6, {0, 1, 2, 3, kMinInt, kMaxInt});
    Set(all.d6, {0.0, -7.6, 0.1, 1e16, -0.0, 1e308});
    TestInterface2(all.c, all.i, all.l, all.d, all.text.Data(), all.i3, all.l3, all.d3, all.i6,
                   all.l6, all.d6);

    EXPECT_EQ(*all.c, 'Z');
    EXPECT_EQ(all.text.Text(),
              test::Padded("It doesn't matter what your string was.", CORVALE_NAME_WIDTH));
    ExpectBits(all.i, {1}, "i");
    ExpectBits(all.l, {kMinLong + 1}, "l");
    ExpectBits(all.d, {42.123456}, "d");
    ExpectBits(all.i3, {1, 1, 1}, "i3");
    ExpectBits(all.l3, {step, std::int64_t{0}, kMinLong + step - 1}, "l3");
    ExpectBits(all.d3, {42.0, 0.0, 1e300}, "d3");
    ExpectBits(all.i6, {1, 2, 3, 4, kMinInt + 1, kMinInt}, "i6");
    ExpectBits<std::int64_t>(all.l6, {6, 6, 6, 6, 6, 6}, "l6");
    ExpectBits(all.d6, {7.6, 0.0, 7.699999999999999, 10000000000000008.0, 7.6, 1e308}, "d6");
    TestInterface2(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                   nullptr, nullptr);
}

TEST(TestInterface3, MultipliesInPlaceAndWraps) {
    const Arguments in;
    Set(in.i3, {1, -2, 0x40000001});
    Set(in.i6, {1, -1, 0, 2, kMaxInt, kMinInt});
    TestInterface3(in.i3, in.i3, in.i6, in.i6);
    TestInterface3(nullptr, in.i3, in.i6, nullptr);
    TestInterface3(nullptr, nullptr, nullptr, nullptr);
    ExpectBits(in.i3, {4, -8, 4}, "i3");
    ExpectBits(in.i6, {5, -5, 0, 10, kMaxInt - 4, kMinInt}, "i6");
}

}  // namespace
}  // namespace corvale
