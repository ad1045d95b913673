#include "Settings.hpp"

#include "Escapes.hpp"
#include "Input.hpp"
#include "Joined.hpp"
#include "NumberList.hpp"

#include <algorithm>
#include <string_view>

namespace corvale::tool {

namespace {

// What stands from `column` on: a keyword, or a number with its repeat count.
std::string_view WordAt(std::string_view line, std::size_t column) {
    const std::string_view rest = line.substr(column - 1);
    return rest.substr(0, std::min(rest.find_first_of(" \t,/"), kColumns - (column - 1)));
}

void Decide(Setting& setting, const Line& line, std::size_t column, std::size_t file) {
    setting.file = file;
    setting.line = line.number;
    setting.column = column;
    setting.written = WordAt(line.text, column);
}

void TakeCard(const Line& line, const Explained& explained, const FileContent& content,
              Settings& settings) {
    const std::size_t file = settings.files.size() - 1;
    if (explained.card->mode) {
        Setting& mode = settings.modes[*explained.card->mode];
        if (++mode.cards > 1) return;
        mode.value = 1.0;
        Decide(mode, line, 1, file);
        mode.written.resize(NameOf(*explained.card).size());
        return;
    }
    for (std::size_t i = 0; i < kElements; ++i) {
        if (!explained.sets[i]) continue;
        ++settings.elements[i].cards;
        Decide(settings.elements[i], line, content.values.Column(i), file);
    }
}

}  // namespace

std::optional<std::string> AddFile(const std::string& file, ProgressBar::Show show,
                                   Settings& settings) {
    settings.files.push_back(file);
    InputFile input(file);
    ProgressBar bar(file, input.Size().value_or(0), show);
    FileContent content;
    Line line;
    while (input.ReadLine(line, kLineKept)) {
        const Explained explained = ExplainLine(line, content);
        if (explained.kind == LineKind::Card) TakeCard(line, explained, content, settings);
        bar.Update(input.BytesRead());
    }
    if (input.Failure())
        return Joined(file == "-" ? "standard input" : QuotedName(file),
                      " cannot be read: ", *input.Failure());
    for (std::size_t i = 0; i < kElements; ++i)
        if (content.isSet[i]) settings.elements[i].value = content.values[i];
    return std::nullopt;
}

std::vector<NamedSetting> AllSettings(const Settings& settings) {
    std::vector<NamedSetting> all;
    for (std::size_t i = 0; i < settings.modes.size(); ++i) {
        const internal::KeyMode& mode = internal::kKeyModes[i];
        all.push_back({std::string(mode.name),
                       std::string(mode.id),
                       {{"mode", mode.id}},
                       &settings.modes[i]});
    }
    for (std::size_t i = 0; i < kElements; ++i)
        all.push_back({Joined("value ", i + 1),
                       std::to_string(i + 1),
                       {{"element", i + 1}},
                       &settings.elements[i]});
    return all;
}

std::string ShownName(const std::string& file) {
    return file == "-" ? "standard input" : Escaped(file);
}

std::string PlaceText(const Setting& setting, const Settings& all) {
    return Joined(ShownName(all.files[setting.file]), ":", setting.line, ":", setting.column);
}

nlohmann::ordered_json JsonSetting(const Setting& setting, const Settings& all) {
    nlohmann::ordered_json json = {{"value", JsonReal(setting.value)}, {"cards", setting.cards}};
    if (setting.cards == 0) return json;
    json["file"] = nlohmann::ordered_json::parse(JsonName(all.files[setting.file]));
    json["line"] = setting.line;
    json["column"] = setting.column;
    json["written"] = setting.written;
    return json;
}

}  // namespace corvale::tool
