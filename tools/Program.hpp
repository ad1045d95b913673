// The command line as one tree of commands and options: what --help prints, what the man page and
// the completions of the shells are generated from.
#pragma once

#include <CLI/App.hpp>

namespace corvale::tool {

/// Adds all commands to `app`. Parsing a command line runs its command and puts the exit status into
/// `status`; both must outlive the parsing.
void AddCommands(CLI::App& app, int& status);

/// Adds the commands that filter standard input.
void AddFilters(CLI::App& app, int& status);

}  // namespace corvale::tool
