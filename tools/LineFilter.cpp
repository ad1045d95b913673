#include "LineFilter.hpp"

#include "Commands.hpp"
#include "Escapes.hpp"
#include "Joined.hpp"
#include "RowFields.hpp"

#include <filesystem>
#include <iostream>
#include <limits>
#include <system_error>
#include <utility>

namespace corvale::tool {

namespace {

// What came of a line.
struct Row {
    std::string text;
    std::vector<Unusable> unusable = {};
};

void ConvertLine(std::string_view line, const Conversion& convert, Row& row) {
    Converted converted = convert(line);
    if (auto* const text = std::get_if<std::string>(&converted))
        row.text = std::move(*text);
    else
        row.unusable.push_back(std::get<Unusable>(std::move(converted)));
}

// The fields that are not converted stay byte for byte.
void ConvertFields(std::string_view line, const FilterOptions& options, const Conversion& convert,
                   Row& row) {
    const auto split = FieldsOf(line, options.delimiter);
    if (const auto* const unusable = std::get_if<Unusable>(&split))
        return row.unusable.push_back(*unusable);
    const auto& fields = std::get<std::vector<RowField>>(split);
    if (options.columns.back() > fields.size())
        return row.unusable.push_back(
            {line.size() + 1, Joined("the row ends in column ", fields.size(), ", before ",
                                     options.columns.back())});
    std::size_t copied = 0;
    for (const std::size_t column : options.columns) {
        const RowField& field = fields[column - 1];
        row.text.append(line.substr(copied, field.begin - copied));
        copied = field.end;
        const Converted converted = convert(FieldText(line, field));
        if (const auto* const unusable = std::get_if<Unusable>(&converted))
            row.unusable.push_back({ColumnInRow(line, field, unusable->column), unusable->why});
        else
            row.text.append(
                AsField(std::get<std::string>(converted), options.delimiter, field.isQuoted));
    }
    row.text.append(line.substr(copied));
}

// Whoever names a file where a value is wanted is told how.
std::string FileAdvice(const FilterOptions& options, const Line& line) {
    std::error_code none;
    if (options.values.empty() || !std::filesystem::is_regular_file(line.text, none)) return "";
    return "; a file is read with --file";
}

}  // namespace

InputLines::InputLines(const FilterOptions& options)
    : values_(options.values),
      files_(options.files.empty() ? std::vector<std::string>{"-"} : options.files) {}

// The next file, if it can be.
bool InputLines::Open() {
    if (opened_ == files_.size()) return false;
    file_.emplace(files_[opened_++]);
    file_->BeforeWaiting([] { std::cout.flush(); });
    return true;
}

bool InputLines::Next(Line& line) {
    if (!values_.empty()) {
        if (valuesTaken_ == values_.size()) return false;
        line.text = values_[valuesTaken_++];
        line.number = valuesTaken_;
        return true;
    }
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
    if (!values_.empty()) return Joined("argument ", line.number);
    const std::string& name = files_[opened_ - 1];
    return Joined(name == "-" ? "" : Escaped(name) + ": ", "line ", line.number);
}

int RunFilter(std::string_view command, const FilterOptions& options, const Conversion& convert) {
    InputLines input(options);
    int status = kExitOk;
    Line line;
    for (Row row; std::cout && input.Next(line);) {
        row.text.clear();
        row.unusable.clear();
        if (options.hasHeader && line.number == 1)
            row.text = line.text;
        else if (options.columns.empty())
            ConvertLine(line.text, convert, row);
        else
            ConvertFields(line.text, options, convert, row);
        for (const Unusable& unusable : row.unusable) {
            SayUnusable(command, input.Place(line),
                        {unusable.column, unusable.why + FileAdvice(options, line)});
            status = kExitFindings;
            if (!options.goesOn) return status;
        }
        std::cout << row.text << (line.hasReturn ? "\r\n" : "\n");
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
