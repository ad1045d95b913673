// The C face as a caller in another language meets it: arrays at any address, in place or missing,
// texts that end with their buffer or with a terminator, messages without a log.
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

Room<512> gInRoom, gOutRoom;

// The arguments of a self-test one behind the other, at addresses that fit none of them.
class Arguments {
  public:
    explicit Arguments(Choices& in) : bytes_(in.Raw<std::array<char, 213>>()) {}

    [[nodiscard]] char* C() { return &bytes_[0]; }
    [[nodiscard]] std::int32_t* I() { return At<std::int32_t>(1); }
    [[nodiscard]] std::int64_t* L() { return At<std::int64_t>(5); }
    [[nodiscard]] double* D() { return At<double>(13); }
    [[nodiscard]] std::int32_t* I3() { return At<std::int32_t>(21); }
    [[nodiscard]] std::int64_t* L3() { return At<std::int64_t>(33); }
    [[nodiscard]] double* D3() { return At<double>(57); }
    [[nodiscard]] std::int32_t* I6() { return At<std::int32_t>(81); }
    [[nodiscard]] std::int64_t* L6() { return At<std::int64_t>(105); }
    [[nodiscard]] double* D6() { return At<double>(153); }

    bool operator==(const Arguments&) const = default;

    // Replaces `count` elements by what `change` makes of them.
    template <class Element, class Change>
    static void ForEach(Element* elements, int count, Change change) {
        char* at = reinterpret_cast<char*>(elements);
        for (; count > 0; --count, at += sizeof(Element)) {
            Element element;
            std::memcpy(&element, at, sizeof element);
            element = static_cast<Element>(change(element));
            std::memcpy(at, &element, sizeof element);
        }
    }

  private:
    template <class Element>
    Element* At(std::size_t at) {
        return reinterpret_cast<Element*>(&bytes_[at]);
    }
    std::array<char, 213> bytes_;
};

auto Plus(std::uint64_t amount) {
    return [amount](auto value) { return static_cast<std::uint64_t>(value) + amount; };
}

// Where a sum is not a number its bits are anyone's: zeros in their place.
void Add(double* values, int count, double amount) {
    Arguments::ForEach(values, count, [amount](double value) {
        return std::isnan(value + amount) ? 0.0 : value + amount;
    });
}

void Copies(Choices in) {
    Arguments given(in), results(in);
    std::array<char, 512> built{};
    const std::string_view text = in.Text(kPieces, built);
    const std::size_t size = std::min<std::size_t>(text.size() + 1, 512);  // one zero follows
    char* const out = gOutRoom.Of(512);
    char c;
    std::int32_t i;
    std::int64_t l;
    double d;
    std::memcpy(&c, given.C(), sizeof c);
    std::memcpy(&i, given.I(), sizeof i);
    std::memcpy(&l, given.L(), sizeof l);
    std::memcpy(&d, given.D(), sizeof d);
    const Arguments before = given;
    TestInterface(c, results.C(), i, results.I(), l, results.L(), d, results.D(),
                  gInRoom.Hold({built.data(), size}).data(), out, given.I3(), results.I3(),
                  given.L3(), results.L3(), given.D3(), results.D3(), given.I6(), results.I6(),
                  given.L6(), results.L6(), given.D6(), results.D6());
    ExpectSame({out, 512}, Taken(text, 512), "TestInterface, text");
    Expect(results == given && given == before, "TestInterface");
}

void Changes(Choices in) {
    Arguments got(in);
    Arguments wanted = got;
    char* const text = gOutRoom.Of(512);
    TestInterface2(got.C(), got.I(), got.L(), got.D(), text, got.I3(), got.L3(), got.D3(), got.I6(),
                   got.L6(), got.D6());
    ExpectSame({text, 512}, Taken("It doesn't matter what your string was.", 512),
               "TestInterface2, text");
    *wanted.C() = 'Z';
    Arguments::ForEach(wanted.I(), 1, Plus(1));
    Arguments::ForEach(wanted.L(), 1, Plus(2));
    Add(wanted.D(), 1, 42.123456);
    Arguments::ForEach(wanted.I3(), 3, Plus(1));
    Arguments::ForEach(wanted.L3(), 3, Plus(1234567890123456789));
    Add(wanted.D3(), 3, 42.0);
    Arguments::ForEach(wanted.I6(), 6, Plus(1));
    Arguments::ForEach(wanted.L6(), 6, Plus(6));
    Add(wanted.D6(), 6, 7.6);
    Add(got.D(), 1, 0.0);  // nothing but the sums that are not numbers
    Add(got.D3(), 3, 0.0);
    Add(got.D6(), 6, 0.0);
    Expect(got == wanted, "TestInterface2");
}

void Multiplies(Choices in) {
    Arguments given(in), results(in);
    Arguments wanted = results;
    std::memcpy(wanted.I3(), given.I3(), 3 * sizeof(std::int32_t));
    const auto times = [](unsigned factor) {
        return [factor](std::int32_t value) { return static_cast<std::uint32_t>(value) * factor; };
    };
    Arguments::ForEach(wanted.I3(), 3, times(4));
    Arguments::ForEach(wanted.I6(), 6, times(5));
    TestInterface3(given.I3(), results.I3(), results.I6(), results.I6());
    Expect(results == wanted, "TestInterface3, one array in place");
}

void Messages(Choices in) {
    std::array<char, 512> built{};
    const std::string_view text = in.Text(kPieces, built);
    LogMessage(gInRoom.Hold({built.data(), std::min<std::size_t>(text.size() + 1, 128)}).data());
    char* out = gOutRoom.Of(128);
    GetLastInfoMsg(out);
    ExpectSame({out, 128}, LeftAdjusted(Taken(text, 128)), "GetLastInfoMsg");
    CloseLogFile();
    GetLastErrMsg(out);
    ExpectSame({out, 128}, std::string(128, ' '), "GetLastErrMsg");
    CorvaleGetInfo(out = gOutRoom.Of(128));
    ExpectSame({out, 31}, "Arvenit Corvale - Version: v9.4", "CorvaleGetInfo");
    GetInitDllNames(out = gOutRoom.Of(512));
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
