#include "app/services/page_geometry.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace vorlane::services {
namespace {

constexpr double kDegrees = 57.29577951308232;

size_t IndexOf(Side side) { return static_cast<size_t>(side); }

// The rectangle that was cut out, turned as it lies in the records' rows.
struct CutRect {
  bool isKnown = false;
  Place center{};      // source place of the turn's centre
  double radians = 0;  // the turn, clockwise
  double left = 0;     // the cut's bounds from that centre, in the turned picture
  double top = 0;
  double right = 0;
  double bottom = 0;
};

std::vector<Place> CornersOf(const CutRect& cut) {
  const double c = std::cos(cut.radians);
  const double s = std::sin(cut.radians);
  const auto toSource = [&](double dx, double dy) {
    return Place{cut.center.x + dx * c + dy * s, cut.center.y + dy * c - dx * s};
  };
  return {toSource(cut.left, cut.top), toSource(cut.right, cut.top),
          toSource(cut.right, cut.bottom), toSource(cut.left, cut.bottom)};
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

std::vector<Place> SeenCutCorners(const TurnOutcome& outcome, int32_t height) {
  const CutRect cut = CutOf(outcome);
  if (!cut.isKnown) return {};
  std::vector<Place> corners = CornersOf(cut);
  if (outcome.isFlipped) {
    for (Place& p : corners) p.y = height - 1 - p.y;
    // What the records take for the page's foot is its head.
    std::swap(corners[0], corners[3]);
    std::swap(corners[1], corners[2]);
  }
  return corners;
}

double NormalDegrees(double degrees) {
  const double turned = std::remainder(degrees, 360);  // -180..180
  return turned == -180 ? 180 : turned + 0.0;
}

}  // namespace vorlane::services
