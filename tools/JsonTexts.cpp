#include "JsonTexts.hpp"

#include "Escapes.hpp"

namespace corvale::tool {

std::string JsonName(const std::string& name) {
    constexpr auto strict = nlohmann::json::error_handler_t::strict;
    try {
        return nlohmann::json(name).dump(-1, ' ', true, strict);
    } catch (const nlohmann::json::type_error&) {
        return nlohmann::json(Escaped(name)).dump();
    }
}

}  // namespace corvale::tool
