// Prints as JSON how many blocks of memory each procedure takes: in its first call, and in each of
// those after it. All allocations of the process are counted, whichever function they come through.
#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>
#include <corvale/numeric/GenFunctions.hpp>
#include <corvale/sorting/Sorting.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

// glibc's own names of the functions that are replaced below.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {
long gAllocations = 0;
}

extern "C" {
void* malloc(std::size_t size) {
    ++gAllocations;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    ++gAllocations;
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) {
    ++gAllocations;
    return __libc_realloc(block, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    ++gAllocations;
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = aligned_alloc(alignment, size);
    return *block ? 0 : ENOMEM;
}
}

namespace {

namespace gen = corvale::GenFunctions;
namespace str = corvale::StrFunctions;
using Square = gen::MatrixView<double>;

constexpr int kCalls = 100;
constexpr std::int32_t kMost = 10'000;

std::array<char, 512> gText{};
std::array<char, 512> gResult{};
std::array<double, 3> gVector = {1, 2, 3};
std::int32_t gOne = 0, gTwo = 0;
double gReal = 0, gOther = 0;
std::vector<double> gMatrix(100 * 100), gInverse(100 * 100), gRight(100), gSolution(100),
    gPacked(5050);
std::vector<corvale::Sorting::Key> gKeys(kMost);
std::vector<std::int64_t> gCompanion(kMost);
std::vector<std::int32_t> gList(kMost);
std::string gCards, gLog;

std::string_view Text(std::string_view text) {
    gText.fill(' ');
    text.copy(gText.data(), text.size());
    return {gText.data(), gText.size()};
}

// A positive definite matrix of that order.
const double* Matrix(std::int32_t n) {
    for (std::int32_t i = 0; i < n * n; ++i)
        gMatrix[static_cast<std::size_t>(i)] = i % (n + 1) == 0 ? n + 1.0 : 0.5;
    return gMatrix.data();
}
void Solve(std::int32_t n) {
    gen::Cholesky(Matrix(n), gRight.data(), n, gInverse.data(), gSolution.data());
}
void Invert(std::int32_t n) {
    gen::MtxInv({Matrix(n), n, n}, Square(gInverse.data(), n, n));
}

void SolveEach(std::int32_t n) {
    gen::CholeskyEach({{Matrix(n), n, n}, 0, 100}, {{gRight.data(), n}, 0, 100},
                      {{gInverse.data(), n, n}, 0, 100}, {{gSolution.data(), n}, 0, 100});
}

void Sort(std::int32_t n) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
        gKeys[i].fill(static_cast<char>('A' + i * 7919 % 26));
        gCompanion[i] = static_cast<std::int64_t>(i);
    }
    corvale::Sorting::QuickSortIterative(n, gKeys.data(), gCompanion.data());
}
void ThinOut(std::int32_t n) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i)
        gList[i] = static_cast<std::int32_t>(1 + i * 7919 % static_cast<std::size_t>(n / 2));
    gen::ISort(1, gList.data(), n);
}

struct Call {
    const char* area;
    const char* name;
    void (*run)();
};

#define CALL(area, name, ...)           \
    Call {                              \
        area, name, [] { __VA_ARGS__; } \
    }

