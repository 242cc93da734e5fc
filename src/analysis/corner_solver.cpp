#include "analysis/corner_solver.h"

#include <algorithm>
#include <cmath>

#include "analysis/edge_alignment.h"
#include "analysis/line_relations.h"
#include "frame/arithmetic.h"
#include "frame/trigonometry.h"

namespace vorlanepic::analysis {
namespace {

bool CountEdgePoints(DocumentEdges* edges) {
  for (EdgeLine* edge : {&edges->e1, &edges->e2, &edges->e3, &edges->e4}) {
    if (edge->list.segmentCount == 0) return false;
    edge->list.pointTotal = 0;
    for (const BorderSegment& segment : edge->list.view()) {
      edge->list.pointTotal = frame::WrapAdd(edge->list.pointTotal, segment.count);
    }
  }
  return true;
}

int32_t FindCorners(const DocumentEdges& edges, DocumentCorners* corners) {
  const auto& [e1, e2, e3, e4] = edges;
  int32_t status = Intersect(e1.line, e4.line, &corners->c14);
  if (status != STATUS_OK) return status;
  status = Intersect(e1.line, e2.line, &corners->c12);
  if (status != STATUS_OK) return status;
  status = Intersect(e4.line, e3.line, &corners->c43);
  if (status != STATUS_OK) return status;
  return Intersect(e2.line, e3.line, &corners->c23);
}

// The middle of two coordinates, rounded up.
int32_t Middle(int32_t a, int32_t b) { return frame::WrapAdd(frame::WrapAdd(a, b), 1) >> 1; }

int32_t FindCenter(const ImageRec& image, const DocumentCorners& corners,
                   frame::PixelPoint* center) {
  center->x = Middle(corners.c43.x, corners.c12.x);
  center->y = Middle(corners.c23.y, corners.c14.y);
  const bool isInside =
      center->x >= 0 && center->x < image.width && center->y >= 0 && center->y < image.height;
  return isInside ? STATUS_OK : BORDER_NOT_FOUND;
}

// Distance in pixels, rounded; INT32_MIN for points so far apart that the sum of squares wraps
// below 0.
int32_t Length(frame::PixelPoint a, frame::PixelPoint b) {
  const int32_t dx = frame::WrapSub(a.x, b.x);
  const int32_t dy = frame::WrapSub(a.y, b.y);
  const int32_t squares = frame::WrapAdd(frame::WrapMul(dx, dx), frame::WrapMul(dy, dy));
  return frame::RoundToInt32(std::sqrt(static_cast<double>(squares)));
}

// The steeper of two neighbouring edges gives the angle and is the upright document's height.
void MeasureDocument(const DocumentEdges& edges, DocumentGeometry* geometry) {
  const DocumentCorners& corners = geometry->corners;
  const int32_t along2 = Length(corners.c12, corners.c23);
  const int32_t along1 = Length(corners.c12, corners.c14);
  if (std::abs(edges.e2.line.angle) > std::abs(edges.e1.line.angle)) {
    geometry->angle = TurnOfEdge(edges.e2.line.angle) * frame::kRadiansPerDegree;
    geometry->outHeight = along2;
    geometry->outWidth = along1;
  } else {
    geometry->angle = TurnOfEdge(edges.e1.line.angle) * frame::kRadiansPerDegree;
    geometry->outHeight = along1;
    geometry->outWidth = along2;
  }
}

int32_t FindRows(const DocumentCorners& corners, int32_t height, rotate::RowSpans* spans) {
  const int32_t top = std::min({corners.c14.y, corners.c12.y, corners.c43.y});
  const int32_t bottom = std::max({corners.c12.y, corners.c43.y, corners.c23.y});
  spans->top = std::clamp(top, 0, height - 1);
  spans->bottom = std::clamp(bottom, 0, height - 1);
  return spans->top < spans->bottom ? STATUS_OK : BORDER_NOT_FOUND;
}

// Column of `line` in row y, 0..width - 1; a level line gives the corner's column.
int32_t ColumnAt(const BorderLine& line, int32_t y, int32_t cornerX, int32_t width) {
  int32_t x = cornerX;
  if (line.kind == LineKind::kGeneral) x = frame::RoundToInt32((y - line.intercept) / line.slope);
  if (line.kind == LineKind::kVertical) x = frame::RoundToInt32(line.intercept);
  return std::clamp(x, 0, width - 1);
}

int32_t FillSpans(const DocumentEdges& edges, const DocumentCorners& corners, int32_t width,
                  rotate::RowSpans* spans) {
  if (!spans->spans.Allocate(static_cast<size_t>(spans->bottom) + 1)) {
    return OUT_OF_MEMORY;
  }
  for (int32_t y = spans->top; y <= spans->bottom; ++y) {
    const EdgeLine& leftEdge = y < corners.c12.y ? edges.e1 : edges.e2;
    const EdgeLine& rightEdge = y < corners.c43.y ? edges.e4 : edges.e3;
    spans->spans[static_cast<size_t>(y)] = {ColumnAt(leftEdge.line, y, corners.c12.x, width),
                                            ColumnAt(rightEdge.line, y, corners.c43.x, width)};
  }
  return STATUS_OK;
}

}  // namespace

int32_t SolveCorners(const frame::Settings& settings, const ImageRec& image, int32_t cornerOption,
                     const ExtremePoints& extremes, const EdgeOrigin& origin, DocumentEdges* edges,
                     DocumentGeometry* geometry) {
  int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;
  if (!CountEdgePoints(edges)) return BAD_ARGUMENT;

  const SolverPath path = ChoosePath(settings, extremes, origin.arrangement);
  status = FitEdges(path, edges);
  if (status != STATUS_OK) return status;
  geometry->isPairUnfitted = IsPairUnfitted(path, *edges);
  status = AlignEdges(settings, path, extremes, cornerOption, origin.source, image.height, edges);
  if (status != STATUS_OK) return status;
  status = FindCorners(*edges, &geometry->corners);
  if (status != STATUS_OK) return status;
  status = FindCenter(image, geometry->corners, &geometry->center);
  if (status != STATUS_OK) return status;
  MeasureDocument(*edges, geometry);
  status = FindRows(geometry->corners, image.height, &geometry->spans);
  if (status != STATUS_OK) return status;
  return FillSpans(*edges, geometry->corners, image.width, &geometry->spans);
}

}  // namespace vorlanepic::analysis
