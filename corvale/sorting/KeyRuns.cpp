#include <corvale/sorting/KeyRuns.hpp>

#include <algorithm>
#include <array>

namespace corvale::internal {

namespace {

// More runs than these are left to the buckets, which then are as fast; so are runs shorter than
// this share of the keys. Bench: OrganPipe in bench/SortBench.cpp.
constexpr std::size_t kMostRuns = 4;
constexpr std::size_t kLeastShare = 16;

struct Run {
    std::size_t end;
    bool isDescending;
};

// The longest run that begins at `first`. A last key alone counts as descending.
Run FindRun(const KeyRange& all, std::size_t first) noexcept {
    std::size_t end = first + 1;
    while (end < all.count && !IsLess(all.keys[end], all.keys[end - 1])) ++end;
    if (end > first + 1) return {end, false};

    while (end < all.count && !IsLess(all.keys[end - 1], all.keys[end])) ++end;
    return {end, true};
}

void Reverse(const KeyRange& range) noexcept {
    std::reverse(range.keys, range.keys + range.count);
    std::reverse(range.companion, range.companion + range.count);
}

// How many rows of two parts were still to come when one of them ran out.
struct Rest {
    std::size_t left;
    std::size_t right;
};

// Merges the sorted left and right parts of `range` from the front. The left part, of `split` rows,
// fits in `buffer`.
Rest MergeForward(const KeyRange& range, std::size_t split, const KeyRange& buffer) noexcept {
    buffer.PutRows(0, range, 0, split);
    std::size_t left = 0;
    std::size_t right = split;
    std::size_t to = 0;
    while (left < split && right < range.count) {
        const bool isRight = IsLess(range.keys[right], buffer.keys[left]);
        if (isRight)
            range.Put(to, range, right);
        else
            range.Put(to, buffer, left);
        ++to;
        right += isRight ? 1 : 0;
        left += isRight ? 0 : 1;
    }
    range.PutRows(to, buffer, left, split - left);
    return {split - left, range.count - right};
}

// The same from the back; the right part fits in `buffer`.
void MergeBackward(const KeyRange& range, std::size_t split, const KeyRange& buffer) noexcept {
    std::size_t left = split;
    std::size_t right = range.count - split;
    buffer.PutRows(0, range, split, right);
    while (left > 0 && right > 0) {
        const bool isLeft = IsLess(buffer.keys[right - 1], range.keys[left - 1]);
        if (isLeft)
            range.Put(left + right - 1, range, left - 1);
        else
            range.Put(left + right - 1, buffer, right - 1);
        left -= isLeft ? 1 : 0;
        right -= isLeft ? 0 : 1;
    }
    range.PutRows(0, buffer, 0, right);
}

// Two sorted parts of whole blocks, merged through a buffer of one block: first the blocks are put
// in the order of their first keys, then neighbours that came from different parts are merged.
class BlockMerge {
  public:
    BlockMerge(const KeyRange& range, std::size_t split, const KeyRange& buffer,
               std::span<std::int32_t> source) noexcept
        : range_(range),
          buffer_(buffer),
          source_(source),
          size_(buffer.count),
          leftBlocks_(split / size_) {}

    void Run() noexcept {
        OrderBlocks();
        MarkSides();
        MoveBlocks();
        MergeNeighbours();
    }

  private:
    [[nodiscard]] const Key& FirstKey(std::size_t block) const noexcept {
        return range_.keys[block * size_];
    }

    // source_[i]: the block that belongs to place i.
    void OrderBlocks() noexcept {
        std::size_t left = 0;
        std::size_t right = leftBlocks_;
        for (std::int32_t& block : source_) {
            const bool isRight = left == leftBlocks_ || (right < source_.size() &&
                                                         IsLess(FirstKey(right), FirstKey(left)));
            block = static_cast<std::int32_t>(isRight ? right++ : left++);
        }
    }

    // Keeps with each place whether its block is from the right part, for when it has been moved.
    void MarkSides() noexcept {
        for (std::int32_t& block : source_)
            block = block * 2 + (static_cast<std::size_t>(block) >= leftBlocks_ ? 1 : 0);
    }

