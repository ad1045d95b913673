#include <corvale/text/ExactDecimal.hpp>

#include <corvale/text/PowersOfFive.hpp>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>

namespace corvale::internal {

namespace {

// Long arithmetic, as on paper: what reaches it is too rare for more.
//
// digits x 10^e and the middle (2 s + 1) x 2^b are compared as whole numbers: each is multiplied by
// the powers of 5 and 2 that are denominators in the other.
//
// The greatest of them: a mantissa has 512 digits at most, and -342 is the least exponent of its
// first 19 that is not 0 for any digits; so the least of all digits is -342 + 19 - 512, and the
// middle is multiplied by 5^835 at most. That has 1,939 bits, and the other side is as long;
// proofs/numbers counts them.
constexpr std::size_t kMostBits = 1939 + 54 + 64;

// A whole number from 0 up.
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
    std::array<std::uint64_t, kMostBits / 64 + 1> words_;  // the least first, [0, size_) in use
    std::size_t size_ = 1;
};

// digits x 10^exponent.
struct Decimal {
    WholeNumber digits{0};
    std::int64_t exponent = 0;
};

// All digits of `number`, a truncated one, from the first other than 0 on: the exponent of the first 19, which the
// scan has found, less one for each of the others.
Decimal AllDigits(const ScannedReal& number) noexcept {
    assert(number.isTruncated && number.mantissa.size() <= kLongestMantissa);
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
