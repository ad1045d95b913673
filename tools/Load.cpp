// `corvale load`: what the cards of files set, and why a file or the log cannot be opened.
#include "Commands.hpp"
#include "Escapes.hpp"
#include "Input.hpp"
#include "Joined.hpp"
#include "JsonTexts.hpp"
#include "LibraryName.hpp"
#include "Terminal.hpp"
#include "Texts.hpp"
#include "Why.hpp"

#include <corvale/Corvale.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <system_error>

namespace corvale::tool {

namespace {

using Values = std::array<double, CORVALE_MOIC_COUNT>;

// Whether two names are of one file, also of one that is not there yet.
bool IsSameFile(const std::string& one, const std::string& other) {
    std::error_code notThere;
    const auto whole = [&](const std::string& name) {
        return std::filesystem::weakly_canonical(std::filesystem::absolute(name, notThere),
                                                 notThere);
    };
    return std::filesystem::equivalent(one, other, notThere) || whole(one) == whole(other);
}

// Whether a name is that of the file to which the output of the program goes.
bool IsOwnOutput(const std::string& name) {
    struct stat file = {};
    if (stat(name.c_str(), &file) != 0 || !S_ISREG(file.st_mode)) return false;
    return std::ranges::any_of(std::array{STDOUT_FILENO, STDERR_FILENO}, [&](int descriptor) {
        struct stat output = {};
        return fstat(descriptor, &output) == 0 && output.st_dev == file.st_dev &&
               output.st_ino == file.st_ino;
    });
}

// The log is emptied when it is opened: it must not be a file that this command reads or writes.
std::optional<std::string> WhyLogIsRefused(const LoadOptions& options) {
    if (auto why = WhyNameIsRefused(options.log)) return why;
    if (IsOwnOutput(options.log)) return "the output of this command goes to the same file";
    for (const std::string& file : options.files)
        if (IsSameFile(options.log, InputPath(file))) return "it is the same file as the input";
    return std::nullopt;
}

// Why the log cannot be opened: the library does not say.
std::string WhyNotWritable(const std::string& log) {
    const int descriptor = open(log.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    int error = descriptor < 0 ? errno : 0;
    if (descriptor >= 0) close(descriptor);
    const std::string folder = std::filesystem::path(log).parent_path();
    if (error == ENOENT && access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0)
        error = errno;
    return Joined(QuotedName(log), error == 0 ? "" : ": ", error == 0 ? "" : SystemReason(error));
}

// What came of a call of the library.
struct Outcome {
    int status = CORVALE_OK;
    std::string message = {}, reason = {};  // why there is nothing to show
};

int Fail(const Outcome& outcome) {
    std::cout.flush();
    std::cerr << Escaped(outcome.message)
              << (outcome.reason.empty() ? "" : Joined(" (", outcome.reason, ")")) << '\n';
    return kExitFailed;
}

Values AllValues() {
    Values values{};
    GetMOICData(CORVALE_MOIC_COUNT, values.data());
    return values;
}

void PrintJson(const Outcome& outcome) {
    nlohmann::ordered_json all = {{"status", outcome.status}, {"message", outcome.message}};
    if (outcome.status != CORVALE_OK) {
        all["reason"] = outcome.reason;  // and no values: some may be those of earlier files
    } else {
        for (const internal::KeyMode& mode : internal::kKeyModes)
            all[std::string(mode.id)] = mode.get();
        nlohmann::ordered_json& moic = all["moic"];
        for (const double value : AllValues()) moic.push_back(JsonReal(value));
    }
    std::cout << all.dump(2, ' ', true, nlohmann::ordered_json::error_handler_t::replace) << '\n';
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

int Report(const Outcome& outcome, const LoadOptions& options) {
    if (options.asJson && !options.isQuiet) PrintJson(outcome);
    if (outcome.status != CORVALE_OK) return Fail(outcome);
    if (!options.asJson && !options.isQuiet) PrintTable();
    return kExitOk;
}

Outcome LoadFile(const std::string& file, const LoadOptions& options) {
    if (!options.log.empty()) LogMessage(Joined("corvale load ", Escaped(file)).c_str());
    const std::string unreadable = Joined("corvale: \"", file, "\" cannot be read");
    const LibraryName name(file);
    if (name.Failure()) {
        if (!options.log.empty()) LogMessage(Escaped(unreadable).c_str());
        return {CORVALE_FAILED, unreadable, *name.Failure()};
    }

    ProgressBar bar(file, RegularFileSize(name.Text()),
                    ShowProgress(options.isQuiet, options.showsProgress));
    int status = CORVALE_OK;
    {
        const ReadingWatch watch(name.Text(), bar);
        status = CorvaleLoadFile(name.Text().c_str());
    }
    if (status == CORVALE_OK) return {};
    const InputFile again(name.Text());  // the library does not say why
    return {status, name.IsAlias() ? unreadable : MessageFrom(GetLastErrMsg),
            again.Failure().value_or("")};
}

// Up to the first file that cannot be read.
Outcome LoadFiles(const LoadOptions& options) {
    for (const std::string& file : options.files)
        if (Outcome outcome = LoadFile(file, options); outcome.status != CORVALE_OK) return outcome;
    return {};
}

int LoadWithLog(const LoadOptions& options) {
    if (const auto why = WhyLogIsRefused(options)) {
        std::cerr << "corvale: the log " << QuotedName(options.log) << " is refused: " << *why
                  << '\n';
        return kExitFailed;
    }
    if (const int status = OpenLogFile(options.log.c_str()); status != CORVALE_OK)
        return Report({status, MessageFrom(GetLastErrMsg), WhyNotWritable(options.log)}, options);
    const int exitStatus = Report(LoadFiles(options), options);
    CloseLogFile();  // blanks the message, so that it comes last
    return exitStatus;
}

}  // namespace

int Load(const LoadOptions& options) {
    if (!options.why.empty()) return ExplainSettings(options);
    return options.log.empty() ? Report(LoadFiles(options), options) : LoadWithLog(options);
}

}  // namespace corvale::tool
