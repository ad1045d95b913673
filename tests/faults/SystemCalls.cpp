#include "SystemCalls.hpp"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <ctime>
#include <new>

namespace corvale::test {

namespace {

using Clock = std::chrono::steady_clock;

// In memory that children share.
struct State {
    Fault fault;
    CallCounts counts{};
    std::atomic<Clock::rep> timePassed{0};
};

State& Shared() noexcept {
    static State& state = *new (mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE,
                                     MAP_SHARED | MAP_ANONYMOUS, -1, 0)) State;
    return state;
}

constexpr std::size_t kPartOfRead = 9;  // not a line, but something that looks like one
constexpr Clock::duration kTick = std::chrono::microseconds(100);

bool IsDisturbed() noexcept {
    return Counts().isDisturbed.load(std::memory_order_relaxed);
}

enum class Verdict : std::uint8_t { Good, Partial, Failed };

Verdict Judge(std::size_t call) noexcept {
    if (!IsDisturbed()) return Verdict::Good;
    const Fault& fault = Shared().fault;
    CallCounts& counts = Counts();
    const int ofAny = ++counts.made[kAnyCall];
    const int ofCall = ++counts.made[call];
    // The system interrupts the waiting for a signal, but never refuses it.
    const bool isMeant =
        fault.call == kAnyCall ? call != CallOf("sigtimedwait") : fault.call == call;
    if (!isMeant) return Verdict::Good;
    const int number = fault.call == kAnyCall ? ofAny : ofCall;
    if (number < fault.first || number - fault.first >= fault.times) return Verdict::Good;
    ++counts.failed;
    if (fault.error == 0 || (fault.isPartialFirst && number == fault.first))
        return Verdict::Partial;
    errno = fault.error;
    return Verdict::Failed;
}

bool Fails(std::size_t call) noexcept {
    return Judge(call) == Verdict::Failed;
}

void* Taken(void* block) noexcept {
    if (IsDisturbed() && block != nullptr) ++Counts().blocks;
    return block;
}

void CountReleased(const void* block) noexcept {
    if (IsDisturbed() && block != nullptr) --Counts().blocks;
}

}  // namespace

CallCounts& Counts() noexcept {
    return Shared().counts;
}

void Prepare(const Fault& fault) noexcept {
    Shared().fault = fault;
    for (std::atomic<int>& made : Counts().made) made = 0;
    Counts().failed = Counts().blocks = 0;
}

