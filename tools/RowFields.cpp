#include "RowFields.hpp"

#include <algorithm>

namespace corvale::tool {

namespace {

constexpr char kMark = '"';

bool IsMark(std::string_view row, std::size_t at) {
    return at < row.size() && row[at] == kMark;
}

// Where the quotation mark stands that ends a field, of which `begin` is behind the first one; the
// size of the row if there is none.
std::size_t ClosingMark(std::string_view row, std::size_t begin) {
    std::size_t at = row.find(kMark, begin);
    while (IsMark(row, at) && IsMark(row, at + 1)) at = row.find(kMark, at + 2);
    return std::min(at, row.size());
}

}  // namespace

std::variant<std::vector<RowField>, Unusable> FieldsOf(std::string_view row, char delimiter) {
    std::vector<RowField> fields;
    for (std::size_t begin = 0;;) {
        RowField field{begin, 0, IsMark(row, begin)};
        if (field.isQuoted) {
            const std::size_t mark = ClosingMark(row, begin + 1);
            if (mark == row.size())
                return Unusable{begin + 1, "this quotation mark has no other on its line"};
            field.end = mark + 1;
            if (field.end < row.size() && row[field.end] != delimiter)
                return Unusable{field.end + 1, "a quoted field ends before this character"};
        } else {
            field.end = std::min(row.find(delimiter, begin), row.size());
        }
        fields.push_back(field);
        if (field.end == row.size()) return fields;
        begin = field.end + 1;
    }
}

std::string FieldText(std::string_view row, const RowField& field) {
    if (!field.isQuoted) return std::string(row.substr(field.begin, field.end - field.begin));
    std::string text;
    for (std::size_t at = field.begin + 1; at + 1 < field.end; at += IsMark(row, at) ? 2 : 1)
        text += row[at];
    return text;
}

std::size_t ColumnInRow(std::string_view row, const RowField& field, std::size_t column) {
    if (!field.isQuoted) return field.begin + column;
    std::size_t at = field.begin + 1;
    for (; column > 1 && at + 1 < field.end; --column) at += IsMark(row, at) ? 2 : 1;
    return at + 1;
}

std::string AsField(const std::string& text, char delimiter, bool isQuoted) {
    if (!isQuoted && text.find(delimiter) == std::string::npos && !text.starts_with(kMark))
        return text;
    std::string field(1, kMark);
    for (const char c : text) field.append(c == kMark ? 2 : 1, c);
    return field + kMark;
}

}  // namespace corvale::tool
