#include "Filters.hpp"
#include "Program.hpp"

#include <memory>
#include <string>

namespace corvale::tool {

namespace {

constexpr const char* kFilters = "Filters, files or standard input to standard output";

constexpr const char* kUnusable =
    "A line that cannot be used is named with its column on standard error. The filter stops "
    "there\n"
    "(--strict, the default), or prints an empty line in its place (--keep-going); the exit "
    "status\n"
    "is 1 either way.\n"
    "\n";

CLI::App* AddFilter(CLI::App& app, const char* name, const char* description,
                    const std::string& footer) {
    CLI::App* filter = app.add_subcommand(name, description)->group(kFilters);
    filter->footer(footer);
    return filter;
}

constexpr const char* kFileHelp = "Read this file instead of standard input, which is -";

// Of the filters of whole lines; those of single values take values there.
void AddFiles(CLI::App& filter, FilterOptions& options) {
    filter.add_option("FILE", options.files, kFileHelp)->option_text("...");
}

void AddFileOption(CLI::App& filter, FilterOptions& options) {
    filter.add_option("-f,--file", options.files, kFileHelp)
        ->option_text("FILE")
        ->allow_extra_args(false);
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
                                 std::string(kUnusable) +
                                     "Numbers go from 0 to 339999.\n"
                                     "\n"
                                     "Examples:\n"
                                     "  echo 100000 | corvale alpha5            A0000\n"
                                     "  echo Z9999 | corvale alpha5 --decode    339999");
    filter->add_flag("--decode", options->decodes, "Codes to numbers");
    AddFileOption(*filter, *options);
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
    AddFileOption(*filter, *options);
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
        std::string(kUnusable) +
            "Reals may have an exponent with E, D or a sign alone: 1.5E3, 1.5D3 and 1.5+3 are the\n"
            "same. They are printed with as few digits as read back to the same bits.\n"
            "\n"
            "Examples:\n"
            "  echo 1.5-3 | corvale number                       0.0015\n"
            "  echo 'MASS = 1.25D3' | corvale number --value     1250\n"
            "  echo 007 | corvale number --integer               7");
    filter->add_flag("--integer", options->isInteger, "Integers of 32 bits instead of reals");
    filter->add_flag("--value", options->afterEquals, "The number stands behind the first =");
    AddFileOption(*filter, *options);
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
    auto upper = std::make_shared<FilterOptions>();
    CLI::App* filter = AddFilter(app, "upper", "Small letters to capitals",
                                 "The letters a to z, in every locale; all other bytes stay.\n"
                                 "\n"
                                 "Example:\n"
                                 "  corvale upper orbit.inp");
    AddFiles(*filter, *upper);
    filter->callback([upper, &status] { status = UpperCaseLines(*upper); });

    auto lower = std::make_shared<FilterOptions>();
    filter = AddFilter(app, "lower", "Capitals to small letters",
                       "The letters A to Z, in every locale; all other bytes stay.\n"
                       "\n"
                       "Example:\n"
                       "  corvale lower orbit.inp");
    AddFiles(*filter, *lower);
    filter->callback([lower, &status] { status = LowerCaseLines(*lower); });
}

void AddReplace(CLI::App& app, int& status) {
    struct Options : FilterOptions {
        std::string pattern, replacement;
    };
    auto options = std::make_shared<Options>();
    CLI::App* replace = AddFilter(app, "replace", "Replace a text wherever it stands",
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
    replace->callback([options, &status] {
        status = ReplaceInLines(options->pattern, options->replacement, *options);
    });
}

}  // namespace

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
