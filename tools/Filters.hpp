// Filters: standard input to standard output, a line at a time, each through one procedure of the
// library.
#pragma once

#include <cstdint>
#include <string>

namespace corvale::tool {

/// What happens at a line that cannot be used.
struct FilterOptions {
    bool goesOn = false;  ///< an empty line takes its place; else the filter stops there
};

struct AngleOptions {
    bool inHours = false;
    bool decodes = false;
};

struct NumberOptions {
    bool isInteger = false;
    bool afterEquals = false;  ///< the number stands behind the first "=" of the line
};

// Each returns the exit status: 1 if a line could not be used, 2 if nothing can be read or written.

int EncodeAlpha5(const FilterOptions& options);
int DecodeAlpha5(const FilterOptions& options);
int ConvertAngles(const AngleOptions& angle, const FilterOptions& options);
int CompressRows(const FilterOptions& options);
int ReadNumberFields(const NumberOptions& number, const FilterOptions& options);
int SortKeys(bool addsNumbers, const FilterOptions& options);
int UpperCaseLines();
int LowerCaseLines();
int ReplaceInLines(const std::string& pattern, const std::string& replacement);

}  // namespace corvale::tool
