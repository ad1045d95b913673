#include <corvale/core/CardScan.hpp>

#include <corvale/base/CodePath.hpp>
#include <corvale/base/Words.hpp>
#include <corvale/core/CardTable.hpp>

#include <algorithm>
#include <array>
#include <cstring>

namespace corvale::internal {

namespace {

// The letters as small ones. With this bit set, which is clear in ASCII capitals, a character equals
// one of them if it is that letter in either case, and not otherwise.
constexpr char kCaseBit = 0x20;
constexpr char kFirst = static_cast<char>(kCardLetters[0] | kCaseBit);
constexpr char kSecond = static_cast<char>(kCardLetters[1] | kCaseBit);

// Without branches: the three answers are rarely true and cost less than a misprediction.
bool IsCandidate(const char* at) noexcept {
    return (at[-1] == '\n') & ((at[0] | kCaseBit) == kFirst) & ((at[1] | kCaseBit) == kSecond);
}

// The index of the first candidate in `text`; `n` if there is none. `text[-1]` and `text[n]` are
// read, too.
//
// Blocks of eight vectors share one branch: the comparisons of a block are joined by "or", and only
// a block with a candidate is gone through again vector by vector. The vectors before, at and after
// a character are three loads that overlap; loads are cheaper here than shifts across lanes. What
// remains after the last whole vector is compared one by one.
template <class Path>
struct CandidateLoop {
    static constexpr std::size_t kWidth = Path::kVectorBytes;
    static constexpr std::size_t kBlock = 8 * kWidth;
    using Bytes [[gnu::vector_size(kWidth)]] = char;

    // Sets all bits of the bytes of `found` at which a candidate begins.
    CORVALE_INLINE static void AddCandidates(const char* at, Bytes& found) noexcept {
        Bytes before, first, second;
        std::memcpy(&before, at - 1, kWidth);
        std::memcpy(&first, at, kWidth);
        std::memcpy(&second, at + 1, kWidth);
        found |=
            (before == '\n') & ((first | kCaseBit) == kFirst) & ((second | kCaseBit) == kSecond);
    }
    // The index of the first byte that is not 0; `kWidth` if all are.
    CORVALE_INLINE static std::size_t FirstIndex(const Bytes& found) noexcept {
        std::array<char, kWidth> bytes;
        std::memcpy(bytes.data(), &found, kWidth);
        for (std::size_t i = 0; i < kWidth; i += 8)
            if (const auto word = LoadLittle<std::uint64_t>(bytes.data() + i); word != 0)
                return i + ZeroBytesFirst(word);
        return kWidth;
    }
    CORVALE_INLINE std::size_t operator()(const char* text, std::size_t n) const noexcept {
        std::size_t i = 0;
        for (; i + kBlock <= n; i += kBlock) {
            Bytes found{};
#pragma GCC unroll 8
            for (std::size_t j = 0; j < kBlock; j += kWidth) AddCandidates(text + i + j, found);
            if (FirstIndex(found) < kWidth) break;
        }
        for (; i + kWidth <= n; i += kWidth) {
            Bytes found{};
            AddCandidates(text + i, found);
            const std::size_t index = FirstIndex(found);
            if (index < kWidth) return i + index;
        }
        while (i < n && !IsCandidate(text + i)) ++i;
        return i;
    }
};

// Counts the characters at which a value, or a comma that no value precedes, can begin: those above
// a blank that follow a comma or a character not above a blank. Every value begins at one of them,
// and so does every comma that stands for an empty value, so the count is never too small. A star
// may repeat a value any number of times: then the bound is that of the array.
//
// The text is taken from its end in whole vectors. The last one may begin before the text, which is
// why the characters before it must be readable; a mask leaves them out of the count. Each byte
// counts what its own lane found, so that no sum across lanes is needed before the end.
template <class Path>
struct MostValuesLoop {
    static constexpr std::size_t kWidth = Path::kVectorBytes;
    static_assert(kWidth <= kReadBefore);
    using Bytes [[gnu::vector_size(kWidth)]] = unsigned char;
    using Words [[gnu::vector_size(kWidth)]] = std::uint64_t;
    static constexpr unsigned char kRepeats = 0x80;  // marks a star, beside the count of its byte
    static_assert(kCardColumns / 16 < kRepeats, "a byte holds the counts of all vectors of a line");

    // Loaded from index i on, the last i bytes are all ones.
    static constexpr auto kLastBytes = [] {
        std::array<unsigned char, 2 * kWidth> bytes{};
        for (std::size_t i = kWidth; i < bytes.size(); ++i) bytes[i] = 0xFF;
        return bytes;
    }();

    CORVALE_INLINE std::size_t operator()(const char* numbers, std::size_t n) const noexcept {
        constexpr unsigned char blank = ' ';
        Bytes counts{};
        for (std::size_t left = n; left > 0; left -= std::min(left, kWidth)) {
            const char* const start = numbers + left - kWidth;
            Bytes before, at, counted;
            std::memcpy(&before, start - 1, kWidth);
            std::memcpy(&at, start, kWidth);
            std::memcpy(&counted, kLastBytes.data() + std::min(left, kWidth), kWidth);
            counts -= Bytes((before <= blank) | (before == ',')) & Bytes(at > blank) & counted;
            counts |= Bytes(at == '*') & counted & kRepeats;
        }
        return Sum(Words(counts));
    }

    // Adds the bytes in pairs to lanes of 16 bits; their sum is at most the columns of a line. The
    // words are lanes, not an array: that would bring a stack guard and stores that the next load
    // cannot take over, 30 % of the time of this loop (bench: CardFile 100 %).
    template <class Lanes>
    CORVALE_INLINE static std::size_t Sum(const Lanes& words) noexcept {
        constexpr std::uint64_t eachSecond = 0x00FF00FF00FF00FFU;
        const Lanes inPairs = (words & eachSecond) + (words >> 8U & eachSecond);
        std::uint64_t all = 0;
        std::uint64_t pairs = 0;
        for (std::size_t i = 0; i < kWidth / 8; ++i) {
            all |= words[i];
            pairs += inPairs[i];
        }
        if ((all & EachByte(kRepeats)) != 0) return kMoicCount;
        return static_cast<std::size_t>(SumOfLanes16(pairs));
    }
};

}  // namespace

// Cards mostly stand together: if the next line is a candidate, too, no search is begun for it.
const char* NextCandidate(const char* at, const char* end) noexcept {
    if (end - at > 2 && IsCandidate(at + 1)) return at + 1;
    return at + OnBestPath<CandidateLoop>(at, static_cast<std::size_t>(end - at));
}

std::size_t MostValues(std::string_view numbers) noexcept {
    return OnBestPath<MostValuesLoop>(numbers.data(), numbers.size());
}

}  // namespace corvale::internal
