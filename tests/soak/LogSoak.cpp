// Opens and closes of the log, 100000 or as many as the argument says: every other open fails, every
// third log is closed, the others are replaced while they are open.
#include "SoakFolder.hpp"

#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>

#include <chrono>

namespace {

using corvale::soak::Expect;

std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

std::string LastError() {
    std::string text(CORVALE_MESSAGE_WIDTH, '?');
    GetLastErrMsg(text.data());
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

void OpenAnother(const std::string& name, bool isUsable, std::ptrdiff_t descriptors) {
    const std::int32_t status = OpenLogFile(name.c_str());
    Expect(corvale::FileIO::LogFileUnit == 6, "the unit is 6 after every open");
    Expect(OpenDescriptors() == descriptors + (isUsable ? 1 : 0), "one descriptor at most");
    if (!isUsable) {
        Expect(status == CORVALE_FAILED, "the open fails");
        Expect(LastError() == "OpenLogFile: log file failed to open.", "the failure has a reason");
        return;
    }
    Expect(status == CORVALE_OK && std::filesystem::file_size(name) == 0, "the log starts empty");
    LogMessage("a line");
    Expect(std::filesystem::file_size(name) == CORVALE_MESSAGE_WIDTH + 1, "the line is there");
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 100000;
    const corvale::soak::Folder folder;
    const std::string names[] = {folder / "a.log", folder / "missing/a.log", folder / "b.log",
                                 folder / ""};
    const std::ptrdiff_t descriptors = OpenDescriptors();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        OpenAnother(names[i % 4], i % 2 == 0, descriptors);
        if (i % 3 != 0 && i + 1 < count) continue;
        CloseLogFile();
        Expect(corvale::FileIO::LogFileUnit == 0 && OpenDescriptors() == descriptors, "it closes");
        Expect(LastError().empty(), "closing clears the error");
    }
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    std::printf("%d opens, %d of them failed, %.1f us each with its checks: %ld differences\n",
                count, count / 2, time.count() / count, corvale::soak::gDifferences.load());
    return corvale::soak::gDifferences == 0 ? 0 : 1;
}
