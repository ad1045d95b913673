#include <corvale/platform/LineWriter.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace corvale::internal {

namespace {

// A line that fits is put together in a buffer on the stack: one write of one part is cheaper than
// one of several (bench: LogLine). A longer one is not copied.
constexpr std::size_t kShortLine = 1000;
constexpr std::size_t kMostParts = 128;

constexpr std::string_view kLineEnd = "\n";
constexpr std::string_view kBlankForLineEnd = " ";

bool IsLineEnd(char c) noexcept {
    return c == '\n' || c == '\r';
}

iovec PartOf(std::string_view text) noexcept {
    return {const_cast<char*>(text.data()), text.size()};
}

bool WriteShort(TextFile& file, std::span<const std::string_view> pieces) noexcept {
    std::array<char, kShortLine + 2> line;
    char* end = line.data();
    if (file.lacksLineEnd) *end++ = '\n';
    for (const std::string_view piece : pieces)
        end = std::transform(piece.begin(), piece.end(), end,
                             [](char c) { return IsLineEnd(c) ? ' ' : c; });
    *end++ = '\n';
    iovec whole = PartOf({line.data(), static_cast<std::size_t>(end - line.data())});
    return WriteAll(file, {&whole, 1});
}

// The parts of a long line, written when there are as many as one call takes.
class LongLine {
  public:
    explicit LongLine(TextFile& file) noexcept : file_(file) {
        if (file.lacksLineEnd) Add(kLineEnd);
    }

    void Add(std::string_view text) noexcept {
        if (text.empty()) return;
        if (count_ == parts_.size()) {
            Flush();
            if (isWhole_) file_.lacksLineEnd = true;  // until the rest has followed
        }
        parts_[count_++] = PartOf(text);
    }

    [[nodiscard]] bool Finish() noexcept {
        Add(kLineEnd);
        Flush();
        return isWhole_;
    }

  private:
    void Flush() noexcept {
        isWhole_ = isWhole_ && WriteAll(file_, std::span(parts_).first(count_));
        count_ = 0;
    }

    TextFile& file_;
    std::array<iovec, kMostParts> parts_;
    std::size_t count_ = 0;
    bool isWhole_ = true;
};

bool WriteLong(TextFile& file, std::span<const std::string_view> pieces) noexcept {
    LongLine line(file);
    for (std::string_view piece : pieces) {
        auto inside = std::find_if(piece.begin(), piece.end(), IsLineEnd);
        while (inside != piece.end()) {
            line.Add({piece.begin(), inside});
            line.Add(kBlankForLineEnd);
            piece = {inside + 1, piece.end()};
            inside = std::find_if(piece.begin(), piece.end(), IsLineEnd);
        }
        line.Add(piece);
    }
    return line.Finish();
}

}  // namespace

bool WriteTextLine(TextFile& file, std::span<const std::string_view> pieces) noexcept {
    std::size_t length = 0;
    for (const std::string_view piece : pieces) length += piece.size();
    return length <= kShortLine ? WriteShort(file, pieces) : WriteLong(file, pieces);
}

}  // namespace corvale::internal
