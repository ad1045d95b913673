// The C API as a caller in another language meets it: arrays at any address, one in place, texts that
// end with their buffer or with a terminator, messages without a log.
#include "Targets.hpp"

#include <corvale/Corvale.h>

#include <array>
#include <string>

namespace corvale::fuzz {
namespace interface {

using namespace std::literals;

constexpr std::string_view kPieces[] = {" ",    "    ", "text", "\0"sv,   "\t",   "\x7f"sv,
                                        "\x80", "~",    "A",    "\x1f"sv, "\xff", "ab cd "};

// What a buffer of `width` characters says.
std::string Taken(std::string_view buffer, std::size_t width) {
    std::string text;
    for (const char c : buffer) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 32 || code > 127 || text.size() == width) break;
        text += c;
    }
    text.resize(width, ' ');
    return text;
}

std::string LeftAdjusted(const std::string& text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first) + std::string(first, ' ');
}

thread_local GuardedMemory<512> gInMemory, gOutMemory;

// The arguments of a self-test one after the other, at addresses that fit none of them: char,
// int32, int64, real, then 3 and 6 of each.
using Block = std::array<char, 201>;
constexpr std::size_t kI = 1, kL = 5, kD = 13, kI3 = 21, kL3 = 33, kD3 = 57, kI6 = 81, kL6 = 105,
                      kD6 = 153;

template <class Element>
Element* At(Block& block, std::size_t offset) {
    return reinterpret_cast<Element*>(block.data() + offset);
}

template <class Element>
Element ValueAt(const Block& block, std::size_t offset) {
    Element value;
    std::memcpy(&value, block.data() + offset, sizeof value);
    return value;
}

// Replaces `count` elements by what `change` makes of them.
template <class Element, class Change>
void ForEach(Block& block, std::size_t offset, int count, Change change) {
    for (; count > 0; --count, offset += sizeof(Element)) {
        const auto value = static_cast<Element>(change(ValueAt<Element>(block, offset)));
        std::memcpy(block.data() + offset, &value, sizeof value);
    }
}

auto Plus(std::uint64_t amount) {
    return [amount](auto value) { return static_cast<std::uint64_t>(value) + amount; };
}

auto Times(std::uint32_t factor) {
    return [factor](std::int32_t value) { return static_cast<std::uint32_t>(value) * factor; };
}

// Which NaN a sum gives is not specified: zeros take its place.
void Add(Block& block, double one, double three, double six) {
    const auto sum = [](double amount) {
        return [amount](double value) { return std::isnan(value + amount) ? 0.0 : value + amount; };
    };
    ForEach<double>(block, kD, 1, sum(one));
    ForEach<double>(block, kD3, 3, sum(three));
    ForEach<double>(block, kD6, 6, sum(six));
}

void Copies(Choices in) {
    auto given = in.Raw<Block>(), results = in.Raw<Block>();
    const Block before = given;
    std::array<char, 512> built{};
    const std::string_view text = in.Text(kPieces, built);
    const std::size_t size = std::min<std::size_t>(text.size() + 1, 512);  // one zero follows
    char* const out = gOutMemory.Of(512);
    TestInterface(
        given[0], results.data(), ValueAt<std::int32_t>(given, kI), At<std::int32_t>(results, kI),
        ValueAt<std::int64_t>(given, kL), At<std::int64_t>(results, kL), ValueAt<double>(given, kD),
        At<double>(results, kD), gInMemory.Hold({built.data(), size}).data(), out,
        At<std::int32_t>(given, kI3), At<std::int32_t>(results, kI3), At<std::int64_t>(given, kL3),
        At<std::int64_t>(results, kL3), At<double>(given, kD3), At<double>(results, kD3),
        At<std::int32_t>(given, kI6), At<std::int32_t>(results, kI6), At<std::int64_t>(given, kL6),
        At<std::int64_t>(results, kL6), At<double>(given, kD6), At<double>(results, kD6));
    ExpectSame({out, 512}, Taken(text, 512), "TestInterface, text");
    Expect(results == before && given == before, "TestInterface");
}

void Changes(Choices in) {
    auto got = in.Raw<Block>();
    Block wanted = got;
    char* const text = gOutMemory.Of(512);
    TestInterface2(got.data(), At<std::int32_t>(got, kI), At<std::int64_t>(got, kL),
                   At<double>(got, kD), text, At<std::int32_t>(got, kI3),
                   At<std::int64_t>(got, kL3), At<double>(got, kD3), At<std::int32_t>(got, kI6),
                   At<std::int64_t>(got, kL6), At<double>(got, kD6));
    ExpectSame({text, 512}, Taken("It doesn't matter what your string was.", 512),
               "TestInterface2, text");
    wanted[0] = 'Z';
    ForEach<std::int32_t>(wanted, kI, 1, Plus(1));
    ForEach<std::int64_t>(wanted, kL, 1, Plus(2));
    ForEach<std::int32_t>(wanted, kI3, 3, Plus(1));
    ForEach<std::int64_t>(wanted, kL3, 3, Plus(1234567890123456789));
    ForEach<std::int32_t>(wanted, kI6, 6, Plus(1));
    ForEach<std::int64_t>(wanted, kL6, 6, Plus(6));
    Add(wanted, 42.123456, 42.0, 7.6);
    Add(got, 0.0, 0.0, 0.0);
    Expect(got == wanted, "TestInterface2");
}

void Multiplies(Choices in) {
    auto given = in.Raw<Block>(), results = in.Raw<Block>();
    Block wanted = results;
    std::copy_n(given.data() + kI3, 3 * sizeof(std::int32_t), wanted.data() + kI3);
    ForEach<std::int32_t>(wanted, kI3, 3, Times(4));
    ForEach<std::int32_t>(wanted, kI6, 6, Times(5));
    TestInterface3(At<std::int32_t>(given, kI3), At<std::int32_t>(results, kI3),
                   At<std::int32_t>(results, kI6), At<std::int32_t>(results, kI6));
    Expect(results == wanted, "TestInterface3, one array in place");
}

void Messages(Choices in) {
    std::array<char, 512> built{};
    const std::string_view text = in.Text(kPieces, built);
    LogMessage(gInMemory.Hold({built.data(), std::min<std::size_t>(text.size() + 1, 128)}).data());
    char* out = gOutMemory.Of(128);
    GetLastInfoMsg(out);
    ExpectSame({out, 128}, LeftAdjusted(Taken(text, 128)), "GetLastInfoMsg");
    CloseLogFile();
    GetLastErrMsg(out);
    ExpectSame({out, 128}, std::string(128, ' '), "GetLastErrMsg");
    CorvaleGetInfo(out = gOutMemory.Of(128));
    ExpectSame({out, 31}, "Arvenit Corvale - Version: v9.4", "CorvaleGetInfo");
    GetInitDllNames(out = gOutMemory.Of(512));
    ExpectSame({out, 512}, std::string(512, ' '), "GetInitDllNames");
    ExpectSame(CorvaleInit(), 0, "CorvaleInit");
}

}  // namespace interface

void Interface(Choices in) {
    using namespace interface;
    constexpr void (*kFunctions[])(Choices) = {Copies, Changes, Multiplies, Messages};
    const auto function = in.Pick(kFunctions);
    function(in);
}

}  // namespace corvale::fuzz
