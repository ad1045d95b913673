#include "Commands.hpp"

#include <corvale/Corvale.h>

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <limits>
#include <span>
#include <string>

namespace corvale::tool {

namespace {

using Text = std::array<char, CORVALE_NAME_WIDTH>;

// Prints one row for each argument and remembers whether all were right.
class Outcomes {
  public:
    explicit Outcomes(const char* function) { std::cout << function << '\n'; }

    template <class Value>
    void Row(const char* argument, const Value& got, const Value& wanted) {
        const auto bytes = std::as_bytes(std::span(&got, 1));
        const auto right = std::as_bytes(std::span(&wanted, 1));
        const bool isRight = std::equal(bytes.begin(), bytes.end(), right.begin());
        allRight_ = allRight_ && isRight;
        std::cout << "  " << std::setw(2) << std::right << ++number_ << ' ' << std::setw(8)
                  << std::left << argument << (isRight ? "ok" : "WRONG") << std::right << '\n';
    }
    [[nodiscard]] bool AllRight() const { return allRight_; }

  private:
    int number_ = 0;
    bool allRight_ = true;
};

Text Filled(std::string_view start) {
    Text text;
    text.fill(' ');
    start.copy(text.data(), text.size());
    return text;
}

constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMinInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaxLong = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMinLong = std::numeric_limits<std::int64_t>::min();

// Each out argument receives its in argument: distinct values show an exchange of two.
bool TestCopies() {
    const std::array<std::int32_t, 3> i3 = {11, -12, kMinInt};
    const std::array<std::int64_t, 3> l3 = {21, -22, kMinLong};
    const std::array<double, 3> d3 = {3.25, -0.0, std::numeric_limits<double>::infinity()};
    const std::array<std::int32_t, 6> i6 = {31, 32, 33, -34, -35, kMaxInt};
    const std::array<std::int64_t, 6> l6 = {41, 42, 43, -44, -45, kMaxLong};
    const std::array<double, 6> d6 = {5.5, -6.75, 1e300, -1e-300, 5e-324, 0.0};
    const Text text = Filled("  Corvale, leading blanks kept");

    char c = 0;
    std::int32_t i = 0;
    std::int64_t l = 0;
    double d = 0;
    Text textOut = Filled("");
    std::array<std::int32_t, 3> i3Out{};
    std::array<std::int64_t, 3> l3Out{};
    std::array<double, 3> d3Out{};
    std::array<std::int32_t, 6> i6Out{};
    std::array<std::int64_t, 6> l6Out{};
    std::array<double, 6> d6Out{};
    TestInterface('c', &c, -7, &i, 1234567890123, &l, 2.5, &d, text.data(), textOut.data(),
                  i3.data(), i3Out.data(), l3.data(), l3Out.data(), d3.data(), d3Out.data(),
                  i6.data(), i6Out.data(), l6.data(), l6Out.data(), d6.data(), d6Out.data());

    Outcomes outcomes("TestInterface: each output equals its input");
    outcomes.Row("cOut", c, 'c');
    outcomes.Row("iOut", i, -7);
    outcomes.Row("lOut", l, std::int64_t{1234567890123});
    outcomes.Row("dOut", d, 2.5);
    outcomes.Row("strOut", textOut, text);
    outcomes.Row("i3Out", i3Out, i3);
    outcomes.Row("l3Out", l3Out, l3);
    outcomes.Row("d3Out", d3Out, d3);
    outcomes.Row("i6Out", i6Out, i6);
    outcomes.Row("l6Out", l6Out, l6);
    outcomes.Row("d6Out", d6Out, d6);
    return outcomes.AllRight();
}

bool TestChangesInPlace() {
    char c = 'a';
    std::int32_t i = kMaxInt;
    std::int64_t l = 40;
    double d = 0.0;
    Text text = Filled("anything");
    std::array<std::int32_t, 3> i3 = {1, 2, kMaxInt};
    std::array<std::int64_t, 3> l3 = {0, 1, 2};
    std::array<double, 3> d3 = {0.5, -42.0, 1.0};
    std::array<std::int32_t, 6> i6 = {0, 1, 2, 3, 4, -1};
    std::array<std::int64_t, 6> l6 = {0, 1, 2, 3, kMaxLong, -6};
    std::array<double, 6> d6 = {0.0, 1.0, 2.0, 3.0, 4.0, -7.6};
    TestInterface2(&c, &i, &l, &d, text.data(), i3.data(), l3.data(), d3.data(), i6.data(),
                   l6.data(), d6.data());

    constexpr std::int64_t step = 1234567890123456789;
    Outcomes outcomes("TestInterface2: each argument is changed by its amount");
    outcomes.Row("ch", c, 'Z');
    outcomes.Row("i", i, kMinInt);
    outcomes.Row("l", l, std::int64_t{42});
    outcomes.Row("d", d, 42.123456);
    outcomes.Row("str", text, Filled("It doesn't matter what your string was."));
    outcomes.Row("i3", i3, {2, 3, kMinInt});
    outcomes.Row("l3", l3, {step, step + 1, step + 2});
    outcomes.Row("d3", d3, {42.5, 0.0, 43.0});
    outcomes.Row("i6", i6, {1, 2, 3, 4, 5, 0});
    outcomes.Row("l6", l6, {6, 7, 8, 9, kMinLong + 5, 0});
    outcomes.Row("d6", d6, {7.6, 1.0 + 7.6, 2.0 + 7.6, 3.0 + 7.6, 4.0 + 7.6, 0.0});
    return outcomes.AllRight();
}

bool TestProducts() {
    const std::array<std::int32_t, 3> i3 = {1, -2, 0x40000001};
    const std::array<std::int32_t, 6> i6 = {1, -1, 0, 2, 3, 0x40000001};
    std::array<std::int32_t, 3> i3Out{};
    std::array<std::int32_t, 6> i6Out{};
    TestInterface3(i3.data(), i3Out.data(), i6.data(), i6Out.data());

    Outcomes outcomes("TestInterface3: 4 times and 5 times, wrapping");
    outcomes.Row("i3Out", i3Out, {4, -8, 4});
    outcomes.Row("i6Out", i6Out, {5, -5, 0, 10, 15, 0x40000005});
    return outcomes.AllRight();
}

}  // namespace

int SelfTest() {
    const bool copies = TestCopies();
    const bool changes = TestChangesInPlace();
    const bool products = TestProducts();
    if (copies && changes && products) return kExitOk;
    std::cerr << "corvale: an argument did not arrive as it was passed\n";
    return kExitFailed;
}

}  // namespace corvale::tool
