// A program that loads the library while it runs: it finds the library's globals, and unloading
// neither forgets the state nor loses an open log or its descriptor. Its last exit handler logs.
//
//     unloading LIBRARY
#include <dlfcn.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

int faults = 0;
void Check(bool isRight, const char* what) {
    if (isRight) return;
    std::fprintf(stderr, "wrong: %s\n", what);
    ++faults;
}

template <class Pointer>
Pointer Find(void* library, const char* name) {
    return reinterpret_cast<Pointer>(dlsym(library, name));
}

std::ptrdiff_t OpenDescriptors() {
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return std::distance(begin(open), end(open));
}

constexpr const char* kLog = "unloading.log";
void (*logAtExit)(const char*) = nullptr;

void LeaveState(void* library) {
    const auto mode =
        Find<std::atomic<std::int32_t>*>(library, "_ZN7corvale12CorvaleTypes11gDupKeyModeE");
    const auto values =
        Find<std::array<double, 128>*>(library, "_ZN7corvale18CorvaleCardReading7MoicArrE");
    Find<std::int32_t (*)(std::int32_t)>(library, "SetDupKeyMode")(1);
    Check(*mode == 1, "gDupKeyMode is the library's");
    (*values)[2] = 0.0010826158;
    Check(Find<std::int32_t (*)(const char*)>(library, "OpenLogFile")(kLog) == 0, "the log opens");
    Find<void (*)(const char*)>(library, "LogMessage")("before");
}

void FindState(void* library) {
    std::array<double, 3> values = {};
    Find<void (*)(std::int32_t, double*)>(library, "GetMOICData")(3, values.data());
    Check(values[2] == 0.0010826158, "MoicArr survives");
    Check(Find<std::int32_t (*)()>(library, "GetDupKeyMode")() == 1, "the mode survives");
    logAtExit = Find<void (*)(const char*)>(library, "LogMessage");
    logAtExit("behind");
    Find<void (*)()>(library, "CloseLogFile")();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    // Registered before the library is there: it runs when all of the library's own are done.
    std::atexit([] { logAtExit("at exit"); });
    const std::ptrdiff_t descriptors = OpenDescriptors();
    for (void (*use)(void*) : {LeaveState, FindState}) {
        void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) std::fputs(dlerror(), stderr), std::abort();
        use(library);
        dlclose(library);
    }
    Check(OpenDescriptors() == descriptors, "no descriptor is left behind");

    std::ifstream log(kLog);
    std::string first, second;
    std::getline(log, first);
    std::getline(log, second);
    Check(first.starts_with("before ") && second.starts_with("behind "), "one log holds both");
    std::filesystem::remove(kLog);
    return faults;
}
