#include <corvale/Corvale.h>

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "tests/support/GuardPage.hpp"
#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <cstdio>
#include <optional>

namespace corvale::FileIO {
namespace {

using namespace std::literals;
using test::Padded;
using test::Stored;

const std::string kBlanks(128, ' ');

class Log : public testing::Test {
  protected:
    Log() { CloseLogFile(); }
    ~Log() override { CloseLogFile(); }

    [[nodiscard]] bool Open(const std::string& name = "log") const {
        return OpenLogFile((folder / name).c_str()) == 0;
    }
    [[nodiscard]] std::vector<std::string> Lines() const { return test::LinesOf(folder / "log"); }

    test::TemporaryFolder folder;
};

struct MessageCase {
    std::string message;
    std::optional<std::string> errorLine;
    std::string infoLine;
    const char* why;
};
const MessageCase kMessages[] = {
    {"", std::nullopt, "", "an empty message: no error line, an empty informational one"},
    {"    ", std::nullopt, "    ", "a blank message: the same with blanks"},
    {"  x ", "Error-  x ", "  x ", "blanks on both sides stay"},
    {"\n", "Error- ", " ", "a line end is no blank"},
    {"\0\0"s, "Error-\0\0"s, "\0\0"s, "nor is a NUL"},
    {std::string(1 << 20, 'c') + "\n", "Error-" + std::string(1 << 20, 'c') + " ",
     std::string(1 << 20, 'c') + " ", "a megabyte"},
};

TEST_F(Log, EachMessageIsStoredAndIsOneLine) {
    for (const bool isOpen : {true, false})
        for (const auto& [message, errorLine, infoLine, why] : kMessages) {
            ASSERT_TRUE(Open());
            if (!isOpen) CloseLogFile();
            TraceLogError(message);
            TraceLogInfo(message);
            const std::string lines = (errorLine ? *errorLine + "\n" : "") + infoLine + "\n";
            EXPECT_TRUE(test::ReadFile(folder / "log") == (isOpen ? lines : "")) << why;
            EXPECT_EQ(Stored(LastLoggedErrMsg), Padded(message.substr(0, 128), 128)) << why;
            EXPECT_EQ(Stored(LogLastInfoMsg), Padded(message.substr(0, 128), 128)) << why;
        }
}

TEST_F(Log, BuffersAreAdjustedAndCutAtANul) {
    ASSERT_TRUE(Open("  a\\b  ")) << "of a name neither backslashes nor case change";
    std::string message = Padded("   from the left", 128);
    LogMessage(message.c_str());
    message[10] = '\0';
    LogMessage(message.c_str());
    LogMessage(test::GuardedBuffer(std::string(128, 'm')).Data());
    LogMessage(test::GuardedBuffer("  stop\t"sv).Data());
    EXPECT_EQ(test::ReadFile(folder / "  a\\b"),
              Padded("from the left", 128) + "\n" + Padded("from th", 128) + "\n" +
                  std::string(128, 'm') + "\n" + Padded("stop", 128) + "\n");

    std::string stored(129, '#');
    GetLastInfoMsg(stored.data());
    EXPECT_EQ(stored, Padded("stop", 128) + "#") << "128 characters, no terminator";
    ASSERT_EQ(OpenLogFile(("  " + (folder / "log")).c_str()), 0) << "leading blanks are dropped";
    EXPECT_EQ(Lines().size(), 0U);
}

// Whether a child can write to standard output when it is born while a thread waits there for room.
bool WritesInAChild() {
    int ends[2];
    std::fflush(stdout);
    if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) return false;
    std::thread writer(
        [] { static_cast<void>(TextUnits::WriteLine(6, std::string(1 << 20, 'x'))); });
    for (int waiting = 0; waiting < 1 << 16; usleep(1000)) ioctl(ends[0], FIONREAD, &waiting);
    const bool holds = test::HoldsInChild([] {
        return dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO) >= 0 &&
               TextUnits::WriteLine(6, "x");
    });
    close(ends[0]);
    writer.join();
    return holds;
}

// Ends the process; 0 where everything held.
[[noreturn]] void CheckAFreshProcess() {
    bool isGood = Stored(LastLoggedErrMsg) == kBlanks && Stored(LogLastInfoMsg) == kBlanks &&
                  LogFileUnit == 0 && GetDupKeyMode() == 0 && GetAllKeyMode() == 0 &&
                  GetElsetKeyMode() == 0 && CorvaleTypes::gUseAllKeyMode == 0 &&
                  CorvaleCardReading::MoicArr == std::array<double, 128>{} && WritesInAChild();
    {
        const test::TemporaryFolder folder;
        isGood = isGood && std::freopen((folder / "host").c_str(), "w", stdout) != nullptr;
        isGood = isGood && TextUnits::IsOpen(6) && TextUnits::WriteLine(6, "unit 6");
        LogMessage("no log");
        isGood = isGood && OpenLogFile((folder / "log").c_str()) == 0;
        isGood = isGood && TextUnits::WriteLine(6, "to the log");
        std::printf("host\n");
        std::fflush(stdout);
        CloseLogFile();
        isGood = isGood && !TextUnits::IsOpen(6) && !TextUnits::WriteLine(6, "nowhere");
        isGood =
            isGood && test::ReadFile(folder / "host") == "\nunit 6\nhost\n";  // ends the long line
        isGood = isGood && test::ReadFile(folder / "log") == "to the log\n";
    }
    _exit(isGood ? 0 : 1);
}

TEST(LogDeathTest, Unit6IsStandardOutputUntilTheLogIsOpened) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a process of its own
    EXPECT_EXIT(CheckAFreshProcess(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace corvale::FileIO
