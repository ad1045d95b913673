#include "Keywords.hpp"

#include "Joined.hpp"
#include "RealWords.hpp"

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <algorithm>
#include <array>
#include <vector>

namespace corvale::tool {

namespace {

constexpr std::size_t kLongestKeyword = 13;
constexpr std::array<std::string_view, 4> kNames = {"", "QZ_MOIC", "QZ_DMA_ON", "QZ_DMA_ALL_ON"};

// By how many insertions, losses, changes and exchanges of neighbours `a` differs from `b`.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t change = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

// Whether `word` can differ from a keyword in no more than two places: then a Q or Z is left at its
// beginning, or all that follows them. Saves the time of most lines.
bool MayBeNear(std::string_view word) {
    return word.size() >= 5 && (word.substr(0, 3).find_first_of("QZ") != std::string_view::npos ||
                                word.find('_') != std::string_view::npos);
}

// The keyword that `word` differs from in one or two places.
Keyword Nearest(std::string_view word) {
    constexpr std::size_t most = 2;
    if (!MayBeNear(word)) return Keyword::None;
    Keyword nearest = Keyword::None;
    std::size_t least = most + 1;
    for (const Keyword keyword : {Keyword::Moic, Keyword::DmaOn, Keyword::DmaAllOn}) {
        const std::size_t distance = Distance(word, Name(keyword));
        if (distance < least) nearest = keyword;
        least = std::min(least, distance);
    }
    return nearest;
}

// Which keyword begins `text`, with whatever behind it.
Keyword Beginning(std::string_view text) {
    const std::string start = UpperCase(text.substr(0, kLongestKeyword));
    for (const Keyword keyword : {Keyword::Moic, Keyword::DmaOn, Keyword::DmaAllOn})
        if (start.starts_with(Name(keyword))) return keyword;
    return Keyword::None;
}

// The blanks, control characters and bytes above 127 that `line` begins with.
std::size_t InvisibleSize(std::string_view line) {
    const auto visible = std::ranges::find_if(line, [](char c) { return c > ' ' && c <= '~'; });
    return static_cast<std::size_t>(visible - line.begin());
}

std::string WhatStandsBefore(std::string_view before) {
    if (before.starts_with("\xef\xbb\xbf")) return "a byte order mark (0xEF 0xBB 0xBF)";
    if (before.find_first_not_of(' ') == std::string_view::npos)
        return before.size() == 1 ? std::string("a blank") : Joined(before.size(), " blanks");
    return ByteName(before[before.find_first_not_of(' ')]);
}

Finding NotInFirstColumn(std::string_view before, Keyword keyword) {
    return {"not-in-column-1", before.size() + 1, Name(keyword).size(),
            Joined(Name(keyword), " is not read as a card: it begins in column ", before.size() + 1,
                   ", behind ", WhatStandsBefore(before)),
            "keywords begin in column 1; a comment begins with *"};
}

// Only QZ_MOIC can begin a line that is no card.
Finding NoBlankBehind(std::string_view line) {
    constexpr std::size_t size = 7;
    return {"no-blank-in-column-8", size + 1, 1,
            Joined("QZ_MOIC is not read as a card: column 8 holds ", ByteName(line[size]),
                   " where a blank is needed"),
            ""};
}

}  // namespace

std::string_view Name(Keyword keyword) {
    return kNames[static_cast<std::size_t>(keyword)];
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    StrFunctions::ToUpperCase(text, upper);
    return upper;
}

Keyword CardOf(std::string_view line) {
    const std::int32_t code =
        CorvaleCardReading::CorvaleCardType(UpperCase(line.substr(0, kLongestKeyword)));
    return code < static_cast<std::int32_t>(kNames.size()) ? static_cast<Keyword>(code)
                                                           : Keyword::None;
}

std::optional<Finding> NearCard(std::string_view line) {
    const std::size_t first = InvisibleSize(line);
    const std::string_view visible = line.substr(first);
    const Keyword keyword = Beginning(visible);
    if (keyword != Keyword::None && first > 0)
        return NotInFirstColumn(line.substr(0, first), keyword);
    if (keyword != Keyword::None) return NoBlankBehind(line);

    const std::string_view word = visible.substr(0, visible.find_first_of(" \t,;:=/"));
    constexpr std::size_t tooLong = kLongestKeyword + 3;
    if (word.size() >= tooLong) return std::nullopt;
    const std::string upper = UpperCase(word);
    if (upper == "QZ_DMA_OFF" || upper == "QZ_DMA_ALL_OFF")
        return Finding{"unknown-keyword", first + 1, word.size(),
                       Joined("there is no card ", upper, ": no card sets a mode back to 0"), ""};
    if (const Keyword nearest = Nearest(upper); nearest != Keyword::None)
        return Finding{
            "unknown-keyword", first + 1, word.size(),
            Joined(Quoted(word), " is no keyword of a card; it looks like ", Name(nearest)), ""};
    return std::nullopt;
}

std::optional<Finding> CardAfterReturn(std::string_view line) {
    for (std::size_t at = line.find('\r'); at < line.size(); at = line.find('\r', at + 1)) {
        const Keyword keyword = Beginning(line.substr(at + 1));
        if (keyword == Keyword::None) continue;
        return Finding{
            "carriage-return", at + 2, Name(keyword).size(),
            Joined(Name(keyword), " is not read as a card: a carriage return alone begins no line"),
            "lines end with LF, or with CR LF"};
    }
    return std::nullopt;
}

}  // namespace corvale::tool
