// Internal to core/: not installed, may change in any commit.
//
// The card scan: the two passes over bytes that let a load run at the speed of reading the file.
//
// Idea       Most lines of an input file are no cards of ours. A search for a line end followed by
//            the two letters of our keywords finds those that can be, without a step for each line:
//            three comparisons of a vector decide for 16 or 32 bytes. What it finds is compared
//            with the keywords later. Of a card with numbers a second pass bounds from above how
//            many values it holds, and a card that can add nothing is not read.
// Why        Splitting the file into lines first costs a branch and a search for each; a table of
//            line ends costs a second pass (bench: CardFile, beside a bare read() of the bytes).
// Invariant  A pass may find too much, never too little: what it finds is looked at again.
// Source     own; byte searches of this kind are common since SSE2 (memchr of the C libraries)
#pragma once

#include <cstddef>
#include <string_view>

namespace corvale::internal {

/// How many characters before the numbers of a card `MostValues` reads.
inline constexpr std::size_t kReadBefore = 32;

/// Where, from `at` on, the first line begins that starts with the letters of the cards in any case;
/// `end` if none does. A line begins after '\n'; `at[-1]` and `*end` are read, too.
[[nodiscard]] const char* NextCandidate(const char* at, const char* end) noexcept;

/// An upper bound of the number of values that the numbers of a card supply; 128, all elements, if
/// a repeat count may be among them. The `kReadBefore` characters before `numbers` are read, too.
[[nodiscard]] std::size_t MostValues(std::string_view numbers) noexcept;

}  // namespace corvale::internal
