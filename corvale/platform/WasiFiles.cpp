// Text files in WebAssembly, by WASI, in place of Descriptors.cpp, WriteCalls.cpp, SignalHold.cpp and
// ForkSafety.cpp: one thread, no fork, no signals; a host that gives folders to its module opens,
// reads and writes for it. Its pipes wait as they must.
#include <corvale/platform/Descriptors.hpp>
#include <corvale/platform/ForkSafety.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <algorithm>
#include <array>

namespace corvale::internal {

namespace {

constexpr std::size_t kLongestPath = 4096;
constexpr int kFirstOwnDescriptor = 3;

using Path = std::array<char, kLongestPath>;

// False for a name that is empty, too long, or holds a NUL.
bool MakePath(FileName name, Path& path) noexcept {
    const std::string_view text = name.text.substr(0, name.text.find_last_not_of(' ') + 1);
    if (text.empty() || text.size() >= path.size()) return false;
    if (text.find('\0') != std::string_view::npos) return false;
    const auto end = std::copy(text.begin(), text.end(), path.begin());
    if (name.hasBackslashes) std::replace(path.begin(), end, '\\', '/');
    *end = '\0';
    return true;
}

bool IsTextFile(int descriptor) noexcept {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && !S_ISDIR(status.st_mode) && !S_ISBLK(status.st_mode);
}

// True if the file is not empty and its last byte is not a line end or cannot be read: better an
// extra empty line than two joined ones.
bool EndsInsideLine(const char* path) noexcept {
    const int reader = open(path, O_RDONLY);
    if (reader < 0) return false;  // there is none yet
    const off_t size = lseek(reader, 0, SEEK_END);
    char last = '\0';
    const bool isWhole =
        size == 0 || (size > 0 && pread(reader, &last, 1, size - 1) == 1 && last == '\n');
    close(reader);
    return !isWhole;
}

int FlagsFor(FileAccess access) noexcept {
    if (access == FileAccess::Read) return O_RDONLY;
    return O_WRONLY | O_CREAT | O_APPEND | (access == FileAccess::Replace ? O_TRUNC : 0);
}

}  // namespace

// The unit has been reserved before: a file is emptied by the open itself.
TextFile OpenTextFile(FileName name, FileAccess access) noexcept {
    Path path;
    if (!MakePath(name, path)) return {};
    TextFile file = {.access = access};
    file.lacksLineEnd = access == FileAccess::Append && EndsInsideLine(path.data());
    file.descriptor = open(path.data(), FlagsFor(access), 0666);
    if (file.descriptor < 0) return {};
    if (file.descriptor >= kFirstOwnDescriptor && IsTextFile(file.descriptor)) return file;
    close(file.descriptor);
    return {};
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept {
    return read(descriptor, buffer.data(), buffer.size());
}

bool GoToStart(int descriptor) noexcept {
    return lseek(descriptor, 0, SEEK_SET) == 0;
}

void CloseFile(int descriptor) noexcept {
    close(descriptor);
}

// The parts are written in turn: nobody else writes meanwhile.
Outcome WriteAll(TextFile& file, std::span<iovec> parts, bool) noexcept {
    for (const iovec& part : parts) {
        std::string_view text(static_cast<const char*>(part.iov_base), part.iov_len);
        while (!text.empty()) {
            const std::ptrdiff_t written = write(file.descriptor, text.data(), text.size());
            if (written <= 0) return Outcome::Lost;
            text.remove_prefix(static_cast<std::size_t>(written));
            file.lacksLineEnd = true;
        }
    }
    file.lacksLineEnd = false;
    return Outcome::Written;
}

Outcome FinishLine(TextFile& file, std::span<iovec> parts, std::ptrdiff_t written,
                   bool isBegun) noexcept {
    const std::size_t done = written > 0 ? static_cast<std::size_t>(written) : 0;
    parts.front().iov_base = static_cast<char*>(parts.front().iov_base) + done;
    parts.front().iov_len -= done;
    return WriteAll(file, parts, isBegun);
}

// A full pipe is waited for by the call that writes to it.
void WaitForRoom(int, int) noexcept {}

// There is no fork.
constinit std::atomic<std::int32_t> forkWork{0};

void AttendToForks() noexcept {}

}  // namespace corvale::internal
