// Eight threads read their own files and log to one log, without a lock of their own.
#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <array>
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace files = corvale::FileIO;
namespace units = corvale::TextUnits;

static std::atomic<int> gLines{0};

// [thread]
static void CountLines(int pass) {
    std::int32_t unit = 0;
    if (files::FileOpenMT("orbit.inp", 1, unit) != CORVALE_OK) return;  // the reason is logged
    std::array<char, 512> line;
    while (units::ReadLine(unit, line)) ++gLines;
    units::Close(unit);
    files::TraceLogInfo("pass " + std::to_string(pass) + " done");
}
// [thread]

int main() {
    // [main]
    if (OpenLogFile("threads.log") != CORVALE_OK) return CORVALE_FAILED;  // before they start
    std::vector<std::thread> threads;
    for (int pass = 1; pass <= 8; ++pass) threads.emplace_back(CountLines, pass);
    for (std::thread& thread : threads) thread.join();
    CloseLogFile();  // after they have ended
    // [main]

    std::int32_t unit = 0;
    if (files::FileOpenMT("threads.log", 1, unit) != CORVALE_OK) return CORVALE_FAILED;
    std::array<char, 128> line;
    int logged = 0;
    while (units::ReadLine(unit, line)) ++logged;
    units::Close(unit);
    std::printf("%d lines read, %d lines logged\n", gLines.load(), logged);
    return CORVALE_OK;
}
