// How far a service's result can be trusted.
//
// The services do what they promise also where that is not what a person wants: a page that runs
// off the picture gives the picture's own angle, a uniform background may pass for a page. What
// came back is therefore held against what the page engine finds on the same picture.
#pragma once

#include "app/judge/turn_outcome.h"

namespace vorlane::judging {

// Two limits for one measure: past `likely` the result is no longer sure, past `doubtful` it is
// doubtful.
struct Limits {
  double likely;
  double doubtful;
};

// Degrees between the service's turn and the engine's.
inline constexpr Limits kApart{0.2, 0.5};

// Share of what the engine's cut keeps that the service's cut leaves out.
inline constexpr Limits kLost{0.005, 0.03};

// Share of the service's cut that lies outside the engine's.
inline constexpr double kMostSurround = 0.05;

// Pixels by which the engine's cut lies outside the sheet's sides, and the service's may lie inside
// them, before anything counts as lost.
inline constexpr double kCutSlack = 5.0;

// Judges an outcome of status 0 on `image`, the page as the service saw it, by the outcome's
// finding.
Verdict Judge(const TurnOutcome& outcome, const ImageRec& image);

// Whether an outcome is better kept than another: success first, then confidence.
bool IsBetter(const TurnOutcome& a, const TurnOutcome& b);

const char* ConfidenceName(Confidence confidence);

}  // namespace vorlane::judging
