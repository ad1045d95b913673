// Text files, units, the log and messages as strings in memory.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace corvale::reference {

inline std::string Stored(std::string text) {
    text.resize(128, ' ');
    return text;
}

struct File {
    std::string content;
    int writers = 0;         // units that have it open to write
    bool isUnclear = false;  // several units wrote it: its content depends on their buffers
    int version = 0;
};

struct Unit {
    std::string name;
    bool writes;
    std::size_t position = 0;
    int version = 0;  // of its file when it was opened
};

// What files, units and messages must hold after the same steps.
class Units {
  public:
    [[nodiscard]] const Unit* Find(std::int32_t number) const {
        const auto found = units.find(number);
        return found == units.end() ? nullptr : &found->second;
    }
    void Close(std::int32_t number) {
        const Unit* const unit = Find(number);
        if (unit != nullptr && unit->writes) --files[unit->name].writers;
        units.erase(number);
    }
    bool Open(std::int32_t number, std::string_view name, std::int32_t mode) {
        Close(number);
        if (name.empty() || (mode == 1 && !files.contains(std::string(name)))) return false;
        File& file = files[std::string(name)];
        if (mode != 1 && ++file.writers > 1) file.isUnclear = true;
        if (mode == 0) file.content.clear();
        if (mode != 1) ++file.version;
        units[number] = {std::string(name), mode != 1, 0, file.version};
        return true;
    }
    bool Write(std::int32_t number, std::string text) {
        const Unit* const unit = Find(number);
        if (unit == nullptr || !unit->writes) return false;
        for (char& c : text)
            if (c == '\n' || c == '\r') c = ' ';
        File& file = files[unit->name];
        if (!file.content.empty() && file.content.back() != '\n') file.content += '\n';
        file.content += text + '\n';
        ++file.version;
        return true;
    }
    // The next line of a unit; nothing at the end or for a unit that does not read.
    std::optional<std::string> Read(std::int32_t number) {
        const auto found = units.find(number);
        if (found == units.end() || found->second.writes) return std::nullopt;
        const std::string& content = files[found->second.name].content;
        std::size_t& at = found->second.position;
        if (at >= content.size()) return std::nullopt;
        const std::size_t end = content.find('\n', at);
        std::string line = content.substr(at, end == std::string::npos ? end : end - at);
        at = end == std::string::npos ? content.size() : end + 1;
        if (end != std::string::npos && line.ends_with('\r')) line.pop_back();
        return line;
    }
    bool Rewind(std::int32_t number) {
        const auto found = units.find(number);
        if (found == units.end() || found->second.writes) return false;
        found->second.position = 0;
        return true;
    }
    // Whether the file of a unit that reads is as it was when the unit was opened.
    [[nodiscard]] bool IsSteady(std::int32_t number) const {
        const Unit* const unit = Find(number);
        return unit == nullptr || unit->writes || files.at(unit->name).version == unit->version;
    }
    void Error(const std::string& message) {
        if (hasLog && message.find_first_not_of(' ') != std::string::npos)
            Write(6, "Error-" + message);
        error = Stored(message);
    }
    void Info(const std::string& message) {
        if (hasLog) Write(6, message);
        info = Stored(message);
    }

    bool hasLog = false;                     // or had one that failed to open
    std::optional<std::string> error, info;  // nothing: what inputs before left

    std::map<std::string, File> files;
    std::map<std::int32_t, Unit> units;
};

}  // namespace corvale::reference
