// The names of the C API are common words, and a program may define them for itself. The library
// must keep calling its own functions, those of the C++ API too.
//
//     own_names LIBRARY INPUT-FILE
#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/sorting/Sorting.hpp>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {
int strayCalls = 0;
int Check(bool isRight, const char* what) {
    if (!isRight) std::fprintf(stderr, "wrong: %s\n", what);
    return isRight ? 0 : 1;
}
}  // namespace

extern "C" int32_t OpenLogFile(const char*) noexcept {
    return ++strayCalls;
}
extern "C" void LogMessage(const char*) noexcept {
    ++strayCalls;
}
extern "C" int32_t SetElsetKeyMode(int32_t) noexcept {
    return ++strayCalls;
}

namespace corvale {
void FileIO::TraceLogError(std::string_view) noexcept {
    ++strayCalls;
}
std::int32_t FileIO::FileOpen(std::int32_t, std::string_view, std::int32_t,
                              std::optional<std::int32_t>) noexcept {
    return ++strayCalls;
}
std::int32_t CorvaleCardReading::CorvaleCardType(std::string_view) noexcept {
    return ++strayCalls;
}
std::int32_t Sorting::Partition(std::int32_t, std::int32_t, Key*, std::int64_t*) noexcept {
    return ++strayCalls;
}
void CorvaleCardReading::ElsetKeyModeSet(std::int32_t) noexcept {
    ++strayCalls;
}
}  // namespace corvale

namespace {

// Enough keys in disorder for the sort to divide its range; `companion` says where each stood.
bool SortsRight() {
    constexpr std::int32_t count = 2000;
    std::vector<corvale::Sorting::Key> keys(count);
    std::vector<std::int64_t> companion(count);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::string name = std::to_string(100000 + i * 7919 % count);
        keys[i].fill(' ');
        std::copy(name.begin(), name.end(), keys[i].begin());
        companion[i] = static_cast<std::int64_t>(i);
    }
    corvale::Sorting::QuickSortIterative(count, keys.data(), companion.data());
    return std::is_sorted(keys.begin(), keys.end()) && companion[1] * 7919 % count == 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    void* const library = dlopen(argv[1], RTLD_NOW);  // the one that is loaded already
    if (library == nullptr) return Check(false, dlerror());
    const auto openLog = reinterpret_cast<int32_t (*)(const char*)>(dlsym(library, "OpenLogFile"));
    const auto logMessage = reinterpret_cast<void (*)(const char*)>(dlsym(library, "LogMessage"));
    const char* const log = "own_names.log";

    int faults = Check(openLog(log) == CORVALE_OK, "the library's OpenLogFile opens");
    faults += Check(CorvaleLoadFile("no/such/file") == CORVALE_FAILED, "a missing file fails");
    faults += Check(CorvaleLoadFile(argv[2]) == CORVALE_OK, "the input file loads");
    faults += Check(GetElsetKeyMode() == 1, "a card sets the library's mode");
    faults += Check(SetDupKeyMode(2) == CORVALE_FAILED, "a bad mode fails");

    logMessage("plain");
    faults += Check(SortsRight(), "the library sorts");

    std::ifstream lines(log);
    std::string first, second, third;
    std::getline(lines, first);
    std::getline(lines, second);
    std::getline(lines, third);
    faults += Check(first.starts_with("Error-FileOpen: Unable"), "the first error is logged");
    faults += Check(second.starts_with("Error-SetDupKeyMode:"), "so is the second");
    faults += Check(third.starts_with("plain "), "and the library's LogMessage's line");
    faults += Check(strayCalls == 0, "nothing of the program's was called");
    std::remove(log);
    return faults == 0 ? 0 : 1;
}
