// Runs inputs through the targets, with any compiler.
//
//     fuzz_replay CORPUS                       the committed inputs: a folder with one for each target
//     fuzz_replay --random COUNT [TARGET...]   as many random inputs for each target, or for those
//     fuzz_replay --digests FILE               as many as a line "target count digest" of FILE says
//
// Random inputs are the same everywhere. What the library gave for them is printed as one number,
// which has to be the same everywhere too. Exits with 1 where a digest is not the expected one.
#include "RandomInput.hpp"
#include "Targets.hpp"

#include <cinttypes>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace corvale::fuzz;

void Run(const NamedTarget& target, const Input& input) {
    target.run(Choices(input.data(), input.size()));
}

const NamedTarget* Find(std::string_view name) {
    for (const NamedTarget& target : kTargets)
        if (target.name == name) return &target;
    std::fprintf(stderr, "no target %.*s\n", static_cast<int>(name.size()), name.data());
    return nullptr;
}

int ReplayCorpus(const std::filesystem::path& corpus) {
    for (const NamedTarget& target : kTargets) {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(corpus / target.name)) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            Run(target, Input(input.begin(), input.end()));
            ++count;
        }
        std::printf("%s: %d inputs\n", target.name, count);
        if (count == 0) return 1;
    }
    return 0;
}

std::string DigestOf(const NamedTarget& target, long count) {
    std::mt19937_64 random(1);
    gDigest = 0;
    for (long i = 0; i < count; ++i) Run(target, RandomInput(random));
    char digest[17];
    std::snprintf(digest, sizeof digest, "%016" PRIx64, gDigest);
    std::printf("%-10s %7ld %s\n", target.name, count, digest);
    return digest;
}

int CompareDigests(const std::filesystem::path& path) {
    int expected = 0, differences = 0;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::string name, digest;
        long count = 0;
        std::istringstream(line) >> name >> count >> digest;
        const NamedTarget* const target = Find(name);
        const bool differs = target == nullptr || DigestOf(*target, count) != digest;
        if (differs) std::printf("%s: not %s\n", name.c_str(), digest.c_str());
        differences += differs ? 1 : 0;
        ++expected;
    }
    std::printf("%d digests expected: %d differences\n", expected, differences);
    return expected == 0 || differences != 0 ? 1 : 0;
}

int RunRandom(long count, const std::vector<std::string>& names) {
    for (const NamedTarget& target : kTargets)
        if (names.empty()) DigestOf(target, count);
    for (const std::string& name : names) {
        const NamedTarget* const target = Find(name);
        if (target == nullptr) return 2;
        DigestOf(*target, count);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() >= 2 && arguments[0] == "--random")
        return RunRandom(std::stol(arguments[1]), {arguments.begin() + 2, arguments.end()});
    if (arguments.size() == 2 && arguments[0] == "--digests") return CompareDigests(arguments[1]);
    if (arguments.size() != 1) return 2;
    return ReplayCorpus(std::filesystem::absolute(arguments[0]));  // a target changes the folder
}
