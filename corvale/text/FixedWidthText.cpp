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

constexpr int kCaseDistance = 'a' - 'A';

// Plain loops over independent bytes: the compiler makes vector code of each of them.

struct ReplaceByteLoop {
    CORVALE_LOOP void operator()(const char* in, char* out, std::size_t n, char from,
                                 char to) const noexcept {
        for (std::size_t i = 0; i < n; ++i) out[i] = in[i] == from ? to : in[i];
    }
};

struct ShiftCaseLoop {
    CORVALE_LOOP void operator()(const char* in, char* out, std::size_t n, char first, char last,
                                 int distance) const noexcept {
        for (std::size_t i = 0; i < n; ++i) {
            const bool isLetter = in[i] >= first && in[i] <= last;
            out[i] = static_cast<char>(in[i] + (isLetter ? distance : 0));
        }
    }
};

struct DiffersFromBlankLoop {
    CORVALE_LOOP bool operator()(const char* in, std::size_t n) const noexcept {
        unsigned char difference = 0;
        for (std::size_t i = 0; i < n; ++i)
            difference = static_cast<unsigned char>(difference | (in[i] ^ kBlank));
        return difference != 0;
    }
};

bool StopsBuffer(char c) noexcept {
    const auto code = static_cast<unsigned char>(c);
    return code < 32 || code > 127;
}

// Changes the case of the letters `first` to `last` by `distance` codes; blanks follow.
void ShiftCase(std::string_view text, std::span<char> result, char first, char last,
               int distance) noexcept {
    const std::size_t count = std::min(text.size(), result.size());
    OnBestPath<ShiftCaseLoop>(text.data(), result.data(), count, first, last, distance);
    std::ranges::fill(result.subspan(count), kBlank);
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
    std::ranges::fill(result, kBlank);
}

}  // namespace

void CharArrToStr(const char* chars, std::int32_t n, std::span<char> text) noexcept {
    const std::size_t limit =
        chars == nullptr || n < 1 ? 0 : std::min(static_cast<std::size_t>(n), text.size());
    // One element at a time: nothing after the one that stops may be looked at, and the caller's
    // memory may end there.
    std::size_t count = 0;
    while (count < limit && !StopsBuffer(chars[count])) {
        text[count] = chars[count];
        ++count;
    }
    std::ranges::fill(text.subspan(count), kBlank);
}

void StrToCharArr(std::string_view text, std::int32_t n, char* chars) noexcept {
    if (chars == nullptr || n < 1) return;
    PutText(text, {chars, static_cast<std::size_t>(n)});
}

void ReplaceString(std::string_view text, std::string_view pattern, std::string_view replacement,
                   std::span<char> result) noexcept {
    assert(result.empty() || text.data() != result.data() || replacement.size() <= pattern.size());
    if (pattern.empty()) {
        std::ranges::fill(result, kBlank);
    } else if (pattern.size() == 1 && replacement.size() == 1) {
        const std::size_t count = std::min(text.size(), result.size());
        OnBestPath<ReplaceByteLoop>(text.data(), result.data(), count, pattern[0], replacement[0]);
        std::ranges::fill(result.subspan(count), kBlank);
    } else {
        ReplaceOccurrences(text, pattern, replacement,
                           result.first(std::min(text.size(), result.size())));
        if (result.size() > text.size()) std::ranges::fill(result.subspan(text.size()), kBlank);
    }
}

void NullToSpace(std::span<char> text) noexcept {
    OnBestPath<ReplaceByteLoop>(text.data(), text.data(), text.size(), '\0', kBlank);
}

std::int32_t IsBlankOrNull(std::string_view text) noexcept {
    return OnBestPath<DiffersFromBlankLoop>(text.data(), text.size()) ? 0 : 1;
}

void BlankToZeroChar(std::span<char> text) noexcept {
    OnBestPath<ReplaceByteLoop>(text.data(), text.data(), text.size(), kBlank, '0');
}

void RemSpaceSlashChars(std::string_view input, std::span<char> output) noexcept {
    const std::size_t count = internal::KeepDigitsAndPoints(input, output);
    std::ranges::fill(output.subspan(count), kBlank);
}

void ToLowerCase(std::string_view text, std::span<char> result) noexcept {
    ShiftCase(text, result, 'A', 'Z', kCaseDistance);
}

void ToUpperCase(std::string_view text, std::span<char> result) noexcept {
    ShiftCase(text, result, 'a', 'z', -kCaseDistance);
}

void GetInputStr(std::string_view line, std::span<char> result) noexcept {
    GetInputFileName(line, result);
    ToUpperCase({result.data(), result.size()}, result);
}

void GetInputFileName(std::string_view line, std::span<char> result) noexcept {
    PutText(ValueOf(line), result);
}

}  // namespace corvale::StrFunctions
