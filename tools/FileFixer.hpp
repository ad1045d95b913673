// `corvale check --fix` and `--diff`: a file with what its findings mend, in its place or as the
// difference to it.
#pragma once

#include "LineFixer.hpp"

#include <functional>
#include <optional>
#include <string>

namespace corvale::tool {

/// What is told of a fix.
struct FileFix {
    KindSet unwanted;                                                     ///< kinds to leave
    bool withCommas = false;                                              ///< decimal commas, too
    std::function<void(const Line& line, const FixedLine& fixed)> onFix;  ///< may be empty
};

/// Replaces a file by its mended form; where there is nothing to mend it is not touched. The new file
/// stands beside the old one until it is on the disk and takes its name at once: whatever happens,
/// the name is that of the old file or of the whole new one. Mode and owner are kept. Returns why
/// nothing was changed, if it had to be: among others that the name is a symbolic link.
[[nodiscard]] std::optional<std::string> FixFile(const std::string& name, const FileFix& fix);

/// What came of `PrintDiff`.
struct DiffOutcome {
    std::optional<std::string> failure;
    bool isDifferent = false;
};

/// Prints what `FixFile` would change, for people and patch(1).
[[nodiscard]] DiffOutcome PrintDiff(const std::string& name, const FileFix& fix);

}  // namespace corvale::tool
