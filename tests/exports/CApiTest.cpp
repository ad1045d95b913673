#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/numeric/SoftwareInfo.hpp>

#include "tests/support/GuardPage.hpp"
#include "tests/support/TestFiles.hpp"

#include <gtest/gtest.h>
#include <algorithm>
#include <cctype>
#include <climits>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvale {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::GuardedBuffer;
using test::Padded;
using test::WriteFile;

// What `write` puts into a buffer that ends at the end of memory; what lies before it must stay.
std::string Written(void (*write)(char*) noexcept, std::size_t width = CORVALE_MESSAGE_WIDTH) {
    const GuardedBuffer buffer(width + 8);
    write(buffer.Data() + 8);
    EXPECT_EQ(buffer.Text().substr(0, 8), "########");
    return std::string(buffer.Text().substr(8));
}

std::string Message(std::string_view text) {
    return Padded(text, CORVALE_MESSAGE_WIDTH);
}

// The first calls of the process, before main and before any other.
const std::string kFirstError = Written(GetLastErrMsg);
const std::string kFirstInfo = Written(GetLastInfoMsg);
const std::int32_t kFirstModes = GetDupKeyMode() | GetAllKeyMode() | GetElsetKeyMode();

// Each test starts with closed log, modes 0, blank error store, in an empty folder.
class CApi : public testing::Test {
  protected:
    CApi() { ResetAll(); }
    ~CApi() override { ResetAll(); }

  private:
    static void ResetAll() {
        CloseLogFile();
        ResetAllKeyMode();
        EXPECT_EQ(SetElsetKeyMode(0), CORVALE_OK);
    }
    test::WorkingFolder folder_;
};

TEST(StaticConstructor, MayMakeTheFirstCall) {
    EXPECT_EQ(kFirstError, Message(""));
    EXPECT_EQ(kFirstInfo, Message(""));
    EXPECT_EQ(kFirstModes, 0);
}

TEST_F(CApi, TellsWhichLibraryThisIs) {
    EXPECT_EQ(CorvaleInit(), CORVALE_OK);
    EXPECT_EQ(Written(GetInitDllNames, CORVALE_NAME_WIDTH), Padded("", CORVALE_NAME_WIDTH));
    const std::string line = Written(CorvaleGetInfo);
    EXPECT_EQ(line.substr(0, 41), "Arvenit Corvale - Version: v9.4 - Build: ");
    EXPECT_NE("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"sv.find(line.substr(41, 3)),
              std::string_view::npos);
    std::string day = line.substr(44, 8);
    for (char& c : day) c = std::isdigit(static_cast<unsigned char>(c)) != 0 ? '9' : c;
    EXPECT_TRUE(day == "  9 9999" || day == " 99 9999") << line;
    EXPECT_EQ(line.substr(52, 13), " - Platform: ");
    EXPECT_EQ(line.substr(81, 13), " - Compiler: ") << "the platform has 16 characters";
    EXPECT_NE(line[94], ' ');
}

TEST_F(CApi, ComposesTheInformationLineOfAnyLibrary) {
    const std::string longName(200, 'n');
    const struct {
        std::string_view name;
        std::optional<std::string_view> version;
        std::string_view start;
        const char* why;
    } cases[] = {
        {"Orbit  ", "v2  ", "Arvenit Orbit   - Version: v2   - Build: ", "blanks are kept"},
        {"", std::nullopt, "Arvenit  - Version: v9.4 - Build: ", "no name"},
        {"", "", "Arvenit  - Version:  - Build: ", "an empty version is a version"},
        {longName, "v1", "Arvenit nnnn", "the line is cut at its width"},
    };
    for (const auto& [name, version, start, why] : cases) {
        const GuardedBuffer info(CORVALE_MESSAGE_WIDTH);
        GenFunctions::GetSoftwareInfo(name, info.Span().first<CORVALE_MESSAGE_WIDTH>(), version);
        EXPECT_EQ(info.Text().substr(0, start.size()), start) << why;
        EXPECT_EQ(info.Text().find('#'), std::string_view::npos) << why;
    }
}

TEST_F(CApi, TakesNullForBlankAndSkipsNullOutputs) {
    CorvaleGetInfo(nullptr);
    GetInitDllNames(nullptr);
    GetLastErrMsg(nullptr);
    GetLastInfoMsg(nullptr);
    GetMOICData(5, nullptr);
    CorvaleCardReading::RetrieveMocData(nullptr, 5);
    LogMessage(nullptr);
    EXPECT_EQ(Written(GetLastInfoMsg), Message(""));
    EXPECT_EQ(OpenLogFile(nullptr), CORVALE_FAILED);
    EXPECT_EQ(CorvaleLoadFile(nullptr), CORVALE_FAILED);
    EXPECT_EQ(Written(GetLastErrMsg), Message("FileOpen: File name is empty."));
}

