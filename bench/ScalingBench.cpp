// How cost grows: each workload at sizes over three decades and more, Topic/Corvale/size. One
// iteration is the whole work of that size. Sorting, matrices and lists have sizes in their own
// programs.
#include <corvale/Corvale.h>
#include <corvale/numeric/SmallHelpers.hpp>
#include <corvale/text/StrFunctions.hpp>

#include <benchmark/benchmark.h>
#include <unistd.h>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

namespace str = corvale::StrFunctions;
using Sizes = benchmark::internal::Benchmark;

// ---- files

struct File {
    std::string name =
        (std::filesystem::temp_directory_path() / ("corvale-scaling-" + std::to_string(getpid())))
            .native();
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { std::filesystem::remove(name); }
};

// Comments, and cards that set all 128 values in every hundredth line.
std::string Cards(std::size_t bytes) {
    std::string card = "QZ_MOIC";
    for (int i = 0; i < 128; ++i) card += i % 2 == 0 ? " 1.5" : " -2";
    std::string text;
    for (int line = 0; text.size() < bytes; ++line)
        text += line % 100 == 0 ? card + "\n" : "* a comment about what follows\n";
    return text.substr(0, bytes);
}

// One card that never ends: only its first 512 characters count.
std::string OneLine(std::size_t bytes) {
    std::string text = "QZ_MOIC 1.5 ";
    text.resize(bytes, '7');
    return text;
}

template <std::string (*Make)(std::size_t)>
void Load(benchmark::State& state) {
    const File file;
    const auto bytes = static_cast<std::size_t>(state.range(0));
    std::ofstream(file.name) << Make(bytes);
    for (auto _ : state)
        if (CorvaleLoadFile(file.name.c_str()) != CORVALE_OK) state.SkipWithError("not loaded");
}
void FileSizes(Sizes* bench) {
    bench->RangeMultiplier(10)->Range(1000, 100'000'000);
}
BENCHMARK(Load<Cards>)->Name("CardFile/Corvale")->Apply(FileSizes);
BENCHMARK(Load<OneLine>)->Name("LongLine/Corvale")->Apply(FileSizes);

void Log(benchmark::State& state) {
    const File file;
    const std::string message(CORVALE_MESSAGE_WIDTH, 'm');
    for (auto _ : state) {
        if (OpenLogFile(file.name.c_str()) != CORVALE_OK) state.SkipWithError("not opened");
        for (std::int64_t i = 0; i < state.range(0); ++i) LogMessage(message.c_str());
        CloseLogFile();
    }
}
BENCHMARK(Log)->Name("LogLines/Corvale")->RangeMultiplier(10)->Range(100, 100'000);

// ---- texts

std::string Mixed(std::size_t width) {
    std::mt19937 random(512);
    std::string text(width, ' ');
    for (char& c : text) c = "0123456789. /:-ab\\Z "[random() % 20];
    return text;
}

template <class Operation>
void Text(benchmark::State& state, std::string text, Operation operation) {
    std::string result = text;
    for (auto _ : state) {
        operation(text, result);
        benchmark::DoNotOptimize(text.data());
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    }
}
template <class Operation>
void AddText(const char* name, Operation operation, bool isBlank = false) {
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     const auto width = static_cast<std::size_t>(state.range(0));
                                     Text(state, isBlank ? std::string(width, ' ') : Mixed(width),
                                          operation);
                                 })
        ->RangeMultiplier(8)
        ->Range(64, 64 << 15);
}

