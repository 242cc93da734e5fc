#include "rotate/tiled_rotation.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vorlanepic::rotate {
namespace {

constexpr int32_t kTileRows = 16;
// Output rows by which the source is fetched ahead of its use: 4 left the kernels waiting for
// memory at 10 degrees, more than 16 gained nothing.
constexpr int32_t kRowsAhead = 16;
// Pixels by which a smooth border moves from one output row to the next, at most as a rule, and
// how far the rest of its move is searched one by one.
constexpr int32_t kBorderStep = 2;
constexpr int32_t kMostGrowth = 16;

// Steps up to which offsets stay far inside the int32 range, and sides of a source up to which
// coordinates that lie as far outside it do, with room for a strip of columns or two.
constexpr int32_t kMostSteps = 10'000'000;
constexpr int32_t kMostSide = INT32_MAX - 3 * kMostSteps;

// a / b cut downward, b > 0.
int32_t FloorDivide(int32_t a, int32_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// The byte of a row that holds pixel x, or its first one.
size_t ByteOf(const PixelRule& rule, int32_t x) {
  const auto pixels = static_cast<size_t>(x);
  return rule.bitsPerPixel == 1 ? pixels / 8 : pixels * static_cast<size_t>(rule.bitsPerPixel / 8);
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

// Writes one row of a tile from left to right, and joins inner pixels that come in pieces.
class TiledRotation::RowWriter {
 public:
  RowWriter(const TiledRotation& rotation, int32_t y) : rotation_(rotation), y_(y) {}

  // Looks at columns first..last, halving them until each part is of one kind.
  void Visit(int32_t first, int32_t last);
  void AddInner(int32_t first, int32_t last);
  // Pixels whose base pixels lie in the region.
  void AddEdge(int32_t first, int32_t last) { rotation_.SamplePixels(y_, first, last); }
  // Writes what is held back. Returns the longest run of inner pixels.
  Columns Finish();

 private:
  void FlushInner();

  const TiledRotation& rotation_;
  const int32_t y_;
  Columns inner_;  // held back
  Columns longest_;
};

void TiledRotation::RowWriter::Visit(int32_t first, int32_t last) {
  if (first > last) return;
  const frame::PixelRect basePixels = rotation_.BasePixelsOf({first, last, y_, y_});
  if (rotation_.index_.Misses(basePixels)) {
    if (rotation_.rule_.bitsPerPixel == 1) return;  // the row was filled before
    FillPixels(rotation_.job_, rotation_.job_.target.rows[y_], first, last);
  } else if (rotation_.HoldsTapsOf(basePixels)) {
    AddInner(first, last);
  } else if (first == last) {
    rotation_.VisitPixel(y_, first);
  } else {
    const int32_t middle = first + (last - first) / 2;
    Visit(first, middle);
    Visit(middle + 1, last);
  }
}

void TiledRotation::RowWriter::AddInner(int32_t first, int32_t last) {
  if (inner_.count() > 0 && first == inner_.last + 1) {
    inner_.last = last;
    return;
  }
  FlushInner();
  inner_ = {first, last};
}

void TiledRotation::RowWriter::FlushInner() {
  if (inner_.count() > 0) rotation_.RotateInnerRun(y_, inner_.first, inner_.last);
  if (inner_.count() > longest_.count()) longest_ = inner_;
}

TiledRotation::Columns TiledRotation::RowWriter::Finish() {
  FlushInner();
  return longest_;
}

bool TiledRotation::Suits(const RotateJob& job) {
  if (!std::isfinite(job.turn.angle)) return false;
  if (std::max(job.halfWidth(), job.halfHeight()) > kMostSteps) return false;
  const ImageRec& source = job.source;
  if (std::max(source.width, source.height) > kMostSide) return false;
  for (int32_t y = 0; y < source.height; ++y) {
    const uint8_t* row = source.pixels + static_cast<ptrdiff_t>(y) * source.lineBytes;
    if (source.rows[y] != row) return false;
  }
  return true;
}

TiledRotation::TiledRotation(const RotateJob& job)
    : job_(job),
      rule_(PixelRuleOf(job.source.bitsPerPixel, job.turn.interpolation)),
      kernel_(RotateKernelFor(rule_.kind, job.steps)),
      rows_(RowsOfNeighbours(kernel_.neighbours, job.steps)) {
  // Unsigned, since what lies ahead may lie outside the source and its addresses.
  const int32_t rows = job.steps.Cos(10) * kRowsAhead / 1000;
  const int32_t bits = job.steps.Sin(10) * kRowsAhead / 1000 * job.source.bitsPerPixel;
  ahead_ = static_cast<uintptr_t>(rows) * static_cast<uintptr_t>(job.source.lineBytes) +
           static_cast<uintptr_t>(bits / 8);
  // Whole rows below the last tap, so that reading on stays in the pixel block.
  const int32_t lineBytes = job.source.lineBytes;
  const int32_t rowsBehind = rows_ + (kReadAhead + lineBytes - 1) / lineBytes;
  lastSafeRow_ = std::min(job.region.bottom, job.source.height - 1 - rowsBehind);
}

bool TiledRotation::Build() {
  const auto width = static_cast<size_t>(job_.turn.outWidth);
  if (!index_.Build(job_.region, job_.source.width) || !stepX_.Allocate(width + kMostNeighbours) ||
      !stepY_.Allocate(width + kMostNeighbours)) {
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
frame::PixelRect TiledRotation::OffsetsOf(const OutputRect& rect) const {
  const auto [leastX, greatestX] =
      std::minmax({OffsetX(rect.left, rect.top), OffsetX(rect.right, rect.top),
                   OffsetX(rect.left, rect.bottom), OffsetX(rect.right, rect.bottom)});
  const auto [leastY, greatestY] =
      std::minmax({OffsetY(rect.left, rect.top), OffsetY(rect.right, rect.top),
                   OffsetY(rect.left, rect.bottom), OffsetY(rect.right, rect.bottom)});
  return {leastX, greatestX, leastY, greatestY};
}

frame::PixelRect TiledRotation::BasePixelsOf(const OutputRect& rect) const {
  const frame::PixelRect offsets = OffsetsOf(rect);
  return {job_.turn.centerX + offsets.left / 100, job_.turn.centerX + offsets.right / 100,
          job_.turn.centerY + offsets.top / 100, job_.turn.centerY + offsets.bottom / 100};
}

bool TiledRotation::IsOneSided(const OutputRect& rect) const {
  const frame::PixelRect offsets = OffsetsOf(rect);
  return (offsets.left < 0) == (offsets.right < 0) && (offsets.top < 0) == (offsets.bottom < 0);
}

bool TiledRotation::HoldsTapsOf(const frame::PixelRect& basePixels) const {
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
  // Upright borders of a page leave narrow margins at the sides of a tile.
  constexpr int32_t kMargins[][2] = {{0, 0}, {4, 0}, {0, 4}, {4, 4}, {16, 0}, {0, 16}, {16, 16}};
  for (const auto& [before, behind] : kMargins) {
    const OutputRect inner = {tile.left + before, tile.right - behind, tile.top, tile.bottom};
    if (inner.right - inner.left < kShortestRun || !HoldsTapsOf(BasePixelsOf(inner))) continue;
    const bool isOneSided = IsOneSided(inner);
    for (int32_t y = tile.top; y <= tile.bottom; ++y) {
      VisitColumns(y, tile.left, inner.left - 1);
      if (isOneSided) {
        RotateOneSidedRun(y, inner.left, inner.right);
      } else {
        RotateInnerRun(y, inner.left, inner.right);
      }
      VisitColumns(y, inner.right + 1, tile.right);
    }
    return;
  }
  Columns likely;
  for (int32_t y = tile.top; y <= tile.bottom; ++y) {
    likely = RotateMixedRow(y, tile.left, tile.right, likely);
  }
}

void TiledRotation::VisitColumns(int32_t y, int32_t first, int32_t last) const {
  for (int32_t x = first; x <= last; ++x) VisitPixel(y, x);
}

// A pixel outside the region keeps, at 1 bit, what its row was filled with before.
void TiledRotation::VisitPixel(int32_t y, int32_t x) const {
  const SourcePoint point = SourcePointOf(job_, x, y);
  if (IsInRegion(job_, point)) {
    rule_.sample(job_, point, job_.target.rows[y], x);
  } else if (rule_.bitsPerPixel != 1) {
    FillPixels(job_, job_.target.rows[y], x, x);
  }
}

bool TiledRotation::IsInside(int32_t x, int32_t y) const {
  return IsInRegion(job_, SourcePointOf(job_, x, y));
}

bool TiledRotation::IsInner(int32_t x, int32_t y) const {
  const SourcePoint point = SourcePointOf(job_, x, y);
  return HoldsTapsOf({point.baseX, point.baseX, point.baseY, point.baseY});
}

// Columns left..right of row y, which lie partly in the region. `likely` are the inner pixels of
// the row before: where a border is smooth, those of this row begin and end close by. Returns them.
TiledRotation::Columns TiledRotation::RotateMixedRow(int32_t y, int32_t left, int32_t right,
                                                     const Columns& likely) const {
  RowWriter writer(*this, y);
  Columns inner = likely;
  if (inner.first > left) inner.first += kBorderStep;
  if (inner.last < right) inner.last -= kBorderStep;
  if (inner.count() < kShortestRun || !HoldsTapsOf(BasePixelsOf({inner.first, inner.last, y, y}))) {
    writer.Visit(left, right);
    return writer.Finish();
  }
  const int32_t leastFirst = std::max(left, inner.first - kMostGrowth);
  const int32_t mostLast = std::min(right, inner.last + kMostGrowth);
  while (inner.first > leastFirst && IsInner(inner.first - 1, y)) --inner.first;
  while (inner.last < mostLast && IsInner(inner.last + 1, y)) ++inner.last;
  // Pixels that touch the border follow on both sides, and then nothing of the region.
  Columns inside = inner;
  while (inside.first > leastFirst && IsInside(inside.first - 1, y)) --inside.first;
  while (inside.last < mostLast && IsInside(inside.last + 1, y)) ++inside.last;

  writer.Visit(left, inside.first - 1);
  writer.AddEdge(inside.first, inner.first - 1);
  writer.AddInner(inner.first, inner.last);
  writer.AddEdge(inner.last + 1, inside.last);
  writer.Visit(inside.last + 1, right);
  return writer.Finish();
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
  const int32_t column = job_.turn.centerX + columnsOff;
  const int32_t row = job_.turn.centerY + rowsOff;

  PixelRun run{};
  const auto x = static_cast<size_t>(first);
  run.origin = job_.source.rows[row] + ByteOf(rule_, column);
  run.originBit = rule_.bitsPerPixel == 1 ? column % 8 : 0;
  run.sourceLine = job_.source.lineBytes;
  run.stepX = &stepX_[x];
  run.stepY = &stepY_[x];
  run.startX = static_cast<uint16_t>(firstX + raiseX - columnsOff * 100 - stepX_[x]);
  run.startY = static_cast<uint16_t>(firstY + raiseY - rowsOff * 100 - stepY_[x]);
  run.isFallingX = lastX < firstX;
  run.isFallingY = lastY < firstY;
  run.rows = rows_;
  run.ahead = ahead_;
  run.out = job_.target.rows[y] + ByteOf(rule_, first);
  run.count = last - first + 1;
  kernel_.run(run);
}

void TiledRotation::SamplePixels(int32_t y, int32_t first, int32_t last) const {
  for (int32_t x = first; x <= last; ++x) {
    rule_.sample(job_, SourcePointOf(job_, x, y), job_.target.rows[y], x);
  }
}

}  // namespace vorlanepic::rotate
