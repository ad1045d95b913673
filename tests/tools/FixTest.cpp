#include <corvale/Corvale.h>
#include <corvale/core/CorvaleCardReading.hpp>

#include "ProgramRuns.hpp"
#include "tests/support/Bits.hpp"
#include "tools/FileFixer.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

namespace corvale {
namespace {

using nlohmann::json;
using test::Outcome;
using test::ProgramRuns;
using test::Quoted;
using test::ReadFile;
using test::WriteFile;

// What the fixer makes of a file, without one.
std::string Mended(const std::string& text, bool withCommas) {
    tool::LineFixer fixer({}, withCommas);
    std::string mended;
    tool::Line line;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::size_t next = std::min(end + 1, text.size());
        line.hasReturn = end < text.size() && end > begin && text[end - 1] == '\r';
        line.text = text.substr(begin, end - begin - (line.hasReturn ? 1 : 0));
        line.length = line.text.size();
        ++line.number;
        const auto fixed = fixer.Fix(line);
        mended += fixed ? fixed->text : line.text;
        mended += text.substr(begin + line.length, next - begin - line.length);
        begin = next;
    }
    return mended;
}

// What loading a file sets: two modes, and the bits of 128 values.
struct Loaded {
    std::int32_t elset, all;
    std::vector<std::uint64_t> bits;
    bool operator==(const Loaded&) const = default;
};
Loaded Load(const std::string& content) {
    WriteFile("loaded", content);
    CorvaleCardReading::MoicArr.fill(-77.5);
    ResetAllKeyMode();
    SetElsetKeyMode(0);
    EXPECT_EQ(CorvaleLoadFile("loaded"), CORVALE_OK);
    Loaded loaded{GetElsetKeyMode(), GetAllKeyMode(), {}};
    for (const double value : CorvaleCardReading::MoicArr) loaded.bits.push_back(test::Bits(value));
    return loaded;
}

class Random {
  public:
    std::size_t Below(std::size_t bound) { return engine_() % bound; }
    template <std::size_t N>
    std::string One(const char* const (&of)[N]) {
        return of[Below(N)];
    }

