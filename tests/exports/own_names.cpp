// The names of the C face are common words, and a program may define them for itself. The library
// must keep calling its own functions, those of the module face too.
//
//     own_names LIBRARY INPUT-FILE
#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/FileIO.hpp>

#include <dlfcn.h>

#include <cstdio>
#include <fstream>
#include <string>

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
void CorvaleCardReading::ElsetKeyModeSet(std::int32_t) noexcept {
    ++strayCalls;
}
}  // namespace corvale

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    void* const library = dlopen(argv[1], RTLD_NOW);  // the one that is loaded already
    if (library == nullptr) return Check(false, dlerror());
    const auto openLog = reinterpret_cast<int32_t (*)(const char*)>(dlsym(library, "OpenLogFile"));
    const char* const log = "own_names.log";

    int faults = Check(openLog(log) == CORVALE_OK, "the library's OpenLogFile opens");
    faults += Check(CorvaleLoadFile("no/such/file") == CORVALE_FAILED, "a missing file fails");
    faults += Check(CorvaleLoadFile(argv[2]) == CORVALE_OK, "the input file loads");
    faults += Check(GetElsetKeyMode() == 1, "a card sets the library's mode");
    faults += Check(SetDupKeyMode(2) == CORVALE_FAILED, "a bad mode fails");

    std::ifstream lines(log);
    std::string first, second;
    std::getline(lines, first);
    std::getline(lines, second);
    faults += Check(first.starts_with("Error-FileOpen: Unable"), "the first error is logged");
    faults += Check(second.starts_with("Error-SetDupKeyMode:"), "so is the second");
    faults += Check(strayCalls == 0, "nothing of the program's was called");
    std::remove(log);
    return faults == 0 ? 0 : 1;
}
