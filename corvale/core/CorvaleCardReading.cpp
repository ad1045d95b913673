#include <corvale/core/CorvaleCardReading.hpp>

#include <corvale/base/CodePath.hpp>
#include <corvale/base/Words.hpp>
#include <corvale/core/CandidateLines.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>
#include <corvale/text/FixedWidthText.hpp>
#include <corvale/text/FreeFormReader.hpp>

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstring>

namespace corvale::CorvaleCardReading {

constinit std::atomic<std::int32_t> ElsetKeyMode{0};
constinit std::array<double, 128> MoicArr{};

namespace {

constexpr std::int32_t kInputUnit = 3;
constexpr std::int32_t kReadMode = 1;
constexpr std::size_t kNumbersColumn = 9;

enum CardCode : std::int32_t { kMoic = 1, kDmaOn = 2, kDmaAllOn = 3, kOther = 100 };

struct Keyword {
    std::string_view text;
    CardCode code;
};
constexpr Keyword kKeywords[] = {
    {"QZ_MOIC ", kMoic}, {"QZ_DMA_ON", kDmaOn}, {"QZ_DMA_ALL_ON", kDmaAllOn}};
constexpr std::size_t kLongestKeyword = 13;

constexpr internal::FreeFormRules kCardRules = {.real = {.exponentQ = true, .emptyMantissa = false},
                                                .tabSeparates = true,
                                                .semicolonSeparates = false,
                                                .repeatCounts = true,
                                                .numberWidth = std::string_view::npos};

// No card supplies more values than this. Counts the characters at which a value, or a comma that
// no value precedes, can begin: those above a blank that follow a comma or no character above a
// blank. `numbers` ends a line of `ReadCandidateLines`: the 32 characters before it are read, too,
// so that all steps are whole.
template <class Path>
struct MostValuesLoop {
    static constexpr std::size_t Width = Path::kVectorBytes;
    using Bytes [[gnu::vector_size(Width)]] = unsigned char;
    static constexpr unsigned char kRepeats = 0x80;
    // From place i on the last i bytes of a step are all ones.
    static constexpr auto kLastBytes = [] {
        std::array<unsigned char, 2 * Width> bytes{};
        for (std::size_t i = Width; i < bytes.size(); ++i) bytes[i] = 0xFF;
        return bytes;
    }();

    CORVALE_INLINE std::size_t operator()(const char* numbers, std::size_t n) const noexcept {
        constexpr unsigned char blank = ' ';
        Bytes counts{};  // of each place in a step: at most 32, so that a bit is left for the star
        for (std::size_t left = n; left > 0; left -= std::min(left, Width)) {
            const char* const step = numbers + left - Width;
            Bytes before, at, counted;
            std::memcpy(&before, step - 1, Width);
            std::memcpy(&at, step, Width);
            std::memcpy(&counted, kLastBytes.data() + std::min(left, Width), Width);
            counts -= Bytes((before <= blank) | (before == ',')) & Bytes(at > blank) & counted;
            counts |= Bytes(at == '*') & counted & kRepeats;
        }
        return Sum(counts);
    }

    CORVALE_INLINE static std::size_t Sum(const Bytes& counts) noexcept {
        constexpr std::uint64_t eachSecond = 0x00FF00FF00FF00FFU;
        std::array<char, Width> bytes;
        std::memcpy(bytes.data(), &counts, Width);
        std::uint64_t all = 0;
        std::uint64_t pairs = 0;
        for (std::size_t i = 0; i < Width; i += 8) {
            const std::uint64_t word = internal::LoadLittle<std::uint64_t>(bytes.data() + i);
            all |= word;
            pairs += (word & eachSecond) + (word >> 8U & eachSecond);
        }
        if ((all & internal::EachByte(kRepeats)) != 0) return MoicArr.size();
        return static_cast<std::size_t>(internal::SumOfLanes16(pairs));
    }
};

// The array is seen only after the load: of the cards of a group the last one that gives an element
// decides. Taken from last to first, an element is converted once, and a card that can supply
// nothing new is not read (bench: CardFile).
class MoicCards {
  public:
    void TakeEarlier(std::string_view numbers) noexcept {
        if (internal::OnBestPath<MostValuesLoop>(numbers.data(), numbers.size()) <= settledFront_)
            return;
        Read(numbers);
        while (settledFront_ < MoicArr.size() && isSettled_[settledFront_]) ++settledFront_;
    }

