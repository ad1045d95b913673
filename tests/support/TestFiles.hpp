// Test help: a folder of the test's own, whole files, work in a child process.
#pragma once

#include "tests/support/Bits.hpp"

#include <corvale/core/FileIO.hpp>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace corvale::test {

class TemporaryFolder {
  public:
    TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "corvale-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] std::string operator/(std::string_view name) const {
        return path_ + "/" + std::string(name);
    }

  private:
    std::string path_;
};

/// A temporary folder that is the working directory while it lives.
class WorkingFolder {
  public:
    WorkingFolder() { std::filesystem::current_path(folder_.Path()); }
    ~WorkingFolder() { std::filesystem::current_path(before_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

  private:
    std::filesystem::path before_ = std::filesystem::current_path();
    TemporaryFolder folder_;
};

inline void WriteFile(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

inline std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::string> LinesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

/// A named pipe with a reader, who can leave and come back.
class NamedPipe {
  public:
    explicit NamedPipe(const std::string& path) : path_(path) {
        mkfifo(path.c_str(), 0600);
        Come();
    }
    ~NamedPipe() {
        Leave();
        unlink(path_.c_str());
    }
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    void Come() { reader_ = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }
    void Leave() { close(reader_); }
    [[nodiscard]] std::string Content() const {
        std::string content(1 << 16, '\0');
        const ssize_t count = read(reader_, content.data(), content.size());
        content.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return content;
    }

  private:
    std::string path_;
    int reader_ = -1;
};

inline std::string Stored(const FileIO::MessageStore& store) {
    std::array<char, 128> text;
    store.Load(text);
    return {text.data(), text.size()};
}

inline std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// How often what depends on the instant is tried: CORVALE_TIMES in the environment, else
/// `otherwise`.
inline int Rounds(int otherwise) {
    const char* times = std::getenv("CORVALE_TIMES");
    return times == nullptr ? otherwise : std::atoi(times);
}

/// Starts a child that ends with status 0 if `work` returns true, by SIGALRM if it hangs.
template <class Work>
pid_t StartChild(Work work) {
    const pid_t child = fork();
    if (child != 0) return child;
    alarm(static_cast<unsigned>(60 + Rounds(0)));
    _exit(work() ? 0 : 1);
}

inline int WaitFor(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

/// Whether `work` returned true in a child process.
template <class Work>
bool HoldsInChild(Work work) {
    return WaitFor(StartChild(work)) == 0;
}

}  // namespace corvale::test
