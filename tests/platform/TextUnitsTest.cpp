#include <corvale/Corvale.h>

#include <corvale/platform/TextUnits.hpp>

#include <corvale/core/FileIO.hpp>

#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <set>
#include <thread>

namespace corvale::TextUnits {
namespace {

using namespace std::literals;
using FileIO::FileOpen;
using FileIO::FileOpenMT;
using test::TemporaryFolder;

constexpr std::int32_t kUnit = 11;
constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

// The next line of kUnit in `width` columns; a difference if more than those are written.
std::optional<std::string> NextLine(std::size_t width) {
    std::string line(width + 5000, '?');
    if (!ReadLine(kUnit, std::span(line).first(width))) return std::nullopt;
    if (line.find_first_not_of('?', width) != std::string::npos) return "written behind the line";
    line.resize(width);
    return line;
}

struct ReadCase {
    std::string content;
    std::vector<std::string> lines;  // in six columns
    const char* why;
};
const ReadCase kReads[] = {
    {"", {}, "an empty file has no line"},
    {"a\nbc", {"a     ", "bc    "}, "the last line needs no line end"},
    {"a\r\n\r\nb\r\n", {"a     ", "      ", "b     "}, "CR LF is one line end"},
    {"\r\r\n", {"\r     "}, "only the CR before LF belongs to the line end"},
    {"a\rb\n\r", {"a\rb   ", "\r     "}, "a CR elsewhere is a character"},
    {"a\0b\n\0\n"s, {"a\0b   "s, "\0     "s}, "so is a NUL"},
    {"12345\r\n123456\r\n", {"12345 ", "123456"}, "a CR in or after the last column"},
    {std::string(1000000, 'a') + "\n8", {"aaaaaa", "8     "}, "what does not fit is skipped"},
    {std::string(4095, 'a') + "\r\n8", {"aaaaaa", "8     "}, "CR and LF in different reads"},
};

TEST(TextUnits, ReadLinesAsTheyStand) {
    const TemporaryFolder folder;
    for (const auto& [content, lines, why] : kReads) {
        test::WriteFile(folder / "in", content);
        ASSERT_EQ(FileOpen(kUnit, folder / "in", kRead), 0);
        NextLine(6);  // what was read with it must not come again
        for (int round = 1; round <= 2; ++round) {
            EXPECT_TRUE(Rewind(kUnit)) << why;
            for (const std::string& line : lines)
                EXPECT_EQ(NextLine(6), line) << why << ", round " << round;
            EXPECT_EQ(NextLine(6), std::nullopt) << why << ", round " << round;
        }
    }
    Close(kUnit);
}

TEST(TextUnits, CutALineInAnyOfItsReads) {
    const TemporaryFolder folder;
    test::WriteFile(folder / "in", std::string(9000, 'a') + "\n");
    for (const std::size_t width : {4000U, 4096U, 4100U, 8191U, 8192U, 8193U}) {
        ASSERT_EQ(FileOpen(kUnit, folder / "in", kRead), 0);
        EXPECT_EQ(NextLine(width), std::string(width, 'a')) << width;
    }
    Close(kUnit);
}

TEST(TextUnits, AnyNumberNamesAUnit) {
    const TemporaryFolder folder;
    const std::int32_t units[] = {-1, 0, 3, 6, 1000000, 1000001, INT_MIN, INT_MAX};
    for (const std::int32_t unit : units)
        EXPECT_EQ(FileOpen(unit, folder / std::to_string(unit), kWrite), 0) << unit;
    // Fresh numbers go up by 64; one that is in use by then is passed over.
    std::int32_t fresh = 0, later = 0;
    EXPECT_EQ(FileOpenMT(folder / "fresh", kWrite, fresh), 0);
    const std::int32_t taken = fresh + 64;
    EXPECT_EQ(FileOpen(taken, folder / "taken", kWrite), 0);
    Close(fresh);
    EXPECT_EQ(FileOpenMT(folder / "later", kWrite, later), 0);
    EXPECT_TRUE(IsOpen(taken) && WriteLine(taken, "mine"));
    EXPECT_TRUE(later != taken && WriteLine(later, "fresh"));
    Close(taken);
    EXPECT_EQ(test::ReadFile(folder / "taken"), "mine\n");
    for (const std::int32_t unit : units) EXPECT_TRUE(WriteLine(unit, std::to_string(unit)));
    for (const std::int32_t unit : units) {
        Close(unit);
        EXPECT_EQ(test::ReadFile(folder / std::to_string(unit)), std::to_string(unit) + "\n");
    }
    Close(later);
}

TEST(TextUnits, WhatIsATextFile) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[1]);
    const struct {
        std::string name;
        std::int32_t ioMode, status;
        const char* why;
    } cases[] = {
        {folder.Path(), kRead, 2, "a directory opens for reading, but has no lines"},
        {folder / "fifo", kWrite, 2, "a named pipe without a reader does not block"},
        {folder / ("a\0b"s), kWrite, 2, "a NUL cuts no name"},
        {"/dev/zero", kRead, 2, "a device that never ends"},
        {"/dev/null", kRead, 0, "the null device is an empty file"},
        {"/dev/null", kWrite, 0, "and takes everything"},
        {"/dev/full", kAppend, 0, "a device that will refuse each line"},
        {"/dev/fd/" + std::to_string(ends[0]), kRead, 0, "an unnamed pipe: its writer has been"},
        {std::string(4086, '/') + "/dev/null", kRead, 0, "the longest name"},
        {std::string(4087, '/') + "/dev/null", kRead, 2, "one more character"},
    };
    const auto before = test::OpenDescriptors();
    for (const auto& [name, ioMode, status, why] : cases) {
        EXPECT_EQ(FileOpen(kUnit, name, ioMode), status) << why;
        EXPECT_EQ(IsOpen(kUnit), status == 0) << why;
        Close(kUnit);
        EXPECT_EQ(test::OpenDescriptors(), before) << why;
    }
    close(ends[0]);
    EXPECT_FALSE(std::filesystem::exists(folder / "a"));
}

