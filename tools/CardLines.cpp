#include "CardLines.hpp"

#include "Joined.hpp"
#include "Keywords.hpp"
#include "RealWords.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <algorithm>
#include <string_view>

namespace corvale::tool {

namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view kWideMarks[] = {"\xff\xfe", "\xfe\xff"};

void CountBytes(const Line& line, FileContent& content) {
    const auto has = [&](char c) { return line.text.find(c) != std::string::npos; };
    content.withReturn += line.hasReturn ? 1 : 0;
    content.innerReturns += has('\r') ? 1 : 0;
    content.withTabs += has('\t') ? 1 : 0;
    content.withNuls += has('\0') ? 1 : 0;
    const bool hasHigh = std::ranges::any_of(line.text, [](char c) { return (c & 0x80) != 0; });
    content.withHighBytes += hasHigh ? 1 : 0;
    if (line.number == 1) content.hasByteOrderMark = line.text.starts_with(kByteOrderMark);
}

Explained ExplainMoic(std::string_view line, FileContent& content) {
    NumberList list = ReadNumbers(line);
    Explained explained{LineKind::Card, "QZ_MOIC sets nothing", std::move(list.findings)};
    if (list.isSet.any())
        explained.effect =
            Joined(list.isSet.count() == 1 ? "QZ_MOIC sets value " : "QZ_MOIC sets values ",
                   Ranges(list.isSet));
    if (const auto again = list.isSet & content.isSet; again == list.isSet && again.any())
        explained.effect += ", set before";
    else if (again.any())
        explained.effect += Joined(", of which ", Ranges(again), " set before");
    for (std::size_t i = 0; i < kElements; ++i)
        if (list.isSet[i]) content.values[i] = list.values[i];
    content.isSet |= list.isSet;
    return explained;
}

// Nothing that follows the keyword is looked at; some of it shows that this was not known.
void LookBehindKeyword(std::string_view line, std::string_view keyword, Explained& explained) {
    const std::string_view rest = line.substr(std::min(line.size(), keyword.size()));

    const std::size_t size = std::min(rest.find_first_of(" \t,=/"), rest.size());
    if (size > 0) {
        explained.findings.push_back(
            {"longer-word", 1, keyword.size() + size,
             Joined(Quoted(line.substr(0, keyword.size() + size)), " counts as ", keyword,
                    ": only columns 1 to ", keyword.size(), " are compared"),
             ""});
        return;
    }
    const std::size_t at = rest.find_first_not_of(" \t,=");
    if (at == std::string_view::npos) return;
    const std::string word = UpperCase(rest.substr(at, rest.find_first_of(" \t,/", at) - at));
    constexpr std::string_view offs[] = {"OFF", "NO", "FALSE", "0"};
    if (std::ranges::find(offs, word) != std::end(offs))
        explained.findings.push_back(
            {"not-off", keyword.size() + at + 1, word.size(),
             Joined("what follows ", keyword, " is not looked at: the mode is set to 1"),
             "no card sets a mode back to 0; take the card out"});
}

Explained ExplainMode(std::string_view line, const Card& card, FileContent& content) {
    content.setsMode.set(*card.mode);
    Explained explained{LineKind::Card, Joined(NameOf(card), " ", card.effect)};
    LookBehindKeyword(line, NameOf(card), explained);
    return explained;
}

// A text in units of two bytes holds no card at all: one finding for the file is enough.
bool IsWideText(std::string_view line) {
    return std::ranges::any_of(kWideMarks, [&](auto mark) { return line.starts_with(mark); });
}

Explained ExplainOther(const Line& line) {
    if (line.number == 1 && IsWideText(line.text))
        return {LineKind::Other,
                "",
                {{"two-byte-text", 1, 2,
                  "the file begins with the mark of a text in units of two bytes: no line of it is "
                  "a card",
                  "save it as plain ASCII text"}}};
    Explained explained;
    if (auto finding = NearCard(line.text)) explained.findings.push_back(std::move(*finding));
    return explained;
}

Explained Explain(const Line& line, FileContent& content) {
    const std::string_view columns = std::string_view(line.text).substr(0, kColumns);
    if (columns.starts_with('*')) return {LineKind::Comment};
    if (StrFunctions::IsBlankOrNull(columns) == 1) return {LineKind::Blank};
    const Card* const card = CardOf(columns);
    if (card == nullptr) return ExplainOther(line);
    return card->mode ? ExplainMode(columns, *card, content) : ExplainMoic(line.text, content);
}

}  // namespace

Explained ExplainLine(const Line& line, FileContent& content) {
    CountBytes(line, content);
    Explained explained = Explain(line, content);
    if (auto hidden = CardAfterReturn(line.text)) explained.findings.push_back(std::move(*hidden));
    ++content.lines;
    content.comments += explained.kind == LineKind::Comment ? 1 : 0;
    content.cards += explained.kind == LineKind::Card ? 1 : 0;
    content.findings += explained.findings.size();
    return explained;
}

std::string Ranges(const std::bitset<kElements>& set) {
    std::string text;
    for (std::size_t first = 0; first < kElements; ++first) {
        if (!set[first]) continue;
        std::size_t last = first;
        while (last + 1 < kElements && set[last + 1]) ++last;
        text.append(text.empty() ? "" : ", ").append(std::to_string(first + 1));
        if (last > first)
            text.append(last == first + 1 ? ", " : " to ").append(std::to_string(last + 1));
        first = last;
    }
    return text;
}

}  // namespace corvale::tool
