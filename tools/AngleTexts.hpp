// Angles of the filter: decimal degrees, degrees or hours with minutes and seconds as people write
// them (10:30:00, 10d30m, 10h30m15.5s), and the texts of fixed layout that the library writes.
#pragma once

#include "LineFilter.hpp"

#include <string_view>

namespace corvale::tool {

/// Degrees as "sDDMMSS.SSS", from 100 on as "sDDDMMSS.SSS", or as hours "HHMMSSs". What is written
/// with colons counts as degrees.
[[nodiscard]] Converted EncodeAngle(std::string_view text, bool inHours);

/// The degrees of such a text: the nearest double to the exact value. What is written with colons
/// counts as hours where `inHours`.
[[nodiscard]] Converted DecodeAngle(std::string_view text, bool inHours);

}  // namespace corvale::tool
