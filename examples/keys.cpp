// Satellite keys, the modes that decide how they are formed, and satellite numbers as text.
#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/numeric/GenFunctions.hpp>

#include <cstdio>

namespace cards = corvale::CorvaleCardReading;
namespace gen = corvale::GenFunctions;

static void PrintModes(const char* after) {
    std::printf("%-24s elset %d, all %d (chosen: %d), duplication %d\n", after,
                cards::ElsetKeyModeGet(), cards::AllKeyModeGet(), cards::UseAllKeyMode(),
                cards::DupKeyModeGet());
}

int main() {
    // [modes]
    PrintModes("at the start");
    if (SetElsetKeyMode(1) != CORVALE_OK || SetAllKeyMode(1) != CORVALE_OK) return CORVALE_FAILED;
    if (SetDupKeyMode(2) == CORVALE_OK) return CORVALE_FAILED;  // 2 is refused, nothing changes
    PrintModes("after three setters");
    ResetAllKeyMode();  // leaves the element-set mode
    PrintModes("after ResetAllKeyMode");
    // [modes]

    // [keys]
    for (const std::int64_t key : {140737488355320LL, 900010000000001LL, 3670000000000000001LL}) {
        std::printf("%19lld  DMA %d, no duplication %d\n", static_cast<long long>(key),
                    gen::IsDma(key), gen::IsNoDup(key));
    }
    std::printf("%19lld  is the address of the first\n",
                static_cast<long long>(gen::SatKeyToAddr(140737488355320LL)));
    std::printf("%19lld  follows the second\n",
                static_cast<long long>(gen::NextSatKey(900010000000001LL)));
    // [keys]

    // [alpha5]
    for (const std::int32_t number : {25, 99999, 100000, 339999}) {
        const auto code = gen::NumToAlpha5(number);
        std::printf("%6d  %.5s  %d\n", number, code.data(),
                    gen::Alpha5ToNum({code.data(), code.size()}));
    }
    // [alpha5]
    return 0;
}
