// The commands of the program corvale. Each returns the exit status.
#pragma once

#include <string>
#include <vector>

namespace corvale::tool {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFindings =
    1;  // there is something to mend or a difference, and it has been said
inline constexpr int kExitFailed = 2;  // after saying on standard error what failed

struct LoadOptions {
    std::vector<std::string> files;
    std::string log;               // empty: none
    std::vector<std::string> why;  // modes and elements to explain, instead of loading
    bool asJson = false;
    bool isQuiet = false;
    bool showsProgress = false;  // at once, not only when it takes long
};

struct DiffOptions {
    std::string left, right;
    bool asJson = false;
    bool isQuiet = false;
};

struct CheckOptions {
    std::vector<std::string> files, globs;
    std::string format = "text";
    std::vector<std::string> selected, ignored;  // codes of findings
    bool asJson = false;                         // the same as the format "json"
    bool isQuiet = false;
    bool showsAll = false;
    bool isFindingsOnly = false;
    bool fixes = false;        // in the files
    bool printsDiff = false;   // and nothing else
    bool fixesCommas = false;  // decimal commas, too
    bool showsProgress = false;
    std::string colour = "auto";
};

/// Prints the information line of the library.
int Info(bool asJson);

/// Loads input files, one after the other, and prints the modes and the 128 values.
int Load(const LoadOptions& options);

/// Prints which modes and elements differ after loading each of two files.
int Diff(const DiffOptions& options);

/// Explains the cards of input files, and what looks like one and is none.
int Check(const CheckOptions& options);

/// Serves an editor on standard input and output: the findings of `Check` as it types.
int ServeEditor();

/// Calls the three interface tests and prints the outcome of each argument.
int SelfTest();

}  // namespace corvale::tool
