#include "Joined.hpp"
#include "Pages.hpp"

#include <corvale/Corvale.h>

#include <iostream>
#include <sstream>
#include <string_view>

namespace corvale::tool {

namespace {

// A text that troff prints as it stands.
std::string TroffText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else if (c == '\'')
            escaped += "\\(aq";
        else if (c == '`')
            escaped += "\\(ga";
        else if (c == '^')
            escaped += "\\(ha";
        else if (c == '~')
            escaped += "\\(ti";
        else
            escaped += c;
    }
    return escaped.starts_with('.') ? Joined("\\&", escaped) : escaped;
}

// What stands below the options in --help. Indented lines stay as they are, all others are filled;
// one that ends in a colon heads what follows it.
void PrintFooter(const std::string& footer) {
    std::cout << ".PP\n";
    bool isFilled = true;
    std::istringstream lines(footer);
    for (std::string line; std::getline(lines, line);) {
        const bool isIndented = line.starts_with(' ');
        if (isIndented == isFilled) std::cout << (isIndented ? ".nf\n" : ".fi\n");
        isFilled = !isIndented;
        if (line.empty())
            std::cout << ".PP\n";
        else
            std::cout << (line.ends_with(':') ? ".B " : "") << TroffText(line) << '\n';
    }
    if (!isFilled) std::cout << ".fi\n";
}

std::string ValueName(const CLI::Option& option) {
    return TakesValue(option) ? Joined(" \\fI", TroffText(option.get_option_text()), "\\fR") : "";
}

void PrintOptions(const CLI::App& command) {
    for (const CLI::Option* option : Positionals(command))
        std::cout << ".TP\n.I " << TroffText(option->get_name(true, false)) << '\n'
                  << TroffText(option->get_description()) << '\n';
    for (const CLI::Option* option : NamedOptions(command))
        std::cout << ".TP\n.B " << TroffText(option->get_name(false, true)) << ValueName(*option)
                  << '\n'
                  << TroffText(option->get_description()) << '\n';
}

void PrintUsage(const CLI::App& command) {
    std::cout << ".B corvale " << command.get_name() << "\n[\\fIOPTIONS\\fR]";
    for (const CLI::Option* option : Positionals(command)) {
        std::cout << " \\fI" << TroffText(option->get_name(true, false)) << "\\fR";
        if (option->get_expected_max() > 1) std::cout << "...";
    }
    std::cout << '\n';
}

}  // namespace

void PrintManPage(const CLI::App& app) {
    std::cout << ".TH CORVALE 1 \"\" \"corvale " CORVALE_VERSION "\" \"User Commands\"\n"
              << ".SH NAME\ncorvale \\- " << TroffText(app.get_description()) << '\n'
              << ".SH SYNOPSIS\n";
    for (const CLI::App* command : ShownCommands(app)) {
        PrintUsage(*command);
        std::cout << ".br\n";
    }
    std::cout << ".B corvale\n[\\fB\\-\\-help\\fR | \\fB\\-\\-version\\fR]\n.SH COMMANDS\n";
    for (const CLI::App* command : ShownCommands(app)) {
        std::cout << ".SS " << command->get_name() << '\n'
                  << TroffText(command->get_description()) << ".\n";
        PrintOptions(*command);
        PrintFooter(command->get_footer());
    }
    std::cout << ".SH NOTES\n";
    PrintFooter(app.get_footer());
    std::cout << ".SH ENVIRONMENT\n.TP\n.B NO_COLOR\n"
              << TroffText("If it is set and not empty, nothing is coloured.") << '\n'
              << ".TP\n.B TERM\n"
              << TroffText("If it is \"dumb\", there are neither colours nor progress bars.")
              << '\n';
}

}  // namespace corvale::tool
