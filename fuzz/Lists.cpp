// Integer lists and table searches against the plain versions, short and long.
#include "Targets.hpp"

#include "literal/LiteralNumeric.hpp"

#include <corvale/numeric/IntegerLists.hpp>
#include <corvale/numeric/SmallHelpers.hpp>

#include <algorithm>
#include <array>

namespace corvale::fuzz {
namespace lists {

constexpr std::size_t kMost = 600;  // more than 256 go another way

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
    static Room<4 * kMost> room;
    std::array<std::int32_t, kMost> plain{};
    const std::size_t order = in.Below(4);
    const int shift = in.Byte() % 31;  // how many different values there are
    const int offset = in.Byte() % 4 == 0 ? 128 : 0;
    Values values(in);
    auto* const list = room.Of<std::int32_t>(count);
    for (std::size_t i = 0; i < count; ++i)
        list[i] = plain[i] =
            static_cast<std::int32_t>(values.Next() % (std::uint64_t{1} << shift)) - offset;
    auto n = static_cast<std::int32_t>(count), plainCount = n;
    if (order == 3) {
        GenFunctions::IDupe(list, n);
        literal::IDupe(plain.data(), plainCount);
    } else {
        GenFunctions::ISort(static_cast<std::int32_t>(order) - 1, list, n);
        literal::ISort(static_cast<std::int32_t>(order) - 1, plain.data(), plainCount);
    }
    ExpectSame(n, plainCount, "the count of an integer list");
    Expect(std::equal(list, list + count, plain.begin()), "an integer list");
}

// An ascending table; for three values in four the result is prescribed.
void Search(Choices& in, std::size_t count) {
    static Room<8 * kMost> room;
    const bool isAscending = in.Byte() % 4 != 0;
    const int range = 1 + in.Byte();
    const double scale = std::ldexp(1.0, in.Byte() % 64 - 32);
    const double any = in.Real();
    const std::size_t at = in.Below(kMost);
    Values values(in);
    auto* const table = room.Of<double>(count);
    for (std::size_t i = 0; i < count; ++i)
        table[i] = static_cast<double>(values.Next() % static_cast<unsigned>(range)) * scale;
    if (!isAscending && count > 0) table[at % count] = any;
    if (isAscending) std::sort(table, table + count);
    const bool isEntry = count > 0 && at % 2 == 0;
    const double value = isEntry ? table[at % count] : any;
    const auto n = static_cast<std::int32_t>(count);
    const std::int32_t index = GenFunctions::FindRecIdx(table, n, value);
    if (count == 0) return ExpectSame(index, 0, "FindRecIdx of no table");
    if (isAscending && !std::isnan(value))
        return ExpectSame(index, literal::FindRecIdx(table, n, value), "FindRecIdx");
    Expect(index >= 1 && index <= n, "FindRecIdx stays inside");
}

}  // namespace lists

void Lists(Choices in) {
    using namespace lists;
    const std::uint8_t kind = in.Byte();
    const std::size_t count = kind < 255 ? in.Below(24) : in.Below(kMost);
    if (kind % 3 == 0) return Search(in, count);
    IntegerList(in, count);
}

}  // namespace corvale::fuzz
