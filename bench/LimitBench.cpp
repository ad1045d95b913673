// Lower limits that no program on this machine can beat, named Limit/What: the tables show them
// beside the figures. And the getters of the C API, which should cost little more than a call.
#include <corvale/Corvale.h>

#include <benchmark/benchmark.h>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

// The arithmetic alone, four doubles a register: multiplications and additions apart, as
// the order of operations asks, in enough independent chains to keep every unit busy. An item is a flop.
void Flops(benchmark::State& state) {
    using Quad = double __attribute__((vector_size(32)));
    constexpr int kChains = 12;
    constexpr int kSteps = 1000;
    double one = 1.0;
    benchmark::DoNotOptimize(one);
    const Quad factor = {one, one, one, one};
    std::array<Quad, kChains> sums{};
    for (auto _ : state) {
        for (int step = 0; step < kSteps; ++step)
            for (Quad& sum : sums) sum = sum * factor + factor;
        benchmark::DoNotOptimize(sums);
    }
    state.SetItemsProcessed(state.iterations() * kSteps * kChains * 8);
}
BENCHMARK(Flops)->Name("Limit/flops");

// A number of 16 characters read or written: its bytes once, and the two long products that an exact
// conversion takes.
void Products(benchmark::State& state) {
    __extension__ using Wide = unsigned __int128;
    std::mt19937_64 random(7);
    std::vector<std::array<std::uint64_t, 2>> numbers(20000);
    for (auto& number : numbers) number = {random(), random()};
    for (auto _ : state)
        for (const auto& [low, high] : numbers) {
            const Wide first = Wide{low} * 0xcccccccccccccccd;
            const auto middle = static_cast<std::uint64_t>(first >> 64) ^ high;
            const Wide second = Wide{middle} * 0xa3d70a3d70a3d70b;
            benchmark::DoNotOptimize(static_cast<std::uint64_t>(second >> 64));
        }
    state.SetItemsProcessed(state.iterations() * std::ssize(numbers));
}
BENCHMARK(Products)->Name("Limit/number");

// A call into the library and back that does nothing.
void Call(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(CorvaleInit());
}
BENCHMARK(Call)->Name("Limit/call");

void Mode(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(GetElsetKeyMode());
}
BENCHMARK(Mode)->Name("GetElsetKeyMode/Corvale");

template <void (*Get)(char*)>
void Message(benchmark::State& state) {
    std::array<char, CORVALE_MESSAGE_WIDTH> text;
    for (auto _ : state) {
        Get(text.data());
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(Message<GetLastErrMsg>)->Name("GetLastErrMsg/Corvale");
BENCHMARK(Message<CorvaleGetInfo>)->Name("CorvaleGetInfo/Corvale");

void Copy(benchmark::State& state, std::size_t size) {
    const std::vector<char> text(size, 'x');
    std::vector<char> result(size);
    benchmark::DoNotOptimize(size);
    for (auto _ : state) {
        std::memcpy(result.data(), text.data(), size);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(Copy, , 479)->Name("Limit/row");

// One reading and writing of n keys of 32 characters with their companions; an item is a key.
void Pass(benchmark::State& state) {
    Copy(state, static_cast<std::size_t>(40 * state.range(0)));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Pass)->Name("Limit/pass")->RangeMultiplier(10)->Range(10, 10'000'000);

// One reading and writing of n integers; an item is an integer.
void Integers(benchmark::State& state) {
    Copy(state, static_cast<std::size_t>(4 * state.range(0)));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Integers)->Name("Limit/integers")->RangeMultiplier(10)->Range(100, 1'000'000);

}  // namespace
