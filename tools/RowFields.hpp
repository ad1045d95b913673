// Rows of fields with a delimiter between them, as in CSV files. A field between quotation marks may
// hold the delimiter, and two quotation marks stand for one in it. It ends on its own line: memory
// does not grow with a file in which a mark is missing.
#pragma once

#include "LineFilter.hpp"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace corvale::tool {

/// Where a field stands in its row, quotation marks included; counted from 0.
struct RowField {
    std::size_t begin = 0, end = 0;
    bool isQuoted = false;
};

/// The fields of a row, of which there is at least one, or what is wrong with it.
[[nodiscard]] std::variant<std::vector<RowField>, Unusable> FieldsOf(std::string_view row,
                                                                     char delimiter);

/// What a field says, without its quotation marks.
[[nodiscard]] std::string FieldText(std::string_view row, const RowField& field);

/// The column of the row where the text of a field has its column `column`; both count from 1.
[[nodiscard]] std::size_t ColumnInRow(std::string_view row, const RowField& field,
                                      std::size_t column);

/// A text as a field: between quotation marks where `isQuoted` or where it needs them.
[[nodiscard]] std::string AsField(const std::string& text, char delimiter, bool isQuoted);

}  // namespace corvale::tool
