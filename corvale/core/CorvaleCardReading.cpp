// The card reader: which card a line is, and what it does. It knows no keyword: CardTable.hpp does.
//
// Lines come in groups that can be cards by their first letters (CandidateLines.hpp), and each group
// is applied from its last line to its first. That leaves the same state as reading forwards: modes
// are only ever set to 1, and of several values for an element the last of the group is stored and
// the others are skipped (MoicList.hpp). Groups follow each other in the order of the file.
#include <corvale/core/CorvaleCardReading.hpp>

#include <corvale/base/Words.hpp>
#include <corvale/core/CandidateLines.hpp>
#include <corvale/core/CardTable.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/core/MoicList.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <cstddef>
#include <utility>

namespace corvale::CorvaleCardReading {

namespace {

using internal::Card;
using internal::kCards;

constexpr std::int32_t kInputUnit = 3;
constexpr std::int32_t kReadMode = 1;

// The first 16 columns of a line as two little words, so that a keyword in any case costs at most two
// masked comparisons. A mask leaves out the columns after the keyword and, of a letter, the bit that
// tells it from its capital; the underscore and the blank are compared whole.
constexpr std::size_t kColumnsCompared = 16;
static_assert(internal::kLongestKeyword <= kColumnsCompared);

struct Columns {
    std::uint64_t first, second;
};

template <std::size_t Row>
consteval Columns MaskOf() noexcept {
    constexpr std::string_view keyword = kCards[Row].keyword;
    constexpr std::uint64_t letter = 0xDF, other = 0xFF;
    Columns mask{};
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        const bool isLetter = keyword[i] >= 'A' && keyword[i] <= 'Z';
        (i < 8 ? mask.first : mask.second) |= (isLetter ? letter : other) << i % 8 * 8;
    }
    return mask;
}

template <std::size_t Row>
consteval Columns ColumnsOf() noexcept {
    constexpr std::string_view keyword = kCards[Row].keyword;
    Columns columns{};
    for (std::size_t i = 0; i < keyword.size(); ++i)
        (i < 8 ? columns.first : columns.second) |=
            std::uint64_t{static_cast<unsigned char>(keyword[i])} << i % 8 * 8;
    return columns;
}

// A line of less than 16 columns is filled with blanks, as all columns after its end are.
Columns FirstColumns(std::string_view line) noexcept {
    std::array<char, kColumnsCompared> filled;
    if (line.size() < kColumnsCompared) {
        filled.fill(' ');
        line.copy(filled.data(), filled.size());
        line = {filled.data(), filled.size()};
    }
    return {internal::LoadLittle<std::uint64_t>(line.data()),
            internal::LoadLittle<std::uint64_t>(line.data() + 8)};
}

// Does what a row of the table says. A line that ends with its keyword has no numbers to read.
template <std::size_t Row>
void Apply(std::string_view line, internal::MoicCards& moicCards) noexcept {
    constexpr const Card& card = kCards[Row];
    if constexpr (card.mode) {
        internal::kKeyModes[*card.mode].set(1);
    } else if (line.size() > card.keyword.size()) {
        moicCards.ReadEarlier(line.substr(card.keyword.size()));
    }
}

// Applies a row of the table if `line` is its card.
template <std::size_t Row>
bool ApplyIf(std::string_view line, const Columns& columns,
             internal::MoicCards& moicCards) noexcept {
    constexpr Columns mask = MaskOf<Row>();
    constexpr Columns keyword = ColumnsOf<Row>();
    const bool isCard = (columns.first & mask.first) == keyword.first &&
                        (columns.second & mask.second) == keyword.second;
    if (isCard) Apply<Row>(line, moicCards);
    return isCard;
}

// Tries the rows of the table in their order. The rows are template arguments, so that keywords and
// masks are constants of the code and the table itself needs no relocation when it is loaded.
template <std::size_t... Rows>
void ApplyCard(std::string_view line, internal::MoicCards& moicCards,
               std::index_sequence<Rows...> /*rows*/) noexcept {
    const Columns columns = FirstColumns(line);
    static_cast<void>((ApplyIf<Rows>(line, columns, moicCards) || ...));
}

void ApplyCards(internal::Lines lines) noexcept {
    internal::MoicCards moicCards;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        ApplyCard(*line, moicCards, std::make_index_sequence<kCards.size()>());
}

}  // namespace

std::int32_t ReadCorvaleFrFile(std::string_view fileName) noexcept {
    const std::int32_t opened = FileIO::FileOpen(kInputUnit, fileName, kReadMode, 1);
    if (opened != CorvaleTypes::StatusOk) return opened;
    const std::int32_t status = ReadCorvaleFrFileUnit(kInputUnit);
    TextUnits::Close(kInputUnit);
    return status;
}

std::int32_t ReadCorvaleFrFileUnit(std::int32_t unit) noexcept {
    if (TextUnits::Rewind(unit)) internal::ReadCandidateLines(unit, ApplyCards);
    return CorvaleTypes::StatusOk;
}

std::int32_t CorvaleCardType(std::string_view card) noexcept {
    const Card* const found = internal::CardOf(card);
    return found == nullptr ? internal::kNoCardCode : found->code;
}

}  // namespace corvale::CorvaleCardReading
