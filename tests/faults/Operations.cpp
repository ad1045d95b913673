#include "Operations.hpp"

#include <corvale/Corvale.h>

#include <corvale/core/CorvaleCardReading.hpp>
#include <corvale/core/FileIO.hpp>
#include <corvale/platform/TextUnits.hpp>

#include <algorithm>
#include <sstream>

namespace corvale::test {

std::string Outcome(std::int32_t status, const std::string& folder) {
    std::string message = Stored(FileIO::LastLoggedErrMsg);
    message.resize(message.find_last_not_of(' ') + 1);
    const std::size_t at = message.find(folder);
    if (at != std::string::npos) message.replace(at, folder.size(), "@");
    return std::to_string(status) + (message.empty() ? "" : " ") + message;
}

std::string Joined(std::string content) {
    std::ranges::replace(content, '\n', '|');
    return content;
}

std::string Marks(const std::string& content, std::vector<std::string> lines) {
    for (std::string& line : lines) std::ranges::replace(line, '\n', ' ');
    std::string marks(lines.size(), '0');
    std::size_t next = 0;
    std::istringstream stream(content);
    for (std::string found; std::getline(stream, found); ++next) {
        while (next < lines.size() && !lines[next].starts_with(found)) ++next;
        if (next == lines.size()) return "neither a line nor its beginning: " + found.substr(0, 80);
        if (found == lines[next]) marks[next] = '1';
    }
    return content.ends_with('\n') ? marks : "no line end";
}

std::string ManyParts() {
    return std::string(1100, 'x') + std::string(300, '\n') + "end";
}

void ResetLibrary() {
    CloseLogFile();
    for (const std::int32_t unit : {kTestUnit, 3}) TextUnits::Close(unit);
    ResetAllKeyMode();
    CorvaleCardReading::ElsetKeyModeSet(0);
    CorvaleCardReading::MoicArr.fill(0.0);
}

bool Works(const TemporaryFolder& folder) {
    double value = 0;
    if (OpenLogFile((folder / "canonical").c_str()) != 0) return false;
    LogMessage("information");
    FileIO::TraceLogError("error");
    bool isGood = Stored(FileIO::LastLoggedErrMsg) == Padded("error", 128);
    CloseLogFile();
    isGood = isGood &&
             ReadFile(folder / "canonical") == Padded("information", 128) + "\nError-error\n" &&
             CorvaleLoadFile((folder / "small").c_str()) == 0 && GetAllKeyMode() == 1;
    GetMOICData(1, &value);
    ResetLibrary();
    return isGood && value == 5.0 && Stored(FileIO::LastLoggedErrMsg) == Padded("", 128);
}

}  // namespace corvale::test
