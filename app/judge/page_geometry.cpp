#include "app/judge/page_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "analysis/border_line.h"

namespace vorlane::judging {
namespace {

constexpr double kDegrees = 57.29577951308232;

// How far from the winning line a point of a vote's border still supports it, in pixels.
constexpr int32_t kVoteReach = 8;

// A border point lies up to 3 pixels inside the edge that it marks.
constexpr int32_t kFrameMargin = 4;

bool IsOnFrame(const ImageRec& image, Side side, const vorlanepic::frame::PixelPoint& p) {
  switch (side) {
    case Side::kLeft:
      return p.x < kFrameMargin;
    case Side::kRight:
      return p.x >= image.width - kFrameMargin;
    case Side::kTop:
      return p.y < kFrameMargin;
    default:
      return p.y >= image.height - kFrameMargin;
  }
}

// The direction of the points' longest extent, folded to the nearest page axis.
void FitAcross(const std::vector<vorlanepic::frame::PixelPoint>& points, SideMeasure* measure) {
  double meanX = 0;
  double meanY = 0;
  for (const vorlanepic::frame::PixelPoint& p : points) {
    meanX += p.x;
    meanY += p.y;
  }
  const auto count = static_cast<double>(points.size());
  meanX /= count;
  meanY /= count;
  measure->middle = {meanX, meanY};
  double xx = 0;
  double xy = 0;
  double yy = 0;
  for (const vorlanepic::frame::PixelPoint& p : points) {
    xx += (p.x - meanX) * (p.x - meanX);
    xy += (p.x - meanX) * (p.y - meanY);
    yy += (p.y - meanY) * (p.y - meanY);
  }
  const double direction = 0.5 * std::atan2(2 * xy, xx - yy);
  double degrees = std::fmod(direction * kDegrees, 90);
  if (degrees > 45) degrees -= 90;
  if (degrees <= -45) degrees += 90;
  measure->leanDegrees = degrees;

  double low = 0;
  double high = 0;
  for (const vorlanepic::frame::PixelPoint& p : points) {
    const double along = (p.x - meanX) * std::cos(direction) + (p.y - meanY) * std::sin(direction);
    low = std::min(low, along);
    high = std::max(high, along);
  }
  measure->length = high - low;
}

size_t IndexOf(Side side) { return static_cast<size_t>(side); }

}  // namespace

const char* SideName(Side side) {
  static constexpr const char* kNames[] = {"left", "right", "top", "bottom"};
  return kNames[IndexOf(side)];
}

const vorlanepic::analysis::SideTrace& TraceOf(const vorlanepic::deskew::PageRecords& records,
                                               Side side) {
  const std::array<const vorlanepic::analysis::SideTrace*, 4> traces = {
      &records.traces.left, &records.traces.right, &records.traces.top, &records.traces.bottom};
  return *traces[IndexOf(side)];
}

const vorlanepic::analysis::EdgeLine& EdgeOf(const vorlanepic::deskew::PageRecords& records,
                                             Side side) {
  const vorlanepic::analysis::DocumentEdges& edges = records.edges;
  for (const vorlanepic::analysis::EdgeLine* edge : {&edges.e1, &edges.e2, &edges.e3}) {
    if (edge->side == side) return *edge;
  }
  return edges.e4;
}

std::vector<vorlanepic::frame::PixelPoint> SupportOf(const TurnOutcome& outcome, Side side) {
  std::vector<vorlanepic::frame::PixelPoint> points;
  if (!outcome.page) return points;
  if (outcome.kind == TurnKind::kPruned) {
    for (const vorlanepic::analysis::BorderSegment& segment :
         EdgeOf(*outcome.page, side).list.view()) {
      points.insert(points.end(), segment.first, segment.first + segment.count);
    }
    return points;
  }
  const vorlanepic::deskew::BorderVote& vote = outcome.page->votes[IndexOf(side)];
  const vorlanepic::analysis::SideTrace& trace = TraceOf(*outcome.page, side);
  if (!vote.hasAngle) return points;
  for (const vorlanepic::frame::PixelPoint& p :
       trace.points.span().first(static_cast<size_t>(trace.pointCount))) {
    int32_t distance = 0;
    if (vorlanepic::analysis::DistanceToLine(p.x, p.y, vote.line, &distance) != STATUS_OK) break;
    if (std::abs(distance) < kVoteReach) points.push_back(p);
  }
  return points;
}

SideMeasure MeasureSide(const TurnOutcome& outcome, const ImageRec& image, Side side) {
  SideMeasure measure;
  measure.side = side;
  const std::vector<vorlanepic::frame::PixelPoint> points = SupportOf(outcome, side);
  measure.points = static_cast<int32_t>(points.size());
  if (points.size() < 2) return measure;
  FitAcross(points, &measure);
  const auto onFrame = std::count_if(
      points.begin(), points.end(),
      [&](const vorlanepic::frame::PixelPoint& p) { return IsOnFrame(image, side, p); });
  measure.onFrameShare = static_cast<double>(onFrame) / static_cast<double>(points.size());
  return measure;
}

Place CutRect::ToSource(double dx, double dy) const {
  const double c = std::cos(radians);
  const double s = std::sin(radians);
  return {center.x + dx * c + dy * s, center.y + dy * c - dx * s};
}

Place CutRect::ToCut(double x, double y) const {
  const double c = std::cos(radians);
  const double s = std::sin(radians);
  const double dx = x - center.x;
  const double dy = y - center.y;
  return {dx * c - dy * s, dy * c + dx * s};
}

std::vector<Place> CutRect::Corners() const {
  return {ToSource(left, top), ToSource(right, top), ToSource(right, bottom),
          ToSource(left, bottom)};
}

CutRect CutOf(const TurnOutcome& outcome) {
  CutRect cut;
  if (!outcome.page) return cut;
  const vorlanepic::deskew::PageRecords& records = *outcome.page;
  if (outcome.kind == TurnKind::kPruned) {
    const vorlanepic::analysis::DocumentGeometry& geometry = records.geometry;
    if (records.stage < vorlanepic::deskew::PageStage::kCorners) return cut;
    cut.isKnown = true;
    cut.center = {static_cast<double>(geometry.center.x), static_cast<double>(geometry.center.y)};
    cut.radians = geometry.angle;
    cut.left = -((geometry.outWidth - 1) >> 1);
    cut.top = -((geometry.outHeight - 1) >> 1);
    cut.right = cut.left + geometry.outWidth - 1;
    cut.bottom = cut.top + geometry.outHeight - 1;
    return cut;
  }
  if (records.stage < vorlanepic::deskew::PageStage::kTurned) return cut;
  const vorlanepic::frame::PixelRect& content = records.content;
  cut.isKnown = true;
  cut.center = {content.left + std::floor((content.right - content.left + 1) / 2.0),
                content.top + std::floor((content.bottom - content.top + 1) / 2.0)};
  cut.radians = records.degrees / kDegrees;
  const int32_t halfWidth = (records.turnedWidth - 1) >> 1;
  const int32_t halfHeight = (records.turnedHeight - 1) >> 1;
  cut.left = records.turnedContent.left - halfWidth;
  cut.top = records.turnedContent.top - halfHeight;
  cut.right = records.turnedContent.right - halfWidth;
  cut.bottom = records.turnedContent.bottom - halfHeight;
  return cut;
}

double NormalDegrees(double degrees) {
  const double turned = std::remainder(degrees, 360);  // -180..180
  return turned == -180 ? 180 : turned + 0.0;
}

}  // namespace vorlane::judging
