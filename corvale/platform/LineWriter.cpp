// One line, one system call: the kernel appends what one call brings without letting another writer
// in between, in files of any size and in pipes up to their limit. So a line is put together before
// it is written, in whichever way is cheapest for its length:
//
// up to 1,000 characters   joined on the stack: one part is written faster than several
// longer                   written from where it is, each line end replaced by a part of its own
// longer, many line ends   joined in memory taken for it, since one call takes only so many parts;
//                          without memory written in several calls, which other processes can see
//
// CR and LF inside become blanks on the way: one message is one line, whatever it holds.
#include <corvale/platform/LineWriter.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace corvale::internal {

namespace {

constexpr std::size_t kMostParts = 128;  // of one call; the system takes 1024

constexpr std::string_view kBlankForLineEnd = " ";

bool IsLineEnd(char c) noexcept {
    return c == '\n' || c == '\r';
}

// Copies the pieces to `to`, line ends as blanks; returns the end.
char* Join(Pieces pieces, char* to) noexcept {
    for (const std::string_view piece : pieces)
        to = std::transform(piece.begin(), piece.end(), to,
                            [](char c) { return IsLineEnd(c) ? ' ' : c; });
    return to;
}

std::size_t LengthOf(Pieces pieces) noexcept {
    std::size_t length = 0;
    for (const std::string_view piece : pieces) length += piece.size();
    return length;
}

// Each line end is a part of its own and splits another one.
bool HasFewParts(Pieces pieces) noexcept {
    std::size_t parts = 2;  // a line end before the line and one after it
    for (const std::string_view piece : pieces)
        parts +=
            1 + 2 * static_cast<std::size_t>(std::count_if(piece.begin(), piece.end(), IsLineEnd));
    return parts <= kMostParts;
}

// The parts of a long line, written when there are as many as one call takes. Once some of it is
// written, the file ends inside a line until the rest has followed.
class LongLine {
  public:
    explicit LongLine(TextFile& file) noexcept : file_(file) {
        if (file.lacksLineEnd) Add(kLineEnd);
    }

    void Add(std::string_view text) noexcept {
        if (text.empty()) return;
        if (count_ == parts_.size()) {
            Flush();
            if (outcome_ == Outcome::Written) file_.lacksLineEnd = true;  // until the rest follows
        }
        parts_[count_++] = PartOf(text);
    }

    void AddWithoutLineEnds(std::string_view piece) noexcept {
        auto inside = std::find_if(piece.begin(), piece.end(), IsLineEnd);
        while (inside != piece.end()) {
            Add({piece.begin(), inside});
            Add(kBlankForLineEnd);
            piece = {inside + 1, piece.end()};
            inside = std::find_if(piece.begin(), piece.end(), IsLineEnd);
        }
        Add(piece);
    }

    [[nodiscard]] Outcome Finish() noexcept {
        Add(kLineEnd);
        Flush();
        return outcome_;
    }

  private:
    void Flush() noexcept {
        const std::span parts = std::span(parts_).first(count_);
        count_ = 0;
        if (outcome_ == Outcome::Written) outcome_ = WriteAll(file_, parts, isBegun_);
        isBegun_ = true;
    }

    TextFile& file_;
    std::array<iovec, kMostParts> parts_;
    std::size_t count_ = 0;
    bool isBegun_ = false;
    Outcome outcome_ = Outcome::Written;
};

Outcome WriteInParts(TextFile& file, Pieces pieces) noexcept {
    LongLine line(file);
    for (const std::string_view piece : pieces) line.AddWithoutLineEnds(piece);
    return line.Finish();
}

// `joined` has space for the line and two line ends.
Outcome WriteJoined(TextFile& file, Pieces pieces, char* joined) noexcept {
    char* end = joined;
    if (file.lacksLineEnd) end += kLineEnd.copy(end, kLineEnd.size());
    end = Join(pieces, end);
    end += kLineEnd.copy(end, kLineEnd.size());
    return WriteWhole(file, {joined, end});
}

}  // namespace

ShortLine::ShortLine(Pieces pieces) noexcept {
    if (LengthOf(pieces) > kShortLine) return;
    kLineEnd.copy(text_.data() + kBegin - kLineEnd.size(), kLineEnd.size());
    char* end = Join(pieces, text_.data() + kBegin);
    end += kLineEnd.copy(end, kLineEnd.size());
    size_ = static_cast<std::size_t>(end - text_.data()) - kBegin;
}

Outcome WriteLongLine(TextFile& file, Pieces pieces) noexcept {
    if (HasFewParts(pieces)) return WriteInParts(file, pieces);
    const std::size_t size = LengthOf(pieces) + 2 * kLineEnd.size();
    char* const joined = static_cast<char*>(std::malloc(size));
    const Outcome outcome =
        joined != nullptr ? WriteJoined(file, pieces, joined) : WriteInParts(file, pieces);
    std::free(joined);
    return outcome;
}

}  // namespace corvale::internal
