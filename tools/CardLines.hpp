// The lines of an input file, explained one by one: which card a line is and what it sets, or what
// about a line that is none suggests that it was meant to be one.
#pragma once

#include "Findings.hpp"
#include "Input.hpp"

#include <array>
#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

namespace corvale::tool {

/// How much of a line is kept: more is not looked at, and counts as not there.
inline constexpr std::size_t kLineKept = 0x10000;

enum class LineKind : std::uint8_t { Blank, Comment, Card, Other };

/// What is known of one line.
struct Explained {
    LineKind kind = LineKind::Other;
    const internal::Card* card = nullptr;  ///< of `LineKind::Card`
    Elements sets = {}, setBefore = {};    ///< elements that it sets; that have been set before
    std::vector<Finding> findings = {};
};

/// The card that a finding is about: the one that its line is, or seems meant to be; may be null.
[[nodiscard]] const internal::Card* CardOfFinding(const Explained& explained,
                                                  const Finding& finding);

/// Of a card: "QZ_DMA_ON sets the element-set key mode to 1".
[[nodiscard]] std::string EffectText(const Explained& explained);

/// Where a file has set what, as far as its next cards may overwrite it.
struct History {
    std::array<std::uint64_t, internal::kKeyModes.size()> modeSetIn{};  ///< the line; 0: none
    std::array<std::uint64_t, kElements> setIn{};
    Elements isDefault;  ///< set by a card that sets all to one value, for others to overwrite
    Elements isTold;     ///< that it has been overwritten: once is enough
};

/// What the lines of a file so far hold and set. Modes and values are those that loading the file
/// sets; what it leaves as it was is not set.
struct FileContent {
    std::bitset<internal::kKeyModes.size()> setsMode;  ///< to 1
    ElementValues values;
    Elements isSet;
    History history;
    Silence silence;

    std::uint64_t lines = 0, comments = 0, cards = 0;
    std::uint64_t findings = 0;      ///< that are not silenced
    std::uint64_t problems = 0;      ///< of these, those that are no notes
    std::uint64_t withReturn = 0;    ///< lines that end with CR LF
    std::uint64_t innerReturns = 0;  ///< lines with a CR elsewhere
    std::uint64_t withTabs = 0, withNuls = 0, withHighBytes = 0;
    bool hasByteOrderMark = false;
};

/// Explains the next line of a file and adds it to `content`.
[[nodiscard]] Explained ExplainLine(const Line& line, FileContent& content);

/// The elements in `set`, counted from 1: "1 to 6, 9".
[[nodiscard]] std::string Ranges(const Elements& set);

}  // namespace corvale::tool
