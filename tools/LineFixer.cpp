#include "LineFixer.hpp"

#include <algorithm>

namespace corvale::tool {

namespace {

bool IsEarlier(const Edit& a, const Edit& b) {
    return a.column < b.column;
}

// All changes of a line, from its beginning on. Where two overlap the later one waits for the next
// round.
std::vector<Edit> EditsOf(const Explained& explained) {
    std::vector<Edit> all;
    for (const Finding& finding : explained.findings)
        all.insert(all.end(), finding.fix.begin(), finding.fix.end());
    std::stable_sort(all.begin(), all.end(), IsEarlier);
    std::vector<Edit> edits;
    for (Edit& edit : all)
        if (edits.empty() || edit.column >= edits.back().column + edits.back().length)
            edits.push_back(std::move(edit));
    return edits;
}

std::string Changed(const Line& line, const std::vector<Edit>& edits) {
    const std::string_view lineEnd = line.hasReturn ? "\r\n" : "\n";
    std::string text;
    std::size_t done = 0;
    for (const Edit& edit : edits) {
        text.append(line.text, done, edit.column - 1 - done);
        text.append(edit.text == "\n" ? lineEnd : edit.text);
        done = edit.column - 1 + edit.length;
    }
    return text.append(line.text, done);
}

}  // namespace

LineFixer::LineFixer(const KindSet& unwanted, bool withCommas) {
    content_.silence.always = unwanted;
    if (!withCommas)
        content_.silence.always.set(static_cast<std::size_t>(FindingKind::DecimalComma));
}

std::optional<FixedLine> LineFixer::Fix(const Line& line) {
    const Silence before = content_.silence;
    const Explained explained = ExplainLine(line, content_);
    if (line.text.size() != line.length || EditsOf(explained).empty()) return std::nullopt;
    content_.silence = before;
    FixedLine fixed;
    Mend(line, fixed);
    return fixed;
}

// Each change takes away what the finding was about: after some rounds there is none left.
void LineFixer::Mend(const Line& line, FixedLine& fixed) {
    const Silence before = content_.silence;
    const Explained explained = ExplainLine(line, content_);
    const std::vector<Edit> edits = EditsOf(explained);
    if (edits.empty()) {
        fixed.text += line.text;
        return;
    }
    content_.silence = before;
    for (const Finding& finding : explained.findings)
        if (!finding.fix.empty()) fixed.mended.push_back(finding.kind);

    const std::string text = Changed(line, edits);
    Line piece = line;
    for (std::size_t begin = 0, end = 0; end < text.size(); begin = end + 1, ++piece.number) {
        end = std::min(text.find('\n', begin), text.size());
        const bool isLast = end == text.size();
        const std::size_t size = end - begin - (!isLast && line.hasReturn ? 1 : 0);
        piece.text = text.substr(begin, size);
        piece.length = size;
        Mend(piece, fixed);
        if (!isLast) fixed.text += line.hasReturn ? "\r\n" : "\n";
    }
}

}  // namespace corvale::tool
