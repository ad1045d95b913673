// Matrices side by side: Corvale, plain loops, Eigen, the reference LAPACK, OpenBLAS on one thread.
// Cholesky is factor, solution and inverse; MtxInv and MInv the inverse of a general matrix, MInv
// on a positive definite one. Packed is measured against memcpy of the square.
#include <corvale/numeric/GenFunctions.hpp>

#include "EigenMatrices.hpp"
#include "reference/Cholesky.hpp"
#include "reference/MatrixInversion.hpp"
#include "reference/inputs/MatrixKinds.hpp"

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <vector>

extern "C" {
using Int = std::int32_t;
void dpotrf_(const char*, const Int*, double*, const Int*, Int*);
void dpotrs_(const char*, const Int*, const Int*, const double*, const Int*, double*, const Int*,
             Int*);
void dpotri_(const char*, const Int*, double*, const Int*, Int*);
void dgetrf_(const Int*, const Int*, double*, const Int*, Int*, Int*);
void dgetri_(const Int*, double*, const Int*, const Int*, double*, const Int*, Int*);
}

namespace corvale::bench {
namespace {

using reference::Matrix;

struct Lapack {
    decltype(&dpotrf_) potrf = dpotrf_;
    decltype(&dpotrs_) potrs = dpotrs_;
    decltype(&dpotri_) potri = dpotri_;
    decltype(&dgetrf_) getrf = dgetrf_;
    decltype(&dgetri_) getri = dgetri_;
};

template <class Function>
void Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(library ? dlsym(library, name) : nullptr);
}

Lapack LoadOpenBlas() {
    void* library = dlopen(CORVALE_OPENBLAS, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    Lapack lapack;
    Find(library, "dpotrf_", lapack.potrf);
    Find(library, "dpotrs_", lapack.potrs);
    Find(library, "dpotri_", lapack.potri);
    Find(library, "dgetrf_", lapack.getrf);
    Find(library, "dgetri_", lapack.getri);
    void (*setThreads)(int);
    Find(library, "openblas_set_num_threads", setThreads);
    if (setThreads) setThreads(1);
    return lapack;
}

const Lapack& Reference() {
    static const Lapack lapack;
    return lapack;
}
const Lapack& OpenBlas() {
    static const Lapack lapack = LoadOpenBlas();
    return lapack;
}

using Solver = void (*)(const double*, const double*, Int, double*, double*);
using Inverter = void (*)(const double*, Int, double*);

template <const Lapack& (*get)()>
void LapackCholesky(const double* a, const double* b, Int n, double* inverse, double* x) {
    const Lapack& lapack = get();
    const Int one = 1;
    Int info = 0;
    const auto order = static_cast<std::size_t>(n);
    std::copy(a, a + order * order, inverse);
    std::copy(b, b + n, x);
    lapack.potrf("U", &n, inverse, &n, &info);
    lapack.potrs("U", &n, &one, inverse, &n, x, &n, &info);
    lapack.potri("U", &n, inverse, &n, &info);
    for (std::size_t j = 0; j < order; ++j)
        for (std::size_t i = 0; i < j; ++i) inverse[i * order + j] = inverse[j * order + i];
}

template <const Lapack& (*get)()>
void LapackInverse(const double* a, Int n, double* result) {
    thread_local std::vector<Int> pivots;
    thread_local Matrix work;
    const Int size = 64 * n;
    Int info = 0;
    pivots.resize(static_cast<std::size_t>(n));
    work.resize(static_cast<std::size_t>(size));
    std::copy(a, a + std::ptrdiff_t{n} * n, result);
    get().getrf(&n, &n, result, &n, pivots.data(), &info);
    get().getri(&n, result, &n, pivots.data(), work.data(), &size, &info);
}

void CorvaleCholesky(const double* a, const double* b, Int n, double* inverse, double* x) {
    GenFunctions::Cholesky(a, b, n, inverse, x);
}
void CorvaleCholesky2(const double* a, const double* b, Int n, double* inverse, double* x) {
    GenFunctions::Cholesky2(a, b, n, inverse, x);
}
void CorvaleMtxInv(const double* a, Int n, double* result) {
    GenFunctions::MtxInv(GenFunctions::MatrixView<const double>(a, n, n),
                         GenFunctions::MatrixView<double>(result, n, n));
}
void CorvaleMInv(const double* a, Int n, double* result) {
    GenFunctions::MInv(GenFunctions::MatrixView<const double>(a, n, n),
                       GenFunctions::MatrixView<double>(result, n, n));
}

bool Agree(const Matrix& one, const Matrix& other) {
    double largest = 0.0, difference = 0.0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        largest = std::max(largest, std::fabs(one[i]));
        difference = std::max(difference, std::fabs(one[i] - other[i]));
    }
    return difference <= 1e-6 * largest;  // the peers round differently
}

/// The matrix of an order, made once: that takes longer than most of what is measured.
template <Matrix (*make)(Int)>
const Matrix& Given(Int n) {
    static std::map<Int, Matrix> made;
    Matrix& matrix = made[n];
    if (matrix.empty()) matrix = make(n);
    return matrix;
}

template <Solver solve>
void SolveAndInvert(benchmark::State& state) {
    const auto n = static_cast<Int>(state.range(0));
    const Matrix& a = Given<reference::PositiveDefinite>(n);
    const Matrix b = reference::RandomMatrix(n, 1, n);
    Matrix inverse(a.size()), x(b.size()), wanted(a.size()), wantedX(b.size());
    CorvaleCholesky(a.data(), b.data(), n, wanted.data(), wantedX.data());
    solve(a.data(), b.data(), n, inverse.data(), x.data());
    if (!Agree(wanted, inverse) || !Agree(wantedX, x)) return state.SkipWithError("disagrees");
    for (auto _ : state) {
        solve(a.data(), b.data(), n, inverse.data(), x.data());
        benchmark::ClobberMemory();
    }
}

template <Inverter invert, Matrix (*make)(Int)>
void Invert(benchmark::State& state) {
    const auto n = static_cast<Int>(state.range(0));
    const Matrix& a = Given<make>(n);
    Matrix result(a.size()), wanted(a.size());
    CorvaleMtxInv(a.data(), n, wanted.data());
    invert(a.data(), n, result.data());
    if (!Agree(wanted, result)) return state.SkipWithError("disagrees");
    for (auto _ : state) {
        invert(a.data(), n, result.data());
        benchmark::ClobberMemory();
    }
}

enum class Move { kPack, kUnpack, kCopy };

template <Move move>
void Packed(benchmark::State& state) {
    const auto n = static_cast<Int>(state.range(0));
    Matrix a = reference::RandomMatrix(n, n, n), other(a.size());
    const GenFunctions::MatrixView<double> square(a.data(), n, n);
    Matrix packed(static_cast<std::size_t>(GenFunctions::SizeOfLta(square)));
    const GenFunctions::VectorView<double> view(packed.data(), static_cast<Int>(packed.size()));
    for (auto _ : state) {
        if (move == Move::kPack) GenFunctions::SqrMtx2Lta(square, view);
        if (move == Move::kUnpack) GenFunctions::Lta2SqrMtx(view, square);
        if (move == Move::kCopy) std::memcpy(other.data(), a.data(), a.size() * sizeof(double));
        benchmark::ClobberMemory();
    }
}

void Orders(benchmark::internal::Benchmark* bench) {
    for (const Int n : {3, 6, 10, 16, 32, 64, 100, 128, 200, 300, 500, 512, 1000}) bench->Arg(n);
}
void PackedOrders(benchmark::internal::Benchmark* bench) {
    for (const Int n : {6, 32, 100, 128, 200, 300, 500, 512, 1000}) bench->Arg(n);
}

BENCHMARK(SolveAndInvert<CorvaleCholesky>)->Name("Cholesky/Corvale")->Apply(Orders);
BENCHMARK(SolveAndInvert<CorvaleCholesky2>)->Name("Cholesky/Corvale2")->Apply(Orders);
BENCHMARK(SolveAndInvert<reference::Cholesky>)->Name("Cholesky/plain")->Apply(Orders);
BENCHMARK(SolveAndInvert<EigenCholesky>)->Name("Cholesky/Eigen")->Apply(Orders);
BENCHMARK(SolveAndInvert<LapackCholesky<OpenBlas>>)->Name("Cholesky/OpenBLAS")->Apply(Orders);
BENCHMARK(SolveAndInvert<LapackCholesky<Reference>>)->Name("Cholesky/LAPACK")->Apply(Orders);
BENCHMARK(Invert<CorvaleMtxInv, reference::Random>)->Name("Inverse/Corvale")->Apply(Orders);
BENCHMARK(Invert<CorvaleMInv, reference::PositiveDefinite>)
    ->Name("Inverse/CorvaleMInv")
    ->Apply(Orders);
BENCHMARK(Invert<reference::MtxInv, reference::Random>)->Name("Inverse/plain")->Apply(Orders);
BENCHMARK(Invert<reference::MInv, reference::PositiveDefinite>)
    ->Name("Inverse/plainMInv")
    ->Apply(Orders);
BENCHMARK(Invert<EigenInverse, reference::Random>)->Name("Inverse/Eigen")->Apply(Orders);
BENCHMARK(Invert<LapackInverse<OpenBlas>, reference::Random>)
    ->Name("Inverse/OpenBLAS")
    ->Apply(Orders);
BENCHMARK(Invert<LapackInverse<Reference>, reference::Random>)
    ->Name("Inverse/LAPACK")
    ->Apply(Orders);
BENCHMARK(Packed<Move::kPack>)->Name("Packed/SqrMtx2Lta")->Apply(PackedOrders);
BENCHMARK(Packed<Move::kUnpack>)->Name("Packed/Lta2SqrMtx")->Apply(PackedOrders);
BENCHMARK(Packed<Move::kCopy>)->Name("Packed/memcpy")->Apply(PackedOrders);

}  // namespace
}  // namespace corvale::bench
