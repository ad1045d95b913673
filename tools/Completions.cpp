#include "Commands.hpp"
#include "FindingKinds.hpp"
#include "Joined.hpp"
#include "Pages.hpp"

#include <algorithm>
#include <iostream>
#include <set>
#include <string_view>

namespace corvale::tool {

namespace {

// "-q --quiet --help"
std::string OptionWords(const CLI::App& app) {
    std::string words;
    for (const CLI::Option* option : NamedOptions(app)) {
        for (const std::string& name : option->get_snames()) words += Joined(" -", name);
        for (const std::string& name : option->get_lnames()) words += Joined(" --", name);
    }
    return words.empty() ? words : words.substr(1);
}

std::string CommandWords(const CLI::App& app) {
    std::string words;
    for (const CLI::App* command : ShownCommands(app)) words += Joined(" ", command->get_name());
    return words.substr(1);
}

// Text between apostrophes, for any of the shells.
std::string ShellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

std::string AllCodes() {
    std::string codes;
    for (const FindingRow& row : kFindingRows)
        codes.append(codes.empty() ? "" : " ").append(row.code);
    return codes;
}

// The values of an option that takes one of several, "auto|always" in --help: "auto always". Empty
// for a file's name.
std::string ValueWords(const CLI::Option& option) {
    std::string words = TakesValue(option) ? option.get_option_text() : "";
    if (words == "CODE,...") return AllCodes();
    if (words.find('|') == std::string::npos) return "";
    std::ranges::replace(words, '|', ' ');
    return words;
}

// Whether the value of an option is a file's name.
bool TakesFile(const CLI::Option& option) {
    return TakesValue(option) && option.get_option_text().ends_with("FILE");
}

// "-f|--file|--log": the options of all commands that take a file's name.
std::string FileOptions(const CLI::App& app) {
    std::set<std::string> names;
    for (const CLI::App* command : ShownCommands(app))
        for (const CLI::Option* option : NamedOptions(*command)) {
            if (!TakesFile(*option)) continue;
            for (const std::string& name : option->get_snames()) names.insert(Joined("-", name));
            for (const std::string& name : option->get_lnames()) names.insert(Joined("--", name));
        }
    std::string pattern;
    for (const std::string& name : names) pattern += Joined(pattern.empty() ? "" : "|", name);
    return pattern;
}

// Brackets and colons have a meaning in zsh's descriptions of options.
std::string ZshText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

void PrintZshOption(const CLI::Option& option) {
    const std::string values = TakesFile(option) ? ":file:_files"
                               : ValueWords(option).empty()
                                   ? ":value: "
                                   : Joined(":value:(", ValueWords(option), ")");
    const std::string tail =
        Joined("[", ZshText(option.get_description()), "]", TakesValue(option) ? values : "");
    const auto print = [&](const std::string& name) {
        std::cout << " \\\n                " << ShellQuoted(name + tail);
    };
    for (const std::string& name : option.get_snames()) print(Joined("-", name));
    for (const std::string& name : option.get_lnames()) print(Joined("--", name));
}

void PrintFishOption(const CLI::Option& option, const std::string& condition) {
    std::cout << "complete -c corvale -n " << ShellQuoted(condition);
    for (const std::string& name : option.get_snames()) std::cout << " -s " << name;
    for (const std::string& name : option.get_lnames()) std::cout << " -l " << name;
    if (!ValueWords(option).empty())
        std::cout << " -x -a " << ShellQuoted(ValueWords(option));
    else if (TakesValue(option))
        std::cout << (TakesFile(option) ? " -r -F" : " -x");
    std::cout << " -d " << ShellQuoted(option.get_description()) << '\n';
}

}  // namespace

std::vector<const CLI::App*> ShownCommands(const CLI::App& app) {
    return app.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> NamedOptions(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<const CLI::Option*> Positionals(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

bool TakesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0 && option.nonpositional();
}

bool TakesFiles(const CLI::App& command) {
    return std::ranges::any_of(Positionals(command), [](const CLI::Option* option) {
        return option->get_name(true, false) == "FILE";
    });
}

void PrintBashCompletions(const CLI::App& app) {
    std::cout
        << "# Completions of corvale for bash, generated from its tree of commands.\n"
           "_corvale() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} command= words= files= i\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        case ${COMP_WORDS[i]} in -*) ;; *) command=${COMP_WORDS[i]}; break ;; esac\n"
           "    done\n"
           "    case $command in\n"
           "        '') words='"
        << CommandWords(app) << ' ' << OptionWords(app) << "' ;;\n";
    for (const CLI::App* command : ShownCommands(app))
        std::cout << "        " << command->get_name() << ") words='" << OptionWords(*command)
                  << "'" << (TakesFiles(*command) ? " files=1" : "") << " ;;\n";
    std::cout << "    esac\n"
                 "    case ${COMP_WORDS[COMP_CWORD - 1]} in "
              << FileOptions(app)
              << ") files=1 ;; esac\n"
                 "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
                 "    if [[ $files && $current != -* ]]; then\n"
                 "        compopt -o filenames 2>/dev/null\n"
                 "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
                 "    fi\n"
                 "}\n"
                 "complete -F _corvale corvale\n";
}

void PrintZshCompletions(const CLI::App& app) {
    std::cout << "#compdef corvale\n"
                 "# Completions of corvale for zsh, generated from its tree of commands.\n"
                 "_corvale() {\n"
                 "    local state line\n"
                 "    local -a commands\n"
                 "    commands=(\n";
    for (const CLI::App* command : ShownCommands(app))
        std::cout << "        "
                  << ShellQuoted(command->get_name() + ":" + command->get_description()) << '\n';
    std::cout << "    )\n"
                 "    _arguments -C";
    for (const CLI::Option* option : NamedOptions(app)) PrintZshOption(*option);
    std::cout << " \\\n                '1: :->command' '*:: :->argument'\n"
                 "    if [[ $state == command ]]; then\n"
                 "        _describe command commands\n"
                 "        return\n"
                 "    fi\n"
                 "    case $line[1] in\n";
    for (const CLI::App* command : ShownCommands(app)) {
        std::cout << "        " << command->get_name() << ")\n            _arguments";
        for (const CLI::Option* option : NamedOptions(*command)) PrintZshOption(*option);
        if (TakesFiles(*command)) std::cout << " \\\n                '*:file:_files'";
        std::cout << " ;;\n";
    }
    std::cout << "    esac\n"
                 "}\n"
                 "if [[ $funcstack[1] == _corvale ]]; then\n"
                 "    _corvale \"$@\"\n"
                 "else\n"
                 "    compdef _corvale corvale\n"
                 "fi\n";
}

void PrintFishCompletions(const CLI::App& app) {
    std::cout << "# Completions of corvale for fish, generated from its tree of commands.\n"
                 "complete -c corvale -f\n";
    for (const CLI::Option* option : NamedOptions(app))
        PrintFishOption(*option, "__fish_use_subcommand");
    for (const CLI::App* command : ShownCommands(app)) {
        const std::string& name = command->get_name();
        std::cout << "complete -c corvale -n __fish_use_subcommand -a " << name << " -d "
                  << ShellQuoted(command->get_description()) << '\n';
        const std::string condition = Joined("__fish_seen_subcommand_from ", name);
        if (TakesFiles(*command))
            std::cout << "complete -c corvale -n " << ShellQuoted(condition) << " -F\n";
        for (const CLI::Option* option : NamedOptions(*command))
            PrintFishOption(*option, condition);
    }
}

int PrintPage(const CLI::App& app, const std::string& page) {
    if (page == "man") PrintManPage(app);
    if (page == "bash") PrintBashCompletions(app);
    if (page == "zsh") PrintZshCompletions(app);
    if (page == "fish") PrintFishCompletions(app);
    return kExitOk;
}

}  // namespace corvale::tool
