// The log and the units while signals storm, limits move, readers pause and writers are killed, at
// instants of chance. CORVALE_TIMES says how many rounds; without it a few.
#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

namespace corvale::FileIO {
namespace {

using test::Rounds;

constexpr std::int32_t kUnit = 11;
constexpr std::int32_t kWrite = 0, kAppend = 2;

constexpr std::size_t kLengths[] = {21, 129, 1000, 1002, 4001};

// The n-th line of a writer. Its length is one of many, its last character tells that it is whole.
std::string Line(char writer, int n) {
    std::string line = writer + std::to_string(n) + " ";
    line.resize(kLengths[static_cast<std::size_t>(n) % std::size(kLengths)] - 1, '.');
    return line + "|";
}

// How many of the first `lines` lines of a writer are in `content`, each up to its line end. What is
// before one on its line does not matter: a part that another writer left.
int CountWhole(const std::string& content, char writer, int lines) {
    int found = 0;
    std::size_t at = 0;
    for (int n = 0; n < lines; ++n) {
        const std::size_t next = content.find(Line(writer, n) + "\n", at);
        if (next == std::string::npos) continue;
        at = next + 1;
        ++found;
    }
    return found;
}

// How many lines have a part of another one before them, or are such a part at the end.
int CountParts(const std::string& path) {
    const auto lines = test::LinesOf(path);
    return static_cast<int>(std::count_if(lines.begin(), lines.end(), [](const auto& line) {
        return std::count(std::begin(kLengths), std::end(kLengths), line.size()) == 0;
    }));
}

class Storm : public testing::Test {
  protected:
    ~Storm() override {
        TextUnits::Close(kUnit);
        CloseLogFile();
    }
    test::TemporaryFolder folder;
    std::mt19937 random{7};

