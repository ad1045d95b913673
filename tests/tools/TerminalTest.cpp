#include "ProgramRuns.hpp"

#include <algorithm>
#include <string>

namespace corvale {
namespace {

using test::Outcome;
using test::ProgramRuns;
using test::ReadFile;
using test::WriteFile;

class Surroundings : public ProgramRuns {
  protected:
    Surroundings() {
        WriteFile("good", "QZ_MOIC 1.5\n");
        WriteFile("bad", "QZ_MOIC 1.5 x\n");
    }
    static bool Has(const Outcome& outcome, const std::string& text) {
        return outcome.out.find(text) != std::string::npos;
    }
};

TEST_F(Surroundings, ColoursAreForTerminals) {
    const std::string escape = "\033[";
    EXPECT_TRUE(
        Has(OnTerminal("TERM=xterm; unset NO_COLOR; corvale check bad"), escape + "1;35mwarning["));
    EXPECT_FALSE(Has(OnTerminal("export TERM=xterm NO_COLOR=1; corvale check bad"), escape));
    EXPECT_FALSE(Has(OnTerminal("export TERM=dumb; corvale check bad"), escape));
    EXPECT_FALSE(Has(OnTerminal("export TERM=xterm; corvale check bad | cat"), escape));
    EXPECT_FALSE(Has(OnTerminal("export TERM=xterm; corvale check --color=never bad"), escape));
    EXPECT_TRUE(Has(Corvale("check --color=always bad"), escape));
    EXPECT_EQ(OnTerminal("corvale check bad").exitCode, 1);
}

// --progress shows the bar from the first moment on; otherwise a short file has none.
TEST_F(Surroundings, ProgressIsForTerminals) {
    ASSERT_EQ(
        Run("yes '* a comment' | head -c 40000000 >long; yes QZ_DMA_ON | head -c 999999 >cards")
            .exitCode,
        0);
    const std::string terminal = "export TERM=xterm; ";
    for (const char* command : {"load", "check"}) {
        const std::string run = terminal + "corvale " + command;
        const Outcome bar = OnTerminal(run + " --progress long >/dev/null");
        EXPECT_TRUE(Has(bar, "\rlong [")) << command << bar.out;
        EXPECT_TRUE(bar.out.ends_with("\r\033[K")) << command << ": it is wiped out";
        const Outcome cards = OnTerminal(run + " --progress cards >/dev/null");
        EXPECT_EQ(cards.out.find("\r\033[K"), cards.out.size() - 4) << "no card wipes it out";
        EXPECT_EQ(OnTerminal(run + " good >/dev/null").out, "") << command;
        EXPECT_EQ(Corvale(std::string(command) + " --progress long >/dev/null").err, "") << command;
        EXPECT_EQ(OnTerminal("export TERM=dumb; corvale " + std::string(command) +
                             " --progress long >/dev/null")
                      .out,
                  "")
            << command;
    }
    const Outcome ended =
        OnTerminal(terminal + CORVALE_PROGRAM
                   " check -q --progress long long long long long & sleep 0.2; kill $!; wait");
    EXPECT_TRUE(Has(ended, "\rlong [") && ended.out.ends_with("\r\033[K")) << ended.out;
}

TEST_F(Surroundings, AFilterAnswersAtOnce) {
    const Outcome outcome =
        Run("mkfifo to from; "
            "corvale() { " CORVALE_PROGRAM
            " \"$@\"; }; "
            "corvale upper <to >from & exec 3>to 4<from; "
            "echo first >&3; read -r line <&4; echo \"$line\"; "
            "echo second >&3; read -r line <&4; echo \"$line\"; exec 3>&-; wait");
    EXPECT_EQ(outcome.out, "FIRST\nSECOND\n");
}

TEST_F(Surroundings, OutputThatGoesNowhereIsSaidOnce) {
    ASSERT_EQ(Run("yes ' QZ_DMA_ON' | head -c 300000 >many; seq 1 99999 >numbers").exitCode, 0);
    const std::string program = CORVALE_PROGRAM;
    for (const char* arguments : {"check many", "check --json many", "load good", "info",
                                  "alpha5 <numbers", "sort --number <numbers", "--help"}) {
        for (const char* where : {">/dev/full", ">&-"}) {
            const Outcome outcome = Corvale(std::string(arguments) + " " + where);
            EXPECT_EQ(outcome.exitCode, 2) << arguments << where;
            EXPECT_EQ(outcome.err, "corvale: standard output cannot be written\n")
                << arguments << where;
        }
        // who reads no further ends the writer, in silence
        const Outcome cut = Run(program + " " + arguments + " | head -n 1 >/dev/null");
        EXPECT_EQ(cut.exitCode, 0);
        EXPECT_EQ(cut.err, "") << arguments;
        // or where that signal is ignored, the writer says it once
        const Outcome ignored =
            Run("(trap '' PIPE; " + program + " " + arguments + "; echo $? >status) | true");
        EXPECT_LE(std::ranges::count(ignored.err, '\n'), 1) << arguments << ignored.err;
    }
}

// A decimal comma and a dotless i are the system's matter; the program knows neither.
TEST_F(Surroundings, EveryLocaleIsTheSame) {
    if (test::kIsSanitized) GTEST_SKIP() << "making locales takes longer than all else";
    ASSERT_EQ(
        Run("for name in de_DE tr_TR; do localedef -c -i $name -f UTF-8 ./$name.UTF-8 2>/dev/null; "
            "test -d $name.UTF-8 || exit 1; done")
            .exitCode,
        0);
    WriteFile("cards", "qz_moic 1.5 2,5 i\nqz_dma_all_on\nQz_Moıc 1\n");
    const std::string program = CORVALE_PROGRAM;
    const std::string commands = program + " check cards; " + program + " check --json cards; " +
                                 program + " load cards; " + program + " load --json cards; " +
                                 "echo 1234567.5 | " + program + " number; echo title | " +
                                 program + " upper; echo TITLE | " + program + " lower; " +
                                 program + " load missing";
    const Outcome plain = Run("export LC_ALL=C; " + commands);
    ASSERT_NE(plain.out.find("1234567.5\nTITLE\ntitle\n"), std::string::npos) << plain.out;
    for (const char* locale : {"de_DE.UTF-8", "tr_TR.UTF-8"}) {
        const std::string setting = std::string("export LOCPATH=$PWD LC_ALL=") + locale + "; ";
        EXPECT_EQ(Run(setting + "/usr/bin/printf %.1f 1,5 2>/dev/null").out, "1,5")
            << "the locale is not there";
        const Outcome outcome = Run(setting + commands);
        EXPECT_EQ(outcome.out, plain.out) << locale;
        EXPECT_EQ(outcome.err, plain.err) << locale;
    }
}

TEST_F(Surroundings, FilesThatAreNoneAndPipes) {
    const std::string program = CORVALE_PROGRAM;
    for (const char* command : {"load", "check"}) {
        const std::string run = program + " " + command;
        EXPECT_EQ(Run(run + " .").exitCode, 2) << "a folder";
        EXPECT_EQ(Run("cat good | " + run + " -").exitCode, 0) << "standard input, a pipe";
        EXPECT_EQ(Run(run + " - <good").exitCode, 0) << "standard input, a file";
        EXPECT_EQ(Run("mkfifo fifo; cat good >fifo & " + run + " fifo").exitCode, 0)
            << "a named pipe: " << ReadFile("err");
        EXPECT_EQ(Run("rm fifo").exitCode, 0);
        EXPECT_EQ(
            Run("cp good gone; (sleep 0.2; rm gone; echo QZ_DMA_ON) | " + run + " - gone").exitCode,
            2)
            << "it vanished before it was reached";
        EXPECT_EQ(Run("cp good late; exec 3<late; rm late; " + run + " /dev/fd/3").exitCode, 0)
            << "open, and its name gone";
        EXPECT_EQ(Run(run + " good bad good").exitCode, *command == 'c' ? 1 : 0);
    }
}

TEST_F(Surroundings, LoadsSeveralFilesAsOneAfterTheOther) {
    WriteFile("more", "QZ_MOIC , 2.5\nQZ_DMA_ON\n");
    const Outcome both = Corvale("load good more");
    EXPECT_TRUE(Has(both, "element-set key mode  1\n"));
    EXPECT_TRUE(Has(both, "  1 to   4                      1.5                      2.5"));
    const Outcome none = Corvale("load good missing more --log run.log");
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(std::ranges::count(ReadFile("run.log"), '\n'), 3) << "good, missing, its error";
    EXPECT_EQ(Corvale("load --quiet good").out, "");
    EXPECT_EQ(Corvale("load --quiet missing").exitCode, 2);
    EXPECT_EQ(Corvale("load good more --log more").exitCode, 2) << "the log would empty an input";
    EXPECT_EQ(ReadFile("more"), "QZ_MOIC , 2.5\nQZ_DMA_ON\n");
}

}  // namespace
}  // namespace corvale
