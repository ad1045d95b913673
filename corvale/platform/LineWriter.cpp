#include <corvale/platform/LineWriter.hpp>

#include <algorithm>
#include <array>
#include <cstddef>

namespace corvale::internal {

namespace {

constexpr std::size_t kMostParts = 128;

constexpr std::string_view kBlankForLineEnd = " ";

bool IsLineEnd(char c) noexcept {
    return c == '\n' || c == '\r';
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

}  // namespace

ShortLine::ShortLine(std::span<const std::string_view> pieces) noexcept {
    std::size_t length = 0;
    for (const std::string_view piece : pieces) length += piece.size();
    if (length > kShortLine) return;

    kLineEnd.copy(text_.data() + kBegin - kLineEnd.size(), kLineEnd.size());
    char* end = text_.data() + kBegin;
    for (const std::string_view piece : pieces)
        end = std::transform(piece.begin(), piece.end(), end,
                             [](char c) { return IsLineEnd(c) ? ' ' : c; });
    end += kLineEnd.copy(end, kLineEnd.size());
    size_ = static_cast<std::size_t>(end - text_.data()) - kBegin;
}

bool WriteLongLine(TextFile& file, std::span<const std::string_view> pieces) noexcept {
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

}  // namespace corvale::internal
