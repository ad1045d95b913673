#include "Operations.hpp"

#include "SystemCalls.hpp"

#include <corvale/Corvale.h>

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <array>
#include <thread>

namespace corvale::test {

namespace {

using FileIO::FileOpen;
using FileIO::FileOpenMT;
using Texts = std::vector<std::string>;

constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

std::string LoadOutcome(std::int32_t status, const TemporaryFolder& folder) {
    double first = 0;
    GetMOICData(1, &first);
    return Outcome(status, folder.Path()) + " moic " + std::to_string(static_cast<int>(first)) +
           " all " + std::to_string(GetAllKeyMode());
}

std::string Load(const TemporaryFolder& folder, const std::string& name) {
    const std::string path = name.starts_with('/') ? name : folder / name;
    return LoadOutcome(Disturbed([&] { return CorvaleLoadFile(path.c_str()); }), folder);
}

std::string LoadPipe(const TemporaryFolder& folder) {
    const NamedPipe pipe(folder / "pipe");
    WriteFile(folder / "pipe", "QZ_MOIC 5\nQZ_DMA_ALL_ON\n");
    return Load(folder, "pipe");
}

std::string LoadUnit(const TemporaryFolder& folder) {
    std::int32_t unit = 0, status = 0;
    if (FileOpenMT(folder / "small", kRead, unit) != 0) return "not open";
    status = Disturbed([&] { return CorvaleCardReading::ReadCorvaleFrFileUnit(unit); });
    TextUnits::Close(unit);
    return LoadOutcome(status, folder);
}

// A load while another reading waits for its pipe, so that memory is needed for this one.
std::string LoadBesideAReading(const TemporaryFolder& folder) {
    NamedPipe pipe(folder / "pipe");
    const int writer = open((folder / "pipe").c_str(), O_WRONLY | O_CLOEXEC);
    std::int32_t unit = 0;
    if (FileOpenMT(folder / "pipe", kRead, unit) != 0 || write(writer, "*", 1) != 1)
        return "no pipe";
    pipe.Leave();
    std::thread reading([&] { CorvaleCardReading::ReadCorvaleFrFileUnit(unit); });
    for (int unread = 1; unread > 0; usleep(100)) ioctl(writer, FIONREAD, &unread);
    std::string outcome = Load(folder, "big");
    close(writer);
    reading.join();
    TextUnits::Close(unit);
    pipe.Come();
    return outcome;
}

std::string Open(const TemporaryFolder& folder, const std::string& name, std::int32_t ioMode,
                 const std::string& before) {
    if (!name.starts_with('/')) WriteFile(folder / name, before);
    const std::string path = name.starts_with('/') ? name : folder / name;
    static_cast<void>(FileOpen(kTestUnit, folder / "before", kWrite));
    const std::int32_t status = Disturbed([&] { return FileOpen(kTestUnit, path, ioMode); });
    if (TextUnits::IsOpen(kTestUnit) != (status == 0)) return "the unit does not fit the status";
    if (status == 0 && ioMode != kRead && !TextUnits::WriteLine(kTestUnit, "new")) return "no line";
    return Outcome(status, folder.Path()) + " " + Joined(ReadFile(path));
}

std::string Create(const TemporaryFolder& folder) {
    const std::string path = folder / "created";
    std::filesystem::remove(path);
    const std::int32_t status = Disturbed([&] { return FileOpen(kTestUnit, path, kWrite); });
    return Outcome(status, folder.Path()) +
           (std::filesystem::exists(path) ? " there" : " not there");
}

std::string OpenFresh(const TemporaryFolder& folder, std::int32_t ioMode) {
    std::int32_t unit = -1;
    const std::string path = folder / (ioMode == kRead ? "small" : "out");
    const std::int32_t status = Disturbed([&] { return FileOpenMT(path, ioMode, unit); });
    if ((unit != 0) != (status == 0)) return "the number does not fit the status";
    TextUnits::Close(unit);
    return Outcome(status, folder.Path());
}

// Three columns of each line; "-" where none is read, "<" for a rewind, "!" for one that fails.
std::string ReadLines(const TemporaryFolder& folder) {
    WriteFile(folder / "in", "a\r\n" + std::string(5000, 'b') + "\nc");
    if (FileOpen(kTestUnit, folder / "in", kRead) != 0) return "not open";
    std::array<std::array<char, 3>, 5> lines;
    std::array<bool, 5> isRead = {};
    const bool isRewound = Disturbed([&] {
        for (std::size_t i = 0; i < 4; ++i) isRead[i] = TextUnits::ReadLine(kTestUnit, lines[i]);
        const bool isDone = TextUnits::Rewind(kTestUnit);
        isRead[4] = TextUnits::ReadLine(kTestUnit, lines[4]);
        return isDone;
    });
    std::string outcome;
    for (std::size_t i = 0; i < lines.size(); ++i)
        outcome += (i < 4       ? ""
                    : isRewound ? "<"
                                : "!") +
                   (isRead[i] ? std::string(lines[i].data(), 3) : "-");
    return outcome;
}

std::string WriteLines(const TemporaryFolder& folder, const std::string& text) {
    if (FileOpen(kTestUnit, folder / "out", kWrite) != 0) return "not open";
    const Texts lines = {"one " + text, "two " + text, "three " + text};
    std::string returned = "000";
    Disturbed([&] {
        for (std::size_t i = 0; i < 3; ++i)
            if (TextUnits::WriteLine(kTestUnit, lines[i])) returned[i] = '1';
        return 0;
    });
    const bool isWritten = TextUnits::WriteLine(kTestUnit, "");
    const std::string marks =
        Marks(ReadFile(folder / "out"), {lines[0], lines[1], lines[2], ""}).substr(0, 3);
    return isWritten && marks == returned ? marks : marks + " but returned " + returned;
}

}  // namespace

std::vector<Operation> FileOperations(const TemporaryFolder& folder) {
    WriteFile(folder / "big", "QZ_MOIC 5\n" + std::string(300000, '*') + "\nQZ_DMA_ALL_ON\n");
    const std::string unable = "2 FileOpen(MT)?: Unable to open file \".*\" for (reading|writing).";
    const std::string notLoaded = unable + " moic 0 all 0";
    return {
        {"load a file", [&] { return Load(folder, "small"); }, "0 moic 5 all 1",
         "0 moic 0 all 0|" + notLoaded},
        {"load a big file", [&] { return Load(folder, "big"); }, "0 moic 5 all 1",
         "0 moic [05] all 0|" + notLoaded},
        {"load a pipe", [&] { return LoadPipe(folder); }, "0 moic 5 all 1",
         "0 moic 0 all 0|" + notLoaded},
        {"load the null device", [&] { return Load(folder, "/dev/null"); }, "0 moic 0 all 0",
         notLoaded},
        {"load beside a reading", [&] { return LoadBesideAReading(folder); }, "0 moic 5 all 1",
         "0 moic [05] all 0|" + notLoaded},
        {"load a unit", [&] { return LoadUnit(folder); }, "0 moic 5 all 1", "0 moic 0 all 0"},
        {"open to read", [&] { return Open(folder, "in", kRead, "old\n"); }, "0 old|",
         unable + " old\\|"},
        {"open to write", [&] { return Open(folder, "out", kWrite, "old\n"); }, "0 new|",
         unable + " old\\|"},
        {"open to create", [&] { return Create(folder); }, "0 there", unable + " not there"},
        {"open to append", [&] { return Open(folder, "out", kAppend, "old\n"); }, "0 old|new|",
         "0 old\\|\\|new\\||" + unable + " old\\|"},
        {"append to a line", [&] { return Open(folder, "out", kAppend, "old"); }, "0 old|new|",
         unable + " old"},
        {"open a fresh unit to read", [&] { return OpenFresh(folder, kRead); }, "0", unable},
        {"open a fresh unit to write", [&] { return OpenFresh(folder, kWrite); }, "0", unable},
        {"read lines", [&] { return ReadLines(folder); }, "a  bbbc  -<a  ", "[-abc ]*[<!][-abc ]*"},
        {"write lines", [&] { return WriteLines(folder, "x"); }, "111", "[01]{3}"},
        {"write lines of many parts", [&] { return WriteLines(folder, ManyParts()); }, "111",
         "[01]{3}"},
    };
}

}  // namespace corvale::test
