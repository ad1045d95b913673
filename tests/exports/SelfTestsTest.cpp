#include <corvale/Corvale.h>

#include "GuardPage.hpp"

#include <gtest/gtest.h>
#include <array>
#include <bit>
#include <cstring>
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

// All that the interface tests take by address, one byte off every alignment, the text at the end
// of mapped memory.
struct Arguments {
    GuardedBuffer memory{208, '\0'};
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

template <class Element, std::size_t Count>
void Set(Element* target, const std::array<Element, Count>& values) {
    std::memcpy(static_cast<void*>(target), values.data(), sizeof values);
}

template <class Element, std::size_t Count>
void ExpectBits(const Element* target, const std::array<Element, Count>& wanted,
                const char* argument) {
    EXPECT_EQ(std::memcmp(static_cast<const void*>(target), wanted.data(), sizeof wanted), 0)
        << argument;
}

TEST(TestInterface, CopiesEveryBitAtAnyAlignmentAndInPlace) {
    const double signalling = std::bit_cast<double>(kSignallingNaN);
    const std::array<std::int32_t, 3> i3 = {1, -2, kMinInt};
    const std::array<std::int64_t, 3> l3 = {3, -4, kMinLong};
    const std::array<double, 3> d3 = {-0.0, 5e-324, signalling};
    const std::array<std::int32_t, 6> i6 = {1, 2, 3, 4, 5, kMaxInt};
    const std::array<std::int64_t, 6> l6 = {6, 7, 8, 9, 10, kMaxLong};
    const std::array<double, 6> d6 = {signalling, -0.0, 0.0, 1.5, -1e308, 5e-324};
    const Arguments in, out;
    for (const Arguments* from : {&in, &out}) {
        Set(from->i3, i3), Set(from->l3, l3), Set(from->d3, d3);
        Set(from->i6, i6), Set(from->l6, l6), Set(from->d6, d6);
    }
    for (const Arguments* from : {&in, &out}) {  // the second time each output is its own input
        TestInterface('\xe4', out.c, kMinInt, out.i, kMaxLong, out.l, signalling, out.d,
                      from->text.Data(), out.text.Data(), from->i3, out.i3, from->l3, out.l3,
                      from->d3, out.d3, from->i6, out.i6, from->l6, out.l6, from->d6, out.d6);
        EXPECT_EQ(*out.c, '\xe4');
        ExpectBits(out.i, std::array{kMinInt}, "iOut");
        ExpectBits(out.l, std::array{kMaxLong}, "lOut");
        ExpectBits(out.d, std::array{signalling}, "dOut");
        ExpectBits(out.i3, i3, "i3Out");
        ExpectBits(out.l3, l3, "l3Out");
        ExpectBits(out.d3, d3, "d3Out");
        ExpectBits(out.i6, i6, "i6Out");
        ExpectBits(out.l6, l6, "l6Out");
        ExpectBits(out.d6, d6, "d6Out");
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
        std::string wanted = kept;
        wanted.resize(CORVALE_NAME_WIDTH, ' ');
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
    Set(all.i, std::array{kMaxInt});
    Set(all.l, std::array{kMaxLong});
    Set(all.d, std::array{0.0});
    Set(all.i3, std::array{-1, 0, kMaxInt});
    Set(all.l3, std::array<std::int64_t, 3>{0, -step, kMaxLong});
    Set(all.d3, std::array{0.0, -42.0, 1e300});
    Set(all.i6, std::array{0, 1, 2, 3, kMinInt, kMaxInt});
    Set(all.l6, std::array<std::int64_t, 6>{0, -6, 1, 2, kMinLong, kMaxLong});
    Set(all.d6, std::array{0.0, -7.6, 0.1, 1e16, -0.0, std::numeric_limits<double>::infinity()});
    TestInterface2(all.c, all.i, all.l, all.d, all.text.Data(), all.i3, all.l3, all.d3, all.i6,
                   all.l6, all.d6);

    std::string sentence = "It doesn't matter what your string was.";
    sentence.resize(CORVALE_NAME_WIDTH, ' ');
    EXPECT_EQ(*all.c, 'Z');
    EXPECT_EQ(all.text.Text(), sentence);
    ExpectBits(all.i, std::array{kMinInt}, "i");
    ExpectBits(all.l, std::array{kMinLong + 1}, "l");
    ExpectBits(all.d, std::array{42.123456}, "d");
    ExpectBits(all.i3, std::array{0, 1, kMinInt}, "i3");
    ExpectBits(all.l3, std::array<std::int64_t, 3>{step, 0, kMinLong + step - 1}, "l3");
    ExpectBits(all.d3, std::array{42.0, 0.0, 1e300}, "d3");
    ExpectBits(all.i6, std::array{1, 2, 3, 4, kMinInt + 1, kMinInt}, "i6");
    ExpectBits(all.l6, std::array<std::int64_t, 6>{6, 0, 7, 8, kMinLong + 6, kMinLong + 5}, "l6");
    ExpectBits(all.d6,
               std::array{7.6, 0.0, 7.699999999999999, 10000000000000008.0, 7.6,
                          std::numeric_limits<double>::infinity()},
               "d6");
    TestInterface2(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                   nullptr, nullptr);
}

TEST(TestInterface3, MultipliesAndWraps) {
    const Arguments in, out;
    Set(in.i3, std::array{1, -2, 0x40000001});
    Set(in.i6, std::array{1, -1, 0, 2, kMaxInt, kMinInt});
    TestInterface3(in.i3, out.i3, in.i6, out.i6);
    ExpectBits(out.i3, std::array{4, -8, 4}, "i3Out");
    ExpectBits(out.i6, std::array{5, -5, 0, 10, kMaxInt - 4, kMinInt}, "i6Out");
    TestInterface3(out.i3, out.i3, out.i6, out.i6);
    ExpectBits(out.i3, std::array{16, -32, 16}, "i3Out in place");
    ExpectBits(out.i6, std::array{25, -25, 0, 50, kMaxInt - 24, kMinInt}, "i6Out in place");
    TestInterface3(nullptr, out.i3, in.i6, nullptr);
    ExpectBits(out.i3, std::array{16, -32, 16}, "no input, no output");
    TestInterface3(nullptr, nullptr, nullptr, nullptr);
}

}  // namespace
}  // namespace corvale
