// Prints a digest for each family of procedures, and compares it with the expected one.
//
//     bit_digest [EXPECTED]     EXPECTED: lines "family digest" and comments; a family without a
//                               line there is printed and not compared. Exits with 1 where one differs
#include "BitFamilies.hpp"

#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

int main(int argc, char** argv) {
    std::map<std::string, std::string, std::less<>> expected;
    if (argc > 1) {
        std::ifstream file(argv[1]);
        if (!file) return 2;
        for (std::string line; std::getline(file, line);)
            if (!line.empty() && line[0] != '#')
                expected[line.substr(0, line.find(' '))] = line.substr(line.rfind(' ') + 1);
    }
    int differences = 0;
    for (const corvale::soak::Family& family : corvale::soak::Families()) {
        char digest[17];
        std::snprintf(digest, sizeof digest, "%016" PRIx64, family.digest());
        const auto wanted = expected.find(family.name);
        const bool differs = wanted != expected.end() && wanted->second != digest;
        differences += differs ? 1 : 0;
        std::printf("%-18.*s %s%s\n", static_cast<int>(family.name.size()), family.name.data(),
                    digest, differs ? " differs" : "");
    }
    std::printf("%zu families, %zu digests expected: %d differences\n",
                corvale::soak::Families().size(), expected.size(), differences);
    return differences == 0 ? 0 : 1;
}
