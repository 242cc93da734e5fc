#include "app/services/block_listing.h"

#include <algorithm>
#include <queue>
#include <span>

#include "omr/foreground.h"
#include "omr/row_runs.h"
#include "omr/value_range.h"

namespace vorlane::services {
namespace {

namespace omr = vorlanepic::omr;
using omr::PixelRun;

// Connected components, diagonals included, of which only the last row's runs are known: union-find
// over the blocks that these belong to.
class BlockTracker {
 public:
  explicit BlockTracker(const BlockSink& sink) : sink_(sink) {}

  // Takes the next row's runs, each with the range of its values, and gives away what cannot grow
  // any more.
  void AddRow(int32_t y, std::span<PixelRun> runs, std::span<const omr::ValueRange> values) {
    Link(y, runs, values);
    above_.assign(runs.begin(), runs.end());
    for (PixelRun& run : above_) run.block = Root(run.block);
    FinishBefore(y);
  }

  // The sink wants no more.
  bool isStopped() const { return isStopped_; }

  void Finish() {
    above_.clear();
    FinishBefore(INT32_MAX);
  }

 private:
  struct Growing {
    Block block;
    int64_t sumX = 0;
    int64_t sumY = 0;
    int64_t order = 0;   // in which it was opened
    int32_t parent = 0;  // towards the block that it was merged into; its own: none
  };
  struct Finished {
    int64_t order;
    Block block;
    bool operator>(const Finished& other) const { return order > other.order; }
  };

  Growing& At(int32_t b) { return blocks_[static_cast<size_t>(b)]; }

  int32_t Root(int32_t b) {
    while (At(b).parent != b) b = At(b).parent = At(At(b).parent).parent;
    return b;
  }

  // The block of a run is that of the leftmost run above that it touches; others that it touches
  // are merged into it.
  void Link(int32_t y, std::span<PixelRun> runs, std::span<const omr::ValueRange> values) {
    size_t above = 0;
    for (size_t i = 0; i < runs.size(); ++i) {
      PixelRun& run = runs[i];
      while (above < above_.size() && above_[above].end < run.start) ++above;
      const bool isNew = above == above_.size() || above_[above].start > run.end;
      run.block = isNew ? Open(y) : Root(above_[above].block);
      while (!isNew && above + 1 < above_.size() && above_[above + 1].start <= run.end) {
        Merge(run.block, Root(above_[++above].block));
      }
      Add(y, run, values[i], &At(run.block));
    }
  }

  int32_t Open(int32_t y) {
    auto b = static_cast<int32_t>(blocks_.size());
    if (free_.empty()) {
      blocks_.emplace_back();
    } else {
      b = free_.back();
      free_.pop_back();
      At(b) = {};
    }
    At(b).parent = b;
    At(b).order = opened_++;
    At(b).block.top = y;
    open_.push_back(b);
    return b;
  }

  static void Add(int32_t y, const PixelRun& run, const omr::ValueRange& values, Growing* grown) {
    const int64_t length = omr::Length(run);
    Block& block = grown->block;
    block.left = std::min(block.left, run.start);
    block.right = std::max(block.right, run.end - 1);
    block.bottom = y;
    block.area += length;
    block.minLevel = std::min(block.minLevel, values.lowest);
    block.maxLevel = std::max(block.maxLevel, values.highest);
    grown->sumX += (int64_t{run.start} + run.end - 1) * length / 2;
    grown->sumY += y * length;
  }

  void Merge(int32_t survivor, int32_t other) {
    if (survivor == other) return;
    const Growing& from = At(other);
    Growing& to = At(survivor);
    to.block.left = std::min(to.block.left, from.block.left);
    to.block.top = std::min(to.block.top, from.block.top);
    to.block.right = std::max(to.block.right, from.block.right);
    to.block.area += from.block.area;
    to.block.minLevel = std::min(to.block.minLevel, from.block.minLevel);
    to.block.maxLevel = std::max(to.block.maxLevel, from.block.maxLevel);
    to.sumX += from.sumX;
    to.sumY += from.sumY;
    At(other).parent = survivor;
  }

  // Whatever has no run in row `y` is done. No run names a merged block any more.
  void FinishBefore(int32_t y) {
    int64_t first = INT64_MAX;  // of the blocks that grow on
    size_t kept = 0;
    for (const int32_t b : open_) {
      Growing& grown = At(b);
      if (grown.parent == b && grown.block.bottom == y) {
        first = std::min(first, grown.order);
        open_[kept++] = b;
        continue;
      }
      if (grown.parent == b) Put(grown);
      free_.push_back(b);
    }
    open_.resize(kept);
    for (; !waiting_.empty() && waiting_.top().order < first; waiting_.pop()) {
      isStopped_ = isStopped_ || !sink_(waiting_.top().block);
    }
  }

  void Put(const Growing& grown) {
    Block block = grown.block;
    block.centerX = static_cast<int32_t>(grown.sumX / block.area);
    block.centerY = static_cast<int32_t>(grown.sumY / block.area);
    waiting_.push({grown.order, block});
  }

  const BlockSink& sink_;
  std::vector<Growing> blocks_;
  std::vector<int32_t> free_;    // places in blocks_
  std::vector<int32_t> open_;    // blocks that may grow
  std::vector<PixelRun> above_;  // of the row before
  int64_t opened_ = 0;
  bool isStopped_ = false;
  std::priority_queue<Finished, std::vector<Finished>, std::greater<>> waiting_;
};

template <typename Foreground>
void Track(const Foreground& foreground, const uint8_t* pixels, int32_t width,
           const BlockMarkParam& param, const vorlanepic::frame::PixelRect& area,
           const BlockSink& sink) {
  const bool filters = omr::FiltersRuns(param);
  std::vector<PixelRun> runs(omr::MaxRuns(area.right - area.left + 1));
  std::vector<omr::ValueRange> values(runs.size());
  BlockTracker tracker(sink);
  for (int32_t y = area.top; y <= area.bottom && !tracker.isStopped(); ++y) {
    const uint8_t* row = pixels + int64_t{y} * width;
    size_t count = omr::CutRow(foreground, row, area.left, area.right, runs.data());
    if (filters) count = omr::FilterRuns(param, runs.data(), count);
    for (size_t i = 0; i < count; ++i) {
      const auto length = static_cast<size_t>(omr::Length(runs[i]));
      values[i] = omr::RangeOfMarked(foreground, row + runs[i].start, length);
    }
    tracker.AddRow(y, {runs.data(), count}, {values.data(), count});
  }
  tracker.Finish();
}

}  // namespace

bool ListBlocks(const std::vector<uint8_t>& grey, int32_t width, int32_t height,
                const BlockSearch& search, const BlockSink& sink) {
  vorlanepic::frame::PixelRect area{};
  if (!omr::ClipToImage(search.rect, width, height, &area)) return false;
  if (area.right < area.left) return true;
  if (search.isNonZero) {
    Track(omr::NonZeroPixels{}, grey.data(), width, search.runs, area, sink);
  } else {
    const auto threshold = static_cast<uint8_t>(search.threshold);
    Track(omr::DarkPixels{threshold}, grey.data(), width, search.runs, area, sink);
  }
  return true;
}

}  // namespace vorlane::services
