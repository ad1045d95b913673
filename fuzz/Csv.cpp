// Rows of comma-separated values against the compressor's rules, taken one by one.
#include "Targets.hpp"

#include "reference/CompactNumbers.hpp"

#include <corvale/text/CompactNumbers.hpp>

namespace corvale::fuzz {
namespace csv {

constexpr std::string_view kPieces[] = {" 1.500000000000000E+003",
                                        "-2.000000000000000E-001",
                                        " 0.000000000000000E+000 ",
                                        " 0.000000000000000E+000",
                                        "0.000000000000000E+000",
                                        " 9.999999999999999E-123",
                                        "-1.000000000000000E+010",
                                        " 1.23450",
                                        "6700000000E",
                                        "+012",
                                        " 0 ,",
                                        " 0 ",
                                        "12.50",
                                        "30.000:",
                                        ".0",
                                        "000",
                                        "5.",
                                        "E+000",
                                        "E-0",
                                        "E",
                                        ".",
                                        ",",
                                        ", ",
                                        ":",
                                        "    ",
                                        "100",
                                        "2023/01/01 12:00:00.000"};

}  // namespace csv

void Csv(Choices in) {
    using namespace csv;
    static thread_local GuardedMemory<2048> guarded;
    std::array<char, 1500> built;
    const std::span<char> line = guarded.Hold(in.Text(kPieces, built));
    std::string wanted(line.data(), line.size());
    reference::CompressCsvLine(wanted);
    StrFunctions::CompressCsvLine(line);
    ExpectSame({line.data(), line.size()}, wanted, "CompressCsvLine");
}

}  // namespace corvale::fuzz
