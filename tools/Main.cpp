// The program corvale: what the library says of itself, what it reads from an input file, and
// whether a caller's arguments reach it.
#include "Commands.hpp"

#include <corvale/Corvale.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

namespace corvale::tool {
namespace {

// `--log ""` is a blank name like any other, not the absence of one.
std::string NotBlank(const std::string& name) {
    return name.empty() ? "the name of the log file is blank" : "";
}

int Run(int argc, char** argv) {
    CLI::App app("The Corvale foundation library on the command line", "corvale");
    app.set_version_flag("--version", "corvale " CORVALE_VERSION);
    app.require_subcommand(1);
    int status = kExitOk;

    CLI::App* info = app.add_subcommand("info", "Print the library's information line");
    info->callback([&] { status = Info(); });

    LoadOptions options;
    CLI::App* load = app.add_subcommand("load", "Load an input file; print modes and values");
    load->add_option("FILE", options.file, "Input file with QZ_ cards among its lines")->required();
    load->add_flag("--json", options.asJson, "Print one JSON object");
    load->add_option("--log", options.log, "Write a log file, replacing it")
        ->option_text("LOGFILE")
        ->check(CLI::Validator(NotBlank, ""));
    load->callback([&] { status = Load(options); });

    CLI::App* selfTest = app.add_subcommand("selftest", "Check how each kind of argument arrives");
    selfTest->callback([&] { status = SelfTest(); });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const std::vector<std::string> unknown = app.remaining(true);
        if (!unknown.empty()) std::cerr << "corvale: \"" << unknown.front() << "\" is not known\n";
        status = app.exit(error) == 0 ? kExitOk : kExitFailed;
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "corvale: standard output cannot be written\n";
        return kExitFailed;
    }
    return status;
}

}  // namespace
}  // namespace corvale::tool

int main(int argc, char** argv) {
    try {
        return corvale::tool::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "corvale: " << error.what() << '\n';
        return corvale::tool::kExitFailed;
    }
}
