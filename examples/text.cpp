// Fixed-width text, numbers read from it and written into it.
#include <corvale/text/StrFunctions.hpp>

#include <array>
#include <cstdio>

namespace str = corvale::StrFunctions;

int main() {
    // [fields]
    for (const char* field : {"  -12.5E2", "1.5-3", "2.5D+02", "1,5", "1.2.3", "abc"})
        std::printf("%-9s  %g\n", field, str::StrToReal(field));
    // [fields]

    // [lines]
    std::array<char, 12> unit;
    double step = 0.0;
    str::InputStrToNumStr("STEP = 60 sec", step, unit);
    std::printf("step %g, unit \"%.12s\"\n", step, unit.data());
    std::printf("mass %g, drag %d\n", str::InputStrToReal("MASS = 12.5"),
                str::InputStrToInt("DRAG = yes"));

    std::array<char, 12> name;
    str::GetInputFileName("FILE = Orbit.inp", name);
    std::printf("file \"%.12s\"\n", name.data());
    // [lines]

    // [compact]
    std::array<char, 10> field;
    for (const double value : {0.5, -0.0, 1234.5678}) {
        str::Fx0ToSignAx(value, 10, field);
        std::printf("[%.10s]\n", field.data());
    }

    std::array<char, 62> row;
    str::StrToCharArr("1.500000000000000E+003, 2.000000000000000E-001,              3", 62,
                      row.data());
    str::CompressCsvLine(row);
    std::printf("[%.16s]\n", row.data());
    // [compact]
    return 0;
}
