// The fuzz targets: each runs one input and ends the program where the library is wrong.
#pragma once

#include "Shapes.hpp"

namespace corvale::fuzz {

void Cards(Choices in);
void Numbers(Choices in);
void FreeForm(Choices in);
void NumberText(Choices in);
void Csv(Choices in);
void Text(Choices in);
void Keys(Choices in);
void Lists(Choices in);
void Angles(Choices in);
void Elementary(Choices in);
void Matrices(Choices in);
void Series(Choices in);
void Sort(Choices in);
void Log(Choices in);
void Interface(Choices in);

struct NamedTarget {
    const char* name;
    void (*run)(Choices in);
};
inline constexpr NamedTarget kTargets[] = {
#if !defined(_WIN32) && !defined(__wasi__)  // these create their files with POSIX calls
    {"Cards", Cards},
    {"Log", Log},
#endif
    {"Numbers", Numbers},
    {"FreeForm", FreeForm},
    {"NumberText", NumberText},
    {"Csv", Csv},
    {"Text", Text},
    {"Keys", Keys},
    {"Lists", Lists},
    {"Angles", Angles},
    {"Elementary", Elementary},
    {"Matrices", Matrices},
    {"Series", Series},
    {"Sort", Sort},
    {"Interface", Interface}};

}  // namespace corvale::fuzz