    [[nodiscard]] std::size_t Source(std::size_t place) const noexcept {
        return static_cast<std::size_t>(source_[place]) / 2;
    }
    [[nodiscard]] bool IsRight(std::size_t place) const noexcept { return source_[place] % 2 == 1; }
    void SetInPlace(std::size_t place) noexcept {
        source_[place] = static_cast<std::int32_t>(2 * place) + (IsRight(place) ? 1 : 0);
    }

    void MoveBlocks() noexcept {
        for (std::size_t first = 0; first < source_.size(); ++first) {
            if (Source(first) == first) continue;
            buffer_.PutRows(0, range_, first * size_, size_);
            std::size_t at = first;
            for (std::size_t from = Source(at); from != first; from = Source(at)) {
                range_.PutRows(at * size_, range_, from * size_, size_);
                SetInPlace(at);
                at = from;
            }
            range_.PutRows(at * size_, buffer_, 0, size_);
            SetInPlace(at);
        }
    }

    // What is not merged yet of the blocks so far stands right before the next block and is all
    // from one side. It fits in the buffer.
    void MergeNeighbours() noexcept {
        std::size_t begin = 0;
        bool isRight = IsRight(0);
        for (std::size_t place = 1; place < source_.size(); ++place) {
            const std::size_t split = place * size_;
            if (IsRight(place) == isRight) {
                begin = split;
                continue;
            }
            const KeyRange both = range_.Part(begin, split + size_);
            const Rest rest = MergeForward(both, split - begin, buffer_);
            begin = split + size_ - rest.left - rest.right;
            if (rest.left == 0) isRight = !isRight;
        }
    }

    KeyRange range_;
    KeyRange buffer_;
    std::span<std::int32_t> source_;
    std::size_t size_;
    std::size_t leftBlocks_;
};

constexpr std::size_t kMostBlockRows = 128;
// The rows of the buffer are no more than a run has.
static_assert(2 * kRowBytes / sizeof(std::int32_t) >= kLeastShare);

// Merges two neighbouring runs in place. `block` is cut into a buffer of rows and the sources of
// the blocks.
void MergeRuns(const KeyRange& range, std::size_t split, std::span<std::int32_t> block) noexcept {
    const std::size_t rows = std::min(kMostBlockRows, block.size_bytes() / (2 * kRowBytes));
    const KeyRange buffer = RowsIn(block, rows);

    // Whole blocks in the middle; a part block of the left run before them, one of the right run
    // behind.
    const std::size_t first = split % rows;
    const std::size_t end = range.count - (range.count - split) % rows;
    const std::size_t blocks = (end - first) / rows;
    const auto source = block.subspan(rows * kRowBytes / sizeof(std::int32_t), blocks);
    BlockMerge(range.Part(first, end), split - first, buffer, source).Run();
    MergeBackward(range.Part(first, range.count), end - first, buffer);
    (void)MergeForward(range, first, buffer);
}

}  // namespace

bool SortOneRun(const KeyRange& range) noexcept {
    const Run run = FindRun(range, 0);
    if (run.end < range.count) return false;
    if (run.isDescending) Reverse(range);
    return true;
}

bool SortLongRuns(const KeyRange& all, std::span<std::int32_t> block) noexcept {
    std::array<std::size_t, kMostRuns> ends{};
    std::size_t runs = 0;
    for (std::size_t begin = 0; begin < all.count; ++runs) {
        if (runs == kMostRuns) return false;
        const Run run = FindRun(all, begin);
        if ((run.end - begin) * kLeastShare < all.count) return false;
        if (run.isDescending) Reverse(all.Part(begin, run.end));
        ends[runs] = run.end;
        begin = run.end;
    }
    for (std::size_t run = 1; run < runs; ++run)
        MergeRuns(all.Part(0, ends[run]), ends[run - 1], block);
    return true;
}

}  // namespace corvale::internal
