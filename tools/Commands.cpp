#include "Commands.hpp"

#include "Joined.hpp"
#include "Terminal.hpp"
#include "Texts.hpp"

#include <corvale/Corvale.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <system_error>

namespace corvale::tool {

namespace {

using Values = std::array<double, CORVALE_MOIC_COUNT>;

bool IsRefused(const std::string& name) {
    const auto why = WhyNameIsRefused(name);
    if (why) std::cerr << "corvale: the name \"" << name << "\" is refused: " << *why << '\n';
    return why.has_value();
}

// Names as the library is to open them.
std::string LibraryName(const std::string& file) {
    return file == "-" ? "/dev/stdin" : file;
}

// The log is emptied when it is opened. The library takes backslashes of the input's name as slashes.
bool IsSameFile(const std::string& log, std::string input) {
    std::replace(input.begin(), input.end(), '\\', '/');
    std::error_code notThere;
    if (log != input && !std::filesystem::equivalent(log, input, notThere)) return false;
    std::cerr << "corvale: the log \"" << log
              << "\" is refused: it is the same file as the input\n";
    return true;
}

bool IsAnyRefused(const LoadOptions& options) {
    if (std::ranges::any_of(options.files, IsRefused)) return true;
    if (options.log.empty()) return false;
    return IsRefused(options.log) || std::ranges::any_of(options.files, [&](const auto& file) {
               return IsSameFile(options.log, LibraryName(file));
           });
}

int Fail() {
    std::cerr << MessageFrom(GetLastErrMsg) << '\n';
    return kExitFailed;
}

Values AllValues() {
    Values values{};
    GetMOICData(CORVALE_MOIC_COUNT, values.data());
    return values;
}

void PrintJson(int status) {
    nlohmann::ordered_json moic = nlohmann::ordered_json::array();
    for (const double value : AllValues()) {
        if (std::isfinite(value))
            moic.push_back(value);
        else
            moic.push_back(RealText(value));
    }
    nlohmann::ordered_json all = {
        {"status", status}, {"message", status == CORVALE_OK ? "" : MessageFrom(GetLastErrMsg)}};
    for (const internal::KeyMode& mode : internal::kKeyModes)
        all[std::string(mode.id)] = mode.get();
    all["moic"] = moic;
    std::cout << all.dump(2) << '\n';
}

void PrintTable() {
    constexpr std::size_t perRow = 4;
    std::cout << MessageFrom(CorvaleGetInfo) << "\n\n";
    for (const internal::KeyMode& mode : internal::kKeyModes)
        std::cout << PaddedName(mode) << mode.get() << '\n';
    std::cout << "\nMOIC\n";
    const Values values = AllValues();
    for (std::size_t i = 0; i < values.size(); i += perRow) {
        std::cout << std::setw(3) << i + 1 << " to " << std::setw(3) << i + perRow;
        for (std::size_t j = i; j < i + perRow; ++j)
            std::cout << ' ' << std::setw(24) << RealText(values[j]);
        std::cout << '\n';
    }
}

// Says what came of a call with `status`: the values, or why there are none.
int Report(int status, const LoadOptions& options) {
    if (options.asJson && !options.isQuiet) PrintJson(status);
    if (status != CORVALE_OK) return Fail();
    if (!options.asJson && !options.isQuiet) PrintTable();
    return kExitOk;
}

int LoadFile(const std::string& file, const LoadOptions& options) {
    const std::string name = LibraryName(file);
    if (!options.log.empty()) LogMessage(Joined("corvale load ", file).c_str());
    ProgressBar bar(file, RegularFileSize(name),
                    ShowProgress(options.isQuiet, options.showsProgress));
    const ReadingWatch watch(name, bar);
    return CorvaleLoadFile(name.c_str());
}

// Up to the first file that cannot be read.
int LoadFiles(const LoadOptions& options) {
    for (const std::string& file : options.files)
        if (const int status = LoadFile(file, options); status != CORVALE_OK) return status;
    return CORVALE_OK;
}

}  // namespace

int Info() {
    std::cout << MessageFrom(CorvaleGetInfo) << '\n';
    return kExitOk;
}

int Load(const LoadOptions& options) {
    if (IsAnyRefused(options)) return kExitFailed;
    if (options.log.empty()) return Report(LoadFiles(options), options);

    int status = OpenLogFile(options.log.c_str());
    if (status == CORVALE_OK) status = LoadFiles(options);
    const int exitStatus = Report(status, options);
    CloseLogFile();  // blanks the message, so that it comes last
    return exitStatus;
}

}  // namespace corvale::tool
