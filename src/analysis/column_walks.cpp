#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <span>

#include "analysis/border_walks.h"
#include "analysis/document_mask.h"
#include "analysis/pixel_access.h"
#include "frame/scratch.h"

namespace vorlanepic::analysis {
namespace {

// 64 neighbouring columns. Bits stand for columns as in DocumentMask.
struct ColumnGroup {
  int32_t x;      // column of place 0
  int32_t count;  // columns inside the image
  uint64_t open;  // columns still walked
};

// A way through the rows: step d of 0 .. steps - 1 is row `first` + d * `direction`. A run counts
// when the step at which it begins is a multiple of `stride`. Steps are counted in 64 bits, so that
// one may lie a run behind the last row of any image.
struct RowWay {
  int32_t first;
  int32_t direction;
  int64_t steps;
  int32_t stride;

  int32_t RowAt(int64_t step) const { return static_cast<int32_t>(first + step * direction); }
};

// Walks all columns of a range at once, row by row over the groups that have open columns. Of the
// background only every run-th row is looked at: a run holds one of those.
template <typename Pixel>
class ColumnSweep {
 public:
  ColumnSweep(const ImageRec& image, GreyBand levels, int32_t run, ColumnRange columns)
      : image_(image), document_(levels), run_(run), columns_(columns) {}

  // Takes the storage. False when there is none.
  bool Prepare() {
    const bool isEmpty = columns_.left > columns_.right;
    return groups_.Allocate(
        isEmpty ? 0 : static_cast<size_t>((columns_.right - FirstColumn()) / kMaskPixels) + 1);
  }

  void Walk(const RowWay& way, std::span<int32_t> borders) {
    Open(borders);
    for (int64_t probe = run_ - 1; probe < way.steps && openGroups_ > 0; probe += run_) {
      const uint8_t* row = image_.rows[way.RowAt(probe)];
      size_t kept = 0;
      for (size_t i = 0; i < openGroups_; ++i) {
        ColumnGroup group = groups_[i];
        if ((MaskOf(row, group) & group.open) != 0) TakeRunsAround(probe, way, &group, borders);
        if (group.open != 0) groups_[kept++] = group;
      }
      openGroups_ = kept;
    }
  }

 private:
  int32_t FirstColumn() const { return columns_.left & ~7; }

  uint64_t MaskOf(const uint8_t* row, const ColumnGroup& group) const {
    return document_(row, group.x, group.count);
  }

  void Open(std::span<int32_t> borders) {
    std::ranges::fill(borders, kNoBorder);
    openGroups_ = groups_.size();
    for (size_t i = 0; i < openGroups_; ++i) {
      ColumnGroup& group = groups_[i];
      group.x = FirstColumn() + static_cast<int32_t>(i) * kMaskPixels;
      group.count = std::min(kMaskPixels, image_.width - group.x);
      group.open = 0;
      for (int32_t bit = 0; bit < kMaskPixels; ++bit) {
        const int64_t x = int64_t{group.x} + DocumentMask<Pixel>::PixelOf(bit);
        if (IsWalked(x)) group.open |= uint64_t{1} << bit;
      }
    }
  }

  bool IsWalked(int64_t x) const {
    return x >= columns_.left && x <= columns_.right && (columns_.right - x) % 2 == 0;
  }

  // Closes the columns of a group that have a run which holds step `probe`.
  void TakeRunsAround(int64_t probe, const RowWay& way, ColumnGroup* group,
                      std::span<int32_t> borders) const {
    std::array<uint64_t, 2 * kLongestRun - 1> masks;
    const int64_t begin = probe - run_ + 1;
    const int64_t end = std::min(probe + run_, way.steps);
    for (int64_t step = begin; step < end; ++step) {
      masks[static_cast<size_t>(step - begin)] = MaskOf(image_.rows[way.RowAt(step)], *group);
    }
    for (int64_t start = begin; start + run_ <= end; ++start) {
      if (start % way.stride != 0) continue;
      uint64_t complete = group->open;
      const auto first = static_cast<size_t>(start - begin);
      for (const uint64_t mask : std::span(masks).subspan(first, static_cast<size_t>(run_))) {
        complete &= mask;
      }
      CloseColumns(group, complete, way.RowAt(start), borders);
    }
  }

  void CloseColumns(ColumnGroup* group, uint64_t columns, int32_t border,
                    std::span<int32_t> borders) const {
    group->open &= ~columns;
    for (; columns != 0; columns &= columns - 1) {
      const int32_t x = group->x + DocumentMask<Pixel>::PixelOf(std::countr_zero(columns));
      borders[static_cast<size_t>(columns_.right - x) / 2] = border;
    }
  }

  const ImageRec& image_;
  DocumentMask<Pixel> document_;
  int32_t run_;
  ColumnRange columns_;
  frame::ScratchArray<ColumnGroup> groups_;  // the open ones first
  size_t openGroups_ = 0;
};

}  // namespace

template <typename Pixel>
int32_t WalkColumns(const ImageRec& image, const frame::PixelRect& band, GreyBand levels,
                    int32_t run, ColumnRange columns, ColumnBorders borders) {
  ColumnSweep<Pixel> sweep(image, levels, run, columns);
  if (!sweep.Prepare()) return OUT_OF_MEMORY;
  const int32_t steps = band.bottom - band.top;
  sweep.Walk({band.top, 1, steps, 1}, borders.top);
  sweep.Walk({band.bottom, -1, steps, 2}, borders.bottom);
  return STATUS_OK;
}

template int32_t WalkColumns<Bit1>(const ImageRec&, const frame::PixelRect&, GreyBand, int32_t,
                                   ColumnRange, ColumnBorders);
template int32_t WalkColumns<Grey8>(const ImageRec&, const frame::PixelRect&, GreyBand, int32_t,
                                    ColumnRange, ColumnBorders);
template int32_t WalkColumns<Colour24>(const ImageRec&, const frame::PixelRect&, GreyBand, int32_t,
                                       ColumnRange, ColumnBorders);

}  // namespace vorlanepic::analysis
