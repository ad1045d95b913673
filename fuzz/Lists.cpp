// Integer lists and table searches against the plain versions, short and long.
#include "Targets.hpp"

#include "reference/IntegerLists.hpp"
#include "reference/SmallHelpers.hpp"

#include <corvale/numeric/IntegerLists.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

#include <algorithm>
#include <array>

namespace corvale::fuzz {
namespace lists {

constexpr std::size_t kMost = 5000;  // other algorithms take over from 257 and 4096 on

// Bytes first, then what a generator makes of the last of them.
class Values {
  public:
    explicit Values(Choices& in) : in_(in) {}
    std::uint64_t Next() {
        if (in_.Left() > 0) return state_ = in_.Byte();
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return state_ >> 33U;
    }

  private:
    Choices& in_;
    std::uint64_t state_ = 1;
};

void IntegerList(Choices& in, std::size_t count) {
    static thread_local GuardedMemory<4 * kMost> guarded;
    std::array<std::int32_t, kMost> plain{};
    const std::size_t order = in.Below(4);
    const int shift = in.Byte() % 31;  // how many different values there are
    const std::uint8_t kind = in.Byte();
    const int offset = kind % 4 == 0 ? 128 : 0;
    Values values(in);
    auto* const list = guarded.Of<std::int32_t>(count);
    for (std::size_t i = 0; i < count; ++i)
        list[i] = plain[i] =
            static_cast<std::int32_t>(values.Next() % (std::uint64_t{1} << shift)) - offset;
    // One value far from the others: what tells them apart is in their low bits alone.
    if (kind % 8 == 1 && count > 0) list[count / 2] = plain[count / 2] = INT32_MAX;
    auto n = static_cast<std::int32_t>(count), plainCount = n;
    if (order == 3) {
        GenFunctions::IDupe(list, n);
        reference::IDupe(plain.data(), plainCount);
    } else {
        GenFunctions::ISort(static_cast<std::int32_t>(order) - 1, list, n);
        reference::ISort(static_cast<std::int32_t>(order) - 1, plain.data(), plainCount);
    }
    ExpectSame(n, plainCount, "the count of an integer list");
    for (std::size_t i = 0; i < count; ++i) ExpectSame(list[i], plain[i], "an integer list");
}

// A table with steps of one size or growing ones, with equal neighbours. Where an entry is out of
// order or the value is NaN, any index of the table will do.
void Search(Choices& in, std::size_t count) {
    static thread_local GuardedMemory<8 * kMost> guarded;
    const bool isAscending = in.Byte() % 4 != 0;
    const std::uint8_t spread = in.Byte();
    const int range = 1 + spread;
    const double scale = std::ldexp(1.0, in.Byte() % 64 - 32);
    const double any = in.Real();
    const std::size_t at = in.Below(kMost);
    Values values(in);
    auto* const table = guarded.Of<double>(count);
    for (std::size_t i = 0; i < count; ++i)
        table[i] = static_cast<double>(values.Next() % static_cast<unsigned>(range)) * scale;
    if (!isAscending && count > 0) table[at % count] = any;
    if (isAscending) std::sort(table, table + count);
    for (std::size_t i = 1; isAscending && spread % 4 == 3 && count < 24 && i < count; ++i)
        table[i] += 2.0 * table[i - 1];
    for (std::size_t i = 0; isAscending && spread % 4 == 2 && i < count; ++i) table[i] *= table[i];
    double value = any;
    if (count > 0 && at % 4 != 3) value = table[at % count];
    if (at % 4 != 0) value = std::nextafter(value, at % 4 == 1 ? 1e300 : -1e300);
    const auto n = static_cast<std::int32_t>(count);
    const std::int32_t index = GenFunctions::FindRecIdx(table, n, value);
    if (count == 0) return ExpectSame(index, 0, "FindRecIdx of no table");
    if (isAscending && !std::isnan(value))
        return ExpectSame(index, reference::FindRecIdx(table, n, value), "FindRecIdx");
    Expect(index >= 1 && index <= n, "FindRecIdx stays inside");
}

}  // namespace lists

void Lists(Choices in) {
    using namespace lists;
    const std::uint8_t kind = in.Byte();
    const std::size_t count = in.Below(kind < 240 ? 24 : kind < 254 ? 600 : kMost);
    if (kind % 3 == 0) return Search(in, count);
    IntegerList(in, count);
}

}  // namespace corvale::fuzz
