// An input file as an editor holds it, line by line, with what is known of each.
#pragma once

#include "CardLines.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvale::tool {

/// A line and what it means after those before it.
struct DocumentLine {
    Line line;
    Explained explained;
};

class Document {
  public:
    explicit Document(std::string_view text);

    [[nodiscard]] const std::vector<DocumentLine>& Lines() const { return lines_; }

    /// For people, about the card of a line, counted from 0: what it sets, and of the value at a byte
    /// of it which element that is. Nothing where the line is no card.
    [[nodiscard]] std::optional<std::string> Hint(std::size_t line, std::size_t byte) const;

  private:
    std::vector<DocumentLine> lines_;
};

}  // namespace corvale::tool
