#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <TestFiles.hpp>

#include <gtest/gtest.h>
#include <algorithm>
#include <optional>

namespace corvale::FileIO {
namespace {

using namespace std::literals;
using test::Padded;
using test::ReadFile;
using test::Stored;

constexpr std::int32_t kUnit = 12;
constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

// "@" in a name or message stands for the test's folder.
std::string In(const test::TemporaryFolder& folder, std::string text) {
    const std::size_t at = text.find('@');
    return at == std::string::npos ? text : text.replace(at, 1, folder.Path());
}

struct OpenCase {
    std::string name;
    std::int32_t ioMode;
    std::string message, messageMT;  // empty where the file opens
    const char* why;
};
const std::string kEmpty = "FileOpen: File name is empty.";
const std::string kMode = "FileOpen: Invalid ioMode for FileOpen.";
const std::string kModeMT = "FileOpenMT: Invalid ioMode for FileOpen.";
const std::string kUnable = "FileOpen: Unable to open file ";
const std::string kUnableMT = "FileOpenMT: Unable to open file ";
const OpenCase kOpens[] = {
    {"@/in", kRead, "", "", "a file that is there"},
    {"@/in   ", kRead, "", "", "trailing blanks are no part of the name"},
    {"@\\sub\\deep", kRead, "", "", "backslashes separate"},
    {"@/sub\\/deep", kRead, "", "", "beside slashes too"},
    {"@/ in", kRead, "", "", "a blank inside belongs to it"},
    {"@/new", kWrite, "", "", "a file that is written need not be there"},
    {"@/new2", kAppend, "", kModeMT, "nor one that is appended to"},
    {" @/in", kRead, kUnable + "\" @/in\" for reading.", kUnableMT + "\" @/in\" for reading.",
     "so does a leading one"},
    {"", kRead, kEmpty, kEmpty, "no name"},
    {"   ", kWrite, kEmpty, kEmpty, "a blank one"},
    {"   ", 7, kEmpty, kEmpty, "the name is looked at before the mode"},
    {"@/in", 3, kMode, kModeMT, "a mode above the last"},
    {"@/in", -1, kMode, kModeMT, "and below the first"},
    {"@\\no  ", kRead, kUnable + "\"@\\no\" for reading.", kUnableMT + "\"@\\no\" for reading.",
     "a missing file, quoted with its backslash, without its blanks"},
    {"@/no/x", kWrite, kUnable + "\"@/no/x\" for writing.", kUnableMT + "\"@/no/x\" for writing.",
     "a missing folder"},
    {"@/no/x", kAppend, kUnable + "\"@/no/x\" for writing.", kModeMT, "appending is writing"},
    {"@/a\"b", kRead, kUnable + "\"@/a\"b\" for reading.", kUnableMT + "\"@/a\"b\" for reading.",
     "a quotation mark in the name"},
    {"\0"s, kRead, kUnable + "\"\0\" for reading."s, kUnableMT + "\"\0\" for reading."s,
     "a NUL is not blank, and opens nothing"},
};

class FileOpening : public testing::Test {
  protected:
    FileOpening() {
        std::filesystem::create_directory(folder / "sub");
        for (const char* name : {"in", " in", "sub/deep"}) test::WriteFile(folder / name, "x\n");
        CloseLogFile();
    }
    ~FileOpening() override {
        TextUnits::Close(kUnit);
        CloseLogFile();
    }
    test::TemporaryFolder folder;
};

TEST_F(FileOpening, SaysWhatItCannotOpen) {
    for (const auto& [name, ioMode, message, messageMT, why] : kOpens) {
        std::int32_t other = 0;
        ASSERT_EQ(FileOpenMT(folder / "in", kRead, other), 0);
        ASSERT_EQ(FileOpen(kUnit, folder / "other", kWrite), 0);
        TraceLogError("before");

        const std::string stored = message.empty() ? "before" : In(folder, message);
        EXPECT_EQ(FileOpen(kUnit, In(folder, name), ioMode), message.empty() ? 0 : 2) << why;
        EXPECT_EQ(Stored(LastLoggedErrMsg), Padded(stored, 128)) << why;
        EXPECT_EQ(TextUnits::IsOpen(kUnit), message.empty()) << why;
        TextUnits::Close(kUnit);

        TraceLogError("before");
        std::int32_t unit = -1;
        const std::string storedMT = messageMT.empty() ? "before" : In(folder, messageMT);
        EXPECT_EQ(FileOpenMT(In(folder, name), ioMode, unit), messageMT.empty() ? 0 : 2) << why;
        EXPECT_EQ(Stored(LastLoggedErrMsg), Padded(storedMT, 128)) << why;
        EXPECT_EQ(unit != 0, messageMT.empty()) << why;
        EXPECT_TRUE(TextUnits::IsOpen(other)) << why << ": nothing else is closed";
        TextUnits::Close(unit);
        TextUnits::Close(other);
    }
}

TEST_F(FileOpening, TheModeDecidesWhatBecomesOfAFile) {
    const auto before = test::OpenDescriptors();
    ASSERT_EQ(FileOpen(kUnit, folder / "kept", kWrite), 0);
    for (const auto readFlag :
         {std::optional<std::int32_t>(), std::optional(0), std::optional(1)}) {
        EXPECT_EQ(FileOpen(kUnit, folder / "in", kAppend, readFlag), 0);
        EXPECT_TRUE(TextUnits::WriteLine(kUnit, "after"));
        EXPECT_EQ(ReadFile(folder / "in"), "x\nafter\n") << "kept, written at its end";
        EXPECT_EQ(FileOpen(kUnit, folder / "in", kRead, readFlag), 0);
        EXPECT_FALSE(TextUnits::WriteLine(kUnit, "no"));
        EXPECT_EQ(ReadFile(folder / "in"), "x\nafter\n") << "kept, not written";
        EXPECT_EQ(FileOpen(kUnit, folder / "in", kWrite, readFlag), 0);
        EXPECT_TRUE(TextUnits::WriteLine(kUnit, "x"));
        EXPECT_EQ(ReadFile(folder / "in"), "x\n") << "emptied, written from its start";
    }
    EXPECT_EQ(ReadFile(folder / "kept"), "");
    EXPECT_EQ(test::OpenDescriptors(), before + 1) << "a unit holds its last file only";
}

TEST_F(FileOpening, ALongNameIsWholeInTheLog) {
    ASSERT_EQ(OpenLogFile((folder / "log").c_str()), 0);
    for (const std::size_t length : {500U, 5000U}) {
        const std::string name(length, '\\');
        const std::string quoted = "\"" + name + "n\" for reading.";
        std::int32_t unit = 0;
        EXPECT_EQ(FileOpen(kUnit, name + "n  ", kRead), 2);
        EXPECT_EQ(Stored(LastLoggedErrMsg), (kUnable + quoted).substr(0, 128));
        EXPECT_EQ(FileOpenMT(name + "n", kRead, unit), 2);
        EXPECT_EQ(Stored(LastLoggedErrMsg), (kUnableMT + quoted).substr(0, 128));
        const std::vector<std::string> lines = test::LinesOf(folder / "log");
        ASSERT_GE(lines.size(), 2U);
        EXPECT_EQ(lines[lines.size() - 2], "Error-" + kUnable + quoted);
        EXPECT_EQ(lines.back(), "Error-" + kUnableMT + quoted);
    }
}

TEST_F(FileOpening, Unit6TakesTheLogsPlace) {
    ASSERT_EQ(OpenLogFile((folder / "log").c_str()), 0);
    ASSERT_EQ(FileOpen(6, folder / "mine", kWrite), 0);
    TraceLogInfo("line");
    EXPECT_EQ(ReadFile(folder / "log"), "");
    EXPECT_EQ(ReadFile(folder / "mine"), "line\n");
    ASSERT_EQ(FileOpen(6, folder / "in", kRead), 0);
    TraceLogInfo("lost");
    EXPECT_EQ(FileOpen(6, folder / "no/x", kWrite), 2);
    EXPECT_EQ(ReadFile(folder / "in"), "x\n");
}

}  // namespace
}  // namespace corvale::FileIO
