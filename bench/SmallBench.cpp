// The small numeric procedures beside their peers: Topic/Peer. What a peer answers is compared
// first. Vectors by Eigen stand in a shared library as ours do: what is compared is the work, not
// the call; "inline" shows what a caller gains who compiles the work in.
#include <corvale/numeric/GenFunctions.hpp>

#include "EigenVectors.hpp"
#include "reference/Angles.hpp"
#include "reference/IntegerLists.hpp"
#include "reference/SmallHelpers.hpp"

#include <benchmark/benchmark.h>
#include <hwy/contrib/sort/vqsort.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

extern "C" std::size_t rust_sort_dedup(std::int32_t* list, std::size_t n);

namespace {

namespace gen = corvale::GenFunctions;
namespace reference = corvale::reference;
using gen::Vector3;

constexpr std::size_t kMany = 4096;

// ---- satellite numbers

std::vector<std::int32_t> RandomNumbers() {
    std::mt19937 random(1);
    std::vector<std::int32_t> numbers(kMany);
    for (auto& number : numbers) number = static_cast<std::int32_t>(random() % 100000);
    return numbers;
}

std::array<char, 5> PrintNumber(std::int32_t number) {
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%05d", number);
    std::array<char, 5> code;
    std::memcpy(code.data(), text.data(), 5);
    return code;
}

template <std::array<char, 5> (*Write)(std::int32_t)>
void WriteNumbers(benchmark::State& state) {
    const auto numbers = RandomNumbers();
    for (const auto number : numbers)
        if (Write(number) != gen::NumToAlpha5(number)) return state.SkipWithError("differs");
    for (auto _ : state)
        for (const auto number : numbers) benchmark::DoNotOptimize(Write(number));
    state.SetItemsProcessed(state.iterations() * std::ssize(numbers));
}
BENCHMARK(WriteNumbers<gen::NumToAlpha5>)->Name("NumToAlpha5/Corvale");
BENCHMARK(WriteNumbers<PrintNumber>)->Name("NumToAlpha5/snprintf");

// Terminated, as strtol needs them.
std::int32_t ReadCode(const char* code) {
    return gen::Alpha5ToNum({code, 5});
}
std::int32_t ReadWithStrtol(const char* code) {
    return static_cast<std::int32_t>(std::strtol(code, nullptr, 10));
}

template <std::int32_t (*Read)(const char*)>
void ReadNumbers(benchmark::State& state) {
    std::vector<std::array<char, 6>> codes;
    for (const auto number : RandomNumbers()) {
        codes.push_back({});
        std::memcpy(codes.back().data(), gen::NumToAlpha5(number).data(), 5);
        if (Read(codes.back().data()) != number) return state.SkipWithError("differs");
    }
    for (auto _ : state)
        for (const auto& code : codes) benchmark::DoNotOptimize(Read(code.data()));
    state.SetItemsProcessed(state.iterations() * std::ssize(codes));
}
BENCHMARK(ReadNumbers<ReadCode>)->Name("Alpha5ToNum/Corvale");
BENCHMARK(ReadNumbers<ReadWithStrtol>)->Name("Alpha5ToNum/strtol");

// ---- degrees as text

std::vector<double> RandomDegrees(double low, double high) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> degree(low, high);
    std::vector<double> degrees(kMany);
    for (double& deg : degrees) deg = degree(random);
    return degrees;
}

template <class Write, class Plain>
void WriteDegrees(benchmark::State& state, double low, double high, Write write, Plain plain) {
    const auto degrees = RandomDegrees(low, high);
    for (const double deg : degrees) {
        const auto text = write(deg);
        if (std::string(text.begin(), text.end()) != plain(deg))
            return state.SkipWithError("differs");
    }
    // One character is used: a compiler may copy a text of 7 through memory so clumsily that the
    // copy takes longer than its making.
    for (auto _ : state)
        for (const double deg : degrees) benchmark::DoNotOptimize(write(deg)[5]);
    state.SetItemsProcessed(state.iterations() * std::ssize(degrees));
}
BENCHMARK_CAPTURE(WriteDegrees, , -90, 90, gen::DegToDDMMSSSSS_Str, reference::DegreeText)
    ->Name("DegToDDMMSSSSS_Str/Corvale");