  private:
    std::mt19937 engine_;
};

// A line without a fault, and the same line as somebody might have broken it.
struct Planted {
    std::string clean, broken;
};
Planted PlantFault(Random& random) {
    constexpr const char* modes[] = {"QZ_DMA_ON", "qz_dma_on", "QZ_DMA_ALL_ON",
                                     "QZ_DMA_ON  remark"};
    constexpr const char* lists[] = {"1 2.5 3", "4*, 7", "128*0", " -1E3,2", "1 / km", "3*1.5"};
    constexpr const char* others[] = {"", "* 1 2", "STEP 60.0", "QZ_FRAME J2000", "  indented"};
    constexpr const char* blanks[] = {" ", "\t", "   ", " \t ", "\xef\xbb\xbf", "\xef\xbb\xbf "};
    const bool isMode = random.Below(2) == 0;
    const std::string list = random.One(lists);
    const std::string card = isMode ? random.One(modes) : "QZ_MOIC " + list;
    const std::string other = random.One(others);
    const std::string misspelt = isMode ? "QZ_DMA_ALLON" : "QZ_MOIK " + list;
    switch (random.Below(8)) {
        case 0:
            return {card, random.One(blanks) + card};
        case 1:
            return {"QZ_MOIC " + list, "QZ_MOIC\t" + list};
        case 2:
            return {"QZ_MOIC " + list, random.One(blanks) + "QZ_MOIC\t" + list};
        case 3:
            return {isMode ? "QZ_DMA_ALL_ON" : card, misspelt};
        case 4:
            return {"QZ_MOIC 1 2 / km per second", "QZ_MOIC 1 2 km per second"};
        case 5:
            return {"* " + other + "\n" + card, "* " + other + "\r" + card};
        case 6:
            return {card, card};
        default:
            return {other, other};
    }
}

class Fix : public ProgramRuns {};

// The fixed file is the one without the faults, byte for byte, and a second time nothing changes.
TEST_F(Fix, UndoesWhatWasPlanted) {
    Random random;
    for (int i = 0; i < 10000; ++i) {
        Planted file;
        for (std::size_t lines = random.Below(8); lines > 0; --lines) {
            const Planted line = PlantFault(random);
            file.clean += line.clean + "\n";
            file.broken += line.broken + "\n";
        }
        ASSERT_EQ(Mended(file.broken, false), file.clean) << file.broken;
        ASSERT_EQ(Mended(file.clean, false), file.clean);
        if (i % 50 != 0) continue;
        WriteFile("in", file.broken);
        ASSERT_EQ(tool::FixFile("in", {}), std::nullopt);
        ASSERT_EQ(ReadFile("in"), file.clean);
    }
}

// Any bytes: what was announced is what loading sets, and a second time nothing changes. Where nothing
// is mended the bytes are the same.
TEST_F(Fix, IsSettledAndLoadsAsAnnounced) {
    constexpr const char* pieces[] = {"QZ_MOIC",
                                      "QZ_MOIC ",
                                      "QZ_DMA_ON",
                                      "qz_dma_all_on",
                                      "QZ_MOIK",
                                      "QZ_DMA_ALLON",
                                      "\n",
                                      "\n",
                                      "\r\n",
                                      "\r",
                                      " ",
                                      "\t",
                                      "*",
                                      "* corvale-ignore: carriage-return",
                                      "\xef\xbb\xbf",
                                      "1",
                                      "2.5",
                                      ",",
                                      "1,5",
                                      " 3*0,25 ",
                                      "km",
                                      " E5",
                                      "nan",
                                      "/",
                                      "128*0 ",
                                      "1e400",
                                      "X",
                                      "\nQZ_MOIC 1 "};
    Random random;
    for (int i = 0; i < 10000; ++i) {
        std::string text;
        for (std::size_t count = random.Below(24); count > 0; --count) text += random.One(pieces);
        const bool withCommas = random.Below(2) == 0;
        const std::string mended = Mended(text, withCommas);
        ASSERT_EQ(Mended(mended, withCommas), mended) << text;
        if (i % 20 != 0) continue;

        WriteFile("in", text);
        std::size_t told = 0;
        const auto tell = [&](const tool::Line&, const tool::FixedLine&) { ++told; };
        ASSERT_EQ(tool::FixFile("in", {{}, withCommas, tell}), std::nullopt);
        ASSERT_EQ(ReadFile("in"), mended) << text;
        ASSERT_EQ(told > 0, mended != text) << text;
        tool::FileContent said;
        tool::InputFile input("in");
        for (tool::Line line; input.ReadLine(line, tool::kLineKept);)
            static_cast<void>(tool::ExplainLine(line, said));
        Loaded announced{said.setsMode.test(internal::kElsetKeys) ? 1 : 0,
                         said.setsMode.test(internal::kAllKeys) ? 1 : 0,
                         {}};
        for (std::size_t j = 0; j < tool::kElements; ++j)
            announced.bits.push_back(test::Bits(said.isSet[j] ? said.values[j] : -77.5));
        ASSERT_EQ(Load(mended), announced) << text;
    }
}

struct FixCase {
    const char *before, *after, *why;
};
const FixCase kFixes[] = {
    {" QZ_DMA_ONLY\n\tQZ_MOIC1\n", nullptr, "not certain which word it is"},
    {"QZ_MOIC=1\nQZ_MOICS 1\nQZ_DAM_OM\nQZ_DMA\nQZ_DMA_OFF\n", nullptr, "nor here"},
    {"\xc2\xa0QZ_DMA_ON\n", nullptr, "a no-break space may be a mark"},
    {"QZ_MOIC 1 eleven 12\nQZ_MOIC 1.5 E3\nQZ_MOIC 1 NaN\nQZ_MOIC km\n", nullptr, "no remarks"},
    {"QZ_MOIC 398600,8\n", nullptr, "on request only"},
    {"qz_mioc 1\n", "qz_moic 1\n", "neighbours exchanged, in small letters"},
    {"QZ_MOIC 128*0 all\n", "QZ_MOIC 128*0 / all\n", "a remark after the 128th"},
    {"QZ_MOIC 1 2\r\r\n", "QZ_MOIC 1 2\r\n", "a return too many"},
    {" QZ_DMA_ON\rQZ_DMA_ON\r\n", "QZ_DMA_ON\r\nQZ_DMA_ON\r\n", "ends as the others have"},
    {" QZ_DMA_ON", "QZ_DMA_ON", "no line end at the end"},
};

TEST_F(Fix, MendsWhatIsCertain) {
    for (const auto& [before, after, why] : kFixes) {
        EXPECT_EQ(Mended(before, false), after == nullptr ? before : after) << why;
    }
    EXPECT_EQ(Mended("QZ_MOIC 6378,135 -1,5E3 2*0,5 / a,b\nQZ_MOIC 1,2,3\n", true),
              "QZ_MOIC 6378.135 -1.5E3 2*0.5 / a,b\nQZ_MOIC 1,2,3\n");
    const std::string longLine = " QZ_MOIC 1 / " + std::string(70000, 'x') + "\n";
    EXPECT_EQ(Mended(longLine + " QZ_DMA_ON\n", false).substr(0, 3), "QZ_");
    WriteFile("in", longLine + " QZ_DMA_ON\n");
    EXPECT_EQ(Corvale("check -q --fix in").exitCode, 1);
    EXPECT_EQ(ReadFile("in"), longLine + "QZ_DMA_ON\n") << "the first line is not kept whole";
}

TEST_F(Fix, ReplacesTheFileAndNothingElse) {
    const std::string before = " QZ_DMA_ON\nQZ_MOIC 1\n";
    WriteFile("in", before);
    ASSERT_EQ(Run("chmod 604 in; ln -s in link; mkdir sub").exitCode, 0);
    const auto count = [] { return std::distance(std::filesystem::directory_iterator("."), {}); };
    for (const char* refused : {"check --fix link", "check --fix - <in", "check --fix sub",
                                "check --fix missing", "check --diff link"}) {
        EXPECT_EQ(Corvale(refused).exitCode, 2) << refused;
        EXPECT_EQ(ReadFile("in"), before) << refused;
    }
    const auto files = count();
    const Outcome full =
        Run("trap '' XFSZ; yes ' QZ_DMA_ON' | head -n 20000 >big; cp big old; "
            "ulimit -f 8; " +
            Quoted(CORVALE_PROGRAM) + " check -q --fix big");
    EXPECT_EQ(full.exitCode, 2) << "no space";
    EXPECT_EQ(full.err, "corvale: \"big\" cannot be fixed: File too large\n");
    EXPECT_EQ(ReadFile("big"), ReadFile("old"));
    EXPECT_EQ(count(), files + 2) << "nothing else is left";

    const Outcome fixed = Corvale("check --fix --json in");
    EXPECT_EQ(fixed.exitCode, 0);
    const json file = json::parse(fixed.out).at("files").at(0);
    EXPECT_EQ(file.at("fixed"),
              json::parse(R"([{"line": 1, "codes": ["not-in-column-1"], "text": "QZ_DMA_ON"}])"));
    EXPECT_EQ(file.at("sets").at("elsetKeyMode"), 1);
    EXPECT_EQ(ReadFile("in"), "QZ_DMA_ON\nQZ_MOIC 1\n");
    struct stat status = {};
    ASSERT_EQ(stat("in", &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0604U);
    const auto inode = status.st_ino;
    EXPECT_EQ(Corvale("check --fix in").exitCode, 0);
    ASSERT_EQ(stat("in", &status), 0);
    EXPECT_EQ(status.st_ino, inode) << "nothing to mend: the file is not touched";
}

// patch(1) makes of the old file what --fix makes of it.
TEST_F(Fix, TheDifferenceIsAPatch) {
    Random random;
    for (int i = 0; i < 40; ++i) {
        std::string text;
        for (std::size_t lines = random.Below(40); lines > 0; --lines)
            text += random.Below(4) == 0 ? " QZ_DMA_ON\n" : random.Below(9) == 0 ? "*\r\n" : "*\n";
        if (random.Below(3) == 0) text += "\tQZ_DMA_ON";
        if (random.Below(3) == 0) text += "* x\rQZ_DMA_ON\r\n*";
        WriteFile("in", text);
        const Outcome difference = Corvale("check --diff in >patch");
        ASSERT_EQ(ReadFile("in"), text);
        const std::string mended = Mended(text, false);
        ASSERT_EQ(difference.exitCode, mended == text ? 0 : 1) << text;
        const bool isEmpty = mended == text;
        ASSERT_EQ(ReadFile("patch").empty(), isEmpty);
        if (isEmpty) continue;
        const Outcome patched = Run("patch --binary -s in patch");
        ASSERT_EQ(patched.exitCode, 0) << patched.out << ReadFile("patch");
        ASSERT_EQ(ReadFile("in"), mended) << ReadFile("patch");
    }
}

}  // namespace
}  // namespace corvale
