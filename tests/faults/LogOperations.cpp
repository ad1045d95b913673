#include "Operations.hpp"

#include "SystemCalls.hpp"

#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <algorithm>
#include <optional>

namespace corvale::test {

namespace {

using Texts = std::vector<std::string>;

struct LogTarget {
    enum Kind : std::uint8_t { File, ReadPipe, LeftPipe, LimitedFile } kind;
    const char* undisturbed;
};

void LimitFileSize(rlim_t size) {
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

// Three disturbed lines, then one that is not and must be there.
std::string LogLines(const std::string& path, LogTarget::Kind kind, const Texts& messages) {
    const bool isPipe = kind == LogTarget::ReadPipe || kind == LogTarget::LeftPipe;
    unlink(path.c_str());
    std::optional<NamedPipe> pipe;
    if (isPipe) pipe.emplace(path);
    if (kind == LogTarget::LimitedFile) LimitFileSize(200);
    if (OpenLogFile(path.c_str()) != 0) return "not open";
    if (kind == LogTarget::LeftPipe) pipe->Leave();
    Disturbed([&] {
        FileIO::TraceLogInfo(messages[0]);
        FileIO::TraceLogError(messages[1]);
        FileIO::TraceLogInfo(messages[2]);
        return 0;
    });
    if (kind == LogTarget::LimitedFile) LimitFileSize(RLIM_INFINITY);
    if (kind == LogTarget::LeftPipe) pipe->Come();
    const bool isStored =
        Stored(FileIO::LastLoggedErrMsg) == Padded(messages[1].substr(0, 128), 128);
    FileIO::TraceLogInfo("afterwards");
    const Texts lines = {messages[0], "Error-" + messages[1], messages[2], "afterwards"};
    return Marks(pipe ? pipe->Content() : ReadFile(path), lines) + (isStored ? "" : " not stored");
}

Operation LogOperation(const TemporaryFolder& folder, const std::string& name, LogTarget target,
                       const std::string& text) {
    const Texts messages = {"one " + text, "two " + text, "three " + text};
    return {"log " + name,
            [=, path = folder / "log"] { return LogLines(path, target.kind, messages); },
            target.undisturbed, "(...)1"};
}

std::string OpenLog(const TemporaryFolder& folder, const std::string& name) {
    OpenLogFile((folder / "before").c_str());
    LogMessage("kept");
    const std::string path = folder / name;
    const std::int32_t status = Disturbed([&] { return OpenLogFile(path.c_str()); });
    return Outcome(status, folder.Path()) + " " + std::to_string(LinesOf(folder / "before").size());
}

std::string OpenLogWithoutStandardInput(const TemporaryFolder& folder) {
    const int input = fcntl(0, F_DUPFD_CLOEXEC, 3);
    close(0);
    const std::string outcome = OpenLog(folder, "log");
    const bool isTaken = fcntl(0, F_GETFD) != -1;
    dup2(input, 0);
    close(input);
    return outcome + (isTaken ? " the host's input" : "");
}

std::string RefuseModes(const TemporaryFolder& folder) {
    OpenLogFile((folder / "log").c_str());
    const std::int32_t sum = Disturbed([] {
        const std::int32_t status = SetDupKeyMode(2) + SetAllKeyMode(-1) + SetElsetKeyMode(7);
        LogMessage("message");
        return status;
    });
    LogMessage("afterwards");
    return std::to_string(sum) + " " +
           Marks(ReadFile(folder / "log"),
                 {"Error-SetDupKeyMode: invalid input value for DUPLICATION key mode.",
                  "Error-SetAllKeyMode: invalid input value for elset key mode.",
                  "Error-SetElsetKeyMode: invalid input value for elset key mode.",
                  Padded("message", 128), Padded("afterwards", 128)});
}

std::string CloseLog(const TemporaryFolder& folder) {
    OpenLogFile((folder / "log").c_str());
    FileIO::TraceLogError("cleared");
    Disturbed([] { return CloseLogFile(), 0; });
    return Outcome(FileIO::LogFileUnit, folder.Path()) + (TextUnits::IsOpen(6) ? " open" : "");
}

}  // namespace

std::vector<Operation> LogOperations(const TemporaryFolder& folder) {
    const std::string noOpening = "2 OpenLogFile: log file failed to open. 1";
    return {
        {"open a log", [&] { return OpenLog(folder, "log"); }, "0 1", noOpening},
        {"open a log without a standard input", [&] { return OpenLogWithoutStandardInput(folder); },
         "0 1", noOpening},
        {"close the log", [&] { return CloseLog(folder); }, "0"},
        LogOperation(folder, "short lines", {LogTarget::File, "1111"}, "x"),
        LogOperation(folder, "long lines", {LogTarget::File, "1111"}, std::string(1100, 'x')),
        LogOperation(folder, "lines of many parts", {LogTarget::File, "1111"}, ManyParts()),
        LogOperation(folder, "to a pipe", {LogTarget::ReadPipe, "1111"}, "x"),
        LogOperation(folder, "to a pipe whose reader left", {LogTarget::LeftPipe, "0001"}, "x"),
        LogOperation(folder, "over the file-size limit", {LogTarget::LimitedFile, "1001"},
                     std::string(120, 'x')),
        {"refuse modes", [&] { return RefuseModes(folder); }, "6 11111", "6 [01]{4}1"},
    };
}

}  // namespace corvale::test
