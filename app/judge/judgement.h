// How far a result can be trusted.
//
// The services do what they promise also where that is not what a person wants: a page that runs
// off the picture gives the picture's own angle, a uniform background may pass for a page. What
// came back is therefore compared with what the records and the picture show.
#pragma once

#include "app/judge/turn_outcome.h"

namespace vorlane::judging {

// Two limits for one measure: past `likely` the result is no longer sure, past `doubtful` it is
// doubtful.
struct Limits {
  double likely;
  double doubtful;
};

// A side counts as seen when it rests on at least this many points, is at least this share of the
// cut's length along it, and at most this share of it lies on the picture's own edge.
inline constexpr int32_t kFewestPoints = 8;
inline constexpr double kShortestSeen = 0.15;
inline constexpr double kMostOnFrame = 0.5;

// Degrees between a seen side and the turn. Feeding shears a sheet by some tenths of a degree.
// Where two sides bear the turn out, a third one past the limits leaves it likely: an open book, a
// torn sheet, a page in perspective.
inline constexpr Limits kLean{0.3, 1.5};

// Distance between a seen side and the cut's side, as a share of the cut's size across it.
inline constexpr Limits kApart{0.02, 0.06};

// Sides that are seen: fewer than these.
inline constexpr Limits kSeenSides{3, 2};

// Share of the picture's light pixels that the cut leaves out.
inline constexpr Limits kLeftOut{0.04, 0.20};

// Share of the cut that is dark. A page with large photographs is half dark.
inline constexpr Limits kDark{0.40, 0.70};

// Share of the cut that lies beyond the picture's edges.
inline constexpr Limits kBeyond{0.02, 0.15};

// Share of the picture that the cut takes: less than these.
inline constexpr Limits kSmall{0.04, 0.01};

// Degrees of turn. A page turned by more than 45 degrees comes out a quarter turn off.
inline constexpr Limits kSteep{30, 42};

// Degrees of a bar against the page's axes.
inline constexpr Limits kBarTurn{15, 42};

// Judges an outcome of status 0 on `image`, the page as the service saw it.
Verdict Judge(const TurnOutcome& outcome, const ImageRec& image);

// Whether an outcome is better kept than another: success first, then confidence.
bool IsBetter(const TurnOutcome& a, const TurnOutcome& b);

const char* ConfidenceName(Confidence confidence);

}  // namespace vorlane::judging
