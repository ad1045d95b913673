// 16 threads at once on all that threads may share, as many rounds as the argument says (16 without
// one). Ends where anything is not as it should be. In every round each thread does each of the things in kWorks, beginning with another.
#include "fuzz/RandomInput.hpp"
#include "fuzz/Targets.hpp"
#include "tests/support/TestFiles.hpp"

#include <corvale/Corvale.h>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/NamedLocks.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <array>
#include <barrier>
#include <fstream>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

using namespace corvale;
using fuzz::Expect;

constexpr std::size_t kThreads = 16;
constexpr int kTimes = 200;  // of the quick things in each round
constexpr std::size_t kLocks = 5;

struct Shared {
    test::TemporaryFolder folder;
    std::string info;
    std::mutex unitsGuard;
    std::set<std::int32_t> units;       // that are open now
    std::array<long, kLocks> counts{};  // each guarded by its named lock alone
};

std::string Info() {
    std::string info(CORVALE_MESSAGE_WIDTH, '?');
    CorvaleGetInfo(info.data());
    return info;
}

// The thread's own data through the toolkits: nothing that others do may show.
void UseToolkits(Shared& shared, std::size_t thread, std::size_t round) {
    constexpr void (*kTargets[])(fuzz::Choices) = {fuzz::Numbers, fuzz::FreeForm, fuzz::NumberText,
                                                   fuzz::Csv,     fuzz::Text,     fuzz::Lists,
                                                   fuzz::Angles,  fuzz::Matrices, fuzz::Sort};
    std::mt19937_64 random(round * kThreads + thread);
    for (int i = 0; i < kTimes; ++i) {
        const fuzz::Input input = fuzz::RandomInput(random);
        for (const auto target : kTargets) target({input.data(), input.size()});
    }
    Expect(Info() == shared.info, "the information line");
    std::array<std::int64_t, 6> longs{1, 2, 3, 4, 5, 6}, copies{};
    std::array<std::int32_t, 6> integers{1, 2, 3, 4, 5, 6}, integerCopies{};
    std::array<double, 6> reals{1, 2, 3, 4, 5, 6}, realCopies{};
    std::array<char, CORVALE_NAME_WIDTH> text{"some text"}, textCopy{};
    char character = ' ';
    std::int32_t integer = 0;
    std::int64_t longInteger = 0;
    double real = 0.0;
    TestInterface('x', &character, 7, &integer, 8, &longInteger, 9.0, &real, text.data(),
                  textCopy.data(), integers.data(), integerCopies.data(), longs.data(),
                  copies.data(), reals.data(), realCopies.data(), integers.data(),
                  integerCopies.data(), longs.data(), copies.data(), reals.data(),
                  realCopies.data());
    Expect(character == 'x' && integer == 7 && longInteger == 8 && copies == longs &&
               integerCopies == integers && realCopies == reals && textCopy[8] == 't',
           "the interface test");
}

// Lines of one letter each, so that a torn or mixed one shows.
void Log(Shared&, std::size_t thread, std::size_t) {
    const std::string text(40 + thread, static_cast<char>('a' + thread));
    std::array<char, CORVALE_MESSAGE_WIDTH> read;
    for (int i = 0; i < kTimes; ++i) {
        FileIO::TraceLogError(text);
        FileIO::TraceLogInfo(text);
        LogMessage(text.c_str());
        GetLastErrMsg(read.data());
        GetLastInfoMsg(read.data());
        Expect(read[0] >= 'a' && read[0] < static_cast<char>('a' + kThreads), "a message's letter");
    }
}

void UseModes(Shared&, std::size_t thread, std::size_t) {
    for (int i = 0; i < kTimes; ++i) {
        const auto mode = static_cast<std::int32_t>(thread & 1U);
        Expect(SetDupKeyMode(mode) + SetAllKeyMode(mode) + SetElsetKeyMode(mode) == 0, "modes set");
        for (const std::int32_t value : {GetDupKeyMode(), GetAllKeyMode(), GetElsetKeyMode()})
            Expect(value == 0 || value == 1, "a whole mode");
        ResetAllKeyMode();
    }
}

void UseUnits(Shared& shared, std::size_t thread, std::size_t) {
    const std::string name = shared.folder / std::to_string(thread);
    for (int i = 0; i < kTimes; ++i) {
        std::int32_t unit = 0;
        const std::int32_t mode = i % 2;  // written, then read
        Expect(FileIO::FileOpenMT(name, mode, unit) == 0, "a unit opens");
        {
            const std::lock_guard guard(shared.unitsGuard);
            Expect(unit != 0 && unit != 3 && unit != 6 && shared.units.insert(unit).second,
                   "a number of its own");
        }
        std::array<char, 12> line{};
        if (mode == 0) Expect(TextUnits::WriteLine(unit, name), "a line is written");
        if (mode == 1)
            Expect(TextUnits::ReadLine(unit, line) &&
                       name.starts_with(std::string_view(line.data(), 12)),
                   "the line is read");
        {
            const std::lock_guard guard(shared.unitsGuard);
            shared.units.erase(unit);
        }
        TextUnits::Close(unit);
    }
}

void UseLocks(Shared& shared, std::size_t thread, std::size_t) {
    for (std::size_t i = 0; i < kTimes; ++i) {
        const std::size_t lock = (thread + i) % kLocks;
        const std::lock_guard guard(NamedLocks::NamedLock("soak_" + std::to_string(lock)));
        ++shared.counts[lock];
    }
}

constexpr void (*kWorks[])(Shared&, std::size_t thread, std::size_t round) = {
    UseToolkits, Log, UseModes, UseUnits, UseLocks};

// How many whole lines the log has; a line is one letter's run, with or without its prefix or blanks.
long CountLines(const std::string& name) {
    std::ifstream file(name);
    long lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        const bool isError = line.starts_with("Error-");
        std::string text = line.substr(isError ? 6 : 0);
        const bool isWhole = text.size() == CORVALE_MESSAGE_WIDTH || text.back() != ' ';
        text.resize(text.find_last_not_of(' ') + 1);
        const auto thread = static_cast<std::size_t>(text.empty() ? 0 : text[0] - 'a');
        Expect(isWhole && text == std::string(40 + thread, text[0]), "a whole line");
    }
    return lines;
}

}  // namespace

int main(int argc, char** argv) {
    const auto rounds = static_cast<std::size_t>(argc > 1 ? std::atoi(argv[1]) : 16);
    Shared shared;
    shared.info = Info();
    Expect(OpenLogFile((shared.folder / "log").c_str()) == 0, "the log opens");
    std::barrier start(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            for (std::size_t round = 0; round < rounds; ++round) {
                start.arrive_and_wait();
                for (std::size_t work = 0; work < std::size(kWorks); ++work)
                    kWorks[(work + thread) % std::size(kWorks)](shared, thread, round);
            }
        });
    for (std::thread& thread : threads) thread.join();
    CloseLogFile();

    const auto expected = static_cast<long>(kThreads * rounds) * kTimes;
    const long lines = CountLines(shared.folder / "log");
    Expect(lines == 3 * expected, "every line is in the log");
    long holds = 0;
    for (const long count : shared.counts) holds += count;
    Expect(holds == expected, "the locks exclude");
    std::printf("%zu threads, %ld inputs, %ld log lines, %ld units, %ld lock holds\n", kThreads,
                expected, lines, expected, holds);
}
