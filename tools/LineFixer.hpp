// What `corvale check --fix` makes of a line: the changes that its findings carry, until none is left.
#pragma once

#include "CardLines.hpp"

#include <optional>
#include <string>
#include <vector>

namespace corvale::tool {

/// A line in its new form, and the kinds of what was mended in it.
struct FixedLine {
    std::string text;  ///< without the end of its last line: it may have become several
    std::vector<FindingKind> mended;
};

/// Goes through the lines of a file in their order.
class LineFixer {
  public:
    /// The kinds in `unwanted` are left as they are; decimal commas too, unless they are asked for.
    LineFixer(const KindSet& unwanted, bool withCommas);

    /// Nothing where nothing is to be mended, or not for certain. A line of which a part is not kept
    /// stays as it is.
    [[nodiscard]] std::optional<FixedLine> Fix(const Line& line);

  private:
    void Mend(const Line& line, FixedLine& fixed);

    FileContent content_;  // of which only silencing comments matter here
};

}  // namespace corvale::tool
