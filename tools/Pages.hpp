// The man page and the completions of the shells, from the tree of commands that --help prints.
#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace corvale::tool {

/// Prints "man", or the completions of "bash", "zsh" or "fish"; returns the exit status.
int PrintPage(const CLI::App& app, const std::string& page);

/// The page corvale(1) in troff.
void PrintManPage(const CLI::App& app);

void PrintBashCompletions(const CLI::App& app);
void PrintZshCompletions(const CLI::App& app);
void PrintFishCompletions(const CLI::App& app);

/// The commands that --help lists.
[[nodiscard]] std::vector<const CLI::App*> ShownCommands(const CLI::App& app);

/// The options of a command that begin with a hyphen.
[[nodiscard]] std::vector<const CLI::Option*> NamedOptions(const CLI::App& app);

/// The arguments of a command that stand by themselves.
[[nodiscard]] std::vector<const CLI::Option*> Positionals(const CLI::App& app);

/// Whether an option is followed by a value, as `--log LOGFILE` is.
[[nodiscard]] bool TakesValue(const CLI::Option& option);

/// Whether a command takes names of files.
[[nodiscard]] bool TakesFiles(const CLI::App& command);

}  // namespace corvale::tool
