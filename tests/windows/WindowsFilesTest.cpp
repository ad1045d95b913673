#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace corvale::TextUnits {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using FileIO::FileOpen;

constexpr std::int32_t kUnit = 11, kOther = 12;
constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

// An empty folder is the working directory of each test.
class WindowsFiles : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directory("corvale-files");
        fs::current_path("corvale-files");
    }
    void TearDown() override {
        Close(kUnit);
        Close(kOther);
        fs::current_path("..");
        fs::remove_all("corvale-files");
    }
};

void Fill(const fs::path& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string ContentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(WindowsFiles, ReadBytesAsTheyStand) {
    Fill("in", "a\r\n\x1a\nb\r\r\nc");
    ASSERT_EQ(FileOpen(kUnit, "in", kRead), 0);
    for (int round = 1; round <= 2; ++round) {
        for (const auto wanted : {"a "sv, "\x1a "sv, "b\r"sv, "c "sv}) {
            std::string line(2, '?');
            EXPECT_TRUE(ReadLine(kUnit, line));
            EXPECT_EQ(line, wanted) << "round " << round;
        }
        std::string line;
        EXPECT_FALSE(ReadLine(kUnit, line));
        EXPECT_TRUE(Rewind(kUnit));
    }
}

TEST_F(WindowsFiles, AppendLinesWithTheSystemsLineEnd) {
    const struct {
        std::string before, text, after;
        const char* why;
    } cases[] = {
        {"old\r\n", "new ", "old\r\nnew \r\n", "behind a whole line"},
        {"old", "", "old\r\n\r\n", "a line that had no end gets one"},
        {"", "a\r\nb\x1a", "a  b\x1a\r\n", "line ends inside become blanks"},
        {"old", std::string(3000, '\n'), "old\r\n" + std::string(3000, ' ') + "\r\n", "many parts"},
    };
    for (const auto& [before, text, after, why] : cases) {
        Fill("out", before);
        ASSERT_EQ(FileOpen(kUnit, "out", kAppend), 0);
        EXPECT_TRUE(WriteLine(kUnit, text)) << why;
        EXPECT_EQ(ContentOf("out"), after) << why;
    }
}

TEST_F(WindowsFiles, WhatOpens) {
    fs::create_directory("folder");
    const struct {
        std::string_view name;
        std::int32_t ioMode, status;
        const char* why;
    } cases[] = {
        {"Z\xc3\xbcrich \xe2\x82\xac\xf0\x9f\x9b\xb0", kWrite, 0, "a name in UTF-8"},
        {"folder\\in it  ", kWrite, 0, "backslashes separate, trailing blanks do not count"},
        {"Z\xfcrich", kWrite, 2, "no UTF-8"},
        {"a\0b"sv, kWrite, 2, "a NUL cuts no name"},
        {"folder", kRead, 2, "a folder"},
        {"missing/x", kWrite, 2, "nor a folder"},
        {"NUL", kRead, 0, "the null device is an empty file"},
        {"NUL", kAppend, 0, "and takes everything"},
    };
    for (const auto& [name, ioMode, status, why] : cases) {
        EXPECT_EQ(FileOpen(kUnit, name, ioMode), status) << why;
        EXPECT_EQ(WriteLine(kUnit, "x"), status == 0 && ioMode != kRead) << why;
    }
    EXPECT_EQ(ContentOf(L"Z\u00fcrich \u20ac\U0001f6f0"), "x\r\n");
    EXPECT_EQ(ContentOf(L"folder/in it"), "x\r\n");
}

TEST_F(WindowsFiles, AnOpenLogMayBeReadMovedAndDeleted) {
    Fill("run.log", "of the last run");
    ASSERT_EQ(OpenLogFile("run.log"), 0);
    LogMessage("one");
    EXPECT_EQ(ContentOf("run.log").substr(0, 4), "one ");
    fs::rename("run.log", "moved.log");
    LogMessage("two");
    EXPECT_EQ(ContentOf("moved.log").size(), 2 * 130U);
    EXPECT_TRUE(fs::remove("moved.log"));
    LogMessage("lost with the file");
    CloseLogFile();
}

// Two units have two handles, as two processes would.
TEST_F(WindowsFiles, EachLineGoesToTheEnd) {
    std::string wanted;
    ASSERT_EQ(FileOpen(kUnit, "out", kWrite), 0);
    ASSERT_EQ(FileOpen(kOther, "out", kAppend), 0);
    for (const std::size_t length : {1, 2, 3000, 4, 5}) {
        const std::string line(length, 'x');
        EXPECT_TRUE(WriteLine(length % 2 == 0 ? kOther : kUnit, line));
        wanted += line + "\r\n";
    }
    EXPECT_EQ(ContentOf("out"), wanted);
}

TEST_F(WindowsFiles, ACloseLeavesNoHandle) {
    DWORD before = 0, after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 200; ++i)
        for (const std::int32_t ioMode : {kAppend, kRead, kWrite})
            EXPECT_EQ(FileOpen(kUnit, ioMode == kWrite ? "." : "out", ioMode),
                      ioMode == kWrite ? 2 : 0);
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_LT(after, before + 10);
}

// The locks work before main and in the last exit handler, in a static library too: one that does not
// ends the program.
struct LogsFromEndToEnd {
    LogsFromEndToEnd() { FileIO::TraceLogError("before main"); }
    ~LogsFromEndToEnd() { FileIO::TraceLogError("after main"); }
} logsFromEndToEnd;

}  // namespace
}  // namespace corvale::TextUnits
