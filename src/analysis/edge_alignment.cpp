#include "analysis/edge_alignment.h"

#include "analysis/border_line.h"
#include "analysis/line_relations.h"
#include "frame/arithmetic.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {
namespace {

// Degrees from a right angle within which parallel pairs of edges make a document.
constexpr double kRectangleDegrees = 2.0;

bool IsUnfitted(const EdgeLine& edge) { return edge.line.kind == LineKind::kNotFitted; }

// Sets the point through which a repaired edge passes: where `side`, the edge it meets, has the row
// y. BORDER_NOT_FOUND when that edge is level.
int32_t PlaceOnSide(BorderLine* line, const BorderLine& side, int32_t y) {
  line->midY = y;
  switch (side.kind) {
    case LineKind::kVertical:
      line->midX = side.midX;
      return STATUS_OK;
    case LineKind::kGeneral:
      line->midX = frame::TruncToInt32((y - side.intercept) / side.slope);
      return STATUS_OK;
    default:
      return BORDER_NOT_FOUND;
  }
}

// Gives the one edge that could not be fitted its opposite's direction and a place.
int32_t RepairEdge(SolverPath path, const ExtremePoints& extremes, EdgeSource source,
                   int32_t height, DocumentEdges* edges) {
  auto& [e1, e2, e3, e4] = *edges;
  const bool onFrame = source == EdgeSource::kWholeSides;
  const int32_t lastRow = height - 1;
  if (path == SolverPath::kX && IsUnfitted(e1)) {
    TakeDirection(&e1.line, e3.line);
    return PlaceOnSide(&e1.line, e2.line, onFrame ? 0 : extremes.leftmost.y);
  }
  if (path == SolverPath::kX) {
    TakeDirection(&e3.line, e1.line);
    return PlaceOnSide(&e3.line, e4.line, onFrame ? lastRow : extremes.rightmost.y);
  }
  if (IsUnfitted(e2)) {
    TakeDirection(&e2.line, e4.line);
    return PlaceOnSide(&e2.line, e1.line, onFrame ? lastRow : extremes.leftmost.y);
  }
  TakeDirection(&e4.line, e2.line);
  return PlaceOnSide(&e4.line, e3.line, onFrame ? 0 : extremes.rightmost.y);
}

void MoveMidpoint(BorderLine* line, int32_t dx, int32_t dy) {
  line->midX = frame::WrapAdd(line->midX, dx);
  line->midY = frame::WrapAdd(line->midY, dy);
}

void MoveOutwards(int32_t cornerOption, DocumentEdges* edges) {
  const int32_t out = frame::WrapMul(2, cornerOption);
  const int32_t back = frame::WrapSub(0, out);
  MoveMidpoint(&edges->e1.line, back, back);
  MoveMidpoint(&edges->e2.line, back, out);
  MoveMidpoint(&edges->e4.line, out, back);
  MoveMidpoint(&edges->e3.line, out, out);
}

// Repairs a pair of edges (a, b) that is not parallel from the better of the two, or from `third`,
// which with `fourth` makes the other, parallel pair.
void RepairPair(double perpendicular, BorderLine* a, BorderLine* b, const BorderLine& third,
                const BorderLine& fourth) {
  const double offA = OffPerpendicular(a->angle, third.angle);
  const double offB = OffPerpendicular(b->angle, fourth.angle);
  if (offA < offB && offA < perpendicular) {
    TakeDirection(b, *a);
  } else if (offB < offA && offB < perpendicular) {
    TakeDirection(a, *b);
  } else {
    MakePerpendicular(a, third);
    MakePerpendicular(b, third);
  }
}

int32_t RepairParallels(const frame::Settings& settings, DocumentEdges* edges) {
  BorderLine& e1 = edges->e1.line;
  BorderLine& e2 = edges->e2.line;
  BorderLine& e3 = edges->e3.line;
  BorderLine& e4 = edges->e4.line;
  const bool pair13 = AngleDifference(e1.angle, e3.angle) <= settings.parallel;
  const bool pair24 = AngleDifference(e2.angle, e4.angle) <= settings.parallel;
  if (pair13 && pair24) {
    const bool isRectangle = OffPerpendicular(e1.angle, e2.angle) < kRectangleDegrees;
    return isRectangle ? STATUS_OK : BORDER_NOT_FOUND;
  }
  if (pair13) RepairPair(settings.perpendicular, &e2, &e4, e1, e3);
  if (pair24) RepairPair(settings.perpendicular, &e1, &e3, e2, e4);
  return STATUS_OK;
}

// Gives both edges of a pair their mean angle.
void MakeParallel(BorderLine* a, BorderLine* b) {
  const double angle = MeanAngle(a->angle, b->angle);
  SetAngle(a, angle);
  SetAngle(b, angle);
}

int32_t AlignThroughMidpoints(const frame::Settings& settings, int32_t cornerOption,
                              DocumentEdges* edges) {
  MoveOutwards(cornerOption, edges);
  auto& [e1, e2, e3, e4] = *edges;
  if (IsUnfitted(e1) || IsUnfitted(e2) || IsUnfitted(e3) || IsUnfitted(e4)) return BORDER_NOT_FOUND;

  const int32_t status = RepairParallels(settings, edges);
  if (status != STATUS_OK) return status;
  MakeParallel(&e1.line, &e3.line);
  MakeParallel(&e2.line, &e4.line);
  for (EdgeLine* edge : {&e1, &e2, &e4, &e3}) {
    Anchor(&edge->line, edge->line.midX, edge->line.midY);
  }
  return STATUS_OK;
}

// Which edge, 0 to 3, has the most points. Ties go to E2, E4 and the pair E1, E2.
int32_t ReferenceEdge(const DocumentEdges& edges) {
  const int32_t points1 = edges.e1.list.pointTotal;
  const int32_t points2 = edges.e2.list.pointTotal;
  const int32_t points3 = edges.e3.list.pointTotal;
  const int32_t points4 = edges.e4.list.pointTotal;
  const int32_t best12 = points1 > points2 ? points1 : points2;
  const int32_t best34 = points3 > points4 ? points3 : points4;
  if (best12 < best34) return points3 > points4 ? 2 : 3;
  return points1 > points2 ? 0 : 1;
}

// The reference edge keeps its line, its opposite becomes parallel to it and the others
// perpendicular; all but the reference pass through the extreme point of their side.
void AlignThroughExtremes(SolverPath path, const ExtremePoints& extremes, DocumentEdges* edges) {
  const bool isX = path == SolverPath::kX;
  const struct {
    BorderLine* line;
    frame::PixelPoint extreme;
  } sides[] = {{&edges->e1.line, isX ? extremes.topmost : extremes.leftmost},
               {&edges->e2.line, isX ? extremes.leftmost : extremes.bottommost},
               {&edges->e3.line, isX ? extremes.bottommost : extremes.rightmost},
               {&edges->e4.line, isX ? extremes.rightmost : extremes.topmost}};
  const int32_t reference = ReferenceEdge(*edges);
  for (int32_t step = 1; step <= 3; ++step) {
    const auto& side = sides[(reference + step) % 4];
    if (step == 2) {
      TakeDirection(side.line, *sides[reference].line);
    } else {
      MakePerpendicular(side.line, *sides[reference].line);
    }
    Anchor(side.line, side.extreme.x, side.extreme.y);
  }
}

}  // namespace

