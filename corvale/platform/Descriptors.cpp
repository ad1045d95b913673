// Opening of text files, in an order that changes nothing before the last step:
//
// 1  the name as the system's path
// 2  to append: does the file end inside a line? A reader of its own tells. It is closed before
//    step 3, so that one free descriptor is enough
// 3  open, without emptying. Nothing may block for ever here: O_NONBLOCK, but for leases
// 4  what it is: regular files, pipes and terminals are text, directories and block devices are not
// 5  to replace: empty it. Whatever fails before this leaves the file as it was, and removes it if
//    this call has created it
#include <corvale/platform/Descriptors.hpp>

#include <corvale/platform/CancelHold.hpp>

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
#include <ctime>

#ifdef __linux__
#include <linux/magic.h>
#include <sys/statfs.h>
#endif

namespace corvale::internal {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kWriterWait{2000};      // how long a named pipe waits for its writer
constexpr milliseconds kWriterStep{50};        // how often it asks whether one has come
constexpr timespec kLookAgain{0, 10'000'000};  // whether a file's end stands still
constexpr int kMostLooks = 100;
constexpr int kFirstOwnDescriptor = 3;
constexpr mode_t kNewFileMode = 0666;  // less what the process masks out

// A signal with a handler that does not restart calls ends them with EINTR.
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

bool IsRegular(const char* path) noexcept {
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

// Named pipes and terminal lines would block at the opening: O_NONBLOCK spares that. A file under a
// lease refuses to open so: the plain open waits for the holder.
int Open(const char* path, int flags) noexcept {
    flags |= O_CLOEXEC | O_NOCTTY;
    const auto openWith = [&](int moreFlags) {
        return RetryInterrupted([&] { return open(path, flags | moreFlags, kNewFileMode); });
    };
    const int descriptor = openWith(O_NONBLOCK);
    if (descriptor >= 0 || errno != EWOULDBLOCK || !IsRegular(path)) return descriptor;
    return openWith(0);
}

// The host may have closed its standard descriptors: what is opened then must not become its
// standard output.
int MoveAboveStandard(int descriptor) noexcept {
    if (descriptor < 0 || descriptor >= kFirstOwnDescriptor) return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
    close(descriptor);
    return moved;
}

// The one device to read that ends.
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

// Only a named pipe has to wait for its writer: an unnamed one, reached through a name like
// /dev/stdin, had it from the beginning.
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

// From here on reading waits for the writer. A regular file ignores O_NONBLOCK, but a file system
// in user space may not.
bool MakeBlocking(int descriptor) noexcept {
    const int flags = fcntl(descriptor, F_GETFL);
    return flags != -1 && fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != -1;
}

// True if the file is not empty and its last byte is not a line end or cannot be read: better an
// extra empty line than two joined ones. The end of a line that another process is just writing
// moves; one that stands still counts.
bool EndsInsideLine(int reader) noexcept {
    off_t before = 0;
    for (int look = 0; look < kMostLooks; ++look) {
        struct stat status = {};
        if (fstat(reader, &status) != 0) return true;
        const off_t size = status.st_size;
        if (size == 0) return false;
        char last = '\n';
        if (RetryInterrupted([&] { return pread(reader, &last, 1, size - 1); }) != 1) return true;
        if (last == '\n') return false;
        if (size == before) return true;
        before = size;
        nanosleep(&kLookAgain, nullptr);
    }
    return true;
}

// A file that may be written but not read is taken to end with a line.
bool EndsInsideLine(const char* path) noexcept {
    struct stat status = {};
    if (stat(path, &status) != 0) return errno != ENOENT;
    if (!S_ISREG(status.st_mode) || status.st_size == 0) return false;
    const int reader = Open(path, O_RDONLY);
    if (reader < 0) return errno != EACCES;
    const bool endsInside = EndsInsideLine(reader);
    close(reader);
    return endsInside;
}

// A file-size limit turns a write into SIGXFSZ, a pipe without readers into SIGPIPE.
bool MayRaiseSignals(const struct stat& status) noexcept {
    if (!S_ISREG(status.st_mode)) return true;
    rlimit limit = {};
    return getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

bool Empty(int descriptor) noexcept {
    return RetryInterrupted([&] { return ftruncate(descriptor, 0); }) == 0;
}

// Learns what else there is to know of a file that has just been opened, then empties it if it is
// replaced; false when it is of no use.
bool Prepare(TextFile& file) noexcept {
    struct stat status = {};
    if (fstat(file.descriptor, &status) != 0) return false;
    if (!IsText(file.descriptor, status, file.access)) return false;
    if (file.access == FileAccess::Read) {
        if (IsNamedPipe(file.descriptor, status) && !HasWriter(file)) return false;
        return MakeBlocking(file.descriptor);
    }
    file.mayRaiseSignals = MayRaiseSignals(status);
    if (!S_ISREG(status.st_mode)) return true;
    return MakeBlocking(file.descriptor) &&
           (file.access == FileAccess::Append || Empty(file.descriptor));
}

using Path = std::array<char, PATH_MAX>;

bool MakePath(FileName name, Path& path) noexcept {
    const std::string_view text = name.text.substr(0, name.text.find_last_not_of(' ') + 1);
    if (text.empty() || text.size() >= path.size() || text.find('\0') != std::string_view::npos)
        return false;
    const auto end = std::copy(text.begin(), text.end(), path.begin());
    if (name.hasBackslashes) std::replace(path.begin(), end, '\\', '/');
    *end = '\0';
    return true;
}

TextFile OpenToRead(const char* path) noexcept {
    return {MoveAboveStandard(Open(path, O_RDONLY)), FileAccess::Read};
}

// `isCreated` says that this call has made the file, which O_EXCL tells.
TextFile OpenToWrite(const char* path, FileAccess access, bool& isCreated) noexcept {
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND;
    TextFile file = {.access = access};
    file.lacksLineEnd = access == FileAccess::Append && EndsInsideLine(path);
    int descriptor = Open(path, flags | O_EXCL);
    isCreated = descriptor >= 0;
    if (!isCreated) descriptor = Open(path, flags);
    file.descriptor = MoveAboveStandard(descriptor);
    return file;
}

}  // namespace

TextFile OpenTextFile(FileName name, FileAccess access) noexcept {
    Path path;
    if (!MakePath(name, path)) return {};

    const CancelHold hold;
    bool isCreated = false;
    TextFile file = access == FileAccess::Read ? OpenToRead(path.data())
                                               : OpenToWrite(path.data(), access, isCreated);
    if (file.IsOpen() && Prepare(file)) return file;
    if (file.IsOpen()) close(file.descriptor);
    if (isCreated) unlink(path.data());
    return {};
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept {
    const CancelHold hold;
    return RetryInterrupted([&] { return read(descriptor, buffer.data(), buffer.size()); });
}

bool GoToStart(int descriptor) noexcept {
    return lseek(descriptor, 0, SEEK_SET) == 0;
}

void CloseFile(int descriptor) noexcept {
    const CancelHold hold;
    close(descriptor);
}

}  // namespace corvale::internal
