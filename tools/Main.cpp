// The program corvale: what the library says of itself, what it reads from input files and why, its
// conversions as filters, and whether a caller's arguments reach it.
#include "Commands.hpp"
#include "Program.hpp"
#include "Usage.hpp"

#include <CLI/CLI.hpp>
#include <iostream>

namespace corvale::tool {
namespace {

int Run(int argc, char** argv) {
    CLI::App app("", "corvale");
    int status = kExitOk;
    AddCommands(app, status);
    try {
        app.parse(Arguments(app, argc, argv));
    } catch (const CLI::ParseError& error) {
        status = ReportParseError(app, error);
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
        std::ios::sync_with_stdio(false);  // standard output gets a buffer
        return corvale::tool::Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "corvale: " << error.what() << '\n';
        return corvale::tool::kExitFailed;
    }
}
