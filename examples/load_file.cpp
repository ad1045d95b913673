// Loads an input file through the C++ API, as a library of the family does, and writes what its
// cards set to the process's standard output, which is unit 6 as long as no log is open.
//
//     load_file INPUT-FILE
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <array>
#include <cstdio>
#include <string>

namespace cards = corvale::CorvaleCardReading;
namespace units = corvale::TextUnits;
using corvale::CorvaleTypes::StatusFailed;
using corvale::CorvaleTypes::StatusOk;

constexpr std::int32_t kStandardOutput = 6;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: load_file INPUT-FILE\n", stderr);
        return StatusFailed;
    }
    if (cards::ReadCorvaleFrFile(argv[1]) != StatusOk) {
        std::array<char, 128> message;
        corvale::FileIO::LastLoggedErrMsg.Load(message);
        std::fprintf(stderr, "%.128s\n", message.data());
        return StatusFailed;
    }

    bool isWritten = units::WriteLine(
        kStandardOutput, "element-set key mode " + std::to_string(cards::ElsetKeyModeGet()) +
                             ", all-key mode " + std::to_string(cards::AllKeyModeGet()));
    for (std::size_t i = 0; i < cards::MoicArr.size(); ++i) {
        if (cards::MoicArr[i] == 0.0) continue;
        std::array<char, 64> line;
        const int length =
            std::snprintf(line.data(), line.size(), "MOIC(%zu) = %.17g", i + 1, cards::MoicArr[i]);
        isWritten =
            units::WriteLine(kStandardOutput, {line.data(), static_cast<std::size_t>(length)}) &&
            isWritten;
    }
    return isWritten ? StatusOk : StatusFailed;
}
