// What the fault loops disturb: each procedure that takes memory or calls the system, and what may
// come of it.
#pragma once

#include "tests/support/TestFiles.hpp"

#include <functional>
#include <string>
#include <vector>

namespace corvale::test {

struct Operation {
    std::string name;
    std::function<std::string()> run;  // says what came of it
    std::string undisturbed;           // what does where nothing fails
    std::string orElse = "";           // what else may where a call does: a regular expression
    int keeps = 0;                     // blocks that stay with the library by design
};

std::vector<Operation> LogOperations(const TemporaryFolder& folder);
std::vector<Operation> FileOperations(const TemporaryFolder& folder);
std::vector<Operation> MemoryOperations(const TemporaryFolder& folder);

/// The unit that operations open.
inline constexpr std::int32_t kTestUnit = 14;

/// The status and the stored message; "@" stands for the folder.
std::string Outcome(std::int32_t status, const std::string& folder);

/// `content` on one line.
std::string Joined(std::string content);

/// 1 for each of `lines` that stands whole in `content`, 0 for one that is not there or of which
/// only the beginning is. Anything else in `content` is told instead.
std::string Marks(const std::string& content, std::vector<std::string> lines);

/// A text that is written in several calls: long, and full of line ends.
std::string ManyParts();

/// The library as it was loaded, but for what can never be undone: no log, no unit, no mode.
void ResetLibrary();

/// Whether loading, logging and the modes do as they should: the canonical round trip.
bool Works(const TemporaryFolder& folder);

}  // namespace corvale::test
