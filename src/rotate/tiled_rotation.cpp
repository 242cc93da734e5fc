#include "rotate/tiled_rotation.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace vorlanepic {
namespace {

constexpr int32_t kTileRows = 16;
// A mixed rectangle of this size is looked at pixel by pixel.
constexpr int32_t kLeafColumns = 8;
constexpr int32_t kLeafRows = 2;

// Steps up to which offsets, and source coordinates with them, stay far inside the int32 range.
constexpr int32_t kMostSteps = 10'000'000;

// a / b cut downward, b > 0.
int32_t FloorDivide(int32_t a, int32_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// One bit for each column of a tile row.
struct ColumnSet {
  uint64_t words[kStripColumns / 64];

  void Add(int32_t first, int32_t last) {
    for (int32_t i = first; i <= last;) {
      const int32_t end = std::min(last, i | 63);
      words[i >> 6] |= ~uint64_t{0} >> (63 - (end - i)) << (i & 63);
      i = end + 1;
    }
  }

  // The first column from `from` on that is in the set, or, for `wanted` false, that is not; at
  // most `end`.
  int32_t Find(bool wanted, int32_t from, int32_t end) const {
    while (from < end) {
      const uint64_t word = (wanted ? words[from >> 6] : ~words[from >> 6]) >> (from & 63);
      if (word != 0) return std::min(end, from + std::countr_zero(word));
      from = (from | 63) + 1;
    }
    return end;
  }
};

// Calls visit(first, last) for each run of columns in [0, end) of the set, or outside it.
template <typename Visit>
void ForEachRun(const ColumnSet& set, bool wanted, int32_t end, Visit visit) {
  for (int32_t first = set.Find(wanted, 0, end); first < end;) {
    const int32_t stop = set.Find(!wanted, first, end);
    visit(first, stop - 1);
    first = set.Find(wanted, stop, end);
  }
}

// The first of first..last whose offset has another sign than that of `first`; last + 1 when there
// is none. offsetOf is monotone.
template <typename OffsetOf>
int32_t FindSignChange(int32_t first, int32_t last, OffsetOf offsetOf) {
  const bool isNegative = offsetOf(first) < 0;
  if ((offsetOf(last) < 0) == isNegative) return last + 1;
  while (last - first > 1) {
    const int32_t middle = first + (last - first) / 2;
    ((offsetOf(middle) < 0) == isNegative ? first : last) = middle;
  }
  return last;
}

}  // namespace

// Which pixels of a tile lie in the region, and which have all their taps there.
class TiledRotation::TileMap {
 public:
  explicit TileMap(const OutputRect& tile) : tile_(tile) {}

  void AddInner(const OutputRect& rect) {
    for (int32_t y = rect.top; y <= rect.bottom; ++y) {
      inside_[y - tile_.top].Add(rect.left - tile_.left, rect.right - tile_.left);
      inner_[y - tile_.top].Add(rect.left - tile_.left, rect.right - tile_.left);
    }
  }
  void AddEdgePixel(int32_t x, int32_t y) {
    inside_[y - tile_.top].Add(x - tile_.left, x - tile_.left);
  }

  const OutputRect& tile() const { return tile_; }
  const ColumnSet& InsideOf(int32_t y) const { return inside_[y - tile_.top]; }
  const ColumnSet& InnerOf(int32_t y) const { return inner_[y - tile_.top]; }

