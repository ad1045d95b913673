#include <corvale/core/CandidateLines.hpp>

#include <corvale/base/CodePath.hpp>
#include <corvale/base/Words.hpp>
#include <corvale/platform/UnitFiles.hpp>

#include <algorithm>
#include <array>
#include <cstring>

namespace corvale::internal {

namespace {

constexpr std::size_t kColumns = 512;
constexpr std::size_t kLongest = kColumns + 2;  // with CR LF: more of a line never matters

// A line that reaches beyond what has been read so far is moved to stand before what comes next.
// Before that there is room for what is read before a line in vain.
constexpr std::size_t kFront = 1024;
constexpr std::size_t kReadBefore = 32;
constexpr std::size_t kChunk = 0x40000;  // 256 KiB
static_assert(kFront >= kReadBefore + kLongest);

// Too large for the stack of a small thread; loading is serialised by the callers.
// One character more stands behind what was read.
alignas(64) constinit std::array<char, kFront + kChunk + 1> buffer{};

bool IsCandidate(const char* at) noexcept {
    return (at[-1] == '\n') & ((at[0] | 0x20) == 'q') & ((at[1] | 0x20) == 'z');
}

// Where the first line that begins with QZ in any case begins; `n` when there is none. `text[-1]`
// and `text[n]` are looked at too. Nothing is done for each line: the search runs over line ends as
// over any other character (bench: CardFile).
template <class Path>
struct CandidateLoop {
    static constexpr std::size_t Width = Path::kVectorBytes;
    static constexpr std::size_t kBlock = 8 * Width;
    using Bytes [[gnu::vector_size(Width)]] = char;

    // One bit at least in the byte of each place where a candidate begins.
    CORVALE_INLINE static void AddCandidates(const char* at, Bytes& found) noexcept {
        constexpr char lower = 0x20;
        Bytes before, first, second;
        std::memcpy(&before, at - 1, Width);
        std::memcpy(&first, at, Width);
        std::memcpy(&second, at + 1, Width);
        found |= (before == '\n') & ((first | lower) == 'q') & ((second | lower) == 'z');
    }
    // The place of the first byte that is not 0; `Width` when all are.
    CORVALE_INLINE static std::size_t FirstPlace(const Bytes& found) noexcept {
        std::array<char, Width> bytes;
        std::memcpy(bytes.data(), &found, Width);
        for (std::size_t i = 0; i < Width; i += 8)
            if (const std::uint64_t word = LoadLittle<std::uint64_t>(bytes.data() + i); word != 0)
                return i + ZeroBytesFirst(word);
        return Width;
    }
    CORVALE_INLINE std::size_t operator()(const char* text, std::size_t n) const noexcept {
        std::size_t i = 0;
        for (; i + kBlock <= n; i += kBlock) {
            Bytes found{};
#pragma GCC unroll 8
            for (std::size_t j = 0; j < kBlock; j += Width) AddCandidates(text + i + j, found);
            if (FirstPlace(found) < Width) break;
        }
        for (; i + Width <= n; i += Width) {
            Bytes found{};
            AddCandidates(text + i, found);
            const std::size_t place = FirstPlace(found);
            if (place < Width) return i + place;
        }
        while (i < n && !IsCandidate(text + i)) ++i;
        return i;
    }
};

// Where the next line that begins with QZ begins, or `end`. `at[-1]` and `*end` are looked at too.
// Where one such line follows another no search is begun.
const char* NextCandidate(const char* at, const char* end) noexcept {
    if (end - at > 2 && IsCandidate(at + 1)) return at + 1;
    return at + OnBestPath<CandidateLoop>(at, static_cast<std::size_t>(end - at));
}

// The line that begins at `at`, as far as it matters, and whether all of that is there.
struct Line {
    std::string_view text;
    bool isComplete;
};

Line LineAt(const char* at, const char* end) noexcept {
    const std::string_view rest(
        at, std::min<std::size_t>(kLongest, static_cast<std::size_t>(end - at)));
    const std::size_t lineEnd = rest.find('\n');
    if (lineEnd == std::string_view::npos)
        return {rest.substr(0, kColumns), rest.size() == kLongest};
    const bool hasReturn = rest[lineEnd - 1] == '\r';  // not the first character: that is a Q
    return {rest.substr(0, std::min(lineEnd - (hasReturn ? 1 : 0), kColumns)), true};
}

// Lines on their way to `take`.
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
    for (;;) {
        const std::ptrdiff_t count = ReadBytes(unit, {front, kChunk});
        if (count <= 0) {
            if (count == 0 && !unfinished.empty()) group.Add(unfinished.substr(0, kColumns));
            return group.HandOver();
        }
        char* const end = front + count;
        *end = 'z';  // a line of which only the q is here is unfinished, not passed over
        char* const begin = front - unfinished.size();
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
