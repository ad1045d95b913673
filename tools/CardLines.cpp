#include "CardLines.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "Keywords.hpp"
#include "NumberList.hpp"

#include <corvale/text/StrFunctions.hpp>

#include <algorithm>
#include <string_view>

namespace corvale::tool {

namespace {

using internal::kKeyModes;

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view kWideMarks[] = {"\xff\xfe", "\xfe\xff"};

// Which unusual bytes a text holds.
struct UnusualBytes {
    bool hasReturn = false, hasTab = false, hasNul = false, hasHigh = false;
};

// One pass without an early end over bytes alone, which compilers turn into vectors.
UnusualBytes UnusualBytesOf(std::string_view text) {
    constexpr unsigned char isReturn = 1, isTab = 2, isNul = 4, isHigh = 0x80;
    unsigned char all = 0;
    for (const char c : text) {
        all |= c == '\r' ? isReturn : 0;
        all |= c == '\t' ? isTab : 0;
        all |= c == '\0' ? isNul : 0;
        all |= static_cast<unsigned char>(c) & isHigh;
    }
    return {(all & isReturn) != 0, (all & isTab) != 0, (all & isNul) != 0, (all & isHigh) != 0};
}

void CountBytes(const Line& line, const UnusualBytes& bytes, FileContent& content) {
    content.withReturn += line.hasReturn ? 1 : 0;
    content.innerReturns += bytes.hasReturn ? 1 : 0;
    content.withTabs += bytes.hasTab ? 1 : 0;
    content.withNuls += bytes.hasNul ? 1 : 0;
    content.withHighBytes += bytes.hasHigh ? 1 : 0;
    if (line.number == 1) content.hasByteOrderMark = line.text.starts_with(kByteOrderMark);
}

Finding NoteOnCard(FindingKind kind, const Card& card, std::string message,
                   const Elements& elements = {}) {
    return {kind, 1, NameOf(card).size(), std::move(message), "", &card, elements};
}

std::string ValuesText(const Elements& set) {
    return Joined(set.count() == 1 ? "value " : "values ", Ranges(set));
}

// "line 3", "lines 3 to 7"
std::string LinesOf(const Elements& set, const History& history) {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    for (std::size_t i = 0; i < kElements; ++i) {
        if (!set[i]) continue;
        first = first == 0 ? history.setIn[i] : std::min(first, history.setIn[i]);
        last = std::max(last, history.setIn[i]);
    }
    return first == last ? Joined("line ", first) : Joined("lines ", first, " to ", last);
}

// Puts a card into the history. `setsAllToOne` it and others to overwrite a part of it: a default.
void Record(const Explained& card, bool setsAllToOne, std::uint64_t line, History& history) {
    const Elements fresh = card.sets & (~card.setBefore | history.isDefault);
    for (std::size_t i = 0; fresh.any() && i < kElements; ++i)
        if (fresh[i]) history.setIn[i] = line;
    history.isDefault &= ~card.sets;
    if (setsAllToOne) history.isDefault.set();
}

// Whether a card is of use after those before it.
void CompareWithHistory(bool setsAllToOne, std::uint64_t line, FileContent& content,
                        Explained& explained) {
    History& history = content.history;
    if (explained.sets.any() && explained.setBefore == explained.sets && !content.values.AreNew()) {
        explained.findings.push_back(
            NoteOnCard(FindingKind::ChangesNothing, *explained.card,
                       Joined("the card sets what ", ValuesText(explained.sets),
                              explained.sets.count() == 1 ? " holds already" : " hold already"),
                       explained.sets));
        return;
    }
    const Elements overwritten = explained.setBefore & ~history.isDefault & ~history.isTold;
    if (overwritten.any())
        explained.findings.push_back(
            NoteOnCard(FindingKind::Overwritten, *explained.card,
                       Joined("the card overwrites ", ValuesText(overwritten), ", set in ",
                              LinesOf(overwritten, history)),
                       overwritten));
    history.isTold |= overwritten;
    Record(explained, setsAllToOne, line, history);
}

Explained ExplainMoic(const Line& line, const Card& card, FileContent& content) {
    content.values.BeginCard();
    NumberList list = ReadNumbers(line.text, line.length, content.values);
    Explained explained{LineKind::Card, &card, list.isSet, list.isSet & content.isSet,
                        std::move(list.findings)};
    content.isSet |= list.isSet;
    CompareWithHistory(list.setsAllToOne, line.number, content, explained);
    return explained;
}

// The library ignores what follows the keyword; some texts there show that the author of the file
// expected otherwise.
void LookBehindKeyword(std::string_view line, std::string_view keyword, Explained& explained) {
    const std::string_view rest = line.substr(std::min(line.size(), keyword.size()));

    const std::size_t size = std::min(rest.find_first_of(" \t,=/"), rest.size());
    if (size > 0) {
        explained.findings.push_back(
            {FindingKind::LongerWord, 1, keyword.size() + size,
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
            {FindingKind::NotOff, keyword.size() + at + 1, word.size(),
             Joined("what follows ", keyword, " is not looked at: the mode is set to 1"),
             "no card sets a mode back to 0; take the card out"});
}

Explained ExplainMode(const Line& line, std::string_view columns, const Card& card,
                      FileContent& content) {
    const std::size_t mode = *card.mode;
    Explained explained{LineKind::Card, &card};
    LookBehindKeyword(columns, NameOf(card), explained);
    std::uint64_t& setIn = content.history.modeSetIn[mode];
    if (content.setsMode[mode])
        explained.findings.push_back(
            NoteOnCard(FindingKind::ChangesNothing, card,
                       Joined("the ", kKeyModes[mode].name, " is 1 already, set in line ", setIn)));
    else
        setIn = line.number;
    content.setsMode.set(mode);
    return explained;
}

// A text in units of two bytes holds no card at all: one finding for the file is enough.
bool IsWideText(std::string_view line) {
    return std::ranges::any_of(kWideMarks, [&](auto mark) { return line.starts_with(mark); });
}

Explained ExplainOther(const Line& line) {
    if (line.number == 1 && IsWideText(line.text))
        return {LineKind::Other,
                nullptr,
                {},
                {},
                {{FindingKind::TwoByteText, 1, 2,
                  "the file begins with the mark of a text in units of two bytes: no line of it is "
                  "a card",
                  "save it as plain ASCII text"}}};
    Explained explained;
    if (auto finding = NearCard(line.text)) explained.findings.push_back(std::move(*finding));
    return explained;
}

Explained Explain(const Line& line, FileContent& content) {
    const std::string_view columns = std::string_view(line.text).substr(0, kColumns);
    if (columns.starts_with('*')) {
        Explained explained{LineKind::Comment};
        ObeyComment(columns, content.silence, explained.findings);
        return explained;
    }
    if (StrFunctions::IsBlankOrNull(columns) == 1) return {LineKind::Blank};
    const Card* const card = CardOf(columns);
    if (card == nullptr) return ExplainOther(line);
    return card->mode ? ExplainMode(line, columns, *card, content)
                      : ExplainMoic(line, *card, content);
}

void Count(const Explained& explained, FileContent& content) {
    ++content.lines;
    content.comments += explained.kind == LineKind::Comment ? 1 : 0;
    content.cards += explained.kind == LineKind::Card ? 1 : 0;
    content.findings += explained.findings.size();
    for (const Finding& finding : explained.findings)
        content.problems += RowOf(finding.kind).severity == Severity::Note ? 0 : 1;
    const bool isPassedOver =
        explained.kind == LineKind::Comment || explained.kind == LineKind::Blank;
    if (!isPassedOver) content.silence.next.reset();
}

}  // namespace

Explained ExplainLine(const Line& line, FileContent& content) {
    const UnusualBytes bytes = UnusualBytesOf(line.text);
    CountBytes(line, bytes, content);
    Explained explained = Explain(line, content);
    if (bytes.hasReturn)
        if (auto hidden = CardAfterReturn(line.text))
            explained.findings.push_back(std::move(*hidden));
    if (!explained.findings.empty()) TakeOutSilenced(content.silence, explained.findings);
    Count(explained, content);
    return explained;
}

const Card* CardOfFinding(const Explained& explained, const Finding& finding) {
    return finding.card != nullptr ? finding.card : explained.card;
}

std::string EffectText(const Explained& explained) {
    const std::string_view name = NameOf(*explained.card);
    if (explained.card->mode) return Joined(name, " ", explained.card->effect);
    if (explained.sets.none()) return Joined(name, " sets nothing");
    std::string text = Joined(name, explained.sets.count() == 1 ? " sets value " : " sets values ",
                              Ranges(explained.sets));
    if (explained.setBefore == explained.sets)
        text += ", set before";
    else if (explained.setBefore.any())
        text += Joined(", of which ", Ranges(explained.setBefore), " set before");
    return text;
}

std::string Ranges(const Elements& set) {
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