 private:
  OutputRect tile_;
  ColumnSet inside_[kTileRows] = {};
  ColumnSet inner_[kTileRows] = {};
};

bool TiledRotation::Suits(const RotateJob& job) {
  if (!std::isfinite(job.turn.angle)) return false;
  if (std::max(job.halfWidth(), job.halfHeight()) > kMostSteps) return false;
  const ImageRec& source = job.source;
  for (int32_t y = 0; y < source.height; ++y) {
    if (source.rows[y] != source.pixels + static_cast<ptrdiff_t>(y) * source.lineBytes)
      return false;
  }
  return true;
}

TiledRotation::TiledRotation(const RotateJob& job)
    : job_(job),
      rule_(PixelRuleOf(job.source.bitsPerPixel, job.turn.interpolation)),
      kernel_(RotateKernels().For(rule_.kind)) {
  // Steps k apart differ by at most the k-th entry and 2; 99 is the most that the first one lies
  // behind a whole pixel.
  rowsOfEight_ = std::max(1, (std::abs(job.steps.Sin(7)) + 101) / 100);
  rowsOfFour_ = std::max(1, (std::abs(job.steps.Sin(3)) + 101) / 100);
  // Whole rows below the last tap, so that reading on stays in the pixel block.
  const int32_t lineBytes = job.source.lineBytes;
  const int32_t rowsBehind = rowsOfEight_ + (kReadAhead + lineBytes - 1) / lineBytes;
  lastSafeRow_ = std::min(job.region.bottom, job.source.height - 1 - rowsBehind);
}

bool TiledRotation::Build() {
  const auto width = static_cast<size_t>(job_.turn.outWidth);
  if (!index_.Build(job_.region, job_.source.width) || !stepX_.Allocate(width) ||
      !stepY_.Allocate(width)) {
    return false;
  }
  for (size_t x = 0; x < width; ++x) {
    const int32_t dx = static_cast<int32_t>(x) - job_.halfWidth();
    stepX_[x] = static_cast<uint16_t>(job_.steps.Cos(dx));
    stepY_[x] = static_cast<uint16_t>(-job_.steps.Sin(dx));
  }
  return true;
}

int32_t TiledRotation::OffsetX(int32_t x, int32_t y) const {
  return job_.steps.Cos(x - job_.halfWidth()) + job_.steps.Sin(y - job_.halfHeight());
}

int32_t TiledRotation::OffsetY(int32_t x, int32_t y) const {
  return job_.steps.Cos(y - job_.halfHeight()) - job_.steps.Sin(x - job_.halfWidth());
}

// Steps are monotone along either axis, so the extremes lie at the corners.
SourceRect TiledRotation::BasePixelsOf(const OutputRect& rect) const {
  const auto [leastX, greatestX] =
      std::minmax({OffsetX(rect.left, rect.top), OffsetX(rect.right, rect.top),
                   OffsetX(rect.left, rect.bottom), OffsetX(rect.right, rect.bottom)});
  const auto [leastY, greatestY] =
      std::minmax({OffsetY(rect.left, rect.top), OffsetY(rect.right, rect.top),
                   OffsetY(rect.left, rect.bottom), OffsetY(rect.right, rect.bottom)});
  return {job_.turn.centerX + leastX / 100, job_.turn.centerX + greatestX / 100,
          job_.turn.centerY + leastY / 100, job_.turn.centerY + greatestY / 100};
}

bool TiledRotation::HoldsTapsOf(const SourceRect& basePixels) const {
  if (basePixels.top - rule_.reach < job_.region.top) return false;
  if (basePixels.bottom + rule_.reach > lastSafeRow_) return false;
  return index_.Holds({basePixels.left - rule_.reach, basePixels.right + rule_.reach,
                       basePixels.top, basePixels.bottom});
}

void TiledRotation::RotateRows(int32_t first, int32_t last) const {
  const ImageRec& target = job_.target;
  const int32_t rowBytes = target.bitsPerPixel == 1 ? 0 : target.width;
  for (int32_t top = first; top <= last; top += kTileRows) {
    const int32_t bottom = std::min(last, top + kTileRows - 1);
    if (target.bitsPerPixel != 24) {
      // Row padding, and at 1 bit all bytes, because runs rarely begin or end with one.
      for (int32_t y = top; y <= bottom; ++y) {
        std::memset(target.rows[y] + rowBytes, job_.fill[0],
                    static_cast<size_t>(target.lineBytes - rowBytes));
      }
    }
    for (int32_t left = 0; left < target.width; left += kStripColumns) {
      const int32_t right = std::min(target.width, left + kStripColumns) - 1;
      RotateTile({left, right, top, bottom});
    }
  }
}

void TiledRotation::RotateTile(const OutputRect& tile) const {
  if (HoldsTapsOf(BasePixelsOf(tile))) {
    for (int32_t y = tile.top; y <= tile.bottom; ++y) RotateInnerRun(y, tile.left, tile.right);
    return;
  }
  TileMap map(tile);
  MapRect(tile, map);
  for (int32_t y = tile.top; y <= tile.bottom; ++y) RotateMappedRow(map, y);
}

void TiledRotation::MapRect(const OutputRect& rect, TileMap& map) const {
  const SourceRect basePixels = BasePixelsOf(rect);
  if (index_.Misses(basePixels)) return;
  if (HoldsTapsOf(basePixels)) return map.AddInner(rect);

  const int32_t width = rect.right - rect.left + 1;
  const int32_t height = rect.bottom - rect.top + 1;
  if (width <= kLeafColumns && height <= kLeafRows) return MapPixels(rect, map);
  OutputRect first = rect;
  OutputRect second = rect;
  if (width * kLeafRows > height * kLeafColumns) {
    first.right = rect.left + width / 2 - 1;
    second.left = first.right + 1;
  } else {
    first.bottom = rect.top + height / 2 - 1;
    second.top = first.bottom + 1;
  }
  MapRect(first, map);
  MapRect(second, map);
}

void TiledRotation::MapPixels(const OutputRect& rect, TileMap& map) const {
  for (int32_t y = rect.top; y <= rect.bottom; ++y) {
    for (int32_t x = rect.left; x <= rect.right; ++x) {
      const SourcePoint point = SourcePointOf(job_, x, y);
      if (!IsInRegion(job_, point)) continue;
      if (HoldsTapsOf({point.baseX, point.baseX, point.baseY, point.baseY})) {
        map.AddInner({x, x, y, y});
      } else {
        map.AddEdgePixel(x, y);
      }
    }
  }
}

void TiledRotation::RotateMappedRow(const TileMap& map, int32_t y) const {
  const int32_t left = map.tile().left;
  const int32_t end = map.tile().right - left + 1;
  const ColumnSet& inside = map.InsideOf(y);
  const ColumnSet& inner = map.InnerOf(y);
  if (rule_.bitsPerPixel != 1) {
    ForEachRun(inside, false, end, [&](int32_t first, int32_t last) {
      FillPixels(job_, job_.target.rows[y], left + first, left + last);
    });
  }
  ForEachRun(inner, true, end,
             [&](int32_t first, int32_t last) { RotateInnerRun(y, left + first, left + last); });
  ColumnSet edge = inside;
  for (size_t i = 0; i < std::size(edge.words); ++i) edge.words[i] &= ~inner.words[i];
  ForEachRun(edge, true, end,
             [&](int32_t first, int32_t last) { SamplePixels(y, left + first, left + last); });
}

void TiledRotation::RotateInnerRun(int32_t y, int32_t first, int32_t last) const {
  while (first <= last) {
    const int32_t endX = FindSignChange(first, last, [&](int32_t x) { return OffsetX(x, y); });
    const int32_t end = FindSignChange(first, endX - 1, [&](int32_t x) { return OffsetY(x, y); });
    RotateOneSidedRun(y, first, end - 1);
    first = end;
  }
}

void TiledRotation::RotateOneSidedRun(int32_t y, int32_t first, int32_t last) const {
  int32_t runFirst = first;
  int32_t runEnd = last + 1;
  if (rule_.bitsPerPixel == 1) {
    runFirst = (first + 7) & ~7;
    runEnd = runEnd & ~7;
  }
  if (runEnd - runFirst < kShortestRun) return SamplePixels(y, first, last);
  SamplePixels(y, first, runFirst - 1);
  RunKernelOn(y, runFirst, runEnd - 1);
  SamplePixels(y, runEnd, last);
}

void TiledRotation::RunKernelOn(int32_t y, int32_t first, int32_t last) const {
  const int32_t firstX = OffsetX(first, y);
  const int32_t lastX = OffsetX(last, y);
  const int32_t firstY = OffsetY(first, y);
  const int32_t lastY = OffsetY(last, y);
  const int32_t raiseX = firstX < 0 ? rule_.negativeRaise : 0;
  const int32_t raiseY = firstY < 0 ? rule_.negativeRaise : 0;
  const int32_t columnsOff = FloorDivide(std::min(firstX, lastX) + raiseX, 100);
  const int32_t rowsOff = FloorDivide(std::min(firstY, lastY) + raiseY, 100);
  const auto column = static_cast<size_t>(job_.turn.centerX + columnsOff);
  const auto row = static_cast<size_t>(job_.turn.centerY + rowsOff);
  const auto bits = static_cast<size_t>(rule_.bitsPerPixel);

  PixelRun run{};
  const auto x = static_cast<size_t>(first);
  run.origin = job_.source.rows[row] + column * bits / 8;
  run.originBit = rule_.bitsPerPixel == 1 ? static_cast<int32_t>(column % 8) : 0;
  run.sourceLine = job_.source.lineBytes;
  run.stepX = &stepX_[x];
  run.stepY = &stepY_[x];
  run.startX = static_cast<uint16_t>(firstX + raiseX - columnsOff * 100 - stepX_[x]);
  run.startY = static_cast<uint16_t>(firstY + raiseY - rowsOff * 100 - stepY_[x]);
  run.isFallingX = lastX < firstX;
  run.isFallingY = lastY < firstY;
  run.rowsOfEight = rowsOfEight_;
  run.rowsOfFour = rowsOfFour_;
  run.out = job_.target.rows[y] + x * bits / 8;
  run.count = last - first + 1;
  kernel_(run);
}

void TiledRotation::SamplePixels(int32_t y, int32_t first, int32_t last) const {
  for (int32_t x = first; x <= last; ++x) {
    rule_.sample(job_, SourcePointOf(job_, x, y), job_.target.rows[y], x);
  }
}

}  // namespace vorlanepic
