#include "Findings.hpp"

#include "Escapes.hpp"
#include "Joined.hpp"
#include "WordDistance.hpp"

#include <algorithm>

namespace corvale::tool {

namespace {

constexpr std::string_view kSeparators = " \t,";
constexpr std::string_view kIgnore = "corvale-ignore";
constexpr std::string_view kOfFile = "-file";

std::string NearestCode(std::string_view word) {
    std::size_t least = word.size() / 3 + 2;
    std::string nearest;
    for (const FindingRow& row : kFindingRows)
        if (const std::size_t distance = WordDistance(word, row.code); distance < least) {
            least = distance;
            nearest = Joined("did you mean ", row.code, "?");
        }
    return nearest;
}

// The codes from column `at` + 1 of the comment on.
KindSet CodesFrom(std::string_view comment, std::size_t at, std::vector<Finding>& findings) {
    KindSet kinds;
    while ((at = comment.find_first_not_of(kSeparators, at)) < comment.size()) {
        const std::string_view word =
            comment.substr(at, comment.find_first_of(kSeparators, at) - at);
        if (const auto kind = KindOf(word))
            kinds.set(static_cast<std::size_t>(*kind));
        else
            findings.push_back({FindingKind::UnknownCode, at + 1, word.size(),
                                Quoted(word) + " is no code of a finding", NearestCode(word)});
        at += word.size();
    }
    return kinds;
}

}  // namespace

void ObeyComment(std::string_view comment, Silence& silence, std::vector<Finding>& findings) {
    std::size_t at = std::min(comment.find_first_not_of(" \t", 1), comment.size());
    if (!comment.substr(at).starts_with(kIgnore)) return;
    at += kIgnore.size();
    const bool isOfFile = comment.substr(at).starts_with(kOfFile);
    if (isOfFile) at += kOfFile.size();
    if (at >= comment.size() || comment[at] != ':') return;
    (isOfFile ? silence.always : silence.next) |= CodesFrom(comment, at + 1, findings);
}

void TakeOutSilenced(const Silence& silence, std::vector<Finding>& findings) {
    const auto isSilenced = [&](const Finding& finding) {
        return IsSilenced(finding.kind, silence);
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isSilenced), findings.end());
}

}  // namespace corvale::tool
