// Many small matrices: one call for all of them beside a call for each. Series/Each and
// Series/Single are Cholesky with inverse and solution, SeriesInverse the inverse of general
// matrices with pivots, by order; SeriesTurn is RodriguesRot. 1,000 of them stay in the cache.
#include <corvale/numeric/GenFunctions.hpp>

#include "reference/inputs/MatrixKinds.hpp"

#include <benchmark/benchmark.h>
#include <algorithm>
#include <vector>

namespace corvale::bench {
namespace {

using reference::Matrix;

constexpr std::int32_t kCount = 1000;

// `kCount` matrices of an order, and a vector for each.
struct Given {
    explicit Given(std::int32_t n, bool isDefinite) : order(n) {
        const Matrix definite = reference::PositiveDefinite(n);
        for (std::int32_t i = 0; i < kCount; ++i) {
            const Matrix matrix = isDefinite ? reference::Scaled(definite, 1.0 + 1e-3 * i)
                                             : reference::RandomMatrix(n, n, i);
            a.insert(a.end(), matrix.begin(), matrix.end());
            const Matrix vector = reference::RandomMatrix(n, 1, i);
            b.insert(b.end(), vector.begin(), vector.end());
        }
        inverse.resize(a.size());
        x.resize(b.size());
    }
    [[nodiscard]] std::size_t Square(std::int32_t i) const {
        return static_cast<std::size_t>(i * order * order);
    }
    [[nodiscard]] std::size_t Vector(std::int32_t i) const {
        return static_cast<std::size_t>(i * order);
    }
    std::int32_t order;
    Matrix a, b, inverse, x;
};

void Run(benchmark::State& state, bool isDefinite, void (*work)(Given&)) {
    Given given(static_cast<std::int32_t>(state.range(0)), isDefinite);
    for (auto _ : state) {
        work(given);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}

void SolveEach(Given& g) {
    const std::int32_t n = g.order;
    GenFunctions::CholeskyEach({g.a.data(), n, n, kCount}, {g.b.data(), n, kCount},
                               {g.inverse.data(), n, n, kCount}, {g.x.data(), n, kCount});
}
void SolveSingle(Given& g) {
    for (std::int32_t i = 0; i < kCount; ++i)
        GenFunctions::Cholesky(&g.a[g.Square(i)], &g.b[g.Vector(i)], g.order,
                               &g.inverse[g.Square(i)], &g.x[g.Vector(i)]);
}
void InvertEach(Given& g) {
    const std::int32_t n = g.order;
    GenFunctions::MtxInvEach({g.a.data(), n, n, kCount}, {g.inverse.data(), n, n, kCount});
}
void InvertSingle(Given& g) {
    for (std::int32_t i = 0; i < kCount; ++i)
        GenFunctions::MtxInv({&g.a[g.Square(i)], g.order, g.order},
                             {&g.inverse[g.Square(i)], g.order, g.order});
}

// Vectors turned about axes: SeriesTurn.
struct Turns {
    Turns()
        : v(reference::RandomMatrix(3, kCount, 1)),
          k(reference::RandomMatrix(3, kCount, 2)),
          angles(reference::Scaled(reference::RandomMatrix(1, kCount, 3), 360.0)),
          result(v.size()) {}
    Matrix v, k, angles, result;
};
void TurnEach(Turns& t) {
    GenFunctions::RodriguesRotEach({t.v.data(), 3, kCount}, {t.angles.data(), kCount},
                                   {t.k.data(), 3, kCount}, {t.result.data(), 3, kCount});
}
void TurnSingle(Turns& t) {
    for (std::size_t i = 0; i < t.angles.size(); ++i) {
        const double *v = &t.v[3 * i], *k = &t.k[3 * i];
        const auto turned =
            GenFunctions::RodriguesRot({v[0], v[1], v[2]}, t.angles[i], {k[0], k[1], k[2]});
        std::copy(turned.begin(), turned.end(), &t.result[3 * i]);
    }
}
void RunTurns(benchmark::State& state, void (*work)(Turns&)) {
    Turns turns;
    for (auto _ : state) {
        work(turns);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kCount);
}

void Orders(benchmark::internal::Benchmark* bench) {
    for (const int n : {1, 2, 3, 4, 6, 8, 10, 12, 16}) bench->Arg(n);
}

BENCHMARK_CAPTURE(Run, each, true, SolveEach)->Name("Series/Each")->Apply(Orders);
BENCHMARK_CAPTURE(Run, single, true, SolveSingle)->Name("Series/Single")->Apply(Orders);
BENCHMARK_CAPTURE(Run, each, false, InvertEach)->Name("SeriesInverse/Each")->Apply(Orders);
BENCHMARK_CAPTURE(Run, single, false, InvertSingle)->Name("SeriesInverse/Single")->Apply(Orders);
BENCHMARK_CAPTURE(RunTurns, each, TurnEach)->Name("SeriesTurn/Each");
BENCHMARK_CAPTURE(RunTurns, single, TurnSingle)->Name("SeriesTurn/Single");

}  // namespace
}  // namespace corvale::bench
