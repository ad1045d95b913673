// In every operation, every call that can fail fails once, and from then on, at the first, second,
// third ... call, until the operation completes without a fault. Prints each harm that this does,
// and how many calls failed; ends with 1 where there was harm.
#include "Operations.hpp"
#include "SystemCalls.hpp"

#include <corvale/platform/NamedLocks.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <set>
#include <thread>

namespace corvale::test {
namespace {

struct Way {
    int error;
    bool isPartialFirst = false;
};
struct Failures {
    std::size_t call;
    std::vector<Way> ways;
};
const std::vector<Way> kWrites = {{ENOSPC}, {EIO},   {EFBIG},  {EDQUOT}, {EBADF},
                                  {EPIPE},  {EINTR}, {EAGAIN}, {0},      {ENOSPC, true}};
const Failures kFailures[] = {
    {CallOf("open"), {{EMFILE}, {ENFILE}, {ENOMEM}, {ENOSPC}, {EPERM}, {EIO}, {EAGAIN}, {EINTR}}},
    {CallOf("close"), {{EIO}, {EINTR}}},
    {CallOf("read"), {{EIO}, {EBADF}, {ENOMEM}, {EINTR}, {EAGAIN}, {0}, {EIO, true}}},
    {CallOf("pread"), {{EIO}, {EINTR}}},
    {CallOf("write"), kWrites},
    {CallOf("writev"), kWrites},
    {CallOf("fstat"), {{ENOMEM}, {EOVERFLOW}}},
    {CallOf("fstatfs"), {{ENOSYS}, {EINTR}}},
    {CallOf("stat"), {{EACCES}}},
    {CallOf("isatty"), {{ENOTTY}}},
    {CallOf("lseek"), {{ESPIPE}, {EBADF}}},
    {CallOf("poll"), {{ENOMEM}, {EINTR}}},
    {CallOf("fcntl"), {{EMFILE}, {EINVAL}}},
    {CallOf("getrlimit"), {{EFAULT}}},
    {CallOf("sigtimedwait"), {{EINTR}}},
    {CallOf("ftruncate"), {{EIO}, {EPERM}, {EINTR}}},
    {CallOf("nanosleep"), {{EINTR}}},
    {CallOf("malloc"), {{ENOMEM}}},
    {CallOf("new"), {{ENOMEM}}},
    {CallOf("aligned new"), {{ENOMEM}}},
    {kAnyCall, {{EIO}, {ENOMEM}}},
};

constexpr int kOnce = 1;
constexpr int kFromThenOn = INT_MAX;
constexpr int kStorm = 1000;  // what passes: signals one after the other, a pipe that is full

bool IsWriting(std::size_t call) {
    return call == CallOf("write") || call == CallOf("writev");
}

// Whether a caller may notice: not where a call can be repeated, nor where nothing depends on it.
bool MayShow(const Fault& fault) {
    const std::set<std::size_t> without = {CallOf("close"), CallOf("fstatfs"), CallOf("isatty"),
                                           CallOf("getrlimit")};
    return fault.error != 0 && fault.error != EINTR && !without.contains(fault.call) &&
           !(fault.error == EAGAIN && IsWriting(fault.call));
}

class FaultLoops {
  public:
    void Run(const Operation& operation) {
        Try(operation, {});
        const auto made = [&] {
            std::vector<bool> isMade;
            for (const std::atomic<int>& count : Counts().made) isMade.push_back(count > 0);
            return isMade;
        }();
        for (const auto& [call, ways] : kFailures)
            if (made[call])
                for (const auto& [error, isPartialFirst] : ways)
                    for (const int times :
                         {isPartialFirst ? 2 : kOnce,
                          error == EINTR || (error == EAGAIN && IsWriting(call)) ? kStorm
                                                                                 : kFromThenOn})
                        Repeat(operation, {call, error, isPartialFirst, 0, times});
        ++operations_;
    }

