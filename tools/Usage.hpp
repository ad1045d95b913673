// Faults of the command line: what is not known, and what was probably meant.
#pragma once

#include <CLI/App.hpp>

#include <string>

namespace corvale::tool {

/// Prints the help or the version that was asked for, or says on standard error what is wrong with
/// the command line. Returns the exit status.
int ReportParseError(const CLI::App& app, const CLI::ParseError& error);

/// Prints the help of a command, or of all where `command` is empty. Returns the exit status.
int PrintHelp(const CLI::App& app, const std::string& command);

}  // namespace corvale::tool