BENCHMARK_CAPTURE(WriteDegrees, , -90, 90, reference::DegreeText, reference::DegreeText)
    ->Name("DegToDDMMSSSSS_Str/snprintf");
BENCHMARK_CAPTURE(WriteDegrees, , 0, 360, gen::DegToHHMMSSS_Str, reference::HourText)
    ->Name("DegToHHMMSSS_Str/Corvale");
BENCHMARK_CAPTURE(WriteDegrees, , 0, 360, reference::HourText, reference::HourText)
    ->Name("DegToHHMMSSS_Str/snprintf");

// ---- vectors

std::vector<Vector3> RandomVectors() {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> component(-3, 3);
    std::vector<Vector3> vectors(kMany);
    for (Vector3& v : vectors) v = {component(random), component(random), component(random)};
    return vectors;
}

bool AreNear(double a, double b) {
    return std::fabs(a - b) <= 1e-13;
}
bool AreNear(const Vector3& a, const Vector3& b) {
    return AreNear(a[0], b[0]) && AreNear(a[1], b[1]) && AreNear(a[2], b[2]);
}

template <class Operate, class Model>
void Vectors(benchmark::State& state, Operate operate, Model model) {
    const auto vectors = RandomVectors();
    for (std::size_t i = 1; i < vectors.size(); ++i)
        if (!AreNear(operate(vectors[i], vectors[i - 1]), model(vectors[i], vectors[i - 1])))
            return state.SkipWithError("differs");
    for (auto _ : state)
        for (std::size_t i = 1; i < vectors.size(); ++i) {
            auto result = operate(vectors[i], vectors[i - 1]);
            benchmark::DoNotOptimize(result);
        }
    state.SetItemsProcessed(state.iterations() * (std::ssize(vectors) - 1));
}

template <class Function>
auto OfFirst(Function* function) {
    return [function](const Vector3& a, const Vector3&) { return function(a); };
}
template <class Function>
auto OfBoth(Function* function) {
    return [function](const Vector3& a, const Vector3& b) { return function(a, b); };
}
template <class Function>
auto ByAngle(Function* function) {
    return [function](const Vector3& a, const Vector3& b) { return function(a, 3, b[0]); };
}
constexpr auto kMagInline = [](const Vector3& a, const Vector3&) { return eigen::View(a).norm(); };
constexpr auto kCrossInline = [](const Vector3& a, const Vector3& b) {
    return eigen::Stored(eigen::View(a).cross(eigen::View(b)));
};

BENCHMARK_CAPTURE(Vectors, , OfFirst(gen::Mag), OfFirst(gen::Mag))->Name("Mag/Corvale");
BENCHMARK_CAPTURE(Vectors, , OfFirst(eigen::Mag), OfFirst(gen::Mag))->Name("Mag/Eigen");
BENCHMARK_CAPTURE(Vectors, , kMagInline, OfFirst(gen::Mag))->Name("Mag/Eigen_inline");
BENCHMARK_CAPTURE(Vectors, , OfBoth(gen::Cross), OfBoth(gen::Cross))->Name("Cross/Corvale");
BENCHMARK_CAPTURE(Vectors, , OfBoth(eigen::Cross), OfBoth(gen::Cross))->Name("Cross/Eigen");
BENCHMARK_CAPTURE(Vectors, , kCrossInline, OfBoth(gen::Cross))->Name("Cross/Eigen_inline");
BENCHMARK_CAPTURE(Vectors, , ByAngle(gen::Rotate), ByAngle(gen::Rotate))->Name("Rotate/Corvale");
BENCHMARK_CAPTURE(Vectors, , ByAngle(eigen::Rotate), ByAngle(gen::Rotate))
    ->Name("Rotate/Eigen_AngleAxis");

