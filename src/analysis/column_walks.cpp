#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>

#include "analysis/border_walks.h"
#include "analysis/document_mask.h"
#include "analysis/pixel_access.h"
#include "frame/scratch.h"

namespace vorlanepic {
namespace {

// 64 neighbouring columns with their walks. Bits stand for columns as in DocumentMask.
struct ColumnGroup {
  int32_t x;      // column of place 0
  int32_t count;  // columns inside the image
  uint64_t open;  // columns still walked
};

// Walks many columns at once, row by row over the groups that have open columns.
template <typename Pixel>
class ColumnSweep {
 public:
  ColumnSweep(const ImageRec& image, GreyBand levels, int32_t run, ColumnRange columns)
      : image_(image), document_(levels), run_(run), columns_(columns) {}

  // Takes the storage. False when there is none.
  bool Prepare() {
    const size_t groups =
        columns_.left > columns_.right
            ? 0
            : static_cast<size_t>((columns_.right - FirstColumn()) / kMaskPixels) + 1;
    return groups_.Allocate(groups) && runs_.Allocate(groups * static_cast<size_t>(run_));
  }

  void FromTop(const ScanBand& band, std::span<int32_t> borders) {
    Open(borders);
    for (int32_t y = band.top; y < band.bottom && openGroups_ > 0; ++y) {
      TakeRow(y, ~uint64_t{0}, y - run_ + 1, borders);
    }
  }

  // A run counts when its first row met is an even number of rows above the last of the band.
  void FromBottom(const ScanBand& band, std::span<int32_t> borders) {
    Open(borders);
    for (int32_t y = band.bottom; y > band.top && openGroups_ > 0; --y) {
      const int32_t start = y + run_ - 1;
      TakeRow(y, (band.bottom - start) % 2 == 0 ? ~uint64_t{0} : 0, start, borders);
    }
  }

 private:
  int32_t FirstColumn() const { return columns_.left & ~7; }

  void Open(std::span<int32_t> borders) {
    std::ranges::fill(borders, kNoBorder);
    std::ranges::fill(runs_.span(), uint64_t{0});
    openGroups_ = groups_.size();
    for (size_t i = 0; i < openGroups_; ++i) {
      ColumnGroup& group = groups_[i];
      group.x = FirstColumn() + static_cast<int32_t>(i) * kMaskPixels;
      group.count = std::min(kMaskPixels, image_.width - group.x);
      group.open = 0;
      for (int32_t bit = 0; bit < kMaskPixels; ++bit) {
        if (IsWalked(group.x + DocumentMask<Pixel>::PixelOf(bit))) group.open |= uint64_t{1} << bit;
      }
    }
  }

  bool IsWalked(int64_t x) const {
    return x >= columns_.left && x <= columns_.right && (columns_.right - x) % 2 == 0;
  }

  // Takes row y into the runs of all open columns; runs that are complete and lie under `counting`
  // give the border `border`.
  void TakeRow(int32_t y, uint64_t counting, int32_t border, std::span<int32_t> borders) {
    const uint8_t* row = image_.rows[y];
    size_t kept = 0;
    for (size_t i = 0; i < openGroups_; ++i) {
      ColumnGroup group = groups_[i];
      const uint64_t complete =
          ExtendRuns(RunsOf(i), document_(row, group.x, group.count)) & group.open & counting;
      if (complete != 0) {
        CloseColumns(group, complete, border, borders);
        group.open &= ~complete;
        if (group.open == 0) continue;
      }
      if (kept != i) std::ranges::copy(RunsOf(i), RunsOf(kept).begin());
      groups_[kept++] = group;
    }
    openGroups_ = kept;
  }

  // runs[k] marks the columns whose last k + 1 rows belong to the document.
  std::span<uint64_t> RunsOf(size_t i) {
    const auto run = static_cast<size_t>(run_);
    return runs_.span().subspan(i * run, run);
  }

  // Adds a row to the runs and returns the complete ones.
  static uint64_t ExtendRuns(std::span<uint64_t> runs, uint64_t mask) {
    for (size_t k = runs.size() - 1; k > 0; --k) runs[k] = runs[k - 1] & mask;
    runs[0] = mask;
    return runs.back();
  }

  void CloseColumns(const ColumnGroup& group, uint64_t complete, int32_t border,
                    std::span<int32_t> borders) const {
    for (; complete != 0; complete &= complete - 1) {
      const int32_t x = group.x + DocumentMask<Pixel>::PixelOf(std::countr_zero(complete));
      borders[static_cast<size_t>(columns_.right - x) / 2] = border;
    }
  }

  const ImageRec& image_;
  DocumentMask<Pixel> document_;
  int32_t run_;
  ColumnRange columns_;
  ScratchArray<ColumnGroup> groups_;  // the open ones first
  size_t openGroups_ = 0;
  ScratchArray<uint64_t> runs_;
};

}  // namespace

template <typename Pixel>
int32_t WalkColumns(const ImageRec& image, const ScanBand& band, GreyBand levels, int32_t run,
                    ColumnRange columns, ColumnBorders borders) {
  ColumnSweep<Pixel> sweep(image, levels, run, columns);
  if (!sweep.Prepare()) return OUT_OF_MEMORY;
  sweep.FromTop(band, borders.top);
  sweep.FromBottom(band, borders.bottom);
  return STATUS_OK;
}

template int32_t WalkColumns<Bit1>(const ImageRec&, const ScanBand&, GreyBand, int32_t, ColumnRange,
                                   ColumnBorders);
template int32_t WalkColumns<Grey8>(const ImageRec&, const ScanBand&, GreyBand, int32_t,
                                    ColumnRange, ColumnBorders);
template int32_t WalkColumns<Colour24>(const ImageRec&, const ScanBand&, GreyBand, int32_t,
                                       ColumnRange, ColumnBorders);

}  // namespace vorlanepic
