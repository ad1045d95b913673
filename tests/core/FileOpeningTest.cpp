#include <corvale/Corvale.h>

#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <optional>

namespace corvale::FileIO {
namespace {

using namespace std::literals;
using test::ReadFile;
using test::Stored;

constexpr std::int32_t kUnit = 12;
constexpr std::int32_t kWrite = 0, kRead = 1, kAppend = 2;

// What cannot be opened, and the messages for it, are compared with a model by fuzz/Log.cpp.
const std::string kUnable = "FileOpen: Unable to open file ";

class FileOpening : public testing::Test {
  protected:
    FileOpening() {
        test::WriteFile(folder / "in", "x\n");
        CloseLogFile();
    }
    ~FileOpening() override {
        TextUnits::Close(kUnit);
        CloseLogFile();
    }
    test::TemporaryFolder folder;
};

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
