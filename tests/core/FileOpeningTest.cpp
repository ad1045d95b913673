#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/TestFiles.hpp"

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
    std::string message;  // empty where the file opens
    const char* why;
};
const std::string kEmpty = "FileOpen: File name is empty.";
const std::string kMode = "FileOpen: Invalid ioMode for FileOpen.";
const std::string kUnable = "FileOpen: Unable to open file ";
const OpenCase kOpens[] = {
    {"@/in   ", kRead, "", "trailing blanks are no part of the name"},
    {"@\\sub\\/deep", kRead, "", "backslashes separate, beside slashes too"},
    {"@/ in", kRead, "", "a blank inside belongs to it"},
    {"@/new", kWrite, "", "a file that is written need not be there"},
    {"@/new2", kAppend, "", "nor one that is appended to"},
    {" @/in", kRead, kUnable + "\" @/in\" for reading.", "a leading blank belongs to the name"},
    {"   ", 7, kEmpty, "the name is looked at before the mode"},
    {"@/in", 3, kMode, "a mode above the last"},
    {"@/in", -1, kMode, "and below the first"},
    {"@\\no  ", kRead, kUnable + "\"@\\no\" for reading.",
     "a missing file, quoted with its backslash, without its blanks"},
    {"@/no/x", kWrite, kUnable + "\"@/no/x\" for writing.", "a missing folder"},
    {"@/no/x", kAppend, kUnable + "\"@/no/x\" for writing.", "appending is writing"},
    {"\0"s, kRead, kUnable + "\"\0\" for reading."s, "a NUL is not blank, and opens nothing"},
};

// FileOpenMT does not append, names itself, but for an empty name.
std::string MessageMT(const OpenCase& c) {
    const std::string message = c.ioMode == kAppend ? kMode : c.message;
    return message.empty() || message == kEmpty ? message : "FileOpenMT" + message.substr(8);
}

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
    for (const OpenCase& c : kOpens) {
        std::int32_t other = 0, unit = -1;
        ASSERT_EQ(FileOpenMT(folder / "in", kRead, other), 0);
        ASSERT_EQ(FileOpen(kUnit, folder / "other", kWrite), 0);
        const auto expectMessage = [&](const std::string& message) {
            const std::string stored = message.empty() ? "before" : In(folder, message);
            EXPECT_EQ(Stored(LastLoggedErrMsg), Padded(stored, 128)) << c.why;
            TraceLogError("before");
        };
        TraceLogError("before");
        EXPECT_EQ(FileOpen(kUnit, In(folder, c.name), c.ioMode), c.message.empty() ? 0 : 2);
        EXPECT_EQ(TextUnits::IsOpen(kUnit), c.message.empty()) << c.why;
        expectMessage(c.message);

        const bool opens = MessageMT(c).empty();
        EXPECT_EQ(FileOpenMT(In(folder, c.name), c.ioMode, unit), opens ? 0 : 2) << c.why;
        EXPECT_EQ(unit != 0, opens) << c.why;
        expectMessage(MessageMT(c));
        EXPECT_TRUE(TextUnits::IsOpen(other)) << c.why << ": nothing else is closed";
        for (const std::int32_t open : {kUnit, unit, other}) TextUnits::Close(open);
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
        const std::string message = kUnable + "\"" + name + "n\" for reading.";
        EXPECT_EQ(FileOpen(kUnit, name + "n  ", kRead), 2);
        EXPECT_EQ(Stored(LastLoggedErrMsg), message.substr(0, 128));
        EXPECT_EQ(test::LinesOf(folder / "log").back(), "Error-" + message);
    }
}

}  // namespace
}  // namespace corvale::FileIO