TEST(TextUnits, WaitTwoSecondsForAWriterWhateverSignalsCome) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    const auto hostsHandler = std::signal(SIGUSR1, [](int) {});
    std::atomic<bool> isOver = false;
    std::thread disturber([&isOver, waiting = pthread_self()] {
        for (int i = 0; i < 1500 && !isOver; ++i, usleep(5000)) pthread_kill(waiting, SIGUSR1);
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(FileOpen(kUnit, folder / "fifo", kRead), 2);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6));
    isOver = true;
    disturber.join();
    std::signal(SIGUSR1, hostsHandler);
}

TEST(TextUnits, ReadAPipeWhoseWriterComesLater) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    std::thread writer([&] {
        std::ofstream pipe(folder / "fifo");
        usleep(200000);  // it is there, and has nothing to say yet
        pipe << "one\n" << std::flush << "two" << std::flush;
    });
    EXPECT_EQ(FileOpen(kUnit, folder / "fifo", kRead), 0);
    EXPECT_TRUE(Rewind(kUnit)) << "nothing has been read yet";
    EXPECT_EQ(NextLine(3), "one");
    EXPECT_FALSE(Rewind(kUnit)) << "a pipe does not go back";
    EXPECT_EQ(NextLine(3), "two");
    EXPECT_EQ(NextLine(3), std::nullopt);
    writer.join();
    Close(kUnit);
}

// A terminal that the user can stop and whose output the test reads.
struct Terminal {
    int reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    bool isUnlocked = grantpt(reader) == 0 && unlockpt(reader) == 0;
    std::string name = ptsname(reader);
};

// How many lines a reader gets that begins only after a while; what is open on kUnit must take all.
int LinesReadLate(int reader) {
    constexpr int lines = 1000;
    std::thread writer([&] {
        int written = 0;
        for (int i = 0; i < lines; ++i) written += WriteLine(kUnit, std::string(127, 'x'));
        EXPECT_EQ(written, lines);
        EXPECT_TRUE(WriteLine(kUnit, std::string(100000, 'x'))) << "longer than the pipe";
    });
    usleep(1500000);
    std::vector<char> bytes(1 << 20);
    std::ptrdiff_t ends = 0;
    while (ends < lines + 1) {
        const ssize_t count = read(reader, bytes.data(), bytes.size());
        if (count <= 0) break;
        ends += std::count(bytes.begin(), bytes.begin() + count, '\n');
    }
    writer.join();
    return static_cast<int>(ends);
}

