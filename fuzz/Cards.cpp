// Whole input files, through either API and as the program explains them, against the simplest
// reader: modes, array and status.
#include "Targets.hpp"

#include "../tools/CardLines.hpp"
#include "reference/CorvaleCardReading.hpp"

#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/CorvaleTypes.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <sys/mman.h>
#include <unistd.h>

namespace corvale::fuzz {
namespace cards {

using namespace CorvaleCardReading;
using namespace std::literals;

constexpr std::string_view kBlanks =
    "                                                                                          ";
constexpr std::string_view kPieces[] = {"QZ_MOIC ",
                                        "\nQZ_MOIC ",
                                        "\r\nqz_moic ",
                                        "QZ_MOIC",
                                        "\nQZ_DMA_ON",
                                        "\nqz_dma_all_on",
                                        "QZ_DMA_ON",
                                        "\n",
                                        "\r\n",
                                        "\n* ",
                                        "\n ",
                                        " ",
                                        ",",
                                        " , ",
                                        "/",
                                        "\t",
                                        "1",
                                        "-2.5",
                                        ".5E+3",
                                        "7d-2",
                                        "1.5+2",
                                        "1Q3",
                                        "128*0",
                                        "126*",
                                        "9*",
                                        "3*4 ",
                                        "0*1",
                                        "X",
                                        "1e400",
                                        "Inf",
                                        "123456789",
                                        "2 3 4 5 ",
                                        "1,,3,",
                                        "99999999*",
                                        "\0"sv,
                                        "1;2",
                                        "1.5e",
                                        "-0 ",
                                        "NaN ",
                                        "9007199254740993",
                                        "2.4703282292062327208e-324",
                                        kBlanks,
                                        kBlanks,
                                        "\nQZ_MOIC 100* "};
constexpr double kOld = -77.5;  // what an element holds that no card has given a value

void ResetState() {
    MoicArr.fill(kOld);
    ResetAllKeyMode();
    SetElsetKeyMode(0);
}

// A file that exists in memory alone.
class MemoryFile {
  public:
    MemoryFile() : descriptor_(memfd_create("cards", MFD_CLOEXEC)) {
        std::snprintf(path_.data(), path_.size(), "/proc/self/fd/%d", descriptor_);
    }
    void Fill(std::string_view content) const {
        Expect(ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, content.data(), content.size(),
                                                        0) == static_cast<ssize_t>(content.size()),
               "the file is written");
    }
    [[nodiscard]] const char* Path() const { return path_.data(); }

  private:
    int descriptor_;
    std::array<char, 40> path_{};
};

void Load(const char* path, std::size_t api) {
    if (api == 0) return ExpectSame(CorvaleLoadFile(path), 0, "CorvaleLoadFile");
    if (api == 1) return ExpectSame(ReadCorvaleFrFile(path), 0, "ReadCorvaleFrFile");
    std::array<char, 9> line;
    ExpectSame(FileIO::FileOpen(17, path, 1), 0, "FileOpen");
    if (api == 2) static_cast<void>(TextUnits::ReadLine(17, line));
    ExpectSame(ReadCorvaleFrFileUnit(17), 0, "ReadCorvaleFrFileUnit");
    TextUnits::Close(17);
}

// What the program says that loading the file sets.
void CompareExplained(const char* path, const reference::CardOutcome& wanted) {
    tool::FileContent said;
    tool::InputFile input(path);
    for (tool::Line line; input.ReadLine(line, tool::kLineKept);)
        static_cast<void>(tool::ExplainLine(line, said));
    Expect(!input.Failure(), "the file is explained");
    ExpectSame(said.setsMode.test(internal::kElsetKeys), wanted.modes.elset != 0,
               "explained element-set key mode");
    ExpectSame(said.setsMode.test(internal::kAllKeys), wanted.modes.all != 0,
               "explained all-key mode");
    for (std::size_t i = 0; i < wanted.moic.size(); ++i)
        ExpectSame(said.isSet[i] ? said.values[i] : kOld, wanted.moic[i], "explained element");
}

void CompareArray(const std::array<double, 128>& wanted, std::int32_t count) {
    static thread_local GuardedMemory<8 * 200> guarded;
    const auto size = static_cast<std::size_t>(std::max(count, 0));
    auto* const values = guarded.Of<double>(size);
    GetMOICData(count, values);
    for (std::size_t i = 0; i < size; ++i)
        ExpectSame(values[i], count > 128 ? 0.0 : wanted[i], "GetMOICData");
    auto* const copies = guarded.Of<double>(std::min<std::size_t>(size, 128));
    RetrieveMocData(copies, count);
    for (std::size_t i = 0; i < std::min<std::size_t>(size, 128); ++i)
        ExpectSame(copies[i], wanted[i], "RetrieveMocData");
}

void CompareType(std::string_view content) {
    static thread_local GuardedMemory<64> guarded;
    const std::string_view card = guarded.HoldView(content.substr(0, content.size() % 32));
    std::string line(card);
    line.resize(13, ' ');
    const std::int32_t wanted = line.starts_with("QZ_MOIC ")        ? 1
                                : line.starts_with("QZ_DMA_ON")     ? 2
                                : line.starts_with("QZ_DMA_ALL_ON") ? 3
                                                                    : 100;
    ExpectSame(CorvaleCardType(card), wanted, "CorvaleCardType");
}

}  // namespace cards

void Cards(Choices in) {
    using namespace cards;
    static const MemoryFile file;
    static std::array<char, 8192> buffer;
    const std::size_t api = in.Below(4);
    const auto count = static_cast<std::int32_t>(in.Below(200)) - 20;
    const std::string_view content = in.Text(kPieces, buffer);
    reference::CardOutcome wanted;
    wanted.moic.fill(kOld);
    reference::ReadCards(content, wanted);

    ResetState();
    file.Fill(content);
    Load(file.Path(), api);
    const reference::CardModes modes{GetElsetKeyMode(), GetAllKeyMode(), UseAllKeyMode()};
    Expect(modes == wanted.modes, "the modes after loading");
    for (std::size_t i = 0; i < wanted.moic.size(); ++i)
        ExpectSame(MoicArr[i], wanted.moic[i], "MoicArr");
    CompareExplained(file.Path(), wanted);
    CompareArray(wanted.moic, count);
    CompareType(content);
}

}  // namespace corvale::fuzz