  private:
    void Read(std::string_view numbers) noexcept {
        internal::FreeFormReader reader(numbers, kCardRules);
        std::size_t element = 0;
        while (element < MoicArr.size()) {
            internal::ScannedReal number;
            std::int32_t count = 0;
            const internal::ItemKind kind = reader.NextNumber(number, count);
            const std::size_t next =
                std::min(element + static_cast<std::size_t>(count), MoicArr.size());
            if (kind == internal::ItemKind::Value)
                Settle(element, next, number);
            else if (kind != internal::ItemKind::Empty)
                return;
            element = next;
        }
    }

    void Settle(std::size_t first, std::size_t end, const internal::ScannedReal& number) noexcept {
        while (first < end && isSettled_[first]) ++first;
        if (first == end) return;  // a number that gives nothing new is not converted
        const double value = internal::ToDouble(number);
        for (; first < end; ++first) {
            if (!isSettled_[first]) MoicArr[first] = value;
            isSettled_[first] = true;
        }
    }

    std::bitset<128> isSettled_;
    std::size_t settledFront_ = 0;  // elements before it are all settled
};

// Whether `line` is a QZ_MOIC card that can hold a number; the eight columns in one word.
bool IsMoicCard(std::string_view line) noexcept {
    constexpr std::uint64_t anyCase =
        0xFFDFDFDFDFFFDFDFU;  // the underscore and the blank have none
    return line.size() >= kNumbersColumn && (internal::LoadLittle<std::uint64_t>(line.data()) &
                                             anyCase) == internal::WordOf("QZ_MOIC ");
}

void ApplyModeCard(std::string_view line) noexcept {
    std::array<char, kLongestKeyword> keyword;
    StrFunctions::ToUpperCase(line, keyword);
    const std::int32_t code = CorvaleCardType({keyword.data(), keyword.size()});
    if (code == kDmaOn) ElsetKeyModeSet(1);
    if (code == kDmaAllOn) AllKeyModeSet(1);
}

void ApplyCards(internal::Lines lines) noexcept {
    MoicCards moicCards;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line)
        if (IsMoicCard(*line)) {
            moicCards.TakeEarlier(line->substr(kNumbersColumn - 1));
        } else {
            ApplyModeCard(*line);
        }
}

}  // namespace

std::int32_t DupKeyModeGet() noexcept {
    return CorvaleTypes::gDupKeyMode.load(std::memory_order_relaxed);
}

void DupKeyModeSet(std::int32_t mode) noexcept {
    CorvaleTypes::gDupKeyMode.store(mode, std::memory_order_relaxed);
}

std::int32_t AllKeyModeGet() noexcept {
    return CorvaleTypes::gAllKeyMode.load(std::memory_order_relaxed);
}

void AllKeyModeSet(std::int32_t mode) noexcept {
    CorvaleTypes::gAllKeyMode.store(mode, std::memory_order_relaxed);
    CorvaleTypes::gUseAllKeyMode.store(1, std::memory_order_relaxed);
}

std::int32_t UseAllKeyMode() noexcept {
    return CorvaleTypes::gUseAllKeyMode.load(std::memory_order_relaxed);
}

std::int32_t ElsetKeyModeGet() noexcept {
    return ElsetKeyMode.load(std::memory_order_relaxed);
}

void ElsetKeyModeSet(std::int32_t mode) noexcept {
    ElsetKeyMode.store(mode, std::memory_order_relaxed);
}

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
    std::array<char, kLongestKeyword> columns;
    columns.fill(' ');
    card.copy(columns.data(), columns.size());
    const std::string_view text(columns.data(), columns.size());
    for (const Keyword& keyword : kKeywords)
        if (text.starts_with(keyword.text)) return keyword.code;
    return kOther;
}

void RetrieveMocData(double* values, std::int32_t count) noexcept {
    if (values == nullptr || count < 1) return;
    std::copy_n(MoicArr.begin(),
                std::min<std::size_t>(static_cast<std::size_t>(count), MoicArr.size()), values);
}

}  // namespace corvale::CorvaleCardReading
