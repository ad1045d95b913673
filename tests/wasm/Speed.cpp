// The time of a load and of inversions, natively and in WebAssembly; speed.mjs runs the two by turns:
//
//     speed FILE    prints "load NANOSECONDS", then "MtxInv/ORDER NANOSECONDS" for some orders
#include <corvale/Corvale.h>
#include <corvale/numeric/MatrixInversion.hpp>

#include <chrono>
#include <cstdio>
#include <vector>

namespace {

// The least time of a call, of as many as half a second holds.
template <class Call>
double LeastTime(Call call) {
    using Clock = std::chrono::steady_clock;
    using Nanoseconds = std::chrono::duration<double, std::nano>;
    double least = 1e99;
    const auto end = Clock::now() + std::chrono::milliseconds(500);
    while (Clock::now() < end) {
        const auto begun = Clock::now();
        call();
        const double time = Nanoseconds(Clock::now() - begun).count();
        least = time < least ? time : least;
    }
    return least;
}

double TimeOfInversion(std::int32_t order) {
    std::vector<double> matrix;
    for (std::int32_t i = 0; i < order; ++i)
        for (std::int32_t j = 0; j < order; ++j)
            matrix.push_back(i == j ? order : 1.0 / (1 + i + j));
    std::vector<double> inverse(matrix.size());
    constexpr int repeats = 20;  // a clock's step must not matter
    return LeastTime([&] {
               for (int k = 0; k < repeats; ++k)
                   corvale::GenFunctions::MtxInv({matrix.data(), order, order},
                                                 {inverse.data(), order, order});
           }) /
           repeats;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || CorvaleLoadFile(argv[1]) != CORVALE_OK) return 1;
    std::printf("load %.0f\n", LeastTime([&] { CorvaleLoadFile(argv[1]); }));
    for (const std::int32_t order : {6, 20, 100})
        std::printf("MtxInv/%d %.0f\n", static_cast<int>(order), TimeOfInversion(order));
    return 0;
}