// The calls as the linker names them: __wrap_X is what the program calls, __real_X the system's.
extern "C" {

// A call that does nothing when it fails.
#define CORVALE_WRAP(Result, name, parameters, arguments, failure)       \
    Result __real_##name parameters;                                     \
    Result __wrap_##name parameters {                                    \
        return Fails(CallOf(#name)) ? failure : __real_##name arguments; \
    }

CORVALE_WRAP(ssize_t, pread, (int descriptor, void* buffer, std::size_t size, off_t offset),
             (descriptor, buffer, size, offset), -1)
CORVALE_WRAP(int, fstat, (int descriptor, struct stat* status), (descriptor, status), -1)
CORVALE_WRAP(int, fstatfs, (int descriptor, struct statfs* system), (descriptor, system), -1)
CORVALE_WRAP(int, stat, (const char* path, struct stat* status), (path, status), -1)
CORVALE_WRAP(int, isatty, (int descriptor), (descriptor), 0)
CORVALE_WRAP(off_t, lseek, (int descriptor, off_t offset, int whence), (descriptor, offset, whence),
             -1)
CORVALE_WRAP(int, getrlimit, (__rlimit_resource_t resource, rlimit* limit), (resource, limit), -1)
CORVALE_WRAP(int, sigtimedwait, (const sigset_t* set, siginfo_t* info, const timespec* timeout),
             (set, info, timeout), -1)

CORVALE_WRAP(int, ftruncate, (int descriptor, off_t length), (descriptor, length), -1)

int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return Fails(CallOf("open")) ? -1 : __real_open(path, flags, mode);
}

// A close that fails has closed all the same.
int __real_close(int descriptor);
int __wrap_close(int descriptor) {
    const int result = __real_close(descriptor);
    return Fails(CallOf("close")) ? -1 : result;
}

ssize_t __real_read(int descriptor, void* buffer, std::size_t size);
ssize_t __wrap_read(int descriptor, void* buffer, std::size_t size) {
    const Verdict verdict = Judge(CallOf("read"));
    if (verdict == Verdict::Failed) return -1;
    return __real_read(descriptor, buffer,
                       verdict == Verdict::Partial ? std::min(size, kPartOfRead) : size);
}

ssize_t __real_write(int descriptor, const void* buffer, std::size_t size);
ssize_t __wrap_write(int descriptor, const void* buffer, std::size_t size) {
    const Verdict verdict = Judge(CallOf("write"));
    if (verdict == Verdict::Failed) return -1;
    return __real_write(descriptor, buffer, verdict == Verdict::Partial ? (size + 1) / 2 : size);
}

// The library writes so what may not be a cancellation point.
long __wrap_syscall(long number, ...);
long __wrap_syscall(long number, ...) {
    va_list arguments;
    va_start(arguments, number);
    const int descriptor = va_arg(arguments, int);
    const void* const buffer = va_arg(arguments, const void*);
    const std::size_t size = va_arg(arguments, std::size_t);
    va_end(arguments);
    return number == SYS_write ? __wrap_write(descriptor, buffer, size) : -1;
}

ssize_t __real_writev(int descriptor, const iovec* parts, int count);
ssize_t __wrap_writev(int descriptor, const iovec* parts, int count) {
    const Verdict verdict = Judge(CallOf("writev"));
    if (verdict == Verdict::Failed) return -1;
    if (verdict == Verdict::Good) return __real_writev(descriptor, parts, count);
    return __real_write(descriptor, parts->iov_base, (parts->iov_len + 1) / 2);
}

// Does not wait, but lets the time pass.
int __real_poll(pollfd* waiting, nfds_t count, int timeout);
int __wrap_poll(pollfd* waiting, nfds_t count, int timeout) {
    if (Fails(CallOf("poll"))) return -1;
    if (!IsDisturbed()) return __real_poll(waiting, count, timeout);
    const int ready = __real_poll(waiting, count, 0);
    if (ready == 0)
        Shared().timePassed += Clock::duration(std::chrono::milliseconds(timeout)).count();
    return ready;
}

int __wrap_nanosleep(const timespec* pause, timespec* left);
int __wrap_nanosleep(const timespec* pause, timespec*) {
    Shared().timePassed += Clock::duration(std::chrono::nanoseconds(pause->tv_nsec)).count();
    return Fails(CallOf("nanosleep")) ? -1 : 0;
}

int __real_fcntl(int descriptor, int command, ...);
int __wrap_fcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    const long argument = command == F_GETFL || command == F_GETFD ? 0 : va_arg(arguments, int);
    va_end(arguments);
    return Fails(CallOf("fcntl")) ? -1 : __real_fcntl(descriptor, command, argument);
}

using Handler = void (*)();
int __real_pthread_atfork(Handler prepare, Handler parent, Handler child);
int __wrap_pthread_atfork(Handler prepare, Handler parent, Handler child) {
    return Fails(CallOf("pthread_atfork")) ? errno : __real_pthread_atfork(prepare, parent, child);
}

void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) {
    return Fails(CallOf("malloc")) ? nullptr : Taken(__real_malloc(size));
}

void __real_free(void* block);
void __wrap_free(void* block) {
    CountReleased(block);
    __real_free(block);
}

void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
    return Fails(CallOf("new")) ? nullptr : Taken(__real__ZnwmRKSt9nothrow_t(size, tag));
}

void* __real__ZnwmSt11align_val_tRKSt9nothrow_t(std::size_t size, std::align_val_t alignment,
                                                const std::nothrow_t& tag);
void* __wrap__ZnwmSt11align_val_tRKSt9nothrow_t(std::size_t size, std::align_val_t alignment,
                                                const std::nothrow_t& tag) {
    if (Fails(CallOf("aligned new"))) return nullptr;
    return Taken(__real__ZnwmSt11align_val_tRKSt9nothrow_t(size, alignment, tag));
}

void __real__ZdlPvSt11align_val_tRKSt9nothrow_t(void* block, std::align_val_t alignment,
                                                const std::nothrow_t& tag);
void __wrap__ZdlPvSt11align_val_tRKSt9nothrow_t(void* block, std::align_val_t alignment,
                                                const std::nothrow_t& tag) {
    CountReleased(block);
    __real__ZdlPvSt11align_val_tRKSt9nothrow_t(block, alignment, tag);
}

}  // extern "C"

// Each look at the clock takes a little time, so that no wait is endless.
Clock::time_point RealNow() __asm__("__real__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point WrappedNow() __asm__("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point WrappedNow() {
    if (IsDisturbed()) Shared().timePassed += kTick.count();
    return RealNow() + Clock::duration(Shared().timePassed.load());
}

}  // namespace corvale::test
