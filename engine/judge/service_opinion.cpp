#include "engine/judge/service_opinion.h"

#include <algorithm>
#include <cmath>

#include "engine/judge/polygon.h"

namespace vorlane::judge {
namespace {

// Past `likely` a result is no longer sure, past `doubtful` it is doubtful.
struct Limits {
  double likely;
  double doubtful;
};

// Degrees between the two turns.
constexpr Limits kApart{0.2, 0.5};
constexpr double kEighthTurn = 45.0;
// Share of what the engine's cut keeps that the service's leaves out, or of the picture where the
// engine does not know the page's end.
constexpr Limits kLost{0.005, 0.03};
// Share of the service's cut that lies outside the engine's.
constexpr double kMostSurround = 0.05;
// Pixels by which the engine's cut may lie outside the sheet's sides, and the service's inside
// them, before anything counts.
constexpr double kCutSlack = 5.0;

using Corners = std::array<Point, 4>;

// The rectangle with its sides moved out; negative moves in, at most to its middle.
Corners MovedOut(const Corners& rectangle, double pixels) {
  Corners moved = rectangle;
  for (size_t i = 0; i < moved.size(); ++i) {
    // A corner moves along both of the sides that meet in it, away from their other ends.
    for (const size_t other : {(i + 1) % 4, (i + 3) % 4}) {
      const double dx = rectangle[i].x - rectangle[other].x;
      const double dy = rectangle[i].y - rectangle[other].y;
      const double length = std::hypot(dx, dy);
      if (!(length > 0.0)) continue;
      const double step = std::max(pixels, -length / 2) / length;
      moved[i].x += dx * step;
      moved[i].y += dy * step;
    }
  }
  return moved;
}

// The share of `whole` that lies outside these corners.
double ShareOutside(const Polygon& whole, const Corners& corners) {
  return 1.0 - AreaOf(Common(whole, corners)) / std::max(1.0, AreaOf(whole));
}

void Lower(Opinion* opinion, Confidence to, DoubtReport report) {
  opinion->confidence = std::min(opinion->confidence, to);
  opinion->doubts[opinion->doubtCount++] = report;
}

void LowerAbove(Opinion* opinion, const Limits& limits, DoubtReport report) {
  if (!(report.value > limits.likely)) return;
  Lower(opinion, report.value > limits.doubtful ? Confidence::kDoubtful : Confidence::kLikely,
        report);
}

void JudgeTurn(const Finding& found, double degrees, Opinion* opinion) {
  const double apart = std::abs(degrees - found.turnDegrees);
  if (apart > kEighthTurn) {
    Lower(opinion, Confidence::kDoubtful, {Doubt::kOnItsSide, apart});
  } else {
    LowerAbove(opinion, kApart, {Doubt::kTurnedApart, apart});
  }
  if (found.angleConfidence == Confidence::kLikely) {
    Lower(opinion, Confidence::kLikely, {Doubt::kLikelyEvidence, 0.0});
  }
}

void JudgeCut(const Finding& found, const Corners& cut, const Polygon& picture, Opinion* opinion) {
  if (found.cutConfidence < Confidence::kLikely) {
    const double leftOut = ShareOutside(picture, MovedOut(cut, kCutSlack));
    Lower(opinion, leftOut > kLost.doubtful ? Confidence::kDoubtful : Confidence::kLikely,
          {Doubt::kCutUnconfirmed, leftOut});
    return;
  }
  const Polygon sheet = Common(picture, MovedOut(found.corners, -kCutSlack));
  LowerAbove(opinion, kLost, {Doubt::kCutsPage, ShareOutside(sheet, cut)});
  const double surround = ShareOutside(PolygonOf(cut), MovedOut(found.corners, kCutSlack));
  if (surround > kMostSurround) {
    Lower(opinion, Confidence::kLikely, {Doubt::kSurroundLeft, surround});
  }
}

}  // namespace

Opinion JudgeService(const Finding& found, const ServiceResult& result, int32_t width,
                     int32_t height) {
  Opinion opinion;
  if (found.angleConfidence < Confidence::kLikely) {
    Lower(&opinion, Confidence::kDoubtful, {Doubt::kUnconfirmed, 0.0});
    return opinion;
  }
  JudgeTurn(found, result.turnDegrees, &opinion);
  if (result.cut) JudgeCut(found, *result.cut, PictureOutline(width, height), &opinion);
  return opinion;
}

const char* NameOf(Doubt doubt) {
  switch (doubt) {
    case Doubt::kUnconfirmed:
      return "unconfirmed";
    case Doubt::kOnItsSide:
      return "quarter-turn";
    case Doubt::kTurnedApart:
      return "contradicted";
    case Doubt::kLikelyEvidence:
      return "likely-evidence";
    case Doubt::kCutUnconfirmed:
      return "cut-unconfirmed";
    case Doubt::kCutsPage:
      return "cuts-page";
    default:
      return "surround-left";
  }
}

}  // namespace vorlane::judge
