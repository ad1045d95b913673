#include <corvale/platform/Descriptors.hpp>

#include <corvale/platform/SignalHold.hpp>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>

#ifdef __linux__
#include <linux/magic.h>
#include <sys/statfs.h>
#endif

namespace corvale::internal {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kWriterWait{2000};  // how long a named pipe waits for its writer
constexpr milliseconds kWriterStep{50};    // how often it asks whether one has come
constexpr milliseconds kRoomWait{1000};    // how long a full pipe may take to make room for a line
constexpr int kMostRefusals = 100;  // how often it may refuse a line although it says it has room
constexpr int kFirstOwnDescriptor = 3;
constexpr mode_t kNewFileMode = 0666;  // less what the process masks out

template <class Call>
auto RetryInterrupted(Call call) noexcept {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

// Waits until the descriptor is ready for `event`, but not longer than `wait`, however many signals
// interrupt it.
bool IsReady(int descriptor, short event, milliseconds wait) noexcept {
    const auto deadline = Clock::now() + wait;
    pollfd waiting = {descriptor, event, 0};
    for (;;) {
        const int ready = poll(&waiting, 1, static_cast<int>(wait.count()));
        if (ready != -1 || errno != EINTR) return ready > 0;
        wait = std::chrono::floor<milliseconds>(deadline - Clock::now());
        if (wait.count() <= 0) return false;
    }
}

int OpenFlags(FileAccess access) noexcept {
    constexpr int always = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (access == FileAccess::Read) return always | O_RDONLY;
    constexpr int writing = always | O_WRONLY | O_CREAT | O_APPEND;
    return access == FileAccess::Replace ? writing | O_TRUNC : writing;
}

// The host may have closed its standard descriptors: what is opened then must not become its
// standard output.
int MoveAboveStandard(int descriptor) noexcept {
    if (descriptor < 0 || descriptor >= kFirstOwnDescriptor) return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
    close(descriptor);
    return moved;
}

int OpenPath(const char* path, FileAccess access) noexcept {
    return MoveAboveStandard(
        RetryInterrupted([&] { return open(path, OpenFlags(access), kNewFileMode); }));
}

bool IsNullDevice(const struct stat& status) noexcept {
    struct stat nullDevice = {};
    return stat("/dev/null", &nullDevice) == 0 && nullDevice.st_rdev == status.st_rdev;
}

bool IsText(int descriptor, const struct stat& status, FileAccess access) noexcept {
    if (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)) return true;
    if (!S_ISCHR(status.st_mode)) return false;
    return access != FileAccess::Read || isatty(descriptor) == 1 || IsNullDevice(status);
}

// Linux counts one link of an unnamed pipe, as if it had a name; elsewhere it has none.
bool IsUnnamed([[maybe_unused]] int descriptor, [[maybe_unused]] const struct stat& pipe) noexcept {
#ifdef __linux__
    struct statfs system = {};
    return fstatfs(descriptor, &system) == 0 && system.f_type == PIPEFS_MAGIC;
#else
    return pipe.st_nlink == 0;
#endif
}

// An unnamed pipe, reached through a name like /dev/stdin, had its writer from the beginning.
bool IsNamedPipe(int descriptor, const struct stat& status) noexcept {
    return S_ISFIFO(status.st_mode) && !IsUnnamed(descriptor, status);
}

// A named pipe opens before its writer has come, and then reads as ended; once a writer is there it
// has no data yet. A byte that the question itself takes out is kept in `file`.
bool HasWriter(TextFile& file) noexcept {
    const auto deadline = Clock::now() + kWriterWait;
    while (Clock::now() < deadline) {
        if (IsReady(file.descriptor, POLLIN, kWriterStep)) return true;
        char first = '\0';
        const auto count = ReadSome(file.descriptor, {&first, 1});
        if (count > 0) file.firstByte = first;
        if (count != 0) return count > 0 || errno == EAGAIN;
    }
    return false;
}

bool MakeBlocking(int descriptor) noexcept {
    const int flags = fcntl(descriptor, F_GETFL);
    return flags != -1 && fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != -1;
}

// True when the last byte of a file that is not empty is no line end, or is not to be known: rather
// an empty line than two lines in one.
bool EndsInsideLine(const char* path, const struct stat& status) noexcept {
    if (!S_ISREG(status.st_mode) || status.st_size == 0) return false;
    const int reader = OpenPath(path, FileAccess::Read);
    if (reader < 0) return true;
    char last = '\n';
    const auto count =
        RetryInterrupted([&] { return pread(reader, &last, 1, status.st_size - 1); });
    close(reader);
    return count != 1 || last != '\n';
}

// A file-size limit turns a write into SIGXFSZ, a pipe without readers into SIGPIPE.
bool MayRaiseSignals(const struct stat& status) noexcept {
    if (!S_ISREG(status.st_mode)) return true;
    rlimit limit = {};
    return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

// What remains to be known of a file that has just been opened; false when it is of no use.
bool Settle(TextFile& file, const char* path) noexcept {
    struct stat status = {};
    if (fstat(file.descriptor, &status) != 0) return false;
    if (!IsText(file.descriptor, status, file.access)) return false;
    if (file.access == FileAccess::Read) {
        if (IsNamedPipe(file.descriptor, status) && !HasWriter(file)) return false;
        return MakeBlocking(file.descriptor);
    }
    file.mayRaiseSignals = MayRaiseSignals(status);
    file.lacksLineEnd = file.access == FileAccess::Append && EndsInsideLine(path, status);
    return true;
}

// Drops the first `count` bytes of `parts` and every part that is empty.
std::span<iovec> Advance(std::span<iovec> parts, std::size_t count) noexcept {
    while (!parts.empty()) {
        iovec& part = parts.front();
        const std::size_t taken = std::min(count, part.iov_len);
        part.iov_base = static_cast<char*>(part.iov_base) + taken;
        part.iov_len -= taken;
        count -= taken;
        if (part.iov_len > 0) break;
        parts = parts.subspan(1);
    }
    return parts;
}

// A reader that has stopped is waited for once, not again for every line.
bool WaitForRoom(TextFile& file, int refusals) noexcept {
    if (!file.isStuck)
        file.isStuck = refusals > kMostRefusals || !IsReady(file.descriptor, POLLOUT, kRoomWait);
    return !file.isStuck;
}

std::ptrdiff_t WriteSome(int descriptor, std::span<iovec> parts) noexcept {
    if (parts.size() == 1) {
        const iovec& only = parts.front();
        return RetryInterrupted([&] { return write(descriptor, only.iov_base, only.iov_len); });
    }
    return RetryInterrupted(
        [&] { return writev(descriptor, parts.data(), static_cast<int>(parts.size())); });
}

std::ptrdiff_t WriteQuietly(const TextFile& file, std::span<iovec> parts) noexcept {
    if (!file.mayRaiseSignals) return WriteSome(file.descriptor, parts);
    const SignalHold hold;
    return WriteSome(file.descriptor, parts);
}

// Writes what the first call, which returned `written`, has left of `parts`.
bool GoOnWriting(TextFile& file, std::span<iovec> parts, std::ptrdiff_t written) noexcept {
    for (int refusals = 0;; written = WriteQuietly(file, parts)) {
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN && WaitForRoom(file, ++refusals)) continue;
        if (written <= 0) return false;
        file.isStuck = false;
        refusals = 0;
        parts = Advance(parts, static_cast<std::size_t>(written));
        file.lacksLineEnd = !parts.empty();
        if (parts.empty()) return true;
        // A limit that was set after opening mostly shows as a short write first.
        file.mayRaiseSignals = true;
    }
}

}  // namespace

