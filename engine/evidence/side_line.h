// A straight line through the trace of one side of the page, and how much of the side it explains.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "engine/evidence/half_plane.h"

namespace vorlane::evidence {

// The order is that of the corners, clockwise from the upper left.
enum class Side : int32_t { kTop, kRight, kBottom, kLeft };
inline constexpr size_t kSides = 4;
inline constexpr std::array<Side, kSides> kAllSides{Side::kTop, Side::kRight, Side::kBottom,
                                                    Side::kLeft};

constexpr bool RunsAcross(Side side) { return side == Side::kTop || side == Side::kBottom; }

// The line `across = offset + slope * along`, in pixels of the picture: along is x for the top and
// the bottom side and y for the others, across is the other one. It runs through the pixels' edges,
// half a pixel outside the middle of the outermost page pixels.
struct SideLine {
  bool isSeen = false;
  bool isFrameLike = false;  // runs along the frame from end to end: a streak, a halo, the frame
  double offset = 0.0;
  double slope = 0.0;
  double degrees = 0.0;  // by which the side lies turned clockwise
  double from = 0.0;     // where the points on the line begin and end, along
  double to = 0.0;
  double filled = 0.0;        // share of from..to that has points on the line, in 24 bins
  double straight = 0.0;      // share of the trace's points in from..to that lie on the line
  double onFrame = 0.0;       // share of the trace that runs at the picture's own edge
  double contradicted = 0.0;  // share of the trace at the picture's edge where the line is inside
  double contrast = 0.0;      // levels by which the page is lighter than what lies outside the line
  double outside = 0.0;       // the level of that

  double length() const { return to - from; }
  double weight() const { return length() * filled; }
  double At(double along) const { return offset + slope * along; }
};

// What lies on the page's side of the line, moved inwards by `inset` pixels.
HalfPlane InsideOf(const SideLine& line, Side side, double inset);

// The best line for `trace`, the trace of `side` in a picture of width x height.
//
// Returns STATUS_OK, whether or not a line is seen, or OUT_OF_MEMORY.
int32_t FitSide(const vorlanepic::analysis::SideTrace& trace, Side side, int32_t width,
                int32_t height, SideLine* line);

}  // namespace vorlane::evidence
