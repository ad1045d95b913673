// Loading a card file of 200,000 lines: the C API, a gfortran loop with its list-directed read,
// std::getline with strtod, and as the limit a bare read() of the bytes.
//
// The share of QZ_MOIC lines is in the topic's name; each is filled to column 512 with numbers of
// 17 digits. The rest are comments, blank lines and cards of other programs.
#include <corvale/Corvale.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

extern "C" void load_cards_fortran(const char* name, int length, double* moic, int* elset,
                                   int* allkey);

namespace {

constexpr int kLines = 200000;
using Values = std::array<double, CORVALE_MOIC_COUNT>;

std::string MoicLine(std::mt19937_64& random) {
    std::uniform_real_distribution<double> values(-1e4, 1e4);
    std::string line = "QZ_MOIC";
    for (;;) {
        std::array<char, 40> number;
        const int length = std::snprintf(number.data(), number.size(), " %.17g", values(random));
        if (line.size() + static_cast<std::size_t>(length) > CORVALE_NAME_WIDTH) return line;
        line += number.data();
    }
}

std::string OtherLine(std::mt19937_64& random) {
    static constexpr const char* lines[] = {
        "* a comment about what follows",
        "",
        "SENSOR  211  42.6195 288.5089   0.1231  R",
        "1 90001U 26012A   26071.50000000  .00001023  00000-0  51234-4 0  9991",
        "STEP           60.0                     minutes",
        "qualifier of another program",
    };
    return lines[random() % std::size(lines)];
}

// Written once a run, removed at exit.
class CardFile {
  public:
    explicit CardFile(int percent)
        : path_(std::filesystem::temp_directory_path() /
                ("corvale-bench-" + std::to_string(getpid()) + "-" + std::to_string(percent))) {
        std::mt19937_64 random(static_cast<std::uint64_t>(percent) + 1);
        std::ofstream file(path_);
        for (int i = 0; i < kLines; ++i)
            file << (static_cast<int>(random() % 100) < percent ? MoicLine(random)
                                                                : OtherLine(random))
                 << '\n';
    }
    ~CardFile() { std::filesystem::remove(path_); }
    CardFile(const CardFile&) = delete;
    CardFile& operator=(const CardFile&) = delete;
    [[nodiscard]] const std::string& Name() const { return path_.native(); }

  private:
    std::filesystem::path path_;
};

const std::string& FileName(int percent) {
    static const CardFile one(1);
    static const CardFile quarter(25);
    static const CardFile all(100);
    return (percent == 1 ? one : percent == 25 ? quarter : all).Name();
}

Values LoadWithCorvale(const std::string& name) {
    Values values{};
    CorvaleLoadFile(name.c_str());
    GetMOICData(CORVALE_MOIC_COUNT, values.data());
    return values;
}

Values LoadWithFortran(const std::string& name) {
    Values values{};
    int elset = 0;
    int allkey = 0;
    load_cards_fortran(name.c_str(), static_cast<int>(name.size()), values.data(), &elset, &allkey);
    return values;
}

Values LoadWithGetline(const std::string& name) {
    Values values{};
    std::ifstream file(name);
    std::string line;
    while (std::getline(file, line)) {
        if (line.size() > CORVALE_NAME_WIDTH) line.resize(CORVALE_NAME_WIDTH);
        if (strncasecmp(line.c_str(), "QZ_MOIC ", 8) != 0) continue;
        const char* at = line.c_str() + 8;
        for (double& value : values) {
            char* end = nullptr;
            const double number = std::strtod(at, &end);
            if (end == at) break;
            value = number;
            at = end;
        }
    }
    return values;
}

Values ReadOnly(const std::string& name) {
    static std::array<char, 256 * 1024> buffer;
    const int file = open(name.c_str(), O_RDONLY);
    while (read(file, buffer.data(), buffer.size()) > 0) benchmark::DoNotOptimize(buffer.data());
    close(file);
    return {};
}

template <Values (*Load)(const std::string&), int Percent>
void LoadCards(benchmark::State& state) {
    const std::string& name = FileName(Percent);
    static const Values expected = LoadWithFortran(name);
    const Values got = Load(name);
    if (Load != ReadOnly && std::memcmp(got.data(), expected.data(), sizeof got) != 0)
        return state.SkipWithError("the array differs from the Fortran loop's");
    for (auto _ : state) benchmark::DoNotOptimize(Load(name));
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(name)));
}

#define LOAD_CARDS(percent)                              \
    BENCHMARK(LoadCards<LoadWithCorvale, percent>)       \
        ->Name("CardFile " #percent " %/Corvale")        \
        ->Unit(benchmark::kMillisecond);                 \
    BENCHMARK(LoadCards<LoadWithFortran, percent>)       \
        ->Name("CardFile " #percent " %/gfortran")       \
        ->Unit(benchmark::kMillisecond);                 \
    BENCHMARK(LoadCards<LoadWithGetline, percent>)       \
        ->Name("CardFile " #percent " %/getline+strtod") \
        ->Unit(benchmark::kMillisecond);                 \
    BENCHMARK(LoadCards<ReadOnly, percent>)              \
        ->Name("CardFile " #percent " %/read() alone")   \
        ->Unit(benchmark::kMillisecond)

LOAD_CARDS(1);
LOAD_CARDS(25);
LOAD_CARDS(100);

}  // namespace
