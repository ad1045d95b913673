// The array of the QZ_MOIC cards: its memory, the copy for callers, and how a card fills it.
#include <corvale/core/MoicList.hpp>

#include <corvale/core/CorvaleCardReading.hpp>

#include <algorithm>
#include <cstdint>

namespace corvale::CorvaleCardReading {

// Usable before the first static constructor and after the last exit handler.
constinit std::array<double, 128> MoicArr{};

void RetrieveMocData(double* values, std::int32_t count) noexcept {
    if (values == nullptr || count < 1) return;
    const std::size_t most = std::min(static_cast<std::size_t>(count), MoicArr.size());
    std::copy_n(MoicArr.begin(), most, values);
}

}  // namespace corvale::CorvaleCardReading

namespace corvale::internal {

using CorvaleCardReading::MoicArr;

namespace {

// The grammar of the numbers; CorvaleCardReading.hpp tells it with examples.
constexpr FreeFormRules kCardRules = {.real = {.exponentQ = true, .emptyMantissa = false},
                                      .tabSeparates = true,
                                      .semicolonSeparates = false,
                                      .repeatCounts = true,
                                      .numberWidth = std::string_view::npos};

}  // namespace

// Goes through the items of a card and counts the elements that they stand for, empty ones included.
void MoicCards::ReadItems(std::string_view numbers) noexcept {
    FreeFormReader reader(numbers, kCardRules);
    std::size_t element = 0;
    while (element < MoicArr.size()) {
        ScannedReal number;
        std::int32_t count = 0;
        const ItemKind kind = reader.NextNumber(number, count);
        const std::size_t next =
            std::min(element + static_cast<std::size_t>(count), MoicArr.size());
        if (kind == ItemKind::Value)
            Store(element, next, number);
        else if (kind != ItemKind::Empty)
            break;  // a slash, the end of the card, or no number: the rest keeps what it holds
        element = next;
    }
    while (firstUnset_ < MoicArr.size() && isSet_[firstUnset_]) ++firstUnset_;
}

// Stores `number` in the elements from `first` to before `end` that have no value yet. It is
// converted only if there is one: a conversion takes longer than a scan.
void MoicCards::Store(std::size_t first, std::size_t end, const ScannedReal& number) noexcept {
    while (first < end && isSet_[first]) ++first;
    if (first == end) return;
    const double value = ToDouble(number);
    for (; first < end; ++first) {
        if (!isSet_[first]) MoicArr[first] = value;
        isSet_[first] = true;
    }
}

}  // namespace corvale::internal
