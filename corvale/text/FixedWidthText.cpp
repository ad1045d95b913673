#include <corvale/text/FixedWidthText.hpp>

#include <corvale/base/CodePath.hpp>
#include <corvale/text/DigitFilter.hpp>
#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

namespace corvale::StrFunctions {

using internal::kBlank;
using internal::OnBestPath;
using internal::PutText;

namespace {

// What becomes of one byte. Bytes are independent: the compiler makes vector code of the loops.

struct Replaced {
    char from, to;
    CORVALE_LOOP char operator()(char c) const noexcept { return c == from ? to : c; }
};

// With both characters known to the compiler.
template <char From, char To>
struct ReplacedBy {
    CORVALE_LOOP char operator()(char c) const noexcept { return c == From ? To : c; }
};

// The other case of the 26 letters that end with `Last`. Moved up so that they end at 127, the
// letters, and no other byte, are greater than 127 - 26: one compare instead of two.
template <char Last>
struct CaseChanged {
    CORVALE_LOOP char operator()(char c) const noexcept {
        constexpr int toTop = 127 - Last;
        constexpr int caseBit = 'a' - 'A';
        const bool isLetter = static_cast<signed char>(c + toTop) > 127 - 26;
        return static_cast<char>(c ^ (isLetter ? caseBit : 0));
    }
};

// Blocks of known size let four vectors go side by side (bench: Text512).
constexpr std::size_t kBlock = 128;

template <class Change>
struct InPlaceLoop {
    CORVALE_LOOP void operator()(char* text, std::size_t n, Change change) const noexcept {
        std::size_t i = 0;
        for (; i + kBlock <= n; i += kBlock)
            for (std::size_t j = 0; j < kBlock; ++j) text[i + j] = change(text[i + j]);
        for (; i < n; ++i) text[i] = change(text[i]);
    }
};

template <class Change>
struct CopyLoop {
    CORVALE_LOOP void operator()(const char* __restrict in, char* __restrict out, std::size_t n,
                                 Change change) const noexcept {
        std::size_t i = 0;
        for (; i + kBlock <= n; i += kBlock)
            for (std::size_t j = 0; j < kBlock; ++j) out[i + j] = change(in[i + j]);
        for (; i < n; ++i) out[i] = change(in[i]);
    }
};

template <class Change>
void ChangeInPlace(std::span<char> text, Change change) noexcept {
    OnBestPath<InPlaceLoop<Change>>(text.data(), text.size(), change);
}

// Writes the changed `text` to `result`, which may be `text` itself; blanks follow.
template <class Change>
void PutChanged(std::string_view text, std::span<char> result, Change change) noexcept {
    const std::size_t count = std::min(text.size(), result.size());
    internal::FillWithBlanks(result.subspan(count));
    if (text.data() == result.data()) return ChangeInPlace(result.first(count), change);
    OnBestPath<CopyLoop<Change>>(text.data(), result.data(), count, change);
}

// A code below 32 or above 127: as signed characters the latter are negative.
bool StopsBuffer(char c) noexcept {
    return static_cast<signed char>(c) < 32;
}

// How many of the first `limit` elements precede the first one that stops. One element after the
// other: none behind that one may be looked at, and the caller's memory may end there. Written in
// eights, which takes half the time (bench: LogLine).
std::size_t LengthUpToStop(const char* chars, std::size_t limit) noexcept {
    constexpr std::size_t step = 8;
    std::size_t i = 0;
    for (; i + step <= limit; i += step)
        for (std::size_t j = 0; j < step; ++j)
            if (StopsBuffer(chars[i + j])) return i + j;
    while (i < limit && !StopsBuffer(chars[i])) ++i;
    return i;
}

// What follows the first "=", or the whole line without one.
std::string_view ValueOf(std::string_view line) noexcept {
    return internal::WithoutLeadingBlanks(line.substr(line.find('=') + 1));
}

// Copies what fits of `piece` (they may overlap) and returns the room that is left.
std::span<char> Append(std::string_view piece, std::span<char> room) noexcept {
    const std::size_t count = std::min(piece.size(), room.size());
    if (count > 0) std::memmove(room.data(), piece.data(), count);
    return room.subspan(count);
}

// The general replacement: copies the stretches between occurrences, stops where `result` is full.
// Nothing is written beyond what has been searched, so that a text may be replaced in its place.
void ReplaceOccurrences(std::string_view text, std::string_view pattern,
                        std::string_view replacement, std::span<char> result) noexcept {
    while (!result.empty()) {
        const std::size_t match = text.find(pattern);
        result = Append(text.substr(0, match), result);
        if (match == std::string_view::npos) break;
        text.remove_prefix(match + pattern.size());
        result = Append(replacement, result);
    }
    internal::FillWithBlanks(result);
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
    if (pattern.empty()) {
        internal::FillWithBlanks(result);
    } else if (pattern.size() == 1 && replacement.size() == 1) {
        PutChanged(text, result, Replaced{pattern[0], replacement[0]});
    } else {
        ReplaceOccurrences(text, pattern, replacement,
                           result.first(std::min(text.size(), result.size())));
        if (result.size() > text.size()) internal::FillWithBlanks(result.subspan(text.size()));
    }
}

void NullToSpace(std::span<char> text) noexcept {
    ChangeInPlace(text, ReplacedBy<'\0', kBlank>{});
}

// All characters are blanks when the first one is and each equals the one before it: the library's
// comparison is the fastest pass over them (bench: Text512).
std::int32_t IsBlankOrNull(std::string_view text) noexcept {
    if (text.empty()) return 1;
    return text.front() == kBlank && std::memcmp(text.data(), text.data() + 1, text.size() - 1) == 0
               ? 1
               : 0;
}

void BlankToZeroChar(std::span<char> text) noexcept {
    ChangeInPlace(text, ReplacedBy<kBlank, '0'>{});
}

void RemSpaceSlashChars(std::string_view input, std::span<char> output) noexcept {
    const std::size_t count = internal::KeepDigitsAndPoints(input, output);
    internal::FillWithBlanks(output.subspan(count));
}

void ToLowerCase(std::string_view text, std::span<char> result) noexcept {
    PutChanged(text, result, CaseChanged<'Z'>{});
}

void ToUpperCase(std::string_view text, std::span<char> result) noexcept {
    PutChanged(text, result, CaseChanged<'z'>{});
}

void GetInputStr(std::string_view line, std::span<char> result) noexcept {
    GetInputFileName(line, result);
    ToUpperCase({result.data(), result.size()}, result);
}

void GetInputFileName(std::string_view line, std::span<char> result) noexcept {
    PutText(ValueOf(line), result);
}

}  // namespace corvale::StrFunctions