TEST(TextUnits, WaitForAReaderThatPauses) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    const int reader = open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    fcntl(reader, F_SETFL, 0);
    ASSERT_EQ(FileOpen(kUnit, folder / "fifo", kWrite), 0);
    EXPECT_EQ(LinesReadLate(reader), 1001);

    const Terminal terminal;
    ASSERT_EQ(FileOpen(kUnit, terminal.name, kWrite), 0);
    EXPECT_EQ(LinesReadLate(terminal.reader), 1001) << "a terminal";
    close(terminal.reader);
    EXPECT_FALSE(WriteLine(kUnit, "x")) << "a terminal that is gone";

    ASSERT_EQ(FileOpen(kUnit, folder / "fifo", kWrite), 0);
    close(reader);
    EXPECT_FALSE(WriteLine(kUnit, "x")) << "nobody reads; SIGPIPE would have ended the program";
    Close(kUnit);
}

// A thread that waits for its reader does not stop the others, not even on its own unit.
TEST(TextUnits, WaitWithoutStoppingOthers) {
    EXPECT_TRUE(test::HoldsInChild([] {
        const TemporaryFolder folder;
        const test::NamedPipe pipe(folder / "pipe");
        if (FileOpen(kUnit, folder / "pipe", kWrite) != 0) return false;
        std::atomic<int> written = 0;
        std::thread waiting([&] {
            while (WriteLine(kUnit, std::string(99, 'x'))) ++written;
        });
        int before = -1;
        while (written != before) before = written, usleep(100000);

        std::int32_t unit = 0;
        bool isGood = FileOpenMT(folder / "other", kWrite, unit) == 0 && WriteLine(unit, "x");
        FileIO::TraceLogError("error");
        isGood = isGood && test::HoldsInChild([&] {
                     return WriteLine(unit, "of a child") &&
                            FileOpen(kUnit, folder / "third", kWrite) == 0;
                 });
        isGood = isGood && FileOpen(kUnit, folder / "other", kRead) == 0;  // ends the waiting
        waiting.join();
        return isGood && NextLine(1) == "x";
    }));
}

struct WriteCase {
    std::string before;
    std::string text, after;
    const char* why;
};
const WriteCase kWrites[] = {
    {"old\n", "new  ", "old\nnew  \n", "trailing blanks are written"},
    {"old", "", "old\n\n", "a line that had no end gets one, before an empty one too"},
    {"", "a\nb\r\nc", "a b  c\n", "line ends inside become blanks"},
    {"", "a\0b\x1b\xff"s, "a\0b\x1b\xff\n"s, "everything else stays"},
    {"", std::string(1000, '\n'), std::string(1000, ' ') + "\n", "the longest short line"},
    {"old", std::string(1001, '\r'), "old\n" + std::string(1001, ' ') + "\n", "many parts"},
    {"", std::string(5000, 'x'), std::string(5000, 'x') + "\n", "one long part"},
};

TEST(TextUnits, AppendLines) {
    const TemporaryFolder folder;
    for (const auto& [before, text, after, why] : kWrites) {
        test::WriteFile(folder / "out", before);
        ASSERT_EQ(FileOpen(kUnit, folder / "out", kAppend), 0);
        EXPECT_EQ(test::ReadFile(folder / "out"), before) << "opening alone changes nothing";
        EXPECT_TRUE(WriteLine(kUnit, text)) << why;
        EXPECT_EQ(test::ReadFile(folder / "out"), after) << why;
    }
    Close(kUnit);
}

// How many of the first descriptors a program that is started by exec would get.
std::ptrdiff_t Inherited() {
    std::ptrdiff_t count = 0;
    for (int descriptor = 0; descriptor < 100; ++descriptor)
        count += fcntl(descriptor, F_GETFD) == 0;
    return count;
}

