// The elementary functions and the procedures that need one, with typical arguments, beside the
// same with the functions of two C libraries: Topic/Peer. Those are off by a unit in the last place
// now and then; their results are compared first, to the accuracy that they promise.
#include <corvale/numeric/Elementary.hpp>
#include <corvale/numeric/GenFunctions.hpp>

#include "CLibraries.hpp"

#include <benchmark/benchmark.h>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace {

namespace gen = corvale::GenFunctions;
namespace own = corvale::Elementary;
using gen::Vector3;

constexpr std::size_t kMany = 4096;

std::vector<double> Uniform(double low, double high, std::uint32_t seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> number(low, high);
    std::vector<double> numbers(kMany);
    for (double& x : numbers) x = number(random);
    return numbers;
}

std::vector<Vector3> Vectors(std::uint32_t seed) {
    const std::vector<double> components = Uniform(-3, 3, seed);
    std::vector<Vector3> vectors(kMany);
    for (std::size_t i = 0; i < kMany; ++i)
        vectors[i] = {components[i], components[(i + 1) % kMany], components[(i + 2) % kMany]};
    return vectors;
}

bool AreNear(double a, double b) {
    return std::fabs(a - b) <= 4e-15 * std::fabs(a);
}
bool AreNear(const Vector3& a, const Vector3& b) {
    for (std::size_t i = 0; i < 3; ++i)
        if (std::fabs(a[i] - b[i]) > 1e-14) return false;
    return true;
}

// Times `call` for every index of the inputs; `model` is our own.
template <class Call, class Model>
void Race(benchmark::State& state, const Call& call, const Model& model) {
    for (std::size_t i = 0; i < kMany; ++i)
        if (!AreNear(model(i), call(i))) return state.SkipWithError("differs");
    for (auto _ : state)
        for (std::size_t i = 0; i < kMany; ++i) {
            auto result = call(i);
            benchmark::DoNotOptimize(result);
        }
    state.SetItemsProcessed(state.iterations() * std::ssize(std::array<char, kMany>{}));
}

template <class Function>
void OfNumber(benchmark::State& state, Function* function, Function* model, double low,
              double high) {
    const std::vector<double> x = Uniform(low, high, 1);
    Race(
        state, [&](std::size_t i) { return function(x[i]); },
        [&](std::size_t i) { return model(x[i]); });
}

template <class Function>
void OfPair(benchmark::State& state, Function* function, Function* model) {
    const std::vector<double> y = Uniform(-3, 3, 2), x = Uniform(-3, 3, 3);
    Race(
        state, [&](std::size_t i) { return function(y[i], x[i]); },
        [&](std::size_t i) { return model(y[i], x[i]); });
}

template <class Function>
void OfVectors(benchmark::State& state, Function* function, Function* model) {
    const std::vector<Vector3> a = Vectors(4), b = Vectors(5);
    Race(
        state, [&](std::size_t i) { return function(a[i], b[i]); },
        [&](std::size_t i) { return model(a[i], b[i]); });
}

template <class Function>
void TurnAboutAxis(benchmark::State& state, Function* function, Function* model) {
    const std::vector<Vector3> v = Vectors(4);
    const std::vector<double> radians = Uniform(-6.3, 6.3, 6);
    Race(
        state, [&](std::size_t i) { return function(v[i], 3, radians[i]); },
        [&](std::size_t i) { return model(v[i], 3, radians[i]); });
}

template <class Function>
void TurnAboutVector(benchmark::State& state, Function* function, Function* model) {
    const std::vector<Vector3> v = Vectors(4);
    std::vector<Vector3> k = Vectors(5);
    for (Vector3& axis : k) axis = gen::UnitVec(axis);
    const std::vector<double> degrees = Uniform(-360, 360, 7);
    Race(
        state, [&](std::size_t i) { return function(v[i], degrees[i], k[i]); },
        [&](std::size_t i) { return model(v[i], degrees[i], k[i]); });
}

// One workload for us and for each peer; `...` are the limits of the arguments, where there are any.
#define CORVALE_RACE(name, workload, ours, ...)                                      \
    BENCHMARK_CAPTURE(workload, , ours::name, ours::name __VA_OPT__(, ) __VA_ARGS__) \
        ->Name("Elementary " #name "/Corvale");                                      \
    BENCHMARK_CAPTURE(workload, , peer::Procedures<peer::Glibc>::name,               \
                      ours::name __VA_OPT__(, ) __VA_ARGS__)                         \
        ->Name("Elementary " #name "/glibc");                                        \
    BENCHMARK_CAPTURE(workload, , peer::Procedures<peer::Musl>::name,                \
                      ours::name __VA_OPT__(, ) __VA_ARGS__)                         \
        ->Name("Elementary " #name "/musl")

CORVALE_RACE(AcTan, OfPair, gen);
CORVALE_RACE(AcSin, OfNumber, gen, -1, 1);
CORVALE_RACE(AngleOf2Vecs, OfVectors, gen);
CORVALE_RACE(Rotate, TurnAboutAxis, gen);
CORVALE_RACE(RodriguesRot, TurnAboutVector, gen);
CORVALE_RACE(CubRt, OfNumber, gen, 1, 1e6);
CORVALE_RACE(SerExp, OfNumber, gen, 0.01, 0.75);
CORVALE_RACE(Sin, OfNumber, own, -6.3, 6.3);
CORVALE_RACE(Cos, OfNumber, own, -6.3, 6.3);
CORVALE_RACE(ArcTan, OfNumber, own, -10, 10);
CORVALE_RACE(ArcTan2, OfPair, own);
CORVALE_RACE(ArcCos, OfNumber, own, -1, 1);
CORVALE_RACE(Exp, OfNumber, own, -10, 10);
CORVALE_RACE(CubeRoot, OfNumber, own, 1, 1e6);

}  // namespace
