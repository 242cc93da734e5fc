#include "omr/sheet_area.h"

#include <algorithm>

namespace vorlanepic::omr {
namespace {

// Counts of light pixels in neighbouring columns, taken row by row so that memory is walked in its
// order.
class ColumnStrip {
 public:
  static constexpr int32_t kColumns = 64;

  bool Covers(int32_t x) const { return x >= first_ && x < end_; }
  int32_t At(int32_t x) const { return counts_[x - first_]; }

  // Counts columns first .. first + kColumns - 1, as far as the image has them, in which pixels
  // from `darkestLight` on up are light.
  void Count(const GreyView& image, uint8_t darkestLight, int32_t first) {
    first_ = std::max(first, 0);
    end_ = image.width - first_ > kColumns ? first_ + kColumns : image.width;
    std::fill_n(counts_, kColumns, 0);
    for (int32_t y = 0; y < image.height; y += kRowsAtOnce) {
      const int32_t rows = std::min(image.height - y, kRowsAtOnce);
      AddRows(image, darkestLight, y, rows);
      if (rows < kRowsAtOnce) break;
    }
  }

 private:
  static constexpr int32_t kRowsAtOnce = 255;  // what a byte can count

  void AddRows(const GreyView& image, uint8_t darkestLight, int32_t y, int32_t rows) {
    uint8_t counted[kColumns] = {};
    const int32_t columns = end_ - first_;
    for (int32_t i = 0; i < rows; ++i) {
      const uint8_t* row = image.Row(y + i) + first_;
      for (int32_t k = 0; k < columns; ++k) {
        counted[k] = static_cast<uint8_t>(counted[k] + (row[k] >= darkestLight));
      }
    }
    for (int32_t k = 0; k < columns; ++k) counts_[k] += counted[k];
  }

  int32_t first_ = 0;
  int32_t end_ = 0;
  int32_t counts_[kColumns];
};

// The lines of an image, tested for enough light pixels.
class LightLines {
 public:
  LightLines(const GreyView& image, int32_t threshold, int32_t count)
      : image_(image),
        anyLight_(threshold < 255),
        darkestLight_(static_cast<uint8_t>(std::clamp(threshold, -1, 254) + 1)),
        count_(count) {}

  // The first line with enough light pixels among start, start + step, ...; 0 when there is none.
  int32_t FirstRow(int64_t start, int32_t step) const {
    for (int64_t y = start; y >= 0 && y < image_.height; y += step) {
      if (RowCount(static_cast<int32_t>(y)) >= count_) return static_cast<int32_t>(y);
    }
    return 0;
  }

  int32_t FirstColumn(int64_t start, int32_t step) const {
    ColumnStrip strip;
    for (int64_t at = start; at >= 0 && at < image_.width; at += step) {
      const auto x = static_cast<int32_t>(at);
      if (!strip.Covers(x)) {
        strip.Count(image_, darkestLight_, step > 0 ? x : x - ColumnStrip::kColumns + 1);
      }
      if ((anyLight_ ? strip.At(x) : 0) >= count_) return x;
    }
    return 0;
  }

 private:
  int32_t RowCount(int32_t y) const {
    if (!anyLight_) return 0;
    const uint8_t* row = image_.Row(y);
    int32_t light = 0;
    for (int32_t x = 0; x < image_.width; ++x) light += row[x] >= darkestLight_;
    return light;
  }

  const GreyView& image_;
  bool anyLight_;
  uint8_t darkestLight_;
  int32_t count_;
};

}  // namespace

bool FindSheetArea(const GreyView& image, int32_t threshold, int32_t count,
                   frame::PixelRect* area) {
  const LightLines lines(image, threshold, count);
  area->top = lines.FirstRow(0, 2);
  area->bottom = lines.FirstRow(int64_t{image.height} - 2, -2);
  area->left = lines.FirstColumn(0, 2);
  area->right = lines.FirstColumn(int64_t{image.width} - 1, -2);
  return area->top < area->bottom && area->left < area->right;
}

}  // namespace vorlanepic::omr
