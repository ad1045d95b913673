#include <corvale/sorting/Ways.hpp>

#include <algorithm>
#include <array>

namespace corvale::internal {

namespace {

// More runs than these are left to the buckets, which then are as fast; so are runs shorter than
// this share of the keys. Bench: OrganPipe in bench/SortBench.cpp.
constexpr std::size_t kMostRuns = 4;
constexpr std::size_t kLeastShare = 16;
// In shorter ranges a search for runs gains less than it costs; bench: TwoLists and Random.
constexpr std::size_t kFewestKeys = 64;

struct Run {
    std::size_t end;
    bool isDescending;
};

// The longest run that begins at `first`. A last key alone counts as descending. Where equal keys have
// to stay in order, none descend.
Run FindRun(const KeyRange& all, std::size_t first, bool keepsOrder) noexcept {
    std::size_t end = first + 1;
    while (end < all.count && !IsLess(all.keys[end], all.keys[end - 1])) ++end;
    if (end > first + 1) return {end, false};

    if (keepsOrder)
        while (end < all.count && IsLess(all.keys[end], all.keys[end - 1])) ++end;
    else
        while (end < all.count && !IsLess(all.keys[end - 1], all.keys[end])) ++end;
    return {end, true};
}

void Reverse(const KeyRange& range) noexcept {
    std::reverse(range.keys, range.keys + range.count);
    std::reverse(range.companion, range.companion + range.count);
}

// Merges two neighbouring runs. Rows are written to blocks that are free, and at the end the blocks
// are put in order: each row is moved twice, and all reading and writing goes straight ahead.
//
// Free are at first three spare blocks, later those of the runs whose rows have all been read. As
// many rows are read as are written, so at most three blocks more are written than have been read as
// a whole: those read in part, and the one in which one run ends and the other begins. The rows of
// the right run behind its last whole block wait in a fourth spare block.
class RunMerge {
  public:
    static constexpr std::size_t kSpareBlocks = 4;

    // The last row of the left run, of `split` rows, is the last of all when they are merged.
    // `order` has an element for each block that begins in `range`.
    RunMerge(const KeyRange& range, std::size_t split, const KeyRange& buffer,
             std::span<std::int32_t> order) noexcept
        : range_(range),
          buffer_(buffer),
          order_(order),
          rows_(buffer.count / kSpareBlocks),
          split_(split),
          tail_(range.count - std::min(range.count % rows_, range.count - split)),
          right_(split),
          rightBlock_((split + rows_ - 1) / rows_) {}

    void Run() noexcept {
        for (std::size_t i = 1; i < kSpareBlocks; ++i) free_[frees_++] = order_.size() + i;
        buffer_.PutRows(0, range_, tail_, range_.count - tail_);
        for (std::size_t written = 0; left_ < split_;) {
            std::int32_t& block = order_[written / rows_];
            if (written % rows_ == 0) block = static_cast<std::int32_t>(free_[--frees_]);
            const KeyRange rows = RowsOf(static_cast<std::size_t>(block));
            written += Write(rows.Part(written % rows_, rows.count));
            for (; (leftBlock_ + 1) * rows_ <= left_; ++leftBlock_) free_[frees_++] = leftBlock_;
            for (; (rightBlock_ + 1) * rows_ <= right_; ++rightBlock_)
                free_[frees_++] = rightBlock_;
        }
        OrderBlocks();
    }

  private:
    // The blocks of the range, and behind them those of the buffer. The last one of the range may
    // have fewer rows; it is written only when blocks are put in order.
    [[nodiscard]] KeyRange RowsOf(std::size_t block) const noexcept {
        const bool isSpare = block >= order_.size();
        const KeyRange& all = isSpare ? buffer_ : range_;
        const std::size_t begin = (isSpare ? block - order_.size() : block) * rows_;
        return all.Part(begin, std::min(begin + rows_, all.count));
    }

    // Writes rows to `out` until it is full or one run goes on elsewhere; returns how many.
    std::size_t Write(const KeyRange& out) noexcept {
        const KeyRange left = range_.Part(left_, split_);
        const KeyRange right = right_ < tail_ ? range_.Part(right_, tail_)
                                              : buffer_.Part(right_ - tail_, range_.count - tail_);
        std::size_t rows = std::min(out.count, left.count);
        std::size_t fromRight = 0;
        if (right.count == 0) {
            out.PutRows(0, left, 0, rows);
        } else {
            rows = std::min(rows, right.count);
            fromRight = Merge(left, right, out.Part(0, rows));
        }
        left_ += rows - fromRight;
        right_ += fromRight;
        return rows;
    }

