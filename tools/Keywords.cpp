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

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
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

// A card, and in how many places its name differs from a word.
struct Near {
    const Card* card = nullptr;
    std::size_t distance = 3;
};

// The card whose name differs from `word` in one or two places.
Near Nearest(std::string_view word) {
    Near nearest;
    if (!MayBeNear(word)) return nearest;
    for (const Card& card : kCards) {
        const std::size_t distance = WordDistance(word, NameOf(card));
        if (distance < nearest.distance) nearest = {&card, distance};
    }
    return nearest;
}

// The names of the cards that begin with `word`, with " and " between them, and the last such card.
// Two letters that all names begin with, and the underscore, are too little.
std::pair<std::string, const Card*> BegunBy(std::string_view word) {
    std::pair<std::string, const Card*> begun = {"", nullptr};
    if (word.size() < kCardLetters.size() + 2) return begun;
    for (const Card& card : kCards) {
        if (!NameOf(card).starts_with(word)) continue;
        begun.first.append(begun.first.empty() ? "" : " and ").append(NameOf(card));
        begun.second = &card;
    }
    return begun;
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
    if (before.starts_with(kByteOrderMark)) return "a byte order mark (0xEF 0xBB 0xBF)";
    if (before.find_first_not_of(' ') == std::string_view::npos)
        return before.size() == 1 ? std::string("a blank") : Joined(before.size(), " blanks");
    return ByteName(before[before.find_first_not_of(' ')]);
}

// Whether a word ends before `rest`, so that it is certain which one it is.
bool IsWholeWordBefore(std::string_view rest) {
    return rest.empty() || rest.front() == ' ' || rest.front() == '\t';
}

// Of a line that holds the name of `card` behind `size` bytes that are none of it.
Finding NotInFirstColumn(std::string_view line, std::size_t size, const Card& card) {
    const std::string_view before = line.substr(0, size);
    Finding finding{FindingKind::NotInColumn1,
                    size + 1,
                    NameOf(card).size(),
                    Joined(NameOf(card), " is not read as a card: it begins in column ", size + 1,
                           ", behind ", WhatStandsBefore(before)),
                    "keywords begin in column 1; a comment begins with *",
                    &card};
    const std::size_t mark = before.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    if (before.find_first_not_of(" \t", mark) == std::string_view::npos &&
        IsWholeWordBefore(line.substr(size + NameOf(card).size())))
        finding.fix = {{1, size, ""}};
    return finding;
}

// Of a line that begins with the name of `card` and is no card.
Finding NoBlankBehind(std::string_view line, const Card& card) {
    const std::size_t size = NameOf(card).size();
    Finding finding{FindingKind::NoBlankInColumn8,
                    size + 1,
                    1,
                    Joined(NameOf(card), " is not read as a card: column ", size + 1, " holds ",
                           ByteName(line[size]), " where a blank is needed"),
                    "",
                    &card};
    if (line[size] == '\t') finding.fix = {{size + 1, 1, " "}};
    return finding;
}

// The name of a card in capitals, or in small letters if `word` has no others.
std::string NameLike(std::string_view word, const Card& card) {
    std::string name(NameOf(card));
    const bool isSmall =
        UpperCase(word) != word &&
        std::none_of(word.begin(), word.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    for (char& c : name)
        if (isSmall && c != '_') c = static_cast<char>(c | kCaseBit);
    return name;
}

// What a word in that column was probably meant to be. `rest` follows it.
std::optional<Finding> MisspeltKeyword(std::string_view word, std::size_t column,
                                       std::string_view rest) {
    const std::string upper = UpperCase(word);
    const auto found = [&](FindingKind kind, const Card* card, std::string message) {
        return Finding{kind, column, word.size(), std::move(message), "", card};
    };
    if (const Card* const card = SwitchedOff(upper); card != nullptr)
        return found(FindingKind::UnknownKeyword, card,
                     Joined("there is no card ", upper, ": no card sets a mode back to 0"));
    const Near near = Nearest(upper);
    if (const auto [names, card] = BegunBy(upper); card != nullptr && near.distance > 1)
        return found(FindingKind::UnfinishedKeyword, card,
                     Joined(Quoted(word), " is no keyword of a card; ", names,
                            names == NameOf(*card) ? " begins with it" : " begin with it"));
    if (near.card == nullptr) return std::nullopt;
    Finding unknown =
        found(FindingKind::UnknownKeyword, near.card,
              Joined(Quoted(word), " is no keyword of a card; it looks like ", NameOf(*near.card)));
    if (near.distance == 1 && IsWholeWordBefore(rest))
        unknown.fix = {{column, word.size(), NameLike(word, *near.card)}};
    return unknown;
}

// Each carriage return becomes a line end; those at the end of the line go.
std::vector<Edit> LineEndsAtReturns(std::string_view line) {
    std::vector<Edit> edits;
    const std::size_t last = line.find_last_not_of('\r');
    for (std::size_t at = line.find('\r'); at < line.size(); at = line.find('\r', at + 1))
        edits.push_back({at + 1, 1, at > last ? "" : "\n"});
    return edits;
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
        return first > 0 ? NotInFirstColumn(line, first, *card) : NoBlankBehind(line, *card);

    const std::string_view word = visible.substr(0, visible.find_first_of(" \t,;:=/"));
    constexpr std::size_t tooLong = kLongestKeyword + 3;
    if (word.size() >= tooLong) return std::nullopt;
    return MisspeltKeyword(word, first + 1, visible.substr(word.size()));
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
            card,
            {},
            LineEndsAtReturns(line)};
    }
    return std::nullopt;
}

}  // namespace corvale::tool
