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
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace corvale::internal {

namespace {

constexpr std::size_t kLongest = kCardColumns + 2;  // with CR LF: what follows never matters

// The buffer has space for an unfinished line, then one chunk of the file, then one more character
// for what the search reads at its end. The chunk is small enough to stay in a second-level cache
// and large enough that the system calls do not show (bench: CardFile).
constexpr std::size_t kFront = 1024;
constexpr std::size_t kChunk = 0x40000;  // 256 KiB
static_assert(kFront >= kReadBefore + kLongest);

// What one reading works in: its buffer, and the lines that it hands over together.
struct Workspace {
    std::span<char> buffer;
    std::span<std::string_view> lines;
};

template <std::size_t ChunkSize, std::size_t LineCount>
struct Memory {
    std::array<char, kFront + ChunkSize + 1> buffer;
    std::array<std::string_view, LineCount> lines;

    [[nodiscard]] Workspace All() noexcept { return {buffer, lines}; }
};

// Too large for the stack of a small thread: the first of several readings has the shared memory,
// each of the others its own. Without memory for that it works in small steps on its stack.
using LargeMemory = Memory<kChunk, 512>;
using SmallMemory = Memory<1024, 32>;
alignas(64) constinit LargeMemory sharedMemory{};
constinit std::atomic<bool> isSharedMemoryTaken{false};

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
// the larger a group is, the more cards it can skip.
class Group {
  public:
    Group(void (*take)(Lines) noexcept, std::span<std::string_view> lines) noexcept
        : take_(take), lines_(lines) {}

    void Add(std::string_view line) noexcept {
        lines_[count_++] = line;
        if (count_ == lines_.size()) HandOver();
    }
    void HandOver() noexcept {
        if (count_ > 0) take_(lines_.first(count_));
        count_ = 0;
    }

  private:
    void (*take_)(Lines) noexcept;
    std::span<std::string_view> lines_;
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

void ReadIn(const Workspace& memory, std::int32_t unit, void (*take)(Lines) noexcept) noexcept {
    Group group(take, memory.lines);
    const std::span<char> chunk =
        memory.buffer.subspan(kFront).first(memory.buffer.size() - kFront - 1);
    char* const front = chunk.data();
    std::string_view unfinished;
    bool isAtLineStart = true;
    for (;;) {  // ends with the file: each turn reads at least one byte
        const std::ptrdiff_t count = ReadBytes(unit, chunk);
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

[[gnu::noinline]] void ReadOnStack(std::int32_t unit, void (*take)(Lines) noexcept) noexcept {
    SmallMemory memory;
    ReadIn(memory.All(), unit, take);
}

}  // namespace

void ReadCandidateLines(std::int32_t unit, void (*take)(Lines) noexcept) noexcept {
    if (!isSharedMemoryTaken.exchange(true, std::memory_order_acquire)) {
        ReadIn(sharedMemory.All(), unit, take);
        isSharedMemoryTaken.store(false, std::memory_order_release);
        return;
    }
    void* const block = std::malloc(sizeof(LargeMemory));
    if (block == nullptr) return ReadOnStack(unit, take);
    ReadIn((new (block) LargeMemory)->All(), unit, take);
    std::free(block);
}

}  // namespace corvale::internal
