#include "Keywords.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "WordDistance.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <algorithm>
#include <utility>

namespace corvale::tool {

namespace {

using internal::kCardLetters;
using internal::kCards;
using internal::kLongestKeyword;

constexpr char kCaseBit = 0x20;  // set in small ASCII letters, clear in capitals

// Whether `text` can begin with a keyword, or with a word near one. Saves the time of most lines: it
// looks at the first characters alone.
bool MayBeMeant(std::string_view text) {
    const std::string_view start = text.substr(0, kLongestKeyword + 2);
    for (std::size_t i = 0; i < start.size(); ++i) {
        const char capital = static_cast<char>(start[i] & ~kCaseBit);
        if (i < 3 && (capital == kCardLetters[0] || capital == kCardLetters[1])) return true;
        if (start[i] == '_') return true;
        if (start[i] == ' ') return false;
    }
    return false;
}

// Whether `word` can differ from a keyword in no more than two places: then one of the first two
// letters is left at its beginning, or the underscore that follows them. Saves the time of most
// lines.
bool MayBeNear(std::string_view word) {
    static_assert(std::ranges::all_of(kCards, [](const Card& card) {
        return card.keyword[kCardLetters.size()] == '_' && NameOf(card).size() >= 7;
    }));
    return word.size() >= 5 &&
           (word.substr(0, 3).find_first_of(kCardLetters) != std::string_view::npos ||
            word.find('_') != std::string_view::npos);
}

// The card whose name differs from `word` in one or two places.
const Card* Nearest(std::string_view word) {
    constexpr std::size_t most = 2;
    if (!MayBeNear(word)) return nullptr;
    const Card* nearest = nullptr;
    std::size_t least = most + 1;
    for (const Card& card : kCards) {
        const std::size_t distance = WordDistance(word, NameOf(card));
        if (distance < least) nearest = &card;
        least = std::min(least, distance);
    }
    return nearest;
}

// The card whose name begins `text`, whatever follows.
const Card* Beginning(std::string_view text) {
    const std::string start = UpperCase(text.substr(0, kLongestKeyword));
    const auto* const card = std::ranges::find_if(
        kCards, [&](const Card& each) { return start.starts_with(NameOf(each)); });
    return card == kCards.end() ? nullptr : card;
}

// The card that sets a mode and whose name, with OFF for ON, is `word`.
const Card* SwitchedOff(std::string_view word) {
    for (const Card& card : kCards) {
        const std::string_view name = NameOf(card);
        if (card.mode && name.ends_with("_ON") &&
            word == Joined(name.substr(0, name.size() - 2), "OFF"))
            return &card;
    }
    return nullptr;
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

Finding NotInFirstColumn(std::string_view before, const Card& card) {
    return {FindingKind::NotInColumn1,
            before.size() + 1,
            NameOf(card).size(),
            Joined(NameOf(card), " is not read as a card: it begins in column ", before.size() + 1,
                   ", behind ", WhatStandsBefore(before)),
            "keywords begin in column 1; a comment begins with *",
            &card};
}

// Of a line that begins with the name of `card` and is no card.
Finding NoBlankBehind(std::string_view line, const Card& card) {
    const std::size_t size = NameOf(card).size();
    return {FindingKind::NoBlankInColumn8,
            size + 1,
            1,
            Joined(NameOf(card), " is not read as a card: column ", size + 1, " holds ",
                   ByteName(line[size]), " where a blank is needed"),
            "",
            &card};
}

}  // namespace

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    StrFunctions::ToUpperCase(text, upper);
    return upper;
}

const Card* CardOf(std::string_view line) {
    if (line.empty() || (line.front() & ~kCaseBit) != kCardLetters.front()) return nullptr;
    return internal::CardOf(UpperCase(line.substr(0, kLongestKeyword)));
}

std::optional<Finding> NearCard(std::string_view line) {
    const std::size_t first = InvisibleSize(line);
    const std::string_view visible = line.substr(first);
    if (!MayBeMeant(visible)) return std::nullopt;
    if (const Card* const card = Beginning(visible); card != nullptr)
        return first > 0 ? NotInFirstColumn(line.substr(0, first), *card)
                         : NoBlankBehind(line, *card);

    const std::string_view word = visible.substr(0, visible.find_first_of(" \t,;:=/"));
    constexpr std::size_t tooLong = kLongestKeyword + 3;
    if (word.size() >= tooLong) return std::nullopt;
    const std::string upper = UpperCase(word);
    const auto unknown = [&](const Card& card, std::string message) {
        return Finding{FindingKind::UnknownKeyword, first + 1, word.size(),
                       std::move(message),          "",        &card};
    };
    if (const Card* const card = SwitchedOff(upper); card != nullptr)
        return unknown(*card,
                       Joined("there is no card ", upper, ": no card sets a mode back to 0"));
    if (const Card* const card = Nearest(upper); card != nullptr)
        return unknown(
            *card, Joined(Quoted(word), " is no keyword of a card; it looks like ", NameOf(*card)));
    return std::nullopt;
}

std::optional<Finding> CardAfterReturn(std::string_view line) {
    for (std::size_t at = line.find('\r'); at < line.size(); at = line.find('\r', at + 1)) {
        const Card* const card = Beginning(line.substr(at + 1));
        if (card == nullptr) continue;
        return Finding{
            FindingKind::CarriageReturn,
            at + 2,
            NameOf(*card).size(),
            Joined(NameOf(*card), " is not read as a card: a carriage return alone begins no line"),
            "lines end with LF, or with CR LF",
            card};
    }
    return std::nullopt;
}

}  // namespace corvale::tool
