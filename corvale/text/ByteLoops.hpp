// Internal to text/: not installed, may change in any commit.
//
// Passes over all bytes of a text, 32 at a time where the processor can; bench: Text512.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvale::internal {

/// One character in place of another.
struct Replacement {
    unsigned char from, to;
};

/// The other case for letters of one case. `toTop` moves the last of the 26 letters to 127, so that
/// the letters, and no other byte, are greater than `below` as signed characters: one compare
/// instead of two.
struct CaseChange {
    unsigned char toTop;
    signed char below = 127 - 26;
    unsigned char caseBit = 'a' ^ 'A';
};

/// Writes the `n` changed bytes of `in` to `out`, which may be `in` itself.
void ChangeBytes(const char* in, char* out, std::size_t n, const Replacement& change) noexcept;
void ChangeBytes(const char* in, char* out, std::size_t n, const CaseChange& change) noexcept;

/// Whether all of `text` is blank; true when it is empty.
[[nodiscard]] bool IsAllBlank(std::string_view text) noexcept;

}  // namespace corvale::internal
