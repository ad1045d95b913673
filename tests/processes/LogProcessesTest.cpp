// The log when processes are killed, fork or lack room. CORVALE_TIMES says how often the first two
// are tried; without it they are tried a few times.
#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <map>
#include <random>
#include <thread>

namespace corvale::FileIO {
namespace {

using namespace std::literals;
using test::Padded;
using test::Rounds;
using test::Stored;

// The n-th message of a writer; now and then a long one. Takes no memory: in a child of a fork the
// allocator may be locked.
class Message {
  public:
    Message(const std::string& writer, int n) {
        const int size = std::snprintf(text_.data(), text_.size(), "%s %d %0*d", writer.c_str(), n,
                                       n % 10 == 9 ? 1500 : 60, 0);
        size_ = static_cast<std::size_t>(size);
    }
    [[nodiscard]] std::string_view Text() const { return {text_.data(), size_}; }

  private:
    std::array<char, 1600> text_;
    std::size_t size_;
};

// How many lines of each writer `content` holds, whole and in order. What follows the last line end
// is left in `rest`; a line that is not the next of its writer is reported.
std::map<std::string, int> CountLines(std::string_view content, std::string_view& rest) {
    std::map<std::string, int> counts;
    for (rest = content;;) {
        const std::size_t lineEnd = rest.find('\n');
        if (lineEnd == std::string_view::npos) return counts;
        const std::string_view line = rest.substr(0, lineEnd);
        const std::string writer(line.substr(0, line.find(' ')));
        if (line != Message(writer, counts[writer]++).Text()) {
            ADD_FAILURE() << "not the next line of its writer: " << line.substr(0, 80);
            return counts;
        }
        rest.remove_prefix(lineEnd + 1);
    }
}

class Processes : public testing::Test {
  protected:
    ~Processes() override { CloseLogFile(); }

