// Fuzzing help: the bytes of an input as choices, as numbers of every kind and as texts made of
// likely pieces; memory with ends that nothing may read or write beyond; comparisons that stop, and
// a digest of what they saw.
//
// An input is never invalid: where its bytes end, zeros follow. No call here allocates, but for the
// first use of a `GuardedMemory`. Who draws from an input does so one statement at a time, or in braces:
// compilers evaluate arguments and operands in different orders.
#pragma once

#include "tests/support/Bits.hpp"
#include "tests/support/GuardPage.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>

namespace corvale::fuzz {

/// Ends the program where `holds` is false; libFuzzer then keeps the input.
inline void Expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "differs: %s\n", what);
    std::abort();
}

/// All that the library has given on this thread, bit by bit: the same with every compiler, on every
/// machine.
inline thread_local std::uint64_t gDigest = 0;

inline void Note(std::uint64_t bits) {
    gDigest = std::rotl((gDigest ^ bits) * 0x9e3779b97f4a7c15U, 29);
}

/// Where the C library can be compared with. That of Windows reduces angles by a short pi, that of WASI
/// misreads some subnormal numbers: the digests alone compare there.
#ifdef _WIN32
inline constexpr bool kHasGoodSine = false, kHasGoodStrtod = true;
#elif defined(__wasi__)
inline constexpr bool kHasGoodSine = true, kHasGoodStrtod = false;
#else
inline constexpr bool kHasGoodSine = true, kHasGoodStrtod = true;
#endif

/// For results whose last bit is the C library's: no part of the digest.
inline void ExpectSameHere(double got, double wanted, const char* what) {
    if (test::Bits(got) == test::Bits(wanted)) return;
    std::fprintf(stderr, "%s: %a, not %a\n", what, got, wanted);
    std::abort();
}

inline void ExpectSame(double got, double wanted, const char* what) {
    Note(test::Bits(got));
    ExpectSameHere(got, wanted, what);
}

inline void ExpectSame(std::string_view got, std::string_view wanted, const char* what) {
    Note(got.size());
    for (const char c : got) Note(static_cast<unsigned char>(c));
    if (got == wanted) return;
    std::fprintf(stderr, "%s: [%.*s]\nnot [%.*s]\n", what, static_cast<int>(got.size()), got.data(),
                 static_cast<int>(wanted.size()), wanted.data());
    std::abort();
}

template <std::integral Integer>
void ExpectSame(Integer got, std::type_identity_t<Integer> wanted, const char* what) {
    Note(static_cast<std::uint64_t>(got));
    if (got == wanted) return;
    std::fprintf(stderr, "%s: %lld, not %lld\n", what, static_cast<long long>(got),
                 static_cast<long long>(wanted));
    std::abort();
}

/// Memory for one text or array: right before a page that cannot be touched or, for sizes that are
/// 3 modulo 4, right after one. What it handed out is overwritten by the next call.
template <std::size_t Most = 16384>
class GuardedMemory {
  public:
    template <class Element = char>
    Element* Of(std::size_t count, char fill = '#') {
        const std::size_t size = count * sizeof(Element);
        Expect(size <= Most, "guarded memory is large enough");
        char* const memory = size % 4 == 3 ? start_.Data() : end_.Data() + Most - size;
        std::memset(memory, fill, size);
        return reinterpret_cast<Element*>(memory);
    }
    std::span<char> Text(std::size_t width) { return {Of(width), width}; }
    std::span<char> Hold(std::string_view text) {
        const std::span<char> held = Text(text.size());
        text.copy(held.data(), held.size());
        return held;
    }
    std::string_view HoldView(std::string_view text) { return {Hold(text).data(), text.size()}; }

  private:
    test::GuardedBuffer end_{Most}, start_{Most, '#', test::GuardedBuffer::Side::Start};
};

