// Runs the committed inputs of every target once, with any compiler.
//
// Usage: fuzz_replay CORPUS    a folder with a folder for each target
#include "Targets.hpp"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    namespace files = std::filesystem;
    if (argc != 2) return 2;
    const files::path corpus = files::absolute(argv[1]);
    for (const auto& [name, run] : corvale::fuzz::kTargets) {
        int count = 0;
        for (const auto& entry : files::directory_iterator(corpus / name)) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string input{std::istreambuf_iterator<char>(file), {}};
            const std::vector<std::uint8_t> exact(input.begin(), input.end());
            run(corvale::fuzz::Choices(exact.data(), exact.size()));
            ++count;
        }
        std::printf("%s: %d inputs\n", name, count);
        if (count == 0) return 1;
    }
}
