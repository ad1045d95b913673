// Reading a file in chunks, of which only the lines that can be cards are kept.
//
// A chunk is searched in place; no other line is ever copied or counted. A candidate that the end of
// the chunk cuts is moved to just in front of the next chunk and continues there, so that every line
// is in one piece, however the reads fall (a pipe may deliver one byte at a time).
//
// Invariant  between two reads `unfinished` ends exactly where the next chunk begins, and it is
//            shorter than `kLongest`: a longer one is complete, because nothing after that matters.
#include <corvale/core/CandidateLines.hpp>

#include <corvale/core/CardScan.hpp>
#include <corvale/core/CardTable.hpp>
#include <corvale/platform/UnitFiles.hpp>

#include <algorithm>
#include <array>
#include <cstring>

namespace corvale::internal {

namespace {

constexpr std::size_t kLongest = kCardColumns + 2;  // with CR LF: what follows never matters

// The buffer has space for an unfinished line, then one chunk of the file, then one more character
// for what the search reads at its end. The chunk is small enough to stay in a second-level cache
// and large enough that the system calls do not show (bench: CardFile).
constexpr std::size_t kFront = 1024;
constexpr std::size_t kChunk = 0x40000;  // 256 KiB
static_assert(kFront >= kReadBefore + kLongest);

// Too large for the stack of a small thread; loading is serialised by the callers.
alignas(64) constinit std::array<char, kFront + kChunk + 1> buffer{};

// A line cut to the columns that count, and whether all of them are in the buffer.
struct Line {
    std::string_view text;
    bool isComplete;
};

Line LineAt(const char* at, const char* end) noexcept {
    const std::size_t left = std::min<std::size_t>(kLongest, static_cast<std::size_t>(end - at));
    const std::string_view rest(at, left);
    const std::size_t lineEnd = rest.find('\n');
    if (lineEnd == std::string_view::npos)
        return {rest.substr(0, kCardColumns), rest.size() == kLongest};
    const bool hasReturn = rest[lineEnd - 1] == '\r';  // not the first character: that is a letter
    return {rest.substr(0, std::min(lineEnd - (hasReturn ? 1 : 0), kCardColumns)), true};
}

// Collects lines and hands them to `take` together: the reader goes through a group backwards, and
// the larger a group is, the more cards it can skip. Its size bounds the stack that a load needs.
class Group {
  public:
    explicit Group(void (*take)(Lines) noexcept) noexcept : take_(take) {}

    void Add(std::string_view line) noexcept {
        lines_[count_++] = line;
        if (count_ == lines_.size()) HandOver();
    }
    void HandOver() noexcept {
        if (count_ > 0) take_(Lines(lines_).first(count_));
        count_ = 0;
    }

  private:
    void (*take_)(Lines) noexcept;
    std::array<std::string_view, 512> lines_;
    std::size_t count_ = 0;
};

// Adds the complete candidates between `at` and `end`; returns the incomplete one at the end.
std::string_view AddCandidates(const char* at, const char* end, Group& group) noexcept {
    for (at = NextCandidate(at, end); at < end; at = NextCandidate(at, end)) {
        const Line line = LineAt(at, end);
        if (!line.isComplete) return {at, static_cast<std::size_t>(end - at)};
        group.Add(line.text);
        at += line.text.size();
    }
    return {};
}

}  // namespace

void ReadCandidateLines(std::int32_t unit, void (*take)(Lines) noexcept) noexcept {
    Group group(take);
    char* const front = buffer.data() + kFront;
    std::string_view unfinished;
    bool isAtLineStart = true;
    for (;;) {  // ends with the file: each turn reads at least one byte
        const std::ptrdiff_t count = ReadBytes(unit, {front, kChunk});
        if (count <= 0) {
            if (count == 0 && !unfinished.empty()) group.Add(unfinished.substr(0, kCardColumns));
            return group.HandOver();
        }
        char* const end = front + count;
        // If the chunk ends with the first letter, the search must find it: its line is unfinished.
        *end = kCardLetters[1];
        char* const begin = front - unfinished.size();
        // What precedes the first character: a line end where a line begins, else anything but one.
        begin[-1] = isAtLineStart || !unfinished.empty() ? '\n' : ' ';
        unfinished = AddCandidates(begin, end, group);
        group.HandOver();

        isAtLineStart = end[-1] == '\n';
        char* const kept = front - unfinished.size();
        if (!unfinished.empty()) std::memmove(kept, unfinished.data(), unfinished.size());
        unfinished = {kept, unfinished.size()};
    }
}

}  // namespace corvale::internal