TEST_F(CApi, TakesNamesOutOfBuffers) {
    const std::string longest(255, 'l');
    const struct {
        std::string buffer, name;
        const char* why;
    } cases[] = {
        {"plain.log\0other"s, "plain.log", "a terminated string"},
        {Padded("full.log", 512), "full.log", "a full buffer: trailing blanks are not its own"},
        {"in ner.log\0"s, "in ner.log", "inner blanks stay"},
        {"cut\t.log\0"s, "cut", "a tab ends the name"},
        {"utf\xc3\xa9.log\0"s, "utf", "so does a byte above 127"},
        {std::string(257, ' ') + longest, longest, "the name may reach the buffer's last byte"},
        {Padded("w512", 512) + "not looked at", "w512", "what follows the buffer does not count"},
        {"back\\slash\0"s, "back\\slash", "a backslash stays in the name of a log"},
    };
    for (const auto& [buffer, name, why] : cases) {
        EXPECT_EQ(OpenLogFile(GuardedBuffer(buffer).Data()), CORVALE_OK) << why;
        CloseLogFile();
        EXPECT_TRUE(std::filesystem::remove(name)) << why;
        if (name.find('\\') != std::string::npos) continue;
        WriteFile(name, "QZ_DMA_ON\n");
        EXPECT_EQ(SetElsetKeyMode(0), CORVALE_OK);
        EXPECT_EQ(CorvaleLoadFile(GuardedBuffer(buffer).Data()), CORVALE_OK) << why;
        EXPECT_EQ(GetElsetKeyMode(), 1) << why;
        EXPECT_TRUE(std::filesystem::remove(name)) << why;
    }
    EXPECT_TRUE(std::filesystem::is_empty(".")) << "no other file was made";
}

TEST_F(CApi, ReportsFilesThatDoNotOpen) {
    const struct {
        std::string buffer, message;
    } cases[] = {
        {"\0"s, "FileOpen: File name is empty."},
        {"  no\\such\0"s, "FileOpen: Unable to open file \"no\\such\" for reading."},
        {std::string(512, 'x'), "FileOpen: Unable to open file \"" + std::string(97, 'x')},
    };
    for (const auto& [buffer, message] : cases) {
        EXPECT_EQ(CorvaleLoadFile(GuardedBuffer(buffer).Data()), CORVALE_FAILED) << message;
        EXPECT_EQ(Written(GetLastErrMsg), Message(message));
    }
    std::filesystem::create_directory("folder");
    WriteFile("folder/cards", "QZ_DMA_ALL_ON\n");
    EXPECT_EQ(CorvaleLoadFile("folder\\cards"), CORVALE_OK) << "a backslash is a slash here";
    EXPECT_EQ(GetAllKeyMode(), 1);
    EXPECT_NE(Written(GetLastErrMsg), Message("")) << "a success clears no message";
}

TEST_F(CApi, SetsModesOfZeroAndOne) {
    const struct {
        std::int32_t (*set)(std::int32_t) noexcept;
        std::int32_t (*get)() noexcept;
        std::string_view message;
    } modes[] = {
        {SetDupKeyMode, GetDupKeyMode,
         "SetDupKeyMode: invalid input value for DUPLICATION key mode."},
        {SetAllKeyMode, GetAllKeyMode, "SetAllKeyMode: invalid input value for elset key mode."},
        {SetElsetKeyMode, GetElsetKeyMode,
         "SetElsetKeyMode: invalid input value for elset key mode."},
    };
    for (const auto& [set, get, message] : modes) {
        for (const std::int32_t mode : {1, 0}) {
            EXPECT_EQ(set(mode), CORVALE_OK) << message;
            for (const std::int32_t bad : {2, -1, INT_MIN, INT_MAX}) {
                CloseLogFile();  // blanks the message
                EXPECT_EQ(set(bad), CORVALE_FAILED) << message;
                EXPECT_EQ(Written(GetLastErrMsg), Message(message));
                EXPECT_EQ(get(), mode) << message << bad;
            }
        }
    }
}

TEST_F(CApi, RemembersThatTheAllKeyModeWasChosen) {
    EXPECT_EQ(SetAllKeyMode(2), CORVALE_FAILED);
    EXPECT_EQ(CorvaleCardReading::UseAllKeyMode(), 0) << "a refused mode chooses nothing";
    EXPECT_EQ(SetAllKeyMode(0), CORVALE_OK);
    EXPECT_EQ(CorvaleCardReading::UseAllKeyMode(), 1) << "0 is a choice too";
    EXPECT_EQ(SetDupKeyMode(1) | SetAllKeyMode(1) | SetElsetKeyMode(1), CORVALE_OK);
    ResetAllKeyMode();
    EXPECT_EQ(CorvaleCardReading::UseAllKeyMode(), 0);
    EXPECT_EQ(GetAllKeyMode() | GetDupKeyMode(), 0);
    EXPECT_EQ(GetElsetKeyMode(), 1) << "a reset leaves the element-set key mode";
}

TEST_F(CApi, CopiesAsManyValuesAsAreAskedFor) {
    std::array<double, CORVALE_MOIC_COUNT> before = CorvaleCardReading::MoicArr;
    for (std::size_t i = 0; i < before.size(); ++i)
        CorvaleCardReading::MoicArr[i] = 1.0 + static_cast<double>(i);
    for (const int count : {INT_MIN, -1, 0, 1, 2, 127, 128, 129, 1000}) {
        const auto written = static_cast<std::size_t>(std::max(count, 0));
        std::vector<double> values(written + 1, -1.0);
        GetMOICData(count, values.data());
        EXPECT_EQ(values[written], -1.0) << count << ": nothing beyond is written";
        for (std::size_t i = 0; i < written; ++i)
            EXPECT_EQ(values[i], count > 128 ? 0.0 : 1.0 + static_cast<double>(i)) << count;
    }
    CorvaleCardReading::MoicArr = before;
}

}  // namespace
}  // namespace corvale