// ---- integer lists: half the values occur more than once, among neighbours or far apart

using List = std::vector<std::int32_t>;

// Many different lists where they are short, so that the branch predictor learns none.
std::vector<List> RandomLists(std::int64_t length, std::uint32_t spread) {
    std::mt19937 random(4);
    std::vector<List> lists(static_cast<std::size_t>(std::max<std::int64_t>(1, 100'000 / length)),
                            List(static_cast<std::size_t>(length)));
    for (List& list : lists)
        for (auto& value : list)
            value =
                static_cast<std::int32_t>(1 + random() % (2 * list.size()) * spread % 0x7FFFFFFFU);
    return lists;
}

void SortUnique(std::int32_t, std::int32_t* list, std::int32_t& n) {
    std::sort(list, list + n);
    n = static_cast<std::int32_t>(std::unique(list, list + n) - list);
}
void VectorSortUnique(std::int32_t, std::int32_t* list, std::int32_t& n) {
    static hwy::Sorter sorter;
    sorter(list, static_cast<std::size_t>(n), hwy::SortAscending());
    n = static_cast<std::int32_t>(std::unique(list, list + n) - list);
}
void RustSortDedup(std::int32_t, std::int32_t* list, std::int32_t& n) {
    n = static_cast<std::int32_t>(rust_sort_dedup(list, static_cast<std::size_t>(n)));
}
template <void (*Dupe)(std::int32_t*, std::int32_t&)>
void InOrder(std::int32_t, std::int32_t* list, std::int32_t& n) {
    Dupe(list, n);
}

constexpr std::uint32_t kDense = 1;
constexpr std::uint32_t kSparse = 0x9E3779B1U;  // an odd factor: the values differ as before

template <void (*Process)(std::int32_t, std::int32_t*, std::int32_t&),
          std::uint32_t Spread = kDense>
void Lists(benchmark::State& state) {
    const std::vector<List> input = RandomLists(state.range(0), Spread);
    std::vector<List> lists = input;
    auto n = static_cast<std::int32_t>(state.range(0));
    auto count = n;
    List model = input[0];
    Process(1, lists[0].data(), n);
    SortUnique(1, model.data(), count);
    std::sort(lists[0].begin(), lists[0].begin() + n);
    if (n != count || !std::equal(lists[0].begin(), lists[0].begin() + n, model.begin()))
        return state.SkipWithError("differs");

    for (auto _ : state) {
        lists = input;  // the same copy for all
        for (List& list : lists) {
            n = static_cast<std::int32_t>(list.size());
            Process(1, list.data(), n);
        }
    }
    state.SetItemsProcessed(state.iterations() * std::ssize(lists) * state.range(0));
}
void Lengths(benchmark::internal::Benchmark* bench) {
    for (const int length : {30, 100, 1000, 10'000, 100'000, 1'000'000}) bench->Arg(length);
}
BENCHMARK(Lists<InOrder<gen::IDupe>>)->Name("IDupe/Corvale")->Apply(Lengths);
BENCHMARK(Lists<SortUnique>)->Name("IDupe/std_sort_unique")->Apply(Lengths);
BENCHMARK(Lists<InOrder<reference::IDupe>>)->Name("IDupe/plain")->Arg(30)->Arg(100)->Arg(10'000);
BENCHMARK(Lists<gen::ISort>)->Name("ISort/Corvale")->Apply(Lengths);
BENCHMARK(Lists<SortUnique>)->Name("ISort/std_sort_unique")->Apply(Lengths);
BENCHMARK(Lists<VectorSortUnique>)->Name("ISort/vqsort_unique")->Apply(Lengths);
#ifdef CORVALE_RUST_SORTS
BENCHMARK(Lists<RustSortDedup>)->Name("ISort/ipnsort_dedup")->Apply(Lengths);
#endif
BENCHMARK(Lists<InOrder<gen::IDupe>, kSparse>)->Name("IDupe_sparse/Corvale")->Apply(Lengths);
BENCHMARK(Lists<SortUnique, kSparse>)->Name("IDupe_sparse/std_sort_unique")->Apply(Lengths);
BENCHMARK(Lists<gen::ISort, kSparse>)->Name("ISort_sparse/Corvale")->Apply(Lengths);
BENCHMARK(Lists<SortUnique, kSparse>)->Name("ISort_sparse/std_sort_unique")->Apply(Lengths);
BENCHMARK(Lists<VectorSortUnique, kSparse>)->Name("ISort_sparse/vqsort_unique")->Apply(Lengths);
#ifdef CORVALE_RUST_SORTS
BENCHMARK(Lists<RustSortDedup, kSparse>)->Name("ISort_sparse/ipnsort_dedup")->Apply(Lengths);
#endif
BENCHMARK(Lists<reference::ISort>)->Name("ISort/plain")->Arg(30)->Arg(100)->Arg(10'000);

// ---- table search

enum class Spacing { Even, Jittered, Quadratic, Exponential };

std::vector<double> Table(Spacing spacing) {
    std::mt19937_64 random(5);
    std::vector<double> table(100'000);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto index = static_cast<double>(i);
        table[i] = spacing == Spacing::Exponential ? std::exp(index * 6e-3)
                   : spacing == Spacing::Quadratic ? index * index * 1e-3
                   : spacing == Spacing::Even      ? index * 0.25
                                              : index + static_cast<double>(random() % 1000) / 1001;
    }
    return table;
}

std::int32_t FindByBisection(const double* table, std::int32_t n, double value) {
    return static_cast<std::int32_t>(std::upper_bound(table, table + n, value) - table);
}

// Without a branch that depends on the table, and with both next values on their way.
std::int32_t FindBranchless(const double* table, std::int32_t n, double value) {
    const double* base = table;
    auto length = static_cast<std::size_t>(n);
    while (length > 1) {
        const std::size_t half = length / 2;
        __builtin_prefetch(base + half / 2 - 1);
        __builtin_prefetch(base + half + half / 2 - 1);
        base += (base[half - 1] <= value ? half : 0);
        length -= half;
    }
    return static_cast<std::int32_t>(base - table + (*base <= value ? 1 : 0));
}

template <class Find>
void Search(benchmark::State& state, Spacing spacing, Find find) {
    const auto table = Table(spacing);
    std::mt19937_64 random(6);
    std::vector<double> values(kMany);
    for (double& value : values) {
        const std::size_t index = random() % (table.size() - 1);
        value = table[index] + (table[index + 1] - table[index]) * 0.4;
    }
    const auto n = static_cast<std::int32_t>(table.size());
    for (const double value : values)
        if (find(table.data(), n, value) != FindByBisection(table.data(), n, value))
            return state.SkipWithError("differs");
    for (auto _ : state)
        for (const double value : values) benchmark::DoNotOptimize(find(table.data(), n, value));
    state.SetItemsProcessed(state.iterations() * std::ssize(values));
}
#define SEARCHES(spacing, name)                                                                 \
    BENCHMARK_CAPTURE(Search, , spacing, gen::FindRecIdx)->Name("FindRecIdx_" name "/Corvale"); \
    BENCHMARK_CAPTURE(Search, , spacing, FindByBisection)                                       \
        ->Name("FindRecIdx_" name "/upper_bound");                                              \
    BENCHMARK_CAPTURE(Search, , spacing, FindBranchless)->Name("FindRecIdx_" name "/branchless")

SEARCHES(Spacing::Even, "even");
SEARCHES(Spacing::Jittered, "jittered");
SEARCHES(Spacing::Quadratic, "quadratic");
SEARCHES(Spacing::Exponential, "exponential");
BENCHMARK_CAPTURE(Search, , Spacing::Even, reference::FindRecIdx)->Name("FindRecIdx_even/plain");

}  // namespace