    // Fills `out`, which has no more rows than either run; returns how many are from the right one.
    // Which run is next depends on the keys, so a branch for it would be missed every other time:
    // 30 % of a merge. Bench: TwoLists, a million keys, in bench/SortBench.cpp.
    static std::size_t Merge(const KeyRange& left, const KeyRange& right,
                             const KeyRange& out) noexcept {
        std::size_t fromRight = 0;
        for (std::size_t i = 0; i < out.count; ++i) {
            const std::size_t fromLeft = i - fromRight;
            const std::uint64_t isRight =
                IsLess(right.keys[fromRight], left.keys[fromLeft]) ? 1 : 0;
            out.keys[i] = *Choose(isRight, right.keys + fromRight, left.keys + fromLeft);
            out.companion[i] =
                *Choose(isRight, right.companion + fromRight, left.companion + fromLeft);
            fromRight += isRight;
        }
        return fromRight;
    }

    // order_[i] is the block whose rows belong into block i. Chains of such blocks begin at one that
    // is free and end in the buffer, or are closed; those are opened by way of a spare block.
    void OrderBlocks() noexcept {
        if (split_ % rows_ != 0) free_[frees_++] = split_ / rows_;
        if (tail_ % rows_ == 0 && tail_ < range_.count) free_[frees_++] = tail_ / rows_;
        while (frees_ > 0) Fill(free_[--frees_]);
        for (std::size_t block = 0; block < order_.size(); ++block) {
            if (static_cast<std::size_t>(order_[block]) == block) continue;
            Copy(order_.size(), block);
            Fill(block);
        }
    }

    void Fill(std::size_t block) noexcept {
        for (const std::size_t first = block; block < order_.size();) {
            auto from = static_cast<std::size_t>(order_[block]);
            order_[block] = static_cast<std::int32_t>(block);
            if (from == first) from = order_.size();
            Copy(block, from);
            block = from;
        }
    }

    void Copy(std::size_t to, std::size_t from) const noexcept {
        const KeyRange target = RowsOf(to);
        target.PutRows(0, RowsOf(from), 0, target.count);
    }

    KeyRange range_;
    KeyRange buffer_;
    std::span<std::int32_t> order_;
    std::size_t rows_;      // of a block
    std::size_t split_;     // where the right run begins
    std::size_t tail_;      // where its rows begin that wait in the buffer
    std::size_t left_ = 0;  // the next row of each run
    std::size_t right_;
    std::size_t leftBlock_ = 0;  // the next block of each run to be free
    std::size_t rightBlock_;
    std::array<std::size_t, kSpareBlocks + 2> free_{};
    std::size_t frees_ = 0;
};

// The longest block; a shorter one leaves space for the order of all.
constexpr std::size_t kMostBlockRows = 1024;
constexpr std::size_t kKeysPerBlockRow = 64;

// Merges two neighbouring runs in `block`, but for the keys that are in place already.
void MergeRuns(const KeyRange& range, std::size_t split, std::span<std::int32_t> block) noexcept {
    const Key* const keys = range.keys;
    const std::size_t begin =
        static_cast<std::size_t>(std::upper_bound(keys, keys + split, keys[split], IsLess) - keys);
    if (begin == split) return;
    const std::size_t end = static_cast<std::size_t>(
        std::lower_bound(keys + split, keys + range.count, keys[split - 1], IsLess) - keys);

    const std::size_t rows = std::min(kMostBlockRows, block.size() / kKeysPerBlockRow);
    const KeyRange buffer = RowsIn(block, RunMerge::kSpareBlocks * rows);
    const auto order = block.subspan(buffer.count * kRowBytes / sizeof(std::int32_t),
                                     (end - begin + rows - 1) / rows);
    RunMerge(range.Part(begin, end), split - begin, buffer, order).Run();
}

// Sorts `all` where it consists of a few long runs, and says whether it did.
bool SortRuns(const KeyRange& all, std::span<std::int32_t> block, bool keepsOrder) noexcept {
    std::array<std::size_t, kMostRuns> ends{};
    std::size_t runs = 0;
    for (std::size_t begin = 0; begin < all.count; ++runs) {
        if (runs == kMostRuns) return false;
        const Run run = FindRun(all, begin, keepsOrder);
        if ((run.end - begin) * kLeastShare < all.count) return false;
        if (run.isDescending) Reverse(all.Part(begin, run.end));
        ends[runs] = run.end;
        begin = run.end;
    }
    for (std::size_t run = 1; run < runs; ++run)
        MergeRuns(all.Part(0, ends[run]), ends[run - 1], block);
    return true;
}

}  // namespace

bool SortOneRun(const KeyRange& range) noexcept {
    const Run run = FindRun(range, 0, false);
    if (run.end < range.count) return false;
    if (run.isDescending) Reverse(range);
    return true;
}

bool SortLongRuns(const KeyRange& all, std::span<std::int32_t> block) noexcept {
    return SortRuns(all, block, false);
}

bool SortShortRuns(const KeyRange& range) noexcept {
    if (range.count < kFewestKeys) return false;
    std::array<std::int32_t, 1024> block;
    return SortRuns(range, block, true);
}

}  // namespace corvale::internal
