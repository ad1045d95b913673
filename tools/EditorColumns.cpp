#include "EditorColumns.hpp"

namespace corvale::tool {

namespace {

struct Character {
    std::size_t bytes = 1, units = 1;
};

// The character that begins `text`, which is not empty.
Character First(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = lead < 0xC2   ? 1
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 1;
    if (size > text.size()) return {};
    for (std::size_t i = 1; i < size; ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return {};
    return {size, size == 4 ? 2U : 1U};
}

}  // namespace

std::size_t UnitsOf(std::string_view line, std::size_t bytes) {
    std::size_t units = 0;
    for (std::size_t at = 0; at < bytes && at < line.size();) {
        const Character character = First(line.substr(at));
        at += character.bytes;
        units += character.units;
    }
    return units + (bytes > line.size() ? bytes - line.size() : 0);
}

std::size_t BytesOf(std::string_view line, std::size_t units) {
    std::size_t at = 0;
    for (std::size_t seen = 0; seen < units && at < line.size();) {
        const Character character = First(line.substr(at));
        at += character.bytes;
        seen += character.units;
    }
    return at;
}

}  // namespace corvale::tool
