// Filters: files or standard input to standard output, a line at a time, each through one procedure
// of the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvale::tool {

/// Where the lines come from, what of them is converted, and what happens where it cannot be.
struct FilterOptions {
    std::vector<std::string> files;    ///< one after the other; none: standard input
    std::vector<std::string> values;   ///< lines from the command line, instead of files
    std::vector<std::size_t> columns;  ///< fields of a row, ascending from 1; none: whole lines
    char delimiter = ',';              ///< between fields
    bool hasHeader = false;            ///< the first line of a file stays as it is
    bool goesOn = false;  ///< an empty line or field takes its place; else the filter stops there
};

struct AngleOptions {
    bool inHours = false;
    bool decodes = false;
};

struct NumberOptions {
    bool isInteger = false;
    bool afterEquals = false;  ///< the number follows the first "=" of the line
};

// Each returns the exit status: 1 if a line could not be used, 2 if nothing can be read or written.

int EncodeAlpha5(const FilterOptions& options);
int DecodeAlpha5(const FilterOptions& options);
int ConvertAngles(const AngleOptions& angle, const FilterOptions& options);
int CompressRows(const FilterOptions& options);
int ReadNumberFields(const NumberOptions& number, const FilterOptions& options);
int SortKeys(bool addsNumbers, const FilterOptions& options);
int UpperCaseLines(const FilterOptions& options);
int LowerCaseLines(const FilterOptions& options);
int ReplaceInLines(const std::string& pattern, const std::string& replacement,
                   const FilterOptions& options);

}  // namespace corvale::tool
