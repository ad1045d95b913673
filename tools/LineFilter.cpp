#include "LineFilter.hpp"

#include "Commands.hpp"
#include "Escapes.hpp"
#include "Joined.hpp"

#include <iostream>
#include <limits>

namespace corvale::tool {

InputLines::InputLines(const std::vector<std::string>& files)
    : files_(files.empty() ? std::vector<std::string>{"-"} : files) {}

// The next file, if it can be.
bool InputLines::Open() {
    if (opened_ == files_.size()) return false;
    file_.emplace(files_[opened_++]);
    file_->BeforeWaiting([] { std::cout.flush(); });
    return true;
}

bool InputLines::Next(Line& line) {
    while (file_ || Open()) {
        if (file_->ReadLine(line, std::numeric_limits<std::size_t>::max())) return true;
        if (file_->Failure()) {
            const std::string& name = files_[opened_ - 1];
            failure_ = Joined(name == "-" ? "standard input" : QuotedName(name),
                              " cannot be read: ", *file_->Failure());
            return false;
        }
        file_.reset();
    }
    return false;
}

std::string InputLines::Place(const Line& line) const {
    const std::string& name = files_[opened_ - 1];
    return Joined(name == "-" ? "" : Escaped(name) + ": ", "line ", line.number);
}

int RunFilter(std::string_view command, const FilterOptions& options,
              const std::function<Converted(std::string_view line)>& convert) {
    InputLines input(options.files);
    int status = kExitOk;
    Line line;
    while (std::cout && input.Next(line)) {
        const Converted converted = convert(line.text);
        if (const auto* unusable = std::get_if<Unusable>(&converted)) {
            SayUnusable(command, input.Place(line), *unusable);
            status = kExitFindings;
            if (!options.goesOn) return status;
        } else {
            std::cout << std::get<std::string>(converted);
        }
        std::cout << (line.hasReturn ? "\r\n" : "\n");
    }
    return input.Failure() ? SayUnreadable(command, *input.Failure()) : status;
}

void SayUnusable(std::string_view command, const std::string& place, const Unusable& unusable) {
    std::cout.flush();
    std::cerr << "corvale " << command << ": " << place << ", column " << unusable.column << ": "
              << unusable.why << '\n';
}

int SayUnreadable(std::string_view command, const std::string& failure) {
    std::cout.flush();
    std::cerr << "corvale " << command << ": " << failure << '\n';
    return kExitFailed;
}

Trimmed Trim(std::string_view line) {
    const std::size_t first = line.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return {line.substr(first, line.find_last_not_of(' ') + 1 - first), first + 1};
}

}  // namespace corvale::tool
