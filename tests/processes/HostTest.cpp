// The library in programs that fork, cancel threads, hold leases and lack permissions. CORVALE_TIMES
// says how often what depends on the instant is tried; without it a few times.
#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/NamedLocks.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <thread>

namespace corvale::FileIO {
namespace {

using namespace std::literals;
using test::Rounds;

constexpr std::int32_t kUnit = 11;
constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

// Calls that take every lock of the library.
bool UseLibrary() {
    TraceLogError("error");
    TraceLogInfo("information");
    std::int32_t unit = 0;
    const bool isOpen = FileOpenMT("/dev/null", kWrite, unit) == 0;
    const bool isWritten = TextUnits::WriteLine(unit, "line");
    TextUnits::Close(unit);
    const std::scoped_lock guard(NamedLocks::NamedLock("a name"));
    return isOpen && isWritten;
}

// ---- handlers of fork

enum Moment : std::uint8_t { kNever, kBefore, kInParent, kInChild };
std::atomic<Moment> callsAt = kNever;
std::atomic<bool> isGood = true;

template <Moment moment>
void Handle() {
    if (callsAt == moment) isGood = isGood && UseLibrary();
}
int RegisterHandlers() {
    return pthread_atfork(Handle<kBefore>, Handle<kInParent>, Handle<kInChild>);
}

// Before the library's own handlers, which its first call registers; some tests register them again,
// after those.
const int registered = RegisterHandlers();

// Forks while other threads do all the library can; every child must work.
bool ForksAmidThreads(int children) {
    std::atomic<bool> isOver = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            while (!isOver) isGood = isGood && UseLibrary();
        });
    for (int i = 0; i < children && isGood; ++i)
        isGood = isGood && test::HoldsInChild([] { return isGood && UseLibrary(); });
    isOver = true;
    for (std::thread& thread : threads) thread.join();
    return isGood;
}

class Host : public testing::Test {
  protected:
    ~Host() override {
        TextUnits::Close(kUnit);
        CloseLogFile();
    }
    test::TemporaryFolder folder;
};

TEST_F(Host, HandlersOfForkMayCallTheLibrary) {
    ASSERT_EQ(registered, 0);
    for (const bool isAgain : {false, true})
        for (const Moment moment : {kBefore, kInParent, kInChild})
            EXPECT_TRUE(test::HoldsInChild([&] {
                callsAt = moment;
                if (isAgain) CloseLogFile(), RegisterHandlers();
                return OpenLogFile((folder / "log").c_str()) == 0 && ForksAmidThreads(Rounds(20));
            })) << "moment "
                << int{moment} << (isAgain ? ", registered after the first call too" : "");
    std::printf("handlers of fork in 6 orders: %d children each, all worked\n", Rounds(20));
}

// ---- cancelled threads

// A frame of its own: AddressSanitizer does not see the unwinding of the one that is cancelled.
[[gnu::noinline]] bool Calls(const std::string& input, const std::string& output) {
    return UseLibrary() && SetDupKeyMode(7) == 2 && CorvaleLoadFile(input.c_str()) == 0 &&
           FileOpen(kUnit, output, kAppend) == 0 &&
           TextUnits::WriteLine(kUnit, std::string(3000, '\n'));
}

struct Cancelled {
    std::string input, output;
    std::atomic<bool> hasBegun = false;
    bool isSelf;  // cancels itself before its first call
};

void* CallUntilCancelled(void* argument) {
    auto& self = *static_cast<Cancelled*>(argument);
    if (self.isSelf) pthread_cancel(pthread_self());
    bool holds = true;
    do {
        self.hasBegun = true;
        holds = holds && Calls(self.input, self.output);
        pthread_testcancel();
    } while (holds);
    return nullptr;
}

TEST_F(Host, ACancelledThreadEndsAfterItsCall) {
    test::WriteFile(folder / "in", "QZ_MOIC 5\n");
    EXPECT_TRUE(test::HoldsInChild([&] {
        const bool isOpen = OpenLogFile((folder / "log").c_str()) == 0;
        int cancelled = 0;
        const int times = Rounds(50);
        for (int i = 0; i < times; ++i) {
            Cancelled data{folder / "in", folder / "out", false, i % 2 == 1};
            pthread_t thread;
            void* result = nullptr;
            pthread_create(&thread, nullptr, CallUntilCancelled, &data);
            while (!data.hasBegun) sched_yield();
            usleep(static_cast<useconds_t>(i % 7 * 50));
            pthread_cancel(thread);
            pthread_join(thread, &result);
            cancelled += result == PTHREAD_CANCELED;
        }
        return isOpen && cancelled == times && UseLibrary();
    })) << "the process has ended, or a thread has not";
    for (const std::string& line : test::LinesOf(folder / "log"))
        EXPECT_TRUE(line.starts_with("Error-") || line == "information") << line;
    std::printf("%d cancelled threads: each ended after its call\n", Rounds(50));
}

