// One message of 128 characters to the open log, from one thread and from eight: the C++ API
// and the C API, spdlog flushing each line, fprintf with fflush, and as the limit a bare write()
// of the line.
#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

namespace {

const std::string kMessage(CORVALE_MESSAGE_WIDTH, 'm');

std::string LogName() {
    return (std::filesystem::temp_directory_path() /
            ("corvale-bench-log-" + std::to_string(getpid())))
        .native();
}

struct CApi {
    static void Open() { OpenLogFile(LogName().c_str()); }
    static void Line() { LogMessage(kMessage.c_str()); }
    static void Close() { CloseLogFile(); }
};

struct Module : CApi {
    static void Line() { corvale::FileIO::TraceLogInfo(kMessage); }
};

struct Spdlog {
    static inline std::shared_ptr<spdlog::logger> logger;
    static void Open() {
        logger = spdlog::basic_logger_mt("bench", LogName(), true);
        logger->set_pattern("%v");
        logger->flush_on(spdlog::level::trace);
    }
    static void Line() { logger->info(kMessage); }
    static void Close() {
        spdlog::drop("bench");
        logger.reset();
    }
};

struct Stdio {
    static inline std::FILE* file;
    static void Open() { file = std::fopen(LogName().c_str(), "w"); }
    static void Line() {
        std::fprintf(file, "%s\n", kMessage.c_str());
        std::fflush(file);
    }
    static void Close() { std::fclose(file); }
};

struct BareWrite {
    static inline int file;
    static inline const std::string line = kMessage + "\n";
    static void Open() {
        file = open(LogName().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0666);
    }
    static void Line() { benchmark::DoNotOptimize(write(file, line.data(), line.size())); }
    static void Close() { close(file); }
};

template <class Logger>
void LogLine(benchmark::State& state) {
    if (state.thread_index() == 0) Logger::Open();
    for (auto _ : state) Logger::Line();
    if (state.thread_index() != 0) return;
    Logger::Close();
    const auto lines = std::filesystem::file_size(LogName()) / (kMessage.size() + 1);
    if (lines != static_cast<std::uintmax_t>(state.iterations() * state.threads()))
        state.SkipWithError("lines are missing");
    std::filesystem::remove(LogName());
}

#define LOG_LINE(Logger, name)                                                \
    BENCHMARK(LogLine<Logger>)->Name(name)->Iterations(40000)->UseRealTime(); \
    BENCHMARK(LogLine<Logger>)->Name(name)->Iterations(5000)->Threads(8)->UseRealTime()

#define RACE(Way, topic)                      \
    LOG_LINE(Way, topic "/Corvale");          \
    LOG_LINE(Spdlog, topic "/spdlog");        \
    LOG_LINE(Stdio, topic "/fprintf+fflush"); \
    LOG_LINE(BareWrite, topic "/write() alone")

RACE(Module, "LogLine TraceLogInfo");
RACE(CApi, "LogLine LogMessage");

}  // namespace
