// Random input, and the digest of what came of it.
#pragma once

#include "Bits.hpp"

#include <array>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace corvale::soak {

// Who uses it draws one statement at a time, or in braces: compilers evaluate arguments and operands
// in different orders.
class Mill {
  public:
    explicit Mill(std::uint64_t seed) : random_(seed) {}

    std::uint64_t Below(std::uint64_t limit) { return random_() % limit; }
    bool OneIn(std::uint64_t n) { return Below(n) == 0; }
    std::int32_t Integer() {  // of any magnitude
        const auto bits = static_cast<std::uint32_t>(random_());
        return static_cast<std::int32_t>(bits) >> Below(32);
    }
    // Magnitudes from 2^-magnitudes to 2^magnitudes; one in 16 is any bits at all.
    double Real(std::uint64_t magnitudes) {
        const std::uint64_t bits = random_();
        if (OneIn(16)) return std::bit_cast<double>(bits);
        const std::uint64_t exponent = 1023 - magnitudes + Below(2 * magnitudes);
        return std::bit_cast<double>((bits & 0x800fffffffffffffU) | exponent << 52U);
    }
    std::string Text(std::string_view characters, std::uint64_t longest) {
        std::string text(Below(longest + 1), ' ');
        for (char& c : text) c = characters[Below(characters.size())];
        return text;
    }
    std::string Bytes(std::uint64_t longest) {
        std::string text(Below(longest + 1), ' ');
        for (char& c : text) c = static_cast<char>(random_());
        return text;
    }
    std::mt19937_64& Generator() { return random_; }

    void Add(std::uint64_t value) {
        digest_ = std::rotl((digest_ ^ value) * 0x9e3779b97f4a7c15U, 29);
    }
    void Add(std::int64_t value) { Add(static_cast<std::uint64_t>(value)); }
    void Add(std::int32_t value) { Add(std::int64_t{value}); }
    void Add(double value) { Add(test::Bits(value)); }
    void Add(std::string_view text) {
        Add(text.size());
        for (const char c : text) Add(std::uint64_t{static_cast<unsigned char>(c)});
    }
    void Add(std::span<const double> values) {
        for (const double value : values) Add(value);
    }
    template <std::size_t Size>
    void Add(const std::array<char, Size>& text) {
        Add(std::string_view{text.data(), Size});
    }

    [[nodiscard]] std::uint64_t Digest() const { return digest_; }

  private:
    std::mt19937_64 random_;
    std::uint64_t digest_ = 0;
};

}  // namespace corvale::soak
