// The text operations on 512 characters, against a library call of memcpy for 512 bytes and, where
// characters are dropped, against a character loop.
#include <corvale/text/StrFunctions.hpp>

#include <benchmark/benchmark.h>
#include <array>
#include <cstring>
#include <random>
#include <string_view>

namespace {

using namespace corvale::StrFunctions;
struct alignas(64) Text : std::array<char, 512> {};

Text Mixed() {
    std::mt19937 random(512);
    Text text;
    for (char& c : text) c = "0123456789. /:-ab\\Z "[random() % 20];
    return text;
}
Text Blank() {
    Text text;
    text.fill(' ');
    return text;
}
std::string_view View(const Text& text) {
    return {text.data(), text.size()};
}

// The size is hidden from the compiler, so that the library's memcpy is called.
void Copy(benchmark::State& state) {
    const Text text = Mixed();
    Text result;
    std::size_t size = text.size();
    benchmark::DoNotOptimize(size);
    for (auto _ : state) {
        std::memcpy(result.data(), text.data(), size);
        benchmark::ClobberMemory();
    }
}

template <class Operation>
void Run(benchmark::State& state, Operation operation, const Text& start) {
    Text text = start;
    Text result;
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.data());
        operation(text, result);
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    }
}

void Upper(benchmark::State& state) {
    Run(
        state, [](Text& text, Text& result) { ToUpperCase(View(text), result); }, Mixed());
}
void Nulls(benchmark::State& state) {
    Run(
        state, [](Text& text, Text&) { NullToSpace(text); }, Mixed());
}
void Zeros(benchmark::State& state) {
    Run(
        state, [](Text& text, Text&) { BlankToZeroChar(text); }, Mixed());
}
void IsBlank(benchmark::State& state) {
    Run(
        state, [](Text& text, Text&) { benchmark::DoNotOptimize(IsBlankOrNull(View(text))); },
        Blank());
}
void Replace(benchmark::State& state) {
    Run(
        state, [](Text& text, Text& result) { ReplaceString(View(text), "\\", "/", result); },
        Mixed());
}
void Keep(benchmark::State& state) {
    Run(
        state, [](Text& text, Text& result) { RemSpaceSlashChars(View(text), result); }, Mixed());
}

void KeepByCharacterLoop(const Text& text, Text& result) {
    result.fill(' ');
    std::size_t count = 0;
    for (const char c : text)
        if (std::string_view(".0123456789").find(c) != std::string_view::npos) result[count++] = c;
}

void KeepOneByOne(benchmark::State& state) {
    Text expected;
    Text got;
    RemSpaceSlashChars(View(Mixed()), expected);
    KeepByCharacterLoop(Mixed(), got);
    if (got != expected) return state.SkipWithError("the texts differ");
    Run(
        state, [](Text& text, Text& result) { KeepByCharacterLoop(text, result); }, Mixed());
}

#define AGAINST_MEMCPY(operation, name)                     \
    BENCHMARK(operation)->Name("Text512 " name "/Corvale"); \
    BENCHMARK(Copy)->Name("Text512 " name "/memcpy")

AGAINST_MEMCPY(Upper, "ToUpperCase");
AGAINST_MEMCPY(Nulls, "NullToSpace");
AGAINST_MEMCPY(Zeros, "BlankToZeroChar");
AGAINST_MEMCPY(IsBlank, "IsBlankOrNull");
AGAINST_MEMCPY(Replace, "ReplaceString");
BENCHMARK(Keep)->Name("Text512 RemSpaceSlashChars/Corvale");
BENCHMARK(KeepOneByOne)->Name("Text512 RemSpaceSlashChars/character loop");

}  // namespace
