// Text files and forking on Windows, in place of Descriptors.cpp, SignalHold.cpp and
// ForkSafety.cpp.
//
// A descriptor is a handle of the system, which fits into an int, is a multiple of 4 and so never
// that of standard output. No C library stands between: its files turn line ends, end at a
// control-Z and append in two steps. Names are UTF-8. Handles are not inherited, and whoever wants
// to read, rename or delete an open file may.
#include <corvale/platform/Descriptors.hpp>
#include <corvale/platform/ForkSafety.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace corvale::internal {

namespace {

constexpr std::size_t kLongestPath = 4096;  // in UTF-16 units; mostly the system takes 260
constexpr std::size_t kMostBytes = std::size_t{1} << 30U;  // in one call
constexpr DWORD kLookAgain = 10;  // milliseconds: whether a file's end stands still
constexpr int kMostLooks = 100;

using Path = std::array<wchar_t, kLongestPath>;

HANDLE HandleOf(int descriptor) noexcept {
    if (descriptor == kStandardOutput) return GetStdHandle(STD_OUTPUT_HANDLE);
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(descriptor));
}

int DescriptorOf(HANDLE handle) noexcept {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

DWORD LengthOfCall(std::size_t size) noexcept {
    return static_cast<DWORD>(std::min<std::size_t>(size, kMostBytes));
}

// False for a name that is empty, too long, or no UTF-8.
bool Widen(std::string_view name, Path& path) noexcept {
    if (name.empty() || name.size() >= path.size()) return false;
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name.data(),
                                           static_cast<int>(name.size()), path.data(),
                                           static_cast<int>(path.size() - 1));
    path[static_cast<std::size_t>(length)] = L'\0';
    return length > 0;
}

// Directories do not open this way.
int OpenPath(const Path& path, DWORD rights, DWORD creation) noexcept {
    constexpr DWORD everything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return DescriptorOf(CreateFileW(path.data(), rights, everything, nullptr, creation,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
}

// A file on a disk, not a console, pipe or device.
bool IsRegular(int descriptor) noexcept {
    return GetFileType(HandleOf(descriptor)) == FILE_TYPE_DISK;
}

// A serial line never ends.
bool IsSerialLine(int descriptor) noexcept {
    COMMTIMEOUTS timeouts = {};
    return GetCommTimeouts(HandleOf(descriptor), &timeouts) != 0;
}

int OpenToRead(const Path& path) noexcept {
    const int file = OpenPath(path, GENERIC_READ, OPEN_EXISTING);
    if (file == -1 || !IsSerialLine(file)) return file;
    CloseFile(file);
    return -1;
}

// Devices and pipes know no appending. A file that is opened for nothing else gets each write at
// its end as it then is, whoever else writes.
int OpenToWrite(const Path& path, FileAccess access) noexcept {
    const int device = OpenPath(path, GENERIC_WRITE, OPEN_EXISTING);
    if (device != -1) {
        if (!IsRegular(device)) return device;
        CloseFile(device);
    }
    return OpenPath(path, FILE_APPEND_DATA | SYNCHRONIZE,
                    access == FileAccess::Replace ? CREATE_ALWAYS : OPEN_ALWAYS);
}

// A NUL where it cannot be read: no line end.
char LastByte(int file, LARGE_INTEGER size) noexcept {
    char last = '\0';
    --size.QuadPart;
    const bool isThere = SetFilePointerEx(HandleOf(file), size, nullptr, FILE_BEGIN) != 0;
    return isThere && ReadSome(file, {&last, 1}) == 1 ? last : '\0';
}

// True if the file is not empty and its last byte is not a line end or cannot be read: better an
// extra empty line than two joined ones. The end of a line that another process is just writing
// moves; one that stands still counts.
bool EndsInsideLine(int reader) noexcept {
    LONGLONG before = 0;
    for (int look = 0; look < kMostLooks; ++look) {
        LARGE_INTEGER size = {};
        if (GetFileSizeEx(HandleOf(reader), &size) == 0) return true;
        if (size.QuadPart == 0 || LastByte(reader, size) == '\n') return false;
        if (size.QuadPart == before) return true;
        before = size.QuadPart;
        Sleep(kLookAgain);
    }
    return true;
}

bool EndsInsideLine(const Path& path) noexcept {
    const int reader = OpenPath(path, GENERIC_READ, OPEN_EXISTING);
    if (reader == -1) return true;
    const bool endsInside = EndsInsideLine(reader);
    CloseFile(reader);
    return endsInside;
}

}  // namespace

// Everything else has been reserved before: what is replaced here is emptied by the open itself.
// Backslashes are slashes here in any case.
TextFile OpenTextFile(FileName name, FileAccess access) noexcept {
    Path path;
    const std::string_view text = name.text.substr(0, name.text.find_last_not_of(' ') + 1);
    if (text.find('\0') != std::string_view::npos || !Widen(text, path)) return {};
    const bool reads = access == FileAccess::Read;
    TextFile file = {reads ? OpenToRead(path) : OpenToWrite(path, access), access};
    file.lacksLineEnd = access == FileAccess::Append && file.IsOpen() &&
                        IsRegular(file.descriptor) && EndsInsideLine(path);
    return file;
}

std::ptrdiff_t ReadSome(int descriptor, std::span<char> buffer) noexcept {
    DWORD count = 0;
    if (ReadFile(HandleOf(descriptor), buffer.data(), LengthOfCall(buffer.size()), &count,
                 nullptr) != 0)
        return static_cast<std::ptrdiff_t>(count);
    return GetLastError() == ERROR_BROKEN_PIPE ? 0 : -1;  // a pipe ends with its writer
}

bool GoToStart(int descriptor) noexcept {
    return IsRegular(descriptor) &&
           SetFilePointerEx(HandleOf(descriptor), {}, nullptr, FILE_BEGIN) != 0;
}

void CloseFile(int descriptor) noexcept {
    CloseHandle(HandleOf(descriptor));
}

Outcome WriteWhole(TextFile& file, std::string_view text) noexcept {
    while (!text.empty()) {
        DWORD written = 0;
        if (WriteFile(HandleOf(file.descriptor), text.data(), LengthOfCall(text.size()), &written,
                      nullptr) == 0 ||
            written == 0)
            return Outcome::Lost;
        text.remove_prefix(written);
        file.lacksLineEnd = !text.empty();
    }
    return Outcome::Written;
}

// No call writes several parts: they are joined first, so that a line still comes whole.
Outcome WriteAll(TextFile& file, std::span<iovec> parts, bool) noexcept {
    const auto textOf = [](const iovec& part) {
        return std::string_view(static_cast<const char*>(part.iov_base), part.iov_len);
    };
    if (parts.size() == 1) return WriteWhole(file, textOf(parts.front()));

    std::size_t size = 0;
    for (const iovec& part : parts) size += part.iov_len;
    const std::unique_ptr<char[]> joined(new (std::nothrow) char[size]);
    if (!joined) return Outcome::Lost;
    char* end = joined.get();
    for (const iovec& part : parts) end += textOf(part).copy(end, part.iov_len);
    return WriteWhole(file, {joined.get(), size});
}

// A full pipe is waited for by the call that writes to it.
void WaitForRoom(int, int) noexcept {}

// There is no fork.
constinit std::atomic<std::int32_t> forkWork{0};

void AttendToForks() noexcept {}

}  // namespace corvale::internal