/// The bytes of an input, taken from front to back.
class Choices {
  public:
    Choices(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

    [[nodiscard]] std::size_t Left() const { return left_; }
    std::uint8_t Byte() {
        if (left_ == 0) return 0;
        --left_;
        return *next_++;
    }
    bool Flip() { return Byte() % 2 != 0; }

    // Integers byte by byte: GCC 12 takes a copy of as many bytes as are left for one of at least one.
    template <std::integral Value>
    Value Raw() {
        std::uint64_t bits = 0;
        for (unsigned shift = 0; shift < 8 * sizeof(Value); shift += 8)
            bits |= std::uint64_t{Byte()} << shift;
        return static_cast<Value>(bits);
    }
    template <class Value>
    requires std::is_class_v<Value> Value Raw() {
        Value value{};
        const std::size_t size = std::min(sizeof value, left_);
        if (size > 0) std::memcpy(&value, next_, size);
        next_ += size;
        left_ -= size;
        return value;
    }
    std::size_t Below(std::size_t limit) {
        return (limit <= 256 ? Byte() : Raw<std::uint32_t>()) % limit;
    }
    template <class Items>
    const auto& Pick(const Items& items) {
        return items[Below(std::size(items))];
    }
    std::string_view Rest() {
        const std::string_view rest(reinterpret_cast<const char*>(next_), left_);
        next_ += left_;
        left_ = 0;
        return rest;
    }

    /// A count: mostly small, sometimes at the ends of the range, sometimes any.
    std::int32_t Int32() {
        constexpr std::int32_t kEnds[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1,
                                          65536,     -65536,        100000,    340000};
        const std::uint8_t kind = Byte();
        if (kind < 0xC0) return static_cast<std::int8_t>(Byte());
        return kind < 0xE0 ? Pick(kEnds) : Raw<std::int32_t>();
    }

    /// Whole numbers, binary and decimal fractions, the ends of the range, any bits.
    double Real() {
        using Limits = std::numeric_limits<double>;
        constexpr double kSpecial[] = {0.0,
                                       -0.0,
                                       Limits::infinity(),
                                       -Limits::infinity(),
                                       Limits::quiet_NaN(),
                                       Limits::max(),
                                       Limits::min(),
                                       -Limits::denorm_min(),
                                       1e10,
                                       1e300,
                                       6.283185307179586,
                                       2147483648.0};
        constexpr double kTens[] = {1, 10, 60, 100, 360, 1000, 3600, 36000, 1e6, 1e8};
        const std::uint8_t kind = Byte();
        if (kind < 0x50) return std::ldexp(Raw<std::int16_t>(), -(kind % 16));
        if (kind < 0xA0) return Raw<std::int32_t>() / kTens[kind % std::size(kTens)];
        if (kind < 0xC0) return kSpecial[kind % std::size(kSpecial)];
        const auto bits = Raw<std::uint64_t>();
        if (kind < 0xE0) return std::bit_cast<double>(bits);
        return std::ldexp(static_cast<double>(bits >> 11U), -(kind % 32) - 40);
    }

    /// A text of up to `text.size()` characters from all bytes that are left: those below 128 are
    /// themselves, 254 puts the next byte whatever it is, 255 repeats the last character, the
    /// others put a piece.
    std::string_view Text(std::span<const std::string_view> pieces, std::span<char> text) {
        std::size_t size = 0;
        const auto put = [&](char c) {
            if (size < text.size()) text[size++] = c;
        };
        while (left_ > 0 && size < text.size()) {
            const std::uint8_t byte = Byte();
            if (byte < 128) {
                put(static_cast<char>(byte));
            } else if (byte == 254) {
                put(static_cast<char>(Byte()));
            } else if (byte == 255) {
                for (int count = Byte(); count > 0; --count) put(size == 0 ? ' ' : text[size - 1]);
            } else {
                for (const char c : pieces[byte % pieces.size()]) put(c);
            }
        }
        return {text.data(), size};
    }

  private:
    const std::uint8_t* next_;
    std::size_t left_;
};

}  // namespace corvale::fuzz
