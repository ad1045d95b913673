// Random inputs, the same everywhere, and one number for all that the library gave for them, which has
// to be the same everywhere too.
#pragma once

#include "RandomInput.hpp"
#include "Targets.hpp"

#include <cinttypes>
#include <fstream>
#include <sstream>
#include <string>

namespace corvale::fuzz {

inline void Run(const NamedTarget& target, const Input& input) {
    target.run(Choices(input.data(), input.size()));
}

inline const NamedTarget* Find(std::string_view name) {
    for (const NamedTarget& target : kTargets)
        if (target.name == name) return &target;
    std::fprintf(stderr, "no target %.*s\n", static_cast<int>(name.size()), name.data());
    return nullptr;
}

inline std::string DigestOf(const NamedTarget& target, long count) {
    std::mt19937_64 random(1);
    gDigest = 0;
    for (long i = 0; i < count; ++i) Run(target, RandomInput(random));
    char digest[17];
    std::snprintf(digest, sizeof digest, "%016" PRIx64, gDigest);
    std::printf("%-10s %7ld %s\n", target.name, count, digest);
    return digest;
}

inline int CompareDigests(const std::string& path) {
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

inline int RunRandom(long count, const std::vector<std::string>& names) {
    for (const NamedTarget& target : kTargets)
        if (names.empty()) DigestOf(target, count);
    for (const std::string& name : names) {
        const NamedTarget* const target = Find(name);
        if (target == nullptr) return 2;
        DigestOf(*target, count);
    }
    return 0;
}

/// `--random COUNT [TARGET...]` and `--digests FILE`, the arguments of fuzz_replay that need no folder;
/// 2 for others.
inline int RunDigests(const std::vector<std::string>& arguments) {
    if (arguments.size() >= 2 && arguments[0] == "--random")
        return RunRandom(std::stol(arguments[1]), {arguments.begin() + 2, arguments.end()});
    if (arguments.size() == 2 && arguments[0] == "--digests") return CompareDigests(arguments[1]);
    return 2;
}

}  // namespace corvale::fuzz
