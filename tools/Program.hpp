// The command line as one tree of commands and options: what --help prints, what the man page and
// the completions of the shells are generated from.
#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace corvale::tool {

/// Adds all commands to `app`. Parsing a command line runs its command and puts the exit status into
/// `status`; both must outlive the parsing.
void AddCommands(CLI::App& app, int& status);

/// Adds the filters.
void AddFilters(CLI::App& app, int& status);

/// The arguments of a command line as CLI11 takes them, the last one first. It would take -10.5 for
/// options: behind a blank it is a value, for the filters that take values.
[[nodiscard]] std::vector<std::string> Arguments(const CLI::App& app, int argc, char** argv);

}  // namespace corvale::tool
