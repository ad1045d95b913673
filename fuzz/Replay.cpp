// Runs inputs through the targets, with any compiler.
//
//     fuzz_replay CORPUS                       the committed inputs: a folder with one for each target
//     fuzz_replay --random COUNT [TARGET...]   as many random inputs for each target, or for those
//     fuzz_replay --digests FILE               as many as a line "target count digest" of FILE says
//
// Random inputs are the same everywhere. What the library gave for them is printed as one number,
// which has to be the same everywhere too. Exits with 1 where a digest is not the expected one.
#include "Digests.hpp"

#include <filesystem>

namespace {

using namespace corvale::fuzz;

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

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() != 1) return RunDigests(arguments);
    return ReplayCorpus(std::filesystem::absolute(arguments[0]));  // a target changes the folder
}
