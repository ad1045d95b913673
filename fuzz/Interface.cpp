// The C face as a caller in another language meets it: arrays at any address, in place or missing,
// texts that end with their buffer or with a terminator, messages without a log.
#include "Targets.hpp"

#include <corvale/Corvale.h>

#include <array>
#include <string>

namespace corvale::fuzz {
namespace {

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

// An argument or result at an address that fits nothing, or missing.
template <class Element, std::size_t Count>
class Argument {
  public:
    explicit Argument(Choices& in) : isMissing_(in.Byte() % 16 == 0), offset_(in.Byte() % 8) {
        before_ = in.Raw<std::array<Element, Count>>();
        std::memcpy(bytes_ + offset_, before_.data(), sizeof before_);
    }
    [[nodiscard]] Element* Address() {
        return isMissing_ ? nullptr : reinterpret_cast<Element*>(bytes_ + offset_);
    }
    [[nodiscard]] bool IsMissing() const { return isMissing_; }
    [[nodiscard]] const std::array<Element, Count>& Before() const { return before_; }

    // Whether it now holds `wanted`, byte for byte; what is missing holds anything.
    void Expect(const std::array<Element, Count>& wanted, const char* what) const {
        fuzz::Expect(isMissing_ || std::memcmp(bytes_ + offset_, wanted.data(), sizeof wanted) == 0,
                     what);
    }
    // The outcome of every element replaced by `change`.
    template <class Change>
    void ExpectEach(Change change, const char* what) const {
        std::array<Element, Count> wanted = before_;
        for (Element& element : wanted) element = change(element);
        Expect(wanted, what);
    }

  private:
    bool isMissing_;
    std::size_t offset_;
    std::array<Element, Count> before_;
    char bytes_[sizeof(Element) * Count + 8];
};

template <class Element, std::size_t Count>
struct Pair {
    explicit Pair(Choices& source) : in(source), out(source) {}
    void Expect(const char* what) const {
        out.Expect(in.IsMissing() ? out.Before() : in.Before(), what);
    }
    Argument<Element, Count> in, out;
};

Room<512> gInRoom, gOutRoom;

void Copies(Choices in) {
    Argument<char, 1> c(in);
    Argument<std::int32_t, 1> i(in);
    Argument<std::int64_t, 1> l(in);
    Argument<double, 1> d(in);
    Pair<std::int32_t, 3> i3(in);
    Pair<std::int64_t, 3> l3(in);
    Pair<double, 3> d3(in);
    Pair<std::int32_t, 6> i6(in);
    Pair<std::int64_t, 6> l6(in);
    Pair<double, 6> d6(in);
    const auto real = in.Raw<double>();
    const auto number = in.Raw<std::int64_t>();
    const auto small = static_cast<std::int32_t>(number);
    std::array<char, 512> built{};
    const std::string_view text = in.Text(kPieces, built);
    const std::size_t size = std::min<std::size_t>(text.size() + 1, 512);  // one zero follows
    char* const out = gOutRoom.Of(512);
    TestInterface('Q', c.Address(), small, i.Address(), number, l.Address(), real, d.Address(),
                  gInRoom.Hold({built.data(), size}).data(), out, i3.in.Address(), i3.out.Address(),
                  l3.in.Address(), l3.out.Address(), d3.in.Address(), d3.out.Address(),
                  i6.in.Address(), i6.out.Address(), l6.in.Address(), l6.out.Address(),
                  d6.in.Address(), d6.out.Address());
    c.Expect({'Q'}, "TestInterface c");
    i.Expect({small}, "TestInterface i");
    l.Expect({number}, "TestInterface l");
    d.Expect({real}, "TestInterface d");
    ExpectSame({out, 512}, Taken(text, 512), "TestInterface str");
    i3.Expect("TestInterface i3");
    l3.Expect("TestInterface l3");
    d3.Expect("TestInterface d3");
    i6.Expect("TestInterface i6");
    l6.Expect("TestInterface l6");
    d6.Expect("TestInterface d6");
}

template <class Integer>
auto Plus(Integer amount) {
    return [amount](Integer value) {
        using Bits = std::make_unsigned_t<Integer>;
        return static_cast<Integer>(static_cast<Bits>(value) + static_cast<Bits>(amount));
    };
}

// Where the sum is not a number its bits are anyone's.
template <std::size_t Count>
void ExpectSums(const Argument<double, Count>& argument, double amount, const char* what) {
    for (const double value : argument.Before())
        if (std::isnan(value)) return;
    argument.ExpectEach([amount](double value) { return value + amount; }, what);
}

void Changes(Choices in) {
    Argument<char, 1> c(in);
    Argument<std::int32_t, 1> i(in);
    Argument<std::int64_t, 1> l(in);
    Argument<double, 1> d(in);
    Argument<std::int32_t, 3> i3(in);
    Argument<std::int64_t, 3> l3(in);
    Argument<double, 3> d3(in);
    Argument<std::int32_t, 6> i6(in);
    Argument<std::int64_t, 6> l6(in);
    Argument<double, 6> d6(in);
    char* const text = gOutRoom.Of(512);
    TestInterface2(c.Address(), i.Address(), l.Address(), d.Address(), text, i3.Address(),
                   l3.Address(), d3.Address(), i6.Address(), l6.Address(), d6.Address());
    c.Expect({'Z'}, "TestInterface2 ch");
    i.ExpectEach(Plus<std::int32_t>(1), "TestInterface2 i");
    l.ExpectEach(Plus<std::int64_t>(2), "TestInterface2 l");
    ExpectSums(d, 42.123456, "TestInterface2 d");
    ExpectSame({text, 512}, Taken("It doesn't matter what your string was.", 512),
               "TestInterface2 str");
    i3.ExpectEach(Plus<std::int32_t>(1), "TestInterface2 i3");
    l3.ExpectEach(Plus<std::int64_t>(1234567890123456789), "TestInterface2 l3");
    ExpectSums(d3, 42.0, "TestInterface2 d3");
    i6.ExpectEach(Plus<std::int32_t>(1), "TestInterface2 i6");
    l6.ExpectEach(Plus<std::int64_t>(6), "TestInterface2 l6");
    ExpectSums(d6, 7.6, "TestInterface2 d6");
}

void Multiplies(Choices in) {
    Pair<std::int32_t, 3> i3(in);
    Argument<std::int32_t, 6> i6(in);
    TestInterface3(i3.in.Address(), i3.out.Address(), i6.Address(), i6.Address());
    const auto times = [](unsigned factor) {
        return [factor](std::int32_t value) {
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) * factor);
        };
    };
    std::array<std::int32_t, 3> wanted = i3.in.IsMissing() ? i3.out.Before() : i3.in.Before();
    if (!i3.in.IsMissing()) std::transform(wanted.begin(), wanted.end(), wanted.begin(), times(4));
    i3.out.Expect(wanted, "TestInterface3 i3");
    i6.ExpectEach(times(5), "TestInterface3 i6, in place");
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

}  // namespace

void Interface(Choices in) {
    constexpr void (*kFunctions[])(Choices) = {Copies, Changes, Multiplies, Messages};
    const auto function = in.Pick(kFunctions);
    function(in);
}

}  // namespace corvale::fuzz
