// Geometry of what a service found, in the page's own pixels.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/services/place.h"
#include "app/services/turn_outcome.h"

namespace vorlane::services {

using vorlanepic::analysis::Side;
inline constexpr std::array<Side, 4> kSides = {Side::kLeft, Side::kRight, Side::kTop,
                                               Side::kBottom};
const char* SideName(Side side);

// The trace of a side, and its line among the four document edges.
const vorlanepic::analysis::SideTrace& TraceOf(const vorlanepic::deskew::PageRecords& records,
                                               Side side);
const vorlanepic::analysis::EdgeLine& EdgeOf(const vorlanepic::deskew::PageRecords& records,
                                             Side side);

// Corners of the rectangle that was cut out as it lies in the picture, clockwise from the page's
// upper left; empty where there was none. `height` is the picture's.
std::vector<Place> SeenCutCorners(const TurnOutcome& outcome, int32_t height);

// Degrees above -180 up to 180.
double NormalDegrees(double degrees);

}  // namespace vorlane::services
