#include "analysis/border_scan.h"

#include "analysis/border_walks.h"
#include "analysis/pixel_access.h"
#include "analysis/side_trace.h"
#include "frame/scratch.h"
#include "frame/settings.h"

namespace vorlanepic::analysis {
namespace {

bool IsInside(const frame::PixelRect& band, const ImageRec& image) {
  return band.left >= 0 && band.right < image.width && band.top >= 0 && band.bottom < image.height;
}

// Takes a border point unless the walk met none.
int32_t AddPoint(TraceBuilder* side, int32_t x, int32_t y) {
  return x == kNoBorder || y == kNoBorder ? STATUS_OK : side->Add({x, y});
}

// Closes both sides of a scan; BORDER_NOT_FOUND unless both kept something.
int32_t FinishSides(TraceBuilder* first, TraceBuilder* second) {
  for (TraceBuilder* side : {first, second}) {
    const int32_t status = side->Finish();
    if (status != STATUS_OK) return status;
  }
  return first->IsEmpty() || second->IsEmpty() ? BORDER_NOT_FOUND : STATUS_OK;
}

// Calls visit(point, segment index) for every point of the segments of `fullCount` points or more,
// in order. Points are counted off because the segments do not point at them yet.
template <typename Visit>
void ForEachFullPoint(SideTrace& trace, int32_t fullCount, Visit visit) {
  const frame::PixelPoint* point = trace.points.data();
  int32_t index = 0;
  for (const BorderSegment& segment : trace.list.view()) {
    if (segment.count >= fullCount) {
      for (int32_t i = 0; i < segment.count; ++i) visit(point[i], index);
    }
    point += segment.count;
    ++index;
  }
}

// Finds the point that lies farthest along `axis`, in direction -1 or 1 of it, starting from the
// limit that `extreme` holds there. The first of equal points wins; `last` follows the others.
void FindExtreme(SideTrace& side, int32_t fullCount, int32_t frame::PixelPoint::*axis,
                 int32_t direction, frame::PixelPoint* extreme, ExtremeSegments* segments) {
  segments->first = 0;
  ForEachFullPoint(side, fullCount, [&](frame::PixelPoint point, int32_t index) {
    const int32_t ahead = (point.*axis - extreme->*axis) * direction;
    if (ahead > 0) {
      *extreme = point;
      segments->first = index;
    }
    if (ahead >= 0) segments->last = index;
  });
}

// Unlike on the other sides the last of equal points wins.
void FindRightmost(SideTrace& right, int32_t fullCount, ExtremePoints* extremes) {
  extremes->rightmost.x = 0;
  extremes->rightSegments.first = 0;
  ForEachFullPoint(right, fullCount, [&](frame::PixelPoint point, int32_t index) {
    if (point.x < extremes->rightmost.x) return;
    extremes->rightmost = point;
    extremes->rightSegments = {index, index};
  });
}

template <typename Pixel>
int32_t TraceRows(const ImageRec& image, const frame::PixelRect& band, GreyBand levels, int32_t run,
                  TraceBuilder* left, TraceBuilder* right) {
  for (int64_t row = band.top; row <= band.bottom; row += 2) {
    const auto y = static_cast<int32_t>(row);
    int32_t status = AddPoint(left, WalkFromLeft<Pixel>(image.rows[y], band, levels, run), y);
    if (status != STATUS_OK) return status;
    status = AddPoint(right, WalkFromRight<Pixel>(image.rows[y], band, levels, run), y);
    if (status != STATUS_OK) return status;
  }
  return FinishSides(left, right);
}

template <typename Pixel>
int32_t TraceColumns(const ImageRec& image, const frame::PixelRect& band, GreyBand levels,
                     int32_t run, ColumnRange columns, TraceBuilder* top, TraceBuilder* bottom) {
  frame::ScratchArray<int32_t> topRows;
  frame::ScratchArray<int32_t> bottomRows;
  if (!topRows.Allocate(columns.count()) || !bottomRows.Allocate(columns.count())) {
    return OUT_OF_MEMORY;
  }
  int32_t status =
      WalkColumns<Pixel>(image, band, levels, run, columns, {topRows.span(), bottomRows.span()});
  if (status != STATUS_OK) return status;

  for (size_t i = 0; i < columns.count(); ++i) {
    const int32_t x = columns.right - 2 * static_cast<int32_t>(i);
    status = AddPoint(top, x, topRows[i]);
    if (status != STATUS_OK) return status;
    status = AddPoint(bottom, x, bottomRows[i]);
    if (status != STATUS_OK) return status;
  }
  return FinishSides(top, bottom);
}

}  // namespace

int32_t ScanRows(const frame::Settings& settings, const ImageRec& image,
                 const frame::PixelRect& band, GreyBand levels, SideTrace* left, SideTrace* right,
                 ExtremePoints* extremes) {
  int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;
  if (!IsInside(band, image)) return BAD_ARGUMENT;

  TraceBuilder leftSide(settings);
  TraceBuilder rightSide(settings);
  status = WithDepth(image.bitsPerPixel, [&](auto pixel) {
    return TraceRows<decltype(pixel)>(image, band, levels, settings.SearchBorderPixelNum, &leftSide,
                                      &rightSide);
  });
  if (status != STATUS_OK) return status;

  extremes->leftmost.x = image.width;
  FindExtreme(leftSide.trace(), settings.SegmentPointNum, &frame::PixelPoint::x, -1,
              &extremes->leftmost, &extremes->leftSegments);
  FindRightmost(rightSide.trace(), settings.SegmentPointNum, extremes);
  if (extremes->leftmost.x >= extremes->rightmost.x) return BORDER_NOT_FOUND;
  *left = leftSide.Take();
  *right = rightSide.Take();
  return STATUS_OK;
}

int32_t ScanColumns(const frame::Settings& settings, const ImageRec& image,
                    const frame::PixelRect& band, GreyBand levels, SideTrace* top,
                    SideTrace* bottom, ExtremePoints* extremes) {
  int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;
  const ColumnRange columns{extremes->leftmost.x, extremes->rightmost.x};
  const bool isInside = columns.left >= 0 && columns.right < image.width;
  if (!IsInside(band, image) || !isInside) return BAD_ARGUMENT;

  TraceBuilder topSide(settings);
  TraceBuilder bottomSide(settings);
  status = WithDepth(image.bitsPerPixel, [&](auto pixel) {
    return TraceColumns<decltype(pixel)>(image, band, levels, settings.SearchBorderPixelNum,
                                         columns, &topSide, &bottomSide);
  });
  if (status != STATUS_OK) return status;

  extremes->topmost.y = image.height;
  FindExtreme(topSide.trace(), settings.SegmentPointNum, &frame::PixelPoint::y, -1,
              &extremes->topmost, &extremes->topSegments);
  extremes->bottommost.y = 0;
  FindExtreme(bottomSide.trace(), settings.SegmentPointNum, &frame::PixelPoint::y, 1,
              &extremes->bottommost, &extremes->bottomSegments);
  if (extremes->topmost.y >= extremes->bottommost.y) return BORDER_NOT_FOUND;
  *top = topSide.Take();
  *bottom = bottomSide.Take();
  return STATUS_OK;
}

}  // namespace vorlanepic::analysis
