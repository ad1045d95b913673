// A program and the library see the same globals, however the program is linked: one that is not
// position-independent holds a copy of them, which the library must use as well.
#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>

#include <array>
#include <cstdio>
#include <string_view>

int main() {
    using namespace corvale;
    int faults = 0;
    const auto check = [&faults](bool isRight, const char* what) {
        if (!isRight) std::fprintf(stderr, "not the same: %s\n", what);
        faults += isRight ? 0 : 1;
    };
    check(SetDupKeyMode(1) == CORVALE_OK && CorvaleTypes::gDupKeyMode == 1, "gDupKeyMode");
    CorvaleTypes::gAllKeyMode = 1;
    check(GetAllKeyMode() == 1, "gAllKeyMode");
    CorvaleCardReading::ElsetKeyMode = 1;
    check(GetElsetKeyMode() == 1, "ElsetKeyMode");

    CorvaleCardReading::MoicArr[127] = 6378.135;
    std::array<double, CORVALE_MOIC_COUNT> values = {};
    GetMOICData(CORVALE_MOIC_COUNT, values.data());
    check(values[127] == 6378.135, "MoicArr");

    std::array<char, CORVALE_MESSAGE_WIDTH> message;
    LogMessage("to both");
    FileIO::LogLastInfoMsg.Load(message);
    check(std::string_view(message.data(), 8) == "to both ", "LogLastInfoMsg");
    return faults;
}
