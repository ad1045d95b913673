#include <corvale/text/ExactDecimal.hpp>

#include <corvale/text/PowersOfFive.hpp>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace corvale::internal {

namespace {

// A whole number of any size that is met here. A mantissa has 512 digits at most, and the least
// exponent that counts is -342 for the first 19 of them: the greatest is 5^835 times 54 bits.
class WholeNumber {
  public:
    explicit WholeNumber(std::uint64_t value) noexcept : words_{value} {}

    void MultiplyAdd(std::uint64_t factor, std::uint64_t addend) noexcept {
        for (std::size_t i = 0; i < size_; ++i) {
            const Uint128 sum = Uint128{words_[i]} * factor + addend;
            words_[i] = static_cast<std::uint64_t>(sum);
            addend = static_cast<std::uint64_t>(sum >> 64U);
        }
        if (addend != 0) words_[size_++] = addend;
    }

    void MultiplyByPower(std::uint64_t base, std::int64_t exponent) noexcept {
        for (; exponent > 0; --exponent) MultiplyAdd(base, 0);
    }

    [[nodiscard]] std::strong_ordering operator<=>(const WholeNumber& other) const noexcept {
        const auto [ours, theirs] =
            std::mismatch(words_.rbegin(), words_.rend(), other.words_.rbegin());
        return ours == words_.rend() ? std::strong_ordering::equal : *ours <=> *theirs;
    }

  private:
    std::array<std::uint64_t, 44> words_;  // the least first; 2,816 bits
    std::size_t size_ = 1;
};

// The number is digits x 10^exponent.
struct Decimal {
    WholeNumber digits{0};
    std::int64_t exponent = 0;
};

Decimal AllDigits(const ScannedReal& number) noexcept {
    if (!number.isCut) return {WholeNumber(number.digits), number.exponent};
    assert(number.mantissa.size() <= kLongestMantissa);
    Decimal all;
    std::int64_t count = 0;
    for (const char c : number.mantissa) {
        if (c == '.' || (c == '0' && count == 0)) continue;
        all.digits.MultiplyAdd(10, static_cast<std::uint64_t>(c - '0'));
        ++count;
    }
    all.exponent = number.exponent + 19 - count;
    return all;
}

}  // namespace

std::strong_ordering CompareWithMiddle(const ScannedReal& number, std::uint64_t bits) noexcept {
    constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52U;
    const auto biased = static_cast<std::int64_t>(bits >> 52U);
    const std::uint64_t fraction = bits & (kHiddenBit - 1);
    const std::uint64_t significand = biased == 0 ? fraction : fraction | kHiddenBit;
    const std::int64_t binary = std::max<std::int64_t>(biased, 1) - 1076;

    // digits x 10^exponent against (2 significand + 1) x 2^binary, both made whole
    auto [digits, exponent] = AllDigits(number);
    WholeNumber middle(2 * significand + 1);
    digits.MultiplyByPower(5, exponent);
    middle.MultiplyByPower(5, -exponent);
    digits.MultiplyByPower(2, exponent - binary);
    middle.MultiplyByPower(2, binary - exponent);
    return digits <=> middle;
}

}  // namespace corvale::internal