TEST(TextUnits, DescriptorsStayApartFromTheHosts) {
    const TemporaryFolder folder;
    EXPECT_TRUE(test::HoldsInChild([&] {
        for (const int standards : {0, 3}) {
            for (int standard = 0; standard < standards; ++standard) close(standard);
            const auto before = Inherited();
            if (FileOpen(kUnit, folder / "out", kAppend) != 0 || Inherited() != before)
                return false;
        }
        return fcntl(0, F_GETFD) == -1;
    }));
}

bool Limit(__rlimit_resource_t resource, rlim_t count) {
    const rlimit limit = {count, count};
    return setrlimit(resource, &limit) == 0;
}

// As many units as the system gives, then one more when one has been closed.
bool OpensUpToALimit(const std::string& path, rlim_t descriptors, std::size_t least) {
    if (!Limit(RLIMIT_NOFILE, descriptors)) return false;
    const auto before = test::OpenDescriptors();
    std::vector<std::int32_t> units;
    std::int32_t unit = -1;
    while (FileOpenMT(path, kRead, unit) == 0) units.push_back(unit);
    bool isGood = unit == 0 && FileOpen(kUnit, path, kRead) == 2 && !IsOpen(kUnit);
    Close(units.back());
    isGood =
        isGood && test::OpenDescriptors() == before + static_cast<std::ptrdiff_t>(units.size()) - 1;
    isGood = isGood && FileOpenMT(path, kRead, unit) == 0 && !IsOpen(units.back());
    units.back() = unit;
    isGood = isGood && std::set(units.begin(), units.end()).size() == units.size() &&
             std::ranges::min(units) >= 1000000;
    std::string line(1, '?');
    for (const std::int32_t open : units) isGood = isGood && ReadLine(open, line) && line == "x";
    for (const std::int32_t open : units) Close(open);
    return isGood && units.size() >= least && test::OpenDescriptors() == before;
}

TEST(TextUnits, ALimitLosesNothing) {
    const TemporaryFolder folder;
    test::WriteFile(folder / "in", "x\n");
    EXPECT_TRUE(test::HoldsInChild([&] { return OpensUpToALimit(folder / "in", 4096, 4050); }))
        << "as many units as descriptors";
    EXPECT_TRUE(test::HoldsInChild([&] { return OpensUpToALimit(folder / "in", 30, 6); }))
        << "few descriptors";
}

// Whether opening `name` in every way fails, and leaves the file as it is.
bool FailsAndKeeps(const TemporaryFolder& folder, const std::string& name) {
    std::int32_t unit = 0;
    const bool fails = FileOpen(kUnit, folder / name, kWrite) == 2 &&
                       FileOpen(kUnit, folder / name, kAppend) == 2 &&
                       FileOpenMT(folder / name, kWrite, unit) == 2 &&
                       OpenLogFile((folder / name).c_str()) == 2;
    return fails && (name == "new") != std::filesystem::exists(folder / name);
}

TEST(TextUnits, AFailedOpenDestroysNothing) {
    const TemporaryFolder folder;
    test::WriteFile(folder / "precious", "content\n");
    EXPECT_TRUE(test::HoldsInChild([&] {
        std::int32_t unit = 0;
        while (FileOpenMT("/dev/null", kRead, unit) == 0) {}
        return FailsAndKeeps(folder, "precious") && FailsAndKeeps(folder, "new");
    })) << "no more units or descriptors";
    EXPECT_TRUE(test::HoldsInChild([&] {
        while (dup(1) != -1) {}
        close(0);
        return FailsAndKeeps(folder, "precious") && FailsAndKeeps(folder, "new");
    })) << "one descriptor, but of the host's standard input";
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_TRUE(test::HoldsInChild([path = folder / "precious"] {
        if (!Limit(RLIMIT_AS, 0)) return false;
        void* volatile taken = std::malloc(1);
        while (taken != nullptr) taken = std::malloc(1 << 14);
        // Numbers 64 apart share an index, and each block of the table has one slot for it.
        std::int32_t unit = kUnit;
        while (FileOpen(unit, "/dev/null", kRead) == 0) unit += 64;
        return FileOpen(unit, path, kWrite) == 2 && !IsOpen(unit);
    })) << "no memory for more units";
#endif
    EXPECT_EQ(test::ReadFile(folder / "precious"), "content\n");
}

}  // namespace
}  // namespace corvale::TextUnits
