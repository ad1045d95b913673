// Every public procedure that does more than move a few words, on a painted stack: none may need more
// than the smallest thread of the system has.
#include <corvale/Corvale.h>

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/platform/NamedLocks.hpp>
#include <corvale/platform/TextUnits.hpp>
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace corvale {
namespace {

using namespace GenFunctions;
using namespace StrFunctions;

constexpr std::size_t kSmallest = 16384;  // PTHREAD_STACK_MIN on x86-64
constexpr std::size_t kPainted = 1 << 18;
constexpr unsigned char kPaint = 0xA5;

// What the calls work on. Orders and counts on both sides of the limits where procedures change
// their ways.
constexpr std::int32_t kOrders[] = {1, 2, 3, 4, 6, 8, 9, 12, 16, 17, 20, 33, 64, 70, 129};
constexpr std::int32_t kCounts[] = {2, 5, 6, 7, 16, 17, 99, 100, 1000, 5000};
constexpr std::int32_t kOrder = 129;
std::array<double, kOrder * kOrder> matrix, inverse, product;
std::array<std::int32_t, 5000> integers;
std::array<Sorting::Key, 5000> keys;
std::array<std::int64_t, 5000> companions;
std::array<char, 600> text, result;
std::array<char, 129> message;
std::string input, output, longLine(20000, '\n'), longName(600, '\\'), numbers, csv;
double real;
std::int32_t one;

void FillMatrix(std::int32_t n) {
    for (std::int32_t i = 0; i < n * n; ++i)
        matrix[static_cast<std::size_t>(i)] = i % (n + 1) == 0 ? n + i : 1.0 / (i + 1);
}

template <auto Solve>
void SolveAll() {
    for (const std::int32_t n : kOrders) {
        FillMatrix(n);
        Solve(matrix.data(), matrix.data(), n, inverse.data(), product.data());
    }
}

// Five times the same system: more than the widest path has lanes.
template <auto Solve>
void SolveSeries() {
    for (const std::int32_t n : kOrders) {
        FillMatrix(n);
        Solve({{matrix.data(), n, n}, 0, 5}, {{matrix.data(), n}, 0, 5},
              {{inverse.data(), n, n}, 0, 5}, {{product.data(), n}, 0, 5});
    }
}

template <auto Invert>
void InvertSeries() {
    for (const std::int32_t n : kOrders) {
        FillMatrix(n);
        Invert({{matrix.data(), n, n}, 0, 5}, {{inverse.data(), n, n}, 0, 5});
    }
}

template <auto Invert>
void InvertAll() {
    for (const std::int32_t n : kOrders) {
        FillMatrix(n);
        Invert(MatrixView<const double>(matrix.data(), n, n),
               MatrixView<double>(inverse.data(), n, n));
    }
}

void ListIntegers() {
    for (std::size_t i = 0; i < integers.size(); ++i)
        integers[i] = static_cast<std::int32_t>(i * 7919 % 3001);
    for (std::int32_t n : kCounts) ISort(1, integers.data(), n);
    for (std::int32_t n : kCounts) IDupe(integers.data(), n);
}

// Keys in the patterns that the sort tells apart: ties, few values, runs, long prefixes, random.
void SortKeys() {
    for (const std::int32_t n : kCounts)
        for (const std::int32_t values : {1, 2, 17, 251, 5000})
            for (const std::int32_t step : {1, 7919}) {
                for (std::int32_t i = 0; i < n; ++i) {
                    auto& key = keys[static_cast<std::size_t>(i)];
                    key.fill('x');
                    std::snprintf(key.data() + 16, 16, "%08d", i * step % values);
                }
                Sorting::QuickSortIterative(n, keys.data(), companions.data());
            }
}

// Arguments that need the accurate phases: all of those that the numeric tests compare, and published
// worst cases.
struct HardArguments {
    std::string function;
    double first, second;
};
std::vector<HardArguments> hardArguments = {{"Exp", 0x1.9e9cbbfd6080bp-31, 0},
                                            {"Sin", 0x1.fe767739d0f6dp-2, 0}};

void ReadHardArguments() {
    std::ifstream file(CORVALE_CASES "/hard_arguments.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        std::istringstream words(line);
        std::string function, first, second;
        words >> function >> first >> second;
        hardArguments.push_back(
            {function, std::strtod(first.c_str(), nullptr), std::strtod(second.c_str(), nullptr)});
    }
    EXPECT_GT(hardArguments.size(), 3000U);
}

void ComputeSlowly() {
    using namespace Elementary;
    for (const auto& [function, x, second] : hardArguments) {
        if (function == "Sin" || function == "Cos") real = Sin(x) + Cos(x) + SinCos(x).sine;
        if (function == "Exp") real = Exp(x);
        if (function == "ArcTan") real = ArcTan(x);
        if (function == "ArcTan2") real = ArcTan2(x, second);
        if (function == "ArcCos") real = ArcCos(x);
        if (function == "CubeRoot" || function == "CubRt") real = CubeRoot(x) + CubRt(x);
    }
}

void UseUnits() {
    static_cast<void>(FileIO::FileOpen(12, output, 0));
    static_cast<void>(TextUnits::WriteLine(12, longLine));
    static_cast<void>(TextUnits::WriteLine(12, "old"));
    static_cast<void>(FileIO::FileOpen(12, output, 2));
    static_cast<void>(FileIO::FileOpen(12, output, 1));
    static_cast<void>(TextUnits::ReadLine(12, text));
    TextUnits::Rewind(12) ? TextUnits::Close(12) : TextUnits::Close(13);
    static_cast<void>(FileIO::FileOpen(12, longName, 1));
    static_cast<void>(FileIO::FileOpenMT(longName, 0, one));
    NamedLocks::NamedLock("stack").lock();
    NamedLocks::NamedLock("stack").unlock();
}

void UseLog() {
    static_cast<void>(OpenLogFile((output + "2").c_str()));
    LogMessage("message");
    FileIO::TraceLogError(longLine);
    GetLastErrMsg(message.data());
    static_cast<void>(SetDupKeyMode(7));
    CloseLogFile();
}

const struct Row {
    const char* name;
    void (*call)();
} kRows[] = {
    {"Cholesky", SolveAll<Cholesky>},
    {"Cholesky2", SolveAll<Cholesky2>},
    {"MtxInv", InvertAll<MtxInv>},
    {"MInv", InvertAll<MInv>},
    {"CholeskyEach", SolveSeries<CholeskyEach>},
    {"Cholesky2Each", SolveSeries<Cholesky2Each>},
    {"MtxInvEach", InvertSeries<MtxInvEach>},
    {"MInvEach", InvertSeries<MInvEach>},
    {"ISort, IDupe", ListIntegers},
    {"QuickSortIterative", SortKeys},
    {"CorvaleLoadFile", [] { one = CorvaleLoadFile(input.c_str()); }},
    {"units", UseUnits},
    {"the log", UseLog},
    {"CorvaleGetInfo", [] { CorvaleGetInfo(message.data()); }},
    {"TestInterface3",
     [] { TestInterface3(integers.data(), integers.data(), integers.data(), integers.data()); }},
    {"StrToReal",
     [] { real = StrToReal(numbers) + StrToReal(std::string_view(numbers).substr(1)); }},
    {"InputStrToNumStr", [] { InputStrToNumStr("x = 1.5 'km'", real, result); }},
    {"Fx0ToAx, Fx0ToSignAx",
     [] { Fx0ToAx(1e-300, 15, result), Fx0ToSignAx(-1.7e308, 30, result); }},
    {"CompressCsvLine", [] { std::memcpy(text.data(), csv.data(), 600), CompressCsvLine(text); }},
    {"ReplaceString", [] { ReplaceString(longName, "\\", "ab", result); }},
    {"GetInputFileName", [] { GetInputFileName(csv, result), GetInputStr(csv, text); }},
    {"DegToDDMMSSSSS_Str",
     [] { message[0] = DegToDDMMSSSSS_Str(123.456)[0] + DegToHHMMSSS_Str(-1e9)[0]; }},
    {"Rotate, RodriguesRot",
     [] {
         real = Rotate({1, 2, 3}, 1, 1e22)[0] + RodriguesRot({1, 2, 3}, 40, {0, 0, 1})[1];
     }},
    {"RodriguesRotEach",
     [] {
         RodriguesRotEach({matrix.data(), 3, 100}, {matrix.data(), 100}, {matrix.data(), 3, 100},
                          {inverse.data(), 3, 100});
     }},
    {"AcTan, AngleOf2Vecs",
     [] {
         real = AcTan(1, 3) + AngleOf2Vecs({1, 2, 3}, {3, 2, 1}) + AcSin(0.3);
     }},
    {"SerExp, CubRt", [] { real = SerExp(0.3) + CubRt(7.0); }},
    {"SinCosEach",
     [] {
         Elementary::SinCosEach({matrix.data(), 500}, {inverse.data(), 500}, {});
     }},
    {"accurate phases", ComputeSlowly},
};

void* RunRow(void* row) {
    static_cast<const Row*>(row)->call();
    return nullptr;
}

// How many bytes of its stack a thread has used that makes one call.
std::size_t StackOf(const Row& row) {
    void* const stack = mmap(nullptr, kPainted, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    std::memset(stack, kPaint, kPainted);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack, kPainted);
    pthread_t thread;
    Row copy = row;
    EXPECT_EQ(pthread_create(&thread, &attributes, RunRow, &copy), 0);
    pthread_join(thread, nullptr);
    const auto* bytes = static_cast<const unsigned char*>(stack);
    std::size_t unused = 0;
    while (unused < kPainted && bytes[unused] == kPaint) ++unused;
    munmap(stack, kPainted);
    return kPainted - unused;
}

TEST(Stack, EveryProcedureRunsOnTheSmallestThread) {
#if !defined(__OPTIMIZE__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "frames are larger without optimisation and with sanitizers";
#endif
    const test::TemporaryFolder folder;
    input = folder / "in";
    output = folder / "out";
    for (int i = 0; i < 600; ++i) {
        numbers += "9";
        csv += i % 7 == 6 ? "," : i % 7 == 3 ? "." : "0";
    }
    numbers = "1." + numbers + "e-300";
    test::WriteFile(input, "QZ_MOIC 1.5 " + numbers.substr(0, 400) + "\nQZ_DMA_ON\n");
    ReadHardArguments();
    for (const Row& row : kRows) {
        row.call();  // binds symbols, which needs a stack of its own
        const std::size_t used = StackOf(row);
        EXPECT_LE(used, kSmallest) << row.name;
        std::printf("%-22s %6zu bytes\n", row.name, used);
    }
}

}  // namespace
}  // namespace corvale
