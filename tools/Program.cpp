#include "Program.hpp"

#include "Commands.hpp"
#include "FindingKinds.hpp"
#include "Pages.hpp"
#include "Usage.hpp"
#include "Why.hpp"

#include <corvale/Corvale.h>

#include <memory>
#include <string>
#include <vector>

namespace corvale::tool {

namespace {

constexpr const char* kAppDescription = "The Corvale foundation library on the command line";

constexpr const char* kAppFooter =
    "Exit status:\n"
    "  0  all is well\n"
    "  1  check: there are findings; diff: differences; filters: unusable lines\n"
    "  2  a file or standard output failed, or the command line is wrong\n"
    "\n"
    "Examples:\n"
    "  corvale load orbit.inp          what its cards set\n"
    "  corvale check orbit.inp         what each card does, or why not\n"
    "  corvale diff orbit.inp new.inp  what the one sets and the other does not\n"
    "  corvale COMMAND --help          all about a command";

constexpr const char* kInfoFooter =
    "Example:\n"
    "  corvale info";

constexpr const char* kLoadFooter =
    "The library passes over bad cards without a word: `corvale check` tells of them.\n"
    "\n"
    "Several files are loaded one after the other, as a program would load them: modes are only\n"
    "ever raised, and later values replace earlier ones. The first file that cannot be opened\n"
    "ends the command. A file named - is standard input; ./- is a file of that name.\n"
    "\n"
    "--why reads the files without loading them and prints the card that decided each value: the\n"
    "last one that set an element, the first one that raised a mode.\n"
    "\n"
    "Examples:\n"
    "  corvale load orbit.inp\n"
    "  corvale load orbit.inp --why 7,elsetKeyMode\n"
    "  corvale load common.inp night.inp --json\n"
    "  generate-cards | corvale load -\n"
    "  corvale load orbit.inp --log run.log";

constexpr const char* kDiffFooter =
    "Each file is loaded by itself. What no card sets is 0; -0 is not 0. For every mode and "
    "element\n"
    "that differs there are three lines: what it is, and its value behind < in the one and behind "
    ">\n"
    "in the other file, with the line and column that decided it.\n"
    "\n"
    "Exit status:\n"
    "  0  both files set the same\n"
    "  1  there are differences\n"
    "  2  a file cannot be read\n"
    "\n"
    "Examples:\n"
    "  corvale diff orbit.inp new.inp\n"
    "  corvale diff --quiet orbit.inp new.inp || run-all new.inp\n"
    "  git show HEAD:orbit.inp | corvale diff - orbit.inp";

constexpr const char* kCheckFooter =
    "What a line sets or why it sets nothing: keywords not in column 1, no blank in column 8,\n"
    "misspelt keywords, words that are no numbers, values beyond the 128th or column 512, "
    "carriage\n"
    "returns, byte order marks and other characters where they matter. Cards and suspicious lines\n"
    "are listed, then what loading the file sets in the end. Each file is checked by itself.\n"
    "\n"
    "Each finding has a code, as in warning[not-a-number]; the guide's page on findings lists "
    "all.\n"
    "A comment in the file silences them, for the next line or from there to the end:\n"
    "  * corvale-ignore: unknown-keyword\n"
    "  * corvale-ignore-file: slash, cut\n"
    "\n"
    "--fix mends keywords that are indented or one letter off, a tab in column 8, a byte order "
    "mark,\n"
    "carriage returns and a missing slash before a remark. It replaces a file at once or not at "
    "all,\n"
    "and no symbolic links.\n"
    "\n"
    "Exit status:\n"
    "  0  no findings, or notes only; --diff: nothing to mend\n"
    "  1  findings; --diff: something to mend\n"
    "  2  a file cannot be read or mended\n"
    "\n"
    "Examples:\n"
    "  corvale check orbit.inp\n"
    "  corvale check --quiet *.inp && run-all\n"
    "  corvale check --diff orbit.inp\n"
    "  corvale check --format short --glob '*.inp' runs\n"
    "  corvale check --format sarif --ignore cut,slash orbit.inp >findings.sarif\n"
    "  corvale check --json orbit.inp | jq '.files[].findings[].message'";

constexpr const char* kLspFooter =
    "Speaks the Language Server Protocol on standard input and output: findings of `corvale "
    "check`,\n"
    "what a card sets and which element the cursor is on, and what mends a finding. The guide's "
    "page\n"
    "on editors has the lines for some of them.\n"
    "\n"
    "Example, in Neovim:\n"
    "  :lua vim.lsp.start({ name = 'corvale', cmd = { 'corvale', 'lsp' } })";

constexpr const char* kSelfTestFooter =
    "Example:\n"
    "  corvale selftest";

std::string CodeOfFinding(const std::string& code) {
    return KindOf(code) ? "" : "\"" + code + "\" is no code of a finding";
}

// `--log ""` is a blank name like any other, not the absence of one.
std::string NotBlank(const std::string& name) {
    return name.empty() ? "the name of the log file is blank" : "";
}

void AddInfo(CLI::App& app, int& status) {
    auto asJson = std::make_shared<bool>(false);
    CLI::App* info = app.add_subcommand("info", "Print the library's information line");
    info->footer(kInfoFooter);
    info->add_flag("--json", *asJson, "Print one JSON object");
    info->callback([asJson, &status] { status = Info(*asJson); });
}

void AddLoad(CLI::App& app, int& status) {
    auto options = std::make_shared<LoadOptions>();
    CLI::App* load = app.add_subcommand("load", "Load input files; print modes and values");
    load->footer(kLoadFooter);
    load->add_option("FILE", options->files, "Input files with QZ_ cards among their lines")
        ->required()
        ->option_text("...");
    load->add_flag("--json", options->asJson, "Print one JSON object");
    CLI::Option* why =
        load->add_option("--why", options->why,
                         "Print which card decided an element, 1 to 128, or a mode, by its name in "
                         "--json; several with commas")
            ->option_text("WHICH")
            ->delimiter(',')
            ->allow_extra_args(false)
            ->check(CLI::Validator(WhyNoSetting, ""));
    load->add_option("--log", options->log, "Write a log file, replacing it")
        ->option_text("LOGFILE")
        ->excludes(why)
        ->check(CLI::Validator(NotBlank, ""));
    load->add_flag("-q,--quiet", options->isQuiet, "Print nothing but errors")
        ->excludes(why)
        ->option_text(" ");
    load->add_flag("--progress", options->showsProgress,
                   "Show how far the reading is from the first moment on");
    load->callback([options, &status] { status = Load(*options); });
}

void AddDiff(CLI::App& app, int& status) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App* diff = app.add_subcommand(
        "diff", "Print which modes and values differ after loading each of two files");
    diff->footer(kDiffFooter);
    diff->add_option("FILE", options->left, "An input file; - is standard input")
        ->required()
        ->option_text(" ");
    diff->add_option("OTHER", options->right, "Another one")->required()->option_text(" ");
    diff->add_flag("--json", options->asJson, "Print one JSON object");
    diff->add_flag("-q,--quiet", options->isQuiet,
                   "Print nothing but errors: the exit status tells");
    diff->callback([options, &status] { status = Diff(*options); });
}

void AddCheckFormat(CLI::App& check, CheckOptions& options) {
    check.add_flag("--all", options.showsAll, "List every line, those without interest too");
    check.add_option("--format", options.format, "What to print (default: text)")
        ->option_text("text|short|json|jsonl|sarif|github")
        ->check(CLI::IsMember({"text", "short", "json", "jsonl", "sarif", "github"}));
    check.add_flag("--json", options.asJson, "Print one JSON object: --format json");
    check.add_flag("--findings-only", options.isFindingsOnly,
                   "Print neither cards nor what loading sets");
}

// An option that may be given several times, each time with one value.
CLI::Option* Repeatable(CLI::Option* option, const std::string& value) {
    return option->option_text(value)->expected(1)->allow_extra_args(false)->take_all();
}

void AddCheckChoice(CLI::App& check, CheckOptions& options) {
    const CLI::Validator isCode(CodeOfFinding, "");
    Repeatable(check.add_option("--select", options.selected, "Tell of these findings only"),
               "CODE,...")
        ->delimiter(',')
        ->check(isCode);
    Repeatable(check.add_option("--ignore", options.ignored, "Do not tell of these findings"),
               "CODE,...")
        ->delimiter(',')
        ->check(isCode);
    Repeatable(
        check.add_option("--glob", options.globs,
                         "Check the files of folders, and of folders in them, whose names match"),
        "PATTERN");
}

void AddCheckFixes(CLI::App& check, CheckOptions& options) {
    check.add_flag("--fix", options.fixes, "Mend what is certain in the files, then check them");
    check.add_flag("--diff", options.printsDiff, "Print what --fix would change, and nothing else");
    check.add_flag("--decimal-commas", options.fixesCommas,
                   "With --fix or --diff: decimal commas become points, too");
}

void AddCheck(CLI::App& app, int& status) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* check = app.add_subcommand(
        "check", "Explain the cards of input files, and what is wrong with them");
    check->footer(kCheckFooter);
    check->add_option("FILE", options->files, "Input files; - is standard input")
        ->required()
        ->option_text("...");
    AddCheckFormat(*check, *options);
    AddCheckChoice(*check, *options);
    AddCheckFixes(*check, *options);
    check->add_option("--color", options->colour, "Whether to colour the output (default: auto)")
        ->option_text("auto|always|never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    check->add_flag("-q,--quiet", options->isQuiet,
                    "Print nothing but errors: the exit status tells");
    check->add_flag("--progress", options->showsProgress,
                    "Show how far the reading is from the first moment on");
    check->callback([options, &status] { status = Check(*options); });
}

