#include <corvale/numeric/IntegerLists.hpp>

#include <gtest/gtest.h>
#include <algorithm>
#include <climits>
#include <random>
#include <vector>

namespace corvale::GenFunctions {
namespace {

using List = std::vector<std::int32_t>;

struct ListCase {
    List list, result;
    std::int32_t n;
    const char* why;
};
const ListCase kDupes[] = {
    {{5, 3, 5}, {3, 5, 0}, 2, "the last of equals stays"},
    {{4, 0, 7}, {4, 7, 0}, 2, "an empty element closes"},
    {{0, 8, 9}, {8, 9, 0}, 2, "at the front"},
    {{7, 8, 0}, {7, 8, 0}, 3, "the last element is not looked at"},
    {{-1, 5, 6}, {-1, 5, 6}, 3, "negative values stay while nothing is removed"},
    {{-1, 5, 5}, {5, 0, 0}, 1, "and go, moved over, with the first removal"},
    {{6, 6, -1}, {6, 0, -1}, 1, "a negative value stays where no kept value is moved over it"},
    {{0, 0}, {0, 0}, 0, "nothing but empty elements"},
    {{0}, {0}, 1, "one element: nothing happens"},
};

TEST(IDupe, KeepsTheLastOfEquals) {
    for (const ListCase& c : kDupes) {
        List list = c.list;
        auto n = static_cast<std::int32_t>(list.size());
        IDupe(list.data(), n);
        EXPECT_EQ(list, c.result) << c.why;
        EXPECT_EQ(n, c.n) << c.why;
    }
}

struct SortCase {
    std::int32_t order;
    List list, result;
    std::int32_t n;
    const char* why;
};
const SortCase kSorts[] = {
    {1, {5, 3, 5, 1}, {1, 3, 5, 0}, 3, "ascending"},
    {0, {5, 3, 5, 1}, {1, 3, 5, 0}, 3, "0 ascends"},
    {-1, {5, 3, 5, 1}, {5, 3, 1, 0}, 3, "descending"},
    {1, {0}, {0}, 0, "one empty place"},
    {1, {7, 8, 0}, {0, 7, 8}, 3, "a 0 that was not looked at is sorted too"},
    {1, {INT_MAX, -5, INT_MIN}, {INT_MIN, -5, INT_MAX}, 3, "far apart: compared, not subtracted"},
};

TEST(ISort, SortsWhatIsKept) {
    for (const SortCase& c : kSorts) {
        List list = c.list;
        auto n = static_cast<std::int32_t>(list.size());
        ISort(c.order, list.data(), n);
        EXPECT_EQ(list, c.result) << c.why;
        EXPECT_EQ(n, c.n) << c.why;
    }
}

TEST(IntegerLists, LeaveAnEmptyListAlone) {
    for (std::int32_t n : {0, -1, INT_MIN}) {
        const std::int32_t before = n;
        IDupe(nullptr, n);
        ISort(1, nullptr, n);
        EXPECT_EQ(n, before);
    }
}

// Two digits would leave too many keys equal in so long a list: all bits are sorted by.
TEST(ISort, SortsALongSparseList) {
    std::mt19937_64 random(4);
    List list(300000);
    for (auto& value : list) value = static_cast<std::int32_t>(random() % INT_MAX) + 1;
    List wanted = list;
    std::sort(wanted.begin(), wanted.end());
    wanted.resize(
        static_cast<std::size_t>(std::unique(wanted.begin(), wanted.end()) - wanted.begin()));
    auto n = static_cast<std::int32_t>(list.size());
    ISort(1, list.data(), n);
    list.resize(static_cast<std::size_t>(n));
    EXPECT_EQ(list, wanted);
}

}  // namespace
}  // namespace corvale::GenFunctions
