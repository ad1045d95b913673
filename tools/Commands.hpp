// The commands of the program corvale. Each returns the exit status: 0, or 2 after saying on
// standard error what failed.
#pragma once

#include <string>

namespace corvale::tool {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 2;

struct LoadOptions {
    std::string file;
    std::string log;  // empty: none
    bool asJson = false;
};

/// Prints the information line of the library.
int Info();

/// Loads an input file and prints the modes and the 128 values.
int Load(const LoadOptions& options);

/// Calls the three interface tests and prints the outcome of each argument.
int SelfTest();

}  // namespace corvale::tool