SolverPath ChoosePath(const frame::Settings& settings, const ExtremePoints& extremes,
                      Arrangement arrangement) {
  const bool isX = (settings.BorderMethod == 1 && extremes.leftmost.y < extremes.rightmost.y) ||
                   (settings.BorderMethod == 3 && arrangement == Arrangement::kTopFirst);
  return isX ? SolverPath::kX : SolverPath::kY;
}

int32_t FitEdges(SolverPath path, DocumentEdges* edges) {
  const bool isX = path == SolverPath::kX;
  const struct {
    EdgeLine* edge;
    bool mayFail;
  } fits[] = {{&edges->e1, isX}, {&edges->e3, isX}, {&edges->e2, !isX}, {&edges->e4, !isX}};
  for (const auto& fit : fits) {
    const int32_t status = FitPointLine(&fit.edge->line, fit.edge->list);
    if (status != STATUS_OK && !(status == ANGLE_NOT_FOUND && fit.mayFail)) return status;
  }
  return STATUS_OK;
}

bool IsPairUnfitted(SolverPath path, const DocumentEdges& edges) {
  const bool isX = path == SolverPath::kX;
  return IsUnfitted(isX ? edges.e1 : edges.e2) && IsUnfitted(isX ? edges.e3 : edges.e4);
}

int32_t AlignEdges(const frame::Settings& settings, SolverPath path, const ExtremePoints& extremes,
                   int32_t cornerOption, EdgeSource source, int32_t height, DocumentEdges* edges) {
  const double anchorFlag = IsPairUnfitted(path, *edges) ? 1.0 : settings.ExtremeAnchorFlag;
  if (anchorFlag != 0.0) {
    if (anchorFlag == 1.0) AlignThroughExtremes(path, extremes, edges);
    return STATUS_OK;
  }
  const bool isX = path == SolverPath::kX;
  if (IsUnfitted(isX ? edges->e1 : edges->e2) || IsUnfitted(isX ? edges->e3 : edges->e4)) {
    const int32_t status = RepairEdge(path, extremes, source, height, edges);
    if (status != STATUS_OK) return status;
  }
  return AlignThroughMidpoints(settings, cornerOption, edges);
}

}  // namespace vorlanepic::analysis
