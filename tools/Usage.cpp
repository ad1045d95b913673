#include "Usage.hpp"

#include "Commands.hpp"
#include "Escapes.hpp"
#include "Joined.hpp"
#include "Pages.hpp"
#include "WordDistance.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>
#include <string_view>
#include <vector>

namespace corvale::tool {

namespace {

std::vector<std::string> CommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : ShownCommands(app)) names.push_back(command->get_name());
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : NamedOptions(command))
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

// "; did you mean load?", if one of `names` is near.
std::string Suggestion(std::string_view word, const std::vector<std::string>& names) {
    std::size_t least = word.size() / 3 + 2;  // as many slips are too many
    std::string nearest;
    for (const std::string& name : names)
        if (const std::size_t distance = WordDistance(word, name); distance < least) {
            least = distance;
            nearest = Joined("; did you mean ", name, "?");
        }
    return nearest;
}

// `command` is the name of a command with a blank before it, or empty.
int SayUsage(const std::string& command, const std::string& what) {
    std::cerr << "corvale" << command << ": " << what << "\nRun \"corvale" << command
              << " --help\" for more.\n";
    return kExitFailed;
}

int SayNoCommand(const CLI::App& app, const std::string& word) {
    return SayUsage(
        "", Joined(QuotedName(word), " is no command", Suggestion(word, CommandNames(app))));
}

int SayUnknown(const CLI::App& app, const std::string& word) {
    const std::vector<CLI::App*> commands = app.get_subcommands();
    const CLI::App& command = commands.empty() ? app : *commands.front();
    const std::string name = commands.empty() ? "" : " " + command.get_name();
    const std::string option = word.substr(0, word.find('='));
    if (word.starts_with('-'))
        return SayUsage(name, Joined(QuotedName(option), " is no option",
                                     Suggestion(option, OptionNames(command))));
    if (!commands.empty())
        return SayUsage(name, Joined(QuotedName(word), " is one argument too many"));
    return SayNoCommand(app, word);
}

}  // namespace

int ReportParseError(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (error.get_exit_code() != 0 && !unknown.empty()) return SayUnknown(app, unknown.front());
    std::ostringstream said;
    const bool isAnswer = app.exit(error, std::cout, said) == 0;
    std::cerr << EscapedLines(said.str());
    return isAnswer ? kExitOk : kExitFailed;
}

int PrintHelp(const CLI::App& app, const std::string& command) {
    const auto named =
        app.get_subcommands([&](const CLI::App* each) { return each->get_name() == command; });
    if (named.empty() && !command.empty()) return SayNoCommand(app, command);
    std::cout << (command.empty() ? app.help() : named.front()->help("corvale"));
    return kExitOk;
}

}  // namespace corvale::tool