void AddTexts() {
    using Line = std::string;
    AddText("ToUpperCase/Corvale", [](Line& in, Line& out) { str::ToUpperCase(in, out); });
    AddText("NullToSpace/Corvale", [](Line& in, Line&) { str::NullToSpace(in); });
    AddText("BlankToZeroChar/Corvale", [](Line& in, Line&) { str::BlankToZeroChar(in); });
    AddText("ReplaceString/Corvale",
            [](Line& in, Line& out) { str::ReplaceString(in, "\\", "/", out); });
    AddText("RemSpaceSlashChars/Corvale",
            [](Line& in, Line& out) { str::RemSpaceSlashChars(in, out); });
    AddText(
        "IsBlankOrNull/Corvale",
        [](Line& in, Line&) { benchmark::DoNotOptimize(str::IsBlankOrNull(in)); }, true);
}

// Rows of that many fields, a fresh copy for each call. A compressed row ends at 512 characters: rows
// of values reach that, rows of zeros, of which only the commas stay, hardly do.
void Csv(benchmark::State& state, const char* field) {
    std::string row;
    for (std::int64_t k = 0; k < state.range(0); ++k) row += field;
    std::string work = row;
    for (auto _ : state) {
        std::memcpy(work.data(), row.data(), row.size());
        str::CompressCsvLine(work);
        benchmark::DoNotOptimize(work.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(Csv, , "-1.234567890000000E-003,")
    ->Name("CompressCsvLine_values/Corvale")
    ->RangeMultiplier(2)
    ->Range(1, 32);
BENCHMARK_CAPTURE(Csv, , " 0.000000000000000E+000 ,")
    ->Name("CompressCsvLine_zeros/Corvale")
    ->RangeMultiplier(8)
    ->Range(1, 512);

// ---- numbers: that many of them

std::vector<double> Values(std::int64_t count) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> value(-1e4, 1e4);
    std::vector<double> made(static_cast<std::size_t>(count));
    for (double& v : made) v = value(random);
    return made;
}

void ReadNumbers(benchmark::State& state) {
    std::vector<std::array<char, 12>> fields(static_cast<std::size_t>(state.range(0)));
    const auto values = Values(state.range(0));
    for (std::size_t i = 0; i < fields.size(); ++i) str::Fx0ToAx(values[i], 12, fields[i]);
    for (auto _ : state)
        for (const auto& field : fields)
            benchmark::DoNotOptimize(str::StrToReal({field.data(), field.size()}));
}
void WriteNumbers(benchmark::State& state) {
    const auto values = Values(state.range(0));
    std::array<char, 12> text;
    for (auto _ : state)
        for (const double value : values) {
            str::Fx0ToAx(value, 12, text);
            benchmark::DoNotOptimize(text);
        }
}
BENCHMARK(ReadNumbers)->Name("StrToReal/Corvale")->RangeMultiplier(10)->Range(100, 1'000'000);
BENCHMARK(WriteNumbers)->Name("Fx0ToAx/Corvale")->RangeMultiplier(10)->Range(100, 1'000'000);

// ---- a search in a table of that many values

double Even(double share) {
    return share;
}
double Exponential(double share) {
    return std::exp(600 * share);
}

template <double (*Spacing)(double)>
void Search(benchmark::State& state) {
    const auto n = static_cast<std::int32_t>(state.range(0));
    std::vector<double> table(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = Spacing(static_cast<double>(i) / static_cast<double>(n));
    std::mt19937_64 random(6);
    std::vector<double> values(4096);
    for (double& value : values) {
        const std::size_t index = random() % (table.size() - 1);
        value = table[index] + (table[index + 1] - table[index]) * 0.4;
    }
    for (auto _ : state)
        for (const double value : values)
            benchmark::DoNotOptimize(corvale::GenFunctions::FindRecIdx(table.data(), n, value));
}
BENCHMARK(Search<Even>)
    ->Name("FindRecIdx_even/Corvale")
    ->RangeMultiplier(10)
    ->Range(100, 10'000'000);
BENCHMARK(Search<Exponential>)
    ->Name("FindRecIdx_exponential/Corvale")
    ->RangeMultiplier(10)
    ->Range(100, 10'000'000);

}  // namespace

int main(int argc, char** argv) {
    AddTexts();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
