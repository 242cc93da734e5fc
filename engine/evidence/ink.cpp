#include "engine/evidence/ink.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::ScratchArray;

constexpr int32_t kBefore = kInkWindow / 2;           // pixels of the window before its middle
constexpr int32_t kAfter = kInkWindow - kBefore - 1;  // and behind it
// Pixels at the picture's edge where ink is not looked for when the page's sides are not known.
constexpr int32_t kFrameInset = 4;

// Box sums of 16 x 16 pixels, a row at a time. Sums fit 16 bits: 256 * 255.
class BoxSums {
 public:
  explicit BoxSums(const ReducedPicture& picture) : picture_(picture) {}

  bool Prepare() {
    const auto padded = static_cast<size_t>(picture_.width) + kInkWindow;
    if (!columns_.Allocate(padded) || !work_.Allocate(padded)) return false;
    for (int32_t y = -kBefore; y <= kAfter; ++y) AddRow(y);
    return true;
  }

  // Sums of the windows of the next row, one for each pixel; the first call gives row 0.
  const uint16_t* Next() {
    if (row_ > 0) MoveDown();
    ++row_;
    PadColumns();
    const int32_t count = picture_.width + kInkWindow;
    uint16_t* out = work_.data();
    std::memcpy(out, columns_.data(), static_cast<size_t>(count) * sizeof *out);
    // Doubling: after each pass an entry is the sum of twice as many columns.
    for (int32_t step = 1; step < kInkWindow; step *= 2) {
      const int32_t end = count - 2 * step + 1;
      for (int32_t x = 0; x < end; ++x) out[x] = static_cast<uint16_t>(out[x] + out[x + step]);
    }
    return out;
  }

 private:
  const uint8_t* ClampedRow(int32_t y) const {
    return picture_.Row(std::clamp(y, 0, picture_.height - 1));
  }

  void AddRow(int32_t y) {
    const uint8_t* row = ClampedRow(y);
    uint16_t* sums = columns_.data() + kBefore;
    for (int32_t x = 0; x < picture_.width; ++x) sums[x] = static_cast<uint16_t>(sums[x] + row[x]);
  }

  void MoveDown() {
    const uint8_t* gone = ClampedRow(row_ - kBefore - 1);
    const uint8_t* come = ClampedRow(row_ + kAfter);
    uint16_t* sums = columns_.data() + kBefore;
    for (int32_t x = 0; x < picture_.width; ++x) {
      sums[x] = static_cast<uint16_t>(sums[x] + come[x] - gone[x]);
    }
  }

  void PadColumns() {
    uint16_t* sums = columns_.data();
    std::fill_n(sums, kBefore, sums[kBefore]);
    std::fill_n(sums + kBefore + picture_.width, kInkWindow - kBefore,
                sums[kBefore + picture_.width - 1]);
  }

  const ReducedPicture& picture_;
  int32_t row_ = 0;
  ScratchArray<uint16_t> columns_;  // sums down the columns, from column -kBefore on
  ScratchArray<uint16_t> work_;
};

// Clears everything that hangs together, by sides or corners, with the ink at the edge of the
// inner part of the picture: the page's own outline, the dark of a surround, a neighbour's print.
class EdgeInkRemover {
 public:
  explicit EdgeInkRemover(InkPicture* ink) : ink_(*ink) {}

  bool Remove() {
    const int32_t right = ink_.width - 1 - kFrameInset;
    const int32_t bottom = ink_.height - 1 - kFrameInset;
    for (int32_t x = kFrameInset; x <= right; ++x) {
      if (!Flood(x, kFrameInset) || !Flood(x, bottom)) return false;
    }
    for (int32_t y = kFrameInset; y <= bottom; ++y) {
      if (!Flood(kFrameInset, y) || !Flood(right, y)) return false;
    }
    return true;
  }

 private:
  struct Place {
    int32_t x;
    int32_t y;
  };

  bool Flood(int32_t x, int32_t y) {
    if (!Push(x, y)) return false;
    while (used_ > 0) {
      const Place place = stack_[--used_];
      for (int32_t dy = -1; dy <= 1; ++dy) {
        for (int32_t dx = -1; dx <= 1; ++dx) {
          if (!Push(place.x + dx, place.y + dy)) return false;
        }
      }
    }
    return true;
  }

  bool Push(int32_t x, int32_t y) {
    if (x < 0 || y < 0 || x >= ink_.width || y >= ink_.height) return true;
    uint8_t* pixel = ink_.Row(y) + x;
    if (*pixel == 0) return true;
    *pixel = 0;
    if (used_ == stack_.size() && !stack_.Grow(used_ + 4096)) return false;
    stack_[used_++] = {x, y};
    return true;
  }

  InkPicture& ink_;
  ScratchArray<Place> stack_;
  size_t used_ = 0;
};

}  // namespace

bool FindInk(const ReducedPicture& picture, std::span<const HalfPlane> region, InkPicture* ink) {
  ink->width = picture.width;
  ink->height = picture.height;
  ink->stride = (static_cast<size_t>(picture.width) + 7) & ~size_t{7};
  if (!ink->pixels.Allocate(ink->stride * static_cast<size_t>(picture.height))) return false;
  if (picture.width <= 2 * kFrameInset || picture.height <= 2 * kFrameInset) return true;

  const HalfPlane inner[] = {{1, 0, kFrameInset},
                             {-1, 0, -(picture.width - 1.0 - kFrameInset)},
                             {0, 1, kFrameInset},
                             {0, -1, -(picture.height - 1.0 - kFrameInset)}};
  BoxSums sums(picture);
  if (!sums.Prepare()) return false;
  for (int32_t y = 0; y < picture.height; ++y) {
    const uint16_t* around = sums.Next();
    const ColumnSpan columns =
        RowOfRegion(region.empty() ? std::span<const HalfPlane>(inner) : region, y, picture.width);
    const uint8_t* levels = picture.Row(y);
    uint8_t* out = ink->Row(y);
    for (int32_t x = columns.from; x < columns.to; ++x) {
      out[x] = static_cast<uint8_t>((around[x] >> 8) >= levels[x] + kInkDepth);
    }
  }
  return !region.empty() || EdgeInkRemover(ink).Remove();
}

}  // namespace vorlane::evidence
