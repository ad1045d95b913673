// Test help: the program corvale, run as its users run it.
#pragma once

#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <array>
#include <cstdlib>
#include <string>

namespace corvale::test {

struct Outcome {
    int exitCode;  // -1: ended by a signal
    std::string out, err;
};

inline std::string Quoted(const std::string& argument) {
    return "'" + argument + "'";
}

/// Each test has an empty folder of its own, in which the programs run.
class ProgramRuns : public testing::Test {
  protected:
    static Outcome Run(const std::string& command) {
        const int status = std::system(("{ " + command + "\n} >out 2>err").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile("out"), ReadFile("err")};
    }
    static Outcome Corvale(const std::string& arguments) {
        return Run(Quoted(CORVALE_PROGRAM) + " " + arguments);
    }
    /// The shell command `command`, in which `corvale` is the program, on a terminal: all that it
    /// shows, with the exit status of the shell.
    static Outcome OnTerminal(const std::string& command) {
        int terminal = -1;
        const winsize size = {24, 100, 0, 0};
        const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
        if (child == 0) {
            const std::string text =
                std::string("corvale() { ") + CORVALE_PROGRAM + " \"$@\"; }\n" + command;
            execl("/bin/sh", "sh", "-c", text.c_str(), nullptr);
            _exit(127);
        }
        std::string shown;
        std::array<char, 4096> buffer;
        for (;;) {
            const ssize_t count = read(terminal, buffer.data(), buffer.size());
            if (count <= 0) break;  // the other side is closed
            shown.append(buffer.data(), static_cast<std::size_t>(count));
        }
        close(terminal);
        const int status = WaitFor(child);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, shown, ""};
    }

  private:
    WorkingFolder folder_;
};

}  // namespace corvale::test