    useconds_t Micros(unsigned most) { return static_cast<useconds_t>(random() % most); }
};

// ---- signals

void StartSignals(bool restartsCalls) {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = restartsCalls ? SA_RESTART : 0;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often = {{0, 100}, {0, 100}};
    setitimer(ITIMER_REAL, &often, nullptr);
}

// Reads all that comes, in pieces of chance with pauses between them.
std::string ReadSlowly(int reader, std::mt19937& random) {
    std::string content;
    std::vector<char> piece(50000);
    for (;;) {
        const ssize_t count = read(reader, piece.data(), 1 + random() % (piece.size() - 1));
        if (count <= 0) return content;
        content.append(piece.data(), static_cast<std::size_t>(count));
        if (random() % 4 == 0) usleep(static_cast<useconds_t>(random() % 3000));
    }
}

bool LogsToBoth(const std::string& log, const std::string& pipe, const std::string& input,
                int lines) {
    bool isGood = OpenLogFile(log.c_str()) == 0 && FileOpen(kUnit, pipe, kWrite) == 0;
    for (int n = 0; n < lines; ++n) {
        TraceLogInfo(Line('f', n));
        isGood = isGood && TextUnits::WriteLine(kUnit, Line('p', n));
    }
    return isGood && CorvaleLoadFile(input.c_str()) == 0;
}

TEST_F(Storm, SignalsAndPausesLoseAndDoubleNoLine) {
    constexpr int lines = 100;
    test::WriteFile(folder / "in", "QZ_MOIC 5\n");
    mkfifo((folder / "pipe").c_str(), 0600);
    const int times = Rounds(10);
    for (int round = 0; round < times && !HasFailure(); ++round) {
        const int reader = open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        const pid_t writer = test::StartChild([&] {
            StartSignals(round % 2 == 0);
            return LogsToBoth(folder / "log", folder / "pipe", folder / "in", lines);
        });
        pollfd waiting = {reader, POLLIN, 0};
        poll(&waiting, 1, -1);
        fcntl(reader, F_SETFL, 0);
        const std::string piped = ReadSlowly(reader, random);
        close(reader);
        EXPECT_EQ(test::WaitFor(writer), 0);
        std::string logged, wanted;
        for (int n = 0; n < lines; ++n) {
            logged += Line('f', n) + "\n";
            wanted += Line('p', n) + "\n";
        }
        EXPECT_TRUE(test::ReadFile(folder / "log") == logged) << "round " << round;
        EXPECT_TRUE(piped == wanted) << "round " << round;
    }
    std::printf("%d rounds of signals and pauses: every line once\n", times);
}

// ---- limits

void Limit(__rlimit_resource_t resource, rlim_t soft) {
    rlimit limit = {};
    getrlimit(resource, &limit);
    limit.rlim_cur = std::min(soft, limit.rlim_max);
    setrlimit(resource, &limit);
}

// Opens a file in every way while the limits move, and counts in how many of them that failed; what
// a call that failed has left of the file must be all of it.
bool OpensAmidLimits(const test::TemporaryFolder& folder, std::uint32_t seed, int& refused) {
    std::signal(SIGXFSZ, SIG_IGN);
    close(0);  // the descriptor that a host may leave, and that must not be ours
    std::atomic<bool> isOver = false;
    const std::string content(300, 'c');
    std::thread mover([&] {
        std::mt19937 chance(seed);
        while (!isOver) {
            Limit(RLIMIT_NOFILE, 3 + chance() % 12);
            Limit(RLIMIT_FSIZE, chance() % 2 == 0 ? 310 : RLIM_INFINITY);
        }
        Limit(RLIMIT_NOFILE, RLIM_INFINITY);  // UBSan opens a pipe to look at a thread that ends
    });
    bool isGood = true;
    std::mt19937 chance(seed + 1);
    const std::string path = folder / "precious";
    for (int n = 0; n < 200 && isGood; ++n) {
        const int file = open(path.c_str(), O_WRONLY | O_TRUNC | O_CREAT | O_CLOEXEC, 0600);
        if (file < 0) continue;
        isGood = write(file, content.data(), content.size()) == 300 && close(file) == 0;
        const auto way = static_cast<std::int32_t>(chance() % 4);
        const bool isLog = way == 3;
        const std::int32_t status = isLog ? OpenLogFile(path.c_str()) : FileOpen(kUnit, path, way);
        refused += status == 2;
        for (int line = 0; line < 3; ++line)
            static_cast<void>(TextUnits::WriteLine(isLog ? 6 : kUnit, "line"));
        TextUnits::Close(kUnit);
        CloseLogFile();
        Limit(RLIMIT_NOFILE, RLIM_INFINITY);
        struct stat now = {};
        isGood = isGood && stat(path.c_str(), &now) == 0 && (status == 0 || now.st_size == 300);
    }
    isOver = true;
    mover.join();
    return isGood;
}

TEST_F(Storm, LimitsThatMoveDestroyNoFile) {
    auto& refused = *static_cast<int*>(
        mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const int times = Rounds(5);
    for (int round = 0; round < times && !HasFailure(); ++round)
        EXPECT_TRUE(test::HoldsInChild([&] {
            return OpensAmidLimits(folder, static_cast<std::uint32_t>(round), refused);
        })) << "round "
            << round;
    EXPECT_GT(refused, 0);
    std::printf("%d rounds of moving limits: %d opens refused, no file harmed\n", times, refused);
}

// ---- killed writers of one file

TEST_F(Storm, KilledWritersOfOneFileLoseNoReturnedLine) {
    constexpr std::string_view writers = "abc";
    struct Shared {
        std::array<std::atomic<int>, 3> returned;
        std::atomic<int> opened;
        // A file opened while a line is being written may get an empty line more: not asked here.
        void AwaitAll() const {
            for (int wait = 0; opened < 3 && wait < 10'000; ++wait) usleep(100);
        }
    };
    auto& shared = *static_cast<Shared*>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const int times = Rounds(10);
    int lines = 0, parts = 0;
    for (int round = 0; round < times && !HasFailure(); ++round) {
        test::WriteFile(folder / "shared", "");
        shared.opened = 0;
        std::array<pid_t, 3> children = {};
        for (std::size_t i = 0; i < children.size(); ++i) {
            shared.returned[i] = 0;
            children[i] = test::StartChild([&, i] {
                if (FileOpen(kUnit, folder / "shared", kAppend) != 0) return false;
                ++shared.opened;
                shared.AwaitAll();
                for (int n = 0; TextUnits::WriteLine(kUnit, Line(writers[i], n)); ++n)
                    shared.returned[i] = n + 1;
                return false;
            });
        }
        shared.AwaitAll();
        for (const pid_t child : children) {
            usleep(200 + Micros(1500));
            kill(child, SIGKILL);
            EXPECT_TRUE(WIFSIGNALED(test::WaitFor(child)));
        }
        const std::string content = test::ReadFile(folder / "shared");
        for (std::size_t i = 0; i < children.size(); ++i) {
            EXPECT_EQ(CountWhole(content, writers[i], shared.returned[i]), shared.returned[i])
                << writers[i];
            lines += shared.returned[i];
        }
        EXPECT_EQ(content.find("\n\n"), std::string::npos) << "an empty line";
        parts += CountParts(folder / "shared");
    }
    std::printf(
        "%d rounds of 3 killed writers of one file: %d lines had returned, none lost; %d "
        "parts of lines left\n",
        times, lines, parts);
}

}  // namespace
}  // namespace corvale::FileIO
