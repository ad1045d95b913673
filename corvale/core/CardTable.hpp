// Internal to the library: not installed, may change in any commit.
//
// The cards, one row for each. The reader, `corvale check` and the table of the guide's page on
// cards (a test compares it) are made from these rows and know no keyword besides. A new card that
// sets a mode is a row here; one that sets a new mode needs a row in KeyModes.hpp, too.
#pragma once

#include <corvale/core/KeyModes.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvale::internal {

/// What a line that begins with a keyword is and does.
struct Card {
    std::int32_t code;         ///< of `CorvaleCardType`
    std::string_view keyword;  ///< in capitals, as columns 1 to its width are compared with it
    std::string_view effect;   ///< for people, after the keyword: "sets the ..."
    std::optional<KeyModeIndex> mode = std::nullopt;  ///< set to 1; none: numbers go to `MoicArr`
};

inline constexpr std::array<Card, 3> kCards = {{
    {1, "QZ_MOIC ", "sets up to 128 reals of the MOIC array, from columns 9 to 512"},
    {2, "QZ_DMA_ON", "sets the element-set key mode to 1", kElsetKeys},
    {3, "QZ_DMA_ALL_ON", "sets the all-key mode to 1", kAllKeys},
}};

/// What `CorvaleCardType` returns for a line that is no card.
inline constexpr std::int32_t kNoCardCode = 100;

/// The columns of a line that count; what follows them is not read.
inline constexpr std::size_t kCardColumns = 512;

/// The elements of `MoicArr`.
inline constexpr std::size_t kMoicCount = std::tuple_size_v<decltype(CorvaleCardReading::MoicArr)>;

/// The keyword of a card without the blank that may have to follow it.
[[nodiscard]] constexpr std::string_view NameOf(const Card& card) noexcept {
    return card.keyword.substr(0, card.keyword.find(' '));
}

inline constexpr std::size_t kLongestKeyword = [] {
    std::size_t longest = 0;
    for (const Card& card : kCards) longest = std::max(longest, card.keyword.size());
    return longest;
}();

/// The letters that all keywords begin with. Only lines that begin with them, in any case, are
/// looked at; in ASCII a letter and its capital differ in one bit.
inline constexpr std::string_view kCardLetters = kCards[0].keyword.substr(0, 2);
static_assert([] {
    for (const char letter : kCardLetters)
        if (letter < 'A' || letter > 'Z') return false;
    for (const Card& card : kCards)
        if (!card.keyword.starts_with(kCardLetters)) return false;
    return true;
}());

/// The card that a line is, compared as it stands; null if it is none. A line that is shorter than
/// a keyword counts as filled with blanks.
[[nodiscard]] constexpr const Card* CardOf(std::string_view line) noexcept {
    for (const Card& card : kCards) {
        const std::string_view columns = line.substr(0, card.keyword.size());
        if (card.keyword.starts_with(columns) &&
            card.keyword.find_first_not_of(' ', columns.size()) == std::string_view::npos)
            return &card;
    }
    return nullptr;
}

}  // namespace corvale::internal