// ---- leases and permissions

// A child that has a lease on the file and gives it up a while after somebody wants the file.
class LeaseHolder {
  public:
    LeaseHolder(const std::string& path, int kind) {
        int ends[2];
        if (pipe(ends) != 0) return;
        child_ = test::StartChild([&] {
            sigset_t wanted;
            sigemptyset(&wanted);
            sigaddset(&wanted, SIGIO);
            sigprocmask(SIG_BLOCK, &wanted, nullptr);
            const int file = open(path.c_str(), kind == F_RDLCK ? O_RDONLY : O_RDWR);
            const bool isHeld = fcntl(file, F_SETLEASE, kind) == 0;
            int signal = 0;
            if (write(ends[1], isHeld ? "y" : "n", 1) != 1 || !isHeld) return false;
            sigwait(&wanted, &signal);
            usleep(20000);
            return fcntl(file, F_SETLEASE, F_UNLCK) == 0;
        });
        char answer = 'n';
        holds_ = read(ends[0], &answer, 1) == 1 && answer == 'y';
        close(ends[0]);
        close(ends[1]);
    }
    ~LeaseHolder() { EXPECT_EQ(test::WaitFor(child_) == 0, holds_); }
    LeaseHolder(const LeaseHolder&) = delete;
    LeaseHolder& operator=(const LeaseHolder&) = delete;

    [[nodiscard]] bool Holds() const { return holds_; }

  private:
    pid_t child_ = -1;
    bool holds_ = false;
};

TEST_F(Host, AFileUnderALeaseIsWaitedFor) {
    const struct {
        int kind;
        std::int32_t ioMode;
        const char* content;  // afterwards
    } cases[] = {{F_WRLCK, kRead, "x\n"},
                 {F_RDLCK, kWrite, "new\n"},
                 {F_WRLCK, kWrite, "new\n"},
                 {F_WRLCK, kAppend, "x\nnew\n"}};
    const int times = Rounds(1) * static_cast<int>(std::size(cases));
    for (int i = 0; i < times && !HasFailure(); ++i) {
        const auto& [kind, ioMode, content] = cases[static_cast<std::size_t>(i) % std::size(cases)];
        test::WriteFile(folder / "leased", "x\n");
        const LeaseHolder holder(folder / "leased", kind);
        if (!holder.Holds()) GTEST_SKIP() << "this file system gives no leases";
        EXPECT_EQ(FileOpen(kUnit, folder / "leased", ioMode), 0) << kind << ' ' << ioMode;
        EXPECT_EQ(TextUnits::WriteLine(kUnit, "new"), ioMode != kRead);
        EXPECT_EQ(test::ReadFile(folder / "leased"), content);
        TextUnits::Close(kUnit);
    }
    std::printf("%d leases: each was waited for\n", times);
}

TEST_F(Host, AFileThatMayNotBeReadIsAppendedTo) {
    test::WriteFile(folder / "drop", "x\n");
    chmod((folder / "drop").c_str(), 0222);
    chmod(folder.Path().c_str(), 0711);
    EXPECT_TRUE(test::HoldsInChild([&] {
        if (geteuid() == 0 && seteuid(65534) != 0) return false;  // root reads everything
        return FileOpen(kUnit, folder / "drop", kAppend) == 0 && TextUnits::WriteLine(kUnit, "y");
    }));
    chmod((folder / "drop").c_str(), 0600);
    EXPECT_EQ(test::ReadFile(folder / "drop"), "x\ny\n");
}

// ---- several processes

TEST_F(Host, LinesOfProcessesStayWholeWhateverTheyHold) {
    const std::string filling =
        std::string(500, 'x') + std::string(200, '\n') + std::string(900, 'y');
    std::vector<pid_t> writers;
    ASSERT_EQ(FileOpen(kUnit, folder / "shared", kAppend), 0);
    for (const char name : "abcd"s)
        writers.push_back(test::StartChild([&] {
            bool holds = true;
            const std::string line = name + filling + name;
            for (int i = 0; i < 2000; ++i) holds = holds && TextUnits::WriteLine(kUnit, line);
            return holds;
        }));
    for (const pid_t writer : writers) EXPECT_EQ(test::WaitFor(writer), 0);
    int whole = 0;
    const auto lines = test::LinesOf(folder / "shared");
    for (const std::string& line : lines)
        whole += line.size() == filling.size() + 2 && line.front() == line.back();
    EXPECT_EQ(whole, 8000);
    EXPECT_EQ(lines.size(), 8000U);
}

}  // namespace
}  // namespace corvale::FileIO
