#include "Input.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>

namespace corvale::tool {

namespace {

constexpr int kWriterWait = 2000;  // milliseconds, as long as the library waits

template <class Call>
auto RetryInterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

// A device that never ends is no text.
bool IsText(int descriptor, const struct stat& status) {
    if (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))
        return true;
    struct stat nullDevice = {};
    return S_ISCHR(status.st_mode) &&
           (isatty(descriptor) == 1 ||
            (stat("/dev/null", &nullDevice) == 0 && nullDevice.st_rdev == status.st_rdev));
}

}  // namespace

std::string SystemReason(int error) {
    return std::generic_category().message(error);
}

InputFile::InputFile(const std::string& name) {
    if (name == "-")
        descriptor_ = STDIN_FILENO;
    else
        Open(name);
    struct stat status = {};
    if (!failure_ && fstat(descriptor_, &status) != 0) Fail(errno);
    if (!failure_ && !IsText(descriptor_, status)) failure_ = "it is no text file";
    if (!failure_ && S_ISREG(status.st_mode)) size_ = static_cast<std::uint64_t>(status.st_size);
}

InputFile::~InputFile() {
    if (descriptor_ > STDIN_FILENO) close(descriptor_);
}

void InputFile::Open(const std::string& name) {
    std::string path = name;
    std::ranges::replace(path, '\\', '/');
    constexpr int flags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    descriptor_ = RetryInterrupted([&] { return open(path.c_str(), flags); });
    struct stat status = {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) return Fail(errno);
    if (S_ISDIR(status.st_mode)) return Fail(EISDIR);
    if (S_ISFIFO(status.st_mode) && !WaitForWriter()) {
        failure_ = "nobody writes to this pipe";
        return;
    }
    const int now = fcntl(descriptor_, F_GETFL);
    if (now == -1 || fcntl(descriptor_, F_SETFL, now & ~O_NONBLOCK) == -1) Fail(errno);
}

// A pipe that nobody has opened for writing yet reads as ended; one that is open but silent says so.
bool InputFile::WaitForWriter() {
    pollfd waiting = {descriptor_, POLLIN, 0};
    if (RetryInterrupted([&] { return poll(&waiting, 1, kWriterWait); }) > 0) return true;
    const auto count = read(descriptor_, buffer_.data(), buffer_.size());
    end_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    bytesRead_ = end_;
    return count > 0 || (count < 0 && errno == EAGAIN);
}

void InputFile::Fail(int error) {
    failure_ = SystemReason(error);
}

bool InputFile::Fill() {
    beforeWaiting_();
    const auto count =
        RetryInterrupted([&] { return read(descriptor_, buffer_.data(), buffer_.size()); });
    if (count < 0) Fail(errno);
    begin_ = 0;
    end_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    bytesRead_ += end_;
    return end_ > 0;
}

bool InputFile::ReadLine(Line& line, std::size_t most) {
    line.text.clear();
    line.length = 0;
    char last = '\0';
    bool hasEnd = false;
    while (!hasEnd && !failure_ && (begin_ < end_ || Fill())) {
        const std::string_view waiting(buffer_.data() + begin_, end_ - begin_);
        const std::string_view part = waiting.substr(0, waiting.find('\n'));
        hasEnd = part.size() < waiting.size();
        line.text.append(part.substr(0, most - std::min(most, line.text.size())));
        line.length += part.size();
        if (!part.empty()) last = part.back();
        begin_ += part.size() + (hasEnd ? 1 : 0);
    }
    if (failure_ || (!hasEnd && line.length == 0)) return false;
    line.hasReturn = hasEnd && line.length > 0 && last == '\r';
    if (line.hasReturn) {
        if (line.text.size() == line.length) line.text.pop_back();
        --line.length;
    }
    line.number = ++lines_;
    return true;
}

}  // namespace corvale::tool
