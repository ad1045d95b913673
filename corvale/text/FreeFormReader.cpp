#include <corvale/text/FreeFormReader.hpp>

#include <corvale/text/TextParts.hpp>

#include <algorithm>
#include <limits>

// Free-form reading by the grammar, an item at a time, from left to right.
//
// A record is items with separators between them: one comma with blanks around it, or blanks alone.
// Each item leaves `position_` after the comma that belongs to it, so a comma that is met where an
// item should begin stands for an empty one. Numbers are scanned here, and converted by the caller
// only where their value is wanted.
namespace corvale::internal {

namespace {

constexpr std::size_t kNoNumber = std::string_view::npos;
constexpr std::int32_t kMaxCount = std::numeric_limits<std::int32_t>::max();

// The repeat count that `digits` are, at most `kMaxCount`; 0 where there is no digit or anything
// else.
std::int32_t RepeatCount(std::string_view digits) noexcept {
    std::int64_t count = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') return 0;
        count = std::min<std::int64_t>(count * 10 + (c - '0'), kMaxCount);
    }
    return static_cast<std::int32_t>(count);
}

}  // namespace

inline bool FreeFormReader::IsBlankAt(std::size_t at) const noexcept {
    return record_[at] == kBlank || (record_[at] == '\t' && rules_.tabSeparates);
}

inline bool FreeFormReader::IsCommaAt(std::size_t at) const noexcept {
    return record_[at] == ',' || (record_[at] == ';' && rules_.semicolonSeparates);
}

// Whether an item ends before `at`: at a separator, a slash or the end of the record.
inline bool FreeFormReader::IsItemEnd(std::size_t at) const noexcept {
    return at >= record_.size() || IsBlankAt(at) || IsCommaAt(at) || record_[at] == '/';
}

inline std::size_t FreeFormReader::AfterBlanks(std::size_t at) const noexcept {
    while (at < record_.size() && IsBlankAt(at)) ++at;
    return at;
}

// Moves to the next item and says what it is; `Value` for an item that is still to be read.
inline ItemKind FreeFormReader::BeginItem() noexcept {
    position_ = AfterBlanks(position_);
    if (position_ >= record_.size()) return ItemKind::End;
    if (record_[position_] == '/') return ItemKind::Stop;
    if (!IsCommaAt(position_)) return ItemKind::Value;
    ++position_;
    return ItemKind::Empty;
}

// Moves past an item that ends at `at` and the one comma that belongs to it.
inline ItemKind FreeFormReader::Finish(std::size_t at, ItemKind kind) noexcept {
    position_ = AfterBlanks(at);
    if (position_ < record_.size() && IsCommaAt(position_)) ++position_;
    return kind;
}

// Scans the number at `at` and returns the position after it. Of an item that is wider than a number
// may be, only that width counts: where the number fills it, the rest of the item is skipped.
inline std::size_t FreeFormReader::AfterNumber(std::size_t at, ScannedReal& number) const noexcept {
    const std::size_t width = std::min(record_.size() - at, rules_.numberWidth);
    ScannedReal scanned;
    std::size_t end = ScanReal(record_.substr(0, at + width), at, rules_.real, scanned);
    number = scanned;
    if (end == at + width)
        while (!IsItemEnd(end)) ++end;
    return end;
}

ItemKind FreeFormReader::NextNumber(ScannedReal& number, std::int32_t& count) noexcept {
    count = 1;
    const ItemKind kind = BeginItem();
    if (kind != ItemKind::Value) return kind;

    const std::size_t end = AfterNumber(position_, number);
    if (end == kNoNumber) return ItemKind::Unusable;
    if (IsItemEnd(end)) return Finish(end, ItemKind::Value);
    if (record_[end] == '*' && rules_.repeatCounts) return Repeated(end, number, count);
    return ItemKind::Unusable;
}

// Reads a repeat count and its number, of which what precedes the star was scanned as a number: it
// must be digits alone. A star with nothing after it repeats an empty item.
ItemKind FreeFormReader::Repeated(std::size_t star, ScannedReal& number,
                                  std::int32_t& count) noexcept {
    const std::int32_t copies = RepeatCount(record_.substr(position_, star - position_));
    if (copies < 1) return ItemKind::Unusable;
    if (IsItemEnd(star + 1)) {
        count = copies;
        return Finish(star + 1, ItemKind::Empty);
    }
    const std::size_t end = AfterNumber(star + 1, number);
    if (end == kNoNumber || !IsItemEnd(end)) return ItemKind::Unusable;
    count = copies;
    return Finish(end, ItemKind::Value);
}

ItemKind FreeFormReader::NextWord(std::span<char> word) noexcept {
    const ItemKind kind = BeginItem();
    if (kind != ItemKind::Value) return kind;
    if (record_[position_] == '\'' || record_[position_] == '"') return QuotedWord(word);

    std::size_t end = position_;
    while (!IsItemEnd(end)) ++end;
    PutText(record_.substr(position_, end - position_), word);
    return Finish(end, ItemKind::Value);
}

// Finds the closing delimiter first, so that an open text writes nothing. Then copies up to it; of a
// doubled delimiter the second one is skipped.
ItemKind FreeFormReader::QuotedWord(std::span<char> word) noexcept {
    const char delimiter = record_[position_];
    const auto isDoubled = [&](std::size_t at) {
        return at + 1 < record_.size() && record_[at + 1] == delimiter;
    };
    std::size_t end = record_.find(delimiter, position_ + 1);
    while (end != std::string_view::npos && isDoubled(end)) end = record_.find(delimiter, end + 2);
    if (end == std::string_view::npos) return ItemKind::Unusable;

    std::size_t width = 0;
    for (std::size_t at = position_ + 1; at < end && width < word.size(); ++at) {
        word[width++] = record_[at];
        if (record_[at] == delimiter) ++at;
    }
    FillWithBlanks(word.subspan(width));
    return Finish(end + 1, ItemKind::Value);
}

}  // namespace corvale::internal
