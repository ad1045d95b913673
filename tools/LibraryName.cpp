#include "LibraryName.hpp"

#include "Input.hpp"
#include "Texts.hpp"

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

namespace corvale::tool {

namespace {

// A descriptor that stands for the file and does not read it: a named pipe keeps waiting for its
// reader. Elsewhere than on Linux the file is opened.
#ifdef O_PATH
constexpr int kFlags = O_PATH | O_CLOEXEC;
#else
constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
#endif

}  // namespace

std::string InputPath(const std::string& file) {
    if (file == "-") return "/dev/stdin";
    std::string path = file;
    std::ranges::replace(path, '\\', '/');
    return path;
}

LibraryName::LibraryName(const std::string& file) : text_(file == "-" ? InputPath(file) : file) {
    if (!WhyNameIsRefused(text_)) return;
    descriptor_ = open(InputPath(file).c_str(), kFlags);
    if (descriptor_ < 0)
        failure_ = SystemReason(errno);
    else
        text_ = "/dev/fd/" + std::to_string(descriptor_);
}

LibraryName::~LibraryName() {
    if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace corvale::tool
