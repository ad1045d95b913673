#include "LineFilter.hpp"

#include "Commands.hpp"
#include "Input.hpp"

#include <iostream>
#include <limits>

namespace corvale::tool {

int RunFilter(std::string_view command, const FilterOptions& options,
              const std::function<Converted(std::string_view line)>& convert) {
    InputFile input("-");
    input.BeforeWaiting([] { std::cout.flush(); });
    int status = kExitOk;
    Line line;
    while (std::cout && input.ReadLine(line, std::numeric_limits<std::size_t>::max())) {
        const Converted converted = convert(line.text);
        if (const auto* unusable = std::get_if<Unusable>(&converted)) {
            SayUnusable(command, line.number, *unusable);
            status = kExitFindings;
            if (!options.goesOn) return status;
        } else {
            std::cout << std::get<std::string>(converted);
        }
        std::cout << (line.hasReturn ? "\r\n" : "\n");
    }
    return input.Failure() ? SayUnreadable(command, *input.Failure()) : status;
}

void SayUnusable(std::string_view command, std::uint64_t line, const Unusable& unusable) {
    std::cout.flush();
    std::cerr << "corvale " << command << ": line " << line << ", column " << unusable.column
              << ": " << unusable.why << '\n';
}

int SayUnreadable(std::string_view command, const std::string& why) {
    std::cerr << "corvale " << command << ": standard input cannot be read: " << why << '\n';
    return kExitFailed;
}

Trimmed Trim(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return {line.substr(first, line.find_last_not_of(' ') + 1 - first), first + 1};
}

}  // namespace corvale::tool
