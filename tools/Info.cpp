#include "Commands.hpp"
#include "JsonTexts.hpp"
#include "Texts.hpp"

#include <corvale/Corvale.h>

#include <iostream>

namespace corvale::tool {

namespace {

// The pieces of "Arvenit Corvale - Version: v9.4 - Build: ...", each by its name in small letters.
void PrintJson(const std::string& line) {
    nlohmann::ordered_json all = {{"information", line}};
    constexpr std::string_view separator = " - ";
    for (std::size_t at = line.find(separator); at < line.size();) {
        at += separator.size();
        const std::size_t end = std::min(line.find(separator, at), line.size());
        const std::size_t colon = line.find(": ", at);
        std::string key = line.substr(at, colon - at);
        key.front() = static_cast<char>(key.front() | 0x20);
        all[key] = line.substr(colon + 2, end - colon - 2);
        at = end;
    }
    all["version"] = CORVALE_VERSION;  // all three numbers of it
    std::cout << all.dump(2) << '\n';
}

}  // namespace

int Info(bool asJson) {
    const std::string line = MessageFrom(CorvaleGetInfo);
    if (asJson)
        PrintJson(line);
    else
        std::cout << line << '\n';
    return kExitOk;
}

}  // namespace corvale::tool