const Call kCallTable[] = {
    CALL("text", "ToUpperCase", str::ToUpperCase(Text("abc"), gResult)),
    CALL("text", "NullToSpace", str::NullToSpace(gText)),
    CALL("text", "BlankToZeroChar", str::BlankToZeroChar(gText)),
    CALL("text", "IsBlankOrNull", gOne = str::IsBlankOrNull(Text(""))),
    CALL("text", "ReplaceString", str::ReplaceString(Text("a\\b"), "\\", "/", gResult)),
    CALL("text", "RemSpaceSlashChars", str::RemSpaceSlashChars(Text("1 / 2"), gResult)),
    CALL("text", "GetInputStr", str::GetInputStr(Text("name = value"), gResult)),
    CALL("numbers", "StrToReal", gReal = str::StrToReal("  -12.5E2")),
    CALL("numbers", "StrToReal, 40 digits",
         gReal = str::StrToReal("1234567890.123456789012345678901234567890")),
    CALL("numbers", "StrTo2Reals", str::StrTo2Reals("1.5 2.5", gReal, gOther)),
    CALL("numbers", "StrToInt", gOne = str::StrToInt("   12")),
    CALL("numbers", "StrTo2Ints", str::StrTo2Ints("1 2", gOne, gTwo)),
    CALL("numbers", "InputStrToNumStr", str::InputStrToNumStr("time = 1.5 min", gReal, gResult)),
    CALL("numbers", "Fx0ToAx", str::Fx0ToAx(0.123456789, 12, gResult)),
    CALL("numbers", "Fx0ToAx, 1e300", str::Fx0ToAx(1e300, 400, gResult)),
    CALL("numbers", "Fx0ToSignAx", str::Fx0ToSignAx(0.123456789, 12, gResult)),
    CALL("numbers", "CompressCsvLine", Text(" 1.500000000000000E+000,2.000");
         str::CompressCsvLine(gText)),
    CALL("angles", "FMod2P", gReal = gen::FMod2P(100)),
    CALL("angles", "AcTan", gReal = gen::AcTan(1, 2)),
    CALL("angles", "DegToDDMMSSSSS_Str", gResult[0] = gen::DegToDDMMSSSSS_Str(12.5)[0]),
    CALL("angles", "DegToHHMMSSS_Str", gResult[0] = gen::DegToHHMMSSS_Str(12.5)[0]),
    CALL("vectors", "Mag", gReal = gen::Mag(gVector)),
    CALL("vectors", "Cross", gVector = gen::Cross(gVector, gVector)),
    CALL("vectors", "AngleOf2Vecs", gReal = gen::AngleOf2Vecs(gVector, gVector)),
    CALL("vectors", "Rotate", gVector = gen::Rotate(gVector, 3, 1)),
    CALL("vectors", "RodriguesRot", gVector = gen::RodriguesRot(gVector, 1, {0, 0, 1})),
    CALL("codes", "NumToAlpha5", gResult[0] = gen::NumToAlpha5(100'000)[0]),
    CALL("codes", "Alpha5ToNum", gOne = gen::Alpha5ToNum("A0000")),
    CALL("codes", "CkSum", gen::CkSum(Text("1 2"), 1, 68, gOne, gTwo)),
    CALL("keys", "SatKeyToAddr", gReal = static_cast<double>(gen::SatKeyToAddr(12))),
    CALL("keys", "NextSatKey", gReal = static_cast<double>(gen::NextSatKey(12))),
    CALL("keys", "IsDma", gOne = gen::IsDma(12)),
    CALL("keys", "SetElsetKeyMode", gOne = SetElsetKeyMode(0)),
    CALL("keys", "GetElsetKeyMode", gOne = GetElsetKeyMode()),
    CALL("messages", "TraceLogError, no log open", corvale::FileIO::TraceLogError("a message")),
    CALL("messages", "GetLastErrMsg", GetLastErrMsg(gResult.data())),
    CALL("messages", "CorvaleGetInfo", CorvaleGetInfo(gResult.data())),
    CALL("files", "OpenLogFile, LogMessage, CloseLogFile", OpenLogFile(gLog.c_str());
         LogMessage("a line"); CloseLogFile()),
    CALL("files", "CorvaleLoadFile", gOne = CorvaleLoadFile(gCards.c_str())),
    CALL("files", "GetMOICData", GetMOICData(CORVALE_MOIC_COUNT, gMatrix.data())),
    CALL("matrices", "Cholesky, order 6", Solve(6)),
    CALL("matrices", "Cholesky, order 16", Solve(16)),
    CALL("matrices", "Cholesky, order 100", Solve(100)),
    CALL("matrices", "CholeskyEach, 100 of order 16", SolveEach(16)),
    CALL("matrices", "MtxInv, order 6", Invert(6)),
    CALL("matrices", "MtxInv, order 16", Invert(16)),
    CALL("matrices", "MtxInv, order 100", Invert(100)),
    CALL("matrices", "Lta2SqrMtx, order 100",
         gen::Lta2SqrMtx(gen::VectorView<const double>(gPacked.data(), 5050),
                         Square(gInverse.data(), 100, 100))),
    CALL("lists and sorting", "ISort, 30 integers", ThinOut(30)),
    CALL("lists and sorting", "ISort, 10,000 integers", ThinOut(10'000)),
    CALL("lists and sorting", "FindRecIdx", gOne = gen::FindRecIdx(gVector.data(), 3, 1.5)),
    CALL("lists and sorting", "QuickSortIterative, 100 keys", Sort(100)),
    CALL("lists and sorting", "QuickSortIterative, 10,000 keys", Sort(10'000)),
};

// Blocks taken by that many calls.
long Count(void (*run)(), int calls) {
    const long before = gAllocations;
    for (int i = 0; i < calls; ++i) run();
    return gAllocations - before;
}

}  // namespace

int main() {
    gCards = "corvale-cards-" + std::to_string(getpid());
    gLog = "corvale-log-" + std::to_string(getpid());
    if (std::FILE* file = std::fopen(gCards.c_str(), "w")) {
        std::fputs("QZ_MOIC 1.5 2.5\nQZ_DMA_ON\n", file);
        std::fclose(file);
    }
    std::puts("[");
    for (const Call& call : kCallTable) {
        const long first = Count(call.run, 1);
        const double later = static_cast<double>(Count(call.run, kCalls)) / kCalls;
        std::printf("{\"area\": \"%s\", \"name\": \"%s\", \"first\": %ld, \"later\": %g}%s\n",
                    call.area, call.name, first, later,
                    &call == std::end(kCallTable) - 1 ? "" : ",");
    }
    std::puts("]");
    std::remove(gCards.c_str());
    std::remove(gLog.c_str());
}
