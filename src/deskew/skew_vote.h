// Takes one skew angle from the four traced borders by a vote.
#pragma once

#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// One border's part in the vote.
struct BorderVote {
  double angle = 0.0;         // degrees, -90..90
  analysis::BorderLine line;  // the line that won the votes
  int32_t votes = 0;          // segments near the line
  bool hasAngle = false;
};

// Lets the four borders vote. A border's longest run of chunks of SegmentLen segments that agree in
// direction (within GroupAngle from neighbour to neighbour) gives it a line, and its segments near
// the line (ToLineDistance) are its votes. The border with the most votes gives the angle; with
// AngleMode set, two opposite borders that agree within 1.5 degrees give their mean.
//
//   settings    the low 16 bits of SegmentLen count, 1..50; GroupAngle 0.0..5.0 degrees
//   votes       filled in the order left, right, top, bottom, as far as the vote came
//   bestBorder  receives the index of the border with the most votes
//   degrees     receives the angle, -90..90
//
// Returns STATUS_OK; ANGLE_NOT_FOUND when no border gives an angle; BAD_ARGUMENT for a value out of
// range; or OUT_OF_MEMORY.
int32_t EstimateSkewFromBorders(const frame::Settings& settings,
                                const analysis::BorderTraces& traces,
                                std::span<BorderVote, 4> votes, int32_t* bestBorder,
                                double* degrees);

// One border's vote, from the means of its segments in the order along the border. Settings and
// results are those of EstimateSkewFromBorders; ANGLE_NOT_FOUND leaves *vote without an angle.
int32_t EstimateBorderAngle(const frame::Settings& settings,
                            std::span<const analysis::BorderSegment> segments, BorderVote* vote);

// Fits `line` through the mean of the first half of `points` and that of the second half. Its angle
// is signed.
//
// Returns STATUS_OK; BAD_ARGUMENT for fewer than 2 points; ANGLE_NOT_FOUND when the halves meet.
int32_t FitLineByHalves(analysis::BorderLine* line, std::span<const frame::PixelPoint> points);

}  // namespace vorlanepic::deskew
