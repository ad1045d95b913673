// Keys of 32 characters sorted, each with the integer that belongs to it.
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <array>
#include <cstdio>

namespace sorting = corvale::Sorting;

int main() {
    // [sort]
    constexpr std::array<const char*, 4> kNames = {"SENSOR 388", "SENSOR 211", "sensor 100",
                                                   "SENSOR 21"};
    std::array<sorting::Key, 4> keys;
    std::array<std::int64_t, 4> places = {1, 2, 3, 4};
    for (std::size_t i = 0; i < keys.size(); ++i)
        corvale::StrFunctions::CharArrToStr(kNames[i], 32, keys[i]);  // filled with blanks

    sorting::QuickSortIterative(4, keys.data(), places.data());
    for (std::size_t i = 0; i < keys.size(); ++i)
        std::printf("%.12s %d\n", keys[i].data(), static_cast<int>(places[i]));
    // [sort]
    return 0;
}
