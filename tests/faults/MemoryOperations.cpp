#include "Operations.hpp"

#include "SystemCalls.hpp"

#include <corvale/Corvale.h>

#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/platform/NamedLocks.hpp>
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <fcntl.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace corvale::test {

namespace {

using GenFunctions::MatrixView;

// `fill` once undisturbed, once disturbed.
std::string Compute(std::size_t size, const std::function<void(double*)>& fill) {
    std::vector<double> wanted(size), found(size, 1.0);
    fill(wanted.data());
    Disturbed([&] { return fill(found.data()), 0; });
    if (std::ranges::all_of(found, [](double value) { return std::isnan(value); })) return "NaN";
    return std::memcmp(wanted.data(), found.data(), size * sizeof(double)) == 0 ? "same" : "other";
}

constexpr std::int32_t kOrder = 40;

std::vector<double> PositiveDefinite() {
    std::vector<double> matrix(kOrder * kOrder, 1.0);
    for (std::size_t i = 0; i < kOrder; ++i) matrix[i * (kOrder + 1)] += static_cast<double>(i) + 1;
    return matrix;
}

using Solver = void (*)(const double*, const double*, std::int32_t, double*, double*);
std::string Solve(Solver solve) {
    return Compute(kOrder * (kOrder + 1), [=, a = PositiveDefinite()](double* out) {
        solve(a.data(), a.data(), kOrder, out, out + kOrder * kOrder);
    });
}

using Inverter = void (*)(MatrixView<const double>, MatrixView<double>);
std::string Invert(Inverter invert, std::int32_t rows) {
    return Compute(static_cast<std::size_t>(rows * kOrder),
                   [=, a = PositiveDefinite()](double* out) {
                       invert(MatrixView<const double>(a.data(), rows, kOrder),
                              MatrixView<double>(out, rows, kOrder));
                   });
}

std::string SolveSeries() {
    return Compute(kOrder * (kOrder + 1), [a = PositiveDefinite()](double* out) {
        GenFunctions::CholeskyEach({a.data(), kOrder, kOrder, 1}, {a.data(), kOrder, 1},
                                   {out, kOrder, kOrder, 1}, {out + kOrder * kOrder, kOrder, 1});
    });
}

void SortAscending(std::int32_t* list, std::int32_t& n) {
    GenFunctions::ISort(1, list, n);
}

// Lists of 9,000 with repeats, whose values lie `spacing` apart: near each other a bitmap holds them.
std::string ThinOut(void (*change)(std::int32_t* list, std::int32_t& n), std::int32_t spacing) {
    std::vector<std::int32_t> wanted(9000);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        wanted[i] = static_cast<std::int32_t>(i * 7919 % 8999 + 1) * spacing;
    std::vector<std::int32_t> found = wanted;
    std::int32_t n = 9000, foundCount = 9000;
    change(wanted.data(), n);
    Disturbed([&] { return change(found.data(), foundCount), 0; });
    return wanted == found && n == foundCount ? "same" : "other";
}

// In a child: without memory the process is stopped.
std::string SortKeys(const TemporaryFolder& folder) {
    const std::string path = folder / "stderr";
    std::vector<Sorting::Key> keys(1000);
    for (std::size_t i = 0; i < keys.size(); ++i) keys[i].fill(static_cast<char>(i * 31));
    std::vector<std::int64_t> companion(keys.size());
    const int status = WaitFor(StartChild([&] {
        dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        std::atexit([] { Counts().isDisturbed = false; });
        Disturbed(
            [&] { return Sorting::QuickSortIterative(1000, keys.data(), companion.data()), 0; });
        return std::ranges::is_sorted(keys, [](const auto& a, const auto& b) {
            return std::memcmp(a.data(), b.data(), a.size()) < 0;
        });
    }));
    Counts().isDisturbed = false;
    return status == 0 ? "sorted"
                       : std::to_string(WEXITSTATUS(status)) + " " + Joined(ReadFile(path));
}

std::string TakeLock() {
    static int number = 0;
    const std::string name = "lock " + std::to_string(++number);
    return Disturbed([&] {
        std::mutex& lock = NamedLocks::NamedLock(name);
        const bool isFree = lock.try_lock();
        if (isFree) lock.unlock();
        return isFree ? "free" : "held";
    });
}

std::string MadeCalls() {
    return std::to_string(Counts().made[kAnyCall]) + " calls";
}

std::string CallTheCApi() {
    std::array<char, 513> text = {};
    std::array<double, 128> values;
    Disturbed([&] {
        static_cast<void>(CorvaleInit());
        for (const auto fill : {CorvaleGetInfo, GetInitDllNames, GetLastErrMsg, GetLastInfoMsg})
            fill(text.data());
        std::int32_t sum = SetDupKeyMode(1) + SetAllKeyMode(1) + SetElsetKeyMode(1);
        sum += GetDupKeyMode() + GetAllKeyMode() + GetElsetKeyMode();
        ResetAllKeyMode();
        GetMOICData(128, values.data());
        TestInterface('c', text.data(), 1, &sum, 1, nullptr, 1.0, nullptr, text.data(), text.data(),
                      nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                      nullptr, nullptr, nullptr, nullptr);
        TestInterface2(text.data(), &sum, nullptr, nullptr, text.data(), nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr);
        TestInterface3(nullptr, nullptr, nullptr, nullptr);
        return sum;
    });
    return MadeCalls();
}

std::string ReadAndWriteNumbers() {
    using namespace StrFunctions;
    std::array<char, 600> buffer{};
    double first = 0, second = 0;
    std::int32_t one = 0, two = 0;
    Disturbed([&] {
        StrTo2Reals("1.5 2.5", first, second);
        StrTo2Ints("1 2", one, two);
        InputStrToNumStr("KEY = 9007199254740993.000000000000001 'word'", first, buffer);
        Fx0ToSignAx(1.5, 20, buffer);
        for (const std::int32_t n : {6, 25}) Fx0ToAx(1.1, n, buffer);
        CompressCsvLine(buffer);
        static_cast<void>(GenFunctions::DegToDDMMSSSSS_Str(12.5));
        return StrToReal("0.12345678901234567890123456789012345678901234567890e-310") +
               StrToInt("x 5") + InputStrToReal("a = 5") + InputStrToInt("a = on") +
               OnOff2Int("on") + GenFunctions::Alpha5ToNum("B1234") + GenFunctions::FMod2P(100);
    });
    return MadeCalls();
}

}  // namespace

std::vector<Operation> MemoryOperations(const TemporaryFolder& folder) {
    return {
        {"Cholesky", [] { return Solve(GenFunctions::Cholesky); }, "same", "NaN"},
        {"Cholesky2", [] { return Solve(GenFunctions::Cholesky2); }, "same", "NaN"},
        {"CholeskyEach", SolveSeries, "same", "NaN"},
        {"MtxInv", [] { return Invert(GenFunctions::MtxInv, kOrder); }, "same", "NaN"},
        {"MtxInv, not square", [] { return Invert(GenFunctions::MtxInv, 20); }, "same", "NaN"},
        {"MInv", [] { return Invert(GenFunctions::MInv, kOrder); }, "same", "NaN"},
        {"ISort of a dense list", [] { return ThinOut(SortAscending, 1); }, "same"},
        {"ISort of a sparse list", [] { return ThinOut(SortAscending, 200000); }, "same"},
        {"IDupe of a dense list", [] { return ThinOut(GenFunctions::IDupe, 1); }, "same"},
        {"IDupe of a sparse list", [] { return ThinOut(GenFunctions::IDupe, 200000); }, "same"},
        {"QuickSortIterative", [&] { return SortKeys(folder); }, "sorted",
         "1 Error allocating 4000 bytes\\|"},
        {"NamedLock", TakeLock, "free", "", 1},
        {"the C API, where it only computes", CallTheCApi, "0 calls"},
        {"read and write numbers", ReadAndWriteNumbers, "0 calls"},
    };
}

}  // namespace corvale::test