    [[nodiscard]] bool Open(const std::string& name = "log") const {
        return OpenLogFile((folder / name).c_str()) == 0;
    }
    test::TemporaryFolder folder;
};

// How many lines each thread of a child has been told are written.
using Returned = std::array<std::atomic<int>, 2>;

void LogUntilKilled(Returned& returned) {
    std::thread information([&] {
        for (;; ++returned[0]) TraceLogInfo(Message("info", returned[0]).Text());
    });
    for (;; ++returned[1]) TraceLogError(Message("error", returned[1]).Text());
}

TEST_F(Processes, KilledAtAnyInstantTheyHaveLostNoLine) {
    auto& returned = *new (mmap(nullptr, sizeof(Returned), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Returned;
    std::mt19937 random(9);
    const int times = Rounds(20);
    int lines = 0, unfinished = 0;
    for (int i = 0; i < times && !HasFailure(); ++i) {
        returned[0] = returned[1] = 0;
        const pid_t child =
            test::StartChild([&] { return Open() && (LogUntilKilled(returned), true); });
        while (returned[0] == 0 || returned[1] == 0) usleep(100);
        usleep(static_cast<useconds_t>(random() % 5000));
        kill(child, SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(test::WaitFor(child)));

        const std::string content = test::ReadFile(folder / "log");
        std::string_view rest;
        auto counts = CountLines(content, rest);
        const std::array<int, 2> found = {counts["info"], counts["Error-error"]};
        for (std::size_t writer = 0; writer < found.size(); ++writer) {
            EXPECT_GE(found[writer], returned[writer]) << "a line that had returned is lost";
            EXPECT_LE(found[writer], returned[writer] + 1);
            lines += returned[writer];
        }
        // A kill stops the kernel at a border of pages: of lines that had not returned, one may be
        // there in part, at the end.
        const Message next[] = {{"info", returned[0]}, {"Error-error", returned[1]}};
        EXPECT_TRUE(next[0].Text().starts_with(rest) || next[1].Text().starts_with(rest)) << rest;
        unfinished += rest.empty() ? 0 : 1;
    }
    if (HasFailure()) return;
    std::printf("%d kills: %d lines had returned, none lost or torn; %d unfinished at the end\n",
                times, lines, unfinished);
    std::fflush(stdout);
}

// What a child does while threads of its parent log: none of this may hang or fail.
bool LogsAndLoads(const std::string& name, const std::string& input, const std::string& output) {
    double value = 0;
    for (int i = 0; i < 10; ++i) {
        TraceLogError(Message(name, i).Text());
        TraceLogInfo(Message(name, i).Text());
    }
    const bool isLoaded = CorvaleLoadFile(input.c_str()) == 0;
    GetMOICData(1, &value);
    std::int32_t unit = 0;
    return isLoaded && value == 5.0 && FileOpenMT(output, 0, unit) == 0 &&
           TextUnits::WriteLine(unit, "x");
}

TEST_F(Processes, ChildrenWorkWhateverThreadsDidAtTheFork) {
    ASSERT_TRUE(Open());
    test::WriteFile(folder / "input", "QZ_MOIC 5\n");
    const int children = Rounds(40);
    std::atomic<bool> isOver = false;
    std::map<std::string, int> counts;
    std::vector<std::thread> writers;
    std::array<int, 4> written = {};
    for (std::size_t i = 0; i < written.size(); ++i)
        writers.emplace_back([&, name = "t" + std::to_string(i), i] {
            std::array<char, 128> mixed;  // may be, of several errors
            for (int& n = written[i]; n < 2000 || !isOver; ++n) {
                TraceLogError(Message(name, n).Text());
                TraceLogInfo(Message(name, n).Text());
                LastLoggedErrMsg.Load(mixed);
                if (n % 100 == 0) usleep(1000);
            }
        });
    for (int child = 0; child < children && !HasFailure(); ++child) {
        const std::string name = "child" + std::to_string(child);
        counts["Error-" + name] = counts[name] = 10;
        EXPECT_TRUE(test::HoldsInChild([&, in = folder / "input", out = folder / "out"] {
            return LogsAndLoads(name, in, out);
        })) << name
            << " hangs where a lock stayed locked";
    }
    isOver = true;
    for (std::size_t i = 0; i < written.size(); ++i) {
        writers[i].join();
        const std::string name = "t" + std::to_string(i);
        counts["Error-" + name] = counts[name] = written[i];
    }
    std::string_view rest;
    const std::string content = test::ReadFile(folder / "log");
    EXPECT_EQ(CountLines(content, rest), counts);
    EXPECT_EQ(rest, "");
    if (HasFailure()) return;
    std::printf("%d children of a process whose threads log: all worked\n", children);
    std::fflush(stdout);
}

// ---- room

bool LimitFileSize(rlim_t size) {
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

// A disk of 32 KiB of the child's own, half of it taken by another file. False where the system does
// not give one; the full device then has to do.
bool MountSmallDisk(const std::string& folder) {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    if (mount("disk", folder.c_str(), "tmpfs", 0, "size=32k") != 0) return false;
    test::WriteFile(folder + "/other", std::string(16384, 'o'));
    return true;
}

// Logs until there is no room, also for a line of many parts, makes some, logs once more: lines are
// whole but for one, which is followed by a line of its own, and every message is stored.
template <class MakeRoom>
bool ResumesAfter(const std::string& log, MakeRoom makeRoom) {
    for (int i = 0; i < 1000; ++i) TraceLogError(std::string(99, 'x'));
    if (TextUnits::WriteLine(6, std::string(2000, '\n'))) return false;
    bool isGood = Stored(LastLoggedErrMsg) == Padded(std::string(99, 'x'), 128) && makeRoom();
    const std::string before = test::ReadFile(log);
    TraceLogInfo("again");
    isGood = isGood && Stored(LogLastInfoMsg) == Padded("again", 128) && before.size() < 106000;
    return isGood &&
           test::ReadFile(log) == before + (before.back() == '\n' ? "" : "\n") + "again\n";
}

TEST_F(Processes, AFullDiskOnlyCostsLines) {
    const test::TemporaryFolder disk;
    EXPECT_TRUE(test::HoldsInChild([&] {
        if (!MountSmallDisk(disk.Path())) return true;
        const std::string log = disk / "log";
        return OpenLogFile(log.c_str()) == 0 &&
               ResumesAfter(log, [&] { return unlink((disk / "other").c_str()) == 0; });
    }));
    EXPECT_EQ(OpenLogFile("/dev/full"), 0);
    for (const char* text : {"one", "two"}) {
        TraceLogError(text);
        EXPECT_EQ(Stored(LastLoggedErrMsg), Padded(text, 128));
        EXPECT_FALSE(TextUnits::WriteLine(6, text));
    }
    ASSERT_TRUE(Open());
    LogMessage("again");
    EXPECT_EQ(test::LinesOf(folder / "log").size(), 1U);
}

// A child that any signal of writing would end; the limit is set before or after opening.
TEST_F(Processes, AFileSizeLimitOnlyCostsLines) {
    const struct {
        rlim_t limit;
        bool isSetBefore, isSignalIgnored;
        const char* why;
    } cases[] = {
        {1060, true, false, "full at the end of a line"},
        {1100, true, false, "full inside a line"},
        {1100, false, false, "set while the log is open"},
        {106, false, true, "set at the log's size by a host that ignores the signal"},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(test::HoldsInChild([&] {
            if (c.isSetBefore) LimitFileSize(c.limit);
            if (!Open()) return false;
            if (c.isSignalIgnored) {
                std::signal(SIGXFSZ, SIG_IGN);
                TraceLogError(std::string(99, 'x'));
            }
            LimitFileSize(c.limit);
            return ResumesAfter(folder / "log", [] { return LimitFileSize(RLIM_INFINITY); });
        })) << c.why;
}

TEST_F(Processes, OthersMayWriteToTheLogAndRemoveIt) {
    ASSERT_TRUE(Open());
    LogMessage("before");
    std::ofstream(folder / "log", std::ios::app) << "of another program\n";
    LogMessage("after");
    EXPECT_EQ(test::LinesOf(folder / "log").size(), 3U) << "no line is written over";
    std::filesystem::remove(folder / "log");
    EXPECT_TRUE(TextUnits::WriteLine(6, "nobody sees this"));
    EXPECT_FALSE(std::filesystem::exists(folder / "log"));
}

// Readers come and go; a SIGPIPE of the host's own, which it holds back, is left to it.
TEST_F(Processes, APipeWithoutReadersOnlyCostsLines) {
    EXPECT_TRUE(test::HoldsInChild([&] {
        test::NamedPipe pipe(folder / "pipe");
        bool isGood = Open("pipe");
        sigset_t ofHost, pending;
        sigemptyset(&ofHost);
        for (const bool isHeld : {false, true}) {
            if (isHeld) {
                sigaddset(&ofHost, SIGPIPE);
                sigprocmask(SIG_BLOCK, &ofHost, nullptr);
                raise(SIGPIPE);
            }
            pipe.Leave();
            isGood = isGood && !TextUnits::WriteLine(6, "nobody reads this");
            pipe.Come();
            isGood = isGood && TextUnits::WriteLine(6, "again") && pipe.Content() == "again\n";
        }
        sigpending(&pending);
        return isGood && sigismember(&pending, SIGPIPE) == 1;
    }));
}

}  // namespace
}  // namespace corvale::FileIO
