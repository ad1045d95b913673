#include <corvale/text/FixedWidthText.hpp>

#include <corvale/text/ByteLoops.hpp>
#include <corvale/text/DigitFilter.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

namespace corvale::StrFunctions {

using internal::kBlank;
using internal::PutText;

namespace {

// One character in place of another.
constexpr internal::Replacement OneForOne(char from, char to) noexcept {
    return {static_cast<unsigned char>(from), static_cast<unsigned char>(to)};
}
constexpr internal::Replacement kNullToBlank = OneForOne('\0', kBlank);
constexpr internal::Replacement kBlankToZero = OneForOne(kBlank, '0');
constexpr internal::CaseChange kToLower = {.toTop = 127 - 'Z'};
constexpr internal::CaseChange kToUpper = {.toTop = 127 - 'z'};

// noinline keeps this path's register saves out of the common case.
template <class Change>
[[gnu::noinline]] void PutChangedAndBlanks(std::string_view text, std::span<char> result,
                                           const Change& change) noexcept {
    internal::FillWithBlanks(result.subspan(text.size()));
    internal::ChangeBytes(text.data(), result.data(), text.size(), change);
}

// Writes the changed `text` to `result`, which may be `text` itself; blanks follow.
template <class Change>
void PutChanged(std::string_view text, std::span<char> result, const Change& change) noexcept {
    if (result.size() > text.size()) return PutChangedAndBlanks(text, result, change);
    internal::ChangeBytes(text.data(), result.data(), result.size(), change);
}

// A code below 32 or above 127: as signed characters the latter are negative.
bool StopsBuffer(char c) noexcept {
    return static_cast<signed char>(c) < 32;
}

// How many of the first `limit` elements precede the first one that stops. One after the other,
// because the caller's memory may end with that one; in rounds of eight, which the compiler unrolls:
// half the time (bench: LogLine).
std::size_t LengthUpToStop(const char* chars, std::size_t limit) noexcept {
    constexpr std::size_t step = 8;
    std::size_t i = 0;
    for (; i + step <= limit; i += step)
        for (std::size_t j = 0; j < step; ++j)
            if (StopsBuffer(chars[i + j])) return i + j;
    while (i < limit && !StopsBuffer(chars[i])) ++i;
    return i;
}

// What follows the first "=", or the whole line without one (`find` gives `npos` then, and `npos` + 1
// is 0), from its first non-blank character on.
std::string_view ValueOrLine(std::string_view line) noexcept {
    return internal::WithoutLeadingBlanks(line.substr(line.find('=') + 1));
}

// Copies what fits of `piece` to `target` (they may overlap) and returns the rest of `target`.
std::span<char> Append(std::string_view piece, std::span<char> target) noexcept {
    const std::size_t count = std::min(piece.size(), target.size());
    if (count > 0) std::memmove(target.data(), piece.data(), count);
    return target.subspan(count);
}

// The general replacement: copies the text between occurrences until the narrower of `text` and
// `result` is full. A replacement that is no longer than its pattern writes only what has been
// searched, so that a text may be replaced in place. noinline keeps its register saves out of the
// replacement of one character.
[[gnu::noinline]] void ReplaceOccurrences(std::string_view text, std::string_view pattern,
                                          std::string_view replacement,
                                          std::span<char> result) noexcept {
    std::span<char> rest = result.first(std::min(text.size(), result.size()));
    while (!rest.empty()) {
        const std::size_t match = text.find(pattern);
        rest = Append(text.substr(0, match), rest);
        if (match == std::string_view::npos) break;
        text.remove_prefix(match + pattern.size());
        rest = Append(replacement, rest);
    }
    internal::FillWithBlanks({rest.data(), result.data() + result.size()});
}

}  // namespace

void CharArrToStr(const char* chars, std::int32_t n, std::span<char> text) noexcept {
    const std::size_t limit =
        chars == nullptr || n < 1 ? 0 : std::min(static_cast<std::size_t>(n), text.size());
    PutText({chars, LengthUpToStop(chars, limit)}, text);
}

void StrToCharArr(std::string_view text, std::int32_t n, char* chars) noexcept {
    if (chars == nullptr || n < 1) return;
    PutText(text, {chars, static_cast<std::size_t>(n)});
}

void ReplaceString(std::string_view text, std::string_view pattern, std::string_view replacement,
                   std::span<char> result) noexcept {
    assert(result.empty() || text.data() != result.data() || replacement.size() <= pattern.size());
    if (pattern.size() == 1 && replacement.size() == 1)
        return PutChanged(text, result, OneForOne(pattern[0], replacement[0]));
    if (pattern.empty()) return internal::FillWithBlanks(result);
    ReplaceOccurrences(text, pattern, replacement, result);
}

void NullToSpace(std::span<char> text) noexcept {
    internal::ChangeBytes(text.data(), text.data(), text.size(), kNullToBlank);
}

std::int32_t IsBlankOrNull(std::string_view text) noexcept {
    return internal::IsAllBlank(text) ? 1 : 0;
}

void BlankToZeroChar(std::span<char> text) noexcept {
    internal::ChangeBytes(text.data(), text.data(), text.size(), kBlankToZero);
}

void RemSpaceSlashChars(std::string_view input, std::span<char> output) noexcept {
    const std::size_t count = internal::KeepDigitsAndPoints(input, output);
    internal::FillWithBlanks(output.subspan(count));
}

void ToLowerCase(std::string_view text, std::span<char> result) noexcept {
    PutChanged(text, result, kToLower);
}

void ToUpperCase(std::string_view text, std::span<char> result) noexcept {
    PutChanged(text, result, kToUpper);
}

void GetInputStr(std::string_view line, std::span<char> result) noexcept {
    GetInputFileName(line, result);
    ToUpperCase({result.data(), result.size()}, result);
}

void GetInputFileName(std::string_view line, std::span<char> result) noexcept {
    PutText(ValueOrLine(line), result);
}

}  // namespace corvale::StrFunctions
