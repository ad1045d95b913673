#include "Filters.hpp"
#include "Program.hpp"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace corvale::tool {

namespace {

constexpr const char* kFilters = "Filters, files or standard input to standard output";

constexpr const char* kUnusable =
    "A line that cannot be used is named with its column on standard error. The filter stops "
    "there\n"
    "(--strict, the default), or prints an empty line or field in its place (--keep-going); the\n"
    "exit status is 1 either way.\n"
    "\n";

constexpr const char* kRows =
    "With --column only those fields of a row are converted; the rest of it stays as it is. A "
    "field\n"
    "may stand between quotation marks, with \"\" for one in it; it ends on its own line.\n"
    "\n";

CLI::App* AddFilter(CLI::App& app, const char* name, const char* description,
                    const std::string& footer) {
    CLI::App* filter = app.add_subcommand(name, description)->group(kFilters);
    filter->footer(footer);
    return filter;
}

constexpr const char* kFileHelp = "Read this file instead of standard input, which is -";

// Of the filters of whole lines.
void AddFiles(CLI::App& filter, FilterOptions& options) {
    filter.add_option("FILE", options.files, kFileHelp)->option_text("...");
}

bool IsNegativeNumber(std::string_view argument) {
    return argument.size() > 1 && argument[0] == '-' && argument.find_first_of(".0123456789") == 1;
}

// Of the filters of single values: these stand on the command line or in files. The blank before a
// negative number is that of `Arguments`.
CLI::Option* AddValues(CLI::App& filter, FilterOptions& options) {
    const auto withoutBlank = [](const std::string& value) {
        return value.starts_with(' ') && IsNegativeNumber(value.substr(1)) ? value.substr(1)
                                                                           : value;
    };
    CLI::Option* values =
        filter.add_option("VALUE", options.values, "Convert this instead of standard input")
            ->option_text("...")
            ->transform(withoutBlank);
    filter.add_option("-f,--file", options.files, kFileHelp)
        ->option_text("FILE")
        ->allow_extra_args(false)
        ->excludes(values);
    return values;
}

// The name of a delimiter, or itself.
std::string DelimiterOf(const std::string& name) {
    return name == "tab" || name == "\\t" ? "\t" : name;
}

std::string WhyNoDelimiter(const std::string& name) {
    const std::string delimiter = DelimiterOf(name);
    return delimiter.size() == 1 && delimiter != "\"" ? ""
                                                      : "the delimiter is one character, or tab";
}

std::string WhyNoColumn(const std::string& number) {
    const bool isOne = number.find_first_not_of("0123456789") == std::string::npos &&
                       number.find_first_not_of('0') != std::string::npos && number.size() < 10;
    return isOne ? "" : "columns are numbers from 1 on";
}

void AddRows(CLI::App& filter, FilterOptions& options, CLI::Option* values = nullptr) {
    CLI::Option* column =
        filter
            .add_option_function<std::vector<std::uint32_t>>(
                "-c,--column",
                [&options](const std::vector<std::uint32_t>& columns) {
                    const std::set<std::size_t> ascending(columns.begin(), columns.end());
                    options.columns.assign(ascending.begin(), ascending.end());
                },
                "Convert these columns of rows, counted from 1; several with commas")
            ->option_text("NUMBER")
            ->delimiter(',')
            ->allow_extra_args(false)
            ->check(CLI::Validator(WhyNoColumn, ""));
    filter
        .add_option_function<std::string>(
            "-d,--delimiter",
            [&options](const std::string& name) { options.delimiter = DelimiterOf(name).front(); },
            "What stands between columns, one character or tab (default: a comma)")
        ->option_text("CHARACTER")
        ->check(CLI::Validator(WhyNoDelimiter, ""))
        ->needs(column);
    CLI::Option* header =
        filter.add_flag("--header", options.hasHeader, "The first line of a file stays as it is");
    if (values != nullptr) header->excludes(values)->option_text(" ");
}

void AddGoingOn(CLI::App& filter, FilterOptions& options) {
    CLI::Option* strict = filter.add_flag("--strict")
                              ->description("Stop at the first line that cannot be used (default)");
    filter.add_flag("--keep-going", options.goesOn, "Say which lines cannot be used and go on")
        ->excludes(strict)
        ->option_text(" ");
}

void AddAlpha5(CLI::App& app, int& status) {
    struct Options : FilterOptions {
        bool decodes = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* filter = AddFilter(app, "alpha5", "Satellite numbers to five-character codes",
                                 std::string(kUnusable) + kRows +
                                     "Numbers go from 0 to 339999.\n"
                                     "\n"
                                     "Examples:\n"
                                     "  corvale alpha5 100000               A0000\n"
                                     "  corvale alpha5 --decode Z9999       339999\n"
                                     "  corvale alpha5 --file numbers.txt\n"
                                     "  corvale alpha5 --column 3 --header --file catalogue.csv");
    filter->add_flag("--decode", options->decodes, "Codes to numbers");
    AddRows(*filter, *options, AddValues(*filter, *options));
    AddGoingOn(*filter, *options);
    filter->callback([options, &status] {
        status = options->decodes ? DecodeAlpha5(*options) : EncodeAlpha5(*options);
    });
}

void AddAngle(CLI::App& app, int& status) {
    struct Options : FilterOptions, AngleOptions {
        bool inDegrees = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* filter =
        AddFilter(app, "angle", "Degrees to degrees or hours, minutes and seconds",
                  std::string(kUnusable) +
                      "Degrees are written as sDDMMSS.SSS, with '-' or '0' for s, "
                      "and from 100 to 999 as\n"
                      "sDDDMMSS.SSS. Hours are written as HHMMSSs, with tenths of "
                      "seconds; angles are reduced to one\n"
                      "turn first. Both ways read 10:30:00, 10d30m, 10h30m15.5s and "
                      "the like; without a letter they\n"
                      "are degrees, or hours with --hours --decode.\n"
                      "\n"
                      "Examples:\n"
                      "  echo -10.5 | corvale angle                    -103000.000\n"
                      "  echo 193d16m | corvale angle                  01931600.000\n"
                      "  echo 180 | corvale angle --hours              1200000\n"
                      "  echo 12:30:00 | corvale angle --hours --decode 187.5");
    CLI::Option* degrees =
        filter->add_flag("--degrees", options->inDegrees, "As degrees (default)")->option_text(" ");
    filter->add_flag("--hours", options->inHours, "As hours")->excludes(degrees)->option_text(" ");
    filter->add_flag("--decode", options->decodes, "Such texts to decimal degrees");
    AddRows(*filter, *options, AddValues(*filter, *options));
    AddGoingOn(*filter, *options);
    filter->callback([options, &status] { status = ConvertAngles(*options, *options); });
}

void AddCompress(CLI::App& app, int& status) {
    auto options = std::make_shared<FilterOptions>();
    CLI::App* filter = AddFilter(
        app, "compress", "Rows of comma-separated values without useless blanks and zeros",
        std::string(kUnusable) +
            "A row cannot be used when its result is longer than 512 characters, or when an "
            "exponent\n"
            "after a fraction is not written as E, a sign and three digits.\n"
            "\n"
            "Example:\n"
            "  echo '1.500000000000000E+003, 12.50' | corvale compress    1.5E+3,12.5");
    AddFiles(*filter, *options);
    AddGoingOn(*filter, *options);
    filter->callback([options, &status] { status = CompressRows(*options); });
}

void AddNumber(CLI::App& app, int& status) {
    struct Options : FilterOptions, NumberOptions {};
    auto options = std::make_shared<Options>();
    CLI::App* filter = AddFilter(
        app, "number", "Number fields to plain numbers",
        std::string(kUnusable) + kRows +
            "Reals may have an exponent with E, D or a sign alone: 1.5E3, 1.5D3 and 1.5+3 are the\n"
            "same. They are printed with as few digits as read back to the same bits.\n"
            "\n"
            "Examples:\n"
            "  corvale number 1.5-3                       0.0015\n"
            "  corvale number --value 'MASS = 1.25D3'     1250\n"
            "  corvale number --integer 007               7");
    filter->add_flag("--integer", options->isInteger, "Integers of 32 bits instead of reals");
    filter->add_flag("--value", options->afterEquals, "The number stands behind the first =");
    AddRows(*filter, *options, AddValues(*filter, *options));
    AddGoingOn(*filter, *options);
    filter->callback([options, &status] { status = ReadNumberFields(*options, *options); });
}

void AddSort(CLI::App& app, int& status) {
    struct Options : FilterOptions {
        bool addsNumbers = false;
    };
    auto options = std::make_shared<Options>();
    CLI::App* filter = AddFilter(
        app, "sort", "Keys of 32 characters in ascending order, each with an integer",
        "Columns 1 to 32 are the key, compared byte by byte; an integer of 64 bits follows. Both "
        "are\n"
        "printed, the integer right-aligned. Equal keys come in any order.\n"
        "\n"
        "A line that cannot be used is named with its column on standard error. Nothing is sorted\n"
        "then (--strict, the default), or it is left out (--keep-going); the exit status is 1 "
        "either\n"
        "way.\n"
        "\n"
        "Example:\n"
        "  cut -c1-32 names.txt | corvale sort --number");
    filter->add_flag("--number", options->addsNumbers,
                     "Lines are keys alone; the integer is the number of the line");
    AddFiles(*filter, *options);
    AddGoingOn(*filter, *options);
    filter->callback([options, &status] { status = SortKeys(options->addsNumbers, *options); });
}

void AddLetterCases(CLI::App& app, int& status) {
    const struct {
        const char *name, *description, *help;
        int (*run)(const FilterOptions& options);
    } filters[] = {
        {"upper", "Small letters to capitals",
         "The letters a to z, in every locale; all other bytes stay.\n"
         "\n"
         "Example:\n"
         "  corvale upper orbit.inp",
         UpperCaseLines},
        {"lower", "Capitals to small letters",
         "The letters A to Z, in every locale; all other bytes stay.\n"
         "\n"
         "Example:\n"
         "  corvale lower orbit.inp",
         LowerCaseLines},
    };
    for (const auto& [name, description, help, run] : filters) {
        auto options = std::make_shared<FilterOptions>();
        CLI::App* filter = AddFilter(app, name, description, std::string(kRows) + help);
        AddFiles(*filter, *options);
        AddRows(*filter, *options);
        AddGoingOn(*filter, *options);
        filter->callback([options, run = run, &status] { status = run(*options); });
    }
}

void AddReplace(CLI::App& app, int& status) {
    struct Options : FilterOptions {
        std::string pattern, replacement;
    };
    auto options = std::make_shared<Options>();
    CLI::App* replace =
        AddFilter(app, "replace", "Replace a text wherever it stands",
                  std::string(kRows) +
                      "Occurrences are found from left to right, byte for byte; what "
                      "was inserted is not searched\n"
                      "again. A text that begins with - is written behind --.\n"
                      "\n"
                      "Example:\n"
                      "  echo 'a\\b\\c' | corvale replace '\\' /    a/b/c");
    replace->add_option("PATTERN", options->pattern, "What to look for, at least one character")
        ->required()
        ->option_text(" ")
        ->check(CLI::Validator(
            [](const std::string& pattern) {
                return pattern.empty() ? "there is nothing to look for" : "";
            },
            ""));
    replace
        ->add_option("REPLACEMENT", options->replacement, "What to put in its place; may be empty")
        ->required()
        ->option_text(" ");
    AddFiles(*replace, *options);
    AddRows(*replace, *options);
    AddGoingOn(*replace, *options);
    replace->callback([options, &status] {
        status = ReplaceInLines(options->pattern, options->replacement, *options);
    });
}

}  // namespace

std::vector<std::string> Arguments(const CLI::App& app, int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto takesValues = app.get_subcommands([&](const CLI::App* command) {
        return !arguments.empty() && command->get_name() == arguments.front() &&
               command->get_option_no_throw("VALUE") != nullptr;
    });
    if (!takesValues.empty())
        for (std::string& argument : arguments)
            if (IsNegativeNumber(argument)) argument.insert(0, 1, ' ');
    std::ranges::reverse(arguments);
    return arguments;
}

void AddFilters(CLI::App& app, int& status) {
    AddAlpha5(app, status);
    AddAngle(app, status);
    AddCompress(app, status);
    AddNumber(app, status);
    AddSort(app, status);
    AddLetterCases(app, status);
    AddReplace(app, status);
}

}  // namespace corvale::tool
