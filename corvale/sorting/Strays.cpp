#include <corvale/sorting/Ways.hpp>

namespace corvale::internal {

namespace {

// A stray takes 44 of the four bytes for each key: a place and a row.
constexpr std::ptrdiff_t kKeysPerStray = 16;
// How many may come before the first kKeysPerStray keys.
constexpr std::ptrdiff_t kStraysAhead = 8;
// More strays than these side by side are not looked for.
constexpr std::ptrdiff_t kSideBySide = 8;

// Walks over keys and leaves out those that do not ascend. Places count from 0; before the first
// key stands what is below all of them.
class StrayFinder {
  public:
    StrayFinder(const KeyRange& all, std::span<std::int32_t> places) noexcept
        : all_(all), places_(places) {}

    // The places of the strays, ascending. Empty where there are too many.
    std::span<std::int32_t> Find() noexcept {
        const auto count = static_cast<std::ptrdiff_t>(all_.count);
        for (std::ptrdiff_t i = 1; i < count; ++i) {
            if (GoesOn(i, last_)) {
                Keep(i);
                continue;
            }
            const bool tooMany = strays_ + kSideBySide > count / kKeysPerStray ||
                                 i - last_ > kSideBySide ||
                                 strays_ > i / kKeysPerStray + kStraysAhead;
            if (tooMany) return {};
            LeaveOut(i);
        }
        return places_.first(static_cast<std::size_t>(strays_));
    }

  private:
    bool GoesOn(std::ptrdiff_t i, std::ptrdiff_t before) const noexcept {
        return before < 0 || !IsLess(all_.keys[i], all_.keys[before]);
    }
    std::int32_t& PlaceOf(std::ptrdiff_t stray) const noexcept {
        return places_[static_cast<std::size_t>(stray)];
    }
    void Keep(std::ptrdiff_t i) noexcept {
        last_ = i;
        straysBeforeLast_ = strays_;
    }

    // Key i is below the last one kept. Either it is a stray, or those kept last are, as many as it
    // takes, if they are no more than the keys that would not go on with them.
    void LeaveOut(std::ptrdiff_t i) noexcept {
        std::ptrdiff_t before = last_;
        std::ptrdiff_t strays = straysBeforeLast_;
        for (std::ptrdiff_t keys = i - last_; keys > 0 && before >= 0; --keys) {
            --before;
            for (; strays > 0 && PlaceOf(strays - 1) == before; --strays) --before;
            if (!GoesOn(i, before)) continue;
            while (++before < i) PlaceOf(strays++) = static_cast<std::int32_t>(before);
            strays_ = strays;
            return Keep(i);
        }
        PlaceOf(strays_++) = static_cast<std::int32_t>(i);
    }

    const KeyRange& all_;
    std::span<std::int32_t> places_;
    std::ptrdiff_t strays_ = 0;
    std::ptrdiff_t last_ = 0;              // of the keys that ascend so far
    std::ptrdiff_t straysBeforeLast_ = 0;  // how many places there are before it
};

// How many of the first `count` keys, which ascend, are not above `key`: looked for from the end.
std::size_t CountNotAbove(const Key* keys, std::size_t count, const Key& key) noexcept {
    std::size_t step = 1;
    while (step <= count && IsLess(key, keys[count - step])) step *= 2;
    std::size_t begin = step <= count ? count - step + 1 : 0;
    std::size_t end = count - step / 2;
    while (begin < end) {
        const std::size_t middle = begin + (end - begin) / 2;
        if (IsLess(key, keys[middle]))
            end = middle;
        else
            begin = middle + 1;
    }
    return begin;
}

}  // namespace

std::size_t SetStraysAside(const KeyRange& all, std::span<std::int32_t> block) noexcept {
    const std::span<std::int32_t> strays = StrayFinder(all, block).Find();
    if (strays.empty()) return 0;

    const KeyRange rows = RowsIn(block.subspan((strays.size() + 1) / 2 * 2), strays.size());
    auto kept = static_cast<std::size_t>(strays.front());
    for (std::size_t i = 0; i < strays.size(); ++i) {
        const auto stray = static_cast<std::size_t>(strays[i]);
        const std::size_t next =
            i + 1 < strays.size() ? static_cast<std::size_t>(strays[i + 1]) : all.count;
        rows.Put(i, all, stray);
        all.PutRows(kept, all, stray + 1, next - stray - 1);
        kept += next - stray - 1;
    }
    all.PutRows(kept, rows, 0, strays.size());
    return kept;
}

void MergeStrays(const KeyRange& all, std::size_t kept, std::span<std::int32_t> block) noexcept {
    const std::size_t strays = all.count - kept;
    const KeyRange rows = RowsIn(block, strays);
    rows.PutRows(0, all, kept, strays);
    for (std::size_t stray = strays; stray > 0; --stray) {
        const std::size_t place = CountNotAbove(all.keys, kept, rows.keys[stray - 1]);
        all.PutRows(place + stray, all, place, kept - place);
        all.Put(place + stray - 1, rows, stray - 1);
        kept = place;
    }
}

}  // namespace corvale::internal
