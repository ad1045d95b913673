#include <corvale/core/CorvaleCardReading.hpp>

#include <corvale/base/CodePath.hpp>
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
// blank. `numbers` continues a card: the character before it is looked at too.
struct MostValuesLoop {
    static constexpr std::size_t kBlock = 128;  // its count fits a byte
    using Count = unsigned char;

    CORVALE_LOOP static std::size_t CountBlock(const char* text, Count& repeats) noexcept {
        constexpr Count blank = ' ';
        Count begins = 0;
        for (std::size_t i = 0; i < kBlock; ++i) {
            const auto before = static_cast<Count>(text[i]);
            const auto at = static_cast<Count>(text[i + 1]);
            const bool follows = (before <= blank) | (before == ',');
            begins = static_cast<Count>(begins + (follows & (at > blank)));
            repeats = static_cast<Count>(repeats | (at == '*'));
        }
        return begins;
    }
    CORVALE_LOOP std::size_t operator()(const char* numbers, std::size_t n) const noexcept {
        Count repeats = 0;
        std::size_t most = 0;
        std::size_t i = 0;
        for (; i + kBlock <= n; i += kBlock) most += CountBlock(numbers - 1 + i, repeats);
        std::array<char, kBlock + 1> rest{};
        std::memcpy(rest.data(), numbers - 1 + i, n - i + 1);
        most += CountBlock(rest.data(), repeats);
        return repeats != 0 ? MoicArr.size() : most;
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

void ApplyCards(internal::Lines lines) noexcept {
    MoicCards moicCards;
    for (auto at = lines.rbegin(); at != lines.rend(); ++at) {
        const std::string_view line = *at;
        std::array<char, kLongestKeyword> keyword;
        StrFunctions::ToUpperCase(line, keyword);
        switch (CorvaleCardType({keyword.data(), keyword.size()})) {
            case kMoic:
                moicCards.TakeEarlier(line.substr(std::min(line.size(), kNumbersColumn - 1)));
                break;
            case kDmaOn:
                ElsetKeyModeSet(1);
                break;
            case kDmaAllOn:
                AllKeyModeSet(1);
                break;
            default:
                break;
        }
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