TextFile OpenTextFile(std::string_view name, FileAccess access) noexcept {
    std::array<char, PATH_MAX> path;
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    if (name.empty() || name.size() >= path.size() || name.find('\0') != std::string_view::npos)
        return {};
    *std::copy(name.begin(), name.end(), path.begin()) = '\0';

    TextFile file = {OpenPath(path.data(), access), access};
    if (!file.IsOpen() || Settle(file, path.data())) return file;
    close(file.descriptor);
    return {};
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept {
    return RetryInterrupted([&] { return read(descriptor, buffer.data(), buffer.size()); });
}

bool GoToStart(int descriptor) noexcept {
    return lseek(descriptor, 0, SEEK_SET) == 0;
}

void CloseFile(int descriptor) noexcept {
    close(descriptor);
}

bool WriteAll(TextFile& file, std::span<iovec> parts) noexcept {
    parts = Advance(parts, 0);
    return parts.empty() || GoOnWriting(file, parts, WriteQuietly(file, parts));
}

std::ptrdiff_t WriteQuietly(TextFile& file, std::string_view text) noexcept {
    iovec whole = PartOf(text);
    return WriteQuietly(file, {&whole, 1});
}

bool GoOnWriting(TextFile& file, std::string_view text, std::ptrdiff_t written) noexcept {
    iovec rest = PartOf(text);
    return GoOnWriting(file, {&rest, 1}, written);
}

}  // namespace corvale::internal
