// Geometry of what a service found, in the page's own pixels.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/judge/place.h"
#include "app/judge/turn_outcome.h"

namespace vorlane::judging {

using vorlanepic::analysis::Side;
inline constexpr std::array<Side, 4> kSides = {Side::kLeft, Side::kRight, Side::kTop,
                                               Side::kBottom};
const char* SideName(Side side);

// The trace of a side, and its line among the four document edges.
const vorlanepic::analysis::SideTrace& TraceOf(const vorlanepic::deskew::PageRecords& records,
                                               Side side);
const vorlanepic::analysis::EdgeLine& EdgeOf(const vorlanepic::deskew::PageRecords& records,
                                             Side side);

// The border points that a side's line rests on: those of the segments its edge kept, or, for the
// border vote, those near the winning line of that border.
std::vector<vorlanepic::frame::PixelPoint> SupportOf(const TurnOutcome& outcome, Side side);

// The straight line through a side's supporting points, fitted by least squares across it.
struct SideMeasure {
  Side side = Side::kLeft;
  int32_t points = 0;
  Place middle{};           // mean of the points
  double leanDegrees = 0;   // how far the side is turned clockwise as seen, above -45 up to 45
  double length = 0;        // pixels, along the line
  double onFrameShare = 0;  // share of the points that lie on the picture's own edge
};
SideMeasure MeasureSide(const TurnOutcome& outcome, const ImageRec& image, Side side);

// The rectangle that was cut out, turned as it lies in the source: out pixel (0, 0) and on, with
// the source place of its centre.
struct CutRect {
  bool isKnown = false;
  Place center{};      // source place of the turn's centre
  double radians = 0;  // the turn, clockwise
  double left = 0;     // the cut's bounds from that centre, in the turned picture
  double top = 0;
  double right = 0;
  double bottom = 0;

  Place ToSource(double dx, double dy) const;
  Place ToCut(double x, double y) const;  // from the centre, in the turned picture
  std::vector<Place> Corners() const;
  double Area() const { return (right - left) * (bottom - top); }
};
CutRect CutOf(const TurnOutcome& outcome);

// Degrees above -180 up to 180.
double NormalDegrees(double degrees);

}  // namespace vorlane::judging