    /// The handlers of fork are registered once in a process: while that fails it is tried again.
    void RunFirstCallOfAll() {
        const int failed[] = {1, 0, 0}, made[] = {1, 1, 0};
        for (std::size_t i = 0; i < 3; ++i) {
            Prepare({CallOf("pthread_atfork"), ENOMEM, false, 1, i == 0 ? 1 : 0});
            Disturbed([] { return TextUnits::Close(1), 0; });
            failed_ += Counts().failed;
            if (Counts().failed != failed[i] || Counts().made[CallOf("pthread_atfork")] != made[i])
                Complain("the handlers of fork are not registered once");
        }
        ++operations_;
    }

    /// Every write takes only half: lines of several threads to one unit must not mix.
    void RunThreads() {
        constexpr std::size_t threads = 4, lines = 500;
        std::int32_t unit = 0;
        if (FileIO::FileOpenMT(folder_ / "mixed", 0, unit) != 0) return Complain("not open");
        Prepare({CallOf("write"), 0, false, 1, kFromThenOn});
        Counts().isDisturbed = true;
        std::vector<std::thread> writers;
        for (std::size_t i = 0; i < threads; ++i)
            writers.emplace_back([unit, line = std::string(200, static_cast<char>('a' + i))] {
                for (std::size_t n = 0; n < lines; ++n)
                    static_cast<void>(TextUnits::WriteLine(unit, line));
            });
        for (std::thread& writer : writers) writer.join();
        Counts().isDisturbed = false;
        TextUnits::Close(unit);
        const std::vector<std::string> found = LinesOf(folder_ / "mixed");
        bool isWhole = found.size() == threads * lines;
        for (const std::string& line : found)
            isWhole = isWhole && line == std::string(200, line.front());
        if (!isWhole) Complain("lines of several threads mix");
        failed_ += Counts().failed;
        ++operations_;
    }

    void RunAll() {
        WriteFile(folder_ / "small", "QZ_MOIC 5\nQZ_DMA_ALL_ON\n");
        for (const auto operations : {LogOperations, FileOperations, MemoryOperations})
            for (const Operation& operation : operations(folder_)) Run(operation);
    }

    [[nodiscard]] int Report() const {
        std::printf("%d calls failed in %d operations, %s\n", failed_, operations_,
                    harms_ == 0 ? "none harmful" : "harmful as told above");
        return harms_ == 0 ? 0 : 1;
    }

  private:
    void Repeat(const Operation& operation, Fault fault) {
        do {
            ++fault.first;
            Try(operation, fault);
        } while (Counts().failed > 0 && harms_ < 50);
    }

    void Try(const Operation& operation, const Fault& fault) {
        ResetLibrary();
        const auto descriptors = OpenDescriptors();
        Prepare(fault);
        const std::string outcome = operation.run();
        failed_ += Counts().failed;
        const bool mayShow = Counts().failed > 0 && MayShow(fault);
        ResetLibrary();

        std::string harm;
        if (outcome != operation.undisturbed &&
            !(mayShow && std::regex_match(outcome, std::regex(operation.orElse))))
            harm += " gives \"" + outcome + "\"";
        if (OpenDescriptors() != descriptors) harm += ", leaves a descriptor open";
        if (Counts().blocks < 0 || Counts().blocks > operation.keeps) harm += ", leaks memory";
        if (!Works(folder_)) harm += ", breaks the library";
        if (!harm.empty()) Complain(Describe(operation, fault) + harm);
    }

    static std::string Describe(const Operation& operation, const Fault& fault) {
        return operation.name + ": " + std::string(kCalls[fault.call]) + " number " +
               std::to_string(fault.first) + (fault.times == kOnce ? " (once) " : " (and on) ") +
               (fault.error == 0 ? "in part" : strerrorname_np(fault.error));
    }

    void Complain(const std::string& harm) {
        std::printf("%s\n", harm.c_str());
        ++harms_;
    }

    TemporaryFolder folder_;
    int failed_ = 0;
    int operations_ = 0;
    int harms_ = 0;
};

}  // namespace
}  // namespace corvale::test

int main() {
    setvbuf(stdout, nullptr, _IOLBF, 0);
    // Thousands of files are emptied, which a disk is slow at.
    if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 0);
    alarm(250);  // where a call is repeated for ever
    corvale::test::FaultLoops loops;
    loops.RunFirstCallOfAll();
    loops.RunAll();
    loops.RunThreads();
    return loops.Report();
}