void AddLsp(CLI::App& app, int& status) {
    CLI::App* lsp = app.add_subcommand("lsp", "Serve an editor: findings, hints and quick fixes");
    lsp->footer(kLspFooter);
    lsp->callback([&status] { status = ServeEditor(); });
}

void AddSelfTest(CLI::App& app, int& status) {
    CLI::App* selfTest = app.add_subcommand("selftest", "Check how each kind of argument arrives");
    selfTest->footer(kSelfTestFooter);
    selfTest->callback([&status] { status = SelfTest(); });
}

// What others print for "help": not shown, because --help is.
void AddHelp(CLI::App& app, int& status) {
    auto name = std::make_shared<std::string>();
    CLI::App* help = app.add_subcommand("help", "Print what --help prints")->group("");
    help->add_option("COMMAND", *name, "A command");
    // in a tree of its own: this one would print the help of the command that was given, "help"
    help->callback([name, &status] {
        CLI::App tree("", "corvale");
        AddCommands(tree, status);
        status = PrintHelp(tree, *name);
    });
}

// For the build: not shown by --help.
void AddGenerate(CLI::App& app, int& status) {
    auto page = std::make_shared<std::string>();
    CLI::App* generate =
        app.add_subcommand("generate", "Print the man page or a shell's completions")->group("");
    generate->add_option("PAGE", *page, "What to print")
        ->required()
        ->check(CLI::IsMember({"man", "bash", "zsh", "fish"}));
    generate->callback([page, &app, &status] { status = PrintPage(app, *page); });
}

}  // namespace

void AddCommands(CLI::App& app, int& status) {
    app.description(kAppDescription);
    app.set_version_flag("-V,--version", "corvale " CORVALE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.footer(kAppFooter);
    AddInfo(app, status);
    AddLoad(app, status);
    AddDiff(app, status);
    AddCheck(app, status);
    AddLsp(app, status);
    AddSelfTest(app, status);
    AddFilters(app, status);
    AddHelp(app, status);
    AddGenerate(app, status);
}

}  // namespace corvale::tool
