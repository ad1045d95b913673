#include <corvale/core/CorvaleCardReading.hpp>

#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include "reference/CorvaleCardReading.hpp"
#include "tests/support/Bits.hpp"
#include "tests/support/TestFiles.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <limits>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace corvale::CorvaleCardReading {
namespace {

using namespace std::literals;

constexpr double kOld = -77.5;  // what an element holds that no card has given a value
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Modes = reference::CardModes;
Modes CurrentModes() {
    return {ElsetKeyModeGet(), AllKeyModeGet(), UseAllKeyMode()};
}

class Cards : public testing::Test {
  protected:
    Cards() { Reset(); }
    ~Cards() override {
        Reset();
        MoicArr.fill(0.0);
    }
    static void Reset() {
        ElsetKeyMode = CorvaleTypes::gAllKeyMode = CorvaleTypes::gUseAllKeyMode = 0;
        MoicArr.fill(kOld);
    }
    void Load(std::string_view content) const {
        test::WriteFile(folder / "in", content);
        EXPECT_EQ(ReadCorvaleFrFile(folder / "in"), 0);
        EXPECT_FALSE(TextUnits::IsOpen(3));
    }
    test::TemporaryFolder folder;
};

struct NumbersCase {
    std::string_view numbers;    // from column 9 on
    std::vector<double> values;  // of the first elements
    const char* why;
    double rest = kOld;  // of all others
};
const NumbersCase kNumbers[] = {
    {"  1\t\t2 \t3", {1, 2, 3}, "so do tabs"},
    {"1,2 ,3, 4 , 5", {1, 2, 3, 4, 5}, "and one comma, whatever surrounds it"},
    {"1,,3", {1, kOld, 3}, "nothing between commas keeps"},
    {",5", {kOld, 5}, "a first comma has nothing before it"},
    {"1,/2", {1}, "a slash ends"},
    {"3*,5", {kOld, kOld, kOld, 5}, "three that keep; a comma after them is their separator"},
    {"2* 5", {kOld, kOld, 5}, "so is a blank: no repeated 5"},
    {"128*0", {}, "all of them", 0.0},
    {"200*1", {}, "more than there are", 1.0},
    {"99999999999999999999*1", {}, "more than any counter holds", 1.0},
    {"126*1 2 3 4", {}, "what follows the last", 0.0},
    {"01*4 1", {4, 1}, "a count with a leading zero"},
    {"1 0*5 2", {1}, "no count: not a number"},
    {"1 2.*3 2", {1}, "or one with a point"},
    {"1 *5 2", {1}, "a star without a count"},
    {".5 2. 7 -.5 +3", {0.5, 2, 7, -0.5, 3}, "a point anywhere, any sign"},
    {"1E2 1e2 1D2 1d2 1Q2 1q2 1.0D2", {100, 100, 100, 100, 100, 100, 100}, "all exponent letters"},
    {"1.5+2 15-1 1E+2 1E-2", {150, 1.5, 100, 0.01}, "a sign begins an exponent or belongs to it"},
    {"1E 2", {1, 2}, "an exponent without digits is 0"},
    {"1e400 -1e400 1e-400 -0", {kInfinity, -kInfinity, 0.0, -0.0}, "out of range, and signed zero"},
    {"1 X 4", {1}, "a word ends the reading"},
    {"1 . 4", {1}, "a point is no number"},
    {"1 Inf 4", {1}, "nor an infinity"},
    {"1 0x10 4", {1}, "nor hexadecimal digits"},
    {"1 2\r 4", {1}, "a CR inside the line"},
    {"1 2;3 4", {1}, "a semicolon does not separate"},
    {"1 2\0 4"sv, {1}, "a NUL"},
    {"1 2\xa0 4", {1}, "a byte above 127"},
};

TEST_F(Cards, NumbersInFreeForm) {
    for (const auto& [numbers, values, why, rest] : kNumbers)
        for (const char* const lineEnd : {"\n", "\r\n"}) {
            Reset();
            Load("QZ_MOIC " + std::string(numbers) + lineEnd + "qz_dma_on" + lineEnd);
            for (std::size_t i = 0; i < MoicArr.size(); ++i) {
                double expected = i < values.size() ? values[i] : rest;
                if (numbers.starts_with("126*")) expected = i < 126 ? 1 : i < 127 ? 2 : 3;
                EXPECT_EQ(test::Bits(MoicArr[i]), test::Bits(expected))
                    << numbers << ", element " << i + 1 << ": " << why;
            }
            EXPECT_EQ(ElsetKeyModeGet(), 1) << why << ": the rest of the file is read";
        }
}

const std::string kTo511(503, ' ');  // the columns 9 to 511
const std::string kAboveHalfway =
    "1.00000000000000011102230246251565404236316680908203125" + std::string(440, '0') + "1";

const std::string kManyCards = [] {
    std::string cards = "QZ_MOIC 5\n";
    for (int i = 0; i < 600; ++i) cards += i == 300 ? "QZ_MOIC 7\n" : "QZ_DMA_ON\n";
    return cards;
}();

struct FileCase {
    std::string content;
    Modes modes;
    double first;  // element 1
    const char* why;
};
const FileCase kFiles[] = {
    {"", {0, 0, 0}, kOld, "an empty file"},
    {"\n* comment\n    \n*QZ_DMA_ON\n", {0, 0, 0}, kOld, "comments and blank lines"},
    {"QZ_DMA_ON", {1, 0, 0}, kOld, "without a line end"},
    {"QZ_DMA_ONLY if\n", {1, 0, 0}, kOld, "only nine columns are compared"},
    {"QZ_DMA_O\nQZ_DMA_ \nON\n", {0, 0, 0}, kOld, "all nine"},
    {"QZ_DMA_ALL_ON\n", {0, 1, 1}, kOld, "all keys, and nothing else"},
    {"qz_dma_all_onx\r\nQZ_DMA_ON\r\n", {1, 1, 1}, kOld, "both"},
    {" QZ_DMA_ON\n*QZ_DMA_ON\n QZ_MOIC 1\n", {0, 0, 0}, kOld, "column 1 only"},
    {"\xef\xbb\xbfQZ_DMA_ON\nQZ_DMA_ALL_ON\n", {0, 1, 1}, kOld, "a byte order mark hides a card"},
    {"x\rQZ_DMA_ON\r", {0, 0, 0}, kOld, "a CR alone ends no line"},
    {"QZ_MOIC\t1\nQZ_MOIC1\nQZ_MOICS 1\n", {0, 0, 0}, kOld, "column 8 must be a blank"},
    {"QZ_MOIC\nQZ_MOIC ", {0, 0, 0}, kOld, "no numbers"},
    {"QZ_MOIC " + kTo511 + "56\n", {0, 0, 0}, 5, "column 512 is the last"},
    {"QZ_MOIC " + kTo511 + "5\r\n", {0, 0, 0}, 5, "a CR after it"},
    {"QZ_MOIC " + kTo511 + " 5\n", {0, 0, 0}, kOld, "column 513 is not read"},
    {"QZ_MOIC " + kAboveHalfway, {0, 0, 0}, 1 + 0x1p-52, "the 494th decimal is seen"},
    {"QZ_MOIC 4 " + std::string(1000000, ' ') + "\nQZ_DMA_ON", {1, 0, 0}, 4, "a very long line"},
    {std::string(1000000, 'Q') + "\nQZ_DMA_ON", {1, 0, 0}, kOld, "one without sense"},
    {kManyCards + "QZ_DMA_ON", {1, 0, 0}, 7, "more cards than are taken together"},
};

TEST_F(Cards, FilesOfEveryKind) {
    for (const auto& [content, modes, first, why] : kFiles) {
        Reset();
        Load(content);
        EXPECT_EQ(CurrentModes(), modes) << why;
        EXPECT_EQ(MoicArr[0], first) << why;
    }
}

TEST_F(Cards, AUnitIsReadFromItsFirstLineAndStaysOpen) {
    TextUnits::Close(3);
    EXPECT_EQ(ReadCorvaleFrFile(folder / "missing"), 2);
    EXPECT_EQ(ReadCorvaleFrFileUnit(3), 0) << "a unit that is not open";
    ASSERT_EQ(FileIO::FileOpen(3, folder / "in", 0), 0);
    EXPECT_TRUE(TextUnits::WriteLine(3, "QZ_MOIC 1"));
    EXPECT_EQ(ReadCorvaleFrFileUnit(3), 0) << "a unit that writes";
    EXPECT_EQ(MoicArr[0], kOld);

    ASSERT_EQ(FileIO::FileOpen(3, folder / "in", 1), 0);
    std::string line(9, ' ');
    EXPECT_TRUE(TextUnits::ReadLine(3, line));
    EXPECT_EQ(ReadCorvaleFrFileUnit(3), 0);
    EXPECT_EQ(MoicArr[0], 1) << "although its first line has been read";
    EXPECT_TRUE(TextUnits::Rewind(3) && TextUnits::ReadLine(3, line));
    TextUnits::Close(3);
}

// One reading waits inside a card while another one takes place.
TEST_F(Cards, TwoReadingsDoNotDisturbEachOther) {
    test::WriteFile(folder / "in", std::string(3000, '*') + "\nQZ_MOIC 5\n");
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    const int writer = open((folder / "fifo").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(write(writer, "QZ_DMA", 6), 6);
    std::thread waiting([&] {
        std::int32_t unit = 0;
        EXPECT_EQ(FileIO::FileOpenMT(folder / "fifo", 1, unit), 0);
        ReadCorvaleFrFileUnit(unit);
        TextUnits::Close(unit);
    });
    for (int unread = 1; unread > 0; usleep(1000)) ioctl(writer, FIONREAD, &unread);
    EXPECT_EQ(ReadCorvaleFrFile(folder / "in"), 0);
    EXPECT_EQ(write(writer, "_ON\n", 4), 4);
    close(writer);
    waiting.join();
    EXPECT_EQ(MoicArr[0], 5);
    EXPECT_EQ(ElsetKeyModeGet(), 1);
}

TEST(CardTypes, ComparesAsItStands) {
    const std::pair<std::string_view, std::int32_t> cases[] = {
        {"QZ_MOIC 1 2 3", 1},   {"QZ_MOIC", 1},         {"QZ_MOIC\t1", 100},
        {"QZ_DMA_ONE   ", 2},   {"QZ_DMA_ALL_ON", 3},   {"QZ_DMA_ALL_O ", 100},
        {"qz_dma_on    ", 100}, {" QZ_DMA_ON   ", 100}, {"", 100},
    };
    for (const auto& [card, code] : cases) EXPECT_EQ(CorvaleCardType(card), code) << card;
}

// A long file of all the cases above; random ones are compared by the fuzz targets.
TEST_F(Cards, ComeThroughAPipeInPiecesOfAnySize) {
    std::string content;
    for (int times = 0; content.size() < 100000; ++times) {
        const NumbersCase& c = kNumbers[static_cast<std::size_t>(times * 7) % std::size(kNumbers)];
        content += "QZ_MOIC " + std::to_string(times % 128) + "* " + std::string(c.numbers);
        content += std::string(static_cast<std::size_t>(times) % 600, ' ') + "\n";
    }
    reference::CardOutcome expected;
    expected.moic.fill(kOld);
    reference::ReadCards(content, expected);
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    for (const std::size_t most : {40U, 5000U}) {
        std::thread writer([&] {
            std::mt19937 random(1);
            const int pipe = open((folder / "fifo").c_str(), O_WRONLY | O_CLOEXEC);
            for (std::size_t at = 0, count = 0; at < content.size(); at += count) {
                count = std::min(1 + random() % most, content.size() - at);
                EXPECT_EQ(write(pipe, &content[at], count), static_cast<ssize_t>(count));
                for (int unread = 1; unread > 0;) ioctl(pipe, FIONREAD, &unread);
            }
            close(pipe);
        });
        Reset();
        EXPECT_EQ(FileIO::FileOpen(3, folder / "fifo", 1), 0);
        EXPECT_EQ(ReadCorvaleFrFileUnit(3), 0);
        EXPECT_FALSE(TextUnits::Rewind(3)) << "a pipe that has been read";
        TextUnits::Close(3);
        writer.join();
        for (std::size_t i = 0; i < MoicArr.size(); ++i)
            EXPECT_EQ(test::Bits(MoicArr[i]), test::Bits(expected.moic[i])) << "element " << i + 1;
    }
}

}  // namespace
}  // namespace corvale::CorvaleCardReading
